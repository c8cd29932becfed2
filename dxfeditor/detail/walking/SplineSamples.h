#pragma once

#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/detail/walking/Spaces.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <vector>

namespace dxfeditor {

/// The points of DXFSpline::sample(step), one at a time and in any order.
///
/// The spline must outlive it and stay as it is.
class SplineSamples {
public:
    SplineSamples(const DXFSpline& spline, double step);

    std::size_t size() const { return m_size; }

    /// @param i  below size()
    cv::Point_<double> operator()(std::size_t i);

private:
    const DXFSpline& m_spline;
    bool m_evaluable;
    std::size_t m_size;
    double m_start = 0.0;
    double m_parameterStep = 0.0;
    /// Of the evaluation, kept from one point to the next.
    std::vector<HomogeneousPoint> m_scratch;
};

} // namespace dxfeditor
