#pragma once

#include "tools/cloudconv/preview/PlotScale.h"

#include <vector>

/// Places in pixels, without those that a straight line passes by at less than a tenth of a pixel:
/// of a sampled line the ends are left. A place that cannot be shown separates two pieces.
std::vector<Place> pixelPath(const std::vector<Place>& places, const PlotScale& scale);

/// An arrow: the place of its middle and where it points to, as a vector of length 1.
struct Arrow {
    Place place;
    Place direction;
};

/// Arrows along a path in pixels, evenly spaced; one in the middle of a short path, none on a path
/// shorter than `shortest`.
std::vector<Arrow> arrowsAlong(const std::vector<Place>& path, double shortest = 16.0);
