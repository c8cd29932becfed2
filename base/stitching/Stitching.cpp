// The procedure of the header, without its search through the pool after every join: a chain can
// only grow at its two tips, and what fits at a tip stays the same until the tip moves or the run
// is gone. So each tip keeps its candidate, the run of the lowest number that fits there; the lower
// of the two candidates is the run that the procedure would come to first.
//
//           front tip                          back tip
//               ▼                                  ▼
//     run 5 ····●────────────●────────────●────────●···· run 2     joins run 2, then looks for a
//               │   run 7    │   run 9    │  run 3 │               new candidate at the back alone
//               └─── joined in front ──┘  start  └─ joined behind
//
// Not done: joining all pairs first, each contour by itself, whatever the order. It would be
// simpler, but which runs are joined, and which run a chain begins with, would differ wherever
// three ends meet.

#include "base/stitching/Stitching.h"

#include "base/LargePages.h"
#include "base/stitching/RunPool.h"

#include <cstddef>
#include <utility>

namespace base {

namespace {

/// One of the two ends of the chain that grows.
struct Tip {
    RankedEnd end;
    /// The end of the lowest run of the pool that fits here, and the number of that run.
    RankedEnd candidate;
    RunNumber lowest = noRun;
    /// The pieces joined on this side, from the inside outwards.
    std::vector<Piece> pieces;
};

/// Builds a walk, chain by chain.
class Stitcher {
    /// What it takes to find which ends meet, of all.
    static constexpr double found = 0.6;

public:
    Stitcher(EndPoints ends, const JoinDistance& distance, StageProgress progress)
        : m_ends(std::move(ends)), m_pool(m_ends, distance, progress.part(0.0, found)),
          m_progress(progress.part(found, 1.0)) {
        reserveLarge(m_walk, m_ends.size());
        m_progress.begin(m_ends.size());
    }

    Walk walk() &&;

private:
    void addChain(RunRank start);
    void take(RunRank run) {
        m_pool.remove(run);
        m_progress.reached(++m_taken);
    }
    void join(RunRank joined);
    void extend(Tip& tip, const Piece& piece, RankedEnd joined, RankedEnd other);
    void finishChain(RunRank start);
    void search(Tip& tip) {
        tip.candidate = m_pool.lowestAt(tip.end);
        tip.lowest = tip.candidate.exists() ? m_pool.numberOf(tip.candidate.run()) : noRun;
    }

    const EndPoints m_ends;
    RunPool m_pool;
    Walk m_walk;
    Tip m_front;
    Tip m_back;
    StageProgress m_progress;
    /// Runs that are no longer in the pool.
    std::size_t m_taken = 0;
};

Walk Stitcher::walk() && {
    for (std::size_t run = m_ends.size(); run > 0; --run) {
        const RunRank last = m_pool.rankOf(static_cast<RunNumber>(run - 1));
        if (m_pool.contains(last)) {
            addChain(last);
        }
    }
    return std::move(m_walk);
}

/// Adds the chain that grows from `start`, a run in the pool.
void Stitcher::addChain(RunRank start) {
    m_front.end = RankedEnd::first(start);
    m_back.end = RankedEnd::last(start);
    take(start);
    search(m_front);
    search(m_back);
    for (;;) {
        const Tip& tip = m_front.lowest < m_back.lowest ? m_front : m_back;
        if (!tip.candidate.exists()) {
            break;
        }
        join(tip.candidate.run());
    }
    finishChain(start);
}

/// Joins a run that fits, in the first of the ways that hold.
void Stitcher::join(RunRank joined) {
    const RankedEnd first = RankedEnd::first(joined);
    const RankedEnd last = RankedEnd::last(joined);
    const RunNumber run = m_pool.numberOf(joined);
    take(joined);
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

void Stitcher::extend(Tip& tip, const Piece& piece, RankedEnd joined, RankedEnd other) {
    tip.pieces.push_back(piece);
    // Of a run of one point nothing is left once it is dropped: the chain ends where it did.
    if (!m_pool.areEqual(joined, other) || !m_ends.hasOnePoint(piece.run)) {
        tip.end = other;
    }
}

void Stitcher::finishChain(RunRank start) {
    m_walk.insert(m_walk.end(), m_front.pieces.rbegin(), m_front.pieces.rend());
    m_walk.push_back({m_pool.numberOf(start), Direction::Forwards, Dropped::Nothing, false, false});
    m_walk.insert(m_walk.end(), m_back.pieces.begin(), m_back.pieces.end());
    m_walk.back().endsChain = true;
    m_walk.back().closesChain = m_pool.meet(m_front.end, m_back.end);
    m_front.pieces.clear();
    m_back.pieces.clear();
}

} // namespace

Walk stitch(EndPoints ends, const JoinDistance& distance, StageProgress progress) {
    return Stitcher(std::move(ends), distance, progress).walk();
}

} // namespace base
