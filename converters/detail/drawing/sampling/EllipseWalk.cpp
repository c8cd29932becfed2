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
#include "converters/detail/drawing/sampling/EvenSteps.h"
#include "converters/detail/drawing/sampling/StepSearch.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace converters::drawing {

namespace {

/// Parameters nearer than this are one.
constexpr double nearby = 1e-12;

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

    /// The same for a short step from `here` to `there`, a hundredth too much at most.
    double excessOf(const Turn& here, const Turn& there, double step,
                    const SamplingLimits& limits) const {
        // The sum of the two points in the direction of the middle, twice the cosine of half the
        // step long.
        const double speed = speedAt({here.cosine + there.cosine, here.sine + there.sine});
        const double distance = 0.25 * step * step * major * minor;
        const double x = major * (there.cosine - here.cosine) / limits.step;
        const double y = minor * (there.sine - here.sine) / limits.step;
        return std::max(distance / (speed * limits.tolerance), x * x + y * y);
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

/// Walks along an ellipse by its parameter, counted from the end of the major axis and upwards:
/// speed and distances are the same with the sign of the parameter turned.
class Walk {
public:
    Walk(const EllipticArc& arc, const SamplingLimits& limits, PointSink& sink)
        : m_arc(arc), m_limits(limits), m_sink(sink),
          m_axes(principalAxesOf(arc)), m_ellipse{lengthOf(m_axes.major), lengthOf(m_axes.minor)},
          m_sweep(std::fabs(arc.sweep)), m_sign(arc.sweep < 0 ? -1 : 1),
          m_from(m_sign * (arc.from - m_axes.phase)), m_end(m_from + m_sweep), m_parameter(m_from),
          m_here(Turn::by(m_from)) {}

    bool whole() {
        if (m_ellipse.needsTooMany(m_sweep, m_limits)) {
            return false;
        }
        while (m_parameter < m_end - nearby) {
            const double stop = nextStop(m_parameter, m_end);
            if (!(planSteps(stop) ? walkEvenly() : walkTo(stop))) {
                return false;
            }
        }
        return true;
    }

private:
    bool planSteps(double stop);
    bool walkEvenly();
    bool walkTo(double stop);
    bool take(double parameter, const Turn& turn);

    const EllipticArc& m_arc;
    const SamplingLimits& m_limits;
    PointSink& m_sink;
    const PrincipalAxes m_axes;
    const Ellipse m_ellipse;
    const double m_sweep;
    const double m_sign;
    const double m_from;
    const double m_end;
    double m_parameter;
    Turn m_here;
    double m_guess = pi / 2;
    EvenSteps m_steps;
    double m_number = 0;
};

/// Whether the way to the next stop is divided at once: where it has a good many steps, and no
/// sharp bend.
bool Walk::planSteps(double stop) {
    constexpr double sharp = 0.3;
    constexpr double nodesOfHalf = 16;
    constexpr double least = 4;
    constexpr double most = 1e6;
    if (!(m_ellipse.minor > sharp * m_ellipse.major)) {
        return false;
    }
    const double way = stop - m_parameter;
    const double nodes = std::ceil(way * (nodesOfHalf / pi));
    const double between = way / nodes;
    const Turn turn = Turn::slightly(between);
    const double bend = std::sqrt(m_ellipse.major * m_ellipse.minor / (8 * m_limits.tolerance));
    const auto densityAt = [&](const Turn& here) {
        const double speed = m_ellipse.speedAt(here);
        return std::max(bend / std::sqrt(speed), speed / m_limits.step);
    };
    Turn here = m_here;
    double before = densityAt(here);
    m_steps.begin(m_parameter);
    for (double i = 1; i <= nodes; ++i) {
        here = here + turn;
        const double density = densityAt(here);
        m_steps.add(i == nodes ? stop : m_parameter + i * between,
                    0.5 * between * (before + density));
        before = density;
    }
    m_number = std::ceil(m_steps.total() * 1.02);
    return m_number >= least && m_number < most;
}

bool Walk::walkEvenly() {
    return m_steps.divide(
        static_cast<std::size_t>(m_number), [&](const double* ends, std::size_t number) {
            std::array<Turn, EvenSteps::atATime> turns;
            for (std::size_t i = 0; i < number; ++i) {
                turns[i] = Turn::by(ends[i]);
            }
            for (std::size_t i = 0; i < number; ++i) {
                const bool fits =
                    m_ellipse.excessOf(m_here, turns[i], ends[i] - m_parameter, m_limits) <= 1;
                if (!(fits ? take(ends[i], turns[i]) : walkTo(ends[i]))) {
                    return false;
                }
            }
            return true;
        });
}

bool Walk::walkTo(double stop) {
    while (m_parameter < stop) {
        const double rest = stop - m_parameter;
        const auto excess = [&](double step) { return m_ellipse.excessOf(m_here, step, m_limits); };
        const Step step = longestStep(m_guess, std::min(rest, pi / 2), nearby, excess);
        if (!(step.length > 0)) {
            return false;
        }
        m_guess = step.next;
        const double parameter = step.length == rest ? stop : m_parameter + step.length;
        if (!take(parameter, Turn::by(parameter))) {
            return false;
        }
    }
    return true;
}

bool Walk::take(double parameter, const Turn& turn) {
    constexpr double flat = 0.5;
    m_parameter = parameter;
    m_here = turn;
    const bool isLast = !(parameter < m_end - nearby);
    return m_sink.take([&] {
        // Angles from the start are exact for flat arcs.
        return isLast           ? m_arc.end
               : m_sweep < flat ? pointBehindStart(m_arc, m_sign * (parameter - m_from))
                                : m_arc.centre + turn.cosine * m_axes.major +
                                      (m_sign * turn.sine) * m_axes.minor;
    });
}

} // namespace

bool walkEllipse(const EllipticArc& arc, const SamplingLimits& limits, PointSink& sink) {
    return Walk(arc, limits, sink).whole();
}

} // namespace converters::drawing
