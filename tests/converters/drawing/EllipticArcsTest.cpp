#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/PrincipalAxes.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(CircleTest, ReturnsExactlyToItsStart) {
    const EllipticArc arc = circle({0.1, 0.2, 0.3}, -0.7);
    EXPECT_EQ(arc.start, Point(0.1 + 0.7, 0.2, 0.3));
    EXPECT_EQ(arc.end, arc.start);
    EXPECT_LT(distance(pointAt(arc, 0.25), {0.1, 0.9, 0.3}), 1e-15);
    EXPECT_TRUE(isCircular(arc));
}

TEST(CircularArcTest, TurnsCounterClockwiseFromOneAngleToTheOther) {
    const EllipticArc arc = *circularArc({1, 1, 7}, 2, 270, 90);
    EXPECT_EQ(arc.start, Point(1, -1, 7));
    EXPECT_EQ(arc.end, Point(1, 3, 7));
    EXPECT_DOUBLE_EQ(arc.sweep, pi);
    EXPECT_LT(distance(pointAt(arc, 0.5), {3, 1, 7}), 1e-15);
    EXPECT_DOUBLE_EQ(circularArc({0, 0, 0}, 1, 10, 5)->sweep, fullTurn - pi / 36);
    EXPECT_DOUBLE_EQ(circularArc({0, 0, 0}, 1, -30, 3630)->sweep, pi / 3);
}

TEST(CircularArcTest, AnglesThatDifferByFullTurnsGiveACircleAndEqualOnesNothing) {
    for (const double end : {360.0, -360.0, 720.0, 360.0000000001, 359.9999999999}) {
        const EllipticArc arc = *circularArc({1, 2, 3}, 4, 0, end);
        EXPECT_EQ(arc.sweep, fullTurn);
        EXPECT_EQ(arc.end, arc.start);
    }
    EXPECT_EQ(circularArc({1, 2, 3}, 4, 33, 393)->sweep, fullTurn);
    EXPECT_FALSE(circularArc({1, 2, 3}, 4, 33, 33));
    EXPECT_FALSE(circularArc({1, 2, 3}, 4, 33, 33.0000000001));
    EXPECT_FALSE(circularArc({1, 2, 3}, 4, 0, notANumber));
    EXPECT_FALSE(circularArc({1, 2, 3}, 4, infinity, 7));
    EXPECT_NEAR(circularArc({1, 2, 3}, 4, 33, 33.001)->sweep, 0.001 / 180 * pi, 1e-16);
}

TEST(EllipseTest, TurnsAboutItsNormalFromItsMajorAxis) {
    const EllipticArc arc = *ellipse({1, 0, 0}, {0, 4, 0}, 0.5, {0, 0, 3}, 0, pi);
    EXPECT_EQ(arc.start, Point(1, 4, 0));
    EXPECT_LT(distance(pointAt(arc, 0.5), {-1, 0, 0}), 1e-15);
    EXPECT_LT(distance(arc.end, {1, -4, 0}), 1e-15);
    const EllipticArc mirrored = *ellipse({1, 0, 0}, {0, 4, 0}, 0.5, {0, 0, -1}, 0, pi);
    EXPECT_LT(distance(pointAt(mirrored, 0.5), {3, 0, 0}), 1e-15);
}

TEST(EllipseTest, TheMinorAxisIsItsPartOfTheMajorOneAlsoAboutASlantedNormal) {
    const EllipticArc arc = *ellipse({1, 0, 0}, {3, 0, 4}, 0.5, {0, 0, 1}, 0, pi);
    EXPECT_LT(distance(pointAt(arc, 0.5), {1, 2.5, 0}), 1e-15);
    EXPECT_LT(distance(arc.end, {-2, 0, -4}), 1e-15);
}

TEST(EllipseTest, ANormalAlongTheMajorAxisLeavesItFlat) {
    const EllipticArc arc = *ellipse({1, 0, 0}, {0, 0, 4}, 0.5, {0, 0, 1}, 0, pi);
    EXPECT_LT(distance(pointAt(arc, 0.5), {1, 0, 0}), 1e-15);
}

TEST(EllipseTest, AFullTurnIsOneWithFewDigitsToo) {
    for (const double end :
         {6.283185, 6.28318530718, -fullTurn, 2 * fullTurn, 6.2831854, 6.28318, 6.28319, 6.2832}) {
        const EllipticArc arc = *ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, 0, end);
        EXPECT_EQ(arc.sweep, fullTurn) << end;
        EXPECT_EQ(arc.end, arc.start);
    }
    EXPECT_EQ(ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, -3.14159, 3.14159)->sweep, fullTurn);
    EXPECT_EQ(ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, 0, 0.00001)->sweep, 0.00001);
    EXPECT_LT(ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, 0, 6.28)->sweep, 6.2800001);
    EXPECT_FALSE(ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, 2, 2));
    EXPECT_FALSE(ellipse({0, 0, 0}, {1, 0, 0}, 0.3, {0, 0, 1}, notANumber, 2));
}

