#include "python/native/Reading.h"

#include "converters/DrawingPath.h"
#include "converters/Scan.h"
#include "converters/ScanWriter.h"
#include "converters/check/PathFindings.h"
#include "python/native/Conversion.h"
#include "python/native/DrawingWriting.h"
#include "python/native/Memory.h"
#include "python/native/ProgressCall.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathPiece;
using converters::ScanReport;

/// Text of a file for people: what is no UTF-8 shows as replacement characters.
py::str textOf(const std::string& bytes) {
    auto decoded = py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "replace"));
    if (!decoded) {
        throw py::error_already_set();
    }
    return decoded;
}

py::list textsOf(const std::vector<std::string>& texts) {
    py::list list;
    for (const std::string& text : texts) {
        list.append(textOf(text));
    }
    return list;
}

/// (reason, line) of a failure; None after success.
py::object failureOf(const converters::ReadResult& result) {
    if (result) {
        return py::none();
    }
    return py::make_tuple(textOf(result.reason), result.line);
}

const char* nameOfUse(converters::ScanPropertyUse use) {
    switch (use) {
    case converters::ScanPropertyUse::x:
        return "x";
    case converters::ScanPropertyUse::y:
        return "y";
    case converters::ScanPropertyUse::z:
        return "z";
    case converters::ScanPropertyUse::intensity:
        return "intensity";
    case converters::ScanPropertyUse::kept:
        return "kept";
    case converters::ScanPropertyUse::dropped:
        break;
    }
    return "dropped";
}

py::list elementsOf(const ScanReport& report) {
    py::list elements;
    for (const converters::ScanElement& element : report.elements) {
        py::list properties;
        for (const converters::ScanProperty& property : element.properties) {
            const py::object countType =
                property.countType.has_value()
                    ? py::object(py::str(converters::nameOf(*property.countType)))
                    : py::object(py::none());
            properties.append(py::make_tuple(textOf(property.name),
                                             converters::nameOf(property.type), countType,
                                             nameOfUse(property.use)));
        }
        elements.append(py::make_tuple(textOf(element.name), element.count, properties));
    }
    return elements;
}

py::dict dictOf(const ScanReport& report) {
    py::dict result;
    result["format"] = converters::nameOf(report.format);
    result["elements"] = elementsOf(report);
    result["vertex_element"] = report.vertexElement;
    result["width"] = report.width;
    result["height"] = report.height;
    result["comments"] = textsOf(report.comments);
    result["notes"] = textsOf(report.notes);
    result["shift"] = py::make_tuple(report.shift.x, report.shift.y, report.shift.z);
    result["points_without_place"] = report.pointsWithoutPlace;
    return result;
}

/// ((name, number of the type, offset), ...) of the records' fields.
py::list fieldsOf(const pcl::PCLPointCloud2& cloud) {
    py::list fields;
    for (const pcl::PCLPointField& field : cloud.fields) {
        fields.append(
            py::make_tuple(textOf(field.name), static_cast<int>(field.datatype), field.offset));
    }
    return fields;
}

/// (failure, records as bytes, fields, size of a record, report)
py::tuple readScan(const py::object& source, const std::string& intensity,
                   const std::optional<std::tuple<double, double, double>>& shift,
                   bool automaticShift, const py::object& progress) {
    const ByteView view(source);
    ProgressCall call(progress);
    converters::ScanOptions options;
    options.intensity = intensity;
    options.automaticShift = automaticShift;
    if (shift.has_value()) {
        options.shift = std::make_from_tuple<cv::Point3_<double>>(*shift);
    }
    options.progress = call.function();
    auto cloud = std::make_unique<pcl::PCLPointCloud2>();
    converters::ScanResult result;
    {
        const py::gil_scoped_release unlocked;
        result = converters::readScan(view.data(), view.size(), *cloud, options);
    }
    call.raiseIfStopped();
    const py::list fields = fieldsOf(*cloud);
    const std::size_t recordSize = cloud->point_step;
    const auto size = static_cast<py::ssize_t>(cloud->data.size());
    const std::uint8_t* const memory = cloud->data.data();
    return py::make_tuple(failureOf(result),
                          py::array_t<std::uint8_t>(size, memory, keptBy(std::move(cloud))), fields,
                          recordSize, dictOf(result.report));
}

