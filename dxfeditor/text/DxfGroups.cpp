#include "dxfeditor/text/DxfGroups.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace dxfeditor {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// What strtol skips, in the classic locale.
constexpr std::string_view blanks = " \t\n\v\f\r";

} // namespace

int dxfInteger(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        text.remove_prefix(1);
    }
    // As strtol: what does not fit 64 bits becomes the nearest number that does. Eighteen digits
    // fit.
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t limit = negative ? largest + 1 : largest;
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < text.size() && isDigit(text[i]); ++i) {
        const auto digit = static_cast<std::uint64_t>(text[i] - '0');
        const bool fits = i < 18 || number < largest / 10 || number <= (limit - digit) / 10;
        number = fits ? number * 10 + digit : limit;
    }
    const auto lowerHalf = static_cast<std::uint32_t>(negative ? 0 - number : number);
    return static_cast<std::int32_t>(lowerHalf);
}

namespace {

/// Reads a code line as programs write it: blanks, digits, line end.
/// @return what is behind it; null for any other line
const char* readPlainCode(const char* line, const char* end, int& code) {
    constexpr std::ptrdiff_t mostBytes = 8; // whose number fits an int
    end = end - line > mostBytes ? line + mostBytes : end;
    while (line != end && *line == ' ') {
        ++line;
    }
    const char* const digits = line;
    int number = 0;
    for (; line != end && isDigit(*line); ++line) {
        number = number * 10 + (*line - '0');
    }
    if (line == digits || line == end || *line != '\n') {
        return nullptr;
    }
    code = number;
    return line + 1;
}

} // namespace

/// Reads any code line.
/// @return false at the end of the text
bool DxfGroups::readCode(int& code) {
    if (const char* const behind = readPlainCode(m_next, m_end, code)) {
        m_next = behind;
        return true;
    }
    const char* const lineEnd = base::findLineEnd(m_next, m_end);
    if (lineEnd == m_end) {
        m_next = m_end;
        return false;
    }
    code =
        dxfInteger({m_next, static_cast<std::size_t>(std::min(lineEnd - m_next, longestDxfLine))});
    m_next = lineEnd + 1;
    return true;
}

/// Notes the code line that has just been read.
void DxfGroups::learn(DxfCodeLines::Line& line, const char* begin, int code) const {
    const auto length = static_cast<std::size_t>(m_next - begin);
    if (!base::canUseWords || length > DxfCodeLines::longestLine ||
        static_cast<std::size_t>(m_end - begin) < DxfCodeLines::longestLine) {
        return;
    }
    const auto otherBits = static_cast<unsigned>(8 * (DxfCodeLines::longestLine - length));
    line = {base::loadWord(begin), otherBits, static_cast<unsigned>(length), code};
}

} // namespace dxfeditor
