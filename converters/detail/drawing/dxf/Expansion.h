#pragma once

#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/BlockGraph.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/KindNumbers.h"
#include "converters/detail/drawing/dxf/LayerTable.h"
#include "converters/detail/drawing/dxf/LeftOutTable.h"
#include "converters/detail/drawing/geometry/Affine.h"

#include <cstdint>
#include <vector>

namespace converters::drawing {

/// A colour as an entity has it in the end.
struct Colour {
    /// 1 to 255.
    std::uint16_t index;
    /// 0xRRGGBB or noTrueColour.
    std::int32_t trueColour;
};

/// Where a block is drawn, and what those of its entities inherit that say so.
struct Placement {
    /// From the coordinates of the block to those of the result.
    Affine map;
    /// The handle of the outermost INSERT.
    std::uint64_t insert = 0;
    /// Those of the INSERT.
    std::uint32_t layer = 0;
    Colour colour{7, noTrueColour};
    /// Whether this is a block, not the drawing itself.
    bool isBlock = false;
};

/// An entity that is drawn: one that a block holds, once for each time.
struct DrawnEntity {
    /// Index into Drawing::entities.
    std::uint32_t entity;
    /// Index into Expansion::placements.
    std::uint32_t placement;
};

/// All that is drawn, with all blocks in their places.
struct Expansion {
    std::vector<Placement> placements;
    /// In the order of the file.
    std::vector<DrawnEntity> drawn;
};

/// The layer that an entity is drawn on.
/// @param name  as its group 8 has it: a number in Drawing::layerNames
std::uint32_t layerOf(std::uint32_t name, const Placement& placement, const LayerTable& layers);

/// The colour that an entity is drawn in.
Colour colourOf(const Entity& entity, const Placement& placement, const LayerTable& layers);

/// Draws all blocks.
///
/// @param map      from the coordinates of the drawing to those of the result
/// @param leftOut  gets what is not drawn; kinds by their numbers in Drawing::kindNames
/// @throws Refusal  for more entities than options.maximumEntities, before memory is asked for
Expansion expand(Drawing& drawing, const BlockGraph& graph, const LayerTable& layers,
                 const Affine& map, const PathOptions& options, LeftOutTable& leftOut,
                 const Progress& progress);

} // namespace converters::drawing
