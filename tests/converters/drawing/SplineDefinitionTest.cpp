#include "converters/detail/drawing/geometry/SplineDefinition.h"

#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const std::vector<Point> fivePoints = {{0, 0, 0}, {1, 2, 0}, {3, 3, 1}, {4, 0, 0}, {7, 1, 2}};

SplineDefinition cubic(std::vector<Point> controlPoints, std::vector<double> knots = {}) {
    SplineDefinition definition;
    definition.controlPoints = std::move(controlPoints);
    definition.knots = std::move(knots);
    return definition;
}

SplineDefinition closedCubic(std::vector<Point> controlPoints, std::vector<double> knots) {
    SplineDefinition definition = cubic(std::move(controlPoints), std::move(knots));
    definition.closed = true;
    return definition;
}

SplineDefinition fit(std::vector<Point> points) {
    SplineDefinition definition;
    definition.fitPoints = std::move(points);
    return definition;
}

std::vector<double> upTo(int last) {
    std::vector<double> result;
    for (int i = 0; i <= last; ++i) {
        result.push_back(i);
    }
    return result;
}

void expectPoints(const BSpline& spline, const std::vector<Point>& expected) {
    const double at[] = {0.1, 0.37, 0.8};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_LT(distance(pointAt(spline, at[i]), expected[i]), 1e-14) << at[i];
    }
}

TEST(SplineFromTest, ABSplineWithAllKnotsIsTakenAsItStands) {
    SplineDefinition definition = cubic(fivePoints, {0, 0, 0, 0, 0.3, 1, 1, 1, 1});
    definition.weights = {1, 2, 1, 0.5, 1};
    const BSpline spline = *splineFrom(definition);
    EXPECT_EQ(spline.degree, 3U);
    EXPECT_EQ(spline.knots, definition.knots);
    EXPECT_EQ(spline.weights, definition.weights);
    EXPECT_EQ(spline.controlPoints, fivePoints);
}

TEST(SplineFromTest, MissingKnotsAreUniformWithClampedEnds) {
    EXPECT_EQ(splineFrom(cubic(fivePoints))->knots,
              (std::vector<double>{0, 0, 0, 0, 1, 2, 2, 2, 2}));
    const std::vector<Point> four(fivePoints.begin(), fivePoints.end() - 1);
    EXPECT_EQ(splineFrom(cubic(four))->knots, (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}));
}

TEST(SplineFromTest, KnotsWithoutTheFirstAndTheLastAreCompleted) {
    EXPECT_EQ(splineFrom(cubic(fivePoints, {2, 2, 2, 3, 5, 5, 5}))->knots,
              (std::vector<double>{2, 2, 2, 2, 3, 5, 5, 5, 5}));
}

TEST(SplineFromTest, ClosedOnesMayLeaveOutWhatRepeats) {
    std::vector<Point> repeated = fivePoints;
    repeated.insert(repeated.end(), fivePoints.begin(), fivePoints.begin() + 3);
    const BSpline whole = *splineFrom(closedCubic(repeated, upTo(11)));
    const BSpline withoutPoints = *splineFrom(closedCubic(fivePoints, upTo(11)));
    const BSpline withoutKnots = *splineFrom(closedCubic(fivePoints, upTo(5)));
    EXPECT_LT(distance(startOf(whole), endOf(whole)), 1e-15);
    EXPECT_EQ(withoutPoints.controlPoints, whole.controlPoints);
    EXPECT_EQ(withoutKnots.controlPoints, whole.controlPoints);
    EXPECT_EQ(withoutKnots.knots.size(), whole.knots.size());
    for (const double t : {0.0, 0.2, 0.5, 0.77, 1.0}) {
        EXPECT_LT(distance(pointAt(withoutPoints, t), pointAt(whole, t)), 1e-14);
        EXPECT_LT(distance(pointAt(withoutKnots, t), pointAt(whole, t)), 1e-14);
    }
}

