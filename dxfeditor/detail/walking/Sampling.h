#pragma once

#include "base/stitching/Stitching.h"
#include "dxfeditor/DXFPolyline.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

class DXFEntity;

namespace dxfeditor {

using base::Direction;
using base::Dropped;

/// One entity as a run of points, about ten per drawing unit, with (x, 0, y) for a point (x, y) of
/// the drawing plane.
///
/// A run does not hold its points. Every point follows from the entity's shape and its own place
/// alone, so that the ends are known without what lies between them, and the points can be computed
/// where they are to stay. The shape must outlive the run and stay as it is: the entity, or of a
/// line of some points only where it starts and ends, since entities lie far apart in memory.
///
/// Example: a line from (0, 0) to (1, 0) is a run of 11 points, from (0, 0, 0) to (1, 0, 0).
class Run {
public:
    using Point = base::Point;

    /// @param entity  of the class that the kind names, as that class
    /// @param kind    one of DXFEntityType
    /// @param size    number of points, of a line 1
    Run(const void* entity, int kind, std::size_t size)
        : m_shape(entity), m_kind(static_cast<unsigned char>(kind)), m_size(size & mostPoints) {}

    /// @param size  number of points, more than 1
    Run(const Segment& line, std::size_t size);

    /// Number of points.
    std::size_t size() const { return m_size; }

    /// Asks the processor to fetch the shape, for an appendTo() some runs later.
    void prefetch() const;

    /// Appends all points of the run but the dropped one.
    void appendTo(std::vector<Point>& points, Direction direction, Dropped dropped) const;

private:
    static constexpr std::uint64_t mostPoints = (std::uint64_t{1} << 56) - 1;

    const void* m_shape;
    std::uint64_t m_kind : 8;
    std::uint64_t m_size : 56;
};

/// The runs of a drawing, in the order of its entities.
struct Runs {
    std::vector<Run> runs;
    /// The first and the last point of each run, the same to the bit as Run::appendTo gives them.
    std::vector<Run::Point> ends;
    /// The shapes of those runs that are lines of more than one point; never moved.
    std::vector<Segment> lines;
};

/// An entity that is empty, that is of none of the known kinds or not of the class that its type
/// code names, or that has no points gives no run.
Runs runsOf(const std::list<std::shared_ptr<DXFEntity>>& entities);

} // namespace dxfeditor
