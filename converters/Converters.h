#pragma once

#include "converters/Export.h"

#include <filesystem>
#include <string>
#include <vector>

/// Conversion between point clouds in memory and the bytes of PLY and DXF files.
namespace converters {

/// Directory of the transient drawing that toDxf writes:
/// "/var/tmp/melgrav/tarnowell3/temp_dxf_files". Set when the library is loaded; the directory
/// itself is created on first need and stays.
extern CONVERTERS_EXPORT const std::filesystem::path tmpDxfPath;

/// Reads a whole file.
///
/// @param path  the file
/// @param out   receives the file's bytes; cleared first, also when the file cannot be read
/// @return false when the file cannot be opened or read (a directory, for example); `out` is then
///         empty and nothing is logged
/// @throws std::bad_alloc when the bytes do not fit into memory
CONVERTERS_EXPORT bool from_file(const std::string& path, std::vector<unsigned char>& out);

} // namespace converters
