#pragma once

#include "converters/DrawingPath.h"

#include <cstddef>

namespace converters::drawing {

/// How many there are of all that contours are made of.
struct PathSizes {
    std::size_t points = 0;
    std::size_t contours = 0;
    std::size_t pieces = 0;
    std::size_t entities = 0;
    std::size_t arcs = 0;
    std::size_t ellipticArcs = 0;
    std::size_t splines = 0;
};

PathSizes sizesOf(const PathContours& contours);

/// Takes back what was added since they were of these sizes.
void cutTo(const PathSizes& sizes, PathContours& contours);

/// Asks for memory for contours of these sizes.
void reserve(const PathSizes& sizes, PathContours& contours);

} // namespace converters::drawing
