#pragma once

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <list>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

class DXFArc;
class DXFCircle;
class DXFEntity;
class DXFLine;
class DXFPoint;
class DXFPointVector;
class DXFPolyline;
class DXFSpline;

namespace dxfeditor {

/// The direction in which the points of a run are walked.
enum class Direction : bool { Forwards, Backwards };

/// One entity as a run of points, about ten per drawing unit, with (x, 0, y) for a point (x, y) of
/// the drawing plane.
///
/// A run does not hold its points. Every point follows from the entity and its own place alone, so
/// that the ends are known without what lies between them, and the points can be computed where
/// they are to stay. The entity must outlive the run and stay as it is.
///
/// Example: a line from (0, 0) to (1, 0) is a run of 11 points, from (0, 0, 0) to (1, 0, 0).
class Run {
public:
    using Point = cv::Point3_<double>;
    using Shape = std::variant<const DXFPolyline*, const DXFPoint*, const DXFPointVector*,
                               const DXFCircle*, const DXFArc*, const DXFLine*, const DXFSpline*>;

    explicit Run(Shape shape);

    /// Number of points.
    std::size_t size() const { return m_size; }

    /// The first and the last point of a run that is not empty, the same to the bit as appendTo()
    /// gives them.
    std::pair<Point, Point> ends() const;

    /// Asks the processor to fetch the entity, for an appendTo() some runs later.
    void prefetch() const;

    /// Appends all points of the run.
    void appendTo(std::vector<Point>& points, Direction direction) const;

private:
    Shape m_shape;
    std::size_t m_size;
};

/// The runs of a drawing, in the order of its entities.
///
/// An entity that is empty, that is of none of the known kinds or not of the class that its type
/// code names, or that has no points gives no run.
std::vector<Run> runsOf(const std::list<std::shared_ptr<DXFEntity>>& entities);

} // namespace dxfeditor
