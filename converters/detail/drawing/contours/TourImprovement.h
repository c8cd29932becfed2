#pragma once

#include "converters/detail/drawing/contours/TourStops.h"

namespace converters::drawing {

/// Exchanges stops and turns stretches of a tour while that makes it shorter (2-opt and Or-opt with
/// neighbour lists).
void improve(TourStops& tour, OrderCost& cost);

} // namespace converters::drawing
