#pragma once

#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace converters::drawing {

/// A contour on a tour. Entered at ends[0] and left at ends[1], or the other way when it is turned;
/// both are one place for closed contours.
struct TourStop {
    Place ends[2];
    /// Index into the members of the tour.
    std::uint32_t member;
    /// Of closed contours, the index of the point that is `ends`.
    std::uint32_t firstPoint;
    /// Of open contours, whether ends[0] is the contour's last point.
    bool reversed;
};

/// The stops of a tour in their order, which can be changed.
class TourStops {
public:
    using Stop = std::uint32_t;

    /// A tour in the order of `stops`.
    ///
    /// @param start  where the way to the first stop begins; null when that way does not count
    TourStops(std::vector<TourStop> stops, const Place* start) : m_stops(std::move(stops)) {
        if (start != nullptr) {
            m_start = *start;
            m_hasStart = true;
        }
        for (Stop stop = 0; stop < m_stops.size(); ++stop) {
            m_order.push_back(stop);
            m_positionOf.push_back(stop);
            m_turned.push_back(0);
        }
    }

    std::size_t size() const { return m_order.size(); }
    const TourStop& stopAt(std::size_t position) const { return m_stops[m_order[position]]; }
    TourStop& stopAt(std::size_t position) { return m_stops[m_order[position]]; }
    const TourStop& stop(Stop stop) const { return m_stops[stop]; }
    Stop at(std::size_t position) const { return m_order[position]; }
    std::size_t positionOf(Stop stop) const { return m_positionOf[stop]; }
    bool isTurned(std::size_t position) const { return m_turned[m_order[position]] != 0; }

    const Place& entryOf(std::size_t position) const {
        return stopAt(position).ends[isTurned(position) ? 1 : 0];
    }
    const Place& exitOf(std::size_t position) const {
        return stopAt(position).ends[isTurned(position) ? 0 : 1];
    }

    /// Whether there is a way to this position: to the first one only from a start.
    bool hasWayTo(std::size_t position) const {
        return position < size() && (position > 0 || m_hasStart);
    }
    /// Where the way to this position begins.
    const Place& exitBefore(std::size_t position) const {
        return position > 0 ? exitOf(position - 1) : m_start;
    }
    /// The way to this position from the one before; 0 where none is.
    double wayTo(std::size_t position) const {
        return hasWayTo(position) ? wayBetween(exitBefore(position), entryOf(position)) : 0;
    }
    /// The way to this position, were it from there.
    double wayTo(std::size_t position, const Place& from) const {
        return position < size() ? wayBetween(from, entryOf(position)) : 0;
    }
    /// The way from the exit before this position to there.
    double wayFromBefore(std::size_t position, const Place& to) const {
        return position > 0 || m_hasStart ? wayBetween(exitBefore(position), to) : 0;
    }

    /// Walks the positions [begin, end) the other way.
    void turn(std::size_t begin, std::size_t end) {
        std::reverse(iteratorAt(begin), iteratorAt(end));
        for (std::size_t i = begin; i < end; ++i) {
            m_turned[m_order[i]] ^= 1;
            m_positionOf[m_order[i]] = static_cast<std::uint32_t>(i);
        }
    }

    /// Exchanges the positions [begin, middle) and [middle, end).
    void exchange(std::size_t begin, std::size_t middle, std::size_t end) {
        std::rotate(iteratorAt(begin), iteratorAt(middle), iteratorAt(end));
        for (std::size_t i = begin; i < end; ++i) {
            m_positionOf[m_order[i]] = static_cast<std::uint32_t>(i);
        }
    }

private:
    std::vector<Stop>::iterator iteratorAt(std::size_t position) {
        return m_order.begin() + static_cast<std::ptrdiff_t>(position);
    }

    std::vector<TourStop> m_stops;
    std::vector<Stop> m_order;
    std::vector<std::uint32_t> m_positionOf;
    std::vector<std::uint8_t> m_turned;
    Place m_start{0, 0, 0};
    bool m_hasStart = false;
};

} // namespace converters::drawing
