// path_dump: the path of each drawing, as a line of JSON, for programs that compare it with what
// other readers make of the same drawing.
//
//     path_dump [OPTION...] DRAWING...
//     path_dump < JOBS
//
// A job is a line: options and a drawing, as on the command line, with tabs between. Coordinates
// are flat arrays of x, y, z; numbers that JSON has no word for are null.

#include "converters/DrawingPath.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Json = nlohmann::json;
using Point = cv::Point3_<double>;

Json jsonOf(const Point& point) {
    return {point.x, point.y, point.z};
}

Json jsonOf(const std::vector<Point>& points) {
    Json::array_t flat;
    flat.reserve(3 * points.size());
    for (const Point& point : points) {
        flat.insert(flat.end(), {point.x, point.y, point.z});
    }
    return flat;
}

Json jsonOf(const converters::PathContour& contour) {
    return {{"points", {contour.firstPoint, contour.endPoint}},
            {"pieces", {contour.firstPiece, contour.endPiece}},
            {"entities", {contour.firstEntity, contour.endEntity}},
            {"length", contour.length},
            {"layer", contour.layer},
            {"trueColour", contour.trueColour},
            {"colour", contour.colour},
            {"closed", contour.closed}};
}

/// A row: first point, last point, kind, curve, entity.
Json jsonOf(const converters::PathPiece& piece) {
    return {piece.firstPoint, piece.lastPoint, static_cast<int>(piece.kind), piece.curve,
            piece.entity};
}

Json jsonOf(const converters::PathArc& arc) {
    return {{"centre", jsonOf(arc.centre)},
            {"normal", jsonOf(arc.normal)},
            {"radius", arc.radius},
            {"sweep", arc.sweep}};
}

Json jsonOf(const converters::PathEllipticArc& arc) {
    return {{"centre", jsonOf(arc.centre)},
            {"major", jsonOf(arc.major)},
            {"minor", jsonOf(arc.minor)},
            {"start", arc.start},
            {"sweep", arc.sweep}};
}

Json jsonOf(const converters::PathSpline& spline) {
    return {{"degree", spline.degree},
            {"knots", spline.knots},
            {"controlPoints", jsonOf(spline.controlPoints)},
            {"weights", spline.weights}};
}

/// A row: handle, outermost insert, kind, layer.
Json jsonOf(const converters::PathEntity& entity) {
    return {entity.handle, entity.insert, converters::nameOf(entity.kind), entity.layer};
}

Json jsonOf(const converters::PathLayer& layer) {
    return {{"name", layer.name},
            {"colour", layer.colour},
            {"off", layer.off},
            {"frozen", layer.frozen}};
}

Json jsonOf(const converters::LeftOut& leftOut) {
    return {{"kind", leftOut.kind},
            {"layer", leftOut.layer},
            {"number", leftOut.number},
            {"reason", converters::nameOf(leftOut.reason)}};
}

template <typename Element>
Json listOf(const std::vector<Element>& elements) {
    Json::array_t list;
    list.reserve(elements.size());
    for (const Element& element : elements) {
        list.push_back(jsonOf(element));
    }
    return list;
}

Json jsonOf(const converters::DrawingPath& path) {
    return {{"points", jsonOf(path.points)},
            {"contours", listOf(path.contours)},
            {"pieces", listOf(path.pieces)},
            {"arcs", listOf(path.arcs)},
            {"ellipticArcs", listOf(path.ellipticArcs)},
            {"splines", listOf(path.splines)},
            {"entities", listOf(path.entities)},
            {"layers", listOf(path.layers)},
            {"leftOut", listOf(path.leftOut)},
            {"notes", path.notes},
            {"drawingUnit", static_cast<int>(path.drawingUnit)},
            {"unit", static_cast<int>(path.unit)},
            {"lowest", jsonOf(path.lowest)},
            {"highest", jsonOf(path.highest)},
            {"length", path.length},
            {"wayLength", path.wayLength}};
}

struct Job {
    converters::PathOptions options;
    std::vector<std::string> drawings;
};

using Setter = std::function<void(converters::PathOptions&, const std::string&)>;

/// What the options that have a value do with it.
const std::map<std::string, Setter>& setters() {
    using Options = converters::PathOptions;
    using Text = const std::string&;
    static const std::map<std::string, Setter> list = {
        {"--tolerance", [](Options& o, Text text) { o.tolerance = std::stod(text); }},
        {"--step", [](Options& o, Text text) { o.step = std::stod(text); }},
        {"--join", [](Options& o, Text text) { o.joinDistance = std::stod(text); }},
        {"--unit",
         [](Options& o, Text text) {
             o.unit = static_cast<converters::LengthUnit>(std::stoi(text));
         }},
        {"--scale", [](Options& o, Text text) { o.scale = std::stod(text); }},
        {"--layer", [](Options& o, Text text) { o.layers.push_back(text); }},
        {"--except-layer", [](Options& o, Text text) { o.exceptLayers.push_back(text); }},
        {"--axes",
         [](Options& o, Text text) {
             o.axes = text == "plain" ? converters::PathAxes::plain : converters::PathAxes::drawing;
         }},
        {"--order",
         [](Options& o, Text text) {
             o.order = text == "nearest"        ? converters::PathOrder::nearest
                       : text == "inside-first" ? converters::PathOrder::insideFirst
                                                : converters::PathOrder::drawn;
         }},
        {"--max-points", [](Options& o, Text text) { o.maximumPoints = std::stoull(text); }},
        {"--max-entities", [](Options& o, Text text) { o.maximumEntities = std::stoull(text); }}};
    return list;
}

Job jobOf(const std::vector<std::string>& words) {
    Job job;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto setter = setters().find(words[i]);
        if (words[i] == "--hidden") {
            job.options.hidden = true;
        } else if (words[i] == "--paper-space") {
            job.options.paperSpace = true;
        } else if (setter == setters().end()) {
            job.drawings.push_back(words[i]);
        } else if (++i < words.size()) {
            setter->second(job.options, words[i]);
        }
    }
    return job;
}

void run(const Job& job) {
    for (const std::string& drawing : job.drawings) {
        converters::DrawingPath path;
        const converters::ReadResult result =
            converters::readPath(std::filesystem::path(drawing), path, job.options);
        Json json = result ? jsonOf(path) : Json::object();
        json["drawing"] = drawing;
        json["success"] = result.success;
        json["reason"] = result.reason;
        std::cout << json.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
    }
}

std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; std::getline(stream, word, '\t');) {
        words.push_back(word);
    }
    return words;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        run(jobOf({argv + 1, argv + argc}));
        return 0;
    }
    for (std::string line; std::getline(std::cin, line);) {
        run(jobOf(wordsOf(line)));
    }
    return 0;
}
