#include "converters/detail/drawing/sampling/Sampling.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"
#include "converters/detail/drawing/sampling/EvenSteps.h"
#include "converters/detail/drawing/sampling/SplineChord.h"
#include "converters/detail/drawing/sampling/SplineCorners.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Points = std::vector<Point>;

/// With the start.
Points sampled(const Curve& curve, const SamplingLimits& limits) {
    Points points{startOf(curve)};
    EXPECT_TRUE(appendPoints(curve, limits, points));
    EXPECT_EQ(countPoints(curve, limits), points.size() - 1);
    return points;
}

/// Many points of a curve, which lie as dense as these chords leave it by far less than any
/// tolerance here.
Points dense(const Curve& curve) {
    Points points;
    constexpr int number = 4000;
    for (int i = 0; i <= number; ++i) {
        points.push_back(pointAt(curve, static_cast<double>(i) / number));
    }
    return points;
}

double distanceToSegment(const Point& point, const Point& from, const Point& to) {
    const Vector way = to - from;
    const double square = way.dot(way);
    const double part = square > 0 ? (point - from).dot(way) / square : 0;
    return distance(point, from + std::min(std::max(part, 0.0), 1.0) * way);
}

double distanceToChain(const Point& point, const Points& chain) {
    double least = distance(point, chain.front());
    for (std::size_t i = 1; i < chain.size(); ++i) {
        least = std::min(least, distanceToSegment(point, chain[i - 1], chain[i]));
    }
    return least;
}

/// The largest distance of a point of `points` from `chain`.
double farthestFrom(const Points& chain, const Points& points) {
    double most = 0;
    for (const Point& point : points) {
        most = std::max(most, distanceToChain(point, chain));
    }
    return most;
}

double longestChord(const Points& points) {
    double most = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        most = std::max(most, distance(points[i - 1], points[i]));
    }
    return most;
}

/// Three points within each chord.
Points pointsOfChords(const Points& points) {
    Points result;
    for (std::size_t i = 1; i < points.size(); ++i) {
        for (const double part : {0.25, 0.5, 0.75}) {
            result.push_back(between(points[i - 1], points[i], part));
        }
    }
    return result;
}

TEST(SamplingTest, NoPointOfACurveOrAChordIsFartherThanTheToleranceFromTheOther) {
    RandomCurves random(1);
    for (int i = 0; i < 100; ++i) {
        const Curve curve = random.curve();
        SamplingLimits limits{std::pow(10, random.within(-1.5, 0.5))};
        limits.step = random.oneIn(2) ? infinity : random.within(0.3, 3);
        const Points points = sampled(curve, limits);
        const Points exact = dense(curve);
        ASSERT_LE(farthestFrom(points, exact), limits.tolerance * (1 + 1e-9)) << i;
        ASSERT_LE(longestChord(points), limits.step * (1 + 1e-9)) << i;
        // The dense points are a chain themselves, and jump where a heavy control point is near.
        ASSERT_LE(farthestFrom(exact, pointsOfChords(points)),
                  limits.tolerance + 0.1 * longestChord(exact))
            << i;
    }
}

TEST(SamplingTest, FineStepsKeepTheToleranceAndTheStepToo) {
    RandomCurves random(9);
    for (int i = 0; i < 40; ++i) {
        Curve curve = random.curve();
        if (BSpline* const spline = std::get_if<BSpline>(&curve)) {
            spline->weights.clear();
        }
        SamplingLimits limits{std::pow(10, random.within(-3.5, -2))};
        limits.step = random.oneIn(2) ? infinity : random.within(0.05, 0.5);
        const Points points = sampled(curve, limits);
        ASSERT_LE(farthestFrom(points, dense(curve)), limits.tolerance * (1 + 1e-9)) << i;
        ASSERT_LE(longestChord(points), limits.step * (1 + 1e-9)) << i;
    }
}

