#pragma once

#include "converters/detail/drawing/contours/TourStops.h"

namespace converters::drawing {

/// Exchanges stops and turns stretches of a tour while that makes it shorter (2-opt and Or-opt with
/// neighbour lists).
///
/// @param cost  is told from `begin` to 1 how far the work is
void improve(TourStops& tour, OrderCost& cost, double begin);

} // namespace converters::drawing
