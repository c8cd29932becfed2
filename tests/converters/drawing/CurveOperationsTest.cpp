// Random curves and maps: what can be done to curves agrees with what their points are.

#include "converters/detail/drawing/geometry/CurveOperations.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"
#include "tests/converters/drawing/support/PlainSpline.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <cmath>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The length of the chain of chords between `number` steps of the parameter.
double chainLength(const Curve& curve, int number) {
    double sum = 0;
    Point before = startOf(curve);
    for (int i = 1; i <= number; ++i) {
        const Point point = pointAt(curve, static_cast<double>(i) / number);
        sum += distance(before, point);
        before = point;
    }
    return sum;
}

TEST(CurveOperationsTest, APointOfTheImageIsTheImageOfThePoint) {
    RandomCurves random(1);
    for (int i = 0; i < 3000; ++i) {
        const Curve curve = random.curve();
        const Affine map = random.affine();
        const Curve image = transformed(curve, map);
        Curve inPlace = curve;
        transform(inPlace, map);
        for (int j = 0; j < 10; ++j) {
            const double t = random.within(0, 1);
            ASSERT_LT(distance(pointAt(image, t), map(pointAt(curve, t))), 1e-12) << i;
            ASSERT_EQ(pointAt(image, t), pointAt(inPlace, t));
        }
        ASSERT_LT(distance(startOf(image), map(startOf(curve))), 1e-12);
        ASSERT_LT(distance(endOf(image), map(endOf(curve))), 1e-12);
    }
}

TEST(CurveOperationsTest, TheEndsOfAnImageAreExactlyTheImagesOfTheEnds) {
    RandomCurves random(2);
    for (int i = 0; i < 1000; ++i) {
        const Affine map = random.affine();
        const EllipticArc arc = random.arc();
        EXPECT_EQ(startOf(transformed(arc, map)), map(arc.start));
        EXPECT_EQ(endOf(transformed(arc, map)), map(arc.end));
        const Line line = random.line();
        EXPECT_EQ(endOf(transformed(line, map)), map(line.end));
    }
}

TEST(CurveOperationsTest, AReversedCurveIsWalkedTheOtherWay) {
    RandomCurves random(3);
    for (int i = 0; i < 3000; ++i) {
        const Curve curve = random.curve();
        const Curve back = reversed(curve);
        ASSERT_LT(distance(startOf(back), endOf(curve)), 1e-12) << i;
        ASSERT_LT(distance(endOf(back), startOf(curve)), 1e-12) << i;
        for (int j = 0; j < 10; ++j) {
            const double t = random.within(0, 1);
            ASSERT_LT(distance(pointAt(back, t), pointAt(curve, 1 - t)), 1e-11) << i;
        }
    }
}

TEST(CurveOperationsTest, AReversedSplineKeepsItsRangeHoweverFarItsOuterKnotsAre) {
    const BSpline spline{
        2, {0, 0, 0, 0.5, 1, 1, 6e110}, {{0, 0, 0}, {1, 2, 0}, {3, 1, 0}, {4, 0, 0}}, {}};
    const BSpline back = reversed(spline);
    EXPECT_EQ(back.knots, (std::vector<double>{-6e110, 0, 0, 0.5, 1, 1, 1}));
    for (const double t : {0.0, 0.1, 0.5, 0.8, 1.0}) {
        EXPECT_LT(distance(pointAt(Curve(back), t), pointAt(Curve(spline), 1 - t)), 1e-12) << t;
    }
}

TEST(CurveOperationsTest, ParametersOutsideAreTheEnds) {
    RandomCurves random(4);
    for (int i = 0; i < 100; ++i) {
        const Curve curve = random.curve();
        EXPECT_EQ(pointAt(curve, 0), startOf(curve));
        EXPECT_EQ(pointAt(curve, -1), startOf(curve));
        EXPECT_EQ(pointAt(curve, notANumber), startOf(curve));
        EXPECT_EQ(pointAt(curve, 1), endOf(curve));
        EXPECT_EQ(pointAt(curve, infinity), endOf(curve));
    }
}

TEST(CurveOperationsTest, SplinesFollowTheRecursionOfCoxAndDeBoor) {
    RandomCurves random(5);
    for (int i = 0; i < 2000; ++i) {
        const BSpline spline = random.spline();
        const double from = spline.knots[spline.degree];
        const double to = spline.knots[spline.controlPoints.size()];
        for (int j = 0; j <= 10; ++j) {
            const double t = j < 10 ? random.within(0, 1) : 1;
            const Point expected = plainSplinePoint(spline, t < 1 ? from + t * (to - from) : to);
            ASSERT_LT(distance(pointAt(spline, t), expected), 1e-10) << i << " at " << t;
        }
    }
}

TEST(CurveOperationsTest, ASplineWithClampedEndsEndsExactlyInItsControlPoints) {
    const BSpline spline{
        2, {0, 0, 0, 1, 1, 1}, {{0.1, 0.2, 0.3}, {5, 6, 7}, {0.7, 0.1, 0.9}}, {0.3, 1, 0.7}};
    EXPECT_EQ(startOf(spline), spline.controlPoints.front());
    EXPECT_EQ(endOf(spline), spline.controlPoints.back());
}

