#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/BlockSamples.h"
#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <cstddef>
#include <cstdint>

namespace converters::drawing {

/// Counts what contours will take.
class ContourCounter {
public:
    /// @param limits      how finely curves are sampled
    /// @param mostPoints  more are refused
    /// @param written     is counted as well
    ContourCounter(const SamplingLimits& limits, std::size_t mostPoints, BlockSamples& samples,
                   const PathContours& written);

    /// What a ContourWalk tells.
    void begin(const Point& start);
    void entity(const Entity& entity, const Placement& placement);
    void curve(const Curve& curve, const ChainLink* link);
    void end(bool closed, const Point& start);

    std::uint64_t points() const { return m_points; }

    void reserveIn(PathContours& contours) const;

private:
    void addPoints(std::size_t number);

    const SamplingLimits& m_limits;
    std::size_t m_mostPoints;
    BlockSamples& m_samples;
    std::uint64_t m_points;
    std::size_t m_contours;
    std::size_t m_pieces;
    std::size_t m_entities;
    std::size_t m_arcs;
    std::size_t m_ellipticArcs;
    std::size_t m_splines;
    std::size_t m_piecesOfContour = 0;
};

} // namespace converters::drawing
