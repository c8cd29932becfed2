#include "converters/detail/drawing/geometry/SplineDefinition.h"

#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace converters::drawing {

namespace {

bool areFinite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(),
                       [](double each) { return std::isfinite(each); });
}

bool areFinite(const std::vector<Point>& points) {
    return std::all_of(points.begin(), points.end(),
                       [](const Point& each) { return isFinite(each); });
}

/// Uniform knots with clamped ends, from 0 to the number of spans.
std::vector<double> clampedKnots(std::size_t points, std::size_t degree) {
    std::vector<double> knots(points + degree + 1);
    for (std::size_t i = 0; i < knots.size(); ++i) {
        const std::size_t inside = i > degree ? i - degree : 0;
        knots[i] = static_cast<double>(std::min(inside, points - degree));
    }
    return knots;
}

template <typename Value>
void repeatFirst(std::vector<Value>& values, std::size_t number) {
    for (std::size_t i = 0; i < number; ++i) {
        values.push_back(Value(values[i]));
    }
}

/// Of n knots and one more, which span a period: adds `degree` in front and behind.
void repeatKnots(std::vector<double>& knots, std::size_t degree) {
    const std::size_t spans = knots.size() - 1;
    const double period = knots.back() - knots.front();
    std::vector<double> result;
    result.reserve(knots.size() + 2 * degree);
    for (std::size_t i = 0; i < degree; ++i) {
        result.push_back(knots[spans - degree + i] - period);
    }
    result.insert(result.end(), knots.begin(), knots.end());
    for (std::size_t i = 0; i < degree; ++i) {
        result.push_back(knots[1 + i] + period);
    }
    knots = std::move(result);
}

/// Makes the number of knots that of the control points and the degree, and one; false where their
/// number has no meaning.
bool completeKnots(SplineDefinition& definition, std::size_t degree) {
    std::vector<double>& knots = definition.knots;
    const std::size_t points = definition.controlPoints.size();
    const bool closes = definition.closed || definition.periodic;
    if (knots.size() == points + degree + 1) {
        return points > degree;
    }
    const bool all = knots.size() == points + 2 * degree + 1;
    if (closes && points >= degree && (all || knots.size() == points + 1)) {
        if (!all) {
            repeatKnots(knots, degree);
        }
        repeatFirst(definition.controlPoints, degree);
        repeatFirst(definition.weights, definition.weights.empty() ? 0 : degree);
        return true;
    }
    if (points > degree && knots.empty()) {
        knots = clampedKnots(points, degree);
        return true;
    }
    if (points > degree && knots.size() + 2 == points + degree + 1) {
        knots.insert(knots.begin(), knots.front());
        knots.push_back(knots.back());
        return true;
    }
    return false;
}

/// Makes knots that fall by rounding equal; false for such that fall by more.
bool straightenKnots(std::vector<double>& knots, std::size_t degree) {
    const double from = knots[degree];
    const double to = knots[knots.size() - 1 - degree];
    // Sums of knots are finite, and what is left of the curve's range after rounding is some.
    constexpr double largest = 1e300;
    constexpr double leastPart = 1e-12;
    const auto [lowest, highest] = std::minmax_element(knots.begin(), knots.end());
    if (*lowest < -largest || *highest > largest ||
        !(to - from > leastPart * std::max(std::fabs(from), std::fabs(to)))) {
        return false;
    }
    // That of numbers with six digits.
    const double rounding = 1e-5 * (to - from);
    for (std::size_t i = 1; i < knots.size(); ++i) {
        if (knots[i] < knots[i - 1] - rounding) {
            return false;
        }
        knots[i] = std::max(knots[i], knots[i - 1]);
    }
    // Making others equal can have moved the start, not the order.
    return knots[knots.size() - 1 - degree] > knots[degree];
}

/// Leaves out weights that are all equal; false for such that no curve can have.
bool simplifyWeights(std::vector<double>& weights, std::size_t points) {
    if (weights.empty()) {
        return true;
    }
    if (weights.size() != points || !areFinite(weights)) {
        return false;
    }
    const auto [least, most] = std::minmax_element(weights.begin(), weights.end());
    constexpr double largestRatio = 1e12;
    // Sums of products with such weights neither overflow nor vanish.
    if (!(*least > 1e-100) || *most > 1e100 || *most > largestRatio * *least) {
        return false;
    }
    if (*least == *most) {
        weights.clear();
    }
    return true;
}

std::optional<BSpline> byControlPoints(SplineDefinition& definition) {
    if (definition.degree < 1 || definition.degree > static_cast<long>(largestDegree) ||
        definition.controlPoints.size() < 2 || !areFinite(definition.controlPoints) ||
        !areFinite(definition.knots)) {
        return std::nullopt;
    }
    const std::size_t degree = static_cast<std::size_t>(definition.degree);
    const bool fit = simplifyWeights(definition.weights, definition.controlPoints.size()) &&
                     completeKnots(definition, degree) && straightenKnots(definition.knots, degree);
    if (!fit) {
        return std::nullopt;
    }
    return BSpline{degree, std::move(definition.knots), std::move(definition.controlPoints),
                   std::move(definition.weights)};
}

} // namespace

std::optional<BSpline> splineFrom(SplineDefinition definition) {
    if (!definition.controlPoints.empty()) {
        if (std::optional<BSpline> spline = byControlPoints(definition)) {
            return spline;
        }
    }
    return fitSpline(definition.fitPoints, definition.startTangent, definition.endTangent,
                     definition.closed || definition.periodic);
}

} // namespace converters::drawing
