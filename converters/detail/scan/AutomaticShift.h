#pragma once

#include "converters/Scan.h"

#include <opencv2/core/types.hpp>

#include <array>
#include <vector>

namespace converters::scan {

/// A shift that makes coordinates small enough for floats, in whole hundreds; 0 for each axis that
/// needs none.
///
/// @param points  those to choose by; their order is changed. Points without a place do not count.
/// @param types   of x, y and z in the file
cv::Point3_<double> automaticShift(std::vector<cv::Point3_<double>>& points,
                                   const std::array<ScalarType, 3>& types);

} // namespace converters::scan
