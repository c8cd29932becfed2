#pragma once

#include <cstddef>
#include <string>

/// A drawing of so many entities as workpieces have them: lines, arcs, circles, polylines with
/// bulges, ellipses and splines, side by side. With blocks: every entity stands in one of a few
/// blocks of ten, which are inserted turned, mirrored and stretched; `entities` counts what is
/// drawn.
std::string pathDrawing(std::size_t entities, bool withBlocks);

/// The radius of the arcs and circles there.
constexpr double pathDrawingRadius = 4;
