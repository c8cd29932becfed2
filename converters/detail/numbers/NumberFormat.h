#pragma once

namespace converters::detail {

/// Most characters that writeGeneral writes: "-1.79769e+308".
constexpr int maxGeneralLength = 13;

/// Writes a number in general notation with six significant digits: what a stream prints by
/// default, "%g" of printf, in the classic locale whatever the locale of the process. Not a number
/// and infinity are nan, -nan, inf and -inf.
///
/// @param out  room for at least 24 characters; more than the text may be overwritten
/// @return the end of the text
char* writeGeneral(char* out, double value);

} // namespace converters::detail
