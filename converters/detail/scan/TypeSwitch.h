#pragma once

#include "converters/Scan.h"

#include <cstdint>

namespace converters::scan {

/// Calls `work` with a zero of the C++ type that a scalar type stands for, and returns its result.
template <typename Work>
auto withType(ScalarType type, Work work) {
    switch (type) {
    case ScalarType::int8:
        return work(std::int8_t{});
    case ScalarType::uint8:
        return work(std::uint8_t{});
    case ScalarType::int16:
        return work(std::int16_t{});
    case ScalarType::uint16:
        return work(std::uint16_t{});
    case ScalarType::int32:
        return work(std::int32_t{});
    case ScalarType::uint32:
        return work(std::uint32_t{});
    case ScalarType::int64:
        return work(std::int64_t{});
    case ScalarType::uint64:
        return work(std::uint64_t{});
    case ScalarType::float32:
        return work(float{});
    case ScalarType::float64:
        break;
    }
    return work(double{});
}

} // namespace converters::scan
