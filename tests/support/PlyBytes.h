#pragma once

#include <cstring>
#include <string>
#include <vector>

/// A file's bytes from a text.
inline std::vector<unsigned char> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

/// Appends the bytes of a value, as they lie in memory.
template <typename Value>
void appendBytes(std::string& text, Value value) {
    text.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// The value that starts at a byte of a block.
template <typename Value>
Value valueAt(const std::vector<unsigned char>& block, std::size_t offset) {
    Value value;
    std::memcpy(&value, block.data() + offset, sizeof value);
    return value;
}
