#pragma once

#include "converters/DrawingPath.h"
#include "tools/cloudconv/ContourKind.h"
#include "tools/cloudconv/preview/Plane.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// A contour of a drawing, in its plane.
struct DrawnContour {
    ContourKind kind;
    double length;
    /// How far apart its own ends are, where that makes a gap; else 0.
    double gap;
    /// Index into DrawingScene::layers.
    std::size_t layer;
    /// In order. Some may have no place to be shown.
    std::vector<Place> places;
};

/// Two ends that are near and not joined.
struct DrawnGap {
    Place first;
    Place second;
    double distance;
};

/// What there is to see of a drawing, from above.
struct DrawingScene {
    std::vector<DrawnContour> contours;
    /// The names of the layers that have contours, in the order of these: printable UTF-8. One
    /// without a name for a walk, which does not tell.
    std::vector<std::string> layers;
    std::vector<DrawnGap> gaps;
    /// Of the places that can be shown.
    Bounds bounds;
    std::size_t points = 0;
    std::size_t pointsWithoutPlace = 0;
};

/// @param distance  ends of open contours up to this far apart are gaps
/// @param progress  called with the part that is done, 0 to 1, and returns true; may be empty
DrawingScene sceneOf(const converters::DrawingPath& path, double distance,
                     std::function<bool(double)> progress = {});
