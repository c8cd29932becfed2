// %.16f without the zeros at its end. A double below 2^53 is an integer over a power of two: what
// lies before the point is a shift, and what lies behind it, times 10^16, an integer of 128 bits,
// so that one comparison with one half rounds it exactly.
//
// Not done: printf, which is as exact, but depends on the locale; and the shortest digits that read
// back, which would be other text than these files have.

#include "dxfeditor/detail/writing/RealText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace dxfeditor {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t decimalScale = 10'000'000'000'000'000; // sixteen decimals

/// The parts of a finite value's magnitude: whole + decimals / decimalScale.
struct Decimal {
    std::uint64_t whole;
    std::uint64_t decimals;
};

/// Rounds mantissa / 2^shift to sixteen decimals, half to even, for a mantissa below 2^53.
///
/// Exact: what lies below the point, times 10^16, is less than 2^53 * 2^53.2 and fits 128 bits.
Decimal rounded(std::uint64_t mantissa, unsigned shift) {
    if (shift == 0) {
        return {mantissa, 0};
    }
    // 2^106.2 / 2^108 is below one half: nothing is left of the value.
    if (shift >= 108) {
        return {0, 0};
    }
    Decimal result = {shift < 64 ? mantissa >> shift : 0, 0};
    const std::uint64_t fraction = shift < 64 ? mantissa - (result.whole << shift) : mantissa;
    const Wide scaled = static_cast<Wide>(fraction) * decimalScale;
    result.decimals = static_cast<std::uint64_t>(scaled >> shift);
    const Wide rest = scaled - (static_cast<Wide>(result.decimals) << shift);
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    if (rest > half || (rest == half && (result.decimals & 1) != 0)) {
        ++result.decimals;
    }
    if (result.decimals == decimalScale) {
        return {result.whole + 1, 0};
    }
    return result;
}

/// The texts "00" to "99", one behind the other.
constexpr std::array<char, 200> makeDigitPairs() {
    std::array<char, 200> pairs = {};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}
constexpr std::array<char, 200> digitPairs = makeDigitPairs();

void writeFourDigits(std::uint32_t value, char* to) {
    std::memcpy(to, digitPairs.data() + std::size_t{value / 100} * 2, 2);
    std::memcpy(to + 2, digitPairs.data() + std::size_t{value % 100} * 2, 2);
}

void writeEightDigits(std::uint32_t value, char* to) {
    writeFourDigits(value / 10'000, to);
    writeFourDigits(value % 10'000, to + 4);
}

/// Writes the point and the decimals without the zeros at their end, at least one decimal.
char* writeDecimals(std::uint64_t decimals, char* to) {
    *to++ = '.';
    if (decimals == 0) {
        *to++ = '0';
        return to;
    }
    constexpr std::uint64_t eightDigits = 100'000'000;
    writeEightDigits(static_cast<std::uint32_t>(decimals / eightDigits), to);
    writeEightDigits(static_cast<std::uint32_t>(decimals % eightDigits), to + 8);
    char* end = to + 16;
    while (end[-1] == '0') {
        --end;
    }
    return end;
}

char* writeWord(const char* word, char* to) {
    return std::copy_n(word, std::strlen(word), to);
}

} // namespace

char* writeReal(double value, char* to) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    if ((bits >> 63) != 0) {
        *to++ = '-';
    }
    const unsigned exponent = static_cast<unsigned>(bits >> 52) & 0x7FFU;
    const std::uint64_t fraction = bits & 0xF'FFFF'FFFF'FFFF;
    if (exponent == 0x7FF) {
        return writeWord(fraction == 0 ? "inf" : "nan", to);
    }

    // From 2^53 on every value is whole; below, it is mantissa / 2^shift.
    constexpr unsigned exponentOfWhole = 1075;
    if (exponent > exponentOfWhole) {
        to = std::to_chars(to, to + longestReal - 1, std::fabs(value), std::chars_format::fixed, 0)
                 .ptr;
        return writeDecimals(0, to);
    }
    const bool subnormal = exponent == 0;
    const std::uint64_t mantissa = fraction | (subnormal ? 0 : std::uint64_t{1} << 52);
    const Decimal decimal = rounded(mantissa, exponentOfWhole - (subnormal ? 1 : exponent));
    to = std::to_chars(to, to + 20, decimal.whole).ptr;
    return writeDecimals(decimal.decimals, to);
}

} // namespace dxfeditor
