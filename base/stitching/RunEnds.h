#pragma once

#include "base/stitching/JoinDistance.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace base {

using RunNumber = std::uint32_t;

/// Twice the number of the run, and 1 more for its last end. Of 31 bits, so that users have one to
/// spare.
using EndNumber = std::uint32_t;
constexpr EndNumber noEnd = 0x7FFFFFFF;

/// More runs are refused with std::bad_alloc: short numbers keep what is kept for each end small,
/// and the runs alone would take more than a hundred gigabytes.
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

/// The ends of runs, in an order of the runs that need not be theirs.
class OrderedEnds {
public:
    /// @param ends   the first and the last end of each run
    /// @param order  the runs; both have to outlive this object
    OrderedEnds(const std::vector<Point>& ends, const std::vector<RunNumber>& order)
        : m_ends(ends.data()), m_order(order) {}

    std::size_t size() const { return 2 * m_order.size(); }

    /// @param end  numbered by the place of its run in the order
    const Point& operator[](std::size_t end) const {
        return m_ends[2 * std::size_t{m_order[end / 2]} + end % 2];
    }

    /// Whether the end is the last one of a run with two equal ends, as a run of one point has.
    bool isSecondOfEqual(std::size_t end) const {
        return end % 2 != 0 && (*this)[end] == (*this)[end - 1];
    }

    void prefetch(std::size_t end) const { __builtin_prefetch(&(*this)[end]); }

private:
    const Point* m_ends;
    const std::vector<RunNumber>& m_order;
};

} // namespace base
