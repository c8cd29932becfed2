#pragma once

#include "converters/detail/drawing/geometry/Curve.h"

/// The point of a B-spline at a parameter, by the recursion of Cox and de Boor as textbooks write
/// it, in long double. Between knots the one to the right counts, but at the end.
inline converters::drawing::Point plainSplinePoint(const converters::drawing::BSpline& spline,
                                                   long double parameter) {
    const std::size_t degree = spline.degree;
    const std::size_t points = spline.controlPoints.size();
    std::size_t span = degree;
    for (std::size_t i = degree; i < points; ++i) {
        if (spline.knots[i] < spline.knots[i + 1] &&
            static_cast<long double>(spline.knots[i]) <= parameter) {
            span = i;
        }
    }
    std::vector<long double> basis(spline.knots.size() - 1, 0);
    basis[span] = 1;
    for (std::size_t level = 1; level <= degree; ++level) {
        for (std::size_t i = 0; i + level + 1 < spline.knots.size(); ++i) {
            const long double low = spline.knots[i];
            const long double high = spline.knots[i + level + 1];
            const long double left = static_cast<long double>(spline.knots[i + level]) - low;
            const long double right = high - static_cast<long double>(spline.knots[i + 1]);
            basis[i] = (left > 0 ? (parameter - low) / left * basis[i] : 0) +
                       (right > 0 ? (high - parameter) / right * basis[i + 1] : 0);
        }
    }
    long double sum[4] = {0, 0, 0, 0};
    for (std::size_t i = 0; i < points; ++i) {
        const long double share =
            basis[i] * static_cast<long double>(spline.weights.empty() ? 1 : spline.weights[i]);
        sum[0] += share * static_cast<long double>(spline.controlPoints[i].x);
        sum[1] += share * static_cast<long double>(spline.controlPoints[i].y);
        sum[2] += share * static_cast<long double>(spline.controlPoints[i].z);
        sum[3] += share;
    }
    return {static_cast<double>(sum[0] / sum[3]), static_cast<double>(sum[1] / sum[3]),
            static_cast<double>(sum[2] / sum[3])};
}
