#pragma once

#include "converters/DrawingPath.h"

#include <cstdint>

/// What a joined stretch of a drawing's walk is.
enum class ContourKind : std::uint8_t {
    /// Two ends apart from each other.
    Open,
    /// Returns to its start.
    Closed,
    /// A circle by itself. In the walk of a drawing it stops a step short of its start.
    Circle,
    /// Points of the drawing, or a line too short to have a direction.
    Points,
};

/// The name of a kind: "open", "closed", "circle", "points".
const char* nameOf(ContourKind kind);

/// What a contour of a path is, by its exact pieces.
ContourKind kindOf(const converters::DrawingPath& path, const converters::PathContour& contour);
