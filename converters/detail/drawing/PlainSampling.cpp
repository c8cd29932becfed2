// Even steps, until curves are sampled as Sampling.h says.
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

std::size_t countPoints(const Curve& curve, const SamplingLimits& limits) {
    double chord = lengthOf(curve);
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        const double radius = std::max(lengthOf(arc->first), lengthOf(arc->second));
        chord = std::min(chord / 4, std::sqrt(8 * radius * limits.tolerance));
    } else if (std::holds_alternative<BSpline>(curve)) {
        chord /= 400;
    }
    const double count = std::ceil(lengthOf(curve) / std::min(chord, limits.step));
    return count < static_cast<double>(limits.maximumPoints)
               ? static_cast<std::size_t>(std::max(1.0, count))
               : tooManyPoints;
}

bool appendPoints(const Curve& curve, const SamplingLimits& limits, std::vector<Point>& points) {
    const std::size_t count = countPoints(curve, limits);
    for (std::size_t i = 1; i < count; ++i) {
        points.push_back(pointAt(curve, static_cast<double>(i) / static_cast<double>(count)));
    }
    points.push_back(endOf(curve));
    return true;
}

} // namespace converters::drawing
