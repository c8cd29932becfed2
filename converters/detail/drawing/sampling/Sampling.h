#pragma once

#include "converters/detail/drawing/geometry/Curve.h"

#include <cstddef>
#include <limits>
#include <vector>

/// From exact curves to points.
///
/// No point of a curve is farther than the tolerance from its chord, and no point of a chord from
/// its curve: that is proven for each chord by a bound, not tried on a few points.
///
/// Nor are the chords of a curve together more than a hundredth shorter than it, however large the
/// tolerance: holes and fillets that are small beside it keep their shape.
///
/// - Circular arcs are divided evenly, with the least number of chords.
/// - Ellipses are walked chord by chord, each as long as the exact distance of an elliptic arc
///   from its chord allows, with points at the ends of the major axis.
/// - Splines are walked the same way: between parameters a and b, the curve leaves its chord by at
///   most (b - a)^2 / 8 times the largest second derivative across the chord. There are points at
///   knots as multiple as the degree, and at cusps.
/// - Where an ellipse or a spline without weights needs a good many chords, all of them are planned
///   at once by how much it bends, and measured by the same bounds; only what turns out too long is
///   walked.
namespace converters::drawing {

/// How finely curves are sampled.
struct SamplingLimits {
    /// The most that a chord may leave its curve; above 0.
    double tolerance;
    /// The most between neighbouring points, on straight lines, too; above 0.
    double step = std::numeric_limits<double>::infinity();
    /// Curves that need more points are not sampled.
    std::size_t maximumPoints = 100'000'000;
};

/// What countPoints() says of a curve that needs more than the maximum.
constexpr std::size_t tooManyPoints = std::numeric_limits<std::size_t>::max();

/// How many points appendPoints() appends: at least one.
///
/// Lines and circular arcs cost no more than a formula; ellipses and splines nearly what sampling
/// them costs, and never more than the maximum and the size of the spline account for.
///
/// @return tooManyPoints for more than limits.maximumPoints, and for a curve that is not finite
std::size_t countPoints(const Curve& curve, const SamplingLimits& limits);

/// Appends the points of a curve behind its start, which the curve before has as its end. The last
/// one is an exact copy of endOf(curve).
///
/// @return false, with `points` as they were, where countPoints() says tooManyPoints
bool appendPoints(const Curve& curve, const SamplingLimits& limits, std::vector<Point>& points);

} // namespace converters::drawing
