#pragma once

#include "converters/detail/drawing/contours/ContourOrder.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <cmath>
#include <vector>

namespace converters::drawing {

/// A place of the drawing in whole multiples of a small unit, of up to 2^44.
///
/// Coordinates that differ in their last bits, as those of two processors do, are the same place;
/// so are all ways between them, and what is equally far away is so on both.
using Place = cv::Point3_<double>;

/// Rounds the points of contours to places.
class PlaceRounding {
public:
    /// The unit is a power of two, about 2^-36 of the contours' extent.
    explicit PlaceRounding(const std::vector<ContourShape>& contours);

    /// What is no number counts as 0, what is infinite as the limit.
    Place operator()(const Point& point) const {
        return {rounded(point.x), rounded(point.y), rounded(point.z)};
    }

    /// The place in the plane of x and y: z is 0.
    Place inPlane(const Point& point) const { return {rounded(point.x), rounded(point.y), 0}; }

private:
    double rounded(double coordinate) const {
        const double units = coordinate * m_perUnit;
        // Also false for what is no number.
        if (!(std::fabs(units) < farthest)) {
            return std::isnan(units) ? 0 : std::copysign(farthest, units);
        }
        // The sum has no digits behind the point: it is rounded, and the difference is exact.
        constexpr double noFraction = 0x1.8p52;
        return (units + noFraction) - noFraction;
    }

    /// The limit of places.
    static constexpr double farthest = 0x1p44;

    double m_perUnit = 1;
};

/// The way between two places, squared and plain.
inline double squareBetween(const Place& a, const Place& b) {
    const Place way = b - a;
    return way.dot(way);
}
inline double wayBetween(const Place& a, const Place& b) {
    return std::sqrt(squareBetween(a, b));
}

} // namespace converters::drawing
