#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/sampling/Sampling.h"

namespace converters::drawing {

/// @throws Refusal  for options out of range
void checkOptions(const PathOptions& options);

/// What the options mean for a drawing.
struct PathSettings {
    LengthUnit drawingUnit = LengthUnit::none;
    LengthUnit unit = LengthUnit::none;
    /// From the coordinates of the drawing to those of the result.
    Affine map;
    SamplingLimits limits;
    /// In units of the result.
    double joinDistance;
};

/// @param notes  gets what had to be assumed
PathSettings settingsFor(const Drawing& drawing, const PathOptions& options,
                         std::vector<std::string>& notes);

} // namespace converters::drawing
