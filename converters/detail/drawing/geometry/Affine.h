#pragma once

#include "converters/detail/drawing/geometry/Vector.h"

#include <optional>

namespace converters::drawing {

/// Where an INSERT draws its block, as the file says it.
struct InsertPlacement {
    /// In the object coordinates of the INSERT.
    Point point{0, 0, 0};
    /// May be negative, different, or 0.
    Vector scale{1, 1, 1};
    /// Degrees, counter-clockwise about the extrusion.
    double rotation = 0;
    /// Of any length; without direction (0, or not finite) it counts as (0, 0, 1).
    Vector extrusion{0, 0, 1};
    /// The base point of the block, which comes to lie on `point`.
    Point base{0, 0, 0};
    /// Of one item of an array: column times column spacing, row times row spacing, 0. Turns with
    /// the INSERT and is not scaled.
    Vector arrayOffset{0, 0, 0};
};

/// An affine map of space: x `xAxis` + y `yAxis` + z `zAxis` + `origin`.
///
/// The identity leaves every bit as it is, and costs a comparison.
class Affine {
public:
    /// The identity.
    Affine() = default;
    Affine(const Vector& xAxis, const Vector& yAxis, const Vector& zAxis, const Point& origin);

    static Affine translation(const Vector& way);
    static Affine scaling(double factor);

    /// From object coordinates to those of the world, by the arbitrary axis algorithm.
    ///
    /// @param extrusion  of any length but 0, finite
    /// @return none for an extrusion without direction
    static std::optional<Affine> fromExtrusion(const Vector& extrusion);

    /// From the coordinates of a block to those that the INSERT stands in.
    static Affine ofInsert(const InsertPlacement& placement);

    bool isIdentity() const { return m_identity; }
    const Vector& xAxis() const { return m_x; }
    const Vector& yAxis() const { return m_y; }
    const Vector& zAxis() const { return m_z; }
    const Point& origin() const { return m_origin; }

    /// The image of a point.
    Point operator()(const Point& point) const {
        return m_identity ? point : ofVector(point) + m_origin;
    }
    /// The image of a way from one point to another.
    Vector ofVector(const Vector& way) const {
        return m_identity ? way : way.x * m_x + way.y * m_y + way.z * m_z;
    }

    /// First `inner`, then `outer`.
    friend Affine operator*(const Affine& outer, const Affine& inner);

private:
    Vector m_x{1, 0, 0};
    Vector m_y{0, 1, 0};
    Vector m_z{0, 0, 1};
    Point m_origin{0, 0, 0};
    bool m_identity = true;
};

} // namespace converters::drawing