/// Writes records, whose fields are (name, number of the type, offset), as a file.
py::bytes writePoints(const py::object& records,
                      const std::vector<std::tuple<std::string, int, std::size_t>>& fields,
                      std::size_t recordSize, const std::string& format,
                      const std::optional<int>& digits, std::uint64_t width, std::uint64_t height,
                      const std::vector<std::string>& comments) {
    static const std::map<std::string, converters::ScanOutput> outputs = {
        {"ply", converters::ScanOutput::plyBinary},
        {"ply-ascii", converters::ScanOutput::plyAscii},
        {"csv", converters::ScanOutput::csv},
        {"xyz", converters::ScanOutput::xyz},
        {"dxf", converters::ScanOutput::dxf}};
    const ByteView view(records);
    converters::ScanLayout layout;
    for (const auto& [name, type, offset] : fields) {
        layout.fields.push_back({name, static_cast<converters::ScalarType>(type), offset});
    }
    layout.recordSize = recordSize;
    std::vector<unsigned char> file;
    bool written = false;
    {
        const py::gil_scoped_release unlocked;
        const auto append = [&file](const void* bytes, std::size_t size) {
            const auto* const begin = static_cast<const unsigned char*>(bytes);
            file.insert(file.end(), begin, begin + size);
            return true;
        };
        converters::ScanWriter writer(append, layout, outputs.at(format),
                                      {digits, width, height, comments});
        const std::size_t count = recordSize == 0 ? 0 : view.size() / recordSize;
        written = writer.begin(count) && writer.write(view.data(), count) && writer.finish();
    }
    if (!written) {
        throw py::value_error("a drawing needs the fields x, y and z");
    }
    return toBytes(file);
}

py::tuple tupleOf(const cv::Point3_<double>& point) {
    return py::make_tuple(point.x, point.y, point.z);
}

py::list contoursOf(const DrawingPath& path) {
    py::list contours;
    for (const PathContour& contour : path.contours) {
        const py::object trueColour = contour.trueColour < 0
                                          ? py::object(py::none())
                                          : py::object(py::int_(contour.trueColour));
        contours.append(py::make_tuple(py::make_tuple(contour.firstPoint, contour.endPoint),
                                       py::make_tuple(contour.firstPiece, contour.endPiece),
                                       py::make_tuple(contour.firstEntity, contour.endEntity),
                                       contour.length, contour.layer, contour.closed,
                                       contour.colour, trueColour));
    }
    return contours;
}

const char* nameOfCurve(converters::PathCurveKind kind) {
    switch (kind) {
    case converters::PathCurveKind::point:
        return "point";
    case converters::PathCurveKind::line:
        return "line";
    case converters::PathCurveKind::arc:
        return "arc";
    case converters::PathCurveKind::ellipticArc:
        return "elliptic arc";
    case converters::PathCurveKind::spline:
        break;
    }
    return "spline";
}

py::dict dictOf(const converters::PathSpline& spline) {
    py::dict result;
    result["degree"] = spline.degree;
    result["knots"] = copied(spline.knots);
    result["control_points"] =
        rows<double>(std::vector<cv::Point3_<double>>(spline.controlPoints), 3);
    result["weights"] = copied(spline.weights);
    return result;
}

