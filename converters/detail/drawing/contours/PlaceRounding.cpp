#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace converters::drawing {

namespace {

struct Extent {
    double low = 0;
    double high = 0;
    bool empty = true;

    void take(double coordinate) {
        if (std::isfinite(coordinate)) {
            low = empty ? coordinate : std::min(low, coordinate);
            high = empty ? coordinate : std::max(high, coordinate);
            empty = false;
        }
    }
    double size() const { return std::min(high - low, std::numeric_limits<double>::max()); }
    double reach() const { return std::max(std::fabs(low), std::fabs(high)); }
};

} // namespace

PlaceRounding::PlaceRounding(const std::vector<ContourShape>& contours) {
    Extent extents[3];
    for (const ContourShape& contour : contours) {
        for (std::size_t i = 0; i < contour.size; ++i) {
            extents[0].take(contour.points[i].x);
            extents[1].take(contour.points[i].y);
            extents[2].take(contour.points[i].z);
        }
    }
    double size = 0;
    double reach = 0;
    for (const Extent& extent : extents) {
        size = std::max(size, extent.size());
        reach = std::max(reach, extent.reach());
    }
    // Far from the origin, the last bits are larger.
    int exponent = 0;
    std::frexp(std::max(size * 0x1p-36, reach * 0x1p-44), &exponent);
    // Neither the unit nor its reciprocal overflows.
    exponent = std::clamp(exponent, -1000, 1000);
    m_perUnit = std::ldexp(1.0, -exponent);
}

} // namespace converters::drawing
