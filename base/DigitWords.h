#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Digits taken eight at a time: words of characters, the first in the lowest byte. Few steps and
/// no branches that depend on the digits, which would be mispredicted for most numbers.
///
/// The token "3.14" on its way through readShortFloat, the first byte on the left:
///
///     loadWord        '3'  '.'  '1'  '4'  ' '  ...         behind it stands another token
///     ^ '0', << 32     0    0    0    0    3   30    1    4  the values, moved to the end
///     takeOutPoint     0    0    0    0    0    3    1    4  and 2 decimals behind the point
///     joinDigits       0         0         3        14       each value * 10 + the next
///                      0                 314                 each * 100 + the next
///                    314                                     each * 10000 + the next
///     / 10^2         3.14                                    one rounding of exact numbers
namespace base {

constexpr std::size_t wordLength = 8;
constexpr bool canUseWords = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

constexpr std::uint64_t everyByte(std::uint64_t byte) {
    return byte * 0x0101010101010101;
}

inline std::uint64_t loadWord(const char* text) {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

inline void storeWord(std::uint64_t word, char* text) {
    word = canUseWords ? word : __builtin_bswap64(word);
    std::memcpy(text, &word, sizeof word);
}

/// The top bit of each byte: is the byte above 9? Right up to the first such byte, the only one
/// that matters: nothing carries out of a byte before it.
inline std::uint64_t othersThanDigits(std::uint64_t values) {
    return ((values + everyByte(0x7F - 9)) | values) & everyByte(0x80);
}

/// Number of digits at the start of a word of characters.
inline unsigned countDigits(std::uint64_t word) {
    const std::uint64_t others = othersThanDigits(word ^ everyByte('0'));
    return others == 0 ? wordLength : static_cast<unsigned>(__builtin_ctzll(others)) / 8;
}

/// Value of eight digits, each as its value, the first in the lowest byte.
inline std::uint64_t joinDigits(std::uint64_t digits) {
    // Neighbours are joined: 1, 2, 4 digits each. Nothing carries into the next: of two digits the
    // value is below 100, of four below 10000.
    digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
    digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
    return (digits * 10000 + (digits >> 32)) & 0xFFFFFFFF;
}

/// The digits of a number below 10^8, each as its value, the first in the lowest byte: what
/// joinDigits() takes.
inline std::uint64_t splitDigits(std::uint32_t number) {
    // Halves, of four digits, of two, of one: the upper one goes to the lower half of the word. The
    // multiplications are divisions by 100 and by 10, exact for numbers so small.
    std::uint64_t word = number / 10000 | std::uint64_t{number % 10000} << 32;
    const std::uint64_t hundreds = (word * 5243 >> 19) & 0x0000007F0000007F;
    word = hundreds | (word - 100 * hundreds) << 16;
    const std::uint64_t tens = (word * 103 >> 10) & 0x000F000F000F000F;
    return tens | (word - 10 * tens) << 8;
}

/// Value of the first `count` characters of a word, all digits; count is 1 to 8.
inline std::uint64_t valueOfDigits(std::uint64_t word, unsigned count) {
    // The digits move to the end, behind zeros.
    return joinDigits((word ^ everyByte('0')) << (8 * (wordLength - count)));
}

/// Digits with at most one point before, among or behind them.
struct ShortDigits {
    std::uint64_t value = 0;
    /// Number of digits behind the point.
    unsigned decimals = 0;
    /// Number of characters; 0 when there is no digit, or more than fit the words.
    unsigned length = 0;
};

/// Takes up to seven digits; with eight of them the number may have more.
///
/// @param text      at least nine characters have to be readable; what is behind the digits is told
///                  by not being a digit
inline ShortDigits takeShortDigits(const char* text) {
    const std::uint64_t word = loadWord(text);
    const unsigned whole = countDigits(word);
    if (whole == wordLength) {
        return {};
    }
    const unsigned point = text[whole] == '.' ? 1 : 0;
    // The word as if there were no point.
    const std::uint64_t before = (std::uint64_t{1} << (8 * whole)) - 1;
    const std::uint64_t joined = (word & before) | (loadWord(text + point) & ~before);
    const unsigned count = countDigits(joined);
    if (count == 0 || count == wordLength) {
        return {};
    }
    return {valueOfDigits(joined, count), count - whole, count + point};
}

/// Number of characters up to the first blank or control character; 16 when there is none among as
/// many. Where the next token begins is known from this alone, so that processors can decode
/// several tokens at a time.
///
/// @param text  at least 16 characters have to be readable
inline unsigned tokenLength(const char* text) {
    // A bit for each byte: is it below '!'? Right up to the first such byte.
    const auto blanksOf = [](std::uint64_t word) {
        const std::uint64_t tops = (word - everyByte('!')) & ~word & everyByte(0x80);
        return (tops >> 7) * 0x0102040810204080 >> 56;
    };
    const std::uint64_t blanks = blanksOf(loadWord(text)) | blanksOf(loadWord(text + wordLength))
                                                                << 8;
    return static_cast<unsigned>(__builtin_ctzll(blanks | 1U << 2 * wordLength));
}

/// The digits of a word with a point among them, as if it were not there.
struct PointlessDigits {
    std::uint64_t digits;
    /// Number of points taken out, 0 or 1, and of digits behind it.
    unsigned points;
    unsigned decimals;
};

/// @param word  the values of digits, at the end of a word; the first point counts as one
inline PointlessDigits takeOutPoint(std::uint64_t word) {
    constexpr std::uint64_t point = '.' ^ '0';
    // The top bit of the byte with the point, 0 when there is none. Right in the lowest such byte.
    const std::uint64_t rest = word ^ everyByte(point);
    const std::uint64_t found = (rest - everyByte(1)) & ~rest & everyByte(0x80);
    const std::uint64_t mark = found & (0 - found);
    const std::uint64_t points = mark != 0 ? 1 : 0;
    // Without a point, as if it were behind the last digit.
    const std::uint64_t markOrEnd = mark | (1 - points) << 63;
    const std::uint64_t behind = word & (0 - (mark << 1));
    const std::uint64_t before = word & ((mark >> 7) - 1);
    return {behind | before << 8 * points, static_cast<unsigned>(points),
            static_cast<unsigned>(__builtin_clzll(markOrEnd)) / 8};
}

/// Reads a token of at most eight characters behind an optional minus sign, digits with at most one
/// point: nearly all numbers of usual files. Digits and power of ten are exact in float, so that
/// one division gives the nearest float.
///
/// @param text  at least 16 characters have to be readable
/// @return whether the token is such a number
inline bool readShortFloat(const char* text, unsigned length, float& value) {
    // Signs are as good as random: a branch on them would be mispredicted.
    static constexpr float powersOfTen[] = {1e0F,  1e1F,  1e2F,  1e3F,  1e4F,  1e5F,  1e6F,  1e7F,
                                            -1e0F, -1e1F, -1e2F, -1e3F, -1e4F, -1e5F, -1e6F, -1e7F};
    constexpr std::uint64_t largestExact = 1 << 24;
    const unsigned sign = *text == '-' ? 1 : 0;
    const unsigned count = length - sign;
    if (count == 0 || count > wordLength) {
        return false;
    }
    const std::uint64_t word = (loadWord(text + sign) ^ everyByte('0')) << 8 * (wordLength - count);
    const PointlessDigits number = takeOutPoint(word);
    const std::uint64_t significand = joinDigits(number.digits);
    if (othersThanDigits(number.digits) != 0 || count == number.points ||
        significand > largestExact) {
        return false;
    }
    value = static_cast<float>(static_cast<std::int32_t>(significand)) /
            powersOfTen[wordLength * sign + number.decimals];
    return true;
}

} // namespace base
