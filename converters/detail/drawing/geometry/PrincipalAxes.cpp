#include "converters/detail/drawing/geometry/PrincipalAxes.h"

#include "converters/detail/drawing/geometry/Angle.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

double largestPart(const Vector& way) {
    return std::max({std::fabs(way.x), std::fabs(way.y), std::fabs(way.z)});
}

} // namespace

// Turning the parameter by an angle p turns first and second into cos(p) first + sin(p) second and
// cos(p) second - sin(p) first. These are perpendicular for tan(2p) = 2 first.second / (first^2 -
// second^2), and the half turn of 2p that atan2 takes makes the first one the longer.
PrincipalAxes principalAxesOf(const EllipticArc& arc) {
    // Squares neither overflow nor vanish of vectors of about length 1.
    const double scale = std::max(largestPart(arc.first), largestPart(arc.second));
    if (!(scale > 0) || !std::isfinite(scale)) {
        return {arc.first, arc.second, 0};
    }
    const Vector first(arc.first.x / scale, arc.first.y / scale, arc.first.z / scale);
    const Vector second(arc.second.x / scale, arc.second.y / scale, arc.second.z / scale);
    const double mixed = first.dot(second);
    const double difference = first.dot(first) - second.dot(second);
    // What rounding leaves of perpendicular ones stays as it is.
    if (std::fabs(mixed) <= 1e-15) {
        return difference >= 0 ? PrincipalAxes{arc.first, arc.second, 0}
                               : PrincipalAxes{arc.second, -arc.first, pi / 2};
    }
    const double phase = 0.5 * std::atan2(2 * mixed, difference);
    const double cosine = std::cos(phase);
    const double sine = std::sin(phase);
    const Vector major = cosine * first + sine * second;
    Vector minor = cosine * second - sine * first;
    minor -= (minor.dot(major) / major.dot(major)) * major;
    return {scale * major, scale * minor, phase};
}

} // namespace converters::drawing
