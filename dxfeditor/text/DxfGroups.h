#pragma once

#include "base/DigitWords.h"
#include "base/LineEnd.h"

#include <algorithm>
#include <array>
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
constexpr std::ptrdiff_t longestDxfLine = 1023;

/// The number at the start of `text`, by the rules by which dxflib reads a group code or a count:
/// 0 when there is none, and a number too large for an int loses its upper bits.
int dxfInteger(std::string_view text);

/// Which code line followed each code last: mostly the one that follows it again, so that one
/// comparison takes the place of reading the number.
class DxfCodeLines {
public:
    struct Line {
        /// The line with its line end, and the bits of a word that are not of it.
        std::uint64_t text = 0;
        unsigned otherBits = 0;
        unsigned length = 0;
        int code = 0;
    };

    static constexpr std::size_t longestLine = 8;

    /// The line expected behind this code. Some codes share a place.
    Line& behind(int code) { return m_lines[static_cast<unsigned>(code) % m_lines.size()]; }

private:
    std::array<Line, 64> m_lines;
};

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

    /// The same, faster, with the lines read so far.
    bool next(DxfGroup& group, DxfCodeLines& lines);

    /// The text after the last group read.
    std::string_view rest() const { return {m_next, static_cast<std::size_t>(m_end - m_next)}; }

private:
    bool readCode(int& code);
    void learn(DxfCodeLines::Line& line, const char* begin, int code) const;
    void readValue(DxfGroup& group);

    const char* m_next;
    const char* m_end;
};

inline void DxfGroups::readValue(DxfGroup& group) {
    const char* const lineEnd = base::findLineEnd(m_next, m_end);
    const char* end = lineEnd - m_next > longestDxfLine ? m_next + longestDxfLine : lineEnd;
    while (end != m_next && end[-1] == '\r') {
        --end;
    }
    group.value = {m_next, static_cast<std::size_t>(end - m_next)};
    m_next = lineEnd == m_end ? m_end : lineEnd + 1;
}

inline bool DxfGroups::next(DxfGroup& group) {
    if (!readCode(group.code)) {
        return false;
    }
    readValue(group);
    return true;
}

inline bool DxfGroups::next(DxfGroup& group, DxfCodeLines& lines) {
    DxfCodeLines::Line& line = lines.behind(group.code);
    if (m_end - m_next >= static_cast<std::ptrdiff_t>(DxfCodeLines::longestLine) &&
        ((base::loadWord(m_next) ^ line.text) << line.otherBits) == 0 && line.length != 0) {
        group.code = line.code;
        m_next += line.length;
    } else {
        const char* const begin = m_next;
        if (!readCode(group.code)) {
            return false;
        }
        learn(line, begin, group.code);
    }
    readValue(group);
    return true;
}

} // namespace dxfeditor
