#include "converters/detail/drawing/geometry/CurveOperations.h"

#include "converters/detail/drawing/geometry/SplineSpans.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace converters::drawing {

namespace {

/// Turns the order of knots round, so that the curve has the same range. Those before and behind
/// that may be so far away that nothing would be left of it beside them.
void reverseKnots(BSpline& spline) {
    const double sum = spline.knots[spline.degree] + spline.knots[spline.controlPoints.size()];
    std::reverse(spline.knots.begin(), spline.knots.end());
    for (double& knot : spline.knots) {
        knot = sum - knot;
    }
}

void transform(BSpline& spline, const Affine& map) {
    for (Point& point : spline.controlPoints) {
        point = map(point);
    }
}

} // namespace

Point startOf(const Line& line) {
    return line.start;
}
Point startOf(const EllipticArc& arc) {
    return arc.start;
}
Point startOf(const BSpline& spline) {
    return SplineSpans(spline).start();
}
Point startOf(const Curve& curve) {
    return std::visit([](const auto& each) { return startOf(each); }, curve);
}

Point endOf(const Line& line) {
    return line.end;
}
Point endOf(const EllipticArc& arc) {
    return arc.end;
}
Point endOf(const BSpline& spline) {
    return SplineSpans(spline).end();
}
Point endOf(const Curve& curve) {
    return std::visit([](const auto& each) { return endOf(each); }, curve);
}

Point pointAt(const Line& line, double t) {
    if (!(t > 0)) {
        return line.start;
    }
    return t < 1 ? between(line.start, line.end, t) : line.end;
}

Point pointAt(const EllipticArc& arc, double t) {
    if (!(t > 0)) {
        return arc.start;
    }
    return t < 1 ? pointBehindStart(arc, t * arc.sweep) : arc.end;
}

Point pointAt(const BSpline& spline, double t) {
    const SplineSpans spans(spline);
    if (!(t > 0)) {
        return spans.start();
    }
    return t < 1 ? spans.at(spans.from() + t * (spans.to() - spans.from())) : spans.end();
}

Point pointAt(const Curve& curve, double t) {
    return std::visit([t](const auto& each) { return pointAt(each, t); }, curve);
}

// The chord from angle a to angle a + d is 2 sin(d / 2) long and perpendicular to the direction of
// a + d / 2. Added to the start it is exact for flat arcs, too, of a radius that the centre's
// rounding alone would spoil.
Point pointBehindStart(const EllipticArc& arc, double angle) {
    const double middle = arc.from + 0.5 * angle;
    const double chord = 2 * std::sin(0.5 * angle);
    return arc.start + chord * (std::cos(middle) * arc.second - std::sin(middle) * arc.first);
}

Line transformed(const Line& line, const Affine& map) {
    return {map(line.start), map(line.end)};
}

EllipticArc transformed(const EllipticArc& arc, const Affine& map) {
    return {map(arc.centre),
            map.ofVector(arc.first),
            map.ofVector(arc.second),
            arc.from,
            arc.sweep,
            map(arc.start),
            map(arc.end)};
}

BSpline transformed(const BSpline& spline, const Affine& map) {
    BSpline result = spline;
    transform(result, map);
    return result;
}

Curve transformed(const Curve& curve, const Affine& map) {
    return std::visit([&](const auto& each) -> Curve { return transformed(each, map); }, curve);
}

void transform(Curve& curve, const Affine& map) {
    if (map.isIdentity()) {
        return;
    }
    if (BSpline* const spline = std::get_if<BSpline>(&curve)) {
        transform(*spline, map);
    } else {
        curve = transformed(curve, map);
    }
}

Line reversed(const Line& line) {
    return {line.end, line.start};
}

EllipticArc reversed(const EllipticArc& arc) {
    return {arc.centre, arc.first, arc.second, arc.from + arc.sweep,
            -arc.sweep, arc.end,   arc.start};
}

BSpline reversed(BSpline spline) {
    std::reverse(spline.controlPoints.begin(), spline.controlPoints.end());
    std::reverse(spline.weights.begin(), spline.weights.end());
    reverseKnots(spline);
    return spline;
}

Curve reversed(Curve curve) {
    return std::visit([](auto&& each) -> Curve { return reversed(std::move(each)); },
                      std::move(curve));
}

bool isFinite(const Line& line) {
    return isFinite(line.start) && isFinite(line.end);
}
bool isFinite(const EllipticArc& arc) {
    // The sum is finite only when all of these are, and every point of the arc.
    const double reach = lengthOf(arc.centre) + lengthOf(arc.first) + lengthOf(arc.second);
    return std::isfinite(reach + arc.from + arc.sweep) && isFinite(arc.start) && isFinite(arc.end);
}
bool isFinite(const BSpline& spline) {
    return std::all_of(spline.controlPoints.begin(), spline.controlPoints.end(),
                       [](const Point& point) { return isFinite(point); });
}
bool isFinite(const Curve& curve) {
    return std::visit([](const auto& each) { return isFinite(each); }, curve);
}

} // namespace converters::drawing
