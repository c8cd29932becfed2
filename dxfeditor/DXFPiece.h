#pragma once

#include <cstddef>

/// The part of a drawing's walk that comes of one entity: the points from `begin` up to, not
/// including, `end`.
struct DXFPiece {
    /// Index of the first point.
    std::size_t begin;
    /// Index behind the last point.
    std::size_t end;
    /// Index of the entity in DXFDocument::entities().
    std::size_t entity;
    /// Whether a point of the entity is left out, since it is joined there to an entity that has
    /// it, too. Of an entity of a single point no other is left.
    bool isJoined;
};
