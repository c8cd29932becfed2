// How far a curve leaves its chord. Let the curve be X(t) / w(t) with t from a to b, h = b - a, and
// its start the origin. X and w are linear interpolations of their values at a and b up to
// h^2 / 8 times the largest second derivative in between, also across knots where only that jumps.
//
// - Perpendicular to the chord, X is 0 at both ends: the distance from the line of the chord is at
//   most h^2 / 8 times the largest part of X'' perpendicular to it, divided by the least w. For
//   short steps this is nearly what it is. For such that cross many knots, where one span bends
//   more than the others, the integral of (t - a) (b - t) / h |X''| is less: it is the largest that
//   X can be where X'' is at most as large as in each span (by Green's function). It is the
//   distance from the chord itself, if the curve does not run out beyond its ends: 0 <= S <= L w, S
//   being the part of X along the chord, and L the chord's length.
// - Where it turns back, what counts is that X / w is as far as that from the point of the chord
//   that (t - a) / h X(b) / w means: h^2 / 8 times the largest X'', divided by the least w. That
//   point is on the chord while (t - a) / h w(b) <= w, for which h^2 / 2 max |w''| <= w(a) is
//   enough.
//
// Within one span of a cubic curve without weights, X'' goes evenly from A to B, and the chord is h
// times d, the mean of X'. At the part u of the step X is h^2 / 6 u (1 - u) ((2 - u) A + (1 + u) B)
// off the chord, which is at most h^2 / (9 sqrt(3)) (|A| + |B|), parts perpendicular to d meant.
//
// All that is asked of derivatives is the largest value within an interval, for which the Bezier
// points of that interval are a bound. Looking at a few points of the curve could miss a bend.

#include "converters/detail/drawing/sampling/SplineChord.h"

#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace converters::drawing {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// A bound of a function that is 0 at both ends of a step, by bounds of its second derivative.
struct Bulge {
    double largest = 0;
    double integral = 0;

    /// @param second  the largest second derivative on a part of the step
    /// @param share   the integral of (t - a) (b - t) / h over that part
    void take(double second, double share) {
        largest = std::max(largest, second);
        integral += second * share;
    }
    double over(double step) const { return std::min(0.125 * step * step * largest, integral); }
};

/// The chord, and the second derivatives of X, perpendicular to it, along it and in all, and of w.
struct Chord {
    Point start;
    Vector direction;
    double length;
    Bulge across;
    Bulge whole;
    double along = 0;
    double weight = 0;

    /// @param second  Bezier points of the second derivative on a span
    /// @param share   the integral of (t - a) (b - t) / h over the span
    void take(const Homogeneous* second, std::size_t number, double share) {
        double mostAcross = 0;
        double mostWhole = 0;
        for (std::size_t i = 0; i < number; ++i) {
            const Vector change = second[i].place() - second[i].weight * start;
            const double part = change.dot(direction);
            const Vector rest = change - part * direction;
            const double square = change.dot(change);
            if (!std::isfinite(square)) {
                // Which no comparison would tell of what is no number.
                mostAcross = mostWhole = infinity;
                break;
            }
            mostAcross = std::max(mostAcross, rest.dot(rest));
            mostWhole = std::max(mostWhole, square);
            along = std::max(along, std::fabs(part));
            weight = std::max(weight, std::fabs(second[i].weight));
        }
        across.take(std::sqrt(mostAcross), share);
        whole.take(std::sqrt(mostWhole), share);
    }

    /// The same for the part [low, high] of the span.
    void takePart(const BezierCurve& second, double low, double high, double share) {
        if (second.degree == 0 || (low <= 0 && high >= 1)) {
            take(second.points.data(), second.degree + 1, share);
        } else if (second.degree == 1) {
            const Homogeneous ends[] = {between(second.points[0], second.points[1], low),
                                        between(second.points[0], second.points[1], high)};
            take(ends, 2, share);
        } else {
            take(second.over(low, high).points.data(), second.degree + 1, share);
        }
    }
};

Chord chordBetween(const Point& from, const Point& to) {
    const Vector way = to - from;
    const double length = lengthOf(way);
    return {from, length > 0 ? way * (1 / length) : Vector(0, 0, 0), length, {}, {}};
}

