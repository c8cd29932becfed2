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

/// Takes the next line, without its line feed. A carriage return before the line feed stays.
///
/// @param text      the rest of the text; the line is removed from it
/// @param line      receives the line
/// @return false at the end of the text
inline bool takeLine(std::string_view& text, std::string_view& line) {
    if (text.empty()) {
        return false;
    }
    const void* feed = std::memchr(text.data(), '\n', text.size());
    const auto length =
        feed == nullptr ? text.size()
                        : static_cast<std::size_t>(static_cast<const char*>(feed) - text.data());
    line = text.substr(0, length);
    text.remove_prefix(feed == nullptr ? length : length + 1);
    return true;
}

/// Counts lines, of which the last may lack its line feed, up to a limit.
std::uint64_t countLines(std::string_view text, std::uint64_t limit);

} // namespace converters::detail
