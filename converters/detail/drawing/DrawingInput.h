#pragma once

#include "converters/ByteSource.h"
#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>

/// Where the bytes of a drawing come from.
namespace converters::drawing {

/// Bytes in memory, which have to outlive the window.
input::ByteWindow windowOn(const void* bytes, std::size_t size);

/// @param size  of the whole file; 0 where it is not known
input::ByteWindow windowOn(const ByteSource& source, std::uint64_t size);

/// @throws Refusal  with the system's reason, also from the window when the file cannot be read
input::ByteWindow windowOn(const std::filesystem::path& file);

} // namespace converters::drawing
