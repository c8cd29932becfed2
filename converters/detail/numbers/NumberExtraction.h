#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

/// Numbers taken from text as stream extraction in the classic locale takes them, in every locale
/// and without a stream.
///
/// Extraction first takes characters as long as they can belong to a number and converts them
/// then, so a failed number is consumed too: "1e+" leaves nothing, "1.5abc" is 1.5 and leaves
/// "abc", "0x1p3" is 0 and leaves "x1p3".
///
/// Each function starts at `position`, does not skip whitespace, and leaves `position` behind what
/// it took. It returns whether extraction succeeds; `value` is set in any case: to 0 when there is
/// no number, to the nearest value of the type when the number is out of range.
namespace converters::detail {

/// An integer: optional sign, decimal digits. An unsigned type takes a minus sign, too: "-1" is its
/// largest value.
template <typename Integer>
bool extractNumber(const char*& position, const char* end, Integer& value) {
    using Unsigned = std::uint64_t;
    bool negative = false;
    if (position != end && (*position == '-' || *position == '+')) {
        negative = *position == '-';
        ++position;
    }
    constexpr bool isSigned = std::is_signed_v<Integer>;
    constexpr auto largest = static_cast<Unsigned>(std::numeric_limits<Integer>::max());
    const Unsigned limit = isSigned && negative ? largest + 1 : largest;
    const char* const digits = position;
    Unsigned magnitude = 0;
    bool isInRange = true;
    for (; position != end && *position >= '0' && *position <= '9'; ++position) {
        const auto digit = static_cast<Unsigned>(*position - '0');
        isInRange = isInRange && magnitude <= (limit - digit) / 10;
        magnitude = isInRange ? magnitude * 10 + digit : limit;
    }
    const bool isNegated = negative && (isSigned || isInRange);
    value = static_cast<Integer>(isNegated ? Unsigned{0} - magnitude : magnitude);
    return position != digits && isInRange;
}

/// A decimal number, rounded to nearest. Beyond what extraction takes, the words "nan", "inf" and
/// "infinity" are numbers, in any letter case and with an optional sign, also with what C libraries
/// print behind nan in brackets: "-nan(ind)". A word has to be followed by whitespace or the end.
///
/// @param readable  end of the memory that may be read, `end` or behind it. If behind, there is a
///                  line feed or a zero byte at `end`.
bool extractNumber(const char*& position, const char* end, const char* readable, float& value);

/// As for float.
bool extractNumber(const char*& position, const char* end, const char* readable, double& value);

} // namespace converters::detail
