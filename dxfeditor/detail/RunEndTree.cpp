#include "dxfeditor/detail/RunEndTree.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace dxfeditor {

namespace {

using Point = Run::Point;

constexpr std::size_t endsPerLeaf = 16;

bool isFinite(const Point& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

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

} // namespace

RunEndTree::RunEndTree(const std::vector<Run>& runs) {
    if (runs.size() > maximumRuns) {
        throw std::bad_alloc();
    }
    m_ends.reserve(2 * runs.size());
    for (std::size_t run = 0; run < runs.size(); ++run) {
        m_ends.push_back({runs[run].first(), static_cast<RunNumber>(run), 0});
        m_ends.push_back({runs[run].last(), static_cast<RunNumber>(run), 1});
    }
    const auto unsearchable = std::partition(m_ends.begin(), m_ends.end(),
                                             [](const End& end) { return isFinite(end.point); });
    m_searchable = static_cast<std::size_t>(unsearchable - m_ends.begin());

    std::size_t leaves = 1;
    while (leaves * endsPerLeaf < m_searchable) {
        leaves *= 2;
    }
    m_nodes.resize(2 * leaves - 1);
    build(0, 0, leaves * endsPerLeaf);

    m_places.resize(m_ends.size());
    for (std::size_t place = 0; place < m_ends.size(); ++place) {
        const End& end = m_ends[place];
        m_places[2 * std::size_t{end.run} + end.side] = static_cast<std::uint32_t>(place);
    }
}

/// Puts the ends at the places [begin, begin + width) in order below `node`, as far as there are
/// any, and fills the node.
void RunEndTree::build(std::size_t node, std::size_t begin, std::size_t width) {
    const std::size_t end = std::min(begin + width, m_searchable);
    if (begin >= end) {
        return;
    }
    Node& box = m_nodes[node];
    box.low = box.high = m_ends[begin].point;
    box.lowest = m_ends[begin].run;
    for (std::size_t place = begin + 1; place < end; ++place) {
        box.low = lowerCorner(box.low, m_ends[place].point);
        box.high = upperCorner(box.high, m_ends[place].point);
        box.lowest = std::min(box.lowest, m_ends[place].run);
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
        const auto at = [this](std::size_t place) {
            return m_ends.begin() + static_cast<std::ptrdiff_t>(place);
        };
        std::nth_element(at(begin), at(begin + half), at(end), [axis](const End& a, const End& b) {
            return a.point.*axis < b.point.*axis;
        });
    }
    build(2 * node + 1, begin, half);
    build(2 * node + 2, begin + half, half);
}

/// One search: the point, and the lowest run found so far.
struct RunEndTree::Search {
    const RunEndTree& tree;
    const Point& point;
    RunNumber best = none;

    bool isOutOfReach(const Node& node) const {
        return !meet(point, {nearest(point.x, node.low.x, node.high.x),
                             nearest(point.y, node.low.y, node.high.y),
                             nearest(point.z, node.low.z, node.high.z)});
    }

    bool isInReach(const Node& node) const {
        return meet(point, {farthest(point.x, node.low.x, node.high.x),
                            farthest(point.y, node.low.y, node.high.y),
                            farthest(point.z, node.low.z, node.high.z)});
    }

    void visit(std::size_t index) {
        const Node& node = tree.m_nodes[index];
        if (node.lowest >= best || isOutOfReach(node)) {
            return;
        }
        if (isInReach(node)) {
            best = node.lowest;
        } else if (index >= tree.leafNode(0)) {
            visitLeaf(index - tree.leafNode(0));
        } else {
            visit(2 * index + 1);
            visit(2 * index + 2);
        }
    }

    void visitLeaf(std::size_t leaf) {
        const std::size_t begin = leaf * endsPerLeaf;
        const std::size_t end = std::min(begin + endsPerLeaf, tree.m_searchable);
        for (std::size_t place = begin; place < end; ++place) {
            const End& candidate = tree.m_ends[place];
            if (candidate.run < best && meet(point, candidate.point)) {
                best = candidate.run;
            }
        }
    }
};

RunEndTree::RunNumber RunEndTree::lowestRunAt(const Point& point) const {
    Search search{*this, point};
    if (isFinite(point)) {
        search.visit(0);
    }
    return search.best;
}

void RunEndTree::remove(RunNumber run) {
    removeAt(m_places[2 * std::size_t{run}]);
    removeAt(m_places[2 * std::size_t{run} + 1]);
}

void RunEndTree::removeAt(std::size_t place) {
    m_ends[place].run = none;
    if (place < m_searchable) {
        updateLeaf(place / endsPerLeaf);
    }
}

/// Finds the lowest run below a leaf anew, and below the nodes above it as far as it changes.
void RunEndTree::updateLeaf(std::size_t leaf) {
    const std::size_t begin = leaf * endsPerLeaf;
    const std::size_t end = std::min(begin + endsPerLeaf, m_searchable);
    RunNumber lowest = none;
    for (std::size_t place = begin; place < end; ++place) {
        lowest = std::min(lowest, m_ends[place].run);
    }
    std::size_t node = leafNode(leaf);
    while (m_nodes[node].lowest != lowest) {
        m_nodes[node].lowest = lowest;
        if (node == 0) {
            return;
        }
        const std::size_t parent = (node - 1) / 2;
        lowest = std::min(m_nodes[2 * parent + 1].lowest, m_nodes[2 * parent + 2].lowest);
        node = parent;
    }
}

} // namespace dxfeditor
