#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/Curve.h"

#include <optional>

namespace converters::drawing {

/// A full circle in the plane z = centre.z, counter-clockwise from its point with the largest x.
/// Start and end are equal. A negative radius counts as a positive one.
EllipticArc circle(const Point& centre, double radius);

/// An arc in the plane z = centre.z, counter-clockwise from one angle to the other.
///
/// The sweep is above 0 and at most a full turn, which angles give that differ by a multiple of
/// 360; its end is an exact copy of its start.
///
/// @param start, end  degrees; multiples of 90 give exact ends
/// @return none for equal angles (to 1e-9), as other programs read them, and for angles that are
///         not finite
std::optional<EllipticArc> circularArc(const Point& centre, double radius, double start,
                                       double end);

/// An elliptic arc: centre + cos(t) major + sin(t) minor, t from `start` upwards to `end`.
///
/// The minor half axis is normal x major times the ratio. The sweep is above 0 and at most a full
/// turn, which parameters give that differ by a multiple of it, to 2e-5, since programs write as
/// few digits: 6.28318, 6.28319, 6.2832. Its end is then an exact copy of its start.
///
/// @param normal      of any length; without direction it counts as (0, 0, 1)
/// @param start, end  radians
/// @return none for equal parameters (to 1e-9), and for parameters that are not finite
std::optional<EllipticArc> ellipse(const Point& centre, const Vector& major, double ratio,
                                   const Vector& normal, double start, double end);

/// The edge of a polyline from one vertex to the next, in the plane z = start.z.
///
/// @param bulge  tan of a quarter of the angle swept, positive counter-clockwise. One that bends
///               the edge by less than rounding does (1e-10), and one that is no finite number or
///               gives no finite circle, gives a straight line.
/// @return a Line or an EllipticArc, with exactly these ends
Curve bulgeEdge(const Point& start, const Point& end, double bulge);

/// Whether the arc is part of a circle, to 1e-10 of its radius.
bool isCircular(const EllipticArc& arc);

/// An arc that is circular, as callers of the library see it: the normal such that it turns
/// counter-clockwise.
PathArc pathArc(const EllipticArc& arc);

/// An arc as callers of the library see it: perpendicular half axes, the longer one first, a sweep
/// above 0. Exact where the conjugate half diameters are perpendicular already. One that is seen
/// from its edge has a minor half axis of 0.
PathEllipticArc pathEllipticArc(const EllipticArc& arc);

} // namespace converters::drawing
