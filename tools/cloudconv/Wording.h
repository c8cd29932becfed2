#pragma once

#include <cstddef>
#include <string>

/// A text that can be set in a picture: bytes that are no UTF-8 become replacement characters,
/// control characters their codes.
std::string asPrintableUtf8(const std::string& text);

/// "1 point", "1200 points".
std::string counted(std::size_t count, const std::string& singular);

/// "1 entity", "12 entities".
std::string counted(std::size_t count, const std::string& singular, const std::string& plural);

/// A number with so many significant digits, 1 to 17, without zeros at the end: "0.25", "1e+06".
std::string numberText(double number, int digits);

/// What is said of points that cannot be shown or written.
std::string leftOutText(std::size_t count);
