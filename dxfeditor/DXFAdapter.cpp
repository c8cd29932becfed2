#include "dxfeditor/DXFAdapter.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFSpline.h"

std::shared_ptr<DXFAttributes> DXFAdapter::makeAttributes(const DL_Attributes& attributes) {
    return std::make_shared<DXFAttributes>(attributes.getLayer(), attributes.getColor(),
                                           attributes.getColor24(), attributes.getWidth(),
                                           attributes.getLinetype(), attributes.getLinetypeScale(),
                                           attributes.getHandle(), false);
}

std::shared_ptr<DXFLayer> DXFAdapter::makeLayer(const DL_LayerData& data) {
    return std::make_shared<DXFLayer>(data.name, data.flags);
}

std::shared_ptr<DXFLineType> DXFAdapter::makeLineType(const DL_LinetypeData& data) {
    return std::make_shared<DXFLineType>(data.name, data.description, data.flags,
                                         data.numberOfDashes, data.patternLength, data.pattern);
}

std::shared_ptr<DXFPoint> DXFAdapter::makePoint(const DL_PointData& data) {
    return std::make_shared<DXFPoint>(data.x, data.y, data.z);
}

std::shared_ptr<DXFLine> DXFAdapter::makeLine(const DL_LineData& data) {
    return std::make_shared<DXFLine>(cv::Point3_<double>(data.x1, data.y1, data.z1),
                                     cv::Point3_<double>(data.x2, data.y2, data.z2));
}

std::shared_ptr<DXFCircle> DXFAdapter::makeCircle(const DL_CircleData& data) {
    return std::make_shared<DXFCircle>(cv::Point3_<double>(data.cx, data.cy, data.cz), data.radius);
}

std::shared_ptr<DXFArc> DXFAdapter::makeArc(const DL_ArcData& data) {
    return std::make_shared<DXFArc>(cv::Point3_<double>(data.cx, data.cy, data.cz), data.radius,
                                    data.angle1, data.angle2);
}

std::shared_ptr<DXFPolyline> DXFAdapter::makePolyline(const DL_PolylineData& data) {
    return std::make_shared<DXFPolyline>(data.m, data.n, static_cast<unsigned>(data.flags));
}

DXFVertex DXFAdapter::makeVertex(const DL_VertexData& data) {
    return DXFVertex(data.x, data.y, data.z, true, data.bulge);
}

std::shared_ptr<DXFSpline> DXFAdapter::makeSpline(const DL_SplineData& data) {
    return std::make_shared<DXFSpline>(data.degree, data.nKnots, data.nControl, data.nFit,
                                       data.flags);
}

std::shared_ptr<DXFPointVector>
DXFAdapter::makePointVector(const std::vector<cv::Point3_<double>>& points) {
    return std::make_shared<DXFPointVector>(points);
}

DL_Attributes DXFAdapter::makeAttributes(std::shared_ptr<DXFAttributes> attributes) {
    // This constructor sets line type scale 1 and model space.
    return DL_Attributes(attributes->layerName(), attributes->color(), attributes->color24(),
                         attributes->width(), attributes->lineType(), attributes->handle());
}

DL_LayerData DXFAdapter::makeLayer(std::shared_ptr<DXFLayer> layer) {
    return DL_LayerData(layer->name(), layer->flags());
}

DL_LinetypeData DXFAdapter::makeLineType(std::shared_ptr<DXFLineType> lineType) {
    return DL_LinetypeData(lineType->name(), lineType->description(), lineType->flags(),
                           lineType->numberOfDashes(), lineType->patternLength(),
                           lineType->pattern());
}

DL_PointData DXFAdapter::makePoint(std::shared_ptr<DXFPoint> point) {
    return DL_PointData(point->mX(), point->mY(), point->mZ());
}

DL_LineData DXFAdapter::makeLine(std::shared_ptr<DXFLine> line) {
    const cv::Point3_<double> p1 = line->getP1();
    const cv::Point3_<double> p2 = line->getP2();
    return DL_LineData(p1.x, p1.y, p1.z, p2.x, p2.y, p2.z);
}

DL_CircleData DXFAdapter::makeCircle(std::shared_ptr<DXFCircle> circle) {
    const cv::Point3_<double> center = circle->getCenter();
    return DL_CircleData(center.x, center.y, center.z, circle->getRadius());
}

DL_ArcData DXFAdapter::makeArc(std::shared_ptr<DXFArc> arc) {
    const cv::Point3_<double> center = arc->getCenter();
    return DL_ArcData(center.x, center.y, center.z, arc->getRadius(), arc->getStartAngle(),
                      arc->getEndAngle());
}

DL_PolylineData DXFAdapter::makePolyline(std::shared_ptr<DXFPolyline> polyline) {
    return DL_PolylineData(polyline->vertexNumber(), static_cast<int>(polyline->mVertices()),
                           static_cast<int>(polyline->nVertices()),
                           static_cast<int>(polyline->flags()), 0.0);
}

DL_VertexData DXFAdapter::makeVertex(DXFVertex vertex) {
    return DL_VertexData(vertex.x(), vertex.y(), vertex.z(), vertex.bulge());
}

DL_SplineData DXFAdapter::makeSpline(std::shared_ptr<DXFSpline> spline) {
    DL_SplineData data(static_cast<int>(spline->degree()), static_cast<int>(spline->knots().size()),
                       static_cast<int>(spline->controlPoints().size()),
                       static_cast<int>(spline->fitPoints().size()), 0);
    // Its constructor leaves the tangents unset.
    data.tangentStartX = data.tangentStartY = data.tangentStartZ = 0.0;
    data.tangentEndX = data.tangentEndY = data.tangentEndZ = 0.0;
    return data;
}
