#pragma once

#include "converters/detail/drawing/contours/ContourOrder.h"
#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace converters::drawing {

/// Contours that are walked in any order, and where each is entered and left.
///
/// `members` are indexes into `contours`. The walk begins near `start`, and counts the way from
/// there only where `fromStart` says so.
struct TourTask {
    const std::vector<ContourShape>& contours;
    const PlaceRounding& rounding;
    const std::vector<std::uint32_t>& members;
    Place start;
    bool fromStart;
};

/// An order of the members with short ways.
///
/// First the nearest contour next, a closed one by any of its places. Then exchanges as long as
/// they make the ways shorter: a stretch of the tour turned round (2-opt), or up to three contours
/// moved elsewhere (Or-opt), tried for the nearest neighbours of each end only. At last each closed
/// contour starts where the ways to it and from it are shortest. All of these are limited in work,
/// so that a tour takes about n log n.
std::vector<ContourVisit> shortTour(const TourTask& task, OrderCost& cost);

/// The point of a closed contour that is the nearest of those where it may start.
std::size_t nearestStart(const ContourShape& contour, const PlaceRounding& rounding,
                         const Place& place, OrderCost& cost);

} // namespace converters::drawing
