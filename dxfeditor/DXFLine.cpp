#include "dxfeditor/DXFLine.h"

DXFLine::DXFLine(const cv::Point3_<double>& p1, const cv::Point3_<double>& p2)
    : m_p1(p1), m_p2(p2) {}

int DXFLine::type() const {
    return DXFEntityType::Line;
}

void DXFLine::setup() {}

DXFEntity* DXFLine::clone() const {
    return new DXFLine(m_p1, m_p2);
}
