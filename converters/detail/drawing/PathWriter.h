#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/BlockSamples.h"
#include "converters/detail/drawing/JoinedDrawing.h"
#include "converters/detail/drawing/PathBounds.h"
#include "converters/detail/drawing/PathSettings.h"
#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace converters::drawing {

/// Writes contours: their points, exact pieces and entities.
///
/// Where the ends of joined entities differ, the second one is left out when it is within the
/// tolerance; else a straight piece leads from one to the other.
class PathWriter {
public:
    static constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

    /// @param joined    what it refers to has to outlive this object
    /// @param settings  how finely curves are sampled
    PathWriter(const JoinedDrawing& joined, const PathSettings& settings)
        : m_joined(joined), m_limits(settings.limits), m_samples(m_joined, m_limits) {}

    PathWriter(const PathWriter&) = delete;
    PathWriter& operator=(const PathWriter&) = delete;

    /// Whether all contours are written.
    bool isAtEnd() const { return m_next == m_joined.links.size(); }

    /// Writes the next contours.
    ///
    /// @param contours  has none; gets them
    /// @param enough    when there are so many points, no further contour begins
    /// @throws Refusal  for more points than allowed, before memory is asked for more than two
    ///                  million
    void write(PathContours& contours, std::size_t enough, const Progress& progress);

    /// Of all points so far.
    const PathBounds& bounds() const { return m_bounds; }

    /// How many points the contours have that are not written.
    ///
    /// @throws Refusal  for more points than allowed
    std::uint64_t countPoints(const Progress& progress);

private:
    double partDone() const;

    JoinedDrawing m_joined;
    SamplingLimits m_limits;
    BlockSamples m_samples;
    /// The first link of what is not written, and the points of what is.
    std::size_t m_next = 0;
    std::size_t m_points = 0;
    PathBounds m_bounds;
};

} // namespace converters::drawing