/// The numbers of a piece's curve, by name; none of points and lines.
py::dict curveOf(const DrawingPath& path, const PathPiece& piece) {
    py::dict result;
    if (piece.kind == converters::PathCurveKind::arc) {
        const converters::PathArc& arc = path.arcs[piece.curve];
        result["centre"] = tupleOf(arc.centre);
        result["normal"] = tupleOf(arc.normal);
        result["radius"] = arc.radius;
        result["sweep"] = arc.sweep;
    } else if (piece.kind == converters::PathCurveKind::ellipticArc) {
        const converters::PathEllipticArc& arc = path.ellipticArcs[piece.curve];
        result["centre"] = tupleOf(arc.centre);
        result["major"] = tupleOf(arc.major);
        result["minor"] = tupleOf(arc.minor);
        result["start"] = arc.start;
        result["sweep"] = arc.sweep;
    } else if (piece.kind == converters::PathCurveKind::spline) {
        result = dictOf(path.splines[piece.curve]);
    }
    return result;
}

/// A path, from which Python takes what it asks for.
class PathModel {
public:
    explicit PathModel(DrawingPath path) : m_path(std::make_shared<DrawingPath>(std::move(path))) {}

    /// All points, a view of an array that keeps the path.
    py::array points() const {
        const auto count = static_cast<py::ssize_t>(m_path->points.size());
        return py::array_t<double>({count, py::ssize_t{3}},
                                   reinterpret_cast<const double*>(m_path->points.data()),
                                   keptBy(std::make_unique<std::shared_ptr<DrawingPath>>(m_path)));
    }

    py::list contours() const { return contoursOf(*m_path); }

    /// (kind, handle, INSERT's handle, layer)
    py::tuple entity(std::size_t index) const {
        const converters::PathEntity& entity = m_path->entities.at(index);
        return py::make_tuple(converters::nameOf(entity.kind), entity.handle, entity.insert,
                              entity.layer);
    }

    /// (kind, first point, last point, entity, numbers of the curve)
    py::tuple piece(std::size_t index) const {
        const PathPiece& piece = m_path->pieces.at(index);
        return py::make_tuple(nameOfCurve(piece.kind), piece.firstPoint, piece.lastPoint,
                              piece.entity, curveOf(*m_path, piece));
    }

    /// (name, colour, off, frozen) of each layer
    py::list layers() const {
        py::list layers;
        for (const converters::PathLayer& layer : m_path->layers) {
            layers.append(
                py::make_tuple(textOf(layer.name), layer.colour, layer.off, layer.frozen));
        }
        return layers;
    }

    /// (kind, layer, number, reason) of what was left out
    py::list leftOut() const {
        py::list parts;
        for (const converters::LeftOut& part : m_path->leftOut) {
            parts.append(py::make_tuple(textOf(part.kind), textOf(part.layer), part.number,
                                        converters::nameOf(part.reason)));
        }
        return parts;
    }

    py::dict summary() const {
        py::dict result;
        result["notes"] = textsOf(m_path->notes);
        result["drawing_unit"] = static_cast<int>(m_path->drawingUnit);
        result["unit"] = static_cast<int>(m_path->unit);
        result["lowest"] = tupleOf(m_path->lowest);
        result["highest"] = tupleOf(m_path->highest);
        result["length"] = m_path->length;
        result["way_length"] = m_path->wayLength;
        return result;
    }

    /// The path as a file that holds its contours as polylines.
    py::bytes toDxf() const { return drawingFileOf(*m_path); }

private:
    std::shared_ptr<DrawingPath> m_path;
};

/// The options by their names in Python; what is None has its default.
converters::PathOptions pathOptionsOf(const py::dict& given) {
    converters::PathOptions options;
    const auto take = [&given](const char* name, auto& value) {
        if (given.contains(name) && !given[name].is_none()) {
            value = given[name].cast<std::decay_t<decltype(value)>>();
        }
    };
    int unit = 0;
    int order = 0;
    int axes = 0;
    take("tolerance", options.tolerance);
    take("step", options.step);
    take("join", options.joinDistance);
    take("unit", unit);
    take("scale", options.scale);
    take("layers", options.layers);
    take("except_layers", options.exceptLayers);
    take("hidden", options.hidden);
    take("paper_space", options.paperSpace);
    take("axes", axes);
    take("order", order);
    take("maximum_points", options.maximumPoints);
    options.unit = static_cast<converters::LengthUnit>(unit);
    options.axes = static_cast<converters::PathAxes>(axes);
    options.order = static_cast<converters::PathOrder>(order);
    return options;
}

