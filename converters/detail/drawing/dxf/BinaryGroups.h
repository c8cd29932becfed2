#pragma once

#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace converters::drawing {

/// Walks over the groups of a binary DXF file: a code, and a value whose form the code tells.
///
/// Codes take two bytes; in files of R12 and before, one byte, where 255 announces two more.
class BinaryGroups {
public:
    /// Whether a file is a binary DXF: how it starts.
    static bool isBinary(input::ByteWindow& window);

    /// @param window  on the start of a binary DXF
    explicit BinaryGroups(input::ByteWindow window);

    /// Goes to the next group.
    /// @return false at the end of the file, or where it is cut within a group
    bool next();

    /// The code of the group.
    int code() const { return m_code; }

    /// The value where it is a text, empty otherwise; until the next group.
    std::string_view text() const { return m_form == Form::text ? m_value : std::string_view(); }

    /// The value as a number; not a number when it is none.
    double real() const;

    /// The value as a whole number, a double without what is behind the point; 0 when it is none.
    std::int64_t integer() const;

    /// Where the group begins, in bytes from the start of the file. At the end, where the first
    /// group begins that is not there as a whole.
    std::uint64_t position() const { return m_window.position(); }
    /// Of the whole file, in bytes; 0 where it is not known.
    std::uint64_t size() const { return m_window.size(); }

    static constexpr std::uint64_t skippedLines() { return 0; }
    static constexpr std::uint64_t decimalCommas() { return 0; }

private:
    enum class Form { text, real, integer, chunk };
    /// How the value of a code is stored: its form, and how many bytes where that is fixed.
    struct Layout {
        Form form;
        std::size_t size;
    };
    static Layout layoutOf(int code);

    bool readGroup();
    bool readCode();
    bool takeCode(std::size_t size);
    bool readText();
    bool take(std::size_t size);

    /// Begins with the group.
    input::ByteWindow m_window;
    /// Bytes of the group that are read.
    std::size_t m_read = 0;
    std::string_view m_value;
    Form m_form = Form::text;
    int m_code = 0;
    bool m_hasShortCodes = false;
};

} // namespace converters::drawing
