// How far an elliptic arc leaves its chord is known exactly. An ellipse is the affine image of a
// circle: of the arc between parameters m - d and m + d the point at m is the farthest from the
// chord, and the tangent there is parallel to it. With half axes a and b and the speed
// v(m) = |(-a sin m, b cos m)|,
//
//     distance = (1 - cos d) a b / v(m)        chord = 2 sin(d) v(m)
//
// For short steps the angles stand for their sines, which are less.
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
constexpr double flat = 0.5;

/// A direction, by its angle's cosine and sine.
struct Turn {
    double cosine;
    double sine;

    static Turn by(double angle) { return {std::cos(angle), std::sin(angle)}; }

    /// By at most 0.25, to 1e-12.
    static Turn slightly(double angle) {
        const double square = angle * angle;
        return {1 + square * (-1. / 2 +
                              square * (1. / 24 + square * (-1. / 720 + square * (1. / 40320)))),
                angle * (1 + square * (-1. / 6 +
                                       square * (1. / 120 +
                                                 square * (-1. / 5040 + square * (1. / 362880)))))};
    }

    Turn operator+(const Turn& other) const {
        return {cosine * other.cosine - sine * other.sine,
                sine * other.cosine + cosine * other.sine};
    }
};

struct Ellipse {
    double major;
    double minor;

    double speedAt(const Turn& turn) const {
        const double sine = major * turn.sine;
        const double cosine = minor * turn.cosine;
        return std::sqrt(sine * sine + cosine * cosine);
    }

    /// What a step from `here` takes of the limits; of a short one, a hundredth too much at most.
    double excessOf(const Turn& here, double step, const SamplingLimits& limits) const {
        constexpr double shortStep = 0.5;
        const bool isShort = step < shortStep;
        const double half = 0.5 * step;
        const double speed = speedAt(here + (isShort ? Turn::slightly(half) : Turn::by(half)));
        const double quarter = isShort ? 0.5 * half : std::sin(0.5 * half);
        const double distance = minor > 0 ? 2 * quarter * quarter * major * (minor / speed) : 0;
        const double chord = 2 * (isShort ? half : std::sin(half)) * speed / limits.step;
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
    Turn here = Turn::by(from);
    double guess = pi / 2;
    while (parameter < end - nearby) {
        const double stop = nextStop(parameter, end);
        const double most = std::min(stop - parameter, pi / 2);
        const auto excess = [&](double step) { return ellipse.excessOf(here, step, limits); };
        const Step step = longestStep(guess, most, nearby, excess);
        if (!(step.length > 0)) {
            return false;
        }
        guess = step.next;
        parameter = step.length == stop - parameter ? stop : parameter + step.length;
        here = Turn::by(parameter);
        const bool isLast = !(parameter < end - nearby);
        if (!sink.take([&] {
                // Angles from the start are exact for flat arcs.
                return isLast         ? arc.end
                       : sweep < flat ? pointBehindStart(arc, sign * (parameter - from))
                                      : arc.centre + here.cosine * axes.major +
                                            (sign * here.sine) * axes.minor;
            })) {
            return false;
        }
    }
    return true;
}

} // namespace converters::drawing
