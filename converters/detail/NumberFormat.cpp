#include "converters/detail/NumberFormat.h"

#include <charconv>

namespace converters::detail {

char* writeGeneral(char* out, double value) {
    return std::to_chars(out, out + maxGeneralLength, value, std::chars_format::general, 6).ptr;
}

} // namespace converters::detail
