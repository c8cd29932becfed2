#pragma once

#include "tools/cloudconv/preview/Plane.h"

#include <pcl/point_types.h>

#include <array>
#include <string>

/// From where a cloud is seen.
enum class CloudView { Top, Front, Side, Iso };

/// What a cloud's colours show.
enum class CloudColour { Intensity, Height, Rgb };

/// How a cloud lies in a picture: seen from far away, so that nothing gets smaller.
class CloudProjection {
public:
    explicit CloudProjection(CloudView view);

    /// Where a point is in the picture: to the right and up.
    Place placeOf(const pcl::PointXYZI& point) const {
        return {along(m_right, point), along(m_up, point)};
    }
    Place placeOf(const std::array<double, 3>& point) const;
    /// How far a point is towards the eye: what is nearer hides the rest.
    double nearness(const pcl::PointXYZI& point) const { return along(m_back, point); }

    /// The names of the picture's axes, "x" and "z"; empty for a view along none.
    const std::string& horizontalName() const { return m_horizontal; }
    const std::string& verticalName() const { return m_vertical; }
    /// "seen from above".
    const std::string& words() const { return m_words; }

private:
    using Direction = std::array<double, 3>;

    static double along(const Direction& direction, const pcl::PointXYZI& point) {
        return direction[0] * static_cast<double>(point.x) +
               direction[1] * static_cast<double>(point.y) +
               direction[2] * static_cast<double>(point.z);
    }

    Direction m_right;
    Direction m_up;
    Direction m_back;
    std::string m_horizontal;
    std::string m_vertical;
    std::string m_words;
};
