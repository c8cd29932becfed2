#pragma once

#include "converters/detail/drawing/geometry/Vector.h"

#include <cstddef>
#include <variant>
#include <vector>

namespace converters::drawing {

/// A straight line.
struct Line {
    Point start;
    Point end;
};

/// An arc of an ellipse or a circle: centre + cos(t) first + sin(t) second, for t from `from` to
/// `from` + `sweep`.
///
/// `first` and `second` are any two conjugate half diameters: an affine map of the arc maps them
/// and the centre, and leaves the parameters as they are. They are perpendicular and of one length
/// where the arc is circular.
struct EllipticArc {
    Point centre;
    Vector first;
    Vector second;
    /// Radians; a negative sweep turns from `second` to `first`; at most a full turn.
    double from;
    double sweep;
    /// Where it starts and ends, exactly: what the drawing says may differ in the last bit from
    /// what the parameters give.
    Point start;
    Point end;
};

/// A B-spline from knots[degree] to knots[controlPoints.size()].
struct BSpline {
    std::size_t degree;
    /// Do not fall; controlPoints.size() + degree + 1 of them.
    std::vector<double> knots;
    std::vector<Point> controlPoints;
    /// Positive, one for each control point; empty where all are 1.
    std::vector<double> weights;
};

/// The few exact curves that a path is made of.
using Curve = std::variant<Line, EllipticArc, BSpline>;

} // namespace converters::drawing