TEST(EllipseTest, ParametersBelowTheStartAreATurnLater) {
    const EllipticArc arc = *ellipse({0, 0, 0}, {2, 0, 0}, 0.5, {0, 0, 1}, 5, 1);
    EXPECT_DOUBLE_EQ(arc.sweep, 1 + fullTurn - 5);
    EXPECT_LT(distance(arc.end, {2 * std::cos(1), std::sin(1), 0}), 1e-14);
}

/// The angle at a point of a circle between the ways to two others, in the plane of x and y.
double angleAt(const Point& point, const Point& a, const Point& b) {
    const Vector toA = a - point;
    const Vector toB = b - point;
    return std::atan2(toA.x * toB.y - toA.y * toB.x, toA.x * toB.x + toA.y * toB.y);
}

TEST(BulgeTest, FromEachPointTheChordIsSeenUnderTheSameAngle) {
    RandomCurves random(1);
    for (int i = 0; i < 3000; ++i) {
        const Point start = random.point();
        Point end = random.point();
        end.z = start.z;
        const double bulge = (random.oneIn(2) ? 1 : -1) * std::pow(10, random.within(-4, 4));
        const EllipticArc arc = std::get<EllipticArc>(bulgeEdge(start, end, bulge));
        ASSERT_EQ(arc.start, start);
        ASSERT_EQ(arc.end, end);
        ASSERT_TRUE(isCircular(arc));
        ASSERT_DOUBLE_EQ(arc.sweep, 4 * std::atan(bulge));
        // Half of what is left of a full turn, by the theorem of the inscribed angle.
        const double expected = (bulge < 0 ? 1 : -1) * (pi - std::fabs(arc.sweep) / 2);
        for (const double t : {0.1, 0.4, 0.5, 0.93}) {
            const Point point = pointAt(arc, t);
            ASSERT_NEAR(angleAt(point, start, end), expected, 1e-9 + 1e-12 * std::fabs(bulge))
                << bulge;
            ASSERT_NEAR(point.z, start.z, 1e-14);
        }
    }
}

TEST(BulgeTest, TheArrowOverTheChordIsBulgeTimesHalfTheChord) {
    RandomCurves random(2);
    for (int i = 0; i < 3000; ++i) {
        const Point start = random.point();
        Point end = random.point();
        end.z = start.z;
        const double bulge = (random.oneIn(2) ? 1 : -1) * std::pow(10, random.within(-9.9, 6));
        const Curve edge = bulgeEdge(start, end, bulge);
        const Vector half = 0.5 * (end - start);
        // A positive bulge turns left, so that the arc lies to the right of its chord.
        const Point top = start + half + bulge * Vector(half.y, -half.x, 0);
        ASSERT_LT(distance(pointAt(edge, 0.5), top), 1e-14 * (20 + lengthOf(top))) << bulge;
    }
}

TEST(BulgeTest, TinyBulgesNeitherLoseTheEndsNorThePointsBetween) {
    const Curve edge = bulgeEdge({1000, 1000, 0}, {1010, 1000, 0}, 1e-9);
    for (int i = 1; i < 10; ++i) {
        EXPECT_NEAR(pointAt(edge, i / 10.).x, 1000 + i, 1e-12);
        EXPECT_NEAR(pointAt(edge, i / 10.).y, 1000, 1e-8);
    }
    EXPECT_NEAR(lengthOf(edge), 10, 1e-14);
}

TEST(BulgeTest, WhatBendsNothingOrIsNoNumberIsStraight) {
    for (const double bulge : {0.0, 1e-11, -1e-300, infinity, notANumber, 1e308}) {
        EXPECT_TRUE(std::holds_alternative<Line>(bulgeEdge({0, 0, 0}, {1e3, 1, 0}, bulge)));
    }
    EXPECT_TRUE(std::holds_alternative<Line>(bulgeEdge({1, 1, 0}, {1, 1, 0}, 1)));
    EXPECT_TRUE(std::holds_alternative<Line>(bulgeEdge({1, notANumber, 0}, {1, 1, 0}, 1)));
}

