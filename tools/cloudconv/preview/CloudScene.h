#pragma once

#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/Plane.h"
#include "tools/cloudconv/preview/PlotScale.h"

#include <cstddef>

/// A cloud seen from above: (x, y) is the place, what has the greatest z hides the rest. Coloured
/// by the intensity or, where the file has none, by z.
class CloudScene {
public:
    /// @param contents  has to outlive the scene
    explicit CloudScene(const PlyContents& contents);

    /// Of the points that have a place.
    const Bounds& bounds() const { return m_bounds; }
    /// Of what the colours show; empty when all of it is nan or infinite.
    const Interval& values() const { return m_values; }
    bool isColouredByHeight() const { return !m_contents.hasIntensity; }
    std::size_t pointsWithoutPlace() const { return m_withoutPlace; }

    /// The view from above.
    ///
    /// @param fineness  cells of the image along a pixel
    Image view(const PlotScale& scale, unsigned fineness) const;

private:
    double valueOf(const pcl::PointXYZI& point) const;
    double dotSize(const PlotScale& scale) const;
    std::uint32_t cellOf(const pcl::PointXYZI& point) const;

    const PlyContents& m_contents;
    Bounds m_bounds;
    Interval m_values;
    std::size_t m_withoutPlace = 0;
};
