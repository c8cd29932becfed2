#pragma once

#include "dxfeditor/detail/EndPairs.h"
#include "dxfeditor/detail/RunEndTree.h"
#include "dxfeditor/detail/RunEnds.h"

#include <vector>

namespace dxfeditor {

/// The runs that are still to be stitched, searched by their ends. Begins with all runs.
class RunPool {
public:
    /// @param ends  the first and the last end of each run
    explicit RunPool(std::vector<Run::Point> ends);

    bool contains(RunNumber run) const { return !m_isRemoved[run]; }
    void remove(RunNumber run);

    /// Whether two ends, of whatever runs, are one point.
    bool meet(EndNumber a, EndNumber b) const {
        return isCrowded(a) ? isCrowded(b) && m_crowd.meet(placeOf(a), placeOf(b)) : m_met[a] == b;
    }

    /// Whether two ends are known to be equal, as both ends of a run of one point are wherever it
    /// meets another.
    bool areEqual(EndNumber a, EndNumber b) const { return isCrowded(a) && m_met[a] == m_met[b]; }

    /// The lowest end of the pool that meets this one, which is of a run that has been removed;
    /// noEnd when there is none.
    EndNumber lowestAt(EndNumber end) const;

private:
    bool isCrowded(EndNumber end) const { return (m_met[end] & crowd) != 0; }
    RunEndTree::Place placeOf(EndNumber end) const { return m_met[end] & ~crowd; }

    std::vector<bool> m_isRemoved;
    /// What each end meets; for one of a crowd with its place among all those.
    std::vector<EndNumber> m_met;
    RunEndTree m_crowd;
};

} // namespace dxfeditor
