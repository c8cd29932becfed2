#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

/// The fuzzer's own mutation, of bytes.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

/// The fuzzer's own mutation of a text; it grows by a few bytes at most.
inline std::string mutatedBytes(std::string text) {
    const std::size_t size = text.size();
    text.resize(size + 16);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
    return text;
}

/// Hands a mutator's result to the fuzzer, cut to the room that there is.
inline std::size_t store(const std::string& text, std::uint8_t* data, std::size_t maxSize) {
    const std::size_t size = text.size() < maxSize ? text.size() : maxSize;
    std::memcpy(data, text.data(), size);
    return size;
}
