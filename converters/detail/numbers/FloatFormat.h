#pragma once

#include "converters/detail/numbers/NumberFormat.h"
#include "converters/detail/numbers/SixDigits.h"

#include <array>
#include <cstdint>
#include <cstring>

// %g for floats, the numbers of most clouds. (For doubles there is NumberFormat.)
//
// A float is an integer of 24 bits times a power of two. From a billionth to a million, its product
// with the power of ten that brings it to six digits before the point fits 64 bits exactly, as a
// number with a fraction of 43 bits: what follows is one multiplication and one rounding of
// integers, without an error that could make a digit wrong.

namespace converters::detail {

/// The floats with one binary exponent: their decimal exponent is `exponent` for mantissas below
/// `next`, one more from there on. The product of the mantissa with the scale of either kind has
/// six digits before its fraction.
struct FloatDecade {
    std::uint64_t scales[2];
    std::uint32_t next;
    std::int32_t exponent;
};

constexpr int floatMantissaBits = 23;
constexpr int floatFractionBits = 43;
constexpr int firstFloatExponent = -30;
constexpr int lastFloatExponent = 19;

/// 10^power * 2^shift, which is an integer for all that is asked for; 0 where nothing is.
constexpr std::uint64_t floatScale(int power, int shift) {
    std::uint64_t scale = power < 0 ? 0 : 1;
    for (int i = 0; i < power; ++i) {
        scale *= 10;
    }
    return shift < 0 ? scale >> -shift : scale << shift;
}

inline constexpr std::array<FloatDecade, lastFloatExponent - firstFloatExponent + 1> floatDecades =
    [] {
        constexpr std::uint64_t million = std::uint64_t{1000000} << floatFractionBits;
        constexpr std::uint64_t least = 1 << floatMantissaBits;
        std::array<FloatDecade, lastFloatExponent - firstFloatExponent + 1> table = {};
        int exponent = -10;
        int shift = floatFractionBits - floatMantissaBits + firstFloatExponent;
        for (FloatDecade& decade : table) {
            while (least * floatScale(5 - exponent, shift) >= million) {
                ++exponent;
            }
            decade.scales[0] = floatScale(5 - exponent, shift);
            decade.scales[1] = floatScale(4 - exponent, shift);
            decade.next = static_cast<std::uint32_t>((million - 1) / decade.scales[0] + 1);
            decade.exponent = exponent;
            ++shift;
        }
        return table;
    }();

/// writeGeneral for a float, the same text in less time.
inline char* writeGeneralFloat(char* out, float value) {
    constexpr int exponentBias = 127;
    constexpr std::uint32_t least = (exponentBias + firstFloatExponent) << floatMantissaBits;
    constexpr std::uint32_t million = 0x49742400; // the bits of 1e6
    constexpr std::uint32_t hiddenBit = 1 << floatMantissaBits;
    constexpr std::uint64_t half = std::uint64_t{1} << (floatFractionBits - 1);

    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const std::uint32_t magnitude = bits & 0x7FFFFFFF;
    if (magnitude - least >= million - least) {
        return writeGeneral(out, static_cast<double>(value));
    }
    const FloatDecade& decade = floatDecades[(magnitude - least) >> floatMantissaBits];
    const std::uint32_t mantissa = (magnitude & (hiddenBit - 1)) | hiddenBit;
    const int isNext = mantissa >= decade.next ? 1 : 0;
    const std::uint64_t product = mantissa * decade.scales[isNext];
    // Halfway between two numbers, the even one is right.
    const std::uint64_t odd = product >> floatFractionBits & 1;
    const auto digits = static_cast<std::uint32_t>((product + half - 1 + odd) >> floatFractionBits);
    *out = '-';
    return writeSixDigits(out + (bits >> 31), digits, decade.exponent + isNext);
}

} // namespace converters::detail
