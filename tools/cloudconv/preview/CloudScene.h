#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/CloudView.h"
#include "tools/cloudconv/preview/Plane.h"
#include "tools/cloudconv/preview/PlotScale.h"
#include "tools/cloudconv/preview/PreviewScan.h"

#include <array>
#include <cstddef>

/// A cloud seen from one side: what is nearest to the eye hides the rest.
class CloudScene {
public:
    /// @param scan  has to outlive the scene
    CloudScene(const PreviewScan& scan, CloudView view, CloudColour colour);

    /// Of the points that have a place, in the picture.
    const Bounds& bounds() const { return m_bounds; }
    /// The same in space: x, y and z. Bounds and sides are in the coordinates of the file.
    const std::array<Interval, 3>& sides() const { return m_sides; }
    /// Of what the colours show; empty when all of it is nan or infinite, and for colours of the
    /// file.
    const Interval& values() const { return m_values; }
    CloudColour colour() const { return m_colour; }
    const CloudProjection& projection() const { return m_projection; }
    std::size_t pointsWithoutPlace() const { return m_withoutPlace; }

    /// What one sees.
    ///
    /// @param fineness  cells of the image along a pixel
    Image view(const PlotScale& scale, unsigned fineness) const;

private:
    double valueOf(const pcl::PointXYZI& point) const;
    double dotSize(const PlotScale& scale) const;
    std::uint32_t cellOf(std::size_t index) const;

    Place placeOf(const pcl::PointXYZI& point) const;

    const PreviewScan& m_scan;
    CloudProjection m_projection;
    CloudColour m_colour;
    Bounds m_bounds;
    std::array<Interval, 3> m_sides;
    Interval m_values;
    std::size_t m_withoutPlace = 0;
};
