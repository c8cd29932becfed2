#include "dxfeditor/DXFPointVector.h"

#include "base/LargePages.h"

DXFPointVector::DXFPointVector(const std::vector<cv::Point3_<double>>& points) {
    base::reserveLarge(m_points, points.size());
    m_points = points;
}

int DXFPointVector::type() const {
    return DXFEntityType::PointVector;
}

void DXFPointVector::setup() {}

DXFEntity* DXFPointVector::clone() const {
    return new DXFPointVector(*this);
}
