#include "converters/detail/drawing/geometry/Angle.h"

#include <cmath>

namespace converters::drawing {

Angle Angle::fromDegrees(double degrees) {
    if (!std::isfinite(degrees)) {
        degrees = 0;
    }
    // Exact, as is the remainder of whole quarters.
    const double reduced = std::fmod(degrees, 360.0);
    const double radians = reduced / 180 * pi;
    if (std::fmod(reduced, 90.0) != 0) {
        return {radians, std::cos(radians), std::sin(radians)};
    }
    constexpr double cosines[] = {1, 0, -1, 0};
    constexpr double sines[] = {0, 1, 0, -1};
    const int quarters = static_cast<int>(reduced / 90);
    const int quarter = (quarters + 4) % 4;
    return {radians, cosines[quarter], sines[quarter]};
}

Angle Angle::fromRadians(double radians) {
    if (!std::isfinite(radians)) {
        radians = 0;
    }
    return {radians, std::cos(radians), std::sin(radians)};
}

} // namespace converters::drawing
