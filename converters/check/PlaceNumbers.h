#pragma once

#include <opencv2/core/types.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace converters {

/// Numbers places, so that places within a distance of each other have the same number.
class PlaceNumbers {
public:
    /// @param distance  above 0
    explicit PlaceNumbers(double distance) : m_distance(distance) {}

    /// The number of a place: that of a known one within the distance, else a new one. Finite.
    std::uint32_t of(const cv::Point3_<double>& place);

private:
    using Cell = std::array<double, 3>;
    struct Hash {
        std::size_t operator()(const Cell& cell) const;
    };
    Cell cellOf(const cv::Point3_<double>& place) const;
    bool find(const Cell& cell, const cv::Point3_<double>& place, std::uint32_t& number) const;

    double m_distance;
    std::vector<cv::Point3_<double>> m_places;
    /// The place that came last into each cell, and of each place the one that came before it.
    std::unordered_map<Cell, std::uint32_t, Hash> m_last;
    std::vector<std::uint32_t> m_previous;
};

} // namespace converters
