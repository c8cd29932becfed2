#pragma once

#include <cstddef>

/// A stretch of a drawing's walk that is joined end to end: the points from `begin` up to, not
/// including, `end`, of which there is at least one.
struct DXFContour {
    /// Index of the first point.
    std::size_t begin;
    /// Index behind the last point.
    std::size_t end;
    /// Whether the last point is a copy of the first. True for a single finite point; false for a
    /// circle by itself, whose walk stops a step short of its start, unless that step is shorter
    /// than 0.001.
    bool closed;
    /// Index of the first piece that it is made of: one for each of its entities, in the order of
    /// the walk.
    std::size_t firstPiece = 0;
    /// Index behind its last piece.
    std::size_t endPiece = 0;
};
