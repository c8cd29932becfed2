#pragma once

#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/dxf/LayerTable.h"

#include <vector>

namespace converters::drawing {

/// What contours are made from.
struct JoinedDrawing {
    const Drawing& drawing;
    const Expansion& expansion;
    const LayerTable& layers;
    const std::vector<ChainLink>& links;

    const Placement& placementOf(const ChainLink& link) const {
        return expansion.placements[expansion.drawn[link.drawn].placement];
    }
};

} // namespace converters::drawing
