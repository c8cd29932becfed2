// Lengths without a closed form are integrals of the speed along the curve. A pair of Gauss and
// Kronrod rules of 7 and 15 nodes gives a value and how far to trust it; where that is not enough
// the interval is halved. Halving stops after a fixed number of intervals, so that no curve can
// hold the work up: what it leaves is far below 1e-9 for all that a drawing can show.

#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"
#include "converters/detail/drawing/geometry/PrincipalAxes.h"
#include "converters/detail/drawing/geometry/SplineSpans.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

struct Interval {
    double from;
    double to;
    int level;
};

struct Estimate {
    double value;
    double error;
};

/// The integral over an interval by fifteen nodes, and by how much seven of them miss it.
template <typename Function>
Estimate estimate(const Interval& interval, const Function& function) {
    // In turns those of Kronrod alone and those of Gauss, too.
    constexpr double nodes[] = {0.991455371120812639, 0.949107912342758525, 0.864864423359769073,
                                0.741531185599394440, 0.586087235467691130, 0.405845151377397167,
                                0.207784955007898468};
    constexpr double weights[] = {0.022935322010529225, 0.063092092629978553, 0.104790010322250184,
                                  0.140653259715525919, 0.169004726639267903, 0.190350578064785410,
                                  0.204432940075298892};
    constexpr double gaussWeights[] = {0.129484966168869693, 0.279705391489276668,
                                       0.381830050505118945};
    constexpr double middleWeight = 0.209482141084727828;
    constexpr double gaussMiddleWeight = 0.417959183673469388;
    const double middle = 0.5 * (interval.from + interval.to);
    const double half = 0.5 * (interval.to - interval.from);
    // Apart from the sums, which have an order: roots are drawn some at a time.
    double below[7];
    double above[7];
    for (int i = 0; i < 7; ++i) {
        below[i] = function(middle - half * nodes[i]);
        above[i] = function(middle + half * nodes[i]);
    }
    const double atMiddle = function(middle);
    double fifteen = middleWeight * atMiddle;
    double seven = gaussMiddleWeight * atMiddle;
    for (int i = 0; i < 7; ++i) {
        const double pair = below[i] + above[i];
        fifteen += weights[i] * pair;
        seven += i % 2 == 1 ? gaussWeights[i / 2] * pair : 0;
    }
    return {half * fifteen, std::fabs(half * (fifteen - seven))};
}

/// The integral of a positive function over [from, to].
template <typename Function>
double integral(double from, double to, const Function& function) {
    // Fifteen nodes are better than seven by far more than the rest of the way to 1e-9.
    constexpr double trusted = 1e-9;
    constexpr double negligible = 1e-12;
    constexpr int levels = 40;
    constexpr int mostIntervals = 1000;
    Interval open[levels + 1];
    int number = 0;
    open[number++] = {from, to, 0};
    double sum = 0;
    for (int done = 0; number > 0; ++done) {
        const Interval interval = open[--number];
        const Estimate part = estimate(interval, function);
        const bool enough = !(part.error > trusted * part.value) ||
                            !(part.error > negligible * sum) || interval.level == levels ||
                            done > mostIntervals;
        if (enough) {
            sum += part.value;
            continue;
        }
        const double middle = 0.5 * (interval.from + interval.to);
        open[number++] = {middle, interval.to, interval.level + 1};
        open[number++] = {interval.from, middle, interval.level + 1};
    }
    return sum;
}

/// The whole way round an ellipse, by the arithmetic-geometric mean.
double circumference(double major, double minor) {
    double a = 1;
    double b = minor / major;
    double sum = 0.5 * (1 - b * b);
    for (double power = 1; a - b > 1e-9; power *= 2) {
        const double difference = 0.5 * (a - b);
        const double product = a * b;
        a = 0.5 * (a + b);
        b = std::sqrt(product);
        sum += power * difference * difference;
    }
    return b > 0 ? major * fullTurn / (0.5 * (a + b)) * (1 - sum) : 4 * major;
}

