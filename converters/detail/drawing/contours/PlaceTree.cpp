#include "converters/detail/drawing/contours/PlaceTree.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace converters::drawing {

namespace {

constexpr std::size_t entriesPerLeaf = 8;

double outside(double value, double low, double high) {
    return std::max(std::max(low - value, value - high), 0.0);
}

/// The axis along which a box is the longest.
double Place::*longestAxis(const Place& low, const Place& high) {
    const Place size = high - low;
    if (size.x >= size.y && size.x >= size.z) {
        return &Place::x;
    }
    return size.y >= size.z ? &Place::y : &Place::z;
}

/// A place with how far it is, ordered by that.
struct Found {
    double square;
    PlaceTree::Entry entry;

    bool operator<(const Found& other) const {
        return std::tie(square, entry.owner, entry.mark) <
               std::tie(other.square, other.entry.owner, other.entry.mark);
    }
};

} // namespace

PlaceTree::PlaceTree(std::vector<Entry> entries, std::size_t owners, OrderCost& cost)
    : m_entries(std::move(entries)), m_cost(cost) {
    std::size_t leaves = 1;
    while (leaves * entriesPerLeaf < m_entries.size()) {
        leaves *= 2;
    }
    m_nodes.assign(2 * leaves - 1, {{0, 0, 0}, {0, 0, 0}, noOwner});
    build(0, 0, leaves * entriesPerLeaf);
    listPlaces(owners);
}

/// Puts the entries [begin, begin + width) in order below `node`, as far as there are any.
void PlaceTree::build(std::size_t node, std::size_t begin, std::size_t width) {
    const std::size_t end = std::min(begin + width, m_entries.size());
    if (begin >= end) {
        return;
    }
    m_cost.looks += end - begin;
    Node& box = m_nodes[node];
    box = {m_entries[begin].place, m_entries[begin].place, m_entries[begin].owner};
    for (std::size_t i = begin + 1; i < end; ++i) {
        const Place& place = m_entries[i].place;
        box.low = {std::min(box.low.x, place.x), std::min(box.low.y, place.y),
                   std::min(box.low.z, place.z)};
        box.high = {std::max(box.high.x, place.x), std::max(box.high.y, place.y),
                    std::max(box.high.z, place.z)};
        box.lowest = std::min(box.lowest, m_entries[i].owner);
    }
    if (width == entriesPerLeaf) {
        return;
    }
    const std::size_t half = width / 2;
    if (begin + half < end) {
        double Place::*const axis = longestAxis(box.low, box.high);
        const auto from = m_entries.begin();
        // A strict order, so that every implementation gives the same tree.
        std::nth_element(from + static_cast<std::ptrdiff_t>(begin),
                         from + static_cast<std::ptrdiff_t>(begin + half),
                         from + static_cast<std::ptrdiff_t>(end),
                         [axis](const Entry& a, const Entry& b) {
                             return std::make_tuple(a.place.*axis, a.owner, a.mark) <
                                    std::make_tuple(b.place.*axis, b.owner, b.mark);
                         });
    }
    build(2 * node + 1, begin, half);
    build(2 * node + 2, begin + half, half);
}

void PlaceTree::listPlaces(std::size_t owners) {
    m_firstOf.assign(owners + 1, 0);
    for (const Entry& entry : m_entries) {
        ++m_firstOf[entry.owner + 1];
    }
    for (std::size_t i = 0; i < owners; ++i) {
        m_firstOf[i + 1] += m_firstOf[i];
    }
    std::vector<std::uint32_t> next(m_firstOf.begin(), m_firstOf.end() - 1);
    m_entryOf.resize(m_entries.size());
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        m_entryOf[next[m_entries[i].owner]++] = static_cast<std::uint32_t>(i);
    }
}

void PlaceTree::remove(Owner owner) {
    for (std::size_t i = m_firstOf[owner]; i < m_firstOf[owner + 1]; ++i) {
        m_entries[m_entryOf[i]].owner = noOwner;
        refresh(m_entryOf[i] / entriesPerLeaf);
    }
}

