#pragma once

#include <string>
#include <vector>

namespace base {

/// Reads a whole file.
/// @return false when it cannot be opened or read, as a directory; `out` is empty then
/// @throws std::bad_alloc when it does not fit into memory
bool readFile(const std::string& path, std::string& out);
bool readFile(const std::string& path, std::vector<unsigned char>& out);

} // namespace base
