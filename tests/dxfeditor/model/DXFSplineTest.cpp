#include "dxfeditor/DXFSpline.h"

#include "dxfeditor/detail/walking/TruncatedCount.h"
#include "tests/support/CloneOf.h"
#include "tests/support/ReferenceSpline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

namespace {

using Points = std::vector<cv::Point_<double>>;

static_assert(std::is_aggregate_v<DXFControlPoint>);
static_assert(offsetof(DXFControlPoint, x) == 0 && offsetof(DXFControlPoint, y) == 8 &&
              offsetof(DXFControlPoint, z) == 16 && offsetof(DXFControlPoint, w) == 24);

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

DXFSpline spline(unsigned degree, const std::vector<double>& knots,
                 const std::vector<DXFControlPoint>& controls) {
    DXFSpline result(degree, 0, 0, 0, 0);
    for (const double knot : knots) {
        result.appendKnot(knot);
    }
    for (const DXFControlPoint& control : controls) {
        result.appendControlPoint(control.x, control.y, control.z, control.w);
    }
    return result;
}

/// A straight leg of this length in one span, of degree 1.
DXFSpline leg(double length) {
    return spline(1, {0, 0, 1, 1}, {{0, 0, 0, 1}, {length, 0, 0, 1}});
}

DXFSpline quarterCircle() {
    return spline(2, {0, 0, 0, 1, 1, 1}, {{1, 0, 0, 1}, {1, 1, 0, std::sqrt(2) / 2}, {0, 1, 0, 1}});
}

bool same(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool same(const cv::Point_<double>& a, const cv::Point_<double>& b) {
    return same(a.x, b.x) && same(a.y, b.y);
}

void expectNear(const cv::Point_<double>& actual, const cv::Point_<double>& expected,
                double tolerance) {
    ASSERT_NEAR(actual.x, expected.x, tolerance);
    ASSERT_NEAR(actual.y, expected.y, tolerance);
}

TEST(TruncatedCount, TruncatesTowardsZero) {
    EXPECT_EQ(dxfeditor::truncatedCount(3.99), 3);
    EXPECT_EQ(dxfeditor::truncatedCount(-3.99), -3);
    EXPECT_EQ(dxfeditor::truncatedCount(-0.5), 0);
}

TEST(TruncatedCount, TakesTheWholeRangeOf32Bits) {
    EXPECT_EQ(dxfeditor::truncatedCount(2147483647.9), 2147483647);
    EXPECT_EQ(dxfeditor::truncatedCount(-2147483648.9), -2147483647 - 1);
}

TEST(TruncatedCount, IsZeroForWhatDoesNotFitOrIsNoNumber) {
    for (const double value : {2147483648.0, -2147483649.0, 4294967296.0 + 7, 1e300, -1e300,
                               infinity, -infinity, nan, -nan}) {
        EXPECT_EQ(dxfeditor::truncatedCount(value), 0) << value;
    }
}

TEST(DXFSpline, KeepsWhatItIsGivenInOrder) {
    DXFSpline s(3, 0, 0, 0, 11);
    s.appendKnot(2);
    s.appendKnot(1);
    s.appendControlPoint(1, 2, 3, 4);
    s.appendControlPoint(5, 6, 7, 8);
    s.appendFitPoint(1, 2, 3);
    s.appendFitPoint(4, 5, 6);
    EXPECT_EQ(s.degree(), 3U);
    EXPECT_EQ(s.flags(), 11);
    EXPECT_EQ(s.knots(), (std::vector<double>{2, 1}));
    ASSERT_EQ(s.controlPoints().size(), 2U);
    EXPECT_EQ(s.controlPoints()[0].x, 1);
    EXPECT_EQ(s.controlPoints()[0].y, 2);
    EXPECT_EQ(s.controlPoints()[0].z, 3);
    EXPECT_EQ(s.controlPoints()[0].w, 4);
    EXPECT_EQ(s.controlPoints()[1].w, 8);
    EXPECT_EQ(s.fitPoints(), (std::vector<cv::Point3_<double>>{{1, 2, 3}, {4, 5, 6}}));
}

TEST(DXFSpline, IgnoresTheCountsOfItsConstructor) {
    const unsigned many = 0xFFFFFFFF;
    const DXFSpline s(3, many, many, many, 0);
    EXPECT_TRUE(s.knots().empty());
    EXPECT_TRUE(s.controlPoints().empty());
    EXPECT_TRUE(s.fitPoints().empty());
}

TEST(DXFSpline, CloneHasKnotsAndPointsOfItsOwn) {
    DXFSpline s = quarterCircle();
    s.appendFitPoint(7, 8, 9);
    const std::unique_ptr<DXFSpline> clone = cloneOf(s);
    s.appendKnot(99);
    s.appendControlPoint(9, 9, 9, 9);
    s.appendFitPoint(9, 9, 9);
    EXPECT_EQ(clone->knots().size(), 6U);
    EXPECT_EQ(clone->controlPoints().size(), 3U);
    EXPECT_EQ(clone->fitPoints().size(), 1U);
    EXPECT_EQ(clone->degree(), 2U);
    EXPECT_EQ(clone->evaluate(0.3), quarterCircle().evaluate(0.3));
}

TEST(DXFSpline, IsNotChangedBySetup) {
    DXFSpline s = quarterCircle();
    s.setup();
    EXPECT_EQ(s.sample(0.1), quarterCircle().sample(0.1));
}

TEST(SplineSamples, OfTwoLegsHas21PointsThatRunAlongThem) {
    const DXFSpline s = spline(1, {0, 0, 1, 2, 2}, {{0, 0, 0, 1}, {1, 0, 0, 1}, {1, 1, 0, 1}});
    const Points points = s.sample(0.1);
    ASSERT_EQ(points.size(), 21U);
    EXPECT_EQ(points.front(), cv::Point_<double>(0, 0));
    EXPECT_EQ(points[10], cv::Point_<double>(1, 0));
    EXPECT_EQ(points.back(), cv::Point_<double>(1, 1));
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double along = static_cast<double>(i) * 0.1;
        expectNear(points[i], {std::min(along, 1.0), std::max(along - 1.0, 0.0)}, 1e-14);
    }
    EXPECT_EQ(s.evaluate(0), cv::Point_<double>(0, 0));
    EXPECT_EQ(s.evaluate(2), cv::Point_<double>(1, 1));
}

TEST(DXFSplineEvaluate, OfARationalQuadraticIsAQuarterCircle) {
    const DXFSpline s = quarterCircle();
    for (int i = 0; i <= 100; ++i) {
        const cv::Point_<double> point = s.evaluate(i / 100.0);
        EXPECT_NEAR(std::hypot(point.x, point.y), 1.0, 1e-15 * 4);
    }
    EXPECT_EQ(s.evaluate(0), cv::Point_<double>(1, 0));
    EXPECT_EQ(s.evaluate(1), cv::Point_<double>(0, 1));
}

TEST(SplineSamples, OfACurveThatCannotBeEvaluatedIsItsFitPoints) {
    DXFSpline s = spline(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0, 1}, {1, 0, 0, 1}, {1, 1, 0, 1}});
    s.appendFitPoint(1, 2, 3);
    s.appendFitPoint(4, 5, 6);
    EXPECT_EQ(s.sample(0.1), (Points{{1, 2}, {4, 5}}));
    EXPECT_EQ(s.sampleCount(0.1), 2U);
    EXPECT_EQ(s.evaluate(0.5), cv::Point_<double>(0, 0));
}

