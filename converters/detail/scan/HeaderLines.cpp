#include "converters/detail/scan/HeaderLines.h"

#include "converters/detail/scan/Fault.h"

#include <algorithm>

namespace converters::scan {
namespace {

constexpr std::uint64_t longestHeader = std::uint64_t{16} << 20;

} // namespace

std::string_view takeWord(std::string_view& line) {
    constexpr std::string_view blanks = " \t\v\f";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

/// The end of the next line, with the character behind a CR in the window, too.
const char* HeaderLines::findEnd() {
    std::size_t searched = 0;
    for (;;) {
        const char* const end = std::find_if(m_window.begin() + searched, m_window.end(),
                                             [](char c) { return c == '\n' || c == '\r'; });
        searched = static_cast<std::size_t>(end - m_window.begin());
        if (m_window.position() + searched > longestHeader) {
            refuse("the header is longer than 16 MiB");
        }
        const bool isComplete =
            end != m_window.end() && (*end == '\n' || end + 1 != m_window.end());
        if (isComplete || !m_window.more()) {
            return m_window.begin() + searched;
        }
    }
}

bool HeaderLines::take(std::string_view& line) {
    const char* const end = findEnd();
    if (end == m_window.end() && end == m_window.begin()) {
        return false;
    }
    line = {m_window.begin(), static_cast<std::size_t>(end - m_window.begin())};
    if (end == m_window.end()) {
        m_window.take(end);
    } else {
        const bool isReturn = *end == '\r';
        const bool isPair = isReturn && end + 1 != m_window.end() && end[1] == '\n';
        const bool isAlone = isReturn && (!isPair || m_endsWithReturns);
        m_window.take(isPair && !isAlone ? end + 2 : end + 1);
        m_endsWithPairs = m_endsWithPairs && isPair;
        m_endsWithReturns = isAlone && (m_number == 0 || m_endsWithReturns);
    }
    ++m_number;
    return true;
}

} // namespace converters::scan
