#pragma once

#include "tools/cloudconv/Contours.h"
#include "tools/cloudconv/preview/Plane.h"

#include <cstddef>
#include <vector>

/// A contour of a drawing's walk, in the plane of the drawing.
struct DrawnContour {
    ContourKind kind;
    double length;
    /// How far apart its own ends are, where that makes a gap; else 0.
    double gap;
    /// In the order of the walk. Some may have no place to be shown.
    std::vector<Place> places;
};

/// Two ends that are near and not joined.
struct DrawnGap {
    Place first;
    Place second;
    double distance;
};

/// What there is to see of a drawing.
struct DrawingScene {
    std::vector<DrawnContour> contours;
    std::vector<DrawnGap> gaps;
    /// Of the places that can be shown.
    Bounds bounds;
    std::size_t points = 0;
    std::size_t pointsWithoutPlace = 0;
    /// Whether some of it is more than POINTs, so that a drawing's y is the cloud's z.
    bool hasLines = false;
};

/// @param distance  ends of open contours up to this far apart are gaps
DrawingScene sceneOf(const DxfContents& drawing, double distance);
