#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "python/native/Column.h"
#include "python/native/Conversion.h"
#include "python/native/DrawingModel.h"
#include "python/native/DrawingWriting.h"
#include "python/native/Memory.h"
#include "python/native/Reading.h"

#include <opencv2/core/types.hpp>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <utility>

namespace py = pybind11;

namespace {

using Cloud = pcl::PointCloud<pcl::PointXYZI>;
using Point = cv::Point3_<double>;

/// Grows an empty vector to `count` points, block by block: fill(first, size) is called for each. A
/// block stays in the fastest cache while it is made and one column after the other is read into
/// it.
template <typename Points, typename Fill>
void makeInBlocks(Points& points, std::size_t count, Fill fill) {
    constexpr std::size_t blockSize = 256;
    points.reserve(count);
    while (points.size() < count) {
        const std::size_t first = points.size();
        const std::size_t size = std::min(blockSize, count - first);
        points.resize(first + size);
        fill(first, size);
    }
}

void requireSameSize(const Column& a, const Column& b) {
    if (a.size() != b.size()) {
        throw py::value_error("columns of different lengths");
    }
}

Cloud makeCloud(const Column& x, const Column& y, const Column& z, const Column& intensity) {
    Cloud cloud;
    makeInBlocks(cloud.points, x.size(), [&](std::size_t first, std::size_t count) {
        x.read(first, count, [&](std::size_t i, auto v) { cloud[i].x = static_cast<float>(v); });
        y.read(first, count, [&](std::size_t i, auto v) { cloud[i].y = static_cast<float>(v); });
        z.read(first, count, [&](std::size_t i, auto v) { cloud[i].z = static_cast<float>(v); });
        intensity.read(first, count,
                       [&](std::size_t i, auto v) { cloud[i].intensity = static_cast<float>(v); });
    });
    return cloud;
}

std::vector<Point> makePoints(const Column& x, const Column& y, const Column& z) {
    std::vector<Point> points;
    makeInBlocks(points, x.size(), [&](std::size_t first, std::size_t count) {
        x.read(first, count, [&](std::size_t i, auto v) { points[i].x = v; });
        y.read(first, count, [&](std::size_t i, auto v) { points[i].y = v; });
        z.read(first, count, [&](std::size_t i, auto v) { points[i].z = v; });
    });
    return points;
}

py::bytes toPly(const py::array& xs, const py::array& ys, const py::array& zs,
                const py::array& intensities, std::uint32_t width, std::uint32_t height,
                bool ascii) {
    const Column x(xs);
    const Column y(ys);
    const Column z(zs);
    const Column intensity(intensities);
    requireSameSize(x, y);
    requireSameSize(x, z);
    requireSameSize(x, intensity);
    std::vector<unsigned char> file;
    convert(PyExc_ValueError, [&] {
        Cloud cloud = makeCloud(x, y, z, intensity);
        cloud.width = width;
        cloud.height = height;
        const bool isWritten =
            ascii ? converters::toPlyAscii(cloud, file) : converters::toPlyBinary(cloud, file);
        return isWritten ? "" : PLYSerializer::noPointsMessage;
    });
    return toBytes(file);
}

/// The type of an array on a cloud's memory: the fields where pcl::PointXYZI has them.
py::dtype pointType() {
    py::list names;
    py::list formats;
    py::list offsets;
    const auto add = [&](const char* name, std::size_t offset) {
        names.append(name);
        formats.append(py::dtype::of<float>());
        offsets.append(offset);
    };
    add("x", offsetof(pcl::_PointXYZI, x));
    add("y", offsetof(pcl::_PointXYZI, y));
    add("z", offsetof(pcl::_PointXYZI, z));
    add("intensity", offsetof(pcl::_PointXYZI, intensity));
    return py::dtype(names, formats, offsets, sizeof(pcl::PointXYZI));
}

/// The messages, joined by "; ". A long one is cut, and what comes behind it left out: files decide
/// what they quote.
std::string joined(const std::vector<std::string>& messages) {
    constexpr std::size_t longestReason = 2000;
    std::string reason;
    for (const std::string& message : messages) {
        if (reason.size() < longestReason) {
            reason += reason.empty() ? "" : "; ";
            reason.append(message, 0, longestReason);
        }
    }
    return reason;
}

/// (points, width, height, empty scene)
py::tuple fromPly(const py::object& source) {
    const ByteView view(source);
    auto cloud = std::make_unique<Cloud>();
    PLYDeserializer reader;
    convert(PyExc_ValueError, [&] {
        try {
            return reader.DeserializePlyT(view.copy<unsigned char>(), *cloud)
                       ? std::string()
                       : joined(reader.refusal().messages);
        } catch (const std::invalid_argument&) {
            // The library lets pass what std::stoi throws at the cloud's size.
            throw py::value_error("obj_info num_cols or num_rows is not a number");
        } catch (const std::out_of_range&) {
            throw py::value_error("obj_info num_cols or num_rows does not fit 32 bits");
        }
    });
    const auto count = static_cast<py::ssize_t>(cloud->size());
    const std::uint32_t width = cloud->width;
    const std::uint32_t height = cloud->height;
    const void* memory = cloud->points.data();
    return py::make_tuple(py::array(pointType(), {count}, {}, memory, keptBy(std::move(cloud))),
                          width, height, reader.isEmptySceneInTeach());
}

py::bytes toDxf(const py::array& xs, const py::array& ys, const py::array& zs) {
    const Column x(xs);
    const Column y(ys);
    const Column z(zs);
    requireSameSize(x, y);
    requireSameSize(x, z);
    std::vector<unsigned char> file;
    convert(PyExc_OSError, [&]() -> std::string {
        const std::vector<Point> points = makePoints(x, y, z);
        // All calls of a process write the same temporary file.
        static std::mutex oneAtATime;
        const std::lock_guard<std::mutex> lock(oneAtATime);
        std::string reason;
        if (converters::toDxf(points, file, reason)) {
            return "";
        }
        return reason.empty() ? "the temporary drawing could not be written and read back" : reason;
    });
    return toBytes(file);
}

py::array fromDxf(const py::object& source) {
    const ByteView view(source);
    std::vector<Point> points;
    convert(PyExc_ValueError, [&] {
        return converters::fromDxf(view.copy<char>(), points)
                   ? ""
                   : "the data could not be read as a drawing";
    });
    return rows<double>(std::move(points), 3);
}

/// Errors of the file system become OSError with its number and path.
void translateFileSystemError(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(std::move(thrown));
    } catch (const std::filesystem::filesystem_error& error) {
        errno = error.code().value();
        PyErr_SetFromErrnoWithFilename(PyExc_OSError, error.path1().c_str());
    }
}

} // namespace

PYBIND11_MODULE(_native, module) {
    module.doc() = "The converters library, behind the functions of the package.";
    module.attr("__version__") = CONVERTERS_VERSION;
    py::register_local_exception_translator(translateFileSystemError);

    module.def("to_ply", toPly, py::arg("x"), py::arg("y"), py::arg("z"), py::arg("intensity"),
               py::arg("width"), py::arg("height"), py::arg("ascii"));
    module.def("from_ply", fromPly, py::arg("data"));
    module.def("to_dxf", toDxf, py::arg("x"), py::arg("y"), py::arg("z"));
    module.def("from_dxf", fromDxf, py::arg("data"));
    addReaders(module);
    addDrawingWriter(module);

    // Local to this module: another copy of it in the same process has its own.
    py::class_<DrawingModel>(module, "DrawingModel", py::module_local())
        .def_static("from_bytes", &DrawingModel::fromBytes, py::arg("data"))
        .def("layers", &DrawingModel::layers)
        .def("entities", &DrawingModel::entities)
        .def("walk", &DrawingModel::walk);
}
