#pragma once

#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/geometry/SplineDefinition.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace converters::drawing {

/// A point in homogeneous coordinates: the place, times the weight, and the weight.
///
/// Not made of a Vector, which is set to 0 when it is made: arrays of these stay as they are.
struct Homogeneous {
    double x;
    double y;
    double z;
    double weight;

    Vector place() const { return {x, y, z}; }
};

inline Homogeneous operator+(const Homogeneous& a, const Homogeneous& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z, a.weight + b.weight};
}
inline Homogeneous operator-(const Homogeneous& a, const Homogeneous& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z, a.weight - b.weight};
}
inline Homogeneous operator*(double factor, const Homogeneous& point) {
    return {factor * point.x, factor * point.y, factor * point.z, factor * point.weight};
}

/// The point between two, at `part` of the way; exactly `a` for 0 and `b` for 1.
inline Homogeneous between(const Homogeneous& a, const Homogeneous& b, double part) {
    return (1 - part) * a + part * b;
}

/// The point of space that homogeneous coordinates mean.
inline Point project(const Homogeneous& point) {
    return {point.x / point.weight, point.y / point.weight, point.z / point.weight};
}

/// A polynomial curve over [0, 1] in homogeneous coordinates, by its Bezier points.
struct BezierCurve {
    std::size_t degree;
    /// degree + 1 of them; the others are not set.
    std::array<Homogeneous, largestDegree + 1> points;

    explicit BezierCurve(std::size_t ofDegree) : degree(ofDegree) {}
    BezierCurve(const BezierCurve& other) : degree(other.degree) {
        std::copy_n(other.points.begin(), degree + 1, points.begin());
    }
    BezierCurve& operator=(const BezierCurve& other) {
        degree = other.degree;
        std::copy_n(other.points.begin(), degree + 1, points.begin());
        return *this;
    }

    Homogeneous at(double part) const;

    /// The part of the curve over [from, to], which are within [0, 1].
    BezierCurve over(double from, double to) const;

    /// The derivative by the parameter of [0, 1]; of degree 0 for curves of degree 0 and 1.
    BezierCurve derivative() const;
};

/// A B-spline as the polynomial curves that it is made of, one over each span between neighbouring
/// knots: span k is the one from knot k to knot k + 1.
///
/// Looks at the spline, which must outlive it and be one that splineFrom() could give.
class SplineSpans {
public:
    explicit SplineSpans(const BSpline& spline) : m_spline(spline) {}

    bool isRational() const { return !m_spline.weights.empty(); }
    std::size_t degree() const { return m_spline.degree; }

    /// The first span, and behind the last one.
    std::size_t first() const { return m_spline.degree; }
    std::size_t last() const { return m_spline.controlPoints.size(); }
    double knot(std::size_t index) const { return m_spline.knots[index]; }
    double width(std::size_t span) const { return knot(span + 1) - knot(span); }
    /// Where the curve begins and ends.
    double from() const { return knot(first()); }
    double to() const { return knot(last()); }

    /// The span of a parameter within [from(), to()]; never an empty one.
    std::size_t spanOf(double parameter) const;

    /// The polynomial curve of a span that is not empty. Costs degree^2 steps.
    BezierCurve curveOf(std::size_t span) const;

    /// The point at a parameter within [from(), to()].
    Point at(double parameter) const;

    /// The control points that a span depends on: degree + 1 from here.
    const Point* controlPointsOf(std::size_t span) const {
        return m_spline.controlPoints.data() + (span - m_spline.degree);
    }

    /// The ends; exactly the control points where the knots are clamped.
    Point start() const;
    Point end() const;

private:
    Homogeneous controlPoint(std::size_t index) const;

    const BSpline& m_spline;
};

} // namespace converters::drawing
