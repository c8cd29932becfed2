#pragma once

#include <opencv2/core/types.hpp>

#include <cmath>
#include <optional>

namespace converters::drawing {

/// A point of space, and a way from one to another: x, y, z in the drawing's units.
using Point = cv::Point3_<double>;
using Vector = cv::Point3_<double>;

/// The length of a way, also where squares overflow or vanish.
inline double lengthOf(const Vector& way) {
    const double plain = std::sqrt(way.dot(way));
    // Plain squares do for all but contrived lengths.
    if (plain > 1e-140 && plain < 1e140) {
        return plain;
    }
    // To std::hypot, (0, nan, 0) is 0 long.
    return std::isnan(plain) ? plain : std::hypot(way.x, way.y, way.z);
}

inline double distance(const Point& a, const Point& b) {
    return lengthOf(b - a);
}

inline bool isFinite(const Vector& way) {
    return std::isfinite(way.x) && std::isfinite(way.y) && std::isfinite(way.z);
}

/// The unit vector of this direction.
///
/// @return none for 0 and for what is not finite
inline std::optional<Vector> directionOf(const Vector& way) {
    const double most = std::fmax(std::fmax(std::fabs(way.x), std::fabs(way.y)), std::fabs(way.z));
    if (!isFinite(way) || most == 0) {
        return std::nullopt;
    }
    // Neither overflows nor vanishes then.
    const Vector scaled(way.x / most, way.y / most, way.z / most);
    return scaled * (1 / std::sqrt(scaled.dot(scaled)));
}

/// The point between two, at `part` of the way from `a` to `b`; exactly `a` for 0 and `b` for 1.
inline Point between(const Point& a, const Point& b, double part) {
    return (1 - part) * a + part * b;
}

} // namespace converters::drawing
