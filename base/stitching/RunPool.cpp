#include "base/stitching/RunPool.h"

#include "base/LargePages.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace base {

namespace {

const std::vector<Point>& checked(const std::vector<Point>& ends) {
    if (ends.size() / 2 > maximumRuns) {
        throw std::bad_alloc();
    }
    return ends;
}

std::vector<RunNumber> inverseOf(const std::vector<RunNumber>& order) {
    std::vector<RunNumber> places;
    reserveLarge(places, order.size());
    places.resize(order.size());
    for (std::size_t place = 0; place < order.size(); ++place) {
        places[order[place]] = static_cast<RunNumber>(place);
    }
    return places;
}

} // namespace

RunPool::RunPool(const std::vector<Point>& ends, const JoinDistance& distance)
    : RunPool(ends, SpatialIndex(checked(ends), distance), distance) {}

RunPool::RunPool(const std::vector<Point>& ends, const SpatialIndex& index,
                 const JoinDistance& distance)
    : m_order(index.runs()), m_places(inverseOf(m_order)), m_isRemoved(m_order.size()),
      m_met(pairEnds(OrderedEnds(ends, m_order), index, distance)),
      m_crowd(treeOf(OrderedEnds(ends, m_order), distance)) {
    const OrderedEnds ordered(ends, m_order);
    for (RunEndTree::Place place = 0; place < m_crowd.size(); ++place) {
        const EndNumber end = endOf(m_crowd.at(place));
        m_met[end] = crowd | place;
        if (end % 2 == 0 && ordered.isSecondOfEqual(end + 1)) {
            m_met[end + 1] = crowd | place;
        }
    }
}

RunEndTree RunPool::treeOf(const OrderedEnds& ends, const JoinDistance& distance) const {
    std::vector<RunEndTree::End> crowded;
    // Room for all at once: growing would hold them twice.
    const auto count = std::count(m_met.begin(), m_met.end(), crowd);
    reserveLarge(crowded, static_cast<std::size_t>(count));
    for (std::size_t end = 0; end < m_met.size(); ++end) {
        if (m_met[end] == crowd && !ends.isSecondOfEqual(end)) {
            const auto numbered =
                static_cast<EndNumber>(std::size_t{2} * m_order[end / 2] + end % 2);
            crowded.push_back({ends[end], numbered});
        }
    }
    return {std::move(crowded), distance};
}

void RunPool::remove(RunNumber place) {
    m_isRemoved[place] = true;
    for (const EndNumber end : {firstEnd(place), lastEnd(place)}) {
        if (isCrowded(end)) {
            m_crowd.remove(inCrowd(end));
        }
    }
}

EndNumber RunPool::lowestAt(EndNumber end) const {
    if (isCrowded(end)) {
        const EndNumber lowest = m_crowd.lowestAt(inCrowd(end));
        return lowest == noEnd ? noEnd : endOf(lowest);
    }
    const EndNumber met = m_met[end];
    if (met == noEnd || !contains(runOf(met))) {
        return noEnd;
    }
    // It is joined soon.
    __builtin_prefetch(&m_met[met]);
    return met;
}

} // namespace base