TEST(EvenStepsTest, HaveEqualSharesAndEndWhereTheNodesDo) {
    EvenSteps steps;
    steps.begin(10);
    steps.add(11, 1);
    steps.add(11.5, 4);
    steps.add(20, 3);
    EXPECT_EQ(steps.total(), 8);
    EXPECT_EQ(steps.start(), 10);
    EXPECT_EQ(steps.end(), 20);
    for (const std::size_t number : {std::size_t{8}, 3 * EvenSteps::atATime, std::size_t{1}}) {
        std::vector<double> ends;
        EXPECT_TRUE(steps.divide(number, [&](const double* some, std::size_t count) {
            ends.insert(ends.end(), some, some + count);
            return true;
        }));
        ASSERT_EQ(ends.size(), number);
        EXPECT_EQ(ends.back(), 20);
        for (std::size_t i = 0; i < number; ++i) {
            const double sum = 8 * static_cast<double>(i + 1) / static_cast<double>(number);
            const double at = sum <= 1   ? 10 + sum
                              : sum <= 5 ? 11 + (sum - 1) / 8
                                         : 11.5 + (sum - 5) / 3 * 8.5;
            EXPECT_NEAR(ends[i], at, 1e-13);
        }
    }
    EXPECT_FALSE(steps.divide(8, [](const double*, std::size_t) { return false; }));
}

TEST(SamplingTest, PointsLieOnTheCurve) {
    RandomCurves random(2);
    for (int i = 0; i < 300; ++i) {
        const EllipticArc arc = random.arc();
        const Affine round({arc.first.x, arc.first.y, arc.first.z}, arc.second,
                           arc.first.cross(arc.second), arc.centre);
        for (const Point& point : sampled(arc, {0.5})) {
            // |point - centre| in the coordinates of the conjugate half diameters.
            const Vector way = point - arc.centre;
            const Vector normal = round.zAxis();
            const double square = normal.dot(normal);
            const double x = way.cross(arc.second).dot(normal) / square;
            const double y = arc.first.cross(way).dot(normal) / square;
            ASSERT_NEAR(std::hypot(x, y), 1, 1e-6);
        }
    }
}

TEST(SamplingTest, TheLastPointIsAnExactCopyOfTheEnd) {
    RandomCurves random(3);
    for (int i = 0; i < 1000; ++i) {
        const Curve curve = random.curve();
        ASSERT_EQ(sampled(curve, {0.3, random.within(1, 5)}).back(), endOf(curve)) << i;
    }
}

TEST(SamplingTest, LinesAreTheirEndsUnlessThereIsAStep) {
    const Line line{{1, 2, 3}, {1, 2, 4}};
    EXPECT_EQ(sampled(line, {1e-300}), (Points{line.start, line.end}));
    EXPECT_EQ(sampled(line, {0.01, 0.1}).size(), 11U);
    EXPECT_EQ(sampled(line, {0.01, 0.4}).size(), 4U);
    EXPECT_EQ(sampled(line, {0.01, 2}).size(), 2U);
    EXPECT_EQ(sampled(line, {0.01, 0.4})[1], Point(1, 2, 3 + 1. / 3));
    EXPECT_EQ(sampled(Line{{1, 2, 3}, {1, 2, 3}}, {0.01, 0.4}).size(), 2U);
}

TEST(SamplingTest, CirclesGetTheLeastNumberOfEvenChords) {
    const Curve curve = circle({3, 4, 5}, 10);
    for (const double tolerance : {1e-4, 0.01, 0.1}) {
        const Points points = sampled(curve, {tolerance});
        const double chords = static_cast<double>(points.size() - 1);
        EXPECT_LE(10 * (1 - std::cos(pi / chords)), tolerance);
        EXPECT_GT(10 * (1 - std::cos(pi / (chords - 1))), tolerance);
        EXPECT_NEAR(longestChord(points), 20 * std::sin(pi / chords), 1e-13);
    }
    EXPECT_EQ(sampled(circle({0, 0, 0}, 5 / pi), {0.1, 0.1}).size(), 101U);
}

