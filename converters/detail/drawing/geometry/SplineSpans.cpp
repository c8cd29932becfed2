#include "converters/detail/drawing/geometry/SplineSpans.h"

#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>

namespace converters::drawing {

namespace {

/// De Casteljau's steps: afterwards `points` are those of the part up to `part`, or from it on.
void keepBelow(BezierCurve& curve, double part) {
    for (std::size_t level = 1; level <= curve.degree; ++level) {
        for (std::size_t i = curve.degree; i >= level; --i) {
            curve.points[i] = between(curve.points[i - 1], curve.points[i], part);
        }
    }
}
void keepAbove(BezierCurve& curve, double part) {
    for (std::size_t level = 1; level <= curve.degree; ++level) {
        for (std::size_t i = 0; i + level <= curve.degree; ++i) {
            curve.points[i] = between(curve.points[i], curve.points[i + 1], part);
        }
    }
}

} // namespace

// Bernstein's polynomials in the manner of Horner; written out for the degrees that most have.
Homogeneous BezierCurve::at(double part) const {
    if (degree == 0) {
        return points[0];
    }
    const double rest = 1 - part;
    if (degree == 3) {
        return rest * (rest * (rest * points[0] + 3 * part * points[1]) +
                       3 * part * part * points[2]) +
               part * part * part * points[3];
    }
    if (degree == 2) {
        return rest * (rest * points[0] + 2 * part * points[1]) + part * part * points[2];
    }
    Homogeneous sum = rest * points[0];
    double power = 1;
    double binomial = 1;
    for (std::size_t i = 1; i < degree; ++i) {
        power *= part;
        binomial = binomial * static_cast<double>(degree - i + 1) / static_cast<double>(i);
        sum = rest * (sum + power * binomial * points[i]);
    }
    return sum + power * part * points[degree];
}

BezierCurve BezierCurve::over(double from, double to) const {
    BezierCurve curve = *this;
    if (to < 1) {
        keepBelow(curve, to);
    }
    if (from > 0) {
        keepAbove(curve, from / to);
    }
    return curve;
}

BezierCurve BezierCurve::derivative() const {
    BezierCurve result(degree > 0 ? degree - 1 : 0);
    result.points[0] = {0, 0, 0, 0};
    const double factor = static_cast<double>(degree);
    for (std::size_t i = 0; i < degree; ++i) {
        result.points[i] = factor * (points[i + 1] - points[i]);
    }
    return result;
}

std::size_t SplineSpans::spanOf(double parameter) const {
    const auto begin = m_spline.knots.begin();
    const auto above = std::upper_bound(begin + static_cast<std::ptrdiff_t>(first()),
                                        begin + static_cast<std::ptrdiff_t>(last()), parameter);
    std::size_t span = std::max(static_cast<std::size_t>(above - begin), first() + 1) - 1;
    // The end of the curve belongs to the last span that is not empty.
    while (span > first() && !(width(span) > 0)) {
        --span;
    }
    return span;
}

Homogeneous SplineSpans::controlPoint(std::size_t index) const {
    const Point& point = m_spline.controlPoints[index];
    const double weight = isRational() ? m_spline.weights[index] : 1;
    return {weight * point.x, weight * point.y, weight * point.z, weight};
}

// Both loops are de Boor's scheme. The first one, at the lower end of the span, leaves control
// points as if that knot were repeated degree times; the second one does so at the upper end.
BezierCurve SplineSpans::curveOf(std::size_t span) const {
    const std::size_t degree = m_spline.degree;
    const double low = knot(span);
    const double high = knot(span + 1);
    BezierCurve curve(degree);
    for (std::size_t i = 0; i <= degree; ++i) {
        curve.points[i] = controlPoint(span - degree + i);
    }
    for (std::size_t level = 1; level <= degree; ++level) {
        for (std::size_t i = 0; i + level <= degree; ++i) {
            const double before = knot(span - degree + level + i);
            const double behind = knot(span + 1 + i);
            const double part = (low - before) / (behind - before);
            curve.points[i] = between(curve.points[i], curve.points[i + 1], part);
        }
    }
    for (std::size_t level = 1; level < degree; ++level) {
        for (std::size_t i = degree; i > level; --i) {
            const double behind = knot(span + 1 + i - level);
            const double part = (high - low) / (behind - low);
            curve.points[i] = between(curve.points[i - 1], curve.points[i], part);
        }
    }
    return curve;
}

Point SplineSpans::at(double parameter) const {
    const std::size_t span = spanOf(parameter);
    const Homogeneous point = curveOf(span).at((parameter - knot(span)) / width(span));
    return isRational() ? project(point) : point.place();
}

// A control point at an end with more knots than the degree and one has no influence.
Point SplineSpans::start() const {
    if (knot(1) == from() && width(first()) > 0) {
        return m_spline.controlPoints.front();
    }
    return at(from());
}

Point SplineSpans::end() const {
    if (knot(last() + degree() - 1) == to() && width(last() - 1) > 0) {
        return m_spline.controlPoints.back();
    }
    return at(to());
}

} // namespace converters::drawing
