// %.16f without the zeros at its end. A double below 2^53 is an integer over a power of two: what
// lies before the point is a shift, and what lies behind it, times 10^16, an integer of 128 bits,
// so that one comparison with one half rounds it exactly.
//
// Not done: printf, which is as exact, but depends on the locale; and the shortest digits that read
// back, which would be other text than these files have.

#include "dxfeditor/detail/writing/RealText.h"

#include "base/DigitWords.h"
#include "dxfeditor/detail/writing/SixteenDigits.h"

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
    // 2^106.2 / 2^108 is below one half: nothing is left of the value.
    if (shift >= 108) {
        return {0, 0};
    }
    const Wide one = static_cast<Wide>(1) << shift;
    const Wide scaled = (mantissa & (one - 1)) * decimalScale;
    const Wide rest = scaled & (one - 1);
    Decimal result = {shift < 64 ? mantissa >> shift : 0,
                      static_cast<std::uint64_t>(scaled >> shift)};
    result.decimals += 2 * rest > one || (2 * rest == one && result.decimals % 2 == 1) ? 1 : 0;
    return result.decimals == decimalScale ? Decimal{result.whole + 1, 0} : result;
}

/// Below 10^4: two digits at a time, then each, without those before the first.
char* writeFourDigits(std::uint32_t number, char* to) {
    const std::uint32_t hundreds = number * 5243 >> 19;
    const std::uint32_t twos = hundreds | (number - 100 * hundreds) << 16;
    const std::uint32_t tens = (twos * 103 >> 10) & 0x000F000F;
    const std::uint32_t digits = tens | (twos - 10 * tens) << 8;
    // The last digit is written in any case.
    const auto zeros = static_cast<unsigned>(__builtin_ctz(digits | 1U << 24)) / 8;
    base::storeWord(std::uint64_t{(digits | 0x30303030) >> (8 * zeros)}, to);
    return to + 4 - zeros;
}

[[gnu::noinline]] char* writeManyDigits(std::uint64_t number, char* to) {
    if (number >= eightDigits) {
        return std::to_chars(to, to + 20, number).ptr;
    }
    const std::uint64_t digits = base::splitDigits(static_cast<std::uint32_t>(number));
    const auto zeros = static_cast<unsigned>(__builtin_ctzll(digits)) / 8;
    base::storeWord((digits | base::everyByte('0')) >> (8 * zeros), to);
    return to + base::wordLength - zeros;
}

char* writeWhole(std::uint64_t whole, char* to) {
    constexpr std::uint64_t fourDigits = 10'000;
    return whole < fourDigits ? writeFourDigits(static_cast<std::uint32_t>(whole), to)
                              : writeManyDigits(whole, to);
}

/// Writes the point and sixteen decimals without the zeros at their end, at least one decimal.
char* writeDecimals(std::uint32_t upper, std::uint32_t lower, char* to) {
    *to++ = '.';
    return to + writeSixteenDigits(upper, lower, to);
}

char* writeWord(const char* word, char* to) {
    return std::copy_n(word, std::strlen(word), to);
}

constexpr unsigned exponentOfWhole = 1075; // from 2^52 on every value is whole
constexpr std::uint64_t fractionOfBits = 0xF'FFFF'FFFF'FFFF;

/// The magnitude of any value, by the parts of its bits.
[[gnu::noinline]] char* writeMagnitude(unsigned exponent, std::uint64_t fraction, char* to) {
    if (exponent == 0x7FF) {
        return writeWord(fraction == 0 ? "inf" : "nan", to);
    }
    if (exponent == 0 && fraction == 0) {
        return writeWord("0.0", to);
    }
    const bool subnormal = exponent == 0;
    const std::uint64_t mantissa = fraction | (subnormal ? 0 : fractionOfBits + 1);
    if (exponent > exponentOfWhole) {
        const double whole =
            std::ldexp(static_cast<double>(mantissa), static_cast<int>(exponent - exponentOfWhole));
        to = std::to_chars(to, to + longestReal - 1, whole, std::chars_format::fixed, 0).ptr;
        return writeWord(".0", to);
    }
    const Decimal decimal = rounded(mantissa, exponentOfWhole - (subnormal ? 1 : exponent));
    return writeDecimals(static_cast<std::uint32_t>(decimal.decimals / eightDigits),
                         static_cast<std::uint32_t>(decimal.decimals % eightDigits),
                         writeWhole(decimal.whole, to));
}

} // namespace

char* writeReal(double value, char* to) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    // Without a branch on the sign, which is as good as random.
    *to = '-';
    to += bits >> 63;
    const unsigned exponent = static_cast<unsigned>(bits >> 52) & 0x7FFU;
    const std::uint64_t fraction = bits & fractionOfBits;
    const unsigned shift = exponentOfWhole - exponent;
    if (shift < 1 || shift > 63) {
        return writeMagnitude(exponent, fraction, to);
    }

    // Most values: of the 64 bits below the point eight decimals, of what lies below these another
    // eight, and of the rest the rounding.
    const std::uint64_t mantissa = fraction | (fractionOfBits + 1);
    const Wide upper = static_cast<Wide>(mantissa << (64 - shift)) * eightDigits;
    const Wide lower = static_cast<Wide>(static_cast<std::uint64_t>(upper)) * eightDigits;
    // Up or down is as good as random, too. Half less a bit carries what is above one half; that
    // bit is there for odd decimals.
    const Wide half = (std::uint64_t{1} << 63) - 1 + (lower >> 64 & 1);
    const auto last = static_cast<std::uint32_t>((lower + half) >> 64);
    if (last == eightDigits) {
        return writeMagnitude(exponent, fraction, to);
    }
    return writeDecimals(static_cast<std::uint32_t>(upper >> 64), last,
                         writeWhole(mantissa >> shift, to));
}

} // namespace dxfeditor
