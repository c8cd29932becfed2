#include "converters/detail/drawing/geometry/Affine.h"

#include "converters/detail/drawing/geometry/Angle.h"

#include <cmath>

namespace converters::drawing {

Affine::Affine(const Vector& xAxis, const Vector& yAxis, const Vector& zAxis, const Point& origin)
    : m_x(xAxis), m_y(yAxis), m_z(zAxis), m_origin(origin) {
    const Affine identity;
    m_identity = m_x == identity.m_x && m_y == identity.m_y && m_z == identity.m_z &&
                 m_origin == identity.m_origin;
}

Affine Affine::translation(const Vector& way) {
    return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, way};
}

Affine Affine::scaling(double factor) {
    return {{factor, 0, 0}, {0, factor, 0}, {0, 0, factor}, {0, 0, 0}};
}

std::optional<Affine> Affine::fromExtrusion(const Vector& extrusion) {
    if (extrusion == Vector(0, 0, 1)) {
        return Affine();
    }
    const std::optional<Vector> normal = directionOf(extrusion);
    if (!normal) {
        return std::nullopt;
    }
    // The format's own number: below it, the direction counts as nearly that of z.
    constexpr double nearlyUpright = 1.0 / 64;
    const bool upright =
        std::fabs(normal->x) < nearlyUpright && std::fabs(normal->y) < nearlyUpright;
    const Vector across = (upright ? Vector(0, 1, 0) : Vector(0, 0, 1)).cross(*normal);
    // Neither can be 0: `across` is at least 1/64 long.
    const Vector x = *directionOf(across);
    const Vector y = *directionOf(normal->cross(x));
    return Affine(x, y, *normal, {0, 0, 0});
}

Affine Affine::ofInsert(const InsertPlacement& placement) {
    const Angle turn = Angle::fromDegrees(placement.rotation);
    const Vector right(turn.cos(), turn.sin(), 0);
    const Vector up(-turn.sin(), turn.cos(), 0);
    const Affine turned(right, up, {0, 0, 1}, {0, 0, 0});
    const Affine scaled(placement.scale.x * right, placement.scale.y * up,
                        {0, 0, placement.scale.z},
                        placement.point + turned.ofVector(placement.arrayOffset));
    const Affine inObject = scaled * translation(-placement.base);
    return fromExtrusion(placement.extrusion).value_or(Affine()) * inObject;
}

Affine operator*(const Affine& outer, const Affine& inner) {
    if (outer.m_identity) {
        return inner;
    }
    if (inner.m_identity) {
        return outer;
    }
    return {outer.ofVector(inner.m_x), outer.ofVector(inner.m_y), outer.ofVector(inner.m_z),
            outer(inner.m_origin)};
}

} // namespace converters::drawing
