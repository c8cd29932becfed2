#pragma once

#include "tools/cloudconv/preview/Plane.h"

#include <cstdint>
#include <unordered_set>

/// Picks places that are not too many: of those in one cell of a grid, the first.
class SparsePlaces {
public:
    /// @param cell  the side of a cell, in pixels
    explicit SparsePlaces(double cell) : m_cell(cell) {}

    /// Whether a place of the picture is the first one in its cell.
    bool take(const Place& place) {
        const auto number = [&](double pixel) {
            return static_cast<std::uint64_t>(
                static_cast<std::int64_t>(std::floor(pixel / m_cell)));
        };
        return m_taken.insert(number(place.x) << 32 | (number(place.y) & 0xFFFFFFFFU)).second;
    }

private:
    double m_cell;
    std::unordered_set<std::uint64_t> m_taken;
};
