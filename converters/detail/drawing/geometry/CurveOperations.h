#pragma once

#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"

/// What can be done to any curve. All of it is exact up to rounding: pointAt(transformed(c, a), t)
/// is a(pointAt(c, t)), and pointAt(reversed(c), t) is pointAt(c, 1 - t).
namespace converters::drawing {

/// Where a curve starts and ends. Exactly what the drawing says: the ends of lines and arcs, and
/// the first and last control point of splines with clamped ends.
Point startOf(const Line& line);
Point startOf(const EllipticArc& arc);
Point startOf(const BSpline& spline);
Point startOf(const Curve& curve);
Point endOf(const Line& line);
Point endOf(const EllipticArc& arc);
Point endOf(const BSpline& spline);
Point endOf(const Curve& curve);

/// A point of a curve.
///
/// @param t  in [0, 1]: 0 gives startOf(), 1 endOf(). What is outside, or no number, counts as the
///           nearer end
Point pointAt(const Line& line, double t);
Point pointAt(const EllipticArc& arc, double t);
Point pointAt(const BSpline& spline, double t);
Point pointAt(const Curve& curve, double t);

/// The point of an arc that lies `angle` behind its start, in its own parameter: negative ones for
/// a negative sweep.
Point pointBehindStart(const EllipticArc& arc, double angle);

/// The image of a curve under an affine map.
Line transformed(const Line& line, const Affine& map);
EllipticArc transformed(const EllipticArc& arc, const Affine& map);
BSpline transformed(const BSpline& spline, const Affine& map);
Curve transformed(const Curve& curve, const Affine& map);

/// Transforms in place, without a copy of the knots.
void transform(Curve& curve, const Affine& map);

/// The same curve, walked the other way.
Line reversed(const Line& line);
EllipticArc reversed(const EllipticArc& arc);
BSpline reversed(BSpline spline);
Curve reversed(Curve curve);

/// The length along a curve: exact for lines and circular arcs, to about 1e-9 of itself for the
/// others. Not a number, or infinite, when coordinates are, or overflow.
double lengthOf(const Line& line);
double lengthOf(const EllipticArc& arc);
double lengthOf(const BSpline& spline);
double lengthOf(const Curve& curve);

/// Whether a curve is finite: all coordinates, and those between its ends.
bool isFinite(const Line& line);
bool isFinite(const EllipticArc& arc);
bool isFinite(const BSpline& spline);
bool isFinite(const Curve& curve);

} // namespace converters::drawing
