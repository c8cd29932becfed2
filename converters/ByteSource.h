#pragma once

#include <cstddef>
#include <functional>

namespace converters {

/// Gives the next bytes of a file.
///
/// @param bytes  room for them
/// @param room   how many at most, not 0
/// @return how many; 0 at the end. What it throws leaves the reader's function.
using ByteSource = std::function<std::size_t(void* bytes, std::size_t room)>;

} // namespace converters
