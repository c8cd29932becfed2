#include "python/native/DrawingModel.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/VisitEntity.h"
#include "python/native/Conversion.h"
#include "python/native/Memory.h"

#include <pybind11/numpy.h>

namespace py = pybind11;

namespace {

using Point = cv::Point3_<double>;

/// Names in a drawing are bytes of no stated encoding; those that are not UTF-8 survive as
/// surrogates, as file names do in Python.
py::str text(const std::string& bytes) {
    auto decoded = py::reinterpret_steal<py::str>(PyUnicode_DecodeUTF8(
        bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape"));
    if (!decoded) {
        throw py::error_already_set();
    }
    return decoded;
}

/// (layer, colour, line type, width); the values of an entity that has none are the format's own.
py::tuple attributes(const std::shared_ptr<DXFAttributes>& record) {
    constexpr int byLayer = 256;
    if (!record) {
        return py::make_tuple("0", byLayer, "BYLAYER", -1);
    }
    return py::make_tuple(text(record->layerName()), record->color(), text(record->lineType()),
                          record->width());
}

py::tuple coordinates(const Point& point) {
    return py::make_tuple(point.x, point.y, point.z);
}

/// (position,)
py::tuple data(const DXFPoint& point) {
    return py::make_tuple(py::make_tuple(point.mX(), point.mY(), point.mZ()));
}

/// (points,): a view, which keeps the entity.
py::tuple data(const std::shared_ptr<const DXFPointVector>& entity) {
    const std::vector<Point>& points = entity->points();
    const auto count = static_cast<py::ssize_t>(points.size());
    return py::make_tuple(py::array_t<double>(
        {count, py::ssize_t{3}}, reinterpret_cast<const double*>(points.data()),
        keptBy(std::make_unique<std::shared_ptr<const DXFPointVector>>(entity))));
}

/// (start, end)
py::tuple data(const DXFLine& line) {
    return py::make_tuple(coordinates(line.getP1()), coordinates(line.getP2()));
}

/// (centre, radius)
py::tuple data(const DXFCircle& circle) {
    return py::make_tuple(coordinates(circle.getCenter()), circle.getRadius());
}

/// (centre, radius, start angle, end angle)
py::tuple data(const DXFArc& arc) {
    return py::make_tuple(coordinates(arc.getCenter()), arc.getRadius(), arc.getStartAngle(),
                          arc.getEndAngle());
}

/// (vertices, bulges, closed)
py::tuple data(const DXFPolyline& polyline) {
    std::vector<Point> vertices;
    std::vector<double> bulges;
    for (const DXFVertex& vertex : polyline.vertices()) {
        vertices.emplace_back(vertex.x(), vertex.y(), vertex.z());
        bulges.push_back(vertex.bulge());
    }
    return py::make_tuple(rows<double>(std::move(vertices), 3), copied(bulges),
                          polyline.isClosed());
}

/// (degree, knots, control points, weights, fit points)
py::tuple data(const DXFSpline& spline) {
    std::vector<Point> controlPoints;
    std::vector<double> weights;
    for (const DXFControlPoint& point : spline.controlPoints()) {
        controlPoints.emplace_back(point.x, point.y, point.z);
        weights.push_back(point.w);
    }
    return py::make_tuple(spline.degree(), copied(spline.knots()),
                          rows<double>(std::move(controlPoints), 3), copied(weights),
                          rows<double>(std::vector<Point>(spline.fitPoints()), 3));
}

py::tuple data(const std::shared_ptr<const DXFEntity>& entity) {
    py::tuple result;
    dxfeditor::visitEntity(*entity, [&](const auto& kind) {
        if constexpr (std::is_same_v<decltype(kind), const DXFPointVector&>) {
            result = data(std::shared_ptr<const DXFPointVector>(entity, &kind));
        } else {
            result = data(kind);
        }
    });
    return result;
}

} // namespace

std::unique_ptr<DrawingModel> DrawingModel::fromBytes(const py::object& source) {
    const ByteView view(source);
    auto drawing = std::make_unique<DrawingModel>();
    convert(PyExc_ValueError, [&] {
        if (!DXFReader(drawing->m_document).load(view.copy<char>())) {
            return "the data could not be read as a drawing";
        }
        drawing->m_document.setup();
        return "";
    });
    return drawing;
}

py::list DrawingModel::layers() const {
    py::list result;
    for (const auto& layer : m_document.layers()) {
        result.append(py::make_tuple(text(layer->name()), layer->flags(), layer->isFrozen(),
                                     layer->isLocked()) +
                      attributes(layer->attributes())[py::slice(1, 4, 1)]);
    }
    return result;
}

py::list DrawingModel::entities() const {
    py::list result;
    for (const auto& entity : m_document.entities()) {
        result.append(py::make_tuple(entity->type()) + attributes(entity->attributes()) +
                      py::make_tuple(data(entity)));
    }
    return result;
}

py::tuple DrawingModel::walk() const {
    std::vector<Point> points;
    std::vector<DXFContour> contours;
    {
        const py::gil_scoped_release unlocked;
        points = m_document.getPoints(contours);
    }
    py::list spans;
    for (const DXFContour& contour : contours) {
        spans.append(py::make_tuple(contour.begin, contour.end, contour.closed));
    }
    return py::make_tuple(rows<double>(std::move(points), 3), spans);
}