/// Calls visit(span, from, to) for the part [from, to] of [0, 1] of each span between two places,
/// until it returns false.
template <typename Visit>
bool overSpans(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to,
               const Visit& visit) {
    const SplineSpans& spans = curves.spans();
    for (std::size_t span = from.span; span <= to.span; ++span) {
        const double width = spans.width(span);
        if (!(width > 0)) {
            continue;
        }
        const double low = span == from.span ? (from.parameter - spans.knot(span)) / width : 0;
        const double high = span == to.span ? (to.parameter - spans.knot(span)) / width : 1;
        if (low < high && !visit(curves.span(span), std::max(low, 0.0), std::min(high, 1.0))) {
            return false;
        }
    }
    return true;
}

/// Whether the curve does not run out beyond the ends of its chord, by its Bezier points.
bool staysBetween(SplineCurves& curves, const Chord& chord, const SplinePlace& from,
                  const SplinePlace& to) {
    return overSpans(curves, from, to,
                     [&](const SplineCurves::Span& span, double low, double high) {
                         const BezierCurve part = span.curve.over(low, high);
                         const double rounding = 1e-14 * chord.length;
                         for (std::size_t i = 0; i <= part.degree; ++i) {
                             const Homogeneous& point = part.points[i];
                             const double along =
                                 (point.place() - point.weight * chord.start).dot(chord.direction);
                             const bool within = along >= -rounding * point.weight &&
                                                 along <= (chord.length + rounding) * point.weight;
                             if (!within) {
                                 return false;
                             }
                         }
                         return true;
                     });
}

/// The second derivative of the curve of a span as wide as that, by the spline's parameter.
void differentiateTwice(const BezierCurve& curve, double width, BezierCurve& second) {
    second.degree = curve.degree > 2 ? curve.degree - 2 : 0;
    second.points[0] = {0, 0, 0, 0};
    const double degree = static_cast<double>(curve.degree);
    const double factor = degree * (degree - 1) / width / width;
    for (std::size_t i = 0; i + 2 <= curve.degree; ++i) {
        second.points[i] = factor * ((curve.points[i + 2] - curve.points[i + 1]) -
                                     (curve.points[i + 1] - curve.points[i]));
    }
}

Motion motionOf(const BezierCurve& curve, double width) {
    const auto factor = static_cast<double>(curve.degree);
    const auto& p = curve.points;
    Motion motion;
    if (curve.degree > 0) {
        motion.velocity = (factor / width) * (p[1] - p[0]).place();
    }
    if (curve.degree > 1) {
        const Homogeneous bend = (p[2] - p[1]) - (p[1] - p[0]);
        const double second = factor * (factor - 1) / width / width;
        motion.acceleration = second * bend.place();
        if (curve.degree > 2) {
            const Homogeneous next = (p[3] - p[2]) - (p[2] - p[1]);
            motion.jerk = (second * (factor - 2) / width) * (next - bend).place();
        }
    }
    return motion;
}

/// The least weight of the curve's Bezier points.
double leastWeightBetween(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to) {
    double least = infinity;
    overSpans(curves, from, to, [&](const SplineCurves::Span& span, double low, double high) {
        const BezierCurve part = span.curve.over(low, high);
        for (std::size_t i = 0; i <= part.degree; ++i) {
            least = std::min(least, part.points[i].weight);
        }
        return true;
    });
    return least;
}

} // namespace

void SplineCurves::keep(std::size_t index, Span& span) const {
    span.curve = m_spans.curveOf(index);
    differentiateTwice(span.curve, m_spans.width(index), span.second);
    if (m_isPlain) {
        span.motion = motionOf(span.curve, m_spans.width(index));
    }
    span.index = index;
}

SplinePlace placeOn(SplineCurves& curves, double parameter, std::size_t span) {
    const SplineSpans& spans = curves.spans();
    const double part = (parameter - spans.knot(span)) / spans.width(span);
    const Homogeneous point = curves.span(span).curve.at(part);
    if (!spans.isRational()) {
        return {parameter, span, point.place(), 1};
    }
    return {parameter, span, project(point), point.weight};
}