TEST(SamplingTest, ACircleHasSixteenChordsAtLeast) {
    EXPECT_EQ(sampled(circle({0, 0, 0}, 1), {1e6}).size(), 17U);
    EXPECT_EQ(sampled(circle({0, 0, 0}, 1e-9), {0.01}).size(), 17U);
    EXPECT_EQ(sampled(*circularArc({0, 0, 0}, 1, 10, 190), {infinity}).size(), 9U);
    EXPECT_EQ(sampled(*circularArc({0, 0, 0}, 1, 10, 30), {infinity}).size(), 2U);
}

double lengthOfChords(const Points& points) {
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        length += distance(points[i - 1], points[i]);
    }
    return length;
}

TEST(SamplingTest, ChordsKeepTheLengthOfACurveHoweverLargeTheTolerance) {
    RandomCurves random(11);
    double length = 0;
    double chords = 0;
    for (int i = 0; i < 1000; ++i) {
        const Curve curve = random.curve();
        const double exact = lengthOf(curve);
        const double sum = lengthOfChords(sampled(curve, {random.within(0.1, 5)}));
        ASSERT_GE(sum + 1e-9, 0.95 * exact) << i;
        length += exact;
        chords += sum;
    }
    EXPECT_GE(chords, 0.99 * length);
}

TEST(SamplingTest, FlatEllipsesNeedNoMorePointsThanCircles) {
    for (const double ratio : {0.5, 0.1, 1e-3, 1e-6, 1e-9}) {
        const Curve curve = *ellipse({0, 0, 0}, {2, 0, 0}, ratio, {0, 0, 1}, 0, fullTurn);
        EXPECT_LE(sampled(curve, {1}).size(), 21U) << ratio;
        EXPECT_GE(lengthOfChords(sampled(curve, {1})), 0.99 * lengthOf(curve)) << ratio;
    }
}

TEST(SamplingTest, FlatArcsKeepTheirPlaceHoweverFarTheirCentre) {
    const Curve edge = bulgeEdge({1000, 1000, 0}, {1100, 1000, 0}, -3e-9);
    for (const Point& point : sampled(edge, {1e-9})) {
        const double x = (point.x - 1050) / 50;
        EXPECT_NEAR(point.y, 1000 + 1.5e-7 * (1 - x * x), 2e-13);
    }
}

/// The least number of chords whose ends lie on the curve: each as long as it may be, found by
/// trying. With corners given.
std::size_t leastChords(const Curve& curve, double tolerance, const std::vector<double>& stops) {
    constexpr int parts = 400;
    const auto fits = [&](double from, double to) {
        const Point start = pointAt(curve, from);
        const Point end = pointAt(curve, to);
        for (int i = 1; i < parts; ++i) {
            const double t = from + (to - from) * i / parts;
            if (distanceToSegment(pointAt(curve, t), start, end) > tolerance) {
                return false;
            }
        }
        return true;
    };
    std::size_t chords = 0;
    double here = 0;
    for (const double stop : stops) {
        while (here < stop) {
            double low = here;
            double high = stop;
            for (int i = 0; i < 30 && !fits(here, high); ++i) {
                double middle = 0.5 * (low + high);
                while (!fits(here, middle)) {
                    high = middle;
                    middle = 0.5 * (low + high);
                }
                low = middle;
                if (high - low < 1e-6) {
                    high = low;
                }
            }
            here = high;
            ++chords;
        }
    }
    return chords;
}

int percentMore(std::size_t number, std::size_t least) {
    const int percent = static_cast<int>(100 * number / least) - 100;
    testing::Test::RecordProperty("percent_more", percent);
    return percent;
}