TEST(SplineSamples, OfACurveWithoutAnythingIsEmpty) {
    const DXFSpline s(3, 0, 0, 0, 0);
    EXPECT_TRUE(s.sample(0.1).empty());
    EXPECT_EQ(s.sampleCount(0.1), 0U);
    EXPECT_EQ(s.evaluate(0), cv::Point_<double>(0, 0));
    EXPECT_TRUE(DXFSpline(0, 0, 0, 0, 0).sample(0.1).empty());
}

TEST(SplineSamples, OfACurveThatCanBeEvaluatedLeavesFitPointsAside) {
    DXFSpline s = leg(1);
    s.appendFitPoint(50, 60, 70);
    EXPECT_EQ(s.sample(0.1), leg(1).sample(0.1));
}

TEST(SplineSamples, NeedsOneKnotMoreThanControlPointsAndDegree) {
    const std::vector<DXFControlPoint> controls = {{1, 1, 0, 1}, {2, 2, 0, 1}};
    EXPECT_TRUE(spline(1, {0, 0, 1}, controls).sample(0.1).empty());
    EXPECT_EQ(spline(1, {0, 0, 1, 1}, controls).sample(0.1).size(), 15U);
    EXPECT_EQ(spline(1, {0, 0, 1, 1, 1}, controls).sample(0.1).size(), 15U);
}

