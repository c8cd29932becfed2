#pragma once

#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/input/ByteWindow.h"

namespace converters::drawing {

/// Reads a DXF file, text or binary, in one pass.
///
/// Sections may come in any order, some may be missing; what is damaged in one entity costs no
/// other.
///
/// @throws Refusal  for what is no DXF file, for a binary file that is cut short, and when the
///                  caller stops the work
Drawing parseDrawing(input::ByteWindow file, const Progress& progress);

} // namespace converters::drawing
