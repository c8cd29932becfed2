#pragma once

#include "dxfeditor/DXFEntity.h"

#include <opencv2/core/types.hpp>

/// A circular arc, counter-clockwise from its start to its end angle, in drawing units and degrees.
/// Radius and angles are kept as given.
class DXFEDITOR_EXPORT DXFArc : public DXFEntity {
public:
    /// An arc; nothing is checked.
    ///
    /// @param center                centre, in drawing units
    /// @param radius                radius, in drawing units
    /// @param startAngle, endAngle  degrees; an end below the start sweeps through zero
    DXFArc(const cv::Point3_<double>& center, double radius, double startAngle, double endAngle);

    int type() const override;
    /// Does nothing.
    void setup() override;
    DXFEntity* clone() const override;

    /// Centre, as given.
    cv::Point3_<double> getCenter() const { return m_center; }
    /// Radius, as given.
    double getRadius() const { return m_radius; }
    /// Start angle in degrees, as given.
    double getStartAngle() const { return m_startAngle; }
    /// End angle in degrees, as given.
    double getEndAngle() const { return m_endAngle; }

private:
    cv::Point3_<double> m_center;
    double m_radius;
    double m_startAngle;
    double m_endAngle;
};
