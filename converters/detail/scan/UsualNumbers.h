#pragma once

#include "base/Blank.h"
#include "base/DigitWords.h"
#include "base/PowersOfTen.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

// Numbers as most files spell them, decoded eight digits at a time:
//
//     -123.4567          a sign, digits with a point among them
//     4512345.12345678   up to 16 digits before the point and 16 behind it, 18 in all
//     1.5e-05            and an exponent of up to three digits
//
// What is spelled otherwise, or is not proven to be rounded right, is left to slower code.

namespace converters::scan {

/// As many bytes have to be readable from where a number begins.
constexpr std::ptrdiff_t usualRoom = 64;

/// significand * 10^exponent.
struct UsualDecimal {
    std::uint64_t significand = 0;
    int digits = 0;
    int exponent = 0;
};

/// 10^0 to 10^8.
constexpr std::uint64_t wholePowersOfTen[] = {1,      10,      100,      1000,     10000,
                                              100000, 1000000, 10000000, 100000000};

/// Takes up to eight digits.
inline unsigned takeEightDigits(const char*& c, UsualDecimal& number) {
    const std::uint64_t word = base::loadWord(c);
    const unsigned count = base::countDigits(word);
    const std::uint64_t value = count == 0 ? 0 : base::valueOfDigits(word, count);
    number.significand = number.significand * wholePowersOfTen[count] + value;
    number.digits += static_cast<int>(count);
    c += count;
    return count;
}

/// Takes up to sixteen digits.
inline unsigned takeUsualDigits(const char*& c, UsualDecimal& number) {
    const unsigned count = takeEightDigits(c, number);
    return count < base::wordLength ? count : count + takeEightDigits(c, number);
}

/// Takes "e", an optional sign and one to three digits; false when it is something else.
inline bool takeUsualExponent(const char*& c, UsualDecimal& number) {
    if ((*c | 0x20) != 'e') {
        return false;
    }
    ++c;
    const bool isNegative = *c == '-';
    c += isNegative || *c == '+' ? 1 : 0;
    int exponent = 0;
    const char* const digits = c;
    for (; *c >= '0' && *c <= '9' && c - digits < 3; ++c) {
        exponent = exponent * 10 + (*c - '0');
    }
    number.exponent += isNegative ? -exponent : exponent;
    return c != digits;
}

inline double withSign(double magnitude, unsigned sign) {
    std::uint64_t bits;
    std::memcpy(&bits, &magnitude, sizeof bits);
    bits |= std::uint64_t{sign} << 63;
    std::memcpy(&magnitude, &bits, sizeof bits);
    return magnitude;
}

/// Clinger's exact case: significand and power are exact in double, so one operation rounds once.
inline bool isNearest(const UsualDecimal& number, double, double&) {
    return number.significand <= std::uint64_t{1} << 53;
}

/// By way of a double that is rounded twice, each time by at most one unit of its last place.
/// Narrowed, it gives the nearest float unless it lies within these units of a tie between two
/// floats, which the bits tell that narrowing drops.
inline bool isNearest(const UsualDecimal&, double wide, float&) {
    std::uint64_t bits;
    std::memcpy(&bits, &wide, sizeof bits);
    constexpr std::uint64_t droppedBits = (std::uint64_t{1} << 29) - 1;
    constexpr std::uint64_t tie = std::uint64_t{1} << 28;
    constexpr std::uint64_t margin = 4;
    return (bits & droppedBits) - (tie - margin) > 2 * margin && wide <= 1e38;
}

/// Takes a floating number that ends before a blank.
/// @return its end; null when it is not a usual one
template <typename Float>
std::enable_if_t<std::is_floating_point_v<Float>, const char*> takeUsual(const char* c,
                                                                         Float& value) {
    UsualDecimal number;
    const unsigned sign = *c == '-' ? 1 : 0;
    c += sign;
    takeUsualDigits(c, number);
    if (*c == '.') {
        ++c;
        number.exponent = -static_cast<int>(takeUsualDigits(c, number));
    }
    // Fewer than 2^63.
    constexpr int mostDigits = 18;
    constexpr int mostTens = std::size(base::exactPowersOfTen) - 1;
    if (number.digits == 0 || number.digits > mostDigits ||
        (!base::isBlank(*c) && !(takeUsualExponent(c, number) && base::isBlank(*c))) ||
        number.exponent < -mostTens || number.exponent > mostTens) {
        return nullptr;
    }
    const auto significand = static_cast<double>(static_cast<std::int64_t>(number.significand));
    const double wide = number.exponent < 0 ? significand / base::exactPowersOfTen[-number.exponent]
                                            : significand * base::exactPowersOfTen[number.exponent];
    // Signs are as good as random: a branch on them would be mispredicted.
    value = static_cast<Float>(withSign(wide, sign));
    return isNearest(number, wide, value) ? c : nullptr;
}

/// Takes a whole number that ends before a blank.
/// @return its end; null when it is not a usual one, or out of range
template <typename Integer>
std::enable_if_t<std::is_integral_v<Integer>, const char*> takeUsual(const char* c,
                                                                     Integer& value) {
    const bool isNegative = *c == '-';
    c += isNegative ? 1 : 0;
    UsualDecimal number;
    const std::uint64_t word = base::loadWord(c);
    const unsigned count = base::countDigits(word);
    if (count == 0) {
        return nullptr;
    }
    if (count < base::wordLength) {
        number.significand = base::valueOfDigits(word, count);
        c += count;
    } else {
        takeUsualDigits(c, number);
    }
    // At most sixteen digits.
    const auto magnitude = static_cast<std::int64_t>(number.significand);
    const std::int64_t whole = isNegative ? -magnitude : magnitude;
    value = static_cast<Integer>(whole);
    const bool isInRange =
        static_cast<std::int64_t>(value) == whole && (std::is_signed_v<Integer> || !isNegative);
    return isInRange && base::isBlank(*c) ? c : nullptr;
}

} // namespace converters::scan
