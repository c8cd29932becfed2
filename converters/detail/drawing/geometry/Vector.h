#pragma once

#include <opencv2/core/types.hpp>

namespace converters::drawing {

/// A point of space, and a way from one to another: x, y, z in the drawing's units.
using Point = cv::Point3_<double>;
using Vector = cv::Point3_<double>;

} // namespace converters::drawing
