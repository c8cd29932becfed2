// A k-d tree that is built by quickselect: the ends are split at their median along the longest
// side of their box, each half again, until a leaf has 16 at most. Splitting is all the cost of
// building, so it has a quickselect of its own: pivots are taken from a sample, near the rank that
// is wanted, and elements are moved without a branch on the comparison. std::nth_element, which it
// ends with, gives the same at three times the cost. The tree is a heap in an array, as no end
// comes later:
//
//     node              0               box around all ends, and the lowest number
//                  1         2
//     leaves     3   4     5   6        16 ends each, in m_ends
//
// Not done: a grid whose cells have lists, which is what EndPairs does: a thousand ends in one cell
// would cost a million comparisons. Here the lowest number of a box that is in reach as a whole
// answers for all ends in it.

#include "base/stitching/RunEndTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace base {

namespace {

constexpr std::size_t endsPerLeaf = 16;

Point lowerCorner(const Point& a, const Point& b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

Point upperCorner(const Point& a, const Point& b) {
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

/// The coordinate in [low, high] nearest to `value`, and the one farthest from it.
double nearest(double value, double low, double high) {
    return std::min(std::max(value, low), high);
}
double farthest(double value, double low, double high) {
    return std::fabs(value - low) > std::fabs(value - high) ? low : high;
}

/// The distance between two intervals; 0 when they touch.
double gap(double low1, double high1, double low2, double high2) {
    return std::max(std::max(low2 - high1, low1 - high2), 0.0);
}

/// Moves the elements that pass the test to the front, and returns the end of those. Without a
/// branch on the test, which no processor could predict.
template <typename Element, typename Test>
Element* moveToFront(Element* begin, Element* end, Test test) {
    Element* passed = begin;
    for (Element* element = begin; element != end; ++element) {
        const Element current = *element;
        *element = *passed;
        *passed = current;
        passed += test(current) ? 1 : 0;
    }
    return passed;
}

/// The key that about as many elements are below as there are before `middle`.
template <typename Element, typename Key>
double approximateKeyAt(const Element* begin, const Element* middle, const Element* end, Key key) {
    constexpr std::ptrdiff_t samples = 32;
    double keys[samples];
    for (std::ptrdiff_t i = 0; i < samples; ++i) {
        keys[i] = key(begin[(end - begin) / samples * i]);
    }
    double* const at = keys + (middle - begin) * samples / (end - begin);
    std::nth_element(keys, at, keys + samples);
    return *at;
}

/// Reorders so that no key before `middle` is greater than one from there on: a quickselect.
template <typename Element, typename Key>
void splitAt(Element* begin, Element* middle, Element* end, Key key) {
    constexpr int rounds = 8;
    constexpr std::ptrdiff_t worthwhile = 256;
    for (int round = 0; round < rounds && end - begin > worthwhile; ++round) {
        const double pivot = approximateKeyAt(begin, middle, end, key);
        Element* const notLess =
            moveToFront(begin, end, [&](const Element& each) { return key(each) < pivot; });
        if (middle < notLess) {
            end = notLess;
        } else if (notLess > begin) {
            begin = notLess;
        } else {
            // The pivot is the least key: what equals it is in place.
            begin =
                moveToFront(begin, end, [&](const Element& each) { return key(each) <= pivot; });
            if (middle <= begin) {
                return;
            }
        }
    }
    std::nth_element(begin, middle, end,
                     [&](const Element& a, const Element& b) { return key(a) < key(b); });
}

std::size_t parentOf(std::size_t node) {
    return (node - 1) / 2;
}
std::size_t siblingOf(std::size_t node) {
    return ((node - 1) ^ 1) + 1;
}

} // namespace

RunEndTree::RunEndTree(std::vector<End> ends, const JoinDistance& distance)
    : m_distance(distance), m_ends(std::move(ends)) {
    std::size_t leaves = 1;
    while (leaves * endsPerLeaf < m_ends.size()) {
        leaves *= 2;
    }
    m_nodes.resize(2 * leaves - 1);
    build(0, 0, leaves * endsPerLeaf);
    for (std::size_t leaf = 0; leaf * endsPerLeaf < m_ends.size(); ++leaf) {
        findLevelsInReach(leaf);
    }
}

/// Puts the ends at the indices [begin, begin + width) in order below `node`, as far as there are
/// any, and fills the node.
void RunEndTree::build(std::size_t node, std::size_t begin, std::size_t width) {
    const std::size_t end = std::min(begin + width, m_ends.size());
    if (begin >= end) {
        return;
    }
    Node& box = m_nodes[node];
    box.low = box.high = m_ends[begin].point;
    box.lowest = m_ends[begin].number;
    for (std::size_t i = begin + 1; i < end; ++i) {
        box.low = lowerCorner(box.low, m_ends[i].point);
        box.high = upperCorner(box.high, m_ends[i].point);
        box.lowest = std::min(box.lowest, m_ends[i].number);
    }
    if (width == endsPerLeaf) {
        return;
    }
    const std::size_t half = width / 2;
    if (begin + half < end) {
        const double extentX = box.high.x - box.low.x;
        const double extentY = box.high.y - box.low.y;
        const double extentZ = box.high.z - box.low.z;
        double Point::*axis = extentX >= extentZ ? &Point::x : &Point::z;
        if (extentY > std::max(extentX, extentZ)) {
            axis = &Point::y;
        }
        splitAt(m_ends.data() + begin, m_ends.data() + begin + half, m_ends.data() + end,
                [axis](const End& each) { return each.point.*axis; });
    }
    build(2 * node + 1, begin, half);
    build(2 * node + 2, begin + half, half);
}

void RunEndTree::findLevelsInReach(std::size_t leaf) {
    std::size_t node = leafNode(leaf);
    Node& box = m_nodes[node];
    for (std::uint32_t level = 1; node != 0; ++level, node = parentOf(node)) {
        const Node& other = m_nodes[siblingOf(node)];
        if (other.lowest.exists() &&
            m_distance.meet({gap(box.low.x, box.high.x, other.low.x, other.high.x),
                             gap(box.low.y, box.high.y, other.low.y, other.high.y),
                             gap(box.low.z, box.high.z, other.low.z, other.high.z)},
                            {})) {
            box.levelsInReach = level;
        }
    }
}

/// One search: how far, from which point, and the lowest end found so far.
struct RunEndTree::Search {
    const RunEndTree& tree;
    const JoinDistance& distance;
    const Point point;
    NumberedEnd best{};

    bool isOutOfReach(const Node& node) const {
        return !distance.meet(point, {nearest(point.x, node.low.x, node.high.x),
                                      nearest(point.y, node.low.y, node.high.y),
                                      nearest(point.z, node.low.z, node.high.z)});
    }

    bool isInReach(const Node& node) const {
        return distance.meet(point, {farthest(point.x, node.low.x, node.high.x),
                                     farthest(point.y, node.low.y, node.high.y),
                                     farthest(point.z, node.low.z, node.high.z)});
    }

    void visit(std::size_t index) {
        const Node& node = tree.m_nodes[index];
        if (!(node.lowest < best) || isOutOfReach(node)) {
            return;
        }
        if (isInReach(node)) {
            best = node.lowest;
        } else if (index >= tree.leafNode(0)) {
            visitEnds(index - tree.leafNode(0));
        } else {
            visit(2 * index + 1);
            visit(2 * index + 2);
        }
    }

    void visitEnds(std::size_t leaf) {
        const std::size_t begin = leaf * endsPerLeaf;
        const std::size_t end = std::min(begin + endsPerLeaf, tree.m_ends.size());
        for (std::size_t i = begin; i < end; ++i) {
            const End& candidate = tree.m_ends[i];
            if (candidate.number < best && distance.meet(point, candidate.point)) {
                best = candidate.number;
            }
        }
    }
};

NumberedEnd RunEndTree::lowestWithin(const JoinDistance& distance, Index end) const {
    Search search{*this, distance, m_ends[end].point};
    std::size_t node = leafNode(end / endsPerLeaf);
    search.visit(node);
    for (std::uint32_t level = m_nodes[node].levelsInReach; level > 0; --level) {
        search.visit(siblingOf(node));
        node = parentOf(node);
    }
    return search.best;
}

/// Takes an end out of its leaf, and finds the lowest ends of the leaf and of the nodes above it
/// anew as far as they change.
void RunEndTree::remove(Index index) {
    const NumberedEnd number = m_ends[index].number;
    m_ends[index].number = {};
    const std::size_t leaf = index / endsPerLeaf;
    std::size_t node = leafNode(leaf);
    if (!number.exists() || m_nodes[node].lowest != number) {
        return;
    }
    const std::size_t begin = leaf * endsPerLeaf;
    const std::size_t end = std::min(begin + endsPerLeaf, m_ends.size());
    NumberedEnd lowest;
    for (std::size_t other = begin; other < end; ++other) {
        lowest = std::min(lowest, m_ends[other].number);
    }
    m_nodes[node].lowest = lowest;
    while (node != 0 && m_nodes[parentOf(node)].lowest == number) {
        lowest = std::min(lowest, m_nodes[siblingOf(node)].lowest);
        node = parentOf(node);
        m_nodes[node].lowest = lowest;
    }
}

} // namespace base
