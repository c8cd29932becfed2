#include "dxfeditor/detail/RunPool.h"

#include <cstddef>
#include <new>
#include <utility>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// Two equal ends, as of a run of one point, count as one.
bool isSecondOfEqual(const std::vector<Point>& ends, std::size_t end) {
    return end % 2 != 0 && ends[end] == ends[end - 1];
}

const std::vector<Point>& checked(const std::vector<Point>& ends) {
    if (ends.size() / 2 > maximumRuns) {
        throw std::bad_alloc();
    }
    return ends;
}

RunEndTree treeOf(const std::vector<Point>& ends, const std::vector<EndNumber>& met) {
    std::vector<RunEndTree::End> crowded;
    for (std::size_t end = 0; end < ends.size(); ++end) {
        if (met[end] == crowd && !isSecondOfEqual(ends, end)) {
            crowded.push_back({ends[end], static_cast<EndNumber>(end)});
        }
    }
    return RunEndTree(std::move(crowded));
}

} // namespace

RunPool::RunPool(std::vector<Point> ends)
    : m_isRemoved(ends.size() / 2), m_met(pairEnds(checked(ends))), m_crowd(treeOf(ends, m_met)) {
    for (RunEndTree::Place place = 0; place < m_crowd.size(); ++place) {
        const EndNumber end = m_crowd.at(place);
        m_met[end] = crowd | place;
        if (end % 2 == 0 && isSecondOfEqual(ends, end + 1)) {
            m_met[end + 1] = crowd | place;
        }
    }
}

void RunPool::remove(RunNumber run) {
    m_isRemoved[run] = true;
    for (const EndNumber end : {firstEnd(run), lastEnd(run)}) {
        if (isCrowded(end)) {
            m_crowd.remove(placeOf(end));
        }
    }
}

EndNumber RunPool::lowestAt(EndNumber end) const {
    if (isCrowded(end)) {
        return m_crowd.lowestAt(placeOf(end));
    }
    const EndNumber met = m_met[end];
    if (met == noEnd || !contains(runOf(met))) {
        return noEnd;
    }
    // It is joined soon.
    __builtin_prefetch(&m_met[met]);
    return met;
}

} // namespace dxfeditor
