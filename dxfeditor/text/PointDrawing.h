#pragma once

#include <opencv2/core/types.hpp>

#include <string>

namespace dxfeditor {

/// The text of a drawing of POINTs, in pieces: what DXFDraw and DXFWriter make of a point vector on
/// layer "0".
class PointDrawing {
public:
    PointDrawing();

    /// What comes before the points: header, tables, the beginning of the entities.
    const std::string& beginning() const { return m_beginning; }

    /// Appends a POINT to a text.
    void append(const cv::Point3_<double>& point, std::string& text) const;

    /// What comes behind the points.
    const std::string& end() const { return m_end; }

private:
    std::string m_beginning;
    std::string m_pointHead;
    std::string m_end;
};

} // namespace dxfeditor