TEST(SplineSamples, TakesFourStepsAtLeast) {
    EXPECT_EQ(leg(0.25).sample(0.1).size(), 5U);
    EXPECT_EQ(leg(0.0).sample(0.1).size(), 5U);
    EXPECT_EQ(leg(0.45).sample(0.1).size(), 5U);
    EXPECT_EQ(leg(0.55).sample(0.1).size(), 6U);
}

TEST(SplineSamples, OfASingleControlPointRepeatsIt) {
    EXPECT_EQ(spline(0, {0, 1}, {{3, 4, 5, 2}}).sample(0.1), Points(5, {3, 4}));
}

TEST(SplineSamples, TakesFourStepsWhenTheCountIsNoNumberOrDoesNotFit32Bits) {
    for (const double length : {3e8, 214748364.8, 1e15, 1e200, 1e308, infinity, nan}) {
        EXPECT_EQ(leg(length).sample(0.1).size(), 5U) << length;
        EXPECT_EQ(leg(length).sampleCount(0.1), 5U) << length;
    }
    for (const double step : {0.0, -0.0, -0.1, nan, infinity, -infinity, 5e-324, 1e300}) {
        EXPECT_EQ(leg(1).sample(step).size(), 5U) << step;
    }
    EXPECT_EQ(leg(0).sample(0.0).size(), 5U);
}

TEST(SplineSamples, CountsUpToTheLastStepThatFits32Bits) {
    EXPECT_EQ(leg(2147483646.0).sampleCount(1), 2147483647U);
    EXPECT_EQ(leg(2147483647.0).sampleCount(1), 2147483648U);
    EXPECT_EQ(leg(2147483648.0).sampleCount(1), 5U);
}

TEST(SplineSamples, MeasuresTheControlPolygonInThePlane) {
    const DXFSpline s =
        spline(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0, 1}, {3, 4, 900, 1}, {3, 5, -900, 1}});
    EXPECT_EQ(s.sample(0.5).size(), 13U);
}

TEST(SplineSamples, HasPointsAtEqualStepsOfTheParameter) {
    const DXFSpline s = spline(2, {0, 1, 2.5, 3, 7, 8}, {{0, 0, 0, 1}, {3, 4, 0, 2}, {3, 5, 0, 3}});
    const Points points = s.sample(0.5);
    ASSERT_EQ(points.size(), 13U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(points[i], s.evaluate(2.5 + static_cast<double>(i) * ((3 - 2.5) / 12)));
    }
}

TEST(DXFSplineEvaluate, DoesNotUseHeights) {
    EXPECT_EQ(spline(1, {0, 0, 1, 1}, {{0, 0, nan, 1}, {1, 1, infinity, 1}}).evaluate(0.5),
              cv::Point_<double>(0.5, 0.5));
}

TEST(DXFSplineEvaluate, AboveTheLastUsableKnotExtrapolatesTheLastSpan) {
    const DXFSpline s = spline(1, {0, 0, 1, 2, 2}, {{0, 0, 0, 1}, {1, 0, 0, 1}, {1, 1, 0, 1}});
    EXPECT_EQ(s.evaluate(3), cv::Point_<double>(1, 2));
    EXPECT_EQ(s.evaluate(12), cv::Point_<double>(1, 11));
}

TEST(DXFSplineEvaluate, BelowTheFirstUsableKnotStaysAtTheStart) {
    const DXFSpline s = quarterCircle();
    for (const double t : {-1e-9, -5.0, -1e300, -infinity}) {
        EXPECT_EQ(s.evaluate(t), s.evaluate(0)) << t;
    }
}

TEST(SplineSamples, OverFallingKnotsEndsAtTheLastPointThoughItsParameterIsRounded) {
    // -0.1 / 11, eleven times, falls just short of the knot 0.
    const DXFSpline falling = spline(1, {0.1, 0.1, 0, 0}, {{0, 0, 0, 1}, {1.15, 0, 0, 1}});
    const double step = (0.0 - 0.1) / 11;
    ASSERT_LT(0.1 + 11 * step, 0.0);
    const Points points = falling.sample(0.1);
    ASSERT_EQ(points.size(), 12U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        expectNear(points[i], {1.15 / 11 * static_cast<double>(i), 0}, 1e-12);
    }
}

