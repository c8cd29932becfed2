#pragma once

#include <cstddef>
#include <string>

/// What a drawing of pathDrawing() has.
enum class PathDrawingKind {
    /// Lines, arcs, circles, polylines with bulges, ellipses and splines, side by side.
    plain,
    /// The same in a few blocks of ten, which are inserted turned, mirrored and stretched.
    inBlocks,
    /// Only what the walk of fromDxf follows as it is drawn: open polylines without bulges, no
    /// ellipses.
    walkable
};

/// A drawing of so many entities as workpieces have them.
/// @param entities  how many are drawn
std::string pathDrawing(std::size_t entities, PathDrawingKind kind);

/// The radius of the arcs and circles there.
constexpr double pathDrawingRadius = 4;
