#pragma once

#include <limits>

namespace dxfeditor {

/// `value` truncated towards zero; 0 when it is not a number or its truncation does not fit 32
/// bits. Processors disagree on what a plain conversion makes of such values.
inline int truncatedCount(double value) {
    constexpr double least = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max();
    return value > least - 1.0 && value < greatest + 1.0 ? static_cast<int>(value) : 0;
}

} // namespace dxfeditor
