#pragma once

#include <cstddef>
#include <string>

/// A text that can be set in a picture: bytes that are no UTF-8 become replacement characters,
/// control characters their codes.
std::string asPrintableUtf8(const std::string& text);

/// "1 point", "1200 points".
std::string counted(std::size_t count, const std::string& singular);

/// What is said of points that cannot be shown.
std::string leftOutText(std::size_t count);
