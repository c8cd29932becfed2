#include "tests/support/ReferenceSpline.h"

#include <cmath>

namespace {

using Real = long double;

/// The basis function of control point i, of degree p, within the span that starts at knot `span`.
Real basis(const std::vector<double>& knots, std::size_t i, std::size_t p, std::size_t span,
           Real t) {
    if (p == 0) {
        return i == span ? 1.0L : 0.0L;
    }
    const auto knot = [&](std::size_t index) { return static_cast<Real>(knots[index]); };
    Real value = 0.0L;
    if (knot(i + p) > knot(i)) {
        value += (t - knot(i)) / (knot(i + p) - knot(i)) * basis(knots, i, p - 1, span, t);
    }
    if (knot(i + p + 1) > knot(i + 1)) {
        value += (knot(i + p + 1) - t) / (knot(i + p + 1) - knot(i + 1)) *
                 basis(knots, i + 1, p - 1, span, t);
    }
    return value;
}

/// The last span that starts at or before t.
std::size_t spanByWalking(const DXFSpline& spline, double t) {
    std::size_t span = spline.degree();
    while (span + 1 < spline.controlPoints().size() && spline.knots()[span + 1] <= t) {
        ++span;
    }
    return span;
}

std::optional<std::size_t> spanByBisection(const std::vector<double>& knots, std::size_t p,
                                           std::size_t n, double t) {
    if (t >= knots[n]) {
        return n - 1;
    }
    std::size_t low = p;
    std::size_t high = n;
    // More rounds than any search that gets somewhere can need.
    for (int round = 0; round < 1000; ++round) {
        const std::size_t middle = (low + high) / 2;
        if (t >= knots[middle] && t < knots[middle + 1]) {
            return middle;
        }
        (t >= knots[middle] ? low : high) = middle;
    }
    return std::nullopt;
}

} // namespace

cv::Point_<double> basisFunctionPoint(const DXFSpline& spline, double t) {
    const std::size_t span = spanByWalking(spline, t);
    Real x = 0.0L;
    Real y = 0.0L;
    Real weight = 0.0L;
    for (std::size_t i = 0; i < spline.controlPoints().size(); ++i) {
        const DXFControlPoint& control = spline.controlPoints()[i];
        const Real share = basis(spline.knots(), i, spline.degree(), span, t) * control.w;
        x += share * control.x;
        y += share * control.y;
        weight += share;
    }
    return {static_cast<double>(x / weight), static_cast<double>(y / weight)};
}

std::optional<cv::Point_<double>> plainTrianglePoint(const DXFSpline& spline, double t) {
    const std::vector<double>& u = spline.knots();
    const std::size_t p = spline.degree();
    const std::size_t n = spline.controlPoints().size();
    const std::optional<std::size_t> found = spanByBisection(u, p, n, t);
    if (!found) {
        return std::nullopt;
    }
    const std::size_t k = *found;
    std::vector<double> x(p + 1);
    std::vector<double> y(p + 1);
    std::vector<double> w(p + 1);
    for (std::size_t j = 0; j <= p; ++j) {
        const DXFControlPoint& control = spline.controlPoints().at(k - p + j);
        x[j] = control.x * control.w;
        y[j] = control.y * control.w;
        w[j] = control.w;
    }
    for (std::size_t r = 1; r <= p; ++r) {
        for (std::size_t j = p; j >= r; --j) {
            const double low = u.at(j + k - p);
            const double width = u.at(j + 1 + k - r) - low;
            const double alpha = std::abs(width) >= 1e-15 ? (t - low) / width : 0.0;
            x[j] = (1 - alpha) * x[j - 1] + alpha * x[j];
            y[j] = (1 - alpha) * y[j - 1] + alpha * y[j];
            w[j] = (1 - alpha) * w[j - 1] + alpha * w[j];
        }
    }
    if (std::abs(w[p]) < 1e-15) {
        return cv::Point_<double>(0, 0);
    }
    return cv::Point_<double>(x[p] * (1 / w[p]), y[p] * (1 / w[p]));
}