TEST(PathArcTest, TurnsCounterClockwiseAboutItsNormal) {
    const PathArc plain = pathArc(circle({1, 2, 3}, 4));
    EXPECT_EQ(plain.normal, cv::Point3d(0, 0, 1));
    EXPECT_EQ(plain.radius, 4);
    EXPECT_EQ(plain.sweep, fullTurn);
    EXPECT_EQ(pathArc(reversed(circle({1, 2, 3}, 4))).normal, cv::Point3d(0, 0, -1));
    RandomCurves random(3);
    for (int i = 0; i < 1000; ++i) {
        const Affine tilt = *Affine::fromExtrusion(random.point());
        const double bulge = random.within(-2, 2);
        const EllipticArc arc = transformed(
            std::get<EllipticArc>(bulgeEdge({0, 0, 0}, {random.within(1, 9), 2, 0}, bulge)), tilt);
        const PathArc path = pathArc(arc);
        EXPECT_GT(path.sweep, 0);
        const Vector toStart = arc.start - path.centre;
        const Vector across = path.normal.cross(toStart);
        const Point expected =
            path.centre + std::cos(path.sweep / 3) * toStart + std::sin(path.sweep / 3) * across;
        EXPECT_LT(distance(pointAt(arc, 1. / 3), expected), 1e-11);
    }
}

TEST(PathEllipticArcTest, IsTheSameCurveWithPerpendicularAxes) {
    RandomCurves random(4);
    for (int i = 0; i < 3000; ++i) {
        const EllipticArc arc = random.arc();
        const PathEllipticArc path = pathEllipticArc(arc);
        const double size = lengthOf(path.major);
        ASSERT_NEAR(path.major.dot(path.minor), 0, 1e-14 * size * size);
        ASSERT_GE(size * (1 + 1e-15), lengthOf(path.minor));
        ASSERT_GT(path.sweep, 0);
        ASSERT_LE(path.sweep, fullTurn);
        for (const double t : {0.0, 0.2, 0.7, 1.0}) {
            const double angle = path.start + t * path.sweep;
            const Point point =
                path.centre + std::cos(angle) * path.major + std::sin(angle) * path.minor;
            ASSERT_LT(distance(point, pointAt(arc, t)), 1e-13 * (10 + size)) << i;
        }
    }
}

TEST(PathEllipticArcTest, AxesThatArePerpendicularStayAsTheyAre) {
    const EllipticArc wide = *ellipse({0, 0, 0}, {0.3, 0.1, 0}, 0.7, {0, 0, 1}, 0.5, 2);
    EXPECT_EQ(pathEllipticArc(wide).major, cv::Point3d(0.3, 0.1, 0));
    EXPECT_EQ(pathEllipticArc(wide).start, 0.5);
    const EllipticArc high = *ellipse({0, 0, 0}, {0.3, 0.1, 0}, 2, {0, 0, 1}, 0.5, 2);
    EXPECT_EQ(pathEllipticArc(high).major, cv::Point3d(high.second));
    EXPECT_EQ(pathEllipticArc(high).minor, cv::Point3d(-high.first));
}

TEST(PathEllipticArcTest, AnEllipseSeenFromItsEdgeHasNoMinorAxis) {
    const EllipticArc arc{{0, 0, 0}, {3, 0, 0}, {4, 0, 0}, 0, fullTurn, {3, 0, 0}, {3, 0, 0}};
    const PathEllipticArc path = pathEllipticArc(arc);
    EXPECT_NEAR(lengthOf(path.major), 5, 1e-14);
    EXPECT_NEAR(lengthOf(path.minor), 0, 1e-14);
    EXPECT_NEAR(lengthOf(arc), 20, 1e-9);
}

TEST(PrincipalAxesTest, LengthsThatOverflowWhenSquaredAreTaken) {
    for (const double size : {1e-200, 1e200}) {
        const EllipticArc arc{{0, 0, 0}, {size, 0, 0}, {size, size, 0}, 0, 1, {}, {}};
        const PrincipalAxes axes = principalAxesOf(arc);
        EXPECT_NEAR(lengthOf(axes.major) / size, 1.618033988749895, 1e-14);
        EXPECT_NEAR(lengthOf(axes.minor) / size, 0.618033988749895, 1e-14);
    }
}

TEST(IsCircularTest, TellsWhatScalingBent) {
    const EllipticArc round = *circularArc({1, 2, 3}, 5, 10, 70);
    const Affine turned = Affine::ofInsert({{1, 1, 1}, {-2, 2, 2}, 33, {1, 2, 3}});
    EXPECT_TRUE(isCircular(transformed(round, turned)));
    EXPECT_FALSE(isCircular(transformed(round, Affine::ofInsert({{1, 1, 1}, {2, 2.00001, 2}}))));
    EXPECT_FALSE(isCircular(transformed(round, Affine::scaling(0))));
}

} // namespace
} // namespace converters::drawing
