#pragma once

#include "dxfeditor/detail/Sampling.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dxfeditor {

/// Ends of runs closer than this, squared, are the same point.
constexpr double squaredTolerance = 1e-06;

inline double squaredDistance(const Run::Point& a, const Run::Point& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    const double dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz;
}

/// Whether two ends are one point. Never when a coordinate is infinite or not a number.
inline bool meet(const Run::Point& a, const Run::Point& b) {
    return squaredDistance(a, b) < squaredTolerance;
}

/// The ends of the runs that are still to be stitched, searched by place: which is the lowest run
/// that has an end at this one?
///
/// A k-d tree over all ends, complete down to leaves of a few ends each. A node knows the box
/// around the ends below it and the lowest run among those still there. A search begins at the leaf
/// of the end and climbs as far as other leaves can be in reach, which is known for each leaf. It
/// passes by what cannot beat the lowest run so far, what lies out of reach, and what lies in reach
/// as a whole, where the lowest run is the answer without a look at its ends: a thousand runs that
/// meet in one point cost no more than two.
///
/// The tests against a box are exact, with no allowance for rounding, also for coordinates of
/// 1e300: rounding keeps order, so that the rounded distance to any end lies between those to the
/// nearest and the farthest point of the box. There are no cells that could overflow.
///
/// Building costs n log n steps for n runs, a search and a removal at most log n in all but
/// contrived drawings (many ends just beyond the tolerance, all around the one looked from).
class RunEndTree {
public:
    using RunNumber = std::uint32_t;
    /// Names an end, also after the removal of its run. A run of one point has one end.
    using Place = std::uint32_t;
    static constexpr std::uint32_t none = 0xFFFFFFFF;
    /// More runs than this are refused with std::bad_alloc: numbers of 32 bits keep the tree small,
    /// and the drawing alone would take some hundred gigabytes.
    static constexpr std::size_t maximumRuns = 0x7FFFFFFF;

    /// A run that has an end at a place looked at.
    struct Match {
        /// none when there is no such run.
        RunNumber run = none;
        Place first = none;
        Place last = none;
    };

    explicit RunEndTree(const std::vector<Run>& runs);

    bool contains(RunNumber run) const { return !m_removed[run]; }

    /// The ends of a run.
    Place first(RunNumber run) const { return m_places[2 * std::size_t{run}]; }
    Place last(RunNumber run) const { return m_places[2 * std::size_t{run} + 1]; }

    /// Whether two ends are one point.
    bool meet(Place a, Place b) const { return dxfeditor::meet(m_ends[a].point, m_ends[b].point); }

    /// The lowest run with an end that meets this one.
    Match lowestRunAt(Place end) const;

    /// Removes the run with these ends.
    void remove(Place first, Place last);

    /// Asks the processor to fetch what searches from the ends of `run` begin with.
    void prefetch(RunNumber run) const;

private:
    /// Twice the number of the run, and 1 more for the last end; none for a removed end.
    using EndNumber = std::uint32_t;

    struct End {
        Run::Point point;
        EndNumber number;
        /// The place of the run's other end, so that a walk from end to end stays in one part of
        /// the memory.
        Place other;
    };
    struct Node {
        Run::Point low;
        Run::Point high;
        /// The lowest end below the node, or none.
        EndNumber lowest = none;
        /// Of a leaf, how many levels above it there may be ends in reach of its own.
        std::uint32_t levelsInReach = 0;
    };
    struct Search;

    std::size_t leafNode(std::size_t leaf) const { return m_nodes.size() / 2 + leaf; }
    void collectEnds(const std::vector<Run>& runs);
    void build(std::size_t node, std::size_t begin, std::size_t width);
    void findLevelsInReach(std::size_t leaf);
    void findPlaces();
    void removeEnd(Place end);

    /// All ends, those below one leaf next to each other. Behind them, out of every search, the
    /// ends that meet nothing.
    std::vector<End> m_ends;
    std::size_t m_searchable = 0;
    /// The places of the ends by their numbers.
    std::vector<Place> m_places;
    std::vector<bool> m_removed;
    /// The children of node i are 2i + 1 and 2i + 2. The leaves are the last level.
    std::vector<Node> m_nodes;
};

} // namespace dxfeditor
