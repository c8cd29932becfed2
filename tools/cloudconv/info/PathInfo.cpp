#include "tools/cloudconv/info/PathInfo.h"

#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/PathFile.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/info/CoordinateRanges.h"

#include <array>
#include <map>

namespace {

using converters::DrawingPath;
using converters::LengthUnit;
using converters::PathContour;
using Json = nlohmann::ordered_json;

Json unitName(LengthUnit unit) {
    constexpr std::array<const char*, 22> names = {
        "",         "in", "ft", "mi", "mm",  "cm", "m",  "km", "uin", "mil", "yd",
        "angstrom", "nm", "um", "dm", "dam", "hm", "Gm", "au", "ly",  "pc",  "US survey ft"};
    const auto number = static_cast<std::size_t>(unit);
    return number > 0 && number < names.size() ? Json(names[number]) : Json();
}

Json placeOf(const cv::Point3_<double>& point) {
    return {point.x, point.y, point.z};
}

const char* kindOf(const PathContour& contour) {
    const bool isPoint = contour.endPoint - contour.firstPoint == 1;
    return isPoint ? "points" : contour.closed ? "closed" : "open";
}

Json layersOf(const DrawingPath& path) {
    std::vector<std::size_t> entities(path.layers.size());
    for (const converters::PathEntity& entity : path.entities) {
        ++entities[entity.layer];
    }
    Json layers = Json::array();
    for (std::size_t i = 0; i < path.layers.size(); ++i) {
        const converters::PathLayer& layer = path.layers[i];
        layers.push_back({{"name", layer.name},
                          {"entities", entities[i]},
                          {"colour", layer.colour},
                          {"frozen", layer.frozen},
                          {"off", layer.off}});
    }
    return layers;
}

Json entitiesOf(const DrawingPath& path) {
    std::map<std::string, std::size_t> kinds;
    for (const converters::PathEntity& entity : path.entities) {
        ++kinds[nameOf(entity.kind)];
    }
    return kinds;
}

Json leftOutOf(const DrawingPath& path) {
    Json list = Json::array();
    for (const converters::LeftOut& part : path.leftOut) {
        list.push_back({{"kind", part.kind},
                        {"layer", part.layer},
                        {"number", part.number},
                        {"reason", nameOf(part.reason)}});
    }
    return list;
}

void describeContours(const DrawingPath& path, Json& description) {
    Json list = Json::array();
    std::map<std::string, std::size_t> counts;
    for (const PathContour& contour : path.contours) {
        const char* const kind = kindOf(contour);
        ++counts[kind];
        list.push_back({{"number", list.size() + 1},
                        {"kind", kind},
                        {"layer", path.layers[contour.layer].name},
                        {"entities", contour.endEntity - contour.firstEntity},
                        {"points", contour.endPoint - contour.firstPoint},
                        {"length", contour.length},
                        {"first", placeOf(path.points[contour.firstPoint])},
                        {"last", placeOf(path.points[contour.endPoint - 1])}});
    }
    description["contours"] = {{"count", list.size()},       {"open", counts["open"]},
                               {"closed", counts["closed"]}, {"points", counts["points"]},
                               {"length", path.length},      {"way_length", path.wayLength}};
    description["contour_list"] = std::move(list);
}

Json boundsOf(const DrawingPath& path) {
    CoordinateRanges bounds;
    if (!path.points.empty()) {
        bounds.add(path.lowest.x, path.lowest.y, path.lowest.z);
        bounds.add(path.highest.x, path.highest.y, path.highest.z);
    }
    return bounds.json();
}

} // namespace

nlohmann::ordered_json describePath(const InfoOptions& options) {
    Progress progress(options.quiet);
    const std::string name = inputName(options.input);
    const std::vector<unsigned char> bytes = readInputFile(options.input, progress);
    const DrawingPath path = readPathFile(name, bytes, options.path, progress);
    Json description = {{"file", name},
                        {"format", "DXF"},
                        {"bytes", bytes.size()},
                        {"unit", unitName(path.drawingUnit)},
                        {"unit_of_path", unitName(path.unit)},
                        {"notes", path.notes},
                        {"layers", layersOf(path)},
                        {"entities", entitiesOf(path)},
                        {"left_out", leftOutOf(path)},
                        {"points", path.points.size()},
                        {"bounds", boundsOf(path)}};
    describeContours(path, description);
    return description;
}
