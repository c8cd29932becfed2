#pragma once

#include "base/stitching/EndPairs.h"
#include "base/stitching/RunEndTree.h"
#include "base/stitching/RunEnds.h"

#include <vector>

namespace base {

/// The runs that are still to be stitched, searched by their ends. Begins with all runs.
///
/// Runs go by their places here, and ends by those of their runs: in a spatial order, where the
/// next run of a contour is mostly near in memory.
class RunPool {
public:
    /// @param ends  the first and the last end of each run
    RunPool(const std::vector<Point>& ends, const JoinDistance& distance);

    /// The number of the run at a place, and the place of a run.
    RunNumber runAt(RunNumber place) const { return m_order[place]; }
    RunNumber placeOf(RunNumber run) const { return m_places[run]; }

    bool contains(RunNumber place) const { return !m_isRemoved[place]; }
    void remove(RunNumber place);

    /// Whether two ends, of whatever runs, are one point.
    bool meet(EndNumber a, EndNumber b) const {
        return isCrowded(a) ? isCrowded(b) && m_crowd.meet(inCrowd(a), inCrowd(b)) : m_met[a] == b;
    }

    /// Whether two ends are known to be equal, as both ends of a run of one point are wherever it
    /// meets another.
    bool areEqual(EndNumber a, EndNumber b) const { return isCrowded(a) && m_met[a] == m_met[b]; }

    /// An end that meets this one, which is of a run that has been removed: of the lowest run of
    /// the pool, by number, that has one. noEnd when there is none.
    EndNumber lowestAt(EndNumber end) const;

private:
    RunPool(const std::vector<Point>& ends, const SpatialIndex& index,
            const JoinDistance& distance);
    RunEndTree treeOf(const OrderedEnds& ends, const JoinDistance& distance) const;
    bool isCrowded(EndNumber end) const { return (m_met[end] & crowd) != 0; }
    RunEndTree::Place inCrowd(EndNumber end) const { return m_met[end] & ~crowd; }
    EndNumber endOf(EndNumber numbered) const { return 2 * m_places[numbered / 2] + numbered % 2; }

    std::vector<RunNumber> m_order;
    std::vector<RunNumber> m_places;
    std::vector<bool> m_isRemoved;
    /// What each end meets; for one of a crowd with its place among all those.
    std::vector<EndNumber> m_met;
    /// Its ends are numbered by the runs' own numbers.
    RunEndTree m_crowd;
};

} // namespace base
