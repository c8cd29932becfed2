#pragma once

#include <opencv2/core/types.hpp>

namespace base {

/// A point in space; runs lie along the plane of x and z.
using Point = cv::Point3_<double>;

/// How close two ends of runs have to be to be one point, and what follows from it.
class JoinDistance {
public:
    /// @param distance  greater than 0; ends closer than this are one point
    constexpr explicit JoinDistance(double distance)
        : m_squared(distance * distance), m_reach(1.1 * distance),
          m_rowsPerUnit(rowsPerUnitOf(distance)) {}

    /// Whether two ends are one point. Never when a coordinate is infinite or not a number.
    bool meet(const Point& a, const Point& b) const {
        const double dx = a.x - b.x;
        const double dy = a.y - b.y;
        const double dz = a.z - b.z;
        return dx * dx + dy * dy + dz * dz < m_squared;
    }

    /// The distance, squared.
    constexpr double squared() const { return m_squared; }

    /// A little more than the distance, so that rounding does not matter to a search.
    constexpr double reach() const { return m_reach; }

    /// The rows of a grid (see Row) to a unit of length: a power of two, so that whole numbers are
    /// far from the sides of their row where there are rows between them.
    constexpr double rowsPerUnit() const { return m_rowsPerUnit; }

private:
    /// The greatest power of two that makes rows of fifteen times the distance or more.
    static constexpr double rowsPerUnitOf(double distance) {
        constexpr double most = 0x1p500;
        const double rows = 1 / (15 * distance);
        double power = 1.0;
        while (2 * power <= rows && power < most) {
            power *= 2;
        }
        while (power > rows && power > 1 / most) {
            power /= 2;
        }
        return power;
    }

    double m_squared;
    double m_reach;
    double m_rowsPerUnit;
};

} // namespace base