double excessWithin(const Motion& motion, double from, double step, const SamplingLimits& limits) {
    constexpr double evenly = 0.0641500299099585; // 1 / (9 sqrt(3))
    const double middle = from + 0.5 * step;
    const Vector chord = step * (motion.velocity + middle * motion.acceleration +
                                 (0.5 * middle * middle + step * step / 24) * motion.jerk);
    const Vector first = step * (step * (motion.acceleration + from * motion.jerk));
    const Vector last = step * (step * (motion.acceleration + (from + step) * motion.jerk));
    const double square = chord.dot(chord);
    const double along = std::max(std::fabs(first.dot(chord)), std::fabs(last.dot(chord)));
    // What is along the chord grows all the time when it changes by less than its mean. Squares of
    // other lengths vanish or overflow.
    if (!(along <= square) || !(square > 1e-100 && square < 1e100)) {
        return infinity;
    }
    // Long before the bend, the distance of neighbours may be what counts. The bend is at most an
    // eighth of what is across, which is at most all.
    const double spacing = square / (limits.step * limits.step);
    const double bendless = 8 * limits.tolerance * spacing;
    if (bendless > 0 && std::max(first.dot(first), last.dot(last)) <= bendless * bendless) {
        return spacing;
    }
    const Vector firstAcross = first.cross(chord);
    const Vector lastAcross = last.cross(chord);
    const double atFirst = std::sqrt(firstAcross.dot(firstAcross));
    const double atLast = std::sqrt(lastAcross.dot(lastAcross));
    const double bend = std::min(0.125 * std::max(atFirst, atLast), evenly * (atFirst + atLast));
    const double excess = std::max(bend / (std::sqrt(square) * limits.tolerance), spacing);
    return excess >= 0 ? excess : infinity;
}

/// The same as for any spline, where no weights are to be asked for.
double plainExcessOf(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to,
                     const SamplingLimits& limits) {
    const SplineSpans& spans = curves.spans();
    const Chord chord = chordBetween(from.point, to.point);
    const double step = to.parameter - from.parameter;
    Bulge across;
    double along = 0;
    for (std::size_t span = from.span; span <= to.span; ++span) {
        const double knot = spans.knot(span);
        const double low = std::max(from.parameter, knot);
        const double high = std::min(to.parameter, spans.knot(span + 1));
        if (!(low < high)) {
            continue;
        }
        const Motion& motion = curves.span(span).motion;
        double mostAcross = 0;
        for (const double end : {low, high}) {
            const Vector change = motion.acceleration + (end - knot) * motion.jerk;
            const double part = change.dot(chord.direction);
            const Vector rest = change - part * chord.direction;
            mostAcross = std::max(mostAcross, rest.dot(rest));
            along = std::max(along, std::fabs(part));
        }
        // The integral of (t - a) (b - t) / h over the part.
        const auto share = [step](double t) { return t * t * (0.5 - t / (3 * step)); };
        across.take(std::sqrt(mostAcross),
                    share(high - from.parameter) - share(low - from.parameter));
    }
    // What is along the chord grows all the time when it changes by less than its mean.
    if (!(step * step * along <= chord.length)) {
        return infinity;
    }
    const double part = chord.length / limits.step;
    return std::max(across.over(step) / limits.tolerance, part * part);
}

double excessOf(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to,
                const SamplingLimits& limits) {
    if (curves.isPlain()) {
        const double excess = plainExcessOf(curves, from, to, limits);
        if (std::isfinite(excess)) {
            return excess;
        }
    }
    Chord chord = chordBetween(from.point, to.point);
    const double step = to.parameter - from.parameter;
    // The integral of (t - a) (b - t) / h from a to a + t.
    const auto share = [step](double t) { return t * t * (0.5 - t / (3 * step)); };
    overSpans(curves, from, to, [&](const SplineCurves::Span& span, double low, double high) {
        const SplineSpans& spans = curves.spans();
        const double width = spans.width(span.index);
        const double begin = spans.knot(span.index) + low * width - from.parameter;
        const double part = share(begin + (high - low) * width) - share(begin);
        chord.takePart(span.second, low, high, part);
        return true;
    });
    const double most = 0.125 * step * step;
    const double ends = std::min(from.weight, to.weight);
    double leastWeight = ends - most * chord.weight;
    if (leastWeight < 0.9 * ends) {
        leastWeight = std::max(leastWeight, leastWeightBetween(curves, from, to));
    }
    // S grows all the time when S' changes by less than its mean; so does S - L w.
    const double change = step * step * (chord.along + chord.length * chord.weight);
    const bool between = change <= chord.length * ends || staysBetween(curves, chord, from, to);
    if (!between && 4 * most * chord.weight > from.weight) {
        return infinity;
    }
    const double distance = (between ? chord.across : chord.whole).over(step) / leastWeight;
    const double part = chord.length / limits.step;
    const double excess = std::max(distance / limits.tolerance, part * part);
    return excess >= 0 ? excess : infinity;
}

} // namespace converters::drawing
