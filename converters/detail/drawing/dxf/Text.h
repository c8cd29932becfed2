#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"

#include <string>
#include <string_view>

/// Text of a drawing: names of layers, blocks and kinds.
namespace converters::drawing {

/// Turns the text of a drawing into UTF-8.
class TextDecoder {
public:
    explicit TextDecoder(const Header& header);

    /// The text in UTF-8, with escapes (\U+XXXX, \M+nXXXX) resolved. What is invalid becomes
    /// U+FFFD, so that the result is valid.
    std::string decoded(std::string_view text) const;

private:
    /// As iconv calls it; empty for UTF-8.
    std::string m_encoding;
    /// Whether nothing says the encoding: what is valid UTF-8 is then taken as such.
    bool m_guesses = false;
};

/// The text with all letters small, to compare names by: of Latin, Greek and Cyrillic script,
/// letter by letter.
/// @param text  valid UTF-8
std::string caseFolded(std::string_view text);

/// Whether a name is one that a pattern stands for: "*" for any text, "?" for one character.
/// @param name, pattern  valid UTF-8, with case folded where case does not matter
bool matches(std::string_view name, std::string_view pattern);

} // namespace converters::drawing
