#pragma once

#include "converters/detail/ply/PlyDatatype.h"

#include <pcl/PCLPointField.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace converters::detail {

/// What the bodies of a PLY file need to know about a field.
struct PlyColumn {
    explicit PlyColumn(const pcl::PCLPointField& field)
        : datatype(field.datatype), offset(field.offset),
          elementSize(sizeOfDatatype(field.datatype)),
          elements(isNegative(field.count) ? 0 : std::max(field.count, 1U)),
          isColour(isColourText(field)) {}

    static std::vector<PlyColumn> ofFields(const std::vector<pcl::PCLPointField>& fields) {
        return {fields.begin(), fields.end()};
    }

    /// Position of an element in the bytes of its point.
    std::size_t position(std::size_t element) const { return offset + element * elementSize; }

    bool isKnown() const { return elementSize != 0; }

    /// Whether the count stands in the text.
    bool writesCount() const { return elements > 1; }

    unsigned datatype;
    std::size_t offset;
    /// In bytes; 0 for an unknown datatype.
    std::size_t elementSize;
    /// 1 for a count of 0; none for a count that is negative as a signed number.
    std::uint32_t elements;
    /// Whether the text is that of a packed colour.
    bool isColour;

private:
    static bool isNegative(std::uint32_t count) { return count > INT32_MAX; }

    /// Unlike in the header, the name only has to contain the word, but the datatype counts.
    static bool isColourText(const pcl::PCLPointField& field) {
        switch (field.datatype) {
        case pcl::PCLPointField::FLOAT32:
            return field.name.find("rgb") != std::string::npos;
        case pcl::PCLPointField::UINT32:
            return field.name.find("rgba") != std::string::npos;
        default:
            return false;
        }
    }
};

} // namespace converters::detail
