// %.16f without the zeros at its end. A double below 2^53 is an integer over a power of two: what
// lies before the point is a shift, and what lies behind it, times 10^16, an integer of 128 bits,
// so that one comparison with one half rounds it exactly.
//
// Not done: printf, which is as exact, but depends on the locale; and the shortest digits that read
// back, which would be other text than these files have.

#include "dxfeditor/detail/writing/RealText.h"

#include "base/DigitWords.h"

#include <algorithm>
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
    Decimal result = {0, 0};
    Wide rest;
    Wide half;
    if (shift < 64) {
        // Of 64 bits below the point, the product has the decimals above them.
        result.whole = mantissa >> shift;
        const Wide scaled = static_cast<Wide>(mantissa << (64 - shift)) * decimalScale;
        result.decimals = static_cast<std::uint64_t>(scaled >> 64);
        rest = static_cast<std::uint64_t>(scaled);
        half = static_cast<Wide>(1) << 63;
    } else {
        const Wide scaled = static_cast<Wide>(mantissa) * decimalScale;
        result.decimals = static_cast<std::uint64_t>(scaled >> shift);
        rest = scaled - (static_cast<Wide>(result.decimals) << shift);
        half = static_cast<Wide>(1) << (shift - 1);
    }
    // Up or down is as good as random: a branch on it would be mispredicted.
    const unsigned isAbove = rest > half ? 1 : 0;
    const unsigned isHalf = rest == half ? 1 : 0;
    result.decimals += isAbove | (isHalf & static_cast<unsigned>(result.decimals & 1));
    if (result.decimals == decimalScale) {
        return {result.whole + 1, 0};
    }
    return result;
}

constexpr std::uint64_t eightDigits = 100'000'000;

/// Stores eight digits, each as its value, as text.
void storeDigits(std::uint64_t digits, char* to) {
    base::storeWord(digits + base::everyByte('0'), to);
}

/// Number of digits of a word up to its last one that is not zero, of which it has one.
unsigned significantDigits(std::uint64_t digits) {
    return base::wordLength - static_cast<unsigned>(__builtin_clzll(digits)) / 8;
}

char* writeWhole(std::uint64_t whole, char* to) {
    if (whole >= eightDigits) {
        return std::to_chars(to, to + 20, whole).ptr;
    }
    const std::uint64_t digits = base::splitDigits(static_cast<std::uint32_t>(whole));
    // The last digit is written in any case.
    constexpr std::uint64_t lastDigit = std::uint64_t{1} << 56;
    const auto zeros = static_cast<unsigned>(__builtin_ctzll(digits | lastDigit)) / 8;
    storeDigits(digits >> (8 * zeros), to);
    return to + base::wordLength - zeros;
}

/// Writes the point and the decimals without the zeros at their end, at least one decimal.
char* writeDecimals(std::uint64_t decimals, char* to) {
    *to++ = '.';
    if (decimals == 0) {
        *to++ = '0';
        return to;
    }
    const std::uint64_t first =
        base::splitDigits(static_cast<std::uint32_t>(decimals / eightDigits));
    const std::uint64_t last =
        base::splitDigits(static_cast<std::uint32_t>(decimals % eightDigits));
    storeDigits(first, to);
    if (last == 0) {
        return to + significantDigits(first);
    }
    storeDigits(last, to + base::wordLength);
    return to + base::wordLength + significantDigits(last);
}

char* writeWord(const char* word, char* to) {
    return std::copy_n(word, std::strlen(word), to);
}

} // namespace

char* writeReal(double value, char* to) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    // Without a branch on the sign, which is as good as random.
    *to = '-';
    to += bits >> 63;
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
    return writeDecimals(decimal.decimals, writeWhole(decimal.whole, to));
}

} // namespace dxfeditor
