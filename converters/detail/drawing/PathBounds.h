#pragma once

#include "converters/detail/drawing/geometry/Curve.h"

namespace converters::drawing {

/// The box around points.
struct PathBounds {
    Point lowest;
    Point highest;
    /// Without, the corners mean nothing.
    bool hasPoints = false;
};

} // namespace converters::drawing