/// (failure, path)
py::tuple readPath(const py::object& source, const py::dict& given, const py::object& progress) {
    const ByteView view(source);
    ProgressCall call(progress);
    converters::PathOptions options = pathOptionsOf(given);
    options.progress = call.function();
    DrawingPath path;
    converters::ReadResult result;
    {
        const py::gil_scoped_release unlocked;
        result = converters::readPath(view.data(), view.size(), path, options);
    }
    call.raiseIfStopped();
    return py::make_tuple(failureOf(result), PathModel(std::move(path)));
}

/// A function that reports what is done of a work that is a part of all.
std::function<bool(double)> partOf(const std::function<bool(double)>& all, double begin,
                                   double end) {
    return [=](double done) { return all(begin + (end - begin) * done); };
}

/// (kind, text, places, [(kind, handle, INSERT's handle, layer)]) of each finding
py::list listOf(const std::vector<converters::Finding>& findings) {
    py::list list;
    for (const converters::Finding& finding : findings) {
        py::list places;
        for (const cv::Point3_<double>& place : finding.places) {
            places.append(tupleOf(place));
        }
        py::list entities;
        for (const converters::FoundEntity& entity : finding.entities) {
            entities.append(py::make_tuple(textOf(entity.kind), entity.handle, entity.insert,
                                           textOf(entity.layer)));
        }
        list.append(py::make_tuple(nameOf(finding.kind), textOf(finding.text), py::tuple(places),
                                   entities));
    }
    return list;
}

/// (failure, findings)
py::tuple checkPath(const py::object& source, const py::dict& given, double distance,
                    const py::object& progress) {
    constexpr double read = 0.5;
    const ByteView view(source);
    ProgressCall call(progress);
    const auto report = call.function();
    converters::PathOptions options = converters::optionsForChecking(pathOptionsOf(given));
    options.progress = partOf(report, 0.0, read);
    converters::ReadResult result;
    converters::PathFindings found;
    {
        const py::gil_scoped_release unlocked;
        DrawingPath path;
        result = converters::readPath(view.data(), view.size(), path, options);
        if (result) {
            found = converters::findingsOf(path, options, distance, partOf(report, read, 1.0));
        }
    }
    call.raiseIfStopped();
    return py::make_tuple(failureOf(result), listOf(found.findings));
}

} // namespace

void addReaders(py::module_& module) {
    module.def("read_scan", readScan, py::arg("data"), py::arg("intensity"), py::arg("shift"),
               py::arg("automatic_shift"), py::arg("progress"));
    module.def("write_points", writePoints, py::arg("records"), py::arg("fields"),
               py::arg("record_size"), py::arg("format"), py::arg("digits"), py::arg("width"),
               py::arg("height"), py::arg("comments"));
    module.def("read_path", readPath, py::arg("data"), py::arg("options"), py::arg("progress"));
    module.def("check_path", checkPath, py::arg("data"), py::arg("options"), py::arg("distance"),
               py::arg("progress"));
    py::class_<PathModel>(module, "PathModel", py::module_local())
        .def("points", &PathModel::points)
        .def("contours", &PathModel::contours)
        .def("entity", &PathModel::entity, py::arg("index"))
        .def("piece", &PathModel::piece, py::arg("index"))
        .def("layers", &PathModel::layers)
        .def("left_out", &PathModel::leftOut)
        .def("summary", &PathModel::summary)
        .def("to_dxf", &PathModel::toDxf);
}
