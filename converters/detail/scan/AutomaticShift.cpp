#include "converters/detail/scan/AutomaticShift.h"

#include <algorithm>
#include <cmath>

namespace converters::scan {
namespace {

using Point = cv::Point3_<double>;

/// From here on, a float is more than a ten-thousandth wrong; 0 when it never is.
double limitOf(ScalarType type) {
    switch (type) {
    case ScalarType::float64:
        return 2048;
    case ScalarType::int32:
    case ScalarType::uint32:
    case ScalarType::int64:
    case ScalarType::uint64:
        return 16777216;
    default:
        return 0;
    }
}

double shiftOf(std::vector<Point>& points, double Point::*axis, ScalarType type) {
    const double limit = limitOf(type);
    const bool isNeeded =
        limit != 0 && std::any_of(points.begin(), points.end(), [&](const Point& point) {
            return std::abs(point.*axis) >= limit;
        });
    if (!isNeeded) {
        return 0;
    }
    const auto middle = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
    std::nth_element(points.begin(), middle, points.end(),
                     [=](const Point& a, const Point& b) { return a.*axis < b.*axis; });
    constexpr double step = 100;
    // Without the sign of a zero.
    return std::round((*middle).*axis / step) * step + 0.0;
}

} // namespace

Point automaticShift(std::vector<Point>& points, const std::array<ScalarType, 3>& types) {
    const auto hasNoPlace = [](const Point& point) {
        return !std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z);
    };
    points.erase(std::remove_if(points.begin(), points.end(), hasNoPlace), points.end());
    return {shiftOf(points, &Point::x, types[0]), shiftOf(points, &Point::y, types[1]),
            shiftOf(points, &Point::z, types[2])};
}

} // namespace converters::scan
