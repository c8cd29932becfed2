#include "dxfeditor/detail/Stitching.h"

#include "dxfeditor/detail/RunEndTree.h"

#include <algorithm>
#include <utility>

namespace dxfeditor {

namespace {

using Point = Run::Point;
using RunNumber = RunEndTree::RunNumber;

/// One of the two ends of the chain that grows.
struct Tip {
    Point point;
    /// The lowest run of the pool that fits here, or none.
    RunNumber candidate = RunEndTree::none;
    /// The pieces joined on this side, from the inside outwards.
    std::vector<Piece> pieces;
};

/// Builds a walk, chain by chain.
class Stitcher {
public:
    explicit Stitcher(const std::vector<Run>& runs) : m_runs(runs), m_pool(runs) {
        m_walk.pieces.reserve(runs.size());
    }

    bool isInPool(RunNumber run) const { return m_pool.contains(run); }

    /// Adds the chain that grows from `start`, a run in the pool.
    void addChain(RunNumber start);

    Walk takeWalk() { return std::move(m_walk); }

private:
    void join(RunNumber run);
    void extend(Tip& tip, const Piece& piece, const Point& newEnd);
    void finishChain(RunNumber start);
    void search(Tip& tip) { tip.candidate = m_pool.lowestRunAt(tip.point); }

    const std::vector<Run>& m_runs;
    RunEndTree m_pool;
    Walk m_walk;
    Tip m_front;
    Tip m_back;
};

void Stitcher::addChain(RunNumber start) {
    m_front.point = m_pool.first(start);
    m_back.point = m_pool.last(start);
    m_pool.remove(start);
    search(m_front);
    search(m_back);
    while (std::min(m_front.candidate, m_back.candidate) != RunEndTree::none) {
        join(std::min(m_front.candidate, m_back.candidate));
    }
    finishChain(start);
}

/// Joins a run that fits, in the first of the ways that hold.
void Stitcher::join(RunNumber run) {
    const Point first = m_pool.first(run);
    const Point last = m_pool.last(run);
    m_pool.remove(run);
    if (meet(m_back.point, first)) {
        extend(m_back, {run, Direction::Forwards, Dropped::First}, last);
    } else if (meet(m_back.point, last)) {
        extend(m_back, {run, Direction::Backwards, Dropped::First}, first);
    } else if (meet(m_front.point, last)) {
        extend(m_front, {run, Direction::Forwards, Dropped::Last}, first);
    } else {
        extend(m_front, {run, Direction::Backwards, Dropped::Last}, last);
    }
    // A candidate stays the lowest until it is joined or its end of the chain moves.
    if (m_front.candidate == run) {
        search(m_front);
    }
    if (m_back.candidate == run) {
        search(m_back);
    }
}

void Stitcher::extend(Tip& tip, const Piece& piece, const Point& newEnd) {
    tip.pieces.push_back(piece);
    // Of a run of one point nothing is left once it is dropped: the chain ends where it did.
    if (m_runs[piece.run].size() > 1) {
        tip.point = newEnd;
    }
}

void Stitcher::finishChain(RunNumber start) {
    std::vector<Piece>& pieces = m_walk.pieces;
    pieces.insert(pieces.end(), m_front.pieces.rbegin(), m_front.pieces.rend());
    pieces.push_back({start, Direction::Forwards, Dropped::Nothing});
    pieces.insert(pieces.end(), m_back.pieces.begin(), m_back.pieces.end());
    m_walk.chains.push_back({pieces.size(), meet(m_front.point, m_back.point)});
    m_front.pieces.clear();
    m_back.pieces.clear();
}

} // namespace

Walk stitch(const std::vector<Run>& runs) {
    Stitcher stitcher(runs);
    for (std::size_t run = runs.size(); run > 0; --run) {
        const auto number = static_cast<RunNumber>(run - 1);
        if (stitcher.isInPool(number)) {
            stitcher.addChain(number);
        }
    }
    return stitcher.takeWalk();
}

} // namespace dxfeditor
