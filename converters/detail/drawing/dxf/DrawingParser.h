#pragma once

#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/Drawing.h"

#include <string_view>

namespace converters::drawing {

/// Reads a DXF file, text or binary, in one pass.
///
/// Sections may come in any order, some may be missing; what is damaged in one entity costs no
/// other. The drawing refers to the bytes of the file.
///
/// @throws Refusal  for what is no DXF file, for a binary file that is cut short, and when the
///                  caller stops the work
Drawing parseDrawing(std::string_view file, const Progress& progress);

} // namespace converters::drawing
