#pragma once

#include <string>
#include <string_view>

class DL_CreationInterface;

namespace dxfeditor {

/// Who reads the entities that DxfEntityDecoder can read.
enum class DxfDecoding { Dxflib, Ours };

/// What the library was built for (CMake option CONVERTERS_DECODE_DXF).
#ifdef CONVERTERS_NO_DXF_DECODER
inline constexpr DxfDecoding defaultDxfDecoding = DxfDecoding::Dxflib;
#else
inline constexpr DxfDecoding defaultDxfDecoding = DxfDecoding::Ours;
#endif

/// A DXF text as DxfIntake rewrites it for dxflib.
std::string dxfIntake(std::string_view text);

/// Lets dxflib parse a DXF text, after DxfIntake, and report to `reader` what the drawing model
/// takes: layers, line types, blocks, points, lines, circles, arcs, polylines and splines.
///
/// Takes time and memory in proportion to the text whatever it holds, and does not depend on the
/// locale (see ClassicLocale for a global C++ locale that is not the classic one).
///
/// Entities that DxfEntityDecoder takes go past dxflib, which makes no difference but speed.
///
/// @param text      read up to its first NUL
/// @param decoding  for tests, which compare both
/// @throws what the reader throws, and std::bad_alloc
void parseDxf(std::string_view text, DL_CreationInterface& reader,
              DxfDecoding decoding = defaultDxfDecoding);

} // namespace dxfeditor
