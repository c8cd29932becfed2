#pragma once

#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace converters::drawing {

/// Places of contours, searched by what is near.
///
/// A k-d tree, complete down to leaves of a few places each; a node knows the box around the places
/// below it and the lowest owner of those still there. Of places that are equally near, that of the
/// lowest owner is the nearer one, then that of the lowest mark. Searches look at a limited number
/// of nodes: beyond, in contrived drawings, the nearest place so far is taken.
class PlaceTree {
public:
    using Owner = std::uint32_t;

    struct Entry {
        Place place;
        Owner owner;
        /// The owner's name for the place.
        std::uint32_t mark;
    };

    /// @param owners  how many: each entry's owner is below
    PlaceTree(std::vector<Entry> entries, std::size_t owners, OrderCost& cost);

    /// The nearest place that is still there; none when all are removed.
    std::optional<Entry> nearestTo(const Place& place, std::size_t mostNodes) const;

    /// Appends the nearest places of other owners, nearest first, at most `number` of them.
    void nearestTo(const Place& place, Owner except, std::size_t number, std::size_t mostNodes,
                   std::vector<Entry>& found) const;

    /// Removes all places of an owner.
    void remove(Owner owner);

private:
    struct Node {
        Place low;
        Place high;
        /// Of the entries below that are still there; noOwner when there are none.
        Owner lowest;
    };
    struct Search;

    static constexpr Owner noOwner = ~Owner{0};

    std::size_t leafNode(std::size_t leaf) const { return m_nodes.size() / 2 + leaf; }
    void build(std::size_t node, std::size_t begin, std::size_t width);
    void listPlaces(std::size_t owners);
    void refresh(std::size_t leaf);

    std::vector<Entry> m_entries;
    /// The children of node i are 2i + 1 and 2i + 2. The leaves are the last level.
    std::vector<Node> m_nodes;
    /// Where the entries of owner i are: m_entryOf[m_firstOf[i]] up to m_firstOf[i + 1].
    std::vector<std::uint32_t> m_firstOf;
    std::vector<std::uint32_t> m_entryOf;
    OrderCost& m_cost;
};

} // namespace converters::drawing
