#pragma once

#include "base/StageProgress.h"
#include "base/stitching/EndPairs.h"
#include "base/stitching/EndPoints.h"
#include "base/stitching/RankedEnds.h"
#include "base/stitching/RunEndTree.h"
#include "base/stitching/RunEnds.h"

#include <vector>

namespace base {

/// The runs that are still to be stitched, searched by their ends. Begins with all runs.
class RunPool {
public:
    /// @param ends      the ends of all runs
    /// @param progress  told of each end that has been compared with the others
    RunPool(const EndPoints& ends, const JoinDistance& distance, StageProgress progress = {});

    RunNumber numberOf(RunRank run) const { return m_numbers[indexOf(run)]; }
    RunRank rankOf(RunNumber run) const { return m_ranks[run]; }

    bool contains(RunRank run) const { return !m_isRemoved[indexOf(run)]; }
    void remove(RunRank run);

    /// Whether two ends, of whatever runs, are one point.
    bool meet(RankedEnd a, RankedEnd b) const {
        const EndOrCrowd met = metBy(a);
        return met.isCrowd()
                   ? metBy(b).isCrowd() && m_crowd.meet(met.indexInCrowd(), metBy(b).indexInCrowd())
                   : met == b;
    }

    /// Whether two ends are known to be equal, as both ends of a run of one point are wherever it
    /// meets another.
    bool areEqual(RankedEnd a, RankedEnd b) const {
        return metBy(a).isCrowd() && metBy(a) == metBy(b);
    }

    /// An end that meets this one, which is of a run that has been removed: of the run of the pool
    /// with the lowest number that has one. No end when there is none.
    RankedEnd lowestAt(RankedEnd end) const;

    /// Whether an end meets more than one other, so that there may be a choice.
    bool isCrowded(RankedEnd end) const { return metBy(end).isCrowd(); }

    /// The same of the ends that are closer to a crowded end than a distance, which is no more than
    /// that of the pool.
    RankedEnd lowestWithin(const JoinDistance& distance, RankedEnd end) const;

private:
    RunPool(const EndPoints& ends, const SpatialIndex& index, const JoinDistance& distance,
            StageProgress progress);
    RunEndTree treeOf(const RankedEnds& ends, const JoinDistance& distance) const;

    static std::size_t indexOf(RunRank run) { return static_cast<std::size_t>(run); }
    EndOrCrowd metBy(RankedEnd end) const { return m_met[end.index()]; }
    RankedEnd rankedOf(NumberedEnd end) const {
        const RunRank run = rankOf(end.run());
        return end.isLast() ? RankedEnd::last(run) : RankedEnd::first(run);
    }
    NumberedEnd numberedOf(RankedEnd end) const {
        const RunNumber run = numberOf(end.run());
        return end.isLast() ? NumberedEnd::last(run) : NumberedEnd::first(run);
    }

    /// The numbers of the runs by their ranks.
    std::vector<RunNumber> m_numbers;
    /// What each end meets; for one of a crowd with its index in the tree. Finding it takes the
    /// most memory: before what is needed only later.
    std::vector<EndOrCrowd> m_met;
    /// The ranks of the runs by their numbers.
    std::vector<RunRank> m_ranks;
    std::vector<bool> m_isRemoved;
    RunEndTree m_crowd;
};

} // namespace base
