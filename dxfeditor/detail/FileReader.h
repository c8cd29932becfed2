#pragma once

#include <string>

namespace dxfeditor {

/// Reads a whole file.
/// @return false when it cannot be opened or read, as a directory; `out` is then unspecified
/// @throws std::bad_alloc when it does not fit into memory
bool readFile(const std::string& path, std::string& out);

} // namespace dxfeditor