TEST(SplineFromTest, WeightsOfClosedOnesRepeatToo) {
    SplineDefinition definition = closedCubic(fivePoints, {0, 0.5, 2, 3, 4, 5});
    definition.weights = {1, 2, 3, 4, 5};
    const BSpline spline = *splineFrom(definition);
    EXPECT_EQ(spline.weights, (std::vector<double>{1, 2, 3, 4, 5, 1, 2, 3}));
    EXPECT_EQ(spline.knots, (std::vector<double>{-3, -2, -1, 0, 0.5, 2, 3, 4, 5, 5.5, 7, 8}));
    EXPECT_LT(distance(startOf(spline), endOf(spline)), 1e-15);
}

TEST(SplineFromTest, WeightsThatAreAllEqualAreLeftOut) {
    SplineDefinition definition = cubic(fivePoints);
    definition.weights = {3, 3, 3, 3, 3};
    EXPECT_TRUE(splineFrom(definition)->weights.empty());
}

TEST(SplineFromTest, KnotsThatFallByRoundingAreMadeEqual) {
    const double third = 1.0 / 3;
    for (const double rounding : {1e-12, 2e-6}) {
        const BSpline spline =
            *splineFrom(cubic({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {3, 1, 0}, {4, 5, 0}, {5, 5, 0}},
                              {0, 0, 0, 0, third, third - rounding, 1, 1, 1, 1}));
        EXPECT_EQ(spline.knots[5], third);
    }
}

TEST(SplineFromTest, WhatIsBrokenIsTold) {
    const std::vector<double> knots = {0, 0, 0, 0, 1, 2, 2, 2, 2};
    const auto isBroken = [](SplineDefinition definition) {
        return !splineFrom(std::move(definition)).has_value();
    };
    ASSERT_FALSE(isBroken(cubic(fivePoints, knots)));
    EXPECT_TRUE(isBroken({}));
    EXPECT_TRUE(isBroken(cubic({{1, 2, 3}})));
    EXPECT_TRUE(isBroken(cubic({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {0, 0, 0, 0, 2, 1, 2, 2, 2})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {0, 0, 0, 0, 0, 0, 0, 0, 0})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {0, 0, 0, 0, 1, infinity, 2, 2, 2})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {-1e308, -1e308, 0, 0, 1, 2, 2, 1e308, 1e308})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {0, 0, 0, 0, 1, 2, 2, 2, 1.1e300})));
    EXPECT_FALSE(isBroken(cubic(fivePoints, {0, 0, 0, 0, 1, 2, 2, 2, 1e300})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {1, 1, 1, 1, 1, 1 + 1e-13, 2, 2, 2})));
    EXPECT_TRUE(isBroken(cubic(fivePoints, {0, 1, 2})));
    EXPECT_TRUE(isBroken(closedCubic(fivePoints, upTo(9))));
    EXPECT_TRUE(isBroken(cubic({{0, 0, 0}, {1, 1, 1}, {2, notANumber, 0}, {3, 3, 3}})));
    for (const long degree : {0L, -3L, 5L, 32L, 100000L, std::numeric_limits<long>::max()}) {
        SplineDefinition definition = cubic(fivePoints);
        definition.degree = degree;
        EXPECT_TRUE(isBroken(definition)) << degree;
    }
    for (const double weight : {0.0, -1.0, notANumber, infinity, 1e-13, 1e13}) {
        SplineDefinition definition = cubic(fivePoints, knots);
        definition.weights = {1, 1, weight, 1, 1};
        EXPECT_TRUE(isBroken(definition)) << weight;
    }
    SplineDefinition definition = cubic(fivePoints, knots);
    definition.weights = {1, 1};
    EXPECT_TRUE(isBroken(definition));
}

TEST(SplineFromTest, BrokenControlPointsGiveWayToFitPoints) {
    SplineDefinition definition = fit(fivePoints);
    definition.controlPoints = {{1, 2, 3}};
    EXPECT_EQ(endOf(*splineFrom(definition)), fivePoints.back());
}

TEST(SplineFromTest, TheDegreeOfFitPointsDoesNotMatter) {
    SplineDefinition definition = fit(fivePoints);
    definition.degree = 77;
    EXPECT_EQ(splineFrom(definition)->degree, 3U);
}

// Expected points of scipy.interpolate.CubicSpline at 0.1, 0.37 and 0.8 of the range.
TEST(FitSplineTest, EndsWithoutTangentsAreNatural) {
    expectPoints(*splineFrom(fit(fivePoints)),
                 {{0.41442807302690454, 1.077247416897359, -0.13263131915356813},
                  {2.770801344786743, 3.0656016217822017, 0.9378421873270718},
                  {4.83787847358486, -0.25053190005844217, 0.30383509511300844}});
}

