#pragma once

#include "converters/detail/drawing/geometry/Curve.h"

namespace converters::drawing {

/// The half axes of an ellipse: centre + cos(t - phase) major + sin(t - phase) minor is the point
/// that the arc has at its parameter t.
struct PrincipalAxes {
    /// Perpendicular, the longer one first; the minor one is 0 where the ellipse is a line.
    Vector major;
    Vector minor;
    /// Radians. 0, or a quarter turn, where the conjugate half diameters are perpendicular.
    double phase;
};

PrincipalAxes principalAxesOf(const EllipticArc& arc);

} // namespace converters::drawing
