#include "converters/detail/ply/PlyDatatype.h"

namespace converters::detail {
namespace {

/// The names of each datatype: the one we write first.
constexpr std::string_view names[][2] = {
    {"", ""},           {"char", "int8"},     {"uchar", "uint8"},
    {"short", "int16"}, {"ushort", "uint16"}, {"int", "int32"},
    {"uint", "uint32"}, {"float", "float32"}, {"double", "double64"},
};

} // namespace

std::string_view wordOfDatatype(unsigned datatype) {
    return names[datatype < std::size(names) ? datatype : 0][0];
}

std::uint8_t datatypeOfWord(std::string_view word) {
    for (std::size_t datatype = 1; datatype < std::size(names); ++datatype) {
        if (word == names[datatype][0] || word == names[datatype][1]) {
            return static_cast<std::uint8_t>(datatype);
        }
    }
    return 0;
}

} // namespace converters::detail
