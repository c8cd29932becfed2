// De Boor's algorithm: the control points that matter at a parameter, one more than the degree, are
// interpolated with one another until one is left. On homogeneous coordinates, so that weights need
// no division before the end.
//
// Not done: basis functions, or a division into Bezier curves. Both round otherwise, and the points
// are defined to the bit by the steps below.

#include "dxfeditor/DXFSpline.h"

#include "dxfeditor/WalkNumbers.h"
#include "dxfeditor/detail/walking/Spaces.h"
#include "dxfeditor/detail/walking/SplineSamples.h"
#include "dxfeditor/detail/walking/TruncatedCount.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

/// Knot intervals and weights below this count as zero.
constexpr double vanishing = 1e-15;

} // namespace

DXFSpline::DXFSpline(unsigned degree, unsigned /*nKnots*/, unsigned /*nControl*/, unsigned /*nFit*/,
                     int flags)
    : m_degree(degree), m_flags(flags) {}

int DXFSpline::type() const {
    return DXFEntityType::Spline;
}

void DXFSpline::setup() {}

DXFEntity* DXFSpline::clone() const {
    return new DXFSpline(*this);
}

void DXFSpline::appendControlPoint(double x, double y, double z, double w) {
    m_controlPoints.push_back({x, y, z, w});
}

void DXFSpline::appendFitPoint(double x, double y, double z) {
    m_fitPoints.emplace_back(x, y, z);
}

void DXFSpline::shrinkToFit() {
    m_knots.shrink_to_fit();
    m_controlPoints.shrink_to_fit();
    m_fitPoints.shrink_to_fit();
}

bool DXFSpline::isEvaluable() const {
    const auto degree = static_cast<std::int64_t>(static_cast<std::int32_t>(m_degree));
    const auto controls = static_cast<std::int64_t>(m_controlPoints.size());
    const auto knots = static_cast<std::int64_t>(m_knots.size());
    return degree >= 0 && degree <= controls - 1 && controls + degree < knots;
}

/// The parameter, moved up to where the curve begins if it lies below: at knots[p], or at knots[n]
/// where the knots fall. There the last of equal steps may end just below it.
double DXFSpline::notBelowKnots(double t) const {
    const double first = m_knots[m_degree];
    const double last = m_knots[m_controlPoints.size()];
    const double lowest = last < first ? last : first;
    return t < lowest ? lowest : t;
}

/// The index k of the knot span to evaluate t in: p <= k <= n - 1, whatever the knots hold.
///
/// With rising knots the search ends at knots[k] <= t < knots[k + 1]. Knots that are not numbers
/// compare false and could keep it from ever getting there; it then ends with the interval that is
/// left.
std::size_t DXFSpline::findSpan(double t) const {
    const std::size_t controls = m_controlPoints.size();
    if (t >= m_knots[controls]) {
        return controls - 1;
    }
    std::size_t low = m_degree;
    std::size_t high = controls;
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        if (t >= m_knots[middle]) {
            if (t < m_knots[middle + 1]) {
                return middle;
            }
            low = middle;
        } else {
            high = middle;
        }
    }
    return low;
}

cv::Point_<double> DXFSpline::evaluate(double t) const {
    if (!isEvaluable()) {
        return {0.0, 0.0};
    }
    std::vector<dxfeditor::HomogeneousPoint> scratch;
    return evaluate(t, scratch);
}

/// @param scratch  kept by the caller from one evaluation to the next
cv::Point_<double> DXFSpline::evaluate(double t,
                                       std::vector<dxfeditor::HomogeneousPoint>& scratch) const {
    const std::size_t degree = m_degree;
    t = notBelowKnots(t);
    const std::size_t span = findSpan(t);

    scratch.resize(degree + 1);
    for (std::size_t j = 0; j <= degree; ++j) {
        const DXFControlPoint& control = m_controlPoints[span - degree + j];
        scratch[j] = {control.x * control.w, control.y * control.w, control.w};
    }
    for (std::size_t r = 1; r <= degree; ++r) {
        for (std::size_t j = degree; j >= r; --j) {
            const double low = m_knots[j + span - degree];
            const double high = m_knots[j + 1 + span - r];
            const double interval = high - low;
            const double alpha = std::fabs(interval) >= vanishing ? (t - low) / interval : 0.0;
            const dxfeditor::HomogeneousPoint& before = scratch[j - 1];
            dxfeditor::HomogeneousPoint& point = scratch[j];
            point.x = (1.0 - alpha) * before.x + alpha * point.x;
            point.y = (1.0 - alpha) * before.y + alpha * point.y;
            point.w = (1.0 - alpha) * before.w + alpha * point.w;
        }
    }
    const dxfeditor::HomogeneousPoint& result = scratch[degree];
    if (std::fabs(result.w) < vanishing) {
        return {0.0, 0.0};
    }
    const double inverseWeight = 1.0 / result.w;
    return {result.x * inverseWeight, result.y * inverseWeight};
}

int DXFSpline::sampleSteps(double step) const {
    double length = 0.0;
    for (std::size_t i = 1; i < m_controlPoints.size(); ++i) {
        const double dx = m_controlPoints[i].x - m_controlPoints[i - 1].x;
        const double dy = m_controlPoints[i].y - m_controlPoints[i - 1].y;
        length += std::sqrt(dx * dx + dy * dy);
    }
    return std::max(dxfeditor::truncatedCount(length / step), dxfeditor::minimumSplineSteps);
}

std::size_t DXFSpline::sampleCount(double step) const {
    return isEvaluable() ? static_cast<std::size_t>(sampleSteps(step)) + 1 : m_fitPoints.size();
}

std::vector<cv::Point_<double>> DXFSpline::sample(double step) const {
    dxfeditor::SplineSamples samples(*this, step);
    std::vector<cv::Point_<double>> points;
    points.reserve(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        points.push_back(samples(i));
    }
    return points;
}
