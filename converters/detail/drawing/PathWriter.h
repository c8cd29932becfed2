#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/PathSettings.h"
#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/dxf/LayerTable.h"

#include <vector>

namespace converters::drawing {

/// What contours are written from.
struct JoinedDrawing {
    const Drawing& drawing;
    const Expansion& expansion;
    const LayerTable& layers;
    const std::vector<ChainLink>& links;
};

/// Writes contours: their points, exact pieces and entities.
///
/// Where the ends of joined entities differ, the second one is left out when it is within the
/// tolerance; else a straight piece leads from one to the other.
///
/// @param path  gets points, contours, pieces and their curves, entities
/// @throws Refusal  for more points than allowed, before memory is asked for more than two million
void writeContours(const JoinedDrawing& joined, const PathSettings& settings, DrawingPath& path,
                   const Progress& progress);

} // namespace converters::drawing
