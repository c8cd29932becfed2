#pragma once

#include "converters/ReadResult.h"

#include <cstdint>
#include <string>
#include <utility>

namespace converters::scan {

/// Why a file is refused: thrown where the fault is found, caught where a public function returns.
struct Fault {
    /// A failure with its reason.
    ReadResult result;
};

/// @throws Fault
[[noreturn]] inline void refuse(std::string reason) {
    throw Fault{{false, std::move(reason), 0}};
}

/// As refuse(), with the line in front of the reason.
[[noreturn]] inline void refuseLine(std::uint64_t line, const std::string& reason) {
    throw Fault{{false, "line " + std::to_string(line) + ": " + reason, line}};
}

} // namespace converters::scan
