#include "tests/support/DrawingText.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"

#include <charconv>

namespace {

/// Shortest text that gives the same number back; the sign of zero and of nan included.
std::string text(double number) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::string text(const std::vector<double>& numbers) {
    std::string line;
    for (const double number : numbers) {
        line += ' ' + text(number);
    }
    return line;
}

std::string text(const std::shared_ptr<DXFAttributes>& a) {
    if (a == nullptr) {
        return " {}";
    }
    return " {" + a->layerName() + ' ' + std::to_string(a->color()) + ' ' +
           std::to_string(a->color24()) + ' ' + std::to_string(a->width()) + ' ' + a->lineType() +
           ' ' + text(a->lineTypeScale()) + ' ' + std::to_string(a->handle()) +
           (a->inPaperSpace() ? " paper}" : "}");
}

void append(std::vector<double>& numbers, const cv::Point3_<double>& point) {
    numbers.insert(numbers.end(), {point.x, point.y, point.z});
}

} // namespace

std::string describe(const DXFEntity& entity) {
    std::string name;
    std::vector<double> numbers;
    if (const auto* point = dynamic_cast<const DXFPoint*>(&entity)) {
        name = "point";
        numbers = {point->mX(), point->mY(), point->mZ()};
    } else if (const auto* vector = dynamic_cast<const DXFPointVector*>(&entity)) {
        name = "points";
        for (const auto& p : vector->points()) {
            append(numbers, p);
        }
    } else if (const auto* line = dynamic_cast<const DXFLine*>(&entity)) {
        name = "line";
        append(numbers, line->getP1());
        append(numbers, line->getP2());
    } else if (const auto* circle = dynamic_cast<const DXFCircle*>(&entity)) {
        name = "circle";
        append(numbers, circle->getCenter());
        numbers.push_back(circle->getRadius());
    } else if (const auto* arc = dynamic_cast<const DXFArc*>(&entity)) {
        name = "arc";
        append(numbers, arc->getCenter());
        numbers.insert(numbers.end(), {arc->getRadius(), arc->getStartAngle(), arc->getEndAngle()});
    } else if (const auto* polyline = dynamic_cast<const DXFPolyline*>(&entity)) {
        name = "polyline " + std::to_string(polyline->mVertices()) + ' ' +
               std::to_string(polyline->nVertices()) + ' ' + std::to_string(polyline->flags());
        for (const DXFVertex& v : polyline->vertices()) {
            numbers.insert(numbers.end(), {v.x(), v.y(), v.z(), v.bulge()});
        }
    } else if (const auto* spline = dynamic_cast<const DXFSpline*>(&entity)) {
        name = "spline " + std::to_string(spline->degree()) + " knots" + text(spline->knots());
        for (const DXFControlPoint& p : spline->controlPoints()) {
            numbers.insert(numbers.end(), {p.x, p.y, p.z, p.w});
        }
        name += " control" + text(numbers) + " fit";
        numbers.clear();
        for (const auto& p : spline->fitPoints()) {
            append(numbers, p);
        }
    }
    return name + text(numbers) + text(entity.attributes());
}

std::string describe(const DXFDocument& document) {
    std::string lines;
    for (const auto& layer : document.layers()) {
        lines += "layer " + layer->name() + ' ' + std::to_string(layer->flags()) +
                 text(layer->attributes()) + '\n';
    }
    for (const auto& entity : document.entities()) {
        lines += describe(*entity) + '\n';
    }
    return lines;
}

void CallbackRecorder::record(const std::string& name, const std::vector<double>& numbers) {
    const DL_Attributes a = getAttributes();
    const double* const direction = getExtrusion()->getDirection();
    calls.push_back(
        name + text(numbers) + " {" + a.getLayer() + ' ' + std::to_string(a.getColor()) + ' ' +
        std::to_string(a.getColor24()) + ' ' + std::to_string(a.getWidth()) + ' ' +
        a.getLinetype() + ' ' + text(a.getLinetypeScale()) + ' ' + std::to_string(a.getHandle()) +
        (a.isInPaperSpace() ? " paper}" : "}") + text({direction[0], direction[1], direction[2]}));
}

void CallbackRecorder::addLayer(const DL_LayerData& data) {
    record("layer " + data.name, {static_cast<double>(data.flags)});
}

void CallbackRecorder::addLinetype(const DL_LinetypeData& data) {
    record("linetype " + data.name + ' ' + data.description,
           {static_cast<double>(data.flags), static_cast<double>(data.numberOfDashes),
            data.patternLength});
}

void CallbackRecorder::addBlock(const DL_BlockData& data) {
    record("block " + data.name, {data.bpx, data.bpy, data.bpz, static_cast<double>(data.flags)});
}

void CallbackRecorder::endBlock() {
    record("endblock", {});
}

void CallbackRecorder::addPoint(const DL_PointData& data) {
    record("point", {data.x, data.y, data.z});
}

void CallbackRecorder::addLine(const DL_LineData& data) {
    record("line", {data.x1, data.y1, data.z1, data.x2, data.y2, data.z2});
}

void CallbackRecorder::addCircle(const DL_CircleData& data) {
    record("circle", {data.cx, data.cy, data.cz, data.radius});
}

void CallbackRecorder::addArc(const DL_ArcData& data) {
    record("arc", {data.cx, data.cy, data.cz, data.radius, data.angle1, data.angle2});
}

void CallbackRecorder::addPolyline(const DL_PolylineData& data) {
    // Not the number of vertices: for a POLYLINE dxflib reports what an earlier entity left there.
    record("polyline", {static_cast<double>(data.m), static_cast<double>(data.n),
                        static_cast<double>(data.flags), data.elevation});
}

void CallbackRecorder::addVertex(const DL_VertexData& data) {
    record("vertex", {data.x, data.y, data.z, data.bulge});
}

void CallbackRecorder::addSpline(const DL_SplineData& data) {
    // Not the tangents: for a blank dxflib reports a number that was never set.
    record("spline", {static_cast<double>(data.degree), static_cast<double>(data.nKnots),
                      static_cast<double>(data.nControl), static_cast<double>(data.nFit),
                      static_cast<double>(data.flags)});
}

void CallbackRecorder::addControlPoint(const DL_ControlPointData& data) {
    record("control", {data.x, data.y, data.z, data.w});
}

void CallbackRecorder::addKnot(const DL_KnotData& data) {
    record("knot", {data.k});
}

void CallbackRecorder::addFitPoint(const DL_FitPointData& data) {
    record("fit", {data.x, data.y, data.z});
}