TEST(CurveOperationsTest, ASplineWithOpenKnotsIsWalkedBetweenItsInnerKnots) {
    // scipy.interpolate.BSpline(range(10), [[0, 0], [1, 3], [4, 1], [6, 2], [7, 0], [9, 1]], 3).
    BSpline spline{3, {}, {{0, 0, 0}, {1, 3, 0}, {4, 1, 0}, {6, 2, 0}, {7, 0, 0}, {9, 1, 0}}, {}};
    for (int i = 0; i < 10; ++i) {
        spline.knots.push_back(i);
    }
    EXPECT_LT(distance(startOf(spline), {4. / 3, 13. / 6, 0}), 1e-15);
    EXPECT_LT(distance(endOf(spline), {43. / 6, 0.5, 0}), 1e-15);
    EXPECT_LT(distance(pointAt(spline, 0.5), {4.958333333333333, 1.5, 0}), 1e-15);
}

TEST(CurveOperationsTest, LengthsAgreeWithThatOfManyChords) {
    RandomCurves random(6);
    for (int i = 0; i < 60; ++i) {
        const Curve curve = random.curve();
        // Chords are too short at corners, and where a heavy control point makes the curve run.
        const double coarse = chainLength(curve, 20000);
        const double fine = chainLength(curve, 40000);
        EXPECT_NEAR(lengthOf(curve), fine, 4 * (fine - coarse) + 1e-8) << i;
    }
}

TEST(CurveOperationsTest, LengthsOfCirclesEllipsesAndParabolasAreKnown) {
    EXPECT_DOUBLE_EQ(lengthOf(circle({5, 5, 5}, 2)), 4 * pi);
    EXPECT_DOUBLE_EQ(lengthOf(*circularArc({0, 0, 0}, 2, 350, 20)), pi / 3);
    // Complete elliptic integrals, as scipy.special.ellipe gives them.
    EXPECT_NEAR(lengthOf(*ellipse({0, 0, 0}, {2, 0, 0}, 0.5, {0, 0, 1}, 0, fullTurn)),
                9.688448220547675, 1e-13);
    EXPECT_NEAR(lengthOf(*ellipse({0, 0, 0}, {1, 0, 0}, 1e-3, {0, 0, 1}, 0, fullTurn)),
                4.000015588104688, 1e-12);
    EXPECT_NEAR(lengthOf(*ellipse({0, 0, 0}, {1, 0, 0}, 0, {0, 0, 1}, 0, fullTurn)), 4, 1e-15);
    // scipy.special.ellipeinc.
    EXPECT_NEAR(lengthOf(*ellipse({0, 0, 0}, {1, 0, 0}, 1e-3, {0, 0, 1}, 0.5, 3)),
                1.8675761304140932, 1e-9);
    // (2x, x^2) for x from 0 to 1.
    const BSpline parabola{2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}}, {}};
    EXPECT_NEAR(lengthOf(parabola), std::sqrt(2.0) + std::log(1 + std::sqrt(2.0)), 1e-9);
}

/// The first quarter of a circle, as a rational curve.
BSpline quarter() {
    return {2, {0, 0, 0, 1, 1, 1}, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {1, std::sqrt(0.5), 1}};
}

TEST(CurveOperationsTest, LengthsAreExactToTheNinthDigitWhereTheSpeedVanishesOrJumps) {
    EXPECT_NEAR(lengthOf(quarter()), pi / 2, 1e-9);
    // A cusp at (0, 0): (x, y) = (t^2, t^3) for t from -1 to 1.
    const BSpline cusp{3,
                       {0, 0, 0, 0, 1, 1, 1, 1},
                       {{1, -1, 0}, {-1. / 3, 1, 0}, {-1. / 3, -1, 0}, {1, 1, 0}},
                       {}};
    EXPECT_NEAR(lengthOf(cusp), 2 * (13 * std::sqrt(13.0) - 8) / 27, 3e-9);
    // There and back.
    const BSpline hairpin{2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {3, 4, 0}, {0, 0, 0}}, {}};
    EXPECT_NEAR(lengthOf(hairpin), 5, 5e-9);
}

TEST(CurveOperationsTest, WhatIsNotFiniteIsToldAndHurtsNothing) {
    const EllipticArc tooLarge{{0, 0, 0}, {1e308, 0, 0}, {0, 1e308, 0}, 0, 6, {0, 0, 0}, {0, 0, 0}};
    const BSpline broken{1, {0, 0, 1, 1}, {{0, 0, 0}, {notANumber, 0, 0}}, {}};
    const Curve curves[] = {tooLarge, broken, Line{{0, 0, 0}, {infinity, 0, 0}}};
    for (const Curve& curve : curves) {
        EXPECT_EQ(isFinite(curve), false);
        pointAt(curve, 0.3);
        lengthOf(curve);
        reversed(curve);
    }
    EXPECT_TRUE(isFinite(Curve(quarter())));
    EXPECT_TRUE(isFinite(Curve(circle({1, 2, 3}, 1e300))));
}

} // namespace
} // namespace converters::drawing
