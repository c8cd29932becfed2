// How entities become contours.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using converters::DrawingPath;
using converters::PathOptions;

/// Lines of these coordinates, "x y x y": each one four numbers.
std::string lines(const std::vector<std::string>& coordinates) {
    std::string text;
    for (const std::string& line : coordinates) {
        std::istringstream numbers(line);
        std::string x1;
        std::string y1;
        std::string x2;
        std::string y2;
        numbers >> x1 >> y1 >> x2 >> y2;
        text += (text.empty() ? "0 LINE  10 " : "  0 LINE  10 ") + x1 + "  20 " + y1 + "  11 " +
                x2 + "  21 " + y2;
    }
    return text;
}

std::string joined(const std::vector<std::string>& coordinates, const PathOptions& options = {}) {
    return describe(pathOf(drawingOf(lines(coordinates)), options));
}

TEST(ReadPathJoining, ASplineIsWalkedBackwardsHoweverFarItsOuterKnotsAre) {
    // The line comes first; the spline ends where it does.
    const DrawingPath path =
        pathOf(drawingOf("0 LINE  10 9  20 0  11 4  21 0  "
                         "0 SPLINE  71 2  40 0  40 0  40 0  40 0.5  40 1  40 1  40 6e110  "
                         "10 0  20 0  10 1  20 2  10 3  20 1  10 4  20 0"));
    ASSERT_EQ(path.contours.size(), 1U);
    EXPECT_EQ(path.points.front().x, 9);
    EXPECT_LT(std::abs(path.points.back().x), 1e-9);
    EXPECT_GT(path.points.size(), 10U);
    EXPECT_EQ(leftOut(path), "");
}

TEST(ReadPathJoining, LinesEndToEndAreOneContour) {
    EXPECT_EQ(joined({"0 0 1 0", "1 0 1 1"}), "(0, 0) (1, 0) (1, 1)\n");
}

TEST(ReadPathJoining, TheFirstEntityTellsTheDirection) {
    EXPECT_EQ(joined({"1 0 0 0", "1 0 1 1", "2 1 1 1"}), "(2, 1) (1, 1) (1, 0) (0, 0)\n");
}

TEST(ReadPathJoining, ContoursAreInTheOrderOfTheirFirstEntities) {
    EXPECT_EQ(joined({"0 0 1 0", "5 5 6 5", "1 0 1 1", "6 5 6 6"}),
              "(0, 0) (1, 0) (1, 1)\n(5, 5) (6, 5) (6, 6)\n");
}

TEST(ReadPathJoining, AContourBackAtItsStartIsClosed) {
    EXPECT_EQ(joined({"0 0 1 0", "1 1 0 0", "1 0 1 1"}), "closed (0, 0) (1, 0) (1, 1) (0, 0)\n");
}

TEST(ReadPathJoining, AClosedContourIsComplete) {
    // What starts at the same corner is another one.
    EXPECT_EQ(joined({"0 0 1 0", "1 0 1 1", "1 1 0 0", "0 0 -1 0", "-1 0 -1 -1", "-1 -1 0 0"}),
              "closed (0, 0) (1, 0) (1, 1) (0, 0)\nclosed (0, 0) (-1, 0) (-1, -1) (0, 0)\n");
}

TEST(ReadPathJoining, WhereThreeMeetTheFirstInTheFileGoesOn) {
    EXPECT_EQ(joined({"0 0 1 0", "1 0 2 1", "1 0 2 0"}), "(0, 0) (1, 0) (2, 1)\n(1, 0) (2, 0)\n");
}

TEST(ReadPathJoining, EndsWithinTheDistanceAreOneCorner) {
    EXPECT_EQ(joined({"0 0 1 0", "1.0005 0 2 0"}), "(0, 0) (1, 0) (2, 0)\n");
    EXPECT_EQ(joined({"0 0 1 0", "1.002 0 2 0"}), "(0, 0) (1, 0)\n(1.002, 0) (2, 0)\n");
    PathOptions options;
    options.joinDistance = 0.005;
    EXPECT_EQ(joined({"0 0 1 0", "1.002 0 2 0"}, options), "(0, 0) (1, 0) (2, 0)\n");
}

TEST(ReadPathJoining, EndsApartByMoreThanTheToleranceStayCorners) {
    PathOptions options;
    options.joinDistance = 0.1;
    EXPECT_EQ(joined({"0 0 1 0", "1.05 0 2 0"}, options), "(0, 0) (1, 0) (1.05, 0) (2, 0)\n");
    EXPECT_EQ(joined({"0 0 1 0", "1 0 1 1", "1 1 0 0.05"}, options),
              "closed (0, 0) (1, 0) (1, 1) (0, 0.05) (0, 0)\n");
}

