#include "converters/detail/numbers/NumberFormat.h"

#include "base/PowersOfTen.h"
#include "converters/detail/numbers/SixDigits.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

// %g for doubles. (For floats there is FloatFormat.h, which needs no margin: a float times its
// power of ten fits an integer. What it cannot take comes here.)
//
// Most numbers are scaled by an exact power of ten to a number with six digits before its point and
// rounded there. How far off is the scaled number? It is below 10^6 < 2^20, where doubles are 2^-33
// apart, and one operation on exact operands rounds by half of that: 2^-34 of a unit. So its digits
// are proven unless its fraction is that close to one half; 2^-32 is asked for, four times as much.
// The fraction itself is exact: whole numbers and halves are doubles, and their difference to a
// number near them is one.
//
// Of random fractions, one in two thousand million is closer to one half than 2^-32. Those numbers,
// and the very small and large ones, are left to std::to_chars, which calculates exactly.

namespace converters::detail {
namespace {

constexpr double powerOfTen(int exponent) {
    return exponent < 0 ? 1 / base::exactPowersOfTen[-exponent] : base::exactPowersOfTen[exponent];
}

/// Decimal exponent of the numbers of one binary exponent: `exponent` below `next`, one more from
/// there on. `next` may be off by its last bit: a number so close to a power of ten gets the same
/// digits with either exponent.
struct Decade {
    double next;
    int exponent;
};

/// Range of binary exponents whose scale is an exact power of ten: 2^-56 is 1.4e-17, the next after
/// 2^72 is 9.4e21.
constexpr int firstBinaryExponent = -56;
constexpr int lastBinaryExponent = 72;
constexpr int exponentBias = 1023;
constexpr std::size_t decadeCount = lastBinaryExponent - firstBinaryExponent + 1;

constexpr std::array<Decade, decadeCount> decades = [] {
    std::array<Decade, decadeCount> table = {};
    double smallest = 1.0 / static_cast<double>(std::uint64_t(1) << -firstBinaryExponent);
    int exponent = -17;
    for (Decade& decade : table) {
        while (powerOfTen(exponent + 1) <= smallest) {
            ++exponent;
        }
        decade = {powerOfTen(exponent + 1), exponent};
        smallest *= 2;
    }
    return table;
}();

/// Zero, infinity, not a number, and what the scaling cannot prove.
char* writeRare(char* out, double magnitude) {
    if (magnitude == 0) {
        *out = '0';
        return out + 1;
    }
    if (!std::isfinite(magnitude)) {
        std::memcpy(out, std::isnan(magnitude) ? "nan" : "inf", 3);
        return out + 3;
    }
    return std::to_chars(out, out + maxGeneralLength, magnitude, std::chars_format::general, 6).ptr;
}

} // namespace

char* writeGeneral(char* out, double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    *out = '-';
    out += bits >> 63;
    const double magnitude = std::fabs(value);

    const std::uint64_t row = (bits >> 52 & 0x7FF) - (exponentBias + firstBinaryExponent);
    if (row >= decadeCount) {
        return writeRare(out, magnitude);
    }
    const Decade& decade = decades[row];
    const int exponent = decade.exponent + (magnitude >= decade.next ? 1 : 0);
    const int scale = 5 - exponent;
    const double scaled = scale >= 0 ? magnitude * base::exactPowersOfTen[scale]
                                     : magnitude / base::exactPowersOfTen[-scale];
    const auto whole = static_cast<std::int32_t>(scaled);
    const double pastHalf = scaled - whole - 0.5;
    if (std::fabs(pastHalf) <= 0x1p-32) {
        return writeRare(out, magnitude);
    }
    const auto digits = static_cast<std::uint32_t>(whole + (pastHalf > 0 ? 1 : 0));
    return writeSixDigits(out, digits, exponent);
}

} // namespace converters::detail
