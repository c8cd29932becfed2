#include "dxfeditor/DXFCircle.h"

DXFCircle::DXFCircle(const cv::Point3_<double>& center, double radius)
    : m_center(center), m_radius(radius) {}

int DXFCircle::type() const {
    return DXFEntityType::Circle;
}

void DXFCircle::setup() {}

DXFEntity* DXFCircle::clone() const {
    return new DXFCircle(*this);
}
