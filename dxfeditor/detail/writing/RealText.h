#pragma once

#include <cstddef>

namespace dxfeditor {

/// Room for the longest text of a real: sign, 309 digits, point and one decimal.
constexpr std::size_t longestReal = 312;

/// Writes `value` the way dxflib spells reals: its exact value rounded to sixteen decimals, half
/// to even, then the zeros at the end cut but for the first decimal ("5.0", "-0.3333333333333333",
/// "-0.0"); "nan", "-nan", "inf" and "-inf" else.
///
/// dxflib's own formatting writes outside its buffer from 1e238 on; here the rule just goes on.
/// Independent of locales.
///
/// @param to  room for longestReal characters
/// @return    the end of the text, which carries no closing zero byte
char* writeReal(double value, char* to);

} // namespace dxfeditor
