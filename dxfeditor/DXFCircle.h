#pragma once

#include "dxfeditor/DXFEntity.h"

#include <opencv2/core/types.hpp>

/// A circle, in drawing units. The radius is kept as given, also when it is negative.
class DXFEDITOR_EXPORT DXFCircle : public DXFEntity {
public:
    /// A circle; nothing is checked.
    DXFCircle(const cv::Point3_<double>& center, double radius);

    int type() const override;
    /// Does nothing.
    void setup() override;
    DXFEntity* clone() const override;

    /// Centre, as given.
    cv::Point3_<double> getCenter() const { return m_center; }
    /// Radius, as given.
    double getRadius() const { return m_radius; }

private:
    cv::Point3_<double> m_center;
    double m_radius;
};
