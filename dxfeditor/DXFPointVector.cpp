#include "dxfeditor/DXFPointVector.h"

DXFPointVector::DXFPointVector(const std::vector<cv::Point3_<double>>& points) : m_points(points) {}

int DXFPointVector::type() const {
    return DXFEntityType::PointVector;
}

void DXFPointVector::setup() {}

DXFEntity* DXFPointVector::clone() const {
    return new DXFPointVector(*this);
}
