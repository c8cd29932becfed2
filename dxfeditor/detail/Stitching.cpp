#include "dxfeditor/detail/Stitching.h"

#include "dxfeditor/detail/RunEndTree.h"

#include <algorithm>
#include <utility>

namespace dxfeditor {

namespace {

using RunNumber = RunEndTree::RunNumber;
using Place = RunEndTree::Place;
using Match = RunEndTree::Match;

/// Chains begin all over the drawing; this many runs ahead, their ends are on their way from
/// memory.
constexpr RunNumber lookAhead = 8;

/// One of the two ends of the chain that grows.
struct Tip {
    Place end = RunEndTree::none;
    /// The lowest run of the pool that fits here.
    Match candidate;
    /// The pieces joined on this side, from the inside outwards.
    std::vector<Piece> pieces;
};

/// Builds a walk, chain by chain.
class Stitcher {
public:
    explicit Stitcher(const std::vector<Run>& runs) : m_pool(runs) {
        m_walk.pieces.reserve(runs.size());
    }

    bool isInPool(RunNumber run) const { return m_pool.contains(run); }

    /// Fetches a run that comes soon, while chains before it are built.
    void prefetchBefore(RunNumber run) const {
        if (run >= lookAhead && isInPool(run - lookAhead)) {
            m_pool.prefetch(run - lookAhead);
        }
    }

    /// Adds the chain that grows from `start`, a run in the pool.
    void addChain(RunNumber start);

    Walk takeWalk() { return std::move(m_walk); }

private:
    void join(Match found);
    void extend(Tip& tip, const Piece& piece, Place joined, Place other);
    void finishChain(RunNumber start);
    void search(Tip& tip) { tip.candidate = m_pool.lowestRunAt(tip.end); }

    RunEndTree m_pool;
    Walk m_walk;
    Tip m_front;
    Tip m_back;
};

void Stitcher::addChain(RunNumber start) {
    m_front.end = m_pool.first(start);
    m_back.end = m_pool.last(start);
    m_pool.remove(m_front.end, m_back.end);
    search(m_front);
    search(m_back);
    for (;;) {
        const Match& atFront = m_front.candidate;
        const Match& atBack = m_back.candidate;
        const Match& lowest = atFront.run < atBack.run ? atFront : atBack;
        if (lowest.run == RunEndTree::none) {
            break;
        }
        join(lowest);
    }
    finishChain(start);
}

/// Joins a run that fits, in the first of the ways that hold.
void Stitcher::join(const Match found) {
    const auto [run, first, last] = found;
    m_pool.remove(first, last);
    if (m_pool.meet(m_back.end, first)) {
        extend(m_back, {run, Direction::Forwards, Dropped::First}, first, last);
    } else if (m_pool.meet(m_back.end, last)) {
        extend(m_back, {run, Direction::Backwards, Dropped::First}, last, first);
    } else if (m_pool.meet(m_front.end, last)) {
        extend(m_front, {run, Direction::Forwards, Dropped::Last}, last, first);
    } else {
        extend(m_front, {run, Direction::Backwards, Dropped::Last}, first, last);
    }
    // A candidate stays the lowest until it is joined or its end of the chain moves.
    if (m_front.candidate.run == run) {
        search(m_front);
    }
    if (m_back.candidate.run == run) {
        search(m_back);
    }
}

void Stitcher::extend(Tip& tip, const Piece& piece, Place joined, Place other) {
    tip.pieces.push_back(piece);
    // Of a run of one point nothing is left once it is dropped: the chain ends where it did.
    if (other != joined) {
        tip.end = other;
    }
}

void Stitcher::finishChain(RunNumber start) {
    std::vector<Piece>& pieces = m_walk.pieces;
    pieces.insert(pieces.end(), m_front.pieces.rbegin(), m_front.pieces.rend());
    pieces.push_back({start, Direction::Forwards, Dropped::Nothing});
    pieces.insert(pieces.end(), m_back.pieces.begin(), m_back.pieces.end());
    m_walk.chains.push_back({pieces.size(), m_pool.meet(m_front.end, m_back.end)});
    m_front.pieces.clear();
    m_back.pieces.clear();
}

} // namespace

Walk stitch(const std::vector<Run>& runs) {
    Stitcher stitcher(runs);
    for (std::size_t run = runs.size(); run > 0; --run) {
        const auto number = static_cast<RunNumber>(run - 1);
        stitcher.prefetchBefore(number);
        if (stitcher.isInPool(number)) {
            stitcher.addChain(number);
        }
    }
    return stitcher.takeWalk();
}

} // namespace dxfeditor
