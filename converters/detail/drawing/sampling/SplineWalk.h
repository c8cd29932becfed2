#pragma once

#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/sampling/PointSink.h"
#include "converters/detail/drawing/sampling/Sampling.h"

namespace converters::drawing {

/// Gives the sink the points of a spline.
///
/// @return false where there are too many
bool walkSpline(const BSpline& spline, const SamplingLimits& limits, PointSink& sink);

} // namespace converters::drawing
