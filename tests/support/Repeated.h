#pragma once

#include <cstddef>
#include <functional>
#include <string>

/// Repeats what `part` makes of 0, 1, 2... until the text has `size` bytes.
inline std::string repeated(std::size_t size, const std::function<std::string(std::size_t)>& part) {
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) {
        text += part(i);
    }
    return text;
}

/// Repeats `part` until the text has `size` bytes.
inline std::string repeated(std::size_t size, const std::string& part) {
    return repeated(size, [&](std::size_t) { return part; });
}