TEST(SamplingTest, EllipsesGetFewMorePointsThanTheLeast) {
    RandomCurves random(4);
    std::size_t number = 0;
    std::size_t least = 0;
    for (int i = 0; i < 40; ++i) {
        const EllipticArc arc = random.arc();
        if (isCircular(arc)) {
            continue;
        }
        number += sampled(arc, {0.002}).size() - 1;
        least += leastChords(arc, 0.002, {1.0});
    }
    EXPECT_LE(percentMore(number, least), 5);
}

/// Finding the least takes long, and longer with sanitizers.
#ifdef CONVERTERS_ADDRESS_SANITIZER
constexpr int splinesForLeast = 12;
#else
constexpr int splinesForLeast = 60;
#endif

TEST(SamplingTest, SplinesGetFewMorePointsThanTheLeast) {
    RandomCurves random(5);
    std::size_t number = 0;
    std::size_t least = 0;
    for (int i = 0; i < splinesForLeast; ++i) {
        const BSpline spline = random.spline();
        const SplineSpans spans(spline);
        std::vector<double> stops = cornersOf(spans);
        for (double& stop : stops) {
            stop = (stop - spans.from()) / (spans.to() - spans.from());
        }
        number += sampled(spline, {0.002}).size() - 1;
        least += leastChords(spline, 0.002, stops);
    }
    EXPECT_LE(percentMore(number, least), 12);
}

TEST(SplineChordTest, TheBoundOfAChordIsNeverBelowItsDistance) {
    RandomCurves random(6);
    int tight = 0;
    for (int i = 0; i < 4000; ++i) {
        const BSpline spline = random.spline();
        const SplineSpans spans(spline);
        SplineCurves curves(spans);
        const double corner = cornersOf(spans).front();
        const double a = random.within(spans.from(), corner);
        const double b = a + (corner - a) * std::pow(random.within(0, 1), 3);
        const SplinePlace from = placeOn(curves, a, spans.spanOf(a));
        const SplinePlace to = placeOn(curves, b, spans.spanOf(b));
        const double bound = excessOf(curves, from, to, {1});
        double most = 0;
        for (int j = 1; j < 200; ++j) {
            const Point point = spans.at(a + (b - a) * j / 200);
            most = std::max(most, distanceToSegment(point, from.point, to.point));
        }
        ASSERT_LE(most, bound * (1 + 1e-9) + 1e-12) << i;
        tight += most > 0.9 * bound && most > 1e-9 ? 1 : 0;
    }
    EXPECT_GT(tight, 500);
}

TEST(SplineCornersTest, AreKnotsAsMultipleAsTheDegree) {
    const BSpline spline{
        2,
        {0, 0, 0, 1, 2, 2, 3, 4, 4, 4},
        {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {3, 5, 0}, {4, 0, 0}, {5, 1, 0}, {6, 0, 0}},
        {}};
    EXPECT_EQ(cornersOf(SplineSpans(spline)), (std::vector<double>{2, 4}));
}

TEST(SplineCornersTest, AreCuspsWithinASpanWhereverTheyLie) {
    for (const double at : {0.5, 0.3, 0.0123, 0.999, 0.25}) {
        // (t^2, t^3) for t from -at to 1 - at, by its blossom.
        const double knots[] = {-at, 1 - at};
        BSpline spline{3, {0, 0, 0, 0, 1, 1, 1, 1}, {}, {}};
        for (int i = 0; i <= 3; ++i) {
            const double a = knots[i > 2 ? 1 : 0];
            const double b = knots[i > 1 ? 1 : 0];
            const double c = knots[i > 0 ? 1 : 0];
            spline.controlPoints.push_back({(a * b + b * c + c * a) / 3, a * b * c, 0});
        }
        for (int rational = 0; rational < 2; ++rational) {
            const std::vector<double> corners = cornersOf(SplineSpans(spline));
            ASSERT_EQ(corners.size(), 2U) << at;
            EXPECT_LT(lengthOf(pointAt(spline, corners.front())), 1e-9) << at;
            spline.weights = {1, 1, 1, 1};
        }
    }
}

