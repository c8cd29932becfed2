#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"

#include <cstddef>

namespace converters::drawing {

/// The exact curves of an entity, end to end, where it is drawn. For any kind but INSERT.
class EntityCurves {
public:
    /// @param entity, drawing  have to outlive this object
    /// @param map              from the coordinates of the block that holds the entity
    EntityCurves(const Drawing& drawing, const Entity& entity, const Affine& map);

    /// How many; none of a POINT. Some may have no extent.
    std::size_t size() const { return m_size; }

    /// One of them, in the direction of the entity.
    Curve operator[](std::size_t curve) const;

    /// Where the entity starts and ends: exactly the start of the first curve and the end of the
    /// last.
    Point start() const;
    Point end() const;

    /// Whether the file calls it closed, or draws it all round.
    bool isClosed() const;

    /// Whether all coordinates of the curves are finite.
    bool isFinite() const;

    /// Whether there is nothing but a dot: a POINT, or an entity all of whose points are one.
    bool isDot() const;

private:
    const double* numbers() const { return m_numbers; }
    std::size_t vertices() const { return static_cast<std::size_t>(m_numbers[0]); }
    /// A vertex of a polyline in its own coordinates.
    Point vertex(std::size_t i) const;
    double bulge(std::size_t i) const;
    Curve edge(std::size_t i) const;
    Curve only() const;

    const Drawing& m_drawing;
    const Entity& m_entity;
    Affine m_map;
    const double* m_numbers = nullptr;
    std::size_t m_size = 1;
};

/// Whether a curve has no extent.
bool isDot(const Curve& curve);

} // namespace converters::drawing
