#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/BlockSamples.h"
#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/JoinedDrawing.h"
#include "converters/detail/drawing/PathBounds.h"
#include "converters/detail/drawing/PathSizes.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <cstddef>
#include <cstdint>

namespace converters::drawing {

/// Writes contours.
class ContourWriter {
public:
    /// @param mostPoints  how many points there is room for
    /// @param written     gets the contours
    /// @param bounds      gets their points
    ContourWriter(const JoinedDrawing& joined, const SamplingLimits& limits, std::size_t mostPoints,
                  BlockSamples& samples, PathContours& written, PathBounds& bounds);

    /// What a ContourWalk tells.
    void begin(const Point& start);
    void entity(const Entity& entity, const Placement& placement);
    void curve(Curve&& curve, const ChainLink* link);
    void end(bool closed, const Point& start);

    /// Whether there was no room for a curve. What came since is to be taken back.
    bool isFull() const { return m_isFull; }

    /// What was written before.
    struct Mark {
        PathSizes sizes;
        PathContour contour;
    };

    Mark mark() const { return {sizesOf(m_written), m_contour}; }
    void takeBackTo(const Mark& mark);

    /// There is room for so many points now.
    void goOn(std::size_t mostPoints) {
        m_limits.maximumPoints = mostPoints;
        m_isFull = false;
    }

private:
    std::uint32_t keep(Curve&& curve, PathCurveKind& kind);

    bool append(const Curve& curve);
    bool append(const BlockSamples::Samples& samples, const Affine& map, const Point& end);

    void extendBounds();

    const JoinedDrawing& m_joined;
    /// For all points together.
    SamplingLimits m_limits;
    BlockSamples& m_samples;
    PathContours& m_written;
    PathBounds& m_bounds;
    PathContour m_contour{};
    bool m_isFull = false;
};

} // namespace converters::drawing