TEST(SplineCornersTest, AreTipsOfCurvesThatTurnBack) {
    const BSpline hairpin{2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {3, 4, 0}, {0, 0, 0}}, {}};
    EXPECT_EQ(cornersOf(SplineSpans(hairpin)), (std::vector<double>{0.5, 1}));
    EXPECT_EQ(sampled(hairpin, {9}), (Points{{0, 0, 0}, {1.5, 2, 0}, {0, 0, 0}}));
}

TEST(SplineCornersTest, AreWhereAsManyControlPointsAsTheDegreeAreEqual) {
    BSpline spline{
        3, {}, {{0, 0, 0}, {1, 5, 0}, {2, 2, 0}, {2, 2, 0}, {2, 2, 0}, {3, 5, 0}, {4, 0, 0}}, {}};
    for (int i = 0; i < 11; ++i) {
        spline.knots.push_back(i);
    }
    EXPECT_EQ(cornersOf(SplineSpans(spline)), (std::vector<double>{5, 7}));
    const Points points = sampled(spline, {0.1});
    EXPECT_NE(std::find(points.begin(), points.end(), Point(2, 2, 0)), points.end());
}

TEST(SamplingTest, ACornerWhereACurveStandsStillIsThereOnce) {
    // Four equal control points make a whole span one point, but for rounding.
    const Point corners[] = {{-122.79772, 41.66468, 0},
                             {-127.14778, 41.66468, 0},
                             {-128.87016, 46.21777, 0},
                             {-135.05403, 61.66474, 0}};
    BSpline spline{3, {0, 0, 0}, {}, {}};
    for (const Point& corner : corners) {
        spline.controlPoints.insert(spline.controlPoints.end(), 4, corner);
    }
    for (int i = 0; i < 14; ++i) {
        spline.knots.push_back(i / 29.0);
    }
    spline.knots.insert(spline.knots.end(), 3, 13 / 29.0);
    const Points points = sampled(spline, {10});
    ASSERT_EQ(points.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_LE(distance(points[i], corners[i]), 1e-13) << i;
    }
    EXPECT_EQ(points.back(), corners[3]);
}

TEST(SplineCornersTest, SmoothCurvesHaveNoneButTheirEnd) {
    RandomCurves random(7);
    for (int i = 0; i < 300; ++i) {
        BSpline spline = random.spline();
        spline.degree = 3;
        spline.controlPoints.assign(8, {});
        for (Point& point : spline.controlPoints) {
            point = random.point();
        }
        spline.weights.clear();
        spline.knots = {0, 0, 0, 0, 1, 2, 3, 4, 5, 5, 5, 5};
        EXPECT_EQ(cornersOf(SplineSpans(spline)).size(), 1U) << i;
    }
}

TEST(SamplingTest, AStraightSplineIsOneChord) {
    const BSpline spline{
        3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {1, 1, 0}, {9, 9, 0}, {10, 10, 0}}, {1, 2, 3, 1}};
    EXPECT_EQ(sampled(spline, {1e-9}).size(), 2U);
}

TEST(SamplingTest, AChordMayCrossManyKnots) {
    BSpline spline{3, {0, 0, 0, 0}, {{0, 0, 0}}, {}};
    for (int i = 1; i < 1000; ++i) {
        spline.controlPoints.push_back({0.01 * i, 1e-8 * i * i, 0});
        spline.knots.push_back(i < 997 ? i : 997);
    }
    spline.knots.push_back(997);
    EXPECT_LE(sampled(spline, {0.01}).size(), 3U);
}

TEST(SamplingTest, TheEndsOfABrokenSplineAreBothThere) {
    const BSpline spline{1, {0, 0, 1, 1, 2, 2}, {{0, 0, 0}, {1, 0, 0}, {1, 5, 0}, {2, 5, 0}}, {}};
    EXPECT_EQ(sampled(spline, {0.1}), Points(spline.controlPoints));
}

