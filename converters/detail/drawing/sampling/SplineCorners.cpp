// A Bezier curve has no cusp when its polygon advances all the time in some direction: the
// direction of the curve is a mean of those of the polygon's edges, for rational curves too
// (Floater 1992). What does not advance along its own chord is halved, until it does or is too
// small to matter: there the cusp is.

#include "converters/detail/drawing/sampling/SplineCorners.h"

#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

/// How small a part of its span is that still does not advance, when it is a cusp.
constexpr double cuspPart = 1e-10;
/// Edges of a polygon as short as this, in parts of the span's size and of its coordinates, have no
/// direction.
constexpr double noEdge = 1e-13;
constexpr double rounding = 1e-15;
constexpr int mostLevels = 40;
constexpr int mostParts = 400;
constexpr double narrowPart = 1e-12;

/// The points of space that the Bezier points of a curve mean.
BezierCurve polygonOf(const BezierCurve& curve, bool rational) {
    BezierCurve polygon(curve);
    for (std::size_t i = 0; rational && i <= curve.degree; ++i) {
        const Point point = project(curve.points[i]);
        polygon.points[i] = {point.x, point.y, point.z, 1};
    }
    return polygon;
}

Vector edgeOf(const BezierCurve& polygon, std::size_t edge) {
    return (polygon.points[edge + 1] - polygon.points[edge]).place();
}

/// The length of the last edge.
double lastEdge(const BezierCurve& polygon) {
    return lengthOf(edgeOf(polygon, polygon.degree - 1));
}

double sizeOf(const BezierCurve& polygon) {
    double size = 0;
    for (std::size_t i = 1; i <= polygon.degree; ++i) {
        size = std::max(size, lengthOf((polygon.points[i] - polygon.points[0]).place()));
    }
    return size;
}

/// Whether all edges that are not shorter than that advance along the chord.
bool advances(const BezierCurve& polygon, double shortest) {
    const Vector chord = (polygon.points[polygon.degree] - polygon.points[0]).place();
    for (std::size_t i = 0; i < polygon.degree; ++i) {
        const Vector edge = edgeOf(polygon, i);
        if (!(edge.dot(chord) > 0) && lengthOf(edge) > shortest) {
            return false;
        }
    }
    return true;
}

/// Looks for the cusps within one span.
class CuspSearch {
public:
    CuspSearch(const BezierCurve& curve, bool rational)
        : m_curve(curve), m_polygon(polygonOf(curve, rational)), m_rational(rational),
          m_size(sizeOf(m_polygon)),
          m_shortest(noEdge * m_size + rounding * lengthOf(m_polygon.points[0].place())) {}

    /// Appends parameters of [0, 1].
    void find(std::vector<double>& cusps) {
        if (!(m_size > 0) || !std::isfinite(m_size)) {
            return;
        }
        if (lengthOf(edgeOf(m_polygon, 0)) <= m_shortest) {
            cusps.push_back(0);
        }
        if (!advances(m_polygon, m_shortest)) {
            search(m_curve, 0, 1, 0, cusps);
        }
        if (lastEdge(m_polygon) <= m_shortest) {
            cusps.push_back(1);
        }
    }

private:
    void search(const BezierCurve& curve, double from, double to, int level,
                std::vector<double>& cusps) {
        const BezierCurve polygon = polygonOf(curve, m_rational);
        if (++m_parts > mostParts || advances(polygon, m_shortest)) {
            return;
        }
        const double middle = 0.5 * (from + to);
        if (level == mostLevels || sizeOf(polygon) <= cuspPart * m_size + 4 * m_shortest) {
            // Both halves around a cusp find it: it is where they meet.
            if (!cusps.empty() && from - cusps.back() <= to - from) {
                cusps.back() = from;
            } else {
                cusps.push_back(middle);
            }
            return;
        }
        const BezierCurve lower = curve.over(0, 0.5);
        search(lower, from, middle, level + 1, cusps);
        if (lastEdge(polygonOf(lower, m_rational)) <= m_shortest) {
            cusps.push_back(middle);
        }
        search(curve.over(0.5, 1), middle, to, level + 1, cusps);
    }

    const BezierCurve& m_curve;
    const BezierCurve m_polygon;
    const bool m_rational;
    const double m_size;
    const double m_shortest;
    int m_parts = 0;
};

/// Whether the control points of a span advance all the time. So does the curve then, whose Bezier
/// points come of them by cutting corners.
bool advancesPlainly(const SplineSpans& spans, std::size_t span) {
    const Point* const points = spans.controlPointsOf(span);
    const Vector chord = points[spans.degree()] - points[0];
    for (std::size_t i = 0; i < spans.degree(); ++i) {
        const Vector edge = points[i + 1] - points[i];
        // By more than rounding.
        if (!(edge.dot(chord) > 1e-9 * chord.dot(chord))) {
            return false;
        }
    }
    return true;
}

/// Whether the knot at the upper end of a span makes a corner.
bool isCorner(const SplineSpans& spans, std::size_t span) {
    const std::size_t last = span + spans.degree();
    return spans.knot(span + 1) == spans.knot(last) || span + 1 >= spans.last();
}

} // namespace

std::vector<double> cornersOf(const SplineSpans& spans) {
    std::vector<double> corners;
    const double narrow = narrowPart * (spans.to() - spans.from());
    const auto append = [&](double parameter) {
        if (parameter > (corners.empty() ? spans.from() : corners.back())) {
            corners.push_back(parameter);
        }
    };
    std::vector<double> cusps;
    for (std::size_t span = spans.first(); span < spans.last(); ++span) {
        const double width = spans.width(span);
        if (!(width > 0)) {
            continue;
        }
        if (width <= narrow) {
            append(spans.knot(span));
            append(spans.knot(span + 1));
            continue;
        }
        cusps.clear();
        if (!advancesPlainly(spans, span)) {
            CuspSearch(spans.curveOf(span), spans.isRational()).find(cusps);
        }
        for (const double cusp : cusps) {
            append(cusp < 1 ? spans.knot(span) + cusp * width : spans.knot(span + 1));
        }
        if (isCorner(spans, span)) {
            append(spans.knot(span + 1));
        }
    }
    append(spans.to());
    return corners;
}

} // namespace converters::drawing
