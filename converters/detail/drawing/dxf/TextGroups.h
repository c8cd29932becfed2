#pragma once

#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace converters::drawing {

/// Walks over the groups of a DXF text: a line with a code, a line with a value.
///
/// A value is looked at only when it is asked for, so that what nobody needs costs the search for
/// its line end. Lines end in LF or CR LF, in CR where the text has no LF at its start. A line that
/// should be a code and is none is skipped, so that a text with a line too many or too few is back
/// in step behind it.
class TextGroups {
public:
    /// @param window  on the start of a text; a byte order mark is stepped over
    explicit TextGroups(input::ByteWindow window);
    TextGroups(const TextGroups&) = delete;
    TextGroups& operator=(const TextGroups&) = delete;
    ~TextGroups() = default;

    /// Goes to the next group.
    /// @return false at the end of the text
    bool next() {
        if (m_next == nullptr) {
            m_next = behindLine(lineEndOfValue());
        }
        if (m_end - m_next < ordinaryGroup && m_hasMore) {
            bringGroup();
        }
        return readCode();
    }

    /// The code of the group.
    int code() const { return m_code; }

    /// The value without its line end, until the next group.
    std::string_view text();

    /// The value as a number; not a number when it is none.
    double real();

    /// The value as a whole number, the part before a point; 0 when it is none.
    std::int64_t integer();

    /// Where the group begins, in bytes from the start of the text.
    std::uint64_t position() const {
        return m_window.position() + static_cast<std::size_t>(m_group - m_window.begin());
    }
    /// Of the whole text, in bytes; 0 where it is not known.
    std::uint64_t size() const { return m_window.size(); }

    /// How many lines were skipped because they should be codes and are none.
    std::uint64_t skippedLines() const { return m_skippedLines; }

    /// How many numbers had a comma for the decimal point; they are read as meant.
    std::uint64_t decimalCommas() const { return m_decimalCommas; }

private:
    /// So many bytes hold most groups.
    static constexpr std::ptrdiff_t ordinaryGroup = 128;

    bool readCode();
    bool readUnusualCode();
    bool readPlainLine(double& number);
    const char* lineEnd(const char* from) const;
    const char* lineEndOfValue();
    const char* behindLine(const char* end) const { return end == m_end ? end : end + 1; }
    bool bringMore();
    void bringGroup();
    const char* bringLineEnd();

    input::ByteWindow m_window;
    /// Of the window.
    const char* m_end = nullptr;
    /// Whether the text may go on there.
    bool m_hasMore = false;
    const char* m_group = nullptr;
    const char* m_value = nullptr;
    /// Where the line behind the value begins; null where that is not known.
    const char* m_next = nullptr;
    int m_code = 0;
    char m_newLine = '\n';
    std::uint64_t m_skippedLines = 0;
    std::uint64_t m_decimalCommas = 0;
};

/// The end of the line, or of the window.
inline const char* TextGroups::lineEnd(const char* from) const {
#ifdef __SSE2__
    // Lines are short: nearly always within the first sixteen bytes or the next.
    const __m128i newLine = _mm_set1_epi8(m_newLine);
    for (; m_end - from >= 16; from += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, newLine));
        if (found != 0) {
            return from + __builtin_ctz(static_cast<unsigned>(found));
        }
    }
#endif
    if (from == m_end) {
        return m_end;
    }
    const void* const found = std::memchr(from, m_newLine, static_cast<std::size_t>(m_end - from));
    return found != nullptr ? static_cast<const char*>(found) : m_end;
}

inline const char* TextGroups::lineEndOfValue() {
    const char* const end = lineEnd(m_value);
    return end == m_end && m_hasMore ? bringLineEnd() : end;
}

inline bool TextGroups::readCode() {
    m_group = m_next;
    const char* p = m_next;
    while (p != m_end && *p == ' ') {
        ++p;
    }
    const char* const digits = p;
    int code = 0;
    // No code has more digits.
    while (p != m_end && *p >= '0' && *p <= '9' && p - digits < 5) {
        code = code * 10 + (*p - '0');
        ++p;
    }
    const bool isNumber = p != digits;
    if (p != m_end && *p == '\r' && m_newLine == '\n') {
        ++p;
    }
    if (!isNumber || p == m_end || *p != m_newLine) {
        return readUnusualCode();
    }
    m_code = code;
    m_value = p + 1;
    m_next = nullptr;
    return true;
}

} // namespace converters::drawing
