#pragma once

#include "base/stitching/JoinDistance.h"
#include "dxfeditor/WalkNumbers.h"

/// What pairs, triples and numbers of doubles mean while a drawing is walked: a type for each
/// space, so that a point of one cannot be taken for a point of another.
namespace dxfeditor {

/// A point of the drawing plane, in drawing units.
struct PlanePoint {
    double x;
    double y;
};

/// A point of the drawing plane with its weight: (x / w, y / w).
struct HomogeneousPoint {
    double x;
    double y;
    double w;
};

/// An angle in the drawing plane, counter-clockwise from the direction of x.
class Angle {
public:
    static constexpr Angle inDegrees(double degrees) { return Angle(degrees * radiansPerDegree); }
    static constexpr Angle inRadians(double radians) { return Angle(radians); }

    constexpr double radians() const { return m_radians; }

private:
    constexpr explicit Angle(double radians) : m_radians(radians) {}

    double m_radians;
};

/// A point of the cloud, in drawing units.
using CloudPoint = base::Point;

/// The only way from the drawing plane into the cloud, in which it is the plane of x and z.
inline CloudPoint inCloud(const PlanePoint& point) {
    return {point.x, 0.0, point.y};
}

} // namespace dxfeditor