/// The speed along a plain curve of degree 2 or 3, as the root of a polynomial: of the squares of
/// its derivative, about the middle.
class PlainSpeed {
public:
    explicit PlainSpeed(const BezierCurve& derivative) {
        const auto& p = derivative.points;
        Vector middle = 0.5 * (p[0] + p[1]).place();
        Vector change = (p[1] - p[0]).place();
        Vector bend;
        if (derivative.degree == 2) {
            bend = ((p[2] - p[1]) - (p[1] - p[0])).place();
            middle = 0.25 * (p[0] + 2 * p[1] + p[2]).place();
            change = (p[2] - p[0]).place();
        }
        m_factors[0] = middle.dot(middle);
        m_factors[1] = 2 * middle.dot(change);
        m_factors[2] = change.dot(change) + 2 * middle.dot(bend);
        m_factors[3] = 2 * change.dot(bend);
        m_factors[4] = bend.dot(bend);
    }

    double at(double part) const {
        const double t = part - 0.5;
        const double* const f = m_factors;
        return std::sqrt(std::max(f[0] + t * (f[1] + t * (f[2] + t * (f[3] + t * f[4]))), 0.0));
    }

private:
    double m_factors[5];
};

double speedOf(const BezierCurve& curve, const BezierCurve& derivative, bool rational,
               double part) {
    const Homogeneous change = derivative.at(part);
    if (!rational) {
        return lengthOf(change.place());
    }
    const Homogeneous here = curve.at(part);
    const Point point = project(here);
    return lengthOf((change.place() - change.weight * point) * (1 / here.weight));
}

} // namespace

double lengthOf(const Line& line) {
    return distance(line.start, line.end);
}

double lengthOf(const EllipticArc& arc) {
    const double sweep = std::fabs(arc.sweep);
    if (isCircular(arc)) {
        return sweep * lengthOf(arc.first);
    }
    const PrincipalAxes axes = principalAxesOf(arc);
    const double major = lengthOf(axes.major);
    const double minor = lengthOf(axes.minor);
    if (!(major > 0) || !std::isfinite(major + arc.from + arc.sweep)) {
        return major * sweep;
    }
    if (sweep == fullTurn) {
        return circumference(major, minor);
    }
    const double ratio = minor / major;
    const auto speed = [&](double t) {
        const double cosine = ratio * std::cos(t);
        const double sine = std::sin(t);
        return std::sqrt(cosine * cosine + sine * sine);
    };
    // From quarter to quarter: at these, flat ellipses turn at once.
    const double end = std::max(arc.from, arc.from + arc.sweep) - axes.phase;
    double from = end - sweep;
    double sum = 0;
    for (int quarter = 0; quarter < 5 && from < end; ++quarter) {
        const double next = (std::floor(from / (pi / 2)) + 1) * (pi / 2);
        const double to = next - from > 1e-12 ? std::min(next, end) : std::min(next + pi / 2, end);
        sum += integral(from, to, speed);
        from = to;
    }
    return major * sum;
}

double lengthOf(const BSpline& spline) {
    const SplineSpans spans(spline);
    double sum = 0;
    for (std::size_t span = spans.first(); span < spans.last(); ++span) {
        if (spans.width(span) > 0) {
            const BezierCurve curve = spans.curveOf(span);
            const BezierCurve derivative = curve.derivative();
            if (!spans.isRational() && (spans.degree() == 2 || spans.degree() == 3)) {
                const PlainSpeed speed(derivative);
                sum += integral(0, 1, [&](double part) { return speed.at(part); });
                continue;
            }
            sum += integral(0, 1, [&](double part) {
                return speedOf(curve, derivative, spans.isRational(), part);
            });
        }
    }
    return sum;
}

double lengthOf(const Curve& curve) {
    return std::visit([](const auto& each) { return lengthOf(each); }, curve);
}

} // namespace converters::drawing
