#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"

#include <optional>
#include <string>
#include <string_view>

/// Text of a drawing: names of layers, blocks and kinds.
namespace converters::drawing {

/// Turns the text of a drawing into UTF-8. Text of ANSI_1252, or of a code page that nobody names
/// or knows, is taken as UTF-8 where it is valid. Not for several threads at a time.
class TextDecoder {
public:
    explicit TextDecoder(const Header& header);

    /// The text in UTF-8, with escapes (\U+XXXX, \M+nXXXX) resolved. What is invalid becomes
    /// U+FFFD, so that the result is valid.
    std::string decoded(std::string_view text) const;

private:
    bool m_isUtf8;
    /// Where the release does not say that it is UTF-8; empty where nothing says it.
    std::string m_codePage;
    /// As iconv calls it; none before it is needed: of most drawings no name is anything but ASCII,
    /// and to ask iconv takes longer than to read a small one.
    mutable std::optional<std::string> m_encoding;
};

/// The text with all letters small, to compare names by: of Latin, Greek and Cyrillic script,
/// letter by letter.
/// @param text  valid UTF-8
std::string caseFolded(std::string_view text);

/// Whether a name is one that a pattern stands for: "*" for any text, "?" for one character.
/// @param name, pattern  valid UTF-8, with case folded where case does not matter
bool matches(std::string_view name, std::string_view pattern);

} // namespace converters::drawing
