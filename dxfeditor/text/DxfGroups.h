#pragma once

#include "base/LineEnd.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace dxfeditor {

/// One group of a DXF text: a code line and a value line.
struct DxfGroup {
    int code = 0;
    /// The value without its line end; part of the text.
    std::string_view value;

    /// Whether the group begins an object or a header variable.
    bool beginsObject() const { return code == 0 || code == 9; }
};

/// The longest line that dxflib reads; from a stream it never returns from a longer one.
constexpr std::size_t longestDxfLine = 1023;

/// The number at the start of `text`, by the rules by which dxflib reads a group code or a count:
/// 0 when there is none, and a number too large for an int loses its upper bits.
int dxfInteger(std::string_view text);

/// Walks over the groups of a DXF text in the way that dxflib reads them.
///
/// A line that is too long for dxflib counts as if it ended after the bytes that dxflib can hold.
/// A code line needs a line end; a value line also ends with the text, and may be missing then.
class DxfGroups {
public:
    explicit DxfGroups(std::string_view text)
        : m_next(text.data()), m_end(text.data() + text.size()) {}

    /// Reads the next group.
    /// @return false at the end of the text; `group` is then as it was
    bool next(DxfGroup& group);

    /// The text after the last group read.
    std::string_view rest() const { return {m_next, static_cast<std::size_t>(m_end - m_next)}; }

private:
    bool readShortCode(DxfGroup& group);
    bool readCode(DxfGroup& group);

    const char* m_next;
    const char* m_end;
};

/// Reads a code line as programs write it: blanks, digits, line end.
/// @return false for any other, of which nothing is read
inline bool DxfGroups::readShortCode(DxfGroup& group) {
    constexpr std::ptrdiff_t mostBytes = 16; // fewer digits than a 64-bit number has
    if (m_end - m_next <= mostBytes) {
        return false;
    }
    const char* next = m_next;
    const char* const limit = m_next + mostBytes;
    while (*next == ' ' && next != limit) {
        ++next;
    }
    const char* const digits = next;
    std::uint64_t code = 0;
    for (; *next >= '0' && *next <= '9' && next != limit; ++next) {
        code = code * 10 + static_cast<unsigned char>(*next - '0');
    }
    if (next == digits) {
        return false;
    }
    if (*next == '\r' && next != limit) {
        ++next;
    }
    if (*next != '\n') {
        return false;
    }
    group.code = static_cast<std::int32_t>(static_cast<std::uint32_t>(code));
    m_next = next + 1;
    return true;
}

inline bool DxfGroups::next(DxfGroup& group) {
    if (!readShortCode(group) && !readCode(group)) {
        return false;
    }
    const char* const lineEnd = base::findLineEnd(m_next, m_end);
    std::size_t length = std::min(static_cast<std::size_t>(lineEnd - m_next), longestDxfLine);
    while (length > 0 && m_next[length - 1] == '\r') {
        --length;
    }
    group.value = {m_next, length};
    m_next = lineEnd == m_end ? m_end : lineEnd + 1;
    return true;
}

} // namespace dxfeditor
