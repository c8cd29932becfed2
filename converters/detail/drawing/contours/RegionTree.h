#pragma once

#include "converters/detail/drawing/contours/Region.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace converters::drawing {

/// Regions, searched by what lies within their boxes.
///
/// A tree of boxes around boxes, complete down to leaves of a few regions. A search looks at a
/// limited number of nodes.
class RegionTree {
public:
    using Index = std::uint32_t;

    /// @param members  indexes of the regions that can enclose something; any order
    RegionTree(const std::vector<Region>& regions, const std::vector<Index>& members,
               OrderCost& cost);

    struct Found {
        /// The smallest first.
        std::vector<Index> regions;
        /// Whether there may be more, larger ones.
        bool more;
    };

    /// The smallest regions that are larger than this one and whose boxes hold its box.
    Found around(Index region) const;

private:
    /// What a search has to know of a region, next to that of its neighbours.
    struct Member {
        PlaneBox box;
        RegionSize size;
        Index index;
    };
    struct Node {
        PlaneBox box;
        RegionSize least;
        RegionSize most;
    };
    struct Search;

    void build(std::size_t node, std::size_t begin, std::size_t width);

    const std::vector<Region>& m_regions;
    std::vector<Member> m_members;
    /// As long as the cost is below, searches may look far.
    std::uint64_t m_enough;
    /// The children of node i are 2i + 1 and 2i + 2. The leaves are the last level.
    std::vector<Node> m_nodes;
    OrderCost& m_cost;
};

} // namespace converters::drawing
