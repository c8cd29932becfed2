#pragma once

#include <string_view>

class DL_CreationInterface;

namespace dxfeditor {

/// Lets dxflib parse a DXF text, after DxfIntake, and report to `reader` what the drawing model
/// takes: layers, line types, blocks, points, lines, circles, arcs, polylines and splines.
///
/// Takes time and memory in proportion to the text whatever it holds, and does not depend on the
/// locale (see ClassicLocale for a global C++ locale that is not the classic one).
///
/// @param text  read up to its first NUL
/// @throws what the reader throws, and std::bad_alloc
void parseDxf(std::string_view text, DL_CreationInterface& reader);

} // namespace dxfeditor
