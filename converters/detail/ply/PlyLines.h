#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

/// Lines of a PLY file.
namespace converters::detail {

/// The text at the start of a file: up to the first zero byte, or all of it. Owns nothing.
inline std::string_view textOf(const std::vector<unsigned char>& data) {
    const auto* begin = reinterpret_cast<const char*>(data.data());
    const void* zero = data.empty() ? nullptr : std::memchr(begin, 0, data.size());
    const auto length = zero == nullptr
                            ? data.size()
                            : static_cast<std::size_t>(static_cast<const char*>(zero) - begin);
    return {begin, length};
}

/// Counts lines, of which the last may lack its line feed, up to a limit.
std::uint64_t countLines(std::string_view text, std::uint64_t limit);

} // namespace converters::detail
