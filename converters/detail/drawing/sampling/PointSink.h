#pragma once

#include "converters/detail/drawing/geometry/Vector.h"

#include <cstddef>
#include <vector>

namespace converters::drawing {

/// Takes the points that a curve becomes, one after the other: counts them, and keeps them where
/// they are asked for.
class PointSink {
public:
    /// @param points  where to append them; null to count only
    PointSink(std::size_t maximum, std::vector<Point>* points)
        : m_points(points), m_maximum(maximum) {}

    /// Takes the point that `make()` gives.
    ///
    /// @return false where it is one too many
    template <typename Make>
    bool take(const Make& make) {
        if (m_number == m_maximum) {
            return false;
        }
        ++m_number;
        if (m_points != nullptr) {
            m_points->push_back(make());
        }
        return true;
    }

    /// Takes so many points: those of pointOf(1), pointOf(2), ...
    ///
    /// @return false, and takes none, where they are too many
    template <typename PointOf>
    bool takeAll(std::size_t number, const PointOf& pointOf) {
        if (number > m_maximum - m_number) {
            return false;
        }
        m_number += number;
        if (m_points != nullptr) {
            const std::size_t first = m_points->size();
            m_points->resize(first + number);
            Point* const points = m_points->data() + first;
            for (std::size_t i = 0; i < number; ++i) {
                points[i] = pointOf(i + 1);
            }
        }
        return true;
    }

    std::size_t number() const { return m_number; }

private:
    std::vector<Point>* m_points;
    std::size_t m_maximum;
    std::size_t m_number = 0;
};

} // namespace converters::drawing
