#pragma once

#include "dxfeditor/DXFSpline.h"

#include <optional>

/// The curve's point at t as the sum of its rational basis functions, by the recursion of Cox and
/// de Boor in long double: slow, and with no step in common with DXFSpline.
///
/// The spline must be well formed with rising knots. From knots[n] on, the last span's polynomials
/// go on.
cv::Point_<double> basisFunctionPoint(const DXFSpline& spline, double t);

/// The curve's point at t by the plain bisection and de Boor triangle, for any knots and any
/// t >= knots[p]; nothing when that bisection would search for ever.
std::optional<cv::Point_<double>> plainTrianglePoint(const DXFSpline& spline, double t);
