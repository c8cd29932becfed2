// The cubic spline through points. Unknown are the derivatives at the points; that the second
// derivative is continuous at point i, between chords of lengths h and k, means
//
//     k D[i-1] + 2 (h + k) D[i] + h D[i+1] = 3 (k (P[i] - P[i-1]) / h + h (P[i+1] - P[i]) / k),
//
// a system of three diagonals of which the middle one outweighs the others, so that elimination
// without exchanges is stable. Its control points are then those of a clamped B-spline with knots
// at the points.

#include "converters/detail/drawing/geometry/SplineDefinition.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <cmath>
#include <utility>

namespace converters::drawing {

namespace {

/// A row of a system: below D[i-1] + middle D[i] + above D[i+1] = right.
struct Row {
    double below;
    double middle;
    double above;
    Vector right;
};

std::vector<Vector> solve(std::vector<Row> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const double factor = rows[i].below / rows[i - 1].middle;
        rows[i].middle -= factor * rows[i - 1].above;
        rows[i].right -= factor * rows[i - 1].right;
    }
    std::vector<Vector> result(rows.size());
    for (std::size_t i = rows.size(); i-- > 0;) {
        const Vector known = i + 1 < rows.size() ? rows[i].above * result[i + 1] : Vector(0, 0, 0);
        result[i] = (rows[i].right - known) * (1 / rows[i].middle);
    }
    return result;
}

/// The points, and the lengths of the chords between them.
struct Chain {
    std::vector<Point> points;
    std::vector<double> chords;

    Vector slope(std::size_t chord) const {
        return (points[chord + 1] - points[chord]) * (1 / chords[chord]);
    }
    /// That the second derivative is continuous between two chords.
    Row rowBetween(std::size_t before, std::size_t behind) const {
        const double h = chords[before];
        const double k = chords[behind];
        return {k, 2 * (h + k), h, 3 * (k * slope(before) + h * slope(behind))};
    }
};

/// Without equal neighbours, whose chord has no length.
Chain chainOf(const std::vector<Point>& points, bool closed) {
    Chain chain;
    const auto append = [&](const Point& point) {
        const double chord = chain.points.empty() ? 1 : distance(chain.points.back(), point);
        if (!(chord > 0)) {
            return;
        }
        if (!chain.points.empty()) {
            chain.chords.push_back(chord);
        }
        chain.points.push_back(point);
    };
    for (const Point& point : points) {
        append(point);
    }
    if (closed && !points.empty()) {
        append(points.front());
    }
    return chain;
}

std::vector<Vector> openDerivatives(const Chain& chain, const std::optional<Vector>& start,
                                    const std::optional<Vector>& end) {
    const std::size_t last = chain.chords.size();
    std::vector<Row> rows;
    rows.reserve(last + 1);
    // Without tangent, the second derivative there is 0.
    rows.push_back(start ? Row{0, 1, 0, *start} : Row{0, 2, 1, 3 * chain.slope(0)});
    for (std::size_t i = 1; i < last; ++i) {
        rows.push_back(chain.rowBetween(i - 1, i));
    }
    rows.push_back(end ? Row{0, 1, 0, *end} : Row{1, 2, 0, 3 * chain.slope(last - 1)});
    return solve(std::move(rows));
}

// The system of a ring has two more corners. It is that of a chain plus the product of a column u
// and a row v, and is solved by two systems of a chain (Sherman and Morrison).
std::vector<Vector> closedDerivatives(const Chain& chain) {
    const std::size_t number = chain.chords.size();
    std::vector<Row> rows;
    rows.reserve(number);
    for (std::size_t i = 0; i < number; ++i) {
        rows.push_back(chain.rowBetween((i + number - 1) % number, i));
    }
    const double topRight = rows.front().below;
    const double bottomLeft = rows.back().above;
    const double pivot = -rows.front().middle;
    rows.front().middle -= pivot;
    rows.back().middle -= topRight * bottomLeft / pivot;
    std::vector<Vector> result = solve(rows);
    for (Row& row : rows) {
        row.right = {0, 0, 0};
    }
    rows.front().right.x = pivot;
    rows.back().right.x = bottomLeft;
    const std::vector<Vector> column = solve(std::move(rows));
    const double v = topRight / pivot;
    const Vector share =
        (result.front() + v * result.back()) * (1 / (1 + column.front().x + v * column.back().x));
    for (std::size_t i = 0; i < number; ++i) {
        result[i] -= column[i].x * share;
    }
    result.push_back(result.front());
    return result;
}

BSpline splineOf(const Chain& chain, const std::vector<Vector>& derivatives) {
    const std::size_t last = chain.chords.size();
    BSpline spline{3, {}, {}, {}};
    spline.knots.assign(4, 0.0);
    spline.controlPoints.push_back(chain.points.front());
    spline.controlPoints.push_back(chain.points.front() +
                                   derivatives.front() * (chain.chords.front() / 3));
    double parameter = 0;
    for (std::size_t i = 1; i < last; ++i) {
        const double h = chain.chords[i - 1];
        const double k = chain.chords[i];
        parameter += h;
        spline.knots.push_back(parameter);
        const Vector second =
            (6 * chain.slope(i) - 4 * derivatives[i] - 2 * derivatives[i + 1]) * (1 / k);
        spline.controlPoints.push_back(chain.points[i] + derivatives[i] * ((k - h) / 3) -
                                       second * (h * k / 6));
    }
    parameter += chain.chords.back();
    spline.knots.insert(spline.knots.end(), 4, parameter);
    spline.controlPoints.push_back(chain.points.back() -
                                   derivatives.back() * (chain.chords.back() / 3));
    spline.controlPoints.push_back(chain.points.back());
    return spline;
}

bool isUsable(const BSpline& spline) {
    for (const Point& point : spline.controlPoints) {
        if (!isFinite(point)) {
            return false;
        }
    }
    // Chords so different that the shorter ones vanish in the sum give equal knots.
    return std::isfinite(2 * spline.knots.back());
}

} // namespace

std::optional<BSpline> fitSpline(const std::vector<Point>& points,
                                 const std::optional<Vector>& startTangent,
                                 const std::optional<Vector>& endTangent, bool closed) {
    for (const Point& point : points) {
        if (!isFinite(point)) {
            return std::nullopt;
        }
    }
    const Chain chain = chainOf(points, closed);
    if (chain.chords.empty()) {
        return std::nullopt;
    }
    const std::optional<Vector> start = directionOf(startTangent.value_or(Vector(0, 0, 0)));
    const std::optional<Vector> end = directionOf(endTangent.value_or(Vector(0, 0, 0)));
    const bool periodic = closed && !start && !end && chain.chords.size() > 2;
    BSpline spline =
        splineOf(chain, periodic ? closedDerivatives(chain) : openDerivatives(chain, start, end));
    return isUsable(spline) ? std::optional<BSpline>(std::move(spline)) : std::nullopt;
}

} // namespace converters::drawing
