#include "dxfeditor/detail/Stitching.h"

#include "dxfeditor/detail/LargePages.h"
#include "dxfeditor/detail/RunPool.h"

#include <algorithm>
#include <utility>

namespace dxfeditor {

namespace {

/// One of the two ends of the chain that grows.
struct Tip {
    EndNumber end = noEnd;
    /// The lowest end of the pool that fits here.
    EndNumber candidate = noEnd;
    /// The pieces joined on this side, from the inside outwards.
    std::vector<Piece> pieces;
};

/// Builds a walk, chain by chain.
class Stitcher {
public:
    Stitcher(const std::vector<Run>& runs, std::vector<Run::Point> ends)
        : m_runs(runs), m_pool(std::move(ends)) {
        reserveLarge(m_walk, runs.size());
    }

    Walk walk() &&;

private:
    void addChain(RunNumber start);
    void join(RunNumber run);
    void extend(Tip& tip, const Piece& piece, EndNumber joined, EndNumber other);
    void finishChain(RunNumber start);
    void search(Tip& tip) { tip.candidate = m_pool.lowestAt(tip.end); }

    const std::vector<Run>& m_runs;
    RunPool m_pool;
    Walk m_walk;
    Tip m_front;
    Tip m_back;
};

Walk Stitcher::walk() && {
    for (std::size_t run = m_runs.size(); run > 0; --run) {
        const auto number = static_cast<RunNumber>(run - 1);
        if (m_pool.contains(number)) {
            addChain(number);
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
        const EndNumber lowest = std::min(m_front.candidate, m_back.candidate);
        if (lowest == noEnd) {
            break;
        }
        join(runOf(lowest));
    }
    finishChain(start);
}

/// Joins a run that fits, in the first of the ways that hold.
void Stitcher::join(RunNumber run) {
    const EndNumber first = firstEnd(run);
    const EndNumber last = lastEnd(run);
    m_pool.remove(run);
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
    if (runOf(m_front.candidate) == run) {
        search(m_front);
    }
    if (runOf(m_back.candidate) == run) {
        search(m_back);
    }
}

void Stitcher::extend(Tip& tip, const Piece& piece, EndNumber joined, EndNumber other) {
    tip.pieces.push_back(piece);
    // Of a run of one point nothing is left once it is dropped: the chain ends where it did.
    if (!m_pool.areEqual(joined, other) || m_runs[piece.run].size() > 1) {
        tip.end = other;
    }
}

void Stitcher::finishChain(RunNumber start) {
    m_walk.insert(m_walk.end(), m_front.pieces.rbegin(), m_front.pieces.rend());
    m_walk.push_back({start, Direction::Forwards, Dropped::Nothing, false, false});
    m_walk.insert(m_walk.end(), m_back.pieces.begin(), m_back.pieces.end());
    m_walk.back().endsChain = true;
    m_walk.back().closesChain = m_pool.meet(m_front.end, m_back.end);
    m_front.pieces.clear();
    m_back.pieces.clear();
}

} // namespace

Walk stitch(const std::vector<Run>& runs, std::vector<Run::Point> ends) {
    return Stitcher(runs, std::move(ends)).walk();
}

} // namespace dxfeditor
