// Chords that leave a curve by d are together shorter than it by about d / 3 times the angle that
// it turns through: those over the angle a of a circle of radius r leave it by r a^2 / 8, and are
// r a^3 / 24 shorter. So what keeps the length of a curve is a tolerance, too.

#include "converters/detail/drawing/sampling/Sampling.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"
#include "converters/detail/drawing/sampling/EllipseWalk.h"
#include "converters/detail/drawing/sampling/PointSink.h"
#include "converters/detail/drawing/sampling/SplineWalk.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

/// The part of its length that a curve may lose to its chords; a circle gets sixteen at least.
constexpr double mostShortened = 0.0065;

/// The least whole number not below a value, but for rounding: 10 for 1 / 0.1. At least 1;
/// tooManyPoints for more than the maximum.
std::size_t chordsFor(double value, const SamplingLimits& limits) {
    const double chords = std::max(std::ceil(value * (1 - 1e-12)), 1.0);
    return chords <= static_cast<double>(limits.maximumPoints) ? static_cast<std::size_t>(chords)
                                                               : tooManyPoints;
}

std::size_t countChords(const Line& line, const SamplingLimits& limits) {
    // What most lines are, and costs nothing.
    if (limits.step == std::numeric_limits<double>::infinity()) {
        return isFinite(line.start) && isFinite(line.end) ? 1 : tooManyPoints;
    }
    return chordsFor(lengthOf(line) / limits.step, limits);
}

/// What keeps the length of a curve that turns through an angle; at least a hundredth of the
/// tolerance, beside which the curve is nothing.
double toleranceFor(double length, double angle, double tolerance) {
    constexpr double least = 0.01;
    const double keepsLength = 3 * mostShortened * length;
    return tolerance * angle > keepsLength ? std::max(keepsLength / angle, least * tolerance)
                                           : tolerance;
}

/// The same of all of an ellipse: it is at least as long as a circle around the minor axis.
double toleranceFor(const EllipticArc& arc, double tolerance) {
    const double squares = arc.first.dot(arc.first) + arc.second.dot(arc.second);
    const double area = lengthOf(arc.first.cross(arc.second));
    const double major =
        std::sqrt(0.5 * (squares + std::sqrt(std::max(squares * squares - 4 * area * area, 0.0))));
    return area > 0 ? toleranceFor(area / major, 1, tolerance) : tolerance;
}

/// The same of a spline, by the polygon of its control points. Between two legs it turns by an
/// angle a little larger than the distance of their directions.
double toleranceFor(const BSpline& spline, double tolerance) {
    const std::vector<Point>& points = spline.controlPoints;
    double length = 0;
    double angle = 0;
    Vector before(0, 0, 0);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Vector leg = points[i] - points[i - 1];
        const double legLength = lengthOf(leg);
        if (legLength > 0) {
            const Vector direction = leg * (1 / legLength);
            angle += length > 0 ? lengthOf(direction - before) : 0;
            length += legLength;
            before = direction;
        }
    }
    return length > 0 ? toleranceFor(length, angle, tolerance) : tolerance;
}

template <typename CurveKind>
SamplingLimits limitsFor(const CurveKind& curve, SamplingLimits limits) {
    limits.tolerance = toleranceFor(curve, limits.tolerance);
    return limits;
}

// A chord over the angle a leaves its circle by r (1 - cos(a / 2)) = 2 r sin^2(a / 4).
std::size_t countChords(const EllipticArc& circular, const SamplingLimits& limits) {
    const double radius = lengthOf(circular.first);
    const double tolerance = std::min(limits.tolerance, 3 * mostShortened * radius);
    const double byTolerance = 4 * std::asin(std::sqrt(0.5 * tolerance / radius));
    const double longest = std::min(byTolerance, limits.step / radius);
    return chordsFor(std::fabs(circular.sweep) / longest, limits);
}

template <typename PointBetween>
bool walkEvenly(std::size_t chords, const Point& end, const PointBetween& pointBetween,
                PointSink& sink) {
    if (chords == tooManyPoints) {
        return false;
    }
    const double whole = static_cast<double>(chords);
    return sink.takeAll(chords - 1, [&](std::size_t i) {
        return pointBetween(static_cast<double>(i) / whole);
    }) && sink.take([&] { return end; });
}

/// Each eighth direction is taken from its angle, the others are the one before turned on: a few
/// roundings more for a third of the time.
bool walkRound(const EllipticArc& arc, std::size_t chords, PointSink& sink) {
    if (chords == tooManyPoints) {
        return false;
    }
    constexpr std::size_t turnsInARow = 8;
    const double turn = arc.sweep / static_cast<double>(chords);
    const double turnCosine = std::cos(turn);
    const double turnSine = std::sin(turn);
    double cosine = 1;
    double sine = 0;
    const auto pointOf = [&, centre = arc.centre, first = arc.first,
                          second = arc.second](std::size_t i) {
        if (i % turnsInARow == 1) {
            const double angle = arc.from + static_cast<double>(i) * turn;
            cosine = std::cos(angle);
            sine = std::sin(angle);
        } else {
            const double before = cosine;
            cosine = before * turnCosine - sine * turnSine;
            sine = sine * turnCosine + before * turnSine;
        }
        return centre + cosine * first + sine * second;
    };
    return sink.takeAll(chords - 1, pointOf) && sink.take([&] { return arc.end; });
}

bool walkCircle(const EllipticArc& arc, std::size_t chords, PointSink& sink) {
    // Angles from the start are exact for flat arcs; those from the centre cost half.
    constexpr double flat = 0.5;
    if (std::fabs(arc.sweep) < flat) {
        return walkEvenly(
            chords, arc.end, [&](double part) { return pointBehindStart(arc, part * arc.sweep); },
            sink);
    }
    return walkRound(arc, chords, sink);
}

/// Gives the sink all points behind the start; false where there are too many.
bool walk(const Curve& curve, const SamplingLimits& limits, PointSink& sink) {
    if (const Line* const line = std::get_if<Line>(&curve)) {
        const auto pointBetween = [start = line->start, way = line->end - line->start](
                                      double part) { return start + part * way; };
        return walkEvenly(countChords(*line, limits), line->end, pointBetween, sink);
    }
    if (!isFinite(curve)) {
        return false;
    }
    if (const EllipticArc* const arc = std::get_if<EllipticArc>(&curve)) {
        return isCircular(*arc) ? walkCircle(*arc, countChords(*arc, limits), sink)
                                : walkEllipse(*arc, limitsFor(*arc, limits), sink);
    }
    const BSpline& spline = std::get<BSpline>(curve);
    return walkSpline(spline, limitsFor(spline, limits), sink);
}

} // namespace

std::size_t countPoints(const Curve& curve, const SamplingLimits& limits) {
    if (const Line* const line = std::get_if<Line>(&curve)) {
        return countChords(*line, limits);
    }
    const EllipticArc* const arc = std::get_if<EllipticArc>(&curve);
    if (arc != nullptr && isCircular(*arc)) {
        return isFinite(curve) ? countChords(*arc, limits) : tooManyPoints;
    }
    PointSink sink(limits.maximumPoints, nullptr);
    return walk(curve, limits, sink) ? sink.number() : tooManyPoints;
}

bool appendPoints(const Curve& curve, const SamplingLimits& limits, std::vector<Point>& points) {
    const std::size_t before = points.size();
    PointSink sink(limits.maximumPoints, &points);
    if (walk(curve, limits, sink)) {
        return true;
    }
    points.resize(before);
    return false;
}

} // namespace converters::drawing
