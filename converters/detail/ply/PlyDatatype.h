#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

/// The datatypes of fields, numbered as in pcl::PCLPointField, as PLY files store and name them.
namespace converters::detail {

/// Size in bytes of a value; 0 for an unknown datatype.
constexpr std::size_t sizeOfDatatype(unsigned datatype) {
    constexpr std::size_t sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
    return datatype < std::size(sizes) ? sizes[datatype] : 0;
}

/// The word that declares a datatype in the headers we write; empty for an unknown datatype.
std::string_view wordOfDatatype(unsigned datatype);

/// The datatype that a word in a header declares; 0 for an unknown word. "float64" is unknown, on
/// purpose: the names of this type are "double" and "double64".
std::uint8_t datatypeOfWord(std::string_view word);

} // namespace converters::detail
