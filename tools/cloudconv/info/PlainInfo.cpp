#include "tools/cloudconv/info/PlainInfo.h"

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "tools/cloudconv/Contours.h"
#include "tools/cloudconv/DxfInventory.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/PlyInventory.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/info/CoordinateRanges.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <map>

namespace {

using Json = nlohmann::ordered_json;
using Point = cv::Point3_<double>;
using Bytes = std::vector<unsigned char>;

std::string_view textOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// PLY

/// The number of which a float is the nearest one, as people write it: 0.1, not 0.100000001.
double shortest(float value) {
    constexpr std::size_t longest = 64;
    std::array<char, longest> text = {};
    std::to_chars(text.data(), text.data() + text.size() - 1, value);
    return std::strtod(text.data(), nullptr);
}

std::string fateOf(const PlyPropertyLine& property) {
    constexpr std::array<const char*, 4> kept = {"x", "y", "z", "intensity"};
    constexpr std::array<const char*, 16> known = {
        "char", "int8",  "uchar", "uint8",  "short", "int16",   "ushort", "uint16",
        "int",  "int32", "uint",  "uint32", "float", "float32", "double", "double64"};
    if (property.type.substr(0, 4) == "list") {
        return "refused: lists are not read";
    }
    if (std::find(known.begin(), known.end(), property.type) == known.end()) {
        return "not seen: the reader knows no type " + property.type;
    }
    if (std::find(kept.begin(), kept.end(), property.name) == kept.end()) {
        return "dropped: the cloud has no place for it";
    }
    const bool isFloat = property.type == "float" || property.type == "float32";
    return isFloat ? "read" : "dropped: it has to be of type float";
}

/// The count that an element line declares: a number, or its text when it is none.
Json countOf(const PlyElementLine& element) {
    const std::optional<std::uint64_t> number = element.number();
    return number.has_value() ? Json(*number) : Json(element.count);
}

Json elementsOf(const PlyInventory& inventory) {
    Json elements = Json::array();
    for (const PlyElementLine& element : inventory.elements) {
        Json fields = Json::array();
        for (const PlyPropertyLine& property : element.properties) {
            fields.push_back(
                {{"name", property.name}, {"type", property.type}, {"fate", fateOf(property)}});
        }
        elements.push_back(
            {{"name", element.name}, {"count", countOf(element)}, {"fields", fields}});
    }
    return elements;
}

void describeCloud(const PlyContents& contents, Json& description, Progress& progress) {
    CoordinateRanges bounds;
    Range intensity;
    std::size_t missing = 0;
    for (const pcl::PointXYZI& point : contents.cloud) {
        bounds.add(shortest(point.x), shortest(point.y), shortest(point.z));
        intensity.add(shortest(point.intensity));
        missing += hasPlace(point) ? 0 : 1;
        progress.step();
    }
    const std::size_t points = contents.cloud.size();
    description["points"] = points;
    description["width"] = contents.cloud.width;
    description["height"] = contents.cloud.height;
    description["organised"] = contents.cloud.height > 1;
    description["points_without_place"] = missing;
    description["share_without_place"] =
        points == 0 ? 0.0 : static_cast<double>(missing) / static_cast<double>(points);
    description["bounds"] = bounds.json();
    description["intensity"] = contents.hasIntensity ? intensity.json() : Json();
}

Json describePly(const std::string& name, const Bytes& bytes, Progress& progress) {
    const PlyInventory inventory = plyInventoryOf(textOf(bytes));
    if (!inventory.isPly) {
        throw FileError(name, bytes.empty() ? "the file is empty" : "not a PLY file");
    }
    Json description = {{"file", name},
                        {"format", "PLY"},
                        {"bytes", bytes.size()},
                        {"encoding", inventory.format.empty() ? Json() : Json(inventory.format)},
                        {"readable", true}};
    try {
        const PlyContents contents =
            readPly(name, bytes, progress.beginParts("reading points of " + name));
        progress.begin("describing " + name, contents.cloud.size());
        describeCloud(contents, description, progress);
    } catch (const FileError& error) {
        description["readable"] = false;
        description["reason"] = error.reason();
    }
    description["elements"] = elementsOf(inventory);
    return description;
}

// DXF

Json layersOf(const DXFDocument& document) {
    std::map<std::string, std::size_t> entities;
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        ++entities[entity->attributes()->layerName()];
    }
    Json layers = Json::array();
    const auto add = [&](const std::string& name, const Json& colour, bool frozen) {
        const auto found = entities.find(name);
        layers.push_back({{"name", name},
                          {"entities", found == entities.end() ? 0 : found->second},
                          {"colour", colour},
                          {"frozen", frozen}});
        entities.erase(name);
    };
    for (const std::shared_ptr<DXFLayer>& layer : document.layers()) {
        add(layer->name(), layer->attributes()->color(), layer->isFrozen());
    }
    // Drawings may use layers that their table lacks.
    while (!entities.empty()) {
        add(entities.begin()->first, nullptr, false);
    }
    return layers;
}

