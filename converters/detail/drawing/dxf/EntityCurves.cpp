#include "converters/detail/drawing/dxf/EntityCurves.h"

#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

Point pointAt(const double* numbers) {
    return {numbers[0], numbers[1], numbers[2]};
}

bool isDot(const Line& line) {
    return line.start == line.end;
}
bool isDot(const EllipticArc& arc) {
    return arc.first == Vector(0, 0, 0) && arc.second == Vector(0, 0, 0);
}
bool isDot(const BSpline& spline) {
    const std::vector<Point>& points = spline.controlPoints;
    return std::all_of(points.begin(), points.end(),
                       [&](const Point& point) { return point == points.front(); });
}

/// Whether what starts here, and is so long at most, has coordinates to calculate with.
bool isInReach(const Point& start, double length) {
    constexpr double farthest = 1e150;
    return length <= farthest && lengthOf(start) <= farthest;
}

double roughLength(const Line& line) {
    return lengthOf(line);
}
double roughLength(const EllipticArc& arc) {
    return std::abs(arc.sweep) * std::max(lengthOf(arc.first), lengthOf(arc.second));
}
double roughLength(const BSpline& spline) {
    double length = 0;
    for (std::size_t i = 1; i < spline.controlPoints.size(); ++i) {
        length += distance(spline.controlPoints[i - 1], spline.controlPoints[i]);
    }
    return length;
}
double roughLength(const Curve& curve) {
    return std::visit([](const auto& each) { return roughLength(each); }, curve);
}

template <typename OneCurve>
EntityCurves::Extent extentOf(const OneCurve& curve) {
    const Point start = startOf(curve);
    const double length = roughLength(curve);
    return {start, endOf(curve), length, isInReach(start, length) && isFinite(curve), isDot(curve)};
}

} // namespace

EntityCurves::EntityCurves(const Drawing& drawing, const Entity& entity, const Affine& map)
    : m_drawing(drawing), m_entity(entity), m_map(&map) {
    if (entity.kind == EntityKind::spline) {
        return;
    }
    m_numbers = &drawing.numbers[entity.data];
    if ((entity.flags & entityFlag::extruded) != 0) {
        // An ellipse is in world coordinates: the extrusion only tells its plane.
        if (entity.kind != EntityKind::ellipse) {
            m_ownMap = map * Affine::fromExtrusion(pointAt(m_numbers)).value_or(Affine());
            m_map = &*m_ownMap;
        }
        m_numbers += 3;
    }
    if (entity.kind == EntityKind::point) {
        m_size = 0;
    } else if (isPolyline()) {
        const bool isClosed = (entity.flags & entityFlag::closed) != 0;
        m_size = vertices() - (isClosed ? 0 : 1);
    }
}

bool EntityCurves::isPolyline() const {
    return m_entity.kind == EntityKind::lwpolyline || m_entity.kind == EntityKind::polyline ||
           m_entity.kind == EntityKind::polyline3d;
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
        return Line{mapped(from), mapped(to)};
    }
    return transformed(bulgeEdge(from, to, bend), *m_map);
}

Curve EntityCurves::operator[](std::size_t curve) const {
    return isPolyline() ? edge(curve) : only();
}

/// The curve of an entity that is one.
Curve EntityCurves::only() const {
    const double* const n = m_numbers;
    switch (m_entity.kind) {
    case EntityKind::line:
        return Line{mapped(pointAt(n)), mapped(pointAt(n + 3))};
    case EntityKind::circle:
        return transformed(circle(pointAt(n), n[3]), *m_map);
    case EntityKind::arc:
        return transformed(circularArc(pointAt(n), n[3], n[4], n[5]).value(), *m_map);
    case EntityKind::ellipse: {
        const bool extruded = (m_entity.flags & entityFlag::extruded) != 0;
        const Vector normal = extruded ? pointAt(n - 3) : Vector(0, 0, 1);
        return transformed(ellipse(pointAt(n), pointAt(n + 3), n[6], normal, n[7], n[8]).value(),
                           *m_map);
    }
    case EntityKind::spline:
        return transformed(m_drawing.splines[m_entity.data], *m_map);
    default:
        return Line{start(), start()};
    }
}

Point EntityCurves::start() const {
    switch (m_entity.kind) {
    case EntityKind::point:
    case EntityKind::line:
        return mapped(pointAt(m_numbers));
    case EntityKind::lwpolyline:
    case EntityKind::polyline:
    case EntityKind::polyline3d:
        return mapped(vertex(0));
    default:
        return startOf(only());
    }
}

Point EntityCurves::end() const {
    switch (m_entity.kind) {
    case EntityKind::point:
        return start();
    case EntityKind::line:
        return mapped(pointAt(m_numbers + 3));
    case EntityKind::lwpolyline:
    case EntityKind::polyline:
    case EntityKind::polyline3d:
        return mapped(vertex((m_entity.flags & entityFlag::closed) != 0 ? 0 : vertices() - 1));
    default:
        return endOf(only());
    }
}

EntityCurves::Extent EntityCurves::extent() const {
    if (isPolyline()) {
        return polylineExtent();
    }
    if (m_entity.kind == EntityKind::point || m_entity.kind == EntityKind::line) {
        const Point from = start();
        const Point to = end();
        const double length = distance(from, to);
        return {from, to, length, isInReach(from, length), from == to};
    }
    if (m_entity.kind == EntityKind::spline && m_map->isIdentity()) {
        return extentOf(m_drawing.splines[m_entity.data]);
    }
    return std::visit([](const auto& curve) { return extentOf(curve); }, only());
}

EntityCurves::Extent EntityCurves::polylineExtent() const {
    Extent extent{start(), end(), 0, true, true};
    Point last = extent.start;
    for (std::size_t i = 0; i < m_size; ++i) {
        const Point next = mapped(vertex(i + 1 == vertices() ? 0 : i + 1));
        if (next != last && bulge(i) != 0) {
            const Curve curve = edge(i);
            extent.length += roughLength(curve);
            extent.isFinite = extent.isFinite && drawing::isFinite(curve);
        } else {
            extent.length += distance(last, next);
        }
        extent.isDot = extent.isDot && next == last;
        last = next;
    }
    extent.isFinite = extent.isFinite && isInReach(extent.start, extent.length);
    return extent;
}

bool isDot(const Curve& curve) {
    return std::visit([](const auto& each) { return isDot(each); }, curve);
}

} // namespace converters::drawing
