#pragma once

#include "base/stitching/EndPoints.h"
#include "base/stitching/RunEnds.h"

#include <cstddef>
#include <vector>

namespace base {

/// The ends of runs, by the ranks of the runs.
class RankedEnds {
public:
    /// @param ends   the ends of all runs
    /// @param order  the numbers of the runs, in the order of their ranks
    ///
    /// Both have to outlive this object.
    RankedEnds(const EndPoints& ends, const std::vector<RunNumber>& order)
        : m_ends(ends), m_order(order) {}

    std::size_t size() const { return 2 * m_order.size(); }

    Point operator[](RankedEnd end) const { return m_ends[numberedOf(end)]; }

    /// Whether the end is the last one of a run with two equal ends, as a run of one point has.
    bool isSecondOfEqual(RankedEnd end) const {
        return end.isLast() && m_ends.hasEqualEnds(m_order[end.index() / 2]);
    }

    void prefetch(RankedEnd end) const { m_ends.prefetch(numberedOf(end)); }

private:
    NumberedEnd numberedOf(RankedEnd end) const {
        return NumberedEnd::at(NumberedEnd::first(m_order[end.index() / 2]).index() +
                               end.index() % 2);
    }

    const EndPoints& m_ends;
    const std::vector<RunNumber>& m_order;
};

} // namespace base
