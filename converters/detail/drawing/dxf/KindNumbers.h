#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace converters::drawing {

/// The kind as a DXF file spells it. A string of static duration.
const char* nameOf(EntityKind kind);

/// The kinds that draw something, by their numbers in Drawing::kindNames.
class KindNumbers {
public:
    explicit KindNumbers(NameTable& names);

    std::uint32_t operator[](EntityKind kind) const {
        return m_numbers[static_cast<std::size_t>(kind)];
    }

private:
    std::array<std::uint32_t, static_cast<std::size_t>(EntityKind::insert) + 1> m_numbers;
};

} // namespace converters::drawing
