#pragma once

#include <cstddef>
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
    explicit DxfGroups(std::string_view text) : m_rest(text) {}

    /// Reads the next group.
    /// @return false at the end of the text; `group` is then as it was
    bool next(DxfGroup& group);

    /// The text after the last group read.
    std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
};

} // namespace dxfeditor