/// Brings the lowest owners of a leaf and of what is above up to date.
void PlaceTree::refresh(std::size_t leaf) {
    const std::size_t begin = leaf * entriesPerLeaf;
    const std::size_t end = std::min(begin + entriesPerLeaf, m_entries.size());
    Owner lowest = noOwner;
    for (std::size_t i = begin; i < end; ++i) {
        lowest = std::min(lowest, m_entries[i].owner);
    }
    std::size_t node = leafNode(leaf);
    while (m_nodes[node].lowest != lowest) {
        ++m_cost.looks;
        m_nodes[node].lowest = lowest;
        if (node == 0) {
            return;
        }
        node = (node - 1) / 2;
        lowest = std::min(m_nodes[2 * node + 1].lowest, m_nodes[2 * node + 2].lowest);
    }
}

/// One search for the nearest places, best first. Two by one owner may both be found.
struct PlaceTree::Search {
    const PlaceTree& tree;
    const Place place;
    const Owner except;
    const std::size_t number;
    std::size_t nodesLeft;
    /// A heap, the farthest on top.
    std::vector<Found> found;

    double squareTo(const Node& node) const {
        const Place way(outside(place.x, node.low.x, node.high.x),
                        outside(place.y, node.low.y, node.high.y),
                        outside(place.z, node.low.z, node.high.z));
        return way.dot(way);
    }

    bool isWorthwhile(const Node& node, double square) const {
        if (node.lowest == noOwner || found.size() < number) {
            return node.lowest != noOwner;
        }
        const Found& worst = found.front();
        return square < worst.square ||
               (square == worst.square && node.lowest <= worst.entry.owner);
    }

    void take(const Entry& entry) {
        const Found candidate{squareBetween(place, entry.place), entry};
        if (found.size() == number) {
            if (!(candidate < found.front())) {
                return;
            }
            std::pop_heap(found.begin(), found.end());
            found.pop_back();
        }
        found.push_back(candidate);
        std::push_heap(found.begin(), found.end());
    }

    void visit(std::size_t node, double square) {
        // The first way down is always gone to its end: something is found.
        const bool exhausted = nodesLeft == 0 && !found.empty();
        if (exhausted || !isWorthwhile(tree.m_nodes[node], square)) {
            return;
        }
        nodesLeft -= nodesLeft > 0 ? 1 : 0;
        ++tree.m_cost.looks;
        const std::size_t leaves = tree.m_nodes.size() / 2;
        if (node >= leaves) {
            const std::size_t begin = (node - leaves) * entriesPerLeaf;
            const std::size_t end = std::min(begin + entriesPerLeaf, tree.m_entries.size());
            for (std::size_t i = begin; i < end; ++i) {
                const Entry& entry = tree.m_entries[i];
                if (entry.owner != noOwner && entry.owner != except) {
                    take(entry);
                }
            }
            return;
        }
        const std::size_t first = 2 * node + 1;
        const double toFirst = squareTo(tree.m_nodes[first]);
        const double toSecond = squareTo(tree.m_nodes[first + 1]);
        const bool swap =
            toSecond < toFirst ||
            (toSecond == toFirst && tree.m_nodes[first + 1].lowest < tree.m_nodes[first].lowest);
        visit(swap ? first + 1 : first, swap ? toSecond : toFirst);
        visit(swap ? first : first + 1, swap ? toFirst : toSecond);
    }
};

std::optional<PlaceTree::Entry> PlaceTree::nearestTo(const Place& place,
                                                     std::size_t mostNodes) const {
    Search search{*this, place, noOwner, 1, mostNodes, {}};
    search.visit(0, 0);
    return search.found.empty() ? std::nullopt : std::optional<Entry>(search.found.front().entry);
}

void PlaceTree::nearestTo(const Place& place, Owner except, std::size_t number,
                          std::size_t mostNodes, std::vector<Entry>& found) const {
    Search search{*this, place, except, number, mostNodes, {}};
    search.visit(0, 0);
    std::sort_heap(search.found.begin(), search.found.end());
    for (const Found& each : search.found) {
        found.push_back(each.entry);
    }
}

} // namespace converters::drawing
