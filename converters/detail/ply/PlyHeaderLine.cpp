#include "converters/detail/ply/PlyHeaderLine.h"

#include "base/Words.h"
#include "converters/detail/numbers/NumberExtraction.h"

namespace converters::detail {

bool PlyHeaderLine::isGood() {
    m_hasFailed = m_hasFailed || m_isAtEnd;
    return !m_hasFailed;
}

void PlyHeaderLine::skipBlanks() {
    if (!isGood()) {
        return;
    }
    base::takeBlanks(m_rest);
    m_isAtEnd = m_rest.empty();
}

bool PlyHeaderLine::separator() {
    if (!isGood()) {
        return false;
    }
    if (m_rest.empty()) {
        m_hasFailed = m_isAtEnd = true;
        return false;
    }
    const char c = m_rest.front();
    m_rest.remove_prefix(1);
    return base::isBlank(c);
}

std::string_view PlyHeaderLine::word() {
    if (!isGood()) {
        return {};
    }
    const std::string_view taken = base::takeWord(m_rest);
    m_isAtEnd = m_rest.empty();
    m_hasFailed = taken.empty();
    return taken;
}

std::uint64_t PlyHeaderLine::count() {
    std::uint64_t value = 0;
    if (isGood()) {
        const char* position = m_rest.data();
        const char* const end = position + m_rest.size();
        m_hasFailed = !extractNumber(position, end, value);
        m_rest.remove_prefix(static_cast<std::size_t>(position - m_rest.data()));
        m_isAtEnd = m_rest.empty();
    }
    return value;
}

} // namespace converters::detail
