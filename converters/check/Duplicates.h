#pragma once

#include "converters/DrawingPath.h"

#include <cstdint>
#include <vector>

namespace converters {

class SearchProgress;

/// An entity of a path that draws what an earlier one has drawn.
struct Duplicate {
    /// Indexes into DrawingPath::entities.
    std::uint32_t entity;
    std::uint32_t earlier;
};

/// The pieces of an entity: `first` up to, not including, `end` in DrawingPath::pieces.
struct EntityPieces {
    std::uint32_t entity;
    std::size_t first;
    std::size_t end;
};

/// The entities of a path that have pieces, in the order of the path. It has to be in the order in
/// which it is drawn: another may tear an entity apart.
std::vector<EntityPieces> piecesOfEntities(const DrawingPath& path);

/// Whether an entity that is no POINT has no extent: its one piece ends where it starts.
bool isDot(const DrawingPath& path, const EntityPieces& entity);

/// Entities that equal an earlier one, whatever their kinds, where they start, and in which
/// direction they run: a LINE over a polyline of two vertices, a CIRCLE over two half arcs.
///
/// @param distance  places no farther apart are the same; above 0
std::vector<Duplicate> duplicatesOf(const DrawingPath& path,
                                    const std::vector<EntityPieces>& entities, double distance,
                                    SearchProgress& progress);

} // namespace converters
