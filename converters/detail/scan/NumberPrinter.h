#pragma once

#include "converters/Scan.h"

#include <cstddef>
#include <optional>

namespace converters::scan {

/// Room for the text of any number.
constexpr std::size_t longestNumber = 32;

/// Writes numbers as text, the same in every locale.
class NumberPrinter {
public:
    /// @param digits  significant digits of floating numbers, 1 to 17, as "%g" prints them; none:
    ///                the shortest text that reads back as the same number
    explicit NumberPrinter(std::optional<int> digits);

    /// Writes the number of type `type` at `bytes`, in the processor's byte order.
    /// @param out  room for longestNumber characters
    /// @return the end of the text
    char* print(const unsigned char* bytes, ScalarType type, char* out) const;

private:
    template <typename Float>
    char* printFloat(Float number, char* out) const;

    /// 0 for the shortest text.
    int m_digits;
};

} // namespace converters::scan
