// A number is taken before it is converted, as streams do it: all characters that can belong to it,
// whatever comes of them. Then the first of the ways below that is proven to round right converts
// it; PlyAsciiBody.cpp lists them all, from a line at once to the C library.

#include "converters/detail/numbers/NumberExtraction.h"

#include "base/Blank.h"
#include "base/DigitWords.h"
#include "base/PowersOfTen.h"

#include <locale.h>

#include <cfloat>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

// The exact conversions below need operations rounded once, to the type itself.
static_assert(FLT_EVAL_METHOD == 0);
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

namespace converters::detail {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// A number without its sign: significand * 10^exponent.
struct Decimal {
    std::string_view text;
    /// Valid when `isShort`.
    std::uint64_t significand = 0;
    std::int64_t exponent = 0;
    /// At most 19 digits after leading zeros: they fit into 64 bits.
    bool isShort = false;
};

const char* takeDigits(const char* position, const char* end, std::uint64_t& significand) {
    for (; position != end && isDigit(*position); ++position) {
        significand = significand * 10 + static_cast<std::uint64_t>(*position - '0');
    }
    return position;
}

/// The number of digits from the first that is not 0.
std::ptrdiff_t countSignificant(const char* position, const char* end) {
    while (position != end && (*position == '0' || *position == '.')) {
        ++position;
    }
    const bool hasPoint =
        std::string_view(position, static_cast<std::size_t>(end - position)).find('.') !=
        std::string_view::npos;
    return end - position - (hasPoint ? 1 : 0);
}

/// Takes "e", an optional sign and digits; false when there are no digits.
bool takeExponent(const char*& position, const char* end, std::int64_t& exponent) {
    ++position;
    bool negative = false;
    if (position != end && (*position == '-' || *position == '+')) {
        negative = *position == '-';
        ++position;
    }
    constexpr std::int64_t beyondAnyText = std::int64_t{1} << 56;
    const char* const digits = position;
    std::int64_t magnitude = 0;
    for (; position != end && isDigit(*position); ++position) {
        if (magnitude < beyondAnyText) {
            magnitude = magnitude * 10 + (*position - '0');
        }
    }
    exponent += negative ? -magnitude : magnitude;
    return position != digits;
}

/// Takes any digits with at most one point among them; false when there is no digit.
bool takeLongDigits(const char*& position, const char* end, Decimal& decimal) {
    constexpr std::ptrdiff_t maxDigits = 19;
    const char* const begin = position;
    position = takeDigits(position, end, decimal.significand);
    std::ptrdiff_t digits = position - begin;
    if (position != end && *position == '.') {
        const char* const fraction = ++position;
        position = takeDigits(position, end, decimal.significand);
        decimal.exponent = -(position - fraction);
        digits += position - fraction;
    }
    decimal.isShort = digits <= maxDigits || countSignificant(begin, position) <= maxDigits;
    return digits != 0;
}

/// Takes digits with at most one point among them, then an exponent.
///
/// @param readable  end of the memory that may be read; the line's end before it is no digit
bool takeDecimal(const char*& position, const char* end, const char* readable, Decimal& decimal) {
    const char* const begin = position;
    constexpr std::ptrdiff_t room = base::wordLength + 1;
    base::ShortDigits digits;
    if (base::canUseWords && readable - position >= room) {
        digits = base::takeShortDigits(position);
    }
    if (digits.length != 0) {
        decimal.significand = digits.value;
        decimal.exponent = -static_cast<std::int64_t>(digits.decimals);
        decimal.isShort = true;
        position += digits.length;
    } else if (!takeLongDigits(position, end, decimal)) {
        return false;
    }
    const bool hasExponent = position != end && (*position == 'e' || *position == 'E');
    const bool isComplete = !hasExponent || takeExponent(position, end, decimal.exponent);
    decimal.text = {begin, static_cast<std::size_t>(position - begin)};
    return isComplete;
}

/// The largest power of ten that a double holds exactly.
constexpr std::int64_t largestExactPower = std::size(base::exactPowersOfTen) - 1;

bool hasExactPower(const Decimal& decimal) {
    return decimal.exponent >= -largestExactPower && decimal.exponent <= largestExactPower;
}

double scaled(const Decimal& decimal) {
    const auto significand = static_cast<double>(decimal.significand);
    return decimal.exponent < 0 ? significand / base::exactPowersOfTen[-decimal.exponent]
                                : significand * base::exactPowersOfTen[decimal.exponent];
}

/// Clinger's exact case: significand and power are exact in double, so one operation rounds once.
bool convertFast(const Decimal& decimal, double& value) {
    constexpr std::uint64_t largestExact = std::uint64_t{1} << 53;
    if (decimal.significand > largestExact || !hasExactPower(decimal)) {
        return false;
    }
    value = scaled(decimal);
    return true;
}

/// By way of a double that is rounded twice: significand, then product or quotient. Narrowed, the
/// double gives the nearest float unless a tie between two floats lies between it and the number.
/// Ties are doubles themselves, told by the 29 bits that narrowing drops: only the first is set.
///
/// How far off is the double? The significand is rounded by 2^-53 of itself at most, so the exact
/// product or quotient is off by 2^-53 of itself, which is at most one unit of its last place (the
/// value is below 2^53 units). Its own rounding adds half a unit. A margin of four units is more
/// than twice these one and a half. Of 2^29 doubles between two floats, nine are within it: one
/// number in some sixty million is left to the next stage for nothing.
bool convertFast(const Decimal& decimal, float& value) {
    if (!hasExactPower(decimal)) {
        return false;
    }
    const double wide = scaled(decimal);
    std::uint64_t bits;
    std::memcpy(&bits, &wide, sizeof bits);
    constexpr std::uint64_t droppedBits = (std::uint64_t{1} << 29) - 1;
    constexpr std::uint64_t tie = std::uint64_t{1} << 28;
    constexpr std::uint64_t margin = 4;
    const bool isNearTie = (bits & droppedBits) - (tie - margin) <= 2 * margin;
    // The power bounds it from below, far above the smallest normal float.
    if (isNearTie || wide > 1e38) {
        return false;
    }
    value = static_cast<float>(wide);
    return true;
}

locale_t classicLocale() {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    return classic;
}

void convertByLibrary(const char* text, float& value) {
    value = strtof_l(text, nullptr, classicLocale());
}

void convertByLibrary(const char* text, double& value) {
    value = strtod_l(text, nullptr, classicLocale());
}

/// std::from_chars says of a number out of range neither whether it is too large or too small nor
/// what it rounds to, and its exponents are limited: such numbers go to the C library.
template <typename Float>
void convertSlowly(std::string_view text, Float& value) {
    constexpr std::size_t longest = 400;
    const char* const end = text.data() + text.size();
    if (text.size() > longest || std::from_chars(text.data(), end, value).ec != std::errc()) {
        convertByLibrary(std::string(text).c_str(), value);
    }
}

/// Takes a word, given in small letters, in any letter case.
bool takeWord(const char*& position, const char* end, std::string_view word) {
    if (static_cast<std::size_t>(end - position) < word.size()) {
        return false;
    }
    for (std::size_t i = 0; i < word.size(); ++i) {
        if ((position[i] | 0x20) != word[i]) {
            return false;
        }
    }
    position += word.size();
    return true;
}

bool isWordCharacter(char c) {
    return isDigit(c) || c == '_' || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
}

void takeBrackets(const char*& position, const char* end) {
    const char* c = position;
    if (c == end || *c != '(') {
        return;
    }
    do {
        ++c;
    } while (c != end && isWordCharacter(*c));
    if (c != end && *c == ')') {
        position = c + 1;
    }
}

/// Takes nan, inf or infinity when the word stands alone.
template <typename Float>
bool takeSpecialWord(const char*& position, const char* end, Float& value) {
    const char* after = position;
    if (takeWord(after, end, "nan")) {
        takeBrackets(after, end);
        value = std::numeric_limits<Float>::quiet_NaN();
    } else if (takeWord(after, end, "infinity") || takeWord(after, end, "inf")) {
        value = std::numeric_limits<Float>::infinity();
    } else {
        return false;
    }
    if (after != end && !base::isBlank(*after)) {
        value = 0;
        return false;
    }
    position = after;
    return true;
}

template <typename Float>
bool extractFloat(const char*& position, const char* end, const char* readable, Float& value) {
    value = 0;
    // Without a branch: signs are as good as random.
    const char first = position != end ? *position : ' ';
    const bool negative = first == '-';
    position += negative || first == '+' ? 1 : 0;
    const char* const begin = position;
    Decimal decimal;
    bool isFinite = takeDecimal(position, end, readable, decimal);
    if (isFinite) {
        if (!decimal.isShort || !convertFast(decimal, value)) {
            convertSlowly(decimal.text, value);
        }
        isFinite = value <= std::numeric_limits<Float>::max();
        value = isFinite ? value : std::numeric_limits<Float>::max();
    } else if (position != begin || !takeSpecialWord(position, end, value)) {
        return false;
    } else {
        isFinite = true;
    }
    value = negative ? -value : value;
    return isFinite;
}

} // namespace

bool extractNumber(const char*& position, const char* end, const char* readable, float& value) {
    return extractFloat(position, end, readable, value);
}

bool extractNumber(const char*& position, const char* end, const char* readable, double& value) {
    return extractFloat(position, end, readable, value);
}

} // namespace converters::detail
