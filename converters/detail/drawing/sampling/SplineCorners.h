#pragma once

#include "converters/detail/drawing/geometry/SplineSpans.h"

#include <vector>

namespace converters::drawing {

/// The parameters within a spline where it has corners or cusps, ascending, and its end: between
/// one and the next the curve is smooth, its direction as well as its speed.
///
/// Corners are knots as multiple as the degree. Cusps are where the derivative vanishes; they are
/// found to 1e-10 of the size of their span. Narrow spans (1e-12 of the whole) are between corners,
/// too: no step is to be taken inside.
std::vector<double> cornersOf(const SplineSpans& spans);

} // namespace converters::drawing
