#pragma once

#include "base/Blank.h"

#include <string_view>

/// Lines and words of a text, taken from its front. Views of it: the text has to outlive them.
namespace base {

/// Takes the next line, without its line feed. A carriage return before the line feed stays.
///
/// @param text  the rest of the text; the line is removed from it
/// @param line  receives the line
/// @return false at the end of the text
inline bool takeLine(std::string_view& text, std::string_view& line) {
    if (text.empty()) {
        return false;
    }
    const std::size_t feed = text.find('\n');
    line = text.substr(0, feed);
    text.remove_prefix(feed == std::string_view::npos ? text.size() : feed + 1);
    return true;
}

/// Takes whitespace.
inline void takeBlanks(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
}

/// Takes a run of characters up to whitespace; empty when there is none.
inline std::string_view takeWord(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && !isBlank(text[length])) {
        ++length;
    }
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

} // namespace base
