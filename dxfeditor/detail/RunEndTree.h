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
/// that has an end at a point?
///
/// A k-d tree over all ends, complete down to leaves of a few ends each. A node knows the box
/// around the ends below it and the lowest run among those still there. A search passes by what
/// cannot beat the best run so far, what lies out of reach, and what lies in reach as a whole,
/// where the lowest run is the answer without a look at its ends: a thousand runs that meet in one
/// point cost no more than two.
///
/// The tests against a box are exact, with no allowance for rounding, also for coordinates of
/// 1e300: rounding keeps order, so that the rounded distance to any end lies between those to the
/// nearest and the farthest point of the box. There are no cells that could overflow.
///
/// Building costs n log n steps for n runs, a search and a removal log n in all but contrived
/// drawings (many ends just beyond the tolerance, all around the point looked for).
class RunEndTree {
public:
    using RunNumber = std::uint32_t;
    static constexpr RunNumber none = 0xFFFFFFFF;
    /// More runs than this are refused with std::bad_alloc: numbers of 32 bits keep the tree small,
    /// and the drawing alone would take some hundred gigabytes.
    static constexpr std::size_t maximumRuns = 0x7FFFFFFF;

    explicit RunEndTree(const std::vector<Run>& runs);

    bool contains(RunNumber run) const {
        return m_ends[m_places[2 * std::size_t{run}]].run != none;
    }

    /// The ends of a run that the tree contains.
    const Run::Point& first(RunNumber run) const {
        return m_ends[m_places[2 * std::size_t{run}]].point;
    }
    const Run::Point& last(RunNumber run) const {
        return m_ends[m_places[2 * std::size_t{run} + 1]].point;
    }

    /// The lowest run with an end that meets `point`, or none.
    RunNumber lowestRunAt(const Run::Point& point) const;

    void remove(RunNumber run);

private:
    struct End {
        Run::Point point;
        /// none when the run has been removed.
        RunNumber run;
        /// Whether it is the first or the last point of the run: 0 or 1.
        std::uint32_t side;
    };
    struct Node {
        Run::Point low;
        Run::Point high;
        /// The lowest run below the node, or none.
        RunNumber lowest = none;
    };
    struct Search;

    std::size_t leafNode(std::size_t leaf) const { return m_nodes.size() / 2 + leaf; }
    void build(std::size_t node, std::size_t begin, std::size_t width);
    void updateLeaf(std::size_t leaf);
    void removeAt(std::size_t place);

    /// All ends, those below one leaf next to each other. Behind them, out of every search, the
    /// ends that meet nothing.
    std::vector<End> m_ends;
    std::size_t m_searchable = 0;
    /// Of each run, the places of its first and of its last point in m_ends.
    std::vector<std::uint32_t> m_places;
    /// The children of node i are 2i + 1 and 2i + 2. The leaves are the last level.
    std::vector<Node> m_nodes;
};

} // namespace dxfeditor
