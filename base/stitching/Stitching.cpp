#include "base/stitching/Stitching.h"

#include "base/LargePages.h"
#include "base/stitching/RunPool.h"

#include <cstddef>
#include <utility>

namespace base {

namespace {

/// One of the two ends of the chain that grows.
struct Tip {
    EndNumber end = noEnd;
    /// The end of the lowest run of the pool that fits here, and the number of that run.
    EndNumber candidate = noEnd;
    RunNumber lowest = noEnd;
    /// The pieces joined on this side, from the inside outwards.
    std::vector<Piece> pieces;
};

/// Builds a walk, chain by chain. Runs go by their places in the pool.
class Stitcher {
public:
    Stitcher(const std::vector<Point>& ends, const std::function<bool(RunNumber)>& hasOnePoint,
             const JoinDistance& distance)
        : m_runCount(ends.size() / 2), m_hasOnePoint(hasOnePoint), m_pool(ends, distance) {
        reserveLarge(m_walk, m_runCount);
    }

    Walk walk() &&;

private:
    void addChain(RunNumber start);
    void join(RunNumber place);
    void extend(Tip& tip, const Piece& piece, EndNumber joined, EndNumber other);
    void finishChain(RunNumber start);
    void search(Tip& tip) {
        tip.candidate = m_pool.lowestAt(tip.end);
        tip.lowest = tip.candidate != noEnd ? m_pool.runAt(runOf(tip.candidate)) : noEnd;
    }

    std::size_t m_runCount;
    const std::function<bool(RunNumber)>& m_hasOnePoint;
    RunPool m_pool;
    Walk m_walk;
    Tip m_front;
    Tip m_back;
};

Walk Stitcher::walk() && {
    for (std::size_t run = m_runCount; run > 0; --run) {
        const RunNumber place = m_pool.placeOf(static_cast<RunNumber>(run - 1));
        if (m_pool.contains(place)) {
            addChain(place);
        }
    }
    return std::move(m_walk);
}

/// Adds the chain that grows from `start`, a run in the pool.
void Stitcher::addChain(RunNumber start) {
    m_front.end = firstEnd(start);
    m_back.end = lastEnd(start);
    m_pool.remove(start);
    search(m_front);
    search(m_back);
    for (;;) {
        const Tip& tip = m_front.lowest < m_back.lowest ? m_front : m_back;
        if (tip.candidate == noEnd) {
            break;
        }
        join(runOf(tip.candidate));
    }
    finishChain(start);
}

/// Joins a run that fits, in the first of the ways that hold.
void Stitcher::join(RunNumber place) {
    const EndNumber first = firstEnd(place);
    const EndNumber last = lastEnd(place);
    const RunNumber run = m_pool.runAt(place);
    m_pool.remove(place);
    if (m_pool.meet(m_back.end, first)) {
        extend(m_back, {run, Direction::Forwards, Dropped::First, false, false}, first, last);
    } else if (m_pool.meet(m_back.end, last)) {
        extend(m_back, {run, Direction::Backwards, Dropped::First, false, false}, last, first);
    } else if (m_pool.meet(m_front.end, last)) {
        extend(m_front, {run, Direction::Forwards, Dropped::Last, false, false}, last, first);
    } else {
        extend(m_front, {run, Direction::Backwards, Dropped::Last, false, false}, first, last);
    }
    // A candidate stays the lowest until it is joined or its end of the chain moves.
    if (m_front.lowest == run) {
        search(m_front);
    }
    if (m_back.lowest == run) {
        search(m_back);
    }
}

void Stitcher::extend(Tip& tip, const Piece& piece, EndNumber joined, EndNumber other) {
    tip.pieces.push_back(piece);
    // Of a run of one point nothing is left once it is dropped: the chain ends where it did.
    if (!m_pool.areEqual(joined, other) || !m_hasOnePoint(piece.run)) {
        tip.end = other;
    }
}

void Stitcher::finishChain(RunNumber start) {
    m_walk.insert(m_walk.end(), m_front.pieces.rbegin(), m_front.pieces.rend());
    m_walk.push_back({m_pool.runAt(start), Direction::Forwards, Dropped::Nothing, false, false});
    m_walk.insert(m_walk.end(), m_back.pieces.begin(), m_back.pieces.end());
    m_walk.back().endsChain = true;
    m_walk.back().closesChain = m_pool.meet(m_front.end, m_back.end);
    m_front.pieces.clear();
    m_back.pieces.clear();
}

} // namespace

// The ends are taken by value to be freed with the rest.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
Walk stitch(std::vector<Point> ends, const std::function<bool(RunNumber)>& hasOnePoint,
            const JoinDistance& distance) {
    return Stitcher(ends, hasOnePoint, distance).walk();
}

} // namespace base