TEST(FitSplineTest, TangentsHaveTheLengthOfAUnitOfChord) {
    SplineDefinition definition = fit(fivePoints);
    definition.startTangent = Vector(17, 0, 0);
    definition.endTangent = Vector(0, 0.3, 0.4);
    expectPoints(*splineFrom(definition),
                 {{0.6476691975324467, 0.7552344736408352, -0.07864469183647528},
                  {2.763066123434584, 3.097869255823757, 0.9333316336538844},
                  {5.291051316602105, -0.19043831080048174, 0.32232383437110534}});
    definition.endTangent = Vector(0, 0, 0);
    expectPoints(*splineFrom(definition),
                 {{0.6516806267485016, 0.7556042985243884, -0.07846060519444177},
                  {2.7480228752870253, 3.0964823766854765, 0.9326412909137761},
                  {4.825229522028898, -0.23338372542853997, 0.30094702193582834}});
}

TEST(FitSplineTest, ClosedOnesAreSmoothWhereTheyClose) {
    SplineDefinition definition = fit(fivePoints);
    definition.closed = true;
    const BSpline spline = *splineFrom(definition);
    expectPoints(spline, {{0.7319453967865839, 1.6867088266063508, -0.09552337431900938},
                          {3.5957747523098718, 0.7461405253565689, 0.19510243831731233},
                          {3.9734075848827426, 0.25242623205446857, 1.7203426790646077}});
    EXPECT_EQ(startOf(spline), endOf(spline));
    definition.fitPoints.push_back(fivePoints.front());
    EXPECT_EQ(splineFrom(definition)->controlPoints, spline.controlPoints);
}

TEST(FitSplineTest, PassesThroughItsPointsInOrder) {
    RandomCurves random(1);
    for (int i = 0; i < 300; ++i) {
        std::vector<Point> points;
        double scale = 1;
        for (std::size_t number = 2 + random.below(20); number > 0; --number) {
            points.push_back(scale * random.point());
            scale = std::pow(10, random.within(-3, 3));
        }
        const bool closed = random.oneIn(2);
        const BSpline spline =
            *fitSpline(points, random.oneIn(2) ? std::optional(random.point()) : std::nullopt,
                       std::nullopt, closed);
        double parameter = 0;
        for (std::size_t j = 0; j < points.size(); ++j) {
            parameter += j > 0 ? distance(points[j - 1], points[j]) : 0;
            EXPECT_LT(distance(pointAt(spline, parameter / spline.knots.back()), points[j]),
                      1e-10 * scale + 1e-9);
        }
        EXPECT_EQ(endOf(spline), closed ? points.front() : points.back());
    }
}

TEST(FitSplineTest, TwoPointsAreAStraightLine) {
    const BSpline spline = *splineFrom(fit({{1, 2, 3}, {4, 6, 3}}));
    EXPECT_LT(distance(pointAt(spline, 0.5), {2.5, 4, 3}), 1e-15);
    EXPECT_DOUBLE_EQ(lengthOf(spline), 5);
}

TEST(FitSplineTest, EqualNeighboursCountOnce) {
    std::vector<Point> points = fivePoints;
    points.insert(points.begin() + 2, 3, points[2]);
    points.insert(points.begin(), points.front());
    points.push_back(points.back());
    EXPECT_EQ(splineFrom(fit(points))->controlPoints, splineFrom(fit(fivePoints))->controlPoints);
}

TEST(FitSplineTest, FewerThanTwoPointsAndNoNumbersAreBroken) {
    EXPECT_FALSE(splineFrom(fit({})));
    EXPECT_FALSE(splineFrom(fit({{1, 2, 3}})));
    EXPECT_FALSE(splineFrom(fit({{1, 2, 3}, {1, 2, 3}})));
    EXPECT_FALSE(splineFrom(fit({{1, 2, 3}, {1, 2, infinity}})));
    EXPECT_FALSE(splineFrom(fit({{-1e308, 2, 3}, {1e308, 2, 3}, {0, 0, 0}})));
}

} // namespace
} // namespace converters::drawing
