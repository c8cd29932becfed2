#pragma once

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
    static bool isBinary(std::string_view file);

    /// @param file  read in place; a binary DXF
    explicit BinaryGroups(std::string_view file);

    /// Goes to the next group.
    /// @return false at the end of the file, or where it is cut within a group
    bool next();

    /// The code of the group.
    int code() const { return m_code; }

    /// The value where it is a text, empty otherwise; part of the file.
    std::string_view text() const { return m_form == Form::text ? m_value : std::string_view(); }

    /// The value as a number; not a number when it is none.
    double real() const;

    /// The value as a whole number, a double without what is behind the point; 0 when it is none.
    std::int64_t integer() const;

    /// Where the group begins, in bytes from the start of the file. At the end, where the first
    /// group begins that is not there as a whole.
    std::size_t position() const { return m_group; }
    std::size_t size() const { return m_file.size(); }

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

    bool readCode();
    bool take(std::size_t size);

    std::string_view m_file;
    std::size_t m_group = 0;
    std::size_t m_next = 0;
    std::string_view m_value;
    Form m_form = Form::text;
    int m_code = 0;
    bool m_hasShortCodes = false;
};

} // namespace converters::drawing
