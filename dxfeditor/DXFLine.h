#pragma once

#include "dxfeditor/DXFEntity.h"

#include <opencv2/core/types.hpp>

/// A straight line between two points, in drawing units.
class DXFEDITOR_EXPORT DXFLine : public DXFEntity {
public:
    /// A line from p1 to p2.
    DXFLine(const cv::Point3_<double>& p1, const cv::Point3_<double>& p2);

    int type() const override;
    /// Does nothing.
    void setup() override;
    /// A new line between the same ends, without attributes and of line width 0: alone among the
    /// entities, a line's clone does not take them over. Callers that need them install them again.
    DXFEntity* clone() const override;

    /// Where the line starts.
    cv::Point3_<double> getP1() const { return m_p1; }
    /// Where the line ends.
    cv::Point3_<double> getP2() const { return m_p2; }

private:
    cv::Point3_<double> m_p1;
    cv::Point3_<double> m_p2;
};
