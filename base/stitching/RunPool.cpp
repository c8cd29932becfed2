// Who meets whom does not change while runs are stitched, so it is known before the first is
// joined: for most ends as a pair, for the others by the tree. What changes is which runs are left:
// a bit for each run, and what is taken out of the tree.
//
// Not done: one tree for all ends. It would be right, at log n for each search and each removal;
// but where contours do not touch, no end needs a search.

#include "base/stitching/RunPool.h"

#include "base/LargePages.h"
#include "base/Prefetch.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace base {

namespace {

const EndPoints& checked(const EndPoints& ends) {
    if (ends.size() > maximumRuns) {
        throw std::bad_alloc();
    }
    return ends;
}

std::vector<RunRank> ranksOf(const std::vector<RunNumber>& numbers) {
    std::vector<RunRank> ranks;
    reserveLarge(ranks, numbers.size());
    ranks.resize(numbers.size());
    for (std::size_t rank = 0; rank < numbers.size(); ++rank) {
        ranks[numbers[rank]] = static_cast<RunRank>(rank);
    }
    return ranks;
}

} // namespace

RunPool::RunPool(const EndPoints& ends, const JoinDistance& distance, StageProgress progress)
    : RunPool(ends, SpatialIndex(checked(ends), distance), distance, progress) {}

RunPool::RunPool(const EndPoints& ends, const SpatialIndex& index, const JoinDistance& distance,
                 StageProgress progress)
    : m_numbers(index.runs()),
      m_met(pairEnds(RankedEnds(ends, m_numbers), index, distance, progress)),
      m_ranks(ranksOf(m_numbers)), m_isRemoved(m_numbers.size()),
      m_crowd(treeOf(RankedEnds(ends, m_numbers), distance)) {
    const RankedEnds ranked(ends, m_numbers);
    for (std::uint32_t i = 0; i < m_crowd.size(); ++i) {
        const RankedEnd end = rankedOf(m_crowd.at(i));
        m_met[end.index()] = EndOrCrowd::crowd(i);
        const RankedEnd last = RankedEnd::last(end.run());
        if (!end.isLast() && ranked.isSecondOfEqual(last)) {
            m_met[last.index()] = EndOrCrowd::crowd(i);
        }
    }
}

RunEndTree RunPool::treeOf(const RankedEnds& ends, const JoinDistance& distance) const {
    std::vector<RunEndTree::End> crowded;
    // Room for all at once: growing would hold them twice.
    const auto count = std::count(m_met.begin(), m_met.end(), EndOrCrowd::crowd());
    reserveLarge(crowded, static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < m_met.size(); ++i) {
        const RankedEnd end = RankedEnd::at(i);
        if (m_met[i].isCrowd() && !ends.isSecondOfEqual(end)) {
            crowded.push_back({ends[end], numberedOf(end)});
        }
    }
    return {std::move(crowded), distance};
}

void RunPool::remove(RunRank run) {
    m_isRemoved[indexOf(run)] = true;
    for (const RankedEnd end : {RankedEnd::first(run), RankedEnd::last(run)}) {
        if (metBy(end).isCrowd()) {
            m_crowd.remove(metBy(end).indexInCrowd());
        }
    }
}

RankedEnd RunPool::lowestAt(RankedEnd end) const {
    const EndOrCrowd met = metBy(end);
    if (met.isCrowd()) {
        const NumberedEnd lowest = m_crowd.lowestAt(met.indexInCrowd());
        return lowest.exists() ? rankedOf(lowest) : RankedEnd();
    }
    if (!met.isEnd() || !contains(met.end().run())) {
        return {};
    }
    // It is joined soon.
    base::prefetch(&m_met[met.end().index()]);
    return met.end();
}

RankedEnd RunPool::lowestWithin(const JoinDistance& distance, RankedEnd end) const {
    const NumberedEnd lowest = m_crowd.lowestWithin(distance, metBy(end).indexInCrowd());
    return lowest.exists() ? rankedOf(lowest) : RankedEnd();
}

} // namespace base
