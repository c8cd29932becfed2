#pragma once

#include "base/Prefetch.h"
#include "base/StageProgress.h"
#include "base/stitching/Stitching.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/detail/walking/Spaces.h"

#include <algorithm>
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

/// The entities of a drawing, in their order.
using Entities = std::vector<std::shared_ptr<DXFEntity>>;

/// One entity as a run of points, about ten per drawing unit, with (x, 0, y) for a point (x, y) of
/// the drawing plane.
///
/// A run does not hold its points. Every point follows from the entity's shape and the index of the
/// point alone, so that the ends are known without what lies between them, and the points can be
/// computed where they are to stay. The entities must stay as they are.
///
/// Example: a line from (0, 0) to (1, 0) is a run of 11 points, from (0, 0, 0) to (1, 0, 0).
class Run {
public:
    using Point = CloudPoint;

    /// @param shape   a DXFPolyline, DXFPoint, DXFPointVector, DXFCircle, DXFArc, DXFLine or
    ///                DXFSpline
    /// @param entity  its index among the entities
    /// @param size    number of points
    template <typename Shape>
    Run(const Shape& shape, std::size_t entity, std::size_t size)
        : m_entity(static_cast<std::uint32_t>(entity)), m_kind(kindOf(shape)),
          m_size(std::min<std::size_t>(size, countedAnew) & countedAnew) {}

    /// The index of its entity.
    std::size_t entity() const { return m_entity; }

    /// Number of points.
    /// @param entities  those of the drawing, here and below
    std::size_t size(const Entities& entities) const {
        return m_size < countedAnew ? m_size : countPoints(entities);
    }

    // Both ask the processor for what an appendTo() some runs later needs: where the entity lies,
    // and the entity.
    void prefetchPointer(const Entities& entities) const { base::prefetch(&entities[m_entity]); }
    void prefetchEntity(const Entities& entities) const;

    /// Appends all points of the run but the dropped one.
    void appendTo(std::vector<Point>& points, const Entities& entities, Direction direction,
                  Dropped dropped) const;

private:
    enum class Kind : std::uint8_t {
        Polyline,
        Point,
        PointVector,
        Circle,
        Arc,
        Line,
        Spline,
        /// Of a class derived from one of these.
        Derived
    };
    template <typename Shape>
    static Kind kindOf(const Shape& shape);

    template <typename Visitor>
    void visitShape(const Entities& entities, Visitor visitor) const;
    std::size_t countPoints(const Entities& entities) const;

    /// The size of a run that has so many points or more; all bits of m_size.
    static constexpr std::uint32_t countedAnew = (std::uint32_t{1} << 29) - 1;

    // Half of what a pointer to the shape and a size would take: drawings have millions of runs.
    std::uint32_t m_entity;
    Kind m_kind : 3;
    std::uint32_t m_size : 29;
};
static_assert(sizeof(Run) == 8);

/// The runs of a drawing, in the order of its entities.
struct Runs {
    std::vector<Run> runs;
    /// The first and the last point of each run, the same to the bit as Run::appendTo gives them.
    base::EndPoints ends;
};

/// An entity that is empty, that is of none of the known kinds or not of the class that its type
/// code names, or that has no points gives no run.
/// @param progress  told of each entity
/// @throws std::bad_alloc when there are more entities than runs can be stitched
Runs runsOf(const Entities& entities, base::StageProgress progress = {});

} // namespace dxfeditor
