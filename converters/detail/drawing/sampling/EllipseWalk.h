#pragma once

#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/sampling/PointSink.h"
#include "converters/detail/drawing/sampling/Sampling.h"

namespace converters::drawing {

/// Gives the sink the points of an elliptic arc that is not circular.
///
/// @return false where there are too many
bool walkEllipse(const EllipticArc& arc, const SamplingLimits& limits, PointSink& sink);

} // namespace converters::drawing
