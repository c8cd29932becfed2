#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"

#include <cstddef>
#include <optional>

namespace converters::drawing {

/// The exact curves of an entity, end to end, where it is drawn. For any kind but INSERT.
class EntityCurves {
public:
    /// @param map  from the coordinates of the block that holds the entity; as the others, it has
    ///             to outlive this object
    EntityCurves(const Drawing& drawing, const Entity& entity, const Affine& map);
    EntityCurves(const EntityCurves&) = delete;
    EntityCurves& operator=(const EntityCurves&) = delete;
    ~EntityCurves() = default;

    /// How many; none of a POINT. Some may have no extent.
    std::size_t size() const { return m_size; }

    /// One of them, in the direction of the entity.
    Curve operator[](std::size_t curve) const;

    /// Where the entity starts and ends: exactly the start of the first curve and the end of the
    /// last.
    Point start() const;
    Point end() const;

    /// What joining needs to know of an entity.
    struct Extent {
        Point start;
        Point end;
        /// Along the entity, or along what encloses it: more than the way, but not by much.
        double length;
        /// Whether all coordinates are finite, and small enough for their squares to be.
        bool isFinite;
        /// Whether there is nothing but a dot: all points are one.
        bool isDot;
    };
    Extent extent() const;

private:
    std::size_t vertices() const { return static_cast<std::size_t>(m_numbers[0]); }
    /// A vertex of a polyline in its own coordinates.
    Point vertex(std::size_t i) const;
    double bulge(std::size_t i) const;
    Curve edge(std::size_t i) const;
    Curve only() const;
    Extent polylineExtent() const;
    bool isPolyline() const;

    Point mapped(const Point& point) const { return (*m_map)(point); }

    const Drawing& m_drawing;
    const Entity& m_entity;
    const Affine* m_map;
    /// Of an entity with an extrusion.
    std::optional<Affine> m_ownMap;
    const double* m_numbers = nullptr;
    std::size_t m_size = 1;
};

/// Whether a curve has no extent.
bool isDot(const Curve& curve);

} // namespace converters::drawing
