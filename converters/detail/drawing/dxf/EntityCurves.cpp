#include "converters/detail/drawing/dxf/EntityCurves.h"

#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>

namespace converters::drawing {

namespace {

Point pointAt(const double* numbers) {
    return {numbers[0], numbers[1], numbers[2]};
}

bool isPolyline(EntityKind kind) {
    return kind == EntityKind::lwpolyline || kind == EntityKind::polyline ||
           kind == EntityKind::polyline3d;
}

} // namespace

EntityCurves::EntityCurves(const Drawing& drawing, const Entity& entity, const Affine& map)
    : m_drawing(drawing), m_entity(entity), m_map(map) {
    if (entity.kind == EntityKind::spline) {
        return;
    }
    m_numbers = &drawing.numbers[entity.data];
    if ((entity.flags & entityFlag::extruded) != 0) {
        // An ellipse is in world coordinates: the extrusion only tells its plane.
        if (entity.kind != EntityKind::ellipse) {
            m_map = map * Affine::fromExtrusion(pointAt(m_numbers)).value_or(Affine());
        }
        m_numbers += 3;
    }
    if (entity.kind == EntityKind::point) {
        m_size = 0;
    } else if (isPolyline(entity.kind)) {
        const bool isClosed = (entity.flags & entityFlag::closed) != 0;
        m_size = vertices() - (isClosed ? 0 : 1);
    }
}

Point EntityCurves::vertex(std::size_t i) const {
    if (m_entity.kind == EntityKind::polyline3d) {
        return pointAt(m_numbers + 1 + 3 * i);
    }
    const double* const plane = m_numbers + 2 + 2 * i;
    return {plane[0], plane[1], m_numbers[1]};
}

double EntityCurves::bulge(std::size_t i) const {
    const bool isBulged = (m_entity.flags & entityFlag::bulged) != 0;
    return isBulged ? m_numbers[2 + 2 * vertices() + i] : 0;
}

Curve EntityCurves::edge(std::size_t i) const {
    const Point from = vertex(i);
    const Point to = vertex(i + 1 == vertices() ? 0 : i + 1);
    const double bend = bulge(i);
    if (bend == 0 || from == to) {
        return Line{m_map(from), m_map(to)};
    }
    return transformed(bulgeEdge(from, to, bend), m_map);
}

Curve EntityCurves::operator[](std::size_t curve) const {
    return isPolyline(m_entity.kind) ? edge(curve) : only();
}

/// The curve of an entity that is one.
Curve EntityCurves::only() const {
    const double* const n = m_numbers;
    switch (m_entity.kind) {
    case EntityKind::line:
        return Line{m_map(pointAt(n)), m_map(pointAt(n + 3))};
    case EntityKind::circle:
        return transformed(circle(pointAt(n), n[3]), m_map);
    case EntityKind::arc:
        return transformed(circularArc(pointAt(n), n[3], n[4], n[5]).value(), m_map);
    case EntityKind::ellipse: {
        const bool extruded = (m_entity.flags & entityFlag::extruded) != 0;
        const Vector normal = extruded ? pointAt(n - 3) : Vector(0, 0, 1);
        return transformed(ellipse(pointAt(n), pointAt(n + 3), n[6], normal, n[7], n[8]).value(),
                           m_map);
    }
    case EntityKind::spline:
        return transformed(m_drawing.splines[m_entity.data], m_map);
    default:
        return Line{start(), start()};
    }
}

Point EntityCurves::start() const {
    switch (m_entity.kind) {
    case EntityKind::point:
    case EntityKind::line:
        return m_map(pointAt(m_numbers));
    case EntityKind::lwpolyline:
    case EntityKind::polyline:
    case EntityKind::polyline3d:
        return m_map(vertex(0));
    default:
        return startOf(only());
    }
}

Point EntityCurves::end() const {
    switch (m_entity.kind) {
    case EntityKind::point:
        return start();
    case EntityKind::line:
        return m_map(pointAt(m_numbers + 3));
    case EntityKind::lwpolyline:
    case EntityKind::polyline:
    case EntityKind::polyline3d:
        return m_map(vertex((m_entity.flags & entityFlag::closed) != 0 ? 0 : vertices() - 1));
    default:
        return endOf(only());
    }
}

bool EntityCurves::isClosed() const {
    return m_size > 0 && m_entity.kind != EntityKind::line && start() == end();
}

bool EntityCurves::isFinite() const {
    if (m_size == 0 || m_entity.kind == EntityKind::line) {
        return drawing::isFinite(start()) && drawing::isFinite(end());
    }
    for (std::size_t i = 0; i < m_size; ++i) {
        if (!drawing::isFinite((*this)[i])) {
            return false;
        }
    }
    return true;
}

bool EntityCurves::isDot() const {
    for (std::size_t i = 0; i < m_size; ++i) {
        if (!drawing::isDot((*this)[i])) {
            return false;
        }
    }
    return true;
}

bool isDot(const Curve& curve) {
    if (const auto* const line = std::get_if<Line>(&curve)) {
        return line->start == line->end;
    }
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        return arc->first == Vector(0, 0, 0) && arc->second == Vector(0, 0, 0);
    }
    const std::vector<Point>& points = std::get<BSpline>(curve).controlPoints;
    return std::all_of(points.begin(), points.end(),
                       [&](const Point& point) { return point == points.front(); });
}

} // namespace converters::drawing
