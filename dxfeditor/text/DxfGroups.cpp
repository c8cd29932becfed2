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
    // As strtol: what does not fit 64 bits becomes the nearest number that does.
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t limit = negative ? largest + 1 : largest;
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < text.size() && isDigit(text[i]); ++i) {
        const auto digit = static_cast<std::uint64_t>(text[i] - '0');
        const bool fits = number < largest / 10 || number <= (limit - digit) / 10;
        number = fits ? number * 10 + digit : limit;
    }
    const auto lowerHalf = static_cast<std::uint32_t>(negative ? 0 - number : number);
    return static_cast<std::int32_t>(lowerHalf);
}

/// Reads any code line.
/// @return false at the end of the text
bool DxfGroups::readCode(DxfGroup& group) {
    const char* const lineEnd = base::findLineEnd(m_next, m_end);
    if (lineEnd == m_end) {
        m_next = m_end;
        return false;
    }
    const auto length = static_cast<std::size_t>(lineEnd - m_next);
    group.code = dxfInteger({m_next, std::min(length, longestDxfLine)});
    m_next = lineEnd + 1;
    return true;
}

} // namespace dxfeditor
