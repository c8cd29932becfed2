// The contours of a drawing's walk.

#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "tests/support/PlainExtraction.h"
#include "tests/support/SamePoints.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <random>
#include <vector>

bool operator==(const DXFContour& a, const DXFContour& b) {
    return a.begin == b.begin && a.end == b.end && a.closed == b.closed;
}

void PrintTo(const DXFContour& contour, std::ostream* stream) {
    *stream << contour.begin << " to " << contour.end << (contour.closed ? " closed" : " open");
}

namespace {

using Point = cv::Point3_<double>;
using Contours = std::vector<DXFContour>;

Contours contoursOf(const DXFDocument& document) {
    Contours contours{{1, 2, true}};
    EXPECT_TRUE(samePoints(document.getPoints(contours), document.getPoints()));
    return contours;
}

void addLine(DXFDocument& document, double x1, double y1, double x2, double y2) {
    document.addEntity(std::make_shared<DXFLine>(Point(x1, y1, 0), Point(x2, y2, 0)));
}

TEST(DXFContourTest, AnEmptyDrawingHasNone) {
    EXPECT_EQ(contoursOf(DXFDocument()), Contours());
}

TEST(DXFContourTest, PiecesThatMeetAreOneOpenContour) {
    DXFDocument document;
    addLine(document, 0, 0, 1, 0);
    addLine(document, 1, 1, 1, 0);
    EXPECT_EQ(contoursOf(document), Contours({{0, 21, false}}));
}

TEST(DXFContourTest, PiecesThatComeBackToTheirStartAreAClosedContour) {
    DXFDocument document;
    addLine(document, 0, 0, 1, 0);
    addLine(document, 1, 1, 1, 0);
    addLine(document, 1, 1, 0, 1);
    addLine(document, 0, 0, 0, 1);
    EXPECT_EQ(contoursOf(document), Contours({{0, 41, true}}));
}

TEST(DXFContourTest, AGapBeyondTheToleranceBreaksAContour) {
    DXFDocument document;
    addLine(document, 0, 0, 1, 0);
    addLine(document, 1.002, 0, 2, 0);
    EXPECT_EQ(contoursOf(document), Contours({{0, 10, false}, {10, 21, false}}));
}

TEST(DXFContourTest, ACircleByItselfIsOpenAndASinglePointClosed) {
    DXFDocument document;
    document.addEntity(std::make_shared<DXFCircle>(Point(9, 9, 0), 1.0));
    document.addEntity(std::make_shared<DXFPoint>(1.0, 2.0, 3.0));
    EXPECT_EQ(contoursOf(document), Contours({{0, 1, true}, {1, 63, false}}));
}

TEST(DXFContourTest, APointWithoutMeaningMeetsNothingNotEvenItself) {
    DXFDocument document;
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    document.addEntity(std::make_shared<DXFPoint>(notANumber, 2.0, 3.0));
    EXPECT_EQ(contoursOf(document), Contours({{0, 1, false}}));
}

/// A drawing of up to 40 runs of one to four points between a few places.
void fill(DXFDocument& document, std::mt19937_64& random) {
    for (std::size_t runs = random() % 40; runs > 0; --runs) {
        std::vector<Point> run;
        for (std::size_t points = 1 + random() % 4; points > 0; --points) {
            run.emplace_back(static_cast<double>(random() % 5), 0.0,
                             static_cast<double>(random() % 4));
        }
        document.addEntity(std::make_shared<DXFPointVector>(run));
    }
}

TEST(DXFContourTest, ContoursOfRandomDrawingsAreThoseOfThePlainProcedure) {
    std::mt19937_64 random(1);
    for (int drawing = 0; drawing < 1000; ++drawing) {
        DXFDocument document;
        fill(document, random);
        Contours contours;
        const std::vector<Point> points = document.getPoints(contours);
        const std::vector<PlainRun> expected = plainStitching(plainRuns(document));
        ASSERT_EQ(contours.size(), expected.size());
        std::size_t begin = 0;
        for (std::size_t i = 0; i < contours.size(); ++i) {
            ASSERT_EQ(contours[i].begin, begin);
            begin += expected[i].size();
            ASSERT_EQ(contours[i].end, begin);
            ASSERT_EQ(contours[i].closed, expected[i].front() == expected[i].back());
            const auto first = points.begin();
            const std::vector<Point> part(first + static_cast<std::ptrdiff_t>(contours[i].begin),
                                          first + static_cast<std::ptrdiff_t>(contours[i].end));
            ASSERT_TRUE(samePoints(part, expected[i])) << "drawing " << drawing;
        }
        ASSERT_EQ(begin, points.size());
    }
}

} // namespace