TEST(DXFSplineEvaluate, BelowFallingKnotsStaysAtTheLowerOne) {
    const DXFSpline falling = spline(1, {1, 1, 0, 0}, {{0, 0, 0, 1}, {5, 0, 0, 1}});
    EXPECT_EQ(falling.evaluate(0), cv::Point_<double>(5, 0));
    EXPECT_EQ(falling.evaluate(-3), falling.evaluate(0));
    EXPECT_EQ(falling.evaluate(-infinity), falling.evaluate(0));
}

TEST(DXFSplineEvaluate, OfAVanishingWeightIsTheOrigin) {
    EXPECT_EQ(spline(1, {0, 0, 1, 1}, {{1, 1, 0, 1}, {5, 5, 0, -1}}).evaluate(0.5),
              cv::Point_<double>(0, 0));
    EXPECT_EQ(spline(0, {0, 1}, {{3, 4, 0, 0}}).evaluate(0.5), cv::Point_<double>(0, 0));
    EXPECT_EQ(spline(0, {0, 1}, {{3, 4, 0, 9e-16}}).evaluate(0.5), cv::Point_<double>(0, 0));
    EXPECT_EQ(spline(0, {0, 1}, {{3, 4, 0, -2e-15}}).evaluate(0.5), cv::Point_<double>(3, 4));
}

TEST(DXFSplineEvaluate, TakesTheEarlierPointInAKnotIntervalThatVanishes) {
    // All knots equal: every alpha counts as 0, and the first control point of the span is left.
    EXPECT_EQ(spline(2, {1, 1, 1, 1, 1, 1}, {{1, 2, 0, 1}, {3, 4, 0, 1}, {5, 6, 0, 1}}).evaluate(1),
              cv::Point_<double>(1, 2));
}

TEST(DXFSplineEvaluate, OfADegreeTooHighOrNegativeAsASignedNumberIsTheOrigin) {
    for (const unsigned degree : {4U, 5U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        DXFSpline s = spline(degree, std::vector<double>(20, 1.0),
                             {{1, 1, 0, 1}, {2, 2, 0, 1}, {3, 3, 0, 1}, {4, 4, 0, 1}});
        s.appendFitPoint(8, 9, 0);
        EXPECT_EQ(s.evaluate(1), cv::Point_<double>(0, 0)) << degree;
        EXPECT_EQ(s.sample(0.1), (Points{{8, 9}})) << degree;
    }
}

/// Random splines of rising knots: clamped or not, with inner knots that repeat up to the degree.
class WellFormedSplines {
public:
    DXFSpline next() {
        const unsigned degree = below(6);
        const unsigned controls = degree + 1 + below(8);
        DXFSpline result(degree, 0, 0, 0, 0);
        appendKnots(result, degree, controls + degree + 1);
        for (unsigned i = 0; i < controls; ++i) {
            result.appendControlPoint(real(-100, 100), real(-100, 100), real(-100, 100),
                                      polynomial ? 1.0 : real(0.1, 10));
        }
        return result;
    }

    double real(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_random);
    }

    /// Whether all weights are 1.
    bool polynomial = false;

private:
    unsigned below(unsigned count) { return static_cast<unsigned>(m_random() % count); }

    void appendKnots(DXFSpline& result, unsigned degree, unsigned count) {
        const bool clamped = below(2) == 0;
        double knot = real(-5, 5);
        unsigned repeats = 1;
        result.appendKnot(knot);
        for (unsigned i = 1; i < count; ++i) {
            const bool atEnds = i <= degree || i >= count - degree;
            const bool repeat =
                clamped &&
                (atEnds || (below(3) == 0 && repeats < degree && i + 1 < count - degree));
            repeats = repeat ? repeats + 1 : 1;
            knot += repeat ? 0.0 : real(0.1, 2);
            result.appendKnot(knot);
        }
    }

    std::mt19937 m_random{1};
};

