#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace converters::detail {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "digits are stored as whole words");

/// The numbers 0 to 999 as three digits, one a byte, the first in the lowest.
inline constexpr std::array<std::uint32_t, 1000> threeDigits = [] {
    std::array<std::uint32_t, 1000> table = {};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        table[i] = i / 100 | (i / 10 % 10) << 8 | (i % 10) << 16;
    }
    return table;
}();

inline void storeCharacters(char* out, std::uint64_t characters) {
    std::memcpy(out, &characters, sizeof characters);
}

/// Writes digits * 10^(exponent - 5) in general notation.
///
/// @param out     room for at least 16 characters
/// @param digits  100000 to 1000000: six digits, or what rounding has made of 999999.5 and more
/// @return the end of the text
inline char* writeSixDigits(char* out, std::uint32_t digits, int exponent) {
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    const std::uint64_t word =
        threeDigits[digits / 1000] | static_cast<std::uint64_t>(threeDigits[digits % 1000]) << 24;
    const std::uint64_t characters = word | 0x3030303030303030;
    // Without the zeros at the end.
    const int length = (64 + 7 - __builtin_clzll(word)) >> 3;

    if (exponent >= 0 && exponent < 6) {
        const int whole = exponent + 1;
        storeCharacters(out, characters);
        out[whole] = '.';
        storeCharacters(out + whole + 1, characters >> 8 * whole);
        return out + (length > whole ? length + 1 : whole);
    }
    if (exponent < 0 && exponent >= -4) {
        std::memcpy(out, "0.000000", 8);
        storeCharacters(out + 1 - exponent, characters);
        return out + 1 - exponent + length;
    }
    storeCharacters(out, characters);
    out[1] = '.';
    storeCharacters(out + 2, characters >> 8);
    out += length > 1 ? length + 1 : 1;
    const int magnitude = exponent < 0 ? -exponent : exponent;
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    *out++ = static_cast<char>('0' + magnitude / 10);
    *out++ = static_cast<char>('0' + magnitude % 10);
    return out;
}

} // namespace converters::detail
