// Each stop waits in a queue until nothing near it makes the tour shorter. For the way out of a
// stop p, and a place q nearer than where it leads now, two changes make q the next place:
//
//   2-opt    p [a ... m] n   ->   p [m ... a] n         where q is the exit of m
//   Or-opt   p a ... [m ..] n   ->   p [m ..] a ... n   where q is an end of a block of 1 to 3
//   stops
//
// The way into a stop is treated as the way out of it on the tour walked backwards. A change is
// made when the ways that it adds are shorter than those that it takes away by more than rounding,
// so that changes come to an end; a limit on work ends them earlier in contrived drawings.

#include "converters/detail/drawing/contours/TourImprovement.h"

#include "converters/detail/drawing/contours/PlaceTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace converters::drawing {

namespace {

constexpr std::size_t neighboursOfPlace = 7;
constexpr std::size_t mostNodes = 300;
/// No stretch longer than this is turned or moved over: long ones cost much and gain little.
constexpr std::size_t longestStretch = 100'000;
constexpr std::size_t largestBlock = 3;
constexpr std::uint64_t looksPerStop = 3000;
/// What is shorter by less is not shorter, in parts of the ways.
constexpr double rounding = 1e-9;

class Improvement {
public:
    Improvement(TourStops& tour, OrderCost& cost, double begin)
        : m_tour(tour), m_cost(cost), m_begin(begin), m_middle((begin + 1) / 2) {
        m_limit = cost.looks + looksPerStop * tour.size();
        findNeighbours();
    }

    void run() {
        std::vector<Stop> queue;
        m_waits.assign(m_tour.size(), 1);
        for (std::size_t i = m_tour.size(); i-- > 0;) {
            queue.push_back(m_tour.at(i));
        }
        // Stops that wait again are taken first, so that the shortest queue so far tells how many
        // have had their turn.
        std::size_t shortest = queue.size();
        while (!queue.empty() && m_cost.looks < m_limit) {
            const Stop stop = queue.back();
            queue.pop_back();
            if (queue.size() < shortest) {
                shortest = queue.size();
                m_cost.report(m_middle, 1, m_tour.size() - shortest, m_tour.size());
            }
            m_waits[stop] = 0;
            while (m_cost.looks < m_limit && improveAt(stop)) {
                for (const Stop changed : m_changed) {
                    if (m_waits[changed] == 0) {
                        m_waits[changed] = 1;
                        queue.push_back(changed);
                    }
                }
            }
        }
    }

private:
    using Stop = TourStops::Stop;

    struct Neighbour {
        Stop stop;
        std::uint8_t end;
    };

    void findNeighbours() {
        const std::size_t stops = m_tour.size();
        std::vector<PlaceTree::Entry> entries;
        entries.reserve(2 * stops);
        for (Stop stop = 0; stop < stops; ++stop) {
            entries.push_back({m_tour.stop(stop).ends[0], stop, 0});
            if (m_tour.stop(stop).ends[1] != m_tour.stop(stop).ends[0]) {
                entries.push_back({m_tour.stop(stop).ends[1], stop, 1});
            }
        }
        const PlaceTree tree(std::move(entries), stops, m_cost);
        m_firstNeighbour.push_back(0);
        std::vector<PlaceTree::Entry> found;
        for (Stop stop = 0; stop < stops; ++stop) {
            m_cost.report(m_begin, m_middle, stop, stops);
            for (const Place& end : m_tour.stop(stop).ends) {
                found.clear();
                tree.nearestTo(end, stop, neighboursOfPlace, mostNodes, found);
                for (const PlaceTree::Entry& entry : found) {
                    m_neighbours.push_back({entry.owner, static_cast<std::uint8_t>(entry.mark)});
                }
                m_firstNeighbour.push_back(m_neighbours.size());
            }
        }
    }

    /// Whether something near this stop made the tour shorter.
    bool improveAt(Stop stop) {
        for (std::uint8_t end = 0; end < 2; ++end) {
            const std::size_t position = m_tour.positionOf(stop);
            const bool isExit = (end == 1) != m_tour.isTurned(position);
            const std::size_t list = 2 * std::size_t{stop} + end;
            for (std::size_t i = m_firstNeighbour[list]; i < m_firstNeighbour[list + 1]; ++i) {
                ++m_cost.looks;
                const Neighbour& neighbour = m_neighbours[i];
                const Place& place = m_tour.stop(neighbour.stop).ends[neighbour.end];
                const double way = wayBetween(m_tour.stop(stop).ends[end], place);
                const double present = isExit ? m_tour.wayTo(position + 1) : m_tour.wayTo(position);
                if (way >= present) {
                    break;
                }
                if (connect(position, isExit, neighbour, way)) {
                    return true;
                }
            }
        }
        return false;
    }

