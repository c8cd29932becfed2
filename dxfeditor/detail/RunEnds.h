#pragma once

#include "dxfeditor/detail/Sampling.h"

#include <cstddef>
#include <cstdint>

namespace dxfeditor {

using RunNumber = std::uint32_t;

/// Twice the number of the run, and 1 more for its last end. Of 31 bits, so that users have one to
/// spare.
using EndNumber = std::uint32_t;
constexpr EndNumber noEnd = 0x7FFFFFFF;

/// More runs are refused with std::bad_alloc: short numbers keep what is kept for each end small,
/// and the drawing alone would take more than a hundred gigabytes.
constexpr std::size_t maximumRuns = noEnd / 2;

constexpr EndNumber firstEnd(RunNumber run) {
    return 2 * run;
}
constexpr EndNumber lastEnd(RunNumber run) {
    return 2 * run + 1;
}
constexpr RunNumber runOf(EndNumber end) {
    return end / 2;
}

/// Ends of runs closer than this, squared, are the same point.
constexpr double squaredTolerance = 1e-06;

inline double squaredDistance(const Run::Point& a, const Run::Point& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    const double dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz;
}

/// Whether two ends are one point. Never when a coordinate is infinite or not a number.
inline bool meet(const Run::Point& a, const Run::Point& b) {
    return squaredDistance(a, b) < squaredTolerance;
}

} // namespace dxfeditor
