#include "converters/check/PlaceNumbers.h"

#include <cmath>
#include <functional>

namespace converters {

namespace {

constexpr std::uint32_t none = UINT32_MAX;

/// Cells of so many distances: most places are far from the borders of theirs.
constexpr double cellSize = 8.0;

double distanceBetween(const cv::Point3_<double>& a, const cv::Point3_<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

} // namespace

std::size_t PlaceNumbers::Hash::operator()(const Cell& cell) const {
    constexpr std::size_t factor = 1099511628211U;
    std::size_t hash = 0;
    for (const double coordinate : cell) {
        hash = (hash ^ std::hash<double>()(coordinate)) * factor;
    }
    return hash;
}

PlaceNumbers::Cell PlaceNumbers::cellOf(const cv::Point3_<double>& place) const {
    const double side = cellSize * m_distance;
    // No negative zeros, which are other cells to the hash.
    return {std::floor(place.x / side) + 0.0, std::floor(place.y / side) + 0.0,
            std::floor(place.z / side) + 0.0};
}

bool PlaceNumbers::find(const Cell& cell, const cv::Point3_<double>& place,
                        std::uint32_t& number) const {
    const auto last = m_last.find(cell);
    for (number = last == m_last.end() ? none : last->second; number != none;
         number = m_previous[number]) {
        if (distanceBetween(m_places[number], place) <= m_distance) {
            return true;
        }
    }
    return false;
}

std::uint32_t PlaceNumbers::of(const cv::Point3_<double>& place) {
    const cv::Point3_<double> room(m_distance, m_distance, m_distance);
    const Cell own = cellOf(place);
    const Cell low = cellOf(place - room);
    const Cell high = cellOf(place + room);
    std::uint32_t number = none;
    if (find(own, place, number)) {
        return number;
    }
    // Most places are in the midst of their cell, and this looks at it alone.
    for (unsigned corner = 0; corner < 8; ++corner) {
        Cell cell = low;
        bool isOther = true;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const bool wantsHigh = (corner >> axis & 1U) != 0;
            isOther = isOther && (!wantsHigh || high[axis] != low[axis]);
            cell[axis] = wantsHigh ? high[axis] : low[axis];
        }
        if (isOther && cell != own && find(cell, place, number)) {
            return number;
        }
    }
    number = static_cast<std::uint32_t>(m_places.size());
    m_places.push_back(place);
    const auto [known, isNew] = m_last.emplace(own, number);
    m_previous.push_back(isNew ? none : known->second);
    known->second = number;
    return number;
}

} // namespace converters
