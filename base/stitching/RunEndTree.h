#pragma once

#include "base/stitching/JoinDistance.h"
#include "base/stitching/RunEnds.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace base {

/// Ends of runs, searched by where they are: which is the lowest one here that is still there?
///
/// A k-d tree, complete down to leaves of a few ends each. A node knows the box around the ends
/// below it and the lowest of those still there. A search begins at the leaf of the end and climbs
/// as far as other leaves can be in reach, which is known for each leaf. It passes by what cannot
/// beat the lowest end so far, what lies out of reach, and what lies in reach as a whole, where the
/// lowest end is the answer without a look at the others: a thousand runs that meet in one point
/// cost no more than two.
///
/// The tests against a box are exact, with no allowance for rounding, also for coordinates of
/// 1e300: rounding keeps order, so that the rounded distance to any end lies between those to the
/// nearest and the farthest point of the box. There are no cells that could overflow.
///
/// Building costs n log n steps for n ends, a search and a removal at most log n in all but
/// contrived drawings (many ends just beyond the join distance, all around the one looked from).
class RunEndTree {
public:
    /// Names an end, also after its removal: indices begin at 0 and have no gaps.
    using Index = std::uint32_t;

    struct End {
        /// Finite.
        Point point;
        NumberedEnd number;
    };

    /// @param ends  in any order
    RunEndTree(std::vector<End> ends, const JoinDistance& distance);

    Index size() const { return static_cast<Index>(m_ends.size()); }

    /// An end that has not been removed.
    NumberedEnd at(Index end) const { return m_ends[end].number; }

    /// Whether two ends are one point.
    bool meet(Index a, Index b) const { return m_distance.meet(m_ends[a].point, m_ends[b].point); }

    /// The lowest end that meets this one, or none.
    NumberedEnd lowestAt(Index end) const { return lowestWithin(m_distance, end); }

    /// The lowest end that is closer to this one than a distance, which is no more than that of
    /// the tree, or none.
    NumberedEnd lowestWithin(const JoinDistance& distance, Index end) const;

    /// Removes an end; of one that has been removed nothing is left to remove.
    void remove(Index end);

private:
    struct Node {
        Point low;
        Point high;
        /// The lowest end below the node, or none.
        NumberedEnd lowest;
        /// Of a leaf, how many levels above it there may be ends in reach of its own.
        std::uint32_t levelsInReach = 0;
    };
    struct Search;

    std::size_t leafNode(std::size_t leaf) const { return m_nodes.size() / 2 + leaf; }
    void build(std::size_t node, std::size_t begin, std::size_t width);
    void findLevelsInReach(std::size_t leaf);

    JoinDistance m_distance;
    /// All ends, those below one leaf next to each other. A removed one has no number.
    std::vector<End> m_ends;
    /// The children of node i are 2i + 1 and 2i + 2. The leaves are the last level.
    std::vector<Node> m_nodes;
};

} // namespace base
