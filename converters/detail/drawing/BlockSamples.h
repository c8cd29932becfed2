#pragma once

#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/JoinedDrawing.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace converters::drawing {

/// The points of ellipses and splines that blocks draw in many places: turned, mirrored, moved, and
/// equally large, a curve has the same points, in the coordinates of its block.
class BlockSamples {
public:
    /// @param joined  has to outlive this object
    /// @param limits  where the curves are drawn
    BlockSamples(const JoinedDrawing& joined, const SamplingLimits& limits)
        : m_joined(joined), m_limits(limits) {}

    /// Those of a curve, behind its start, in the coordinates of its block.
    struct Samples {
        std::vector<Point> points;
        /// Of the curve where it is drawn.
        double length = 0;

        /// How large the block is drawn that they are for.
        double scale = 0;
        /// Whether all have one height.
        bool isFlat = false;
    };

    /// @param link  that a curve is of; null for what is of no entity
    /// @return null for most curves: those of the drawing itself, of other kinds of entity, and
    ///         where the block is stretched or drawn in another size than the first time. Valid
    ///         until the next call
    const Samples* find(const ChainLink* link);

private:
    const Samples* find(std::uint32_t entity, const Affine& map);
    void sample(std::uint32_t entity, Samples& samples);

    const JoinedDrawing& m_joined;
    const SamplingLimits m_limits;
    /// By entity; without points where there are none to keep.
    std::unordered_map<std::uint32_t, Samples> m_kept;
    std::size_t m_points = 0;
};

} // namespace converters::drawing
