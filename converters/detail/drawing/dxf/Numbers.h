#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace converters::drawing {

/// The text without blanks, tabs, line ends and zero bytes at its start and end.
std::string_view withoutBlanks(std::string_view text);

/// The number that the text is, of at most five digits with or without a sign: a group code.
std::optional<int> wholeNumber(std::string_view text);

/// The whole number at the start of the text, behind blanks; 0 where there is none. Programs write
/// counts and flags as "1.0", too. What does not fit becomes the nearest number that does.
std::int64_t leadingInteger(std::string_view text);

/// The hexadecimal number that the text is: a handle. 0 where it is none.
std::uint64_t handleOf(std::string_view text);

/// Reads a number at the start of a text: digits, with or without a sign, a point, an exponent.
/// The nearest double, as the standard library gives it.
/// @return behind the number; null when it is no such number, or one out of range
const char* readPlainReal(const char* begin, const char* end, double& number);

/// A number as other programs write it.
struct TolerantReal {
    /// Not a number when it is none.
    double number;
    /// Whether it had a comma for the point.
    bool hadComma;
};

/// Reads a number that is not plain: with a plus sign, blanks around it, a decimal comma, or too
/// small to be told from 0.
TolerantReal readTolerantReal(std::string_view text);

} // namespace converters::drawing
