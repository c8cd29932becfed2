#pragma once

namespace base {

/// Whether a character is whitespace in the classic locale, whatever the locale of the process.
constexpr bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace base
