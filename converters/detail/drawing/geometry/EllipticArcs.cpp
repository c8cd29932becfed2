#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include "converters/detail/drawing/geometry/PrincipalAxes.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <cmath>
#include <limits>

namespace converters::drawing {

namespace {

/// How far an arc turns counter-clockwise; none for equal angles. `turn` is the full turn in units
/// of the angles.
std::optional<double> sweepBetween(double start, double end, double turn, double slack) {
    if (!std::isfinite(start) || !std::isfinite(end) || std::fabs(end - start) <= 1e-9) {
        return std::nullopt;
    }
    double sweep = std::fmod(std::fmod(end, turn) - std::fmod(start, turn), turn);
    sweep += sweep < 0 ? turn : 0;
    const bool apart = std::fabs(end - start) > turn / 2;
    if (sweep == 0 || sweep >= turn - slack || (sweep <= slack && apart)) {
        return turn;
    }
    return sweep;
}

Point pointOf(const EllipticArc& arc, const Angle& angle) {
    return arc.centre + angle.cos() * arc.first + angle.sin() * arc.second;
}

/// The minor half axis. Its length is that part of the major one, also where the normal is not
/// quite perpendicular to that; where it is nearly along it, there is no plane to go by.
Vector minorAxis(const Vector& major, double ratio, const Vector& normal) {
    constexpr double noticeable = 1e-9;
    const Vector across = normal.cross(major);
    const double majorLength = lengthOf(major);
    const double length = lengthOf(across);
    const bool isPerpendicular = std::fabs(length - majorLength) <= noticeable * majorLength;
    const bool hasPlane = length > noticeable * majorLength;
    return isPerpendicular || !hasPlane ? ratio * across : ratio * majorLength / length * across;
}

bool isUsable(const Vector& first) {
    return isFinite(first) && first.dot(first) < std::numeric_limits<double>::infinity();
}

} // namespace

EllipticArc circle(const Point& centre, double radius) {
    radius = std::fabs(radius);
    const Point start(centre.x + radius, centre.y, centre.z);
    return {centre, {radius, 0, 0}, {0, radius, 0}, 0, fullTurn, start, start};
}

std::optional<EllipticArc> circularArc(const Point& centre, double radius, double start,
                                       double end) {
    const std::optional<double> sweep = sweepBetween(start, end, 360, 1e-9);
    if (!sweep) {
        return std::nullopt;
    }
    EllipticArc arc = circle(centre, radius);
    const Angle first = Angle::fromDegrees(start);
    arc.from = first.radians();
    arc.start = pointOf(arc, first);
    const bool full = *sweep == 360;
    arc.sweep = full ? fullTurn : *sweep / 180 * pi;
    arc.end = full ? arc.start : pointOf(arc, Angle::fromDegrees(end));
    return arc;
}

std::optional<EllipticArc> ellipse(const Point& centre, const Vector& major, double ratio,
                                   const Vector& normal, double start, double end) {
    // Of 2 pi in five digits.
    constexpr double slack = 2e-5;
    const std::optional<double> sweep = sweepBetween(start, end, fullTurn, slack);
    if (!sweep) {
        return std::nullopt;
    }
    const Vector about = directionOf(normal).value_or(Vector(0, 0, 1));
    EllipticArc arc{centre, major, minorAxis(major, ratio, about), 0, *sweep, {}, {}};
    const Angle first = Angle::fromRadians(std::fmod(start, fullTurn));
    arc.from = first.radians();
    arc.start = pointOf(arc, first);
    arc.end = *sweep == fullTurn ? arc.start : pointOf(arc, Angle::fromRadians(arc.from + *sweep));
    return arc;
}

// With half the chord h, the left normal n of the same length and the bulge b, the centre is
// start + h + n (1 - b^2) / (2b): the chord seen from the centre spans the angle 4 atan(b).
Curve bulgeEdge(const Point& start, const Point& end, double bulge) {
    constexpr double noticeable = 1e-10;
    const Line line{start, end};
    if (!(std::fabs(bulge) > noticeable) || !std::isfinite(bulge)) {
        return line;
    }
    const Vector half(0.5 * (end.x - start.x), 0.5 * (end.y - start.y), 0);
    const Vector left(-half.y, half.x, 0);
    const Vector toCentre = half + (0.5 * (1 / bulge - bulge)) * left;
    const Vector first = -toCentre;
    // A quarter turn on, in the sense of the bulge.
    const Vector second = Vector(-first.y, first.x, 0);
    if (!isUsable(first) || (half.x == 0 && half.y == 0)) {
        return line;
    }
    return EllipticArc{start + toCentre, first, second, 0, 4 * std::atan(bulge), start, end};
}

bool isCircular(const EllipticArc& arc) {
    constexpr double part = 1e-10;
    const double first = arc.first.dot(arc.first);
    const double second = arc.second.dot(arc.second);
    return first > 0 && std::fabs(first - second) <= 2 * part * first &&
           std::fabs(arc.first.dot(arc.second)) <= part * first;
}

PathArc pathArc(const EllipticArc& arc) {
    const Vector about = arc.sweep < 0 ? arc.second.cross(arc.first) : arc.first.cross(arc.second);
    return {arc.centre, directionOf(about).value_or(Vector(0, 0, 1)), lengthOf(arc.first),
            std::fabs(arc.sweep)};
}

PathEllipticArc pathEllipticArc(const EllipticArc& arc) {
    const PrincipalAxes axes = principalAxesOf(arc);
    double from = arc.from - axes.phase;
    Vector minor = axes.minor;
    if (arc.sweep < 0) {
        from = -from;
        minor = -minor;
    }
    from = std::fmod(from, fullTurn);
    return {arc.centre, axes.major, minor, from, std::fabs(arc.sweep)};
}

} // namespace converters::drawing
