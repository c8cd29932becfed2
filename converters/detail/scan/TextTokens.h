#pragma once

#include "base/Blank.h"
#include "converters/detail/input/ByteWindow.h"
#include "converters/detail/numbers/NumberExtraction.h"
#include "converters/detail/scan/NumberText.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>

namespace converters::scan {

/// The numbers of a text body, one by one.
class TextTokens {
public:
    explicit TextTokens(input::ByteWindow& window)
        : m_window(window), m_position(window.begin()), m_end(window.end()) {}

    /// Takes blanks and line ends.
    /// @return how many lines ended among them
    std::uint64_t skipBlanks();

    /// Takes the next number; there are no blanks in front.
    /// @return the fault of the token that was not taken, missing at the end of the file
    template <typename Number>
    NumberFault take(Number& number);

    /// The next token, cut when it is longer than any number; it stays.
    std::string_view next();

    /// Takes the next token, or a part of it.
    /// @return how many characters
    std::size_t takeSome() {
        const std::size_t size = next().size();
        m_position += size;
        return size;
    }

    bool isAtEnd() { return m_position == m_end && !bring(); }

    /// The line of the next token.
    std::uint64_t line() { return m_window.lineAt(m_position); }

    /// What is in memory of the text that is left.
    const char* position() const { return m_position; }
    const char* end() const { return m_end; }
    /// Takes what is before `position`.
    void moveTo(const char* position) { m_position = position; }

    /// Bytes up to here are taken from the window.
    void settle() { m_window.take(m_position); }

private:
    /// Far beyond the exact digits of any double.
    static constexpr std::ptrdiff_t longestToken = 65536;

    bool bring();
    template <typename Number>
    bool takeUsual(Number& number);
    template <typename Number>
    NumberFault takeAny(Number& number);

    input::ByteWindow& m_window;
    const char* m_position;
    const char* m_end;
};

inline std::uint64_t TextTokens::skipBlanks() {
    std::uint64_t lineEnds = 0;
    bool isBehindReturn = false;
    do {
        const char* c = m_position;
        for (; c != m_end && base::isBlank(*c); ++c) {
            lineEnds += *c == '\r' || (*c == '\n' && !isBehindReturn) ? 1 : 0;
            isBehindReturn = *c == '\r';
        }
        m_position = c;
    } while (m_position == m_end && bring());
    return lineEnds;
}

/// Takes a number that is spelled as usual, wholly in the window.
template <typename Number>
bool TextTokens::takeUsual(Number& number) {
    const char* c = m_position;
    if constexpr (std::is_floating_point_v<Number>) {
        if (!detail::extractNumber(c, m_end, m_end, number)) {
            return false;
        }
    } else {
        constexpr std::ptrdiff_t mostDigits = 18;
        const bool isNegative = c != m_end && *c == '-';
        c += isNegative ? 1 : 0;
        const char* const digits = c;
        std::int64_t value = 0;
        for (; c != m_end && *c >= '0' && *c <= '9' && c - digits < mostDigits; ++c) {
            value = value * 10 + (*c - '0');
        }
        value = isNegative ? -value : value;
        number = static_cast<Number>(value);
        const bool isSame = std::is_unsigned_v<Number> && sizeof(Number) == 8
                                ? value >= 0
                                : static_cast<std::int64_t>(number) == value;
        if (c == digits || !isSame) {
            return false;
        }
    }
    if (c == m_end || !base::isBlank(*c) || c - m_position >= longestToken) {
        return false;
    }
    m_position = c;
    return true;
}

template <typename Number>
NumberFault TextTokens::take(Number& number) {
    return takeUsual(number) ? NumberFault::none : takeAny(number);
}

template <typename Number>
NumberFault TextTokens::takeAny(Number& number) {
    const std::string_view token = next();
    if (token.empty()) {
        return NumberFault::missing;
    }
    if (static_cast<std::ptrdiff_t>(token.size()) >= longestToken) {
        return NumberFault::noNumber;
    }
    const NumberFault fault = parseNumber(token, number);
    m_position += fault == NumberFault::none ? token.size() : 0;
    return fault;
}

} // namespace converters::scan
