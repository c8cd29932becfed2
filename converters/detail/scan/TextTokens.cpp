#include "converters/detail/scan/TextTokens.h"

#include <algorithm>

namespace converters::scan {
bool TextTokens::bring() {
    m_window.take(m_position);
    const bool hasMore = m_window.more();
    m_position = m_window.begin();
    m_end = m_window.end();
    return hasMore;
}

std::string_view TextTokens::next() {
    constexpr auto longest = static_cast<std::size_t>(longestToken);
    std::size_t length = 0;
    do {
        const char* const stop = std::find_if(m_position + length, m_end, base::isBlank);
        length = static_cast<std::size_t>(stop - m_position);
    } while (m_position + length == m_end && length < longest && bring());
    return {m_position, std::min(length, longest)};
}

} // namespace converters::scan