TEST(SamplingTest, ALoopSmallerThanTheToleranceKeepsThreeChords) {
    const BSpline loop{
        3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}, {}};
    EXPECT_GE(sampled(loop, {100}).size(), 4U);
}

/// Whether a curve is refused, with the points untouched.
bool isTooMuch(const Curve& curve, const SamplingLimits& limits) {
    Points points{{1, 2, 3}};
    const bool appended = appendPoints(curve, limits, points);
    EXPECT_EQ(points.size() == 1, !appended);
    EXPECT_EQ(countPoints(curve, limits) == tooManyPoints, !appended);
    return !appended;
}

TEST(SamplingTest, MorePointsThanTheMaximumAreRefused) {
    RandomCurves random(8);
    for (int i = 0; i < 300; ++i) {
        const Curve curve = random.curve();
        SamplingLimits limits{0.01, 0.5};
        const std::size_t number = countPoints(curve, limits);
        limits.maximumPoints = number;
        EXPECT_FALSE(isTooMuch(curve, limits));
        limits.maximumPoints = number - 1;
        EXPECT_TRUE(isTooMuch(curve, limits));
    }
}

TEST(SamplingTest, TolerancesAndStepsTooSmallForAnyNumberAreRefusedAtOnce) {
    const BSpline spline{
        3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {1, 2, 1, 1}};
    const Curve curves[] = {spline, circle({0, 0, 0}, 1),
                            *ellipse({0, 0, 0}, {1, 0, 0}, 0.5, {0, 0, 1}, 0, 2)};
    for (const Curve& curve : curves) {
        EXPECT_TRUE(isTooMuch(curve, {1e-300}));
        EXPECT_TRUE(isTooMuch(curve, {5e-324, 1, 1'000'000'000'000'000}));
        EXPECT_TRUE(isTooMuch(curve, {0.01, 1e-300}));
    }
    EXPECT_TRUE(isTooMuch(Line{{0, 0, 0}, {1, 0, 0}}, {1, 1e-300}));
}

TEST(SamplingTest, WhatIsNotFiniteOrOverflowsIsRefusedAtOnce) {
    const Curve curves[] = {
        Line{{0, 0, 0}, {notANumber, 0, 0}},
        EllipticArc{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, 0, infinity, {0, 0, 0}, {0, 0, 0}},
        EllipticArc{{0, infinity, 0}, {1, 0, 0}, {0, 1, 0}, 0, 1, {0, 0, 0}, {0, 0, 0}},
        circle({0, 0, 0}, 1e308),
        *ellipse({0, 0, 0}, {1e308, 0, 0}, 0.5, {0, 0, 1}, 0, 2),
        BSpline{2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1e308, 0, 0}, {-1e308, 1e308, 0}}, {}},
    };
    for (std::size_t i = 0; i < std::size(curves); ++i) {
        EXPECT_TRUE(isTooMuch(curves[i], {0.01})) << i;
    }
}

TEST(SamplingTest, WhatHasNoExtentHasFewPoints) {
    const EllipticArc point{{1, 1, 1}, {0, 0, 0}, {0, 0, 0}, 0, 6, {1, 1, 1}, {1, 1, 1}};
    EXPECT_LE(sampled(point, {0.01, 0.1}).size(), 8U);
    const EllipticArc flat{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, 0, fullTurn, {1, 0, 0}, {1, 0, 0}};
    EXPECT_LE(sampled(flat, {1e-9}).size(), 8U);
    const BSpline still{1, {0, 0, 1, 1}, {{1, 2, 3}, {1, 2, 3}}, {}};
    EXPECT_LE(sampled(still, {1e-9, 1e-9}).size(), 4U);
}

} // namespace
} // namespace converters::drawing
