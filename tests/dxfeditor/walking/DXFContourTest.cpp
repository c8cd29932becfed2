// The contours of a drawing's walk, and the entities that they are made of.

#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "tests/support/PlainExtraction.h"
#include "tests/support/SamePoints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <vector>

bool operator==(const DXFPiece& a, const DXFPiece& b) {
    return a.begin == b.begin && a.end == b.end && a.entity == b.entity && a.isJoined == b.isJoined;
}

void PrintTo(const DXFPiece& piece, std::ostream* stream) {
    *stream << piece.begin << " to " << piece.end << " of entity " << piece.entity
            << (piece.isJoined ? " joined" : "");
}

bool operator==(const DXFContour& a, const DXFContour& b) {
    return a.begin == b.begin && a.end == b.end && a.closed == b.closed;
}

void PrintTo(const DXFContour& contour, std::ostream* stream) {
    *stream << contour.begin << " to " << contour.end << (contour.closed ? " closed" : " open");
}

namespace {

using Point = cv::Point3_<double>;
using Contours = std::vector<DXFContour>;
using Pieces = std::vector<DXFPiece>;

Contours contoursOf(const DXFDocument& document) {
    Contours contours{{1, 2, true}};
    EXPECT_TRUE(samePoints(document.getPoints(contours), document.getPoints()));
    return contours;
}

Pieces piecesOf(const DXFDocument& document) {
    Contours contours{{1, 2, true}};
    Pieces pieces{{1, 2, 3, true}};
    EXPECT_TRUE(samePoints(document.getPoints(contours, pieces), document.getPoints()));
    EXPECT_EQ(contours, contoursOf(document));
    return pieces;
}

void addLine(DXFDocument& document, double x1, double y1, double x2, double y2) {
    document.addEntity(std::make_shared<DXFLine>(Point(x1, y1, 0), Point(x2, y2, 0)));
}

/// What getPoints() tells of how far it is; expects that it gives the same.
std::vector<double> progressOf(const DXFDocument& document) {
    std::vector<double> told;
    Contours contours;
    Pieces pieces;
    const auto tell = [&told](double done) { told.push_back(done); };
    EXPECT_TRUE(samePoints(document.getPoints(contours, pieces, tell), document.getPoints()));
    EXPECT_EQ(pieces, piecesOf(document));
    return told;
}

void expectSteps(const std::vector<double>& told) {
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    const auto isIn = [](double begin, double end) {
        return [=](double done) { return begin <= done && done < end; };
    };
    for (int i = 0; i < 10; ++i) {
        EXPECT_GT(std::count_if(told.begin(), told.end(), isIn(i / 10.0, (i + 1) / 10.0)), 5) << i;
    }
    EXPECT_LE(told.back(), 1.0);
    EXPECT_LT(told.size(), 2000U);
}

TEST(DXFProgressTest, IsToldInSmallStepsHoweverRunsAreJoined) {
    DXFDocument apart;
    DXFDocument joined;
    for (int i = 0; i < 10'000; ++i) {
        addLine(apart, 2 * i, 0, 2 * i + 1, 0);
        addLine(joined, i, 0, i + 1, 0);
    }
    expectSteps(progressOf(apart));
    expectSteps(progressOf(joined));
}

TEST(DXFProgressTest, OfLittleStaysBetweenNothingAndAll) {
    DXFDocument document;
    progressOf(document);
    addLine(document, 0, 0, 1, 0);
    EXPECT_THAT(progressOf(document),
                ::testing::Each(::testing::AllOf(::testing::Ge(0.0), ::testing::Le(1.0))));
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

TEST(DXFPieceTest, AnEmptyDrawingHasNone) {
    EXPECT_EQ(piecesOf(DXFDocument()), Pieces());
}

TEST(DXFPieceTest, ThePointWhereTwoEntitiesMeetIsOfOneOfThem) {
    DXFDocument document;
    addLine(document, 0, 0, 1, 0);
    document.addEntity(nullptr);
    addLine(document, 1, 1, 1, 0);
    EXPECT_EQ(piecesOf(document), Pieces({{0, 11, 2, false}, {11, 21, 0, true}}));
}

TEST(DXFPieceTest, OfASinglePointThatIsJoinedNothingIsLeft) {
    DXFDocument document;
    document.addEntity(std::make_shared<DXFPoint>(0, 0, 0));
    document.addEntity(std::make_shared<DXFPoint>(1, 0, 0));
    addLine(document, 0, 0, 1, 0);
    EXPECT_EQ(piecesOf(document), Pieces({{0, 0, 0, true}, {0, 11, 2, false}, {11, 11, 1, true}}));
}

TEST(DXFPieceTest, TheContoursTellWhichAreTheirs) {
    DXFDocument document;
    addLine(document, 5, 0, 6, 0);
    addLine(document, 0, 0, 1, 0);
    addLine(document, 1, 1, 1, 0);
    const Contours contours = contoursOf(document);
    ASSERT_EQ(contours.size(), 2U);
    EXPECT_EQ(contours[0].firstPiece, 0U);
    EXPECT_EQ(contours[0].endPiece, 2U);
    EXPECT_EQ(contours[1].firstPiece, 2U);
    EXPECT_EQ(contours[1].endPiece, 3U);
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

/// Whether a part of a walk is a run in one of its directions, but for a point that joins it to
/// what comes before or behind.
bool isPartOf(const PlainRun& run, const PlainRun& part, bool isJoined) {
    const PlainRun backwards(run.rbegin(), run.rend());
    for (const PlainRun& whole : {run, backwards}) {
        const PlainRun behindFirst(whole.begin() + 1, whole.end());
        const PlainRun beforeLast(whole.begin(), whole.end() - 1);
        if (isJoined ? samePoints(part, behindFirst) || samePoints(part, beforeLast)
                     : samePoints(part, whole)) {
            return true;
        }
    }
    return false;
}

TEST(DXFPieceTest, PiecesOfRandomDrawingsAreTheRunsOfTheirEntitiesEachOnce) {
    std::mt19937_64 random(2);
    for (int drawing = 0; drawing < 1000; ++drawing) {
        DXFDocument document;
        fill(document, random);
        const std::vector<PlainRun> runs = plainRuns(document);
        Contours contours;
        Pieces pieces;
        const PlainRun points = document.getPoints(contours, pieces);
        std::vector<bool> isSeen(runs.size());
        std::size_t next = 0;
        for (const DXFContour& contour : contours) {
            ASSERT_EQ(contour.firstPiece, next);
            ASSERT_LT(next, contour.endPiece);
            std::size_t begin = contour.begin;
            for (; next < contour.endPiece; ++next) {
                const DXFPiece& piece = pieces.at(next);
                ASSERT_EQ(piece.begin, begin);
                begin = piece.end;
                ASSERT_FALSE(isSeen.at(piece.entity));
                isSeen[piece.entity] = true;
                const auto first = points.begin();
                EXPECT_TRUE(isPartOf(runs[piece.entity],
                                     {first + static_cast<std::ptrdiff_t>(piece.begin),
                                      first + static_cast<std::ptrdiff_t>(piece.end)},
                                     piece.isJoined))
                    << "drawing " << drawing;
            }
            ASSERT_EQ(begin, contour.end);
        }
        ASSERT_EQ(next, pieces.size());
        ASSERT_EQ(next, runs.size());
    }
}

} // namespace
