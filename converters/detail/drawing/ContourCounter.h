#pragma once

#include "converters/detail/drawing/BlockSamples.h"
#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/PathSizes.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <cstddef>

namespace converters::drawing {

/// Counts what contours will take.
class ContourCounter {
public:
    /// @param limits      how finely curves are sampled
    /// @param mostPoints  more are refused
    /// @param written     is counted as well
    ContourCounter(const SamplingLimits& limits, std::size_t mostPoints, BlockSamples& samples,
                   const PathSizes& written)
        : m_limits(limits), m_mostPoints(mostPoints), m_samples(samples), m_sizes(written) {}

    /// What a ContourWalk tells.
    void begin(const Point& start);
    void entity(const Entity& entity, const Placement& placement);
    void curve(const Curve& curve, const ChainLink* link);
    void end(bool closed, const Point& start);

    const PathSizes& sizes() const { return m_sizes; }

private:
    void addPoints(std::size_t number);

    const SamplingLimits& m_limits;
    std::size_t m_mostPoints;
    BlockSamples& m_samples;
    PathSizes m_sizes;
    std::size_t m_piecesOfContour = 0;
};

} // namespace converters::drawing
