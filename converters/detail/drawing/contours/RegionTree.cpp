#include "converters/detail/drawing/contours/RegionTree.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace converters::drawing {

namespace {

constexpr std::size_t regionsPerLeaf = 4;
/// More than this are rarely of use: they are around the ones that are found.
constexpr std::size_t mostFound = 32;
/// How many nodes a search looks at at most, and when many have done so.
constexpr std::size_t mostNodes = 2000;
constexpr std::size_t fewNodes = 100;
constexpr std::uint64_t nodesPerSearch = 200;

} // namespace

RegionTree::RegionTree(const std::vector<Region>& regions, const std::vector<Index>& members,
                       OrderCost& cost)
    : m_regions(regions), m_cost(cost) {
    for (const Index index : members) {
        m_members.push_back({regions[index].box(), regions[index].size(), index});
    }
    std::size_t leaves = 1;
    while (leaves * regionsPerLeaf < m_members.size()) {
        leaves *= 2;
    }
    m_nodes.resize(2 * leaves - 1);
    build(0, 0, leaves * regionsPerLeaf);
    m_enough = cost.looks + nodesPerSearch * regions.size();
}

/// Puts the members [begin, begin + width) in order below `node`, as far as there are any.
void RegionTree::build(std::size_t node, std::size_t begin, std::size_t width) {
    const std::size_t end = std::min(begin + width, m_members.size());
    if (begin >= end) {
        return;
    }
    m_cost.looks += end - begin;
    const Member& first = m_members[begin];
    Node& here = m_nodes[node];
    here = {first.box, first.size, first.size};
    for (std::size_t i = begin + 1; i < end; ++i) {
        here.box.take(m_members[i].box);
        here.least = std::min(here.least, m_members[i].size);
        here.most = std::max(here.most, m_members[i].size);
    }
    if (width == regionsPerLeaf) {
        return;
    }
    const std::size_t half = width / 2;
    if (begin + half < end) {
        const bool wide = here.box.highX - here.box.lowX >= here.box.highY - here.box.lowY;
        // By the middle; those around one middle, as in a target, by size.
        const auto key = [wide](const Member& each) {
            const PlaneBox& box = each.box;
            return std::make_tuple(wide ? box.lowX + box.highX : box.lowY + box.highY,
                                   each.size.box, each.size.area, each.index);
        };
        const auto from = m_members.begin();
        std::nth_element(from + static_cast<std::ptrdiff_t>(begin),
                         from + static_cast<std::ptrdiff_t>(begin + half),
                         from + static_cast<std::ptrdiff_t>(end),
                         [&](const Member& a, const Member& b) { return key(a) < key(b); });
    }
    build(2 * node + 1, begin, half);
    build(2 * node + 2, begin + half, half);
}

struct RegionTree::Search {
    const RegionTree& tree;
    const PlaneBox& box;
    const RegionSize& size;
    std::size_t nodesLeft;
    bool more = false;
    /// A heap, the largest on top.
    std::vector<Member> found;

    static bool isSmaller(const Member& a, const Member& b) {
        return a.size < b.size || (!(b.size < a.size) && a.index < b.index);
    }

    bool isWorthwhile(const Node& node) {
        if (!node.box.contains(box) || !(size < node.most)) {
            return false;
        }
        if (found.size() == mostFound && found.front().size < node.least) {
            more = true;
            return false;
        }
        return true;
    }

    void take(const Member& member) {
        if (!(size < member.size) || !member.box.contains(box)) {
            return;
        }
        if (found.size() == mostFound) {
            more = true;
            if (!isSmaller(member, found.front())) {
                return;
            }
            std::pop_heap(found.begin(), found.end(), isSmaller);
            found.pop_back();
        }
        found.push_back(member);
        std::push_heap(found.begin(), found.end(), isSmaller);
    }

    void visit(std::size_t node) {
        if (!isWorthwhile(tree.m_nodes[node])) {
            return;
        }
        if (nodesLeft == 0) {
            more = true;
            return;
        }
        --nodesLeft;
        ++tree.m_cost.looks;
        const std::size_t leaves = tree.m_nodes.size() / 2;
        if (node >= leaves) {
            const std::size_t begin = (node - leaves) * regionsPerLeaf;
            const std::size_t end = std::min(begin + regionsPerLeaf, tree.m_members.size());
            for (std::size_t i = begin; i < end; ++i) {
                take(tree.m_members[i]);
            }
            return;
        }
        const std::size_t first = 2 * node + 1;
        const bool swap = tree.m_nodes[first + 1].least < tree.m_nodes[first].least;
        visit(swap ? first + 1 : first);
        visit(swap ? first : first + 1);
    }
};

RegionTree::Found RegionTree::around(Index region) const {
    if (m_members.empty()) {
        return {{}, false};
    }
    const std::size_t nodes = m_cost.looks < m_enough ? mostNodes : fewNodes;
    Search search{*this, m_regions[region].box(), m_regions[region].size(), nodes, false, {}};
    search.visit(0);
    std::sort_heap(search.found.begin(), search.found.end(), Search::isSmaller);
    Found result{{}, search.more};
    for (const Member& member : search.found) {
        result.regions.push_back(member.index);
    }
    return result;
}

} // namespace converters::drawing
