#include "dxfeditor/DXFArc.h"

DXFArc::DXFArc(const cv::Point3_<double>& center, double radius, double startAngle, double endAngle)
    : m_center(center), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle) {}

int DXFArc::type() const {
    return DXFEntityType::Arc;
}

void DXFArc::setup() {}

DXFEntity* DXFArc::clone() const {
    return new DXFArc(*this);
}