TEST(ReadPathJoining, OfDistanceZeroJoinsEqualEndsOnly) {
    PathOptions options;
    options.joinDistance = 0;
    EXPECT_EQ(joined({"0 0 1 0", "1 0 2 0", "2.0000001 0 3 0"}, options),
              "(0, 0) (1, 0) (2, 0)\n(2.0000001, 0) (3, 0)\n");
}

TEST(ReadPathJoining, TheDistanceIsMeasuredInSpace) {
    EXPECT_EQ(
        describe(pathOf(drawingOf("0 LINE  10 0  20 0  11 1  21 0  31 5  0 LINE  10 1  20 0  30 5  "
                                  "11 2  21 0  0 LINE  10 1  20 0  30 6  11 3  21 3"))),
        "(0, 0) (1, 0, 5) (2, 0)\n(1, 0, 6) (3, 3)\n");
}

TEST(ReadPathJoining, ArcsAndPolylinesJoinByTheirEnds) {
    const DrawingPath path = pathOf(
        drawingOf("0 LINE  5 1  10 -1  20 5  11 -1  21 0  0 ARC  5 2  10 0  20 0  40 1  50 180  "
                  "51 0  0 LWPOLYLINE  5 3  70 0  10 5  20 5  10 1  20 5  10 1  20 0"));
    ASSERT_EQ(path.contours.size(), 1U);
    ASSERT_EQ(path.pieces.size(), 4U);
    EXPECT_EQ(path.pieces[1].kind, converters::PathCurveKind::arc);
    EXPECT_EQ(path.points.front(), cv::Point3d(-1, 5, 0));
    EXPECT_EQ(path.points.back(), cv::Point3d(5, 5, 0));
    ASSERT_EQ(path.entities.size(), 3U);
    EXPECT_EQ(path.entities[path.pieces[3].entity].handle, 3U);
    EXPECT_NEAR(path.length, 5 + 3.14159265358979 + 5 + 4, 1e-9);
}

TEST(ReadPathJoining, CurvesThatAreWalkedBackwardsLeadBackwards) {
    // The second arc is drawn the other way round; faultOf() walks along the pieces.
    const DrawingPath path = pathOf(
        drawingOf("0 ARC  10 0  20 0  40 1  50 0  51 90  0 ARC  10 0  20 2  40 1  50 180  51 270  "
                  "0 ELLIPSE  10 -1  20 3  11 1  21 0  40 0.5  41 -1.5707963267948966  42 0"));
    EXPECT_FALSE(path.contours.empty());
    ASSERT_GE(path.arcs.size(), 2U);
    EXPECT_EQ(path.arcs[1].normal, cv::Point3d(0, 0, -1));
}

TEST(ReadPathJoining, WhatIsClosedByItselfJoinsNothing) {
    EXPECT_EQ(pathOf(drawingOf("0 CIRCLE  10 0  20 0  40 1  0 LINE  10 1  20 0  11 2  21 0"))
                  .contours.size(),
              2U);
    EXPECT_EQ(describe(pathOf(
                  drawingOf("0 LINE  10 5  20 0  11 0  21 0  0 LWPOLYLINE  70 1  10 0  20 0  10 "
                            "1  20 0  10 1  20 1"))),
              "(5, 0) (0, 0)\nclosed (0, 0) (1, 0) (1, 1) (0, 0)\n");
}

TEST(ReadPathJoining, ANearlyClosedPolylineIsClosed) {
    EXPECT_EQ(describe(pathOf(drawingOf(
                  "0 LWPOLYLINE  70 0  10 0  20 0  10 1  20 0  10 1  20 1  10 0.0004  20 0"))),
              "closed (0, 0) (1, 0) (1, 1) (0, 0)\n");
}

TEST(ReadPathJoining, ALineShorterThanTheDistanceStaysALine) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 LINE  10 0  20 0  11 0.0004  21 0"))),
              "(0, 0) (0.0004, 0)\n");
}

TEST(ReadPathJoining, ATinyContourIsClosedWhenItsEndsAreEqual) {
    EXPECT_EQ(joined({"0 0 0.0009 0", "0.0009 0 0.0009 0.0009", "0.0009 0.0009 0 0"}),
              "closed (0, 0) (0.0009, 0) (0.0009, 0.0009) (0, 0)\n");
}

