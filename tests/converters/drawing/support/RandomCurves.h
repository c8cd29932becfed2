#pragma once

#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "tests/support/Random.h"

#include <cstddef>
#include <cstdint>

/// Random exact curves, the same with every standard library.
class RandomCurves {
public:
    using Point = converters::drawing::Point;

    explicit RandomCurves(std::uint64_t seed) : m_random(seed) {}

    std::size_t below(std::size_t count) { return m_random.below(count); }
    bool oneIn(std::size_t count) { return m_random.oneIn(count); }
    /// In [low, high).
    double within(double low, double high) {
        return low + (high - low) * (static_cast<double>(m_random() >> 11) * 0x1p-53);
    }
    /// Each coordinate in [-10, 10).
    Point point() { return {within(-10, 10), within(-10, 10), within(-10, 10)}; }

    converters::drawing::Affine affine();
    converters::drawing::Line line() { return {point(), point()}; }
    converters::drawing::EllipticArc arc();
    /// Of degree 1 to 7; every second one rational, a third with repeated knots or control points,
    /// a third without clamped ends.
    converters::drawing::BSpline spline();
    converters::drawing::Curve curve();

private:
    std::vector<double> knots(std::size_t number, std::size_t degree);

    Random m_random;
};
