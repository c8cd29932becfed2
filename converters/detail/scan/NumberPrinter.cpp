#include "converters/detail/scan/NumberPrinter.h"

#include "converters/detail/numbers/FloatFormat.h"
#include "converters/detail/numbers/NumberFormat.h"
#include "converters/detail/scan/TypeSwitch.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace converters::scan {
namespace {

constexpr int usualDigits = 6;

} // namespace

NumberPrinter::NumberPrinter(std::optional<int> digits)
    : m_digits(digits ? std::clamp(*digits, 1, 17) : 0) {}

template <typename Float>
char* NumberPrinter::printFloat(Float number, char* out) const {
    if (m_digits == usualDigits || !std::isfinite(number)) {
        if constexpr (std::is_same_v<Float, float>) {
            return detail::writeGeneralFloat(out, number);
        } else {
            return detail::writeGeneral(out, number);
        }
    }
    char* const end = out + longestNumber;
    return m_digits == 0
               ? std::to_chars(out, end, number).ptr
               : std::to_chars(out, end, number, std::chars_format::general, m_digits).ptr;
}

char* NumberPrinter::print(const unsigned char* bytes, ScalarType type, char* out) const {
    return withType(type, [&](auto number) {
        std::memcpy(&number, bytes, sizeof number);
        if constexpr (std::is_floating_point_v<decltype(number)>) {
            return printFloat(number, out);
        } else {
            return std::to_chars(out, out + longestNumber, number).ptr;
        }
    });
}

} // namespace converters::scan