    /// Makes the way from an end of the stop at a position lead to that of a neighbour, if that is
    /// worth it.
    bool connect(std::size_t position, bool isExit, const Neighbour& neighbour, double way) {
        const std::size_t other = m_tour.positionOf(neighbour.stop);
        const TourStop& stop = m_tour.stopAt(other);
        // The one place of a closed contour is both.
        const bool both = stop.ends[0] == stop.ends[1];
        const bool exits = (neighbour.end == 1) != m_tour.isTurned(other);
        if ((both || exits == isExit) &&
            (isExit ? turnBehind(position, other, way) : turnBefore(position, other, way))) {
            return true;
        }
        // A block begins with the neighbour as it lies, or ends with it and is turned.
        const bool forwards = !exits;
        return moveBlocks(position, isExit, other, forwards, way) ||
               (both && moveBlocks(position, isExit, other, !forwards, way));
    }

    bool isWorthwhile(double removed, double added) const {
        return removed - added > rounding * removed;
    }

    void change(std::initializer_list<std::size_t> positions) {
        m_changed.clear();
        for (const std::size_t position : positions) {
            if (position < m_tour.size()) {
                m_changed.push_back(m_tour.at(position));
            }
        }
    }

    /// 2-opt: exit of `position` to exit of `other`.
    bool turnBehind(std::size_t position, std::size_t other, double way) {
        const std::size_t low = std::min(position, other) + 1;
        const std::size_t high = std::max(position, other) + 1;
        const double removed = m_tour.wayTo(low) + m_tour.wayTo(high);
        const double added =
            way + (high < m_tour.size() ? m_tour.wayTo(high, m_tour.entryOf(low)) : 0);
        return turnIf(isWorthwhile(removed, added), low, high);
    }

    /// 2-opt: entry of `position` to entry of `other`.
    bool turnBefore(std::size_t position, std::size_t other, double way) {
        const std::size_t low = std::min(position, other);
        const std::size_t high = std::max(position, other);
        const double removed = m_tour.wayTo(low) + m_tour.wayTo(high);
        const double added = way + m_tour.wayFromBefore(low, m_tour.exitBefore(high));
        return turnIf(isWorthwhile(removed, added), low, high);
    }

    bool turnIf(bool worthwhile, std::size_t low, std::size_t high) {
        if (!worthwhile || high - low > longestStretch) {
            return false;
        }
        m_tour.turn(low, high);
        m_cost.looks += high - low;
        change({low - 1, low, high - 1, high});
        return true;
    }

    /// Or-opt: moves a block of stops between `position` and the next one, or the one before.
    ///
    /// @param forwards  whether the block begins at `other`, and not ends there
    bool moveBlocks(std::size_t position, bool isExit, std::size_t other, bool forwards,
                    double way) {
        for (std::size_t size = 1; size <= largestBlock; ++size) {
            if (!forwards && other + 1 < size) {
                break;
            }
            const std::size_t begin = forwards ? other : other + 1 - size;
            const std::size_t end = begin + size;
            // The way that it is to be put into, by the position that leads to.
            const std::size_t gap = isExit ? position + 1 : position;
            if (end > m_tour.size() || (begin <= gap && gap <= end)) {
                break;
            }
            // The end that the neighbour is of comes first behind an exit, last before an entry.
            const Place& far = forwards ? m_tour.exitOf(end - 1) : m_tour.entryOf(begin);
            const double closed =
                end < m_tour.size() ? m_tour.wayFromBefore(begin, m_tour.entryOf(end)) : 0;
            const double removed = m_tour.wayTo(gap) + m_tour.wayTo(begin) + m_tour.wayTo(end);
            const double toFar = isExit ? m_tour.wayTo(gap, far) : m_tour.wayFromBefore(gap, far);
            ++m_cost.looks;
            if (isWorthwhile(removed, way + toFar + closed) &&
                move(begin, end, gap, forwards != isExit)) {
                return true;
            }
        }
        return false;
    }

    bool move(std::size_t begin, std::size_t end, std::size_t gap, bool turned) {
        const std::size_t low = std::min(begin, gap);
        const std::size_t high = std::max(end, gap);
        if (high - low > longestStretch) {
            return false;
        }
        if (turned) {
            m_tour.turn(begin, end);
        }
        const std::size_t size = end - begin;
        const std::size_t to = gap < begin ? gap : gap - size;
        m_tour.exchange(low, gap < begin ? begin : end, high);
        m_cost.looks += high - low;
        change({to - 1, to, to + size - 1, to + size, low - 1, low, high - 1, high});
        return true;
    }

    TourStops& m_tour;
    OrderCost& m_cost;
    /// The parts of the work that are done before, and when the neighbours are known.
    double m_begin;
    double m_middle;
    std::uint64_t m_limit = 0;
    std::vector<std::size_t> m_firstNeighbour;
    std::vector<Neighbour> m_neighbours;
    std::vector<std::uint8_t> m_waits;
    std::vector<Stop> m_changed;
};

} // namespace

void improve(TourStops& tour, OrderCost& cost, double begin) {
    if (tour.size() > 2) {
        Improvement(tour, cost, begin).run();
    }
}

} // namespace converters::drawing