void describeContours(const DxfContents& drawing, Json& description) {
    const auto place = [&](std::size_t i) {
        const Point& point = drawing.points[i];
        return Json{point.x, point.y, point.z};
    };
    Json list = Json::array();
    std::map<ContourKind, std::size_t> counts;
    double length = 0.0;
    for (const Contour& contour : contoursOf(drawing)) {
        ++counts[contour.kind];
        length += contour.length;
        list.push_back({{"number", list.size() + 1},
                        {"kind", nameOf(contour.kind)},
                        {"points", contour.end - contour.begin},
                        {"length", contour.length},
                        {"first", place(contour.begin)},
                        {"last", place(contour.end - 1)}});
    }
    description["contours"] = {{"count", list.size()},
                               {"open", counts[ContourKind::Open]},
                               {"closed", counts[ContourKind::Closed]},
                               {"circles", counts[ContourKind::Circle]},
                               {"points", counts[ContourKind::Points]},
                               {"length", length}};
    description["contour_list"] = std::move(list);
}

/// The edges of polylines that are arcs in the drawing.
std::size_t bulgedEdges(const DXFDocument& document) {
    std::size_t count = 0;
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        if (const auto polyline = std::dynamic_pointer_cast<DXFPolyline>(entity)) {
            const std::vector<DXFVertex>& vertices = polyline->vertices();
            count += static_cast<std::size_t>(
                std::count_if(vertices.begin(), vertices.end(),
                              [](const DXFVertex& vertex) { return vertex.bulge() != 0.0; }));
        }
    }
    return count;
}

/// The bounds in the plane of the drawing. A cloud's (x, 0, z) was (x, z) there, but points that
/// follow one another were in the coordinates of the cloud, with the other sign of z.
Json drawingBounds(const DxfContents& drawing) {
    CoordinateRanges bounds;
    std::vector<bool> isOfPoints;
    for (const std::shared_ptr<DXFEntity>& entity : drawing.document->entities()) {
        const auto vector = std::dynamic_pointer_cast<DXFPointVector>(entity);
        isOfPoints.push_back(vector != nullptr);
        if (vector != nullptr) {
            for (const Point& point : vector->points()) {
                bounds.add(point.x, point.y, point.z);
            }
        }
    }
    for (const DXFPiece& piece : drawing.pieces) {
        for (std::size_t i = piece.begin; i < piece.end && !isOfPoints[piece.entity]; ++i) {
            bounds.add(drawing.points[i].x, drawing.points[i].z, 0.0);
        }
    }
    return bounds.json();
}

Json cloudBounds(const std::vector<Point>& points) {
    CoordinateRanges bounds;
    for (const Point& point : points) {
        bounds.add(point.x, point.y, point.z);
    }
    return bounds.json();
}

Json describeDxf(const std::string& name, const Bytes& bytes, Progress& progress) {
    const DxfContents drawing = readDxf(name, bytes, progress);
    constexpr std::size_t steps = 5;
    progress.begin("describing " + name, steps);
    const DxfInventory inventory = inventoryOf(textOf(bytes));
    progress.step();
    Json description = {{"file", name}, {"format", "DXF"}, {"bytes", bytes.size()}};
    description["version"] = inventory.version.empty() ? Json() : Json(inventory.version);
    description["unit"] = inventory.unit.empty() ? Json() : Json(inventory.unit);
    if (!drawing.cutOff.empty()) {
        description["note"] = drawing.cutOff;
    }
    description["layers"] = layersOf(*drawing.document);
    progress.step();
    description["entities"] = inventory.read;
    description["ignored_entities"] = inventory.ignored;
    description["ignored_in_blocks"] = inventory.inBlocks;
    description["bulged_edges_walked_straight"] = bulgedEdges(*drawing.document);
    description["points"] = drawing.points.size();
    description["bounds_in_drawing"] = drawingBounds(drawing);
    progress.step();
    description["bounds_in_cloud"] = cloudBounds(drawing.points);
    progress.step();
    describeContours(drawing, description);
    return description;
}

} // namespace

nlohmann::ordered_json describePlainly(const InfoOptions& options, FileFormat format) {
    Progress progress(options.quiet);
    const std::string name = inputName(options.input);
    const Bytes bytes = readInputFile(options.input, progress);
    return format == FileFormat::Ply ? describePly(name, bytes, progress)
                                     : describeDxf(name, bytes, progress);
}
