#include "dxfeditor/detail/walking/SplineSamples.h"

namespace dxfeditor {

SplineSamples::SplineSamples(const DXFSpline& spline, double step)
    : m_spline(spline), m_evaluable(spline.isEvaluable()), m_size(spline.fitPoints().size()) {
    if (!m_evaluable) {
        return;
    }
    const int steps = spline.sampleSteps(step);
    const double end = spline.knots()[spline.controlPoints().size()];
    m_start = spline.knots()[spline.degree()];
    m_parameterStep = (end - m_start) / steps;
    m_size = static_cast<std::size_t>(steps) + 1;
}

cv::Point_<double> SplineSamples::operator()(std::size_t i) {
    if (!m_evaluable) {
        const cv::Point3_<double>& fit = m_spline.fitPoints()[i];
        return {fit.x, fit.y};
    }
    return m_spline.evaluate(m_start + static_cast<double>(i) * m_parameterStep, m_scratch);
}

} // namespace dxfeditor