TEST(ReadPathJoining, EqualEndsComeBeforeNearOnes) {
    EXPECT_EQ(joined({"0 0 1 0", "1.0005 0 2 0", "1 0 2 1"}),
              "(0, 0) (1, 0) (2, 1)\n(1.0005, 0) (2, 0)\n");
    // Where all are near by rounding, the first one.
    EXPECT_EQ(joined({"0 0 1 0", "1.000001 0 2 0", "1 0 2 1"}),
              "(0, 0) (1, 0) (2, 0)\n(1, 0) (2, 1)\n");
}

/// A ring of so many lines, in a mixed order and direction.
std::vector<std::string> mixedRing(int corners, double radius) {
    const auto corner = [&](int i) {
        const double angle = 2 * 3.14159265358979 * (i % corners) / corners;
        return std::to_string(radius * std::cos(angle)) + " " +
               std::to_string(radius * std::sin(angle));
    };
    std::vector<std::string> ring;
    for (int i = 0; i < corners; ++i) {
        const int side = i * 7 % corners;
        ring.push_back(i % 2 == 0 ? corner(side) + " " + corner(side + 1)
                                  : corner(side + 1) + " " + corner(side));
    }
    return ring;
}

TEST(ReadPathJoining, LinesShorterThanTheDistanceAreWalkedOnceInWhateverOrder) {
    for (const int corners : {60, 180, 330}) {
        const std::vector<std::string> ring = mixedRing(corners, 0.025);
        PathOptions exact;
        exact.joinDistance = 0;
        const DrawingPath expected = pathOf(drawingOf(lines(ring)), exact);
        const DrawingPath path = pathOf(drawingOf(lines(ring)));
        ASSERT_EQ(path.contours.size(), 1U) << corners;
        EXPECT_TRUE(path.contours[0].closed);
        EXPECT_EQ(path.points, expected.points) << corners;
    }
}

TEST(ReadPathJoining, LinesShorterThanTheDistanceJoinOnlyEqualEnds) {
    const std::vector<std::string> loose = {"0 0 0.0004 0", "0 0.0005 0.0004 0.0005"};
    EXPECT_EQ(joined(loose), "(0, 0) (0.0004, 0)\n(0, 0.0005) (0.0004, 0.0005)\n");
    // Beside a longer one a gap is nothing.
    EXPECT_EQ(joined({"0 0 1 0", "1.0005 0 1.0009 0", "1.0012 0 2 0"}),
              "(0, 0) (1, 0) (1.0009, 0) (2, 0)\n");
}

TEST(ReadPathJoining, AContourWithAGapIsClosedThoughALongLineBeginsThere) {
    EXPECT_EQ(joined({"0 0 1 0", "1 0 1 1", "1 1 0 0.0005", "0 0.0005 -5 0"}),
              "closed (0, 0) (1, 0) (1, 1) (0, 0)\n(0, 0.0005) (-5, 0)\n");
}

TEST(ReadPathJoining, PointsAreContoursOfTheirOwn) {
    EXPECT_EQ(describe(pathOf(
                  drawingOf(lines({"0 0 1 0"}) + "  0 POINT  10 1  20 0  " + lines({"1 0 1 1"})))),
              "(0, 0) (1, 0) (1, 1)\n(1, 0)\n");
}

TEST(ReadPathJoining, LinesWithoutExtentBelongToTheContourTheyLieOn) {
    const DrawingPath path = pathOf(drawingOf(lines({"1 0 1 0", "0 0 1 0", "1 0 1 1", "7 7 7 7"})));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0) (1, 1)\n(7, 7)\n");
    EXPECT_EQ(path.contours[0].endEntity - path.contours[0].firstEntity, 3U);
    EXPECT_EQ(path.pieces.size(), 3U);
}

TEST(ReadPathJoining, ContoursOfLinesWithoutExtentKeepTheirPlace) {
    EXPECT_EQ(joined({"7 7 7 7", "0 0 1 0"}), "(7, 7)\n(0, 0) (1, 0)\n");
}

TEST(ReadPathJoining, LinesDrawnTwiceAreWalkedThereAndBack) {
    EXPECT_EQ(joined({"0 0 1 0", "0 0 1 0"}), "closed (0, 0) (1, 0) (0, 0)\n");
}

TEST(ReadPathJoining, AThousandLinesThatMeetInOnePointAreAllThere) {
    std::vector<std::string> star;
    for (int i = 0; i < 1000; ++i) {
        star.push_back("0 0 " + std::to_string(1 + i % 7) + " " + std::to_string(i));
    }
    const DrawingPath path = pathOf(drawingOf(lines(star)));
    EXPECT_EQ(path.entities.size(), 1000U);
    EXPECT_EQ(path.contours.size(), 500U);
}

} // namespace
