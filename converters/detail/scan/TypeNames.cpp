#include "converters/detail/scan/TypeNames.h"

#include <algorithm>
#include <iterator>

namespace converters {
namespace {

struct TypeName {
    std::string_view name;
    ScalarType type;
};

/// The first name of a type is the one that is written. The last lines are those of programs that
/// have names of their own.
constexpr TypeName typeNames[] = {
    {"char", ScalarType::int8},      {"int8", ScalarType::int8},
    {"uchar", ScalarType::uint8},    {"uint8", ScalarType::uint8},
    {"short", ScalarType::int16},    {"int16", ScalarType::int16},
    {"ushort", ScalarType::uint16},  {"uint16", ScalarType::uint16},
    {"int", ScalarType::int32},      {"int32", ScalarType::int32},
    {"uint", ScalarType::uint32},    {"uint32", ScalarType::uint32},
    {"float", ScalarType::float32},  {"float32", ScalarType::float32},
    {"double", ScalarType::float64}, {"float64", ScalarType::float64},
    {"int64", ScalarType::int64},    {"uint64", ScalarType::uint64},
    {"bool", ScalarType::uint8},     {"double64", ScalarType::float64}};

} // namespace

std::size_t sizeOf(ScalarType type) {
    constexpr std::size_t sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 8};
    return sizes[static_cast<std::size_t>(type)];
}

const char* nameOf(ScalarType type) {
    const auto* found = std::find_if(std::begin(typeNames), std::end(typeNames),
                                     [&](const TypeName& each) { return each.type == type; });
    return found->name.data();
}

const char* nameOf(ScanFormat format) {
    constexpr const char* names[] = {"ascii", "binary_little_endian", "binary_big_endian"};
    return names[static_cast<std::size_t>(format)];
}

std::optional<ScalarType> scan::typeOfName(std::string_view name) {
    const auto* found = std::find_if(std::begin(typeNames), std::end(typeNames),
                                     [&](const TypeName& each) { return each.name == name; });
    return found == std::end(typeNames) ? std::nullopt : std::make_optional(found->type);
}

} // namespace converters
