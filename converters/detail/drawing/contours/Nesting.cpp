#include "converters/detail/drawing/contours/Nesting.h"

#include "converters/detail/drawing/contours/Region.h"
#include "converters/detail/drawing/contours/RegionTree.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>
#include <utility>

namespace converters::drawing {

namespace {

using Index = std::uint32_t;

constexpr Index none = ~Index{0};
/// How far up the tree to look for what contours have in common.
constexpr int mostLevels = 50;
/// How many edges to look at in all, for each contour and each point.
constexpr std::uint64_t looksPerContour = 2000;
constexpr std::uint64_t looksPerPoint = 50;
/// The turns of contours of which it is not known what they lie in: before all others.
constexpr std::uint64_t unknownTurn = std::uint64_t{1} << 40;

/// Hangs contours below one another, the largest first.
class NestingBuilder {
public:
    NestingBuilder(const std::vector<ContourShape>& contours, const PlaceRounding& rounding,
                   OrderCost& cost)
        : m_cost(cost), m_above(contours.size()), m_parent(contours.size(), none),
          m_root(contours.size()), m_depth(contours.size(), 0), m_turn(contours.size(), 0) {
        std::iota(m_root.begin(), m_root.end(), Index{0});
        m_regions.reserve(contours.size());
        std::uint64_t points = 0;
        for (const ContourShape& contour : contours) {
            m_regions.emplace_back(contour, rounding, cost);
            points += contour.size;
        }
        m_limit = cost.looks + looksPerContour * contours.size() + looksPerPoint * points;
    }

    void build() {
        std::vector<Index> order(m_regions.size());
        std::iota(order.begin(), order.end(), Index{0});
        std::vector<Index> enclosing;
        std::copy_if(order.begin(), order.end(), std::back_inserter(enclosing),
                     [&](Index each) { return m_regions[each].encloses(); });
        const RegionTree tree(m_regions, enclosing, m_cost);
        std::sort(order.begin(), order.end(), [&](Index a, Index b) {
            const RegionSize& sizeA = m_regions[a].size();
            const RegionSize& sizeB = m_regions[b].size();
            return sizeB < sizeA || (!(sizeA < sizeB) && a < b);
        });
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (!findAbove(order[i], tree)) {
                m_turn[order[i]] = unknownTurn + i;
            } else if (!m_above[order[i]].regions.empty()) {
                hang(order[i]);
            }
        }
    }

    Index parentOf(Index contour) const { return m_parent[contour]; }
    std::uint64_t turnOf(Index contour) const { return m_turn[contour]; }

private:
    /// Finds what a contour lies in; false where the search was given up.
    bool findAbove(Index contour, const RegionTree& tree) {
        RegionTree::Found found = tree.around(contour);
        const Place inner = m_regions[contour].inner();
        RegionTree::Found& above = m_above[contour];
        above.more = found.more;
        for (const Index other : found.regions) {
            if (m_cost.looks > m_limit) {
                above.more = true;
                break;
            }
            if (m_regions[other].contains(inner)) {
                above.regions.push_back(other);
            }
        }
        return !above.regions.empty() || !above.more;
    }

    /// Whether what lies in `inner` is sure to come before `outer`, since `inner` does.
    bool isAbove(Index inner, Index outer) const {
        const RegionTree::Found& above = m_above[inner];
        if (std::find(above.regions.begin(), above.regions.end(), outer) != above.regions.end()) {
            return true;
        }
        return above.more && !above.regions.empty() &&
               m_regions[above.regions.back()].size() < m_regions[outer].size();
    }

    /// Hangs a contour below the smallest one that it lies in, or as far above as the others that
    /// it lies in ask for.
    void hang(Index contour) {
        const std::vector<Index>& above = m_above[contour].regions;
        Index parent = above.front();
        for (const Index other : above) {
            if (other != above.front() && !isAbove(above.front(), other)) {
                parent = common(parent, other);
            }
        }
        m_parent[contour] = parent;
        if (parent != none) {
            m_depth[contour] = m_depth[parent] + 1;
            m_root[contour] = m_root[parent];
        }
        for (const Index other : above) {
            const Index rival = childTowards(parent, other);
            if (rival != none) {
                m_turn[contour] = std::max(m_turn[contour], m_turn[rival] + 1);
            }
        }
    }

    /// The lowest contour that both hang below, or are; none when there is none or it is far away.
    Index common(Index a, Index b) {
        for (int i = 0; i < mostLevels && a != none && b != none; ++i) {
            ++m_cost.looks;
            if (a == b) {
                return a;
            }
            Index& lower = m_depth[a] >= m_depth[b] ? a : b;
            lower = m_parent[lower];
        }
        return none;
    }

    /// The one directly below `parent` that a contour hangs below, or is; none when it does not
    /// hang below it.
    Index childTowards(Index parent, Index contour) {
        if (parent == none) {
            return m_root[contour];
        }
        // What they have in common is not far.
        while (contour != none && m_depth[contour] > m_depth[parent] + 1) {
            ++m_cost.looks;
            contour = m_parent[contour];
        }
        return contour != none && m_parent[contour] == parent ? contour : none;
    }

    OrderCost& m_cost;
    std::uint64_t m_limit = 0;
    std::vector<Region> m_regions;
    std::vector<RegionTree::Found> m_above;
    std::vector<Index> m_parent;
    /// The outermost one that a contour hangs below, or is.
    std::vector<Index> m_root;
    std::vector<std::size_t> m_depth;
    std::vector<std::uint64_t> m_turn;
};

} // namespace

Nesting::Nesting(const std::vector<ContourShape>& contours, const PlaceRounding& rounding,
                 OrderCost& cost) {
    NestingBuilder builder(contours, rounding, cost);
    builder.build();
    const std::size_t number = contours.size();
    const auto levelOf = [&](std::size_t contour) -> std::size_t {
        const Index parent = builder.parentOf(static_cast<Index>(contour));
        return parent == none ? number : parent;
    };
    m_firstOf.assign(number + 2, 0);
    for (std::size_t i = 0; i < number; ++i) {
        ++m_firstOf[levelOf(i) + 1];
        m_members.push_back({static_cast<Index>(i), builder.turnOf(static_cast<Index>(i))});
    }
    std::partial_sum(m_firstOf.begin(), m_firstOf.end(), m_firstOf.begin());
    std::sort(m_members.begin(), m_members.end(), [&](const Member& a, const Member& b) {
        const std::size_t levelA = levelOf(a.contour);
        const std::size_t levelB = levelOf(b.contour);
        return std::make_tuple(levelA, b.turn, a.contour) <
               std::make_tuple(levelB, a.turn, b.contour);
    });
}

} // namespace converters::drawing
