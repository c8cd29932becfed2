#include "converters/detail/scan/NumberText.h"

#include "converters/detail/numbers/NumberExtraction.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace converters::scan {
namespace {

/// What some C libraries print for numbers that are none.
template <typename Float>
bool parseSpecial(std::string_view token, Float& number) {
    const bool isNegative = token[0] == '-';
    token.remove_prefix(isNegative || token[0] == '+' ? 1 : 0);
    constexpr std::string_view front = "1.#";
    if (token.substr(0, front.size()) != front) {
        return false;
    }
    token.remove_prefix(front.size());
    const std::string_view word = token.substr(0, token.find_last_not_of('0') + 1);
    if (word == "INF") {
        number = std::numeric_limits<Float>::infinity();
    } else if (word == "QNAN" || word == "SNAN" || word == "IND") {
        number = std::numeric_limits<Float>::quiet_NaN();
    } else {
        return false;
    }
    number = isNegative ? -number : number;
    return true;
}

template <typename Float>
NumberFault parseFloating(std::string_view token, Float& number) {
    const char* position = token.data();
    const char* const end = position + token.size();
    const bool isNumber = detail::extractNumber(position, end, end, number);
    if (isNumber && position == end) {
        return NumberFault::none;
    }
    const bool isTooLarge =
        !isNumber && position == end && std::abs(number) == std::numeric_limits<Float>::max();
    if (isTooLarge) {
        return NumberFault::outOfRange;
    }
    return parseSpecial(token, number) ? NumberFault::none : NumberFault::noNumber;
}

/// A whole number that is spelled with a point or an exponent.
template <typename Integer>
NumberFault parseWhole(std::string_view token, Integer& number) {
    double wide = 0;
    const NumberFault fault = parseFloating(token, wide);
    if (fault != NumberFault::none) {
        return fault;
    }
    if (!(std::trunc(wide) == wide)) {
        return NumberFault::notWhole;
    }
    // Up to here doubles are exact; larger whole numbers are not spelled like that.
    constexpr double exact = 9007199254740992.0;
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Integer>::max());
    if (wide < lowest || wide > highest || std::abs(wide) > exact) {
        return std::isinf(wide) ? NumberFault::notWhole : NumberFault::outOfRange;
    }
    number = static_cast<Integer>(wide);
    return NumberFault::none;
}

template <typename Integer>
NumberFault parseInteger(std::string_view token, Integer& number) {
    const bool hasPlus = token[0] == '+' && token.size() > 1 && token[1] != '-';
    const char* const begin = token.data() + (hasPlus ? 1 : 0);
    const char* const end = token.data() + token.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (stop == end && error == std::errc()) {
        return NumberFault::none;
    }
    if (stop == end && error == std::errc::result_out_of_range) {
        return NumberFault::outOfRange;
    }
    return parseWhole(token, number);
}

} // namespace

template <typename Number>
NumberFault parseNumber(std::string_view token, Number& number) {
    if constexpr (std::is_floating_point_v<Number>) {
        return parseFloating(token, number);
    } else {
        return parseInteger(token, number);
    }
}

template NumberFault parseNumber(std::string_view, std::int8_t&);
template NumberFault parseNumber(std::string_view, std::uint8_t&);
template NumberFault parseNumber(std::string_view, std::int16_t&);
template NumberFault parseNumber(std::string_view, std::uint16_t&);
template NumberFault parseNumber(std::string_view, std::int32_t&);
template NumberFault parseNumber(std::string_view, std::uint32_t&);
template NumberFault parseNumber(std::string_view, std::int64_t&);
template NumberFault parseNumber(std::string_view, std::uint64_t&);
template NumberFault parseNumber(std::string_view, float&);
template NumberFault parseNumber(std::string_view, double&);

} // namespace converters::scan
