#pragma once

#include "dxfeditor/DXFEntity.h"

#include <opencv2/core/types.hpp>

#include <vector>

/// Many points that share one set of attributes. Their coordinates are those of the cloud, not of
/// the drawing plane.
class DXFEDITOR_EXPORT DXFPointVector : public DXFEntity {
public:
    /// Copies `points`.
    explicit DXFPointVector(const std::vector<cv::Point3_<double>>& points);

    int type() const override;
    /// Does nothing.
    void setup() override;
    DXFEntity* clone() const override;

    /// A copy of the points, in order.
    std::vector<cv::Point3_<double>> mV() const { return m_points; }
    /// Appends one point at the end.
    void addPoint(const cv::Point3_<double>& point) { m_points.push_back(point); }

    /// The points themselves, in order; valid while the entity lives and is not changed.
    const std::vector<cv::Point3_<double>>& points() const { return m_points; }

private:
    std::vector<cv::Point3_<double>> m_points;
};
