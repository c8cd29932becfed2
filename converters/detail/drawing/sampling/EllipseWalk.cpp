// How far an elliptic arc leaves its chord is known exactly. An ellipse is the affine image of a
// circle: of the arc between parameters m - d and m + d the point at m is the farthest from the
// chord, and the tangent there is parallel to it. With half axes a and b and the speed
// v(m) = |(-a sin m, b cos m)|,
//
//     distance = (1 - cos d) a b / v(m)        chord = 2 sin(d) v(m)
//
// The arc stays beside its chord, and does not run out beyond the ends, as long as it does not
// pass an end of the major axis: there a point is set.

#include "converters/detail/drawing/sampling/EllipseWalk.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/PrincipalAxes.h"
#include "converters/detail/drawing/sampling/StepSearch.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

/// Parameters nearer than this are one.
constexpr double nearby = 1e-12;

struct Ellipse {
    double major;
    double minor;

    double speedAt(double parameter) const {
        const double sine = major * std::sin(parameter);
        const double cosine = minor * std::cos(parameter);
        return std::sqrt(sine * sine + cosine * cosine);
    }

    /// What a step from `parameter` takes of the limits; of short steps, a hundredth too much.
    double excessOf(double parameter, double step, const SamplingLimits& limits) const {
        constexpr double shortStep = 0.5;
        const bool isShort = step < shortStep;
        const double speed = speedAt(parameter + 0.5 * step);
        const double quarter = isShort ? 0.25 * step : std::sin(0.25 * step);
        const double distance = minor > 0 ? 2 * quarter * quarter * major * (minor / speed) : 0;
        const double half = isShort ? 0.5 * step : std::sin(0.5 * step);
        const double chord = 2 * half * speed / limits.step;
        return std::max(distance / limits.tolerance, chord * chord);
    }

    /// Whether a walk over this angle has more chords than allowed, at a glance.
    bool needsTooMany(double angle, const SamplingLimits& limits) const {
        // The distance is nowhere less than that of a circle around the minor axis.
        const double sine = std::sqrt(0.5 * limits.tolerance / minor);
        const double longest = sine < 1 ? 4 * std::asin(sine) : fullTurn;
        return !(angle / longest <= static_cast<double>(limits.maximumPoints));
    }
};

/// The next end of the major axis behind a parameter, or `end` if that comes before.
double nextStop(double parameter, double end) {
    const double stop = (std::floor((parameter + nearby) / pi) + 1) * pi;
    return stop < end - nearby ? stop : end;
}

} // namespace

bool walkEllipse(const EllipticArc& arc, const SamplingLimits& limits, PointSink& sink) {
    const PrincipalAxes axes = principalAxesOf(arc);
    const Ellipse ellipse{lengthOf(axes.major), lengthOf(axes.minor)};
    const double sweep = std::fabs(arc.sweep);
    if (ellipse.needsTooMany(sweep, limits)) {
        return false;
    }
    // Speed and distances are the same with the sign of the parameter turned.
    const double sign = arc.sweep < 0 ? -1 : 1;
    const double from = sign * (arc.from - axes.phase);
    const double end = from + sweep;
    double parameter = from;
    double guess = pi / 2;
    while (parameter < end - nearby) {
        const double stop = nextStop(parameter, end);
        const double most = std::min(stop - parameter, pi / 2);
        const auto excess = [&](double step) { return ellipse.excessOf(parameter, step, limits); };
        const Step step = longestStep(guess, most, nearby, excess);
        if (!(step.length > 0)) {
            return false;
        }
        guess = step.next;
        parameter = step.length == stop - parameter ? stop : parameter + step.length;
        const bool last = !(parameter < end - nearby);
        if (!sink.take([&] {
                return last ? arc.end : pointBehindStart(arc, sign * (parameter - from));
            })) {
            return false;
        }
    }
    return true;
}

} // namespace converters::drawing
