#include "converters/detail/drawing/dxf/TextGroups.h"

#include "converters/detail/drawing/dxf/Numbers.h"

#include <algorithm>

namespace converters::drawing {

namespace {

/// The character that ends lines: CR only where there is one and no LF for a good while.
char newLineOf(std::string_view text) {
    constexpr std::size_t longLine = 1 << 16;
    const std::string_view start = text.substr(0, longLine);
    const bool hasLineFeed = start.find('\n') != std::string_view::npos;
    return !hasLineFeed && start.find('\r') != std::string_view::npos ? '\r' : '\n';
}

} // namespace

TextGroups::TextGroups(std::string_view text)
    : m_begin(text.data()), m_end(text.data() + text.size()), m_group(m_begin), m_value(m_begin),
      m_next(m_begin), m_newLine(newLineOf(text)) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        m_next += byteOrderMark.size();
    }
}

/// A code with a sign, a tab or blanks behind it; or a line that is none, which is skipped.
bool TextGroups::readUnusualCode() {
    while (m_next != m_end) {
        m_group = m_next;
        const char* const end = lineEnd(m_next);
        const std::string_view line(m_next, static_cast<std::size_t>(end - m_next));
        m_next = behindLine(end);
        if (const auto code = wholeNumber(withoutBlanks(line))) {
            if (end == m_end) {
                break;
            }
            m_code = *code;
            m_value = m_next;
            m_next = nullptr;
            return true;
        }
        if (!withoutBlanks(line).empty()) {
            ++m_skippedLines;
        }
    }
    m_next = m_end;
    return false;
}

std::string_view TextGroups::text() {
    const char* end = lineEnd(m_value);
    m_next = behindLine(end);
    while (end != m_value && end[-1] == '\r') {
        --end;
    }
    return {m_value, static_cast<std::size_t>(end - m_value)};
}

double TextGroups::real() {
    const char* p = m_value;
    while (p != m_end && *p == ' ') {
        ++p;
    }
    double number = 0;
    p = readPlainReal(p, m_end, number);
    if (p != nullptr) {
        if (p != m_end && *p == '\r' && m_newLine == '\n') {
            ++p;
        }
        if (p == m_end || *p == m_newLine) {
            m_next = behindLine(p);
            return number;
        }
    }
    const TolerantReal read = readTolerantReal(text());
    m_decimalCommas += read.hadComma ? 1 : 0;
    return read.number;
}

std::int64_t TextGroups::integer() {
    return leadingInteger(text());
}

} // namespace converters::drawing
