#pragma once

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/Export.h"

#include <dxflib/dl_attributes.h>
#include <dxflib/dl_entities.h>
#include <opencv2/core/types.hpp>

#include <memory>
#include <vector>

/// Copies between dxflib's plain records and the model's objects, field by field. No unit is
/// converted: arc angles are degrees on both sides.
///
/// The functions that take a model object by pointer dereference it: it must not be empty.
class DXFEDITOR_EXPORT DXFAdapter {
public:
    DXFAdapter() = delete;

    /// The record's attributes. Paper space is dropped: the model never puts an entity there.
    static std::shared_ptr<DXFAttributes> makeAttributes(const DL_Attributes& attributes);
    /// The layer's name and flags, without attributes; whether it is off is not kept.
    static std::shared_ptr<DXFLayer> makeLayer(const DL_LayerData& data);
    /// The line type; its pattern pointer is handed over as it is, see DXFLineType.
    static std::shared_ptr<DXFLineType> makeLineType(const DL_LinetypeData& data);
    /// The point, coordinates as they are.
    static std::shared_ptr<DXFPoint> makePoint(const DL_PointData& data);
    /// The line, from the record's first point to its second.
    static std::shared_ptr<DXFLine> makeLine(const DL_LineData& data);
    /// The circle, centre and radius as they are.
    static std::shared_ptr<DXFCircle> makeCircle(const DL_CircleData& data);
    /// The arc, centre, radius and angles as they are.
    static std::shared_ptr<DXFArc> makeArc(const DL_ArcData& data);
    /// A polyline without vertices. The record's own vertex count is dropped: a polyline counts
    /// the vertices that it is given.
    static std::shared_ptr<DXFPolyline> makePolyline(const DL_PolylineData& data);
    /// The vertex; its flag is always true.
    static DXFVertex makeVertex(const DL_VertexData& data);
    /// A spline without knots and points.
    static std::shared_ptr<DXFSpline> makeSpline(const DL_SplineData& data);
    /// An entity that holds a copy of the points.
    static std::shared_ptr<DXFPointVector>
    makePointVector(const std::vector<cv::Point3_<double>>& points);

    /// The record of the attributes, always with line type scale 1 and in model space: what is
    /// written is neither scaled nor on paper, whatever the entity held.
    static DL_Attributes makeAttributes(std::shared_ptr<DXFAttributes> attributes);
    /// The record of a layer that is not off.
    static DL_LayerData makeLayer(std::shared_ptr<DXFLayer> layer);
    /// The record of the line type; the pattern pointer is handed over as it is.
    static DL_LinetypeData makeLineType(std::shared_ptr<DXFLineType> lineType);
    /// The record of the point.
    static DL_PointData makePoint(std::shared_ptr<DXFPoint> point);
    /// The record of the line.
    static DL_LineData makeLine(std::shared_ptr<DXFLine> line);
    /// The record of the circle.
    static DL_CircleData makeCircle(std::shared_ptr<DXFCircle> circle);
    /// The record of the arc.
    static DL_ArcData makeArc(std::shared_ptr<DXFArc> arc);
    /// The polyline's record, counting the vertices that it has; elevation 0.
    static DL_PolylineData makePolyline(std::shared_ptr<DXFPolyline> polyline);
    /// The record of the vertex.
    static DL_VertexData makeVertex(DXFVertex vertex);
    /// The spline's record, counting the knots and points that it has; flags 0 whatever it holds.
    static DL_SplineData makeSpline(std::shared_ptr<DXFSpline> spline);
};
