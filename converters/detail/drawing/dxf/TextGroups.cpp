#include "converters/detail/drawing/dxf/TextGroups.h"

#include "converters/detail/drawing/dxf/Numbers.h"

#include <algorithm>
#include <utility>

namespace converters::drawing {

namespace {

/// The character that ends lines: CR only where there is one and no LF for a good while.
char newLineOf(input::ByteWindow& window) {
    constexpr std::size_t longLine = 1 << 16;
    bool hasReturn = false;
    std::size_t searched = 0;
    do {
        const std::size_t size = std::min(window.available(), longLine);
        const std::string_view start(window.begin(), size);
        if (start.find('\n', searched) != std::string_view::npos) {
            return '\n';
        }
        hasReturn = hasReturn || start.find('\r', searched) != std::string_view::npos;
        searched = size;
    } while (searched < longLine && window.more());
    return hasReturn ? '\r' : '\n';
}

} // namespace

TextGroups::TextGroups(input::ByteWindow window) : m_window(std::move(window)) {
    m_newLine = newLineOf(m_window);
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    m_group = m_value = m_next = m_window.begin();
    m_end = m_window.end();
    m_hasMore = !m_window.hasEnded();
    if (m_window.available() >= byteOrderMark.size() &&
        byteOrderMark == std::string_view(m_next, byteOrderMark.size())) {
        m_next += byteOrderMark.size();
    }
}

/// Brings more of the text into the window, in which the group stays.
/// @return false at the end of the text
bool TextGroups::bringMore() {
    if (!m_hasMore) {
        return false;
    }
    const char* const group = m_group;
    m_window.take(group);
    m_hasMore = m_window.more();
    m_group = m_window.begin();
    m_end = m_window.end();
    m_value = m_group + (m_value - group);
    m_next = m_next == nullptr ? nullptr : m_group + (m_next - group);
    return m_hasMore;
}

/// Lets go of what is read, and brings as much as the next group takes, if it is an ordinary one.
void TextGroups::bringGroup() {
    m_group = m_value = m_next;
    while (m_end - m_next < ordinaryGroup && bringMore()) {
    }
}

/// The end of the last line of the window, which goes on behind it.
const char* TextGroups::bringLineEnd() {
    const char* end = m_end;
    for (bool goesOn = true; end == m_end && goesOn;) {
        const std::ptrdiff_t searched = m_end - m_group;
        goesOn = bringMore();
        end = lineEnd(m_group + searched);
    }
    return end;
}

/// A code with a sign, a tab or blanks behind it; or a line that is none, which is skipped.
bool TextGroups::readUnusualCode() {
    m_value = m_group;
    while (m_next != m_end || bringMore()) {
        m_group = m_value = m_next;
        const char* end = lineEnd(m_next);
        if (end == m_end) {
            end = bringLineEnd();
        }
        const std::string_view line(m_group, static_cast<std::size_t>(end - m_group));
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
    const char* end = lineEndOfValue();
    m_next = behindLine(end);
    while (end != m_value && end[-1] == '\r') {
        --end;
    }
    return {m_value, static_cast<std::size_t>(end - m_value)};
}

double TextGroups::real() {
    double number = 0;
    if (readPlainLine(number)) {
        return number;
    }
    const bool isCut = m_hasMore && lineEnd(m_value) == m_end;
    const std::string_view line = text();
    if (isCut && readPlainLine(number)) {
        return number;
    }
    const TolerantReal read = readTolerantReal(line);
    m_decimalCommas += read.hadComma ? 1 : 0;
    return read.number;
}

/// Reads the value where it is a plain number, and all of it is in the window.
bool TextGroups::readPlainLine(double& number) {
    const char* p = m_value;
    while (p != m_end && *p == ' ') {
        ++p;
    }
    p = readPlainReal(p, m_end, number);
    if (p == nullptr) {
        return false;
    }
    if (p != m_end && *p == '\r' && m_newLine == '\n') {
        ++p;
    }
    // A number at the end of the window may go on behind it.
    if (p == m_end ? m_hasMore : *p != m_newLine) {
        return false;
    }
    m_next = behindLine(p);
    return true;
}

std::int64_t TextGroups::integer() {
    return leadingInteger(text());
}

} // namespace converters::drawing
