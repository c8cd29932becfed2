#pragma once

#include <cstddef>
#include <vector>

namespace converters::detail {

/// Gives a buffer room for `capacity` bytes, like its reserve. Asks the kernel for large pages for
/// a large buffer: the first touch of small ones takes longer than filling them.
void reserveOutput(std::vector<unsigned char>& out, std::size_t capacity);

/// Empties a buffer and gives it room for `capacity` bytes. Memory that is too small is freed
/// first, not kept beside the new.
void restartOutput(std::vector<unsigned char>& out, std::size_t capacity);

} // namespace converters::detail
