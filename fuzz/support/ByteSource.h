#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

/// Takes values from the bytes of a fuzz input, zeros once they are used up.
class ByteSource {
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    /// The next bytes as a value of a trivial type.
    template <typename Value>
    Value take() {
        Value value{};
        const std::size_t length = std::min(sizeof value, m_size);
        if (length > 0) {
            std::memcpy(&value, m_data, length);
        }
        skip(length);
        return value;
    }

    /// A number from 0 to `most`, of one byte.
    std::size_t upTo(std::size_t most) { return take<std::uint8_t>() % (most + 1); }

    /// The next `length` bytes, or as many as are left.
    std::string text(std::size_t length) {
        length = std::min(length, m_size);
        std::string result(reinterpret_cast<const char*>(m_data), length);
        skip(length);
        return result;
    }

    /// All bytes that are left.
    std::string rest() { return text(m_size); }

    bool empty() const { return m_size == 0; }
    std::size_t size() const { return m_size; }

private:
    void skip(std::size_t length) {
        m_data += length;
        m_size -= length;
    }

    const std::uint8_t* m_data;
    std::size_t m_size;
};
