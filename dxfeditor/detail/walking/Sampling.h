#pragma once

#include "base/stitching/Stitching.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/detail/walking/Spaces.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class DXFArc;
class DXFCircle;
class DXFEntity;
class DXFLine;
class DXFPoint;
class DXFPointVector;
class DXFSpline;

namespace dxfeditor {

using base::Direction;
using base::Dropped;

/// One entity as a run of points, about ten per drawing unit, with (x, 0, y) for a point (x, y) of
/// the drawing plane.
///
/// A run does not hold its points. Every point follows from the entity's shape and the index of the
/// point alone, so that the ends are known without what lies between them, and the points can be
/// computed where they are to stay. The shape must outlive the run and stay as it is: the entity,
/// or of a line of some points only where it starts and ends, since entities lie far apart in
/// memory.
///
/// Example: a line from (0, 0) to (1, 0) is a run of 11 points, from (0, 0, 0) to (1, 0, 0).
class Run {
public:
    using Point = CloudPoint;

    /// @param shape  a DXFPolyline, DXFPoint, DXFPointVector, DXFCircle, DXFArc, DXFLine, DXFSpline
    ///               or Segment
    /// @param size   number of points
    template <typename Shape>
    Run(const Shape& shape, std::size_t size)
        : m_shape(&shape), m_kind(kindOf(shape)), m_size(size & mostPoints) {}

    /// Number of points.
    std::size_t size() const { return m_size; }

    /// Asks the processor to fetch the shape, for an appendTo() some runs later.
    void prefetch() const;

    /// Appends all points of the run but the dropped one.
    void appendTo(std::vector<Point>& points, Direction direction, Dropped dropped) const;

private:
    enum class Kind : std::uint8_t {
        Polyline,
        Point,
        PointVector,
        Circle,
        Arc,
        Line,
        Spline,
        Segment
    };
    static Kind kindOf(const DXFPolyline&) { return Kind::Polyline; }
    static Kind kindOf(const DXFPoint&) { return Kind::Point; }
    static Kind kindOf(const DXFPointVector&) { return Kind::PointVector; }
    static Kind kindOf(const DXFCircle&) { return Kind::Circle; }
    static Kind kindOf(const DXFArc&) { return Kind::Arc; }
    static Kind kindOf(const DXFLine&) { return Kind::Line; }
    static Kind kindOf(const DXFSpline&) { return Kind::Spline; }
    static Kind kindOf(const Segment&) { return Kind::Segment; }

    template <typename Visitor>
    void visitShape(Visitor visitor) const;

    static constexpr std::uint64_t mostPoints = (std::uint64_t{1} << 56) - 1;

    // A std::variant of pointers to the shapes, but for its room: it would take a word of its own
    // to tell them apart, and with the size half as much memory again for each run.
    const void* m_shape;
    Kind m_kind : 8;
    std::uint64_t m_size : 56;
};
static_assert(sizeof(Run) == 16);

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
Runs runsOf(const std::vector<std::shared_ptr<DXFEntity>>& entities);

} // namespace dxfeditor
