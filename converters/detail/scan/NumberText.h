#pragma once

#include <cstdint>
#include <string_view>

namespace converters::scan {

/// What is wrong with the text of a number.
enum class NumberFault {
    none,
    /// The file ends before it.
    missing,
    noNumber,
    /// A number with a fraction, or none at all, where the type is one of whole numbers.
    notWhole,
    outOfRange
};

/// Reads a whole token as a number of the type, rounded to nearest.
///
/// Floating types take decimal numbers and, in any letter case and with a sign or without, "nan",
/// "inf", "infinity" and what C libraries print in their place: "-nan(ind)", "1.#QNAN",
/// "-1.#IND00", "1.#INF". Whole numbers may be spelled with a point or an exponent: "255.0", "1e3".
///
/// @param token    not empty, without blanks
/// @param number  set when there is no fault
template <typename Number>
NumberFault parseNumber(std::string_view token, Number& number);

} // namespace converters::scan
