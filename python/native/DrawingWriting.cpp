#include "python/native/DrawingWriting.h"

#include "base/FileReader.h"
#include "converters/PathDrawing.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFWriter.h"
#include "python/native/Conversion.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

using Table = py::array_t<double, py::array::c_style | py::array::forcecast>;
/// (name, colour, whether off, whether frozen)
using Layer = std::tuple<std::string, std::uint8_t, bool, bool>;
/// (index of the layer, colour, rows of x, y, z and bulge, whether a polyline)
using Entity = std::tuple<std::size_t, int, Table, bool>;

/// A file in memory.
class MemoryFile {
public:
    MemoryFile() : m_descriptor(memfd_create("drawing", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return m_descriptor; }
    /// By which it can be read.
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

/// A drawing of these layers and nothing on them.
std::shared_ptr<DXFDocument> emptyDrawing(const std::vector<Layer>& layers) {
    converters::DrawingPath path;
    for (const auto& [name, colour, off, frozen] : layers) {
        converters::PathLayer layer;
        layer.name = name;
        layer.colour = colour;
        layer.off = off;
        layer.frozen = frozen;
        path.layers.push_back(layer);
    }
    return converters::drawingOf(path);
}

std::shared_ptr<DXFEntity> pointsOf(const Table& table) {
    const auto rows = table.unchecked<2>();
    std::vector<cv::Point3_<double>> points;
    points.reserve(static_cast<std::size_t>(rows.shape(0)));
    for (py::ssize_t i = 0; i < rows.shape(0); ++i) {
        points.emplace_back(rows(i, 0), rows(i, 1), rows(i, 2));
    }
    return std::make_shared<DXFPointVector>(points);
}

/// A 2D polyline where all vertices have z = 0, else a 3D one, which has no bulges.
std::shared_ptr<DXFEntity> polylineOf(const Table& table) {
    constexpr unsigned is3dPolyline = 8;
    const auto rows = table.unchecked<2>();
    bool flat = true;
    for (py::ssize_t i = 0; i < rows.shape(0); ++i) {
        flat = flat && rows(i, 2) == 0.0;
    }
    const auto polyline = std::make_shared<DXFPolyline>(0, 0, flat ? 0 : is3dPolyline);
    for (py::ssize_t i = 0; i < rows.shape(0); ++i) {
        polyline->appendPoint({rows(i, 0), rows(i, 1), rows(i, 2), true, rows(i, 3)});
    }
    polyline->shrinkToFit();
    return polyline;
}

std::shared_ptr<DXFDocument> drawingOf(const std::vector<Layer>& layers,
                                       const std::vector<Entity>& entities) {
    constexpr int columns = 4;
    std::shared_ptr<DXFDocument> drawing = emptyDrawing(layers);
    // As they are written.
    std::vector<std::string> names;
    for (const auto& layer : drawing->layers()) {
        names.push_back(layer->name());
    }
    for (const auto& [layer, colour, table, isPolyline] : entities) {
        if (table.ndim() != 2 || table.shape(1) != columns) {
            throw py::type_error("expected rows of four numbers");
        }
        const std::shared_ptr<DXFEntity> entity = isPolyline ? polylineOf(table) : pointsOf(table);
        entity->setAttributes(std::make_shared<DXFAttributes>(names.at(layer), colour, -1, -1,
                                                              "CONTINUOUS", 1.0, -1, false));
        static_cast<void>(drawing->addEntity(entity));
    }
    return drawing;
}

/// The file of the drawing that is made.
///
/// @param make  must not touch objects of Python
template <typename Make>
py::bytes fileOf(Make make) {
    std::vector<unsigned char> bytes;
    convert(PyExc_OSError, [&]() -> std::string {
        const std::shared_ptr<DXFDocument> drawing = make();
        const MemoryFile file;
        const bool written = file.descriptor() >= 0 &&
                             DXFWriter(*drawing).saveTo(file.descriptor(), "a file in memory") &&
                             base::readFile(file.path(), bytes);
        return written ? "" : std::string("the drawing could not be written: ") + strerror(errno);
    });
    return toBytes(bytes);
}

py::bytes writeDrawing(const std::vector<Layer>& layers, const std::vector<Entity>& entities) {
    const std::shared_ptr<DXFDocument> drawing = drawingOf(layers, entities);
    return fileOf([&] { return drawing; });
}

} // namespace

py::bytes drawingFileOf(const converters::DrawingPath& path) {
    return fileOf([&] { return converters::drawingOf(path); });
}

void addDrawingWriter(py::module_& module) {
    module.def("write_drawing", writeDrawing, py::arg("layers"), py::arg("entities"));
}
