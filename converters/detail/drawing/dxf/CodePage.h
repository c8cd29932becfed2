#pragma once

#include <string>
#include <string_view>

namespace converters::drawing {

/// The encoding that a drawing names as its code page, as iconv calls it: "CP1252" for "ANSI_1252",
/// for none, and for those that nobody knows.
std::string encodingOf(std::string_view codePage);

/// Text of an encoding in UTF-8. Bytes that mean nothing in it become U+FFFD; where the encoding is
/// not there, so do all that are not ASCII.
/// @throws std::bad_alloc
std::string toUtf8(std::string_view text, const std::string& encoding);

} // namespace converters::drawing