TEST(DXFSplineEvaluate, AgreesWithBasisFunctionsOnWellFormedSplines) {
    WellFormedSplines splines;
    for (int round = 0; round < 500; ++round) {
        splines.polynomial = round % 2 == 0;
        const DXFSpline s = splines.next();
        const double start = s.knots()[s.degree()];
        const double end = s.knots()[s.controlPoints().size()];
        for (int i = 0; i < 10; ++i) {
            const double t = splines.real(start, end);
            ASSERT_NO_FATAL_FAILURE(expectNear(s.evaluate(t), basisFunctionPoint(s, t), 1e-10));
        }
        for (const double knot : s.knots()) {
            if (knot >= start && knot <= end) {
                ASSERT_NO_FATAL_FAILURE(
                    expectNear(s.evaluate(knot), basisFunctionPoint(s, knot), 1e-10));
            }
        }
        if (splines.polynomial) {
            const double t = end + splines.real(0, 0.2);
            ASSERT_NO_FATAL_FAILURE(expectNear(s.evaluate(t), basisFunctionPoint(s, t), 1e-6));
        }
    }
}

TEST(SplineSamples, AgreesWithBasisFunctionsOnWellFormedSplines) {
    WellFormedSplines splines;
    for (int round = 0; round < 200; ++round) {
        const DXFSpline s = splines.next();
        const double start = s.knots()[s.degree()];
        const double end = s.knots()[s.controlPoints().size()];
        const Points points = s.sample(20);
        ASSERT_GE(points.size(), 5U);
        ASSERT_EQ(points.size(), s.sampleCount(20));
        const auto steps = static_cast<double>(points.size() - 1);
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double t = start + static_cast<double>(i) * ((end - start) / steps);
            ASSERT_NO_FATAL_FAILURE(expectNear(points[i], basisFunctionPoint(s, t), 1e-8));
        }
    }
}

TEST(DXFSplineEvaluate, OfHostileSplinesEndsAndAgreesWithThePlainSearchWhereThatEnds) {
    // No polygon between these has a length whose step count is large and yet fits.
    const std::vector<double> pool = {nan, infinity, -infinity, 0,      -0.0,   1,   1,    2,
                                      -1,  0.5,      1e300,     -1e300, 5e-324, 1e9, 1e-16};
    std::mt19937 random(1);
    const auto any = [&] { return pool[random() % pool.size()]; };
    const auto anySmall = [&] { return static_cast<double>(random() % 5); };
    int compared = 0;
    int endless = 0;
    for (int round = 0; round < 20000; ++round) {
        const auto controls = static_cast<unsigned>(random() % 8);
        const unsigned degrees[] = {0U,           1U,          2U,          3U,         controls,
                                    controls - 1, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU};
        const unsigned degree = degrees[random() % std::size(degrees)];
        DXFSpline s(degree, 0, 0, 0, 0);
        const bool tame = random() % 2 == 0; // falling and repeating knots only
        for (auto count = random() % 20; count > 0; --count) {
            s.appendKnot(tame ? anySmall() : any());
        }
        for (unsigned i = 0; i < controls; ++i) {
            s.appendControlPoint(any(), any(), any(), any());
        }
        const bool evaluable =
            controls >= 1 && degree < controls && controls + degree < s.knots().size();
        ASSERT_EQ(s.sample(0.1).size(), s.sampleCount(0.1));
        ASSERT_EQ(s.sampleCount(0.1) >= 5, evaluable);
        for (int i = 0; i < 5; ++i) {
            const double t = tame ? anySmall() - 0.5 * static_cast<double>(random() % 2) : any();
            const cv::Point_<double> point = s.evaluate(t);
            if (!evaluable) {
                ASSERT_EQ(point, cv::Point_<double>(0, 0));
            } else if (!(t < s.knots()[degree])) {
                const std::optional<cv::Point_<double>> plain = plainTrianglePoint(s, t);
                ++(plain ? compared : endless);
                ASSERT_TRUE(!plain || same(point, *plain)) << round;
            }
        }
    }
    EXPECT_GT(compared, 1000);
    EXPECT_GT(endless, 100);
}

TEST(DXFSplineEvaluate, OfAHighDegreeStaysInBounds) {
    DXFSpline s(300, 0, 0, 0, 0);
    for (int i = 0; i < 302 + 301; ++i) {
        s.appendKnot(i);
    }
    for (int i = 0; i < 302; ++i) {
        s.appendControlPoint(1, 2, 0, 1);
    }
    for (const double t : {300.0, 300.5, 301.0, 302.0}) {
        ASSERT_NO_FATAL_FAILURE(expectNear(s.evaluate(t), {1, 2}, 1e-9));
    }
}

} // namespace
