#pragma once

#include "converters/detail/drawing/geometry/Curve.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace converters::drawing {

/// No spline of a higher degree is taken: cost grows with the square of the degree, and programs
/// for drawing stop at 25.
constexpr std::size_t largestDegree = 31;

/// A spline as a file defines it, with all the liberties that programs take.
struct SplineDefinition {
    /// May be anything.
    long degree = 3;
    /// Flags 1 and 2.
    bool closed = false;
    bool periodic = false;
    std::vector<double> knots;
    std::vector<double> weights;
    std::vector<Point> controlPoints;
    std::vector<Point> fitPoints;
    /// Directions at the first and the last fit point; their length does not matter.
    std::optional<Vector> startTangent;
    std::optional<Vector> endTangent;
};

/// The B-spline that a file means.
///
/// - With control points: these, even when there are fit points, too. The number of knots tells
///   how they are meant (n control points, degree p): n + p + 1 is a B-spline as it stands; for
///   closed or periodic ones, n + 2p + 1 leaves out the p control points that repeat, n + 1 the
///   knots that repeat, too; n + p - 1 leaves out the first and the last knot, which have no
///   influence. None at all are uniform knots with clamped ends.
/// - Without: the cubic through the fit points of fitSpline().
/// - Knots that fall by no more than rounding (1e-5 of their range) are made equal. Weights that
///   are all equal are left out.
///
/// @return none for what is broken: a degree below 1 or above largestDegree, counts that
///         contradict each other, knots that fall or have no range, weights that are not positive
///         or differ by a factor of more than 1e12, numbers that are not finite, and fewer points
///         than a curve needs, if there are no fit points to go by
std::optional<BSpline> splineFrom(SplineDefinition definition);

/// The cubic spline through points: chord-length parameters, second derivative continuous.
///
/// Neighbours that are equal count once. An end without tangent is natural (its second derivative
/// is 0). A tangent has the length of one unit of chord. Closed ones without tangents are periodic:
/// smooth where they close; with tangents, they only end where they start.
///
/// @param points  at least two that differ, finite; closed ones may repeat the first at the end
/// @return none for fewer points, and for any that are not finite
std::optional<BSpline> fitSpline(const std::vector<Point>& points,
                                 const std::optional<Vector>& startTangent,
                                 const std::optional<Vector>& endTangent, bool closed);

} // namespace converters::drawing
