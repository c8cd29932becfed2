#pragma once

#include <cstdint>
#include <string>

namespace converters::drawing {

/// Why a drawing gives no path. Thrown where that turns out, caught at the edge of the library,
/// where it becomes a ReadResult.
struct Refusal {
    std::string reason;
    /// As ReadResult::line.
    std::uint64_t line = 0;
};

} // namespace converters::drawing
