#pragma once

#include "converters/detail/input/ByteWindow.h"

#include <cstdint>
#include <string_view>

namespace converters::scan {

/// The next word of a line, taken from its front; empty at the end.
std::string_view takeWord(std::string_view& line);

/// Takes the lines of a header from a window.
class HeaderLines {
public:
    explicit HeaderLines(input::ByteWindow& window) : m_window(window) {}

    /// Takes the next line. It ends with LF, CR LF or CR, but a CR ends it alone, whatever follows,
    /// when that is how the lines before ended: a binary body may begin with an LF.
    ///
    /// @param line  the line without its end; lasts until the next call
    /// @return false at the end of the file
    /// @throws Fault for a header of more than 16 MiB
    bool take(std::string_view& line);

    /// The number of the line that was taken last.
    std::uint64_t number() const { return m_number; }

    /// Whether all lines so far ended with CR LF.
    bool endWithPairs() const { return m_number != 0 && m_endsWithPairs; }

private:
    const char* findEnd();

    input::ByteWindow& m_window;
    std::uint64_t m_number = 0;
    bool m_endsWithReturns = false;
    bool m_endsWithPairs = true;
};

} // namespace converters::scan
