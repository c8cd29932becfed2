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

bool DxfGroups::next(DxfGroup& group) {
    const std::size_t codeLength = m_rest.find('\n');
    if (codeLength == std::string_view::npos) {
        m_rest = {};
        return false;
    }
    group.code = dxfInteger(m_rest.substr(0, std::min(codeLength, longestDxfLine)));
    m_rest.remove_prefix(codeLength + 1);

    const std::size_t valueLength = std::min(m_rest.find('\n'), m_rest.size());
    group.value = m_rest.substr(0, std::min(valueLength, longestDxfLine));
    m_rest.remove_prefix(std::min(valueLength + 1, m_rest.size()));
    while (!group.value.empty() && group.value.back() == '\r') {
        group.value.remove_suffix(1);
    }
    return true;
}

} // namespace dxfeditor
