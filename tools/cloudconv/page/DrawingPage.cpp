#include "tools/cloudconv/page/DrawingPage.h"

#include "tools/cloudconv/ContourKind.h"
#include "tools/cloudconv/Units.h"
#include "tools/cloudconv/page/PageWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using nlohmann::json;

json layersOf(const DrawingPath& path) {
    json layers = json::array();
    for (const converters::PathLayer& layer : path.layers) {
        layers.push_back({{"name", layer.name},
                          {"colour", layer.colour},
                          {"off", layer.off},
                          {"frozen", layer.frozen}});
    }
    return layers;
}

json leftOutOf(const DrawingPath& path) {
    json all = json::array();
    for (const converters::LeftOut& leftOut : path.leftOut) {
        all.push_back({{"kind", leftOut.kind},
                       {"layer", leftOut.layer},
                       {"number", leftOut.number},
                       {"reason", converters::nameOf(leftOut.reason)}});
    }
    return all;
}

json findingsOf(const std::vector<PageFinding>& findings) {
    json all = json::array();
    for (const PageFinding& finding : findings) {
        json places = json::array();
        for (const cv::Point3_<double>& place : finding.places) {
            if (std::isfinite(place.x) && std::isfinite(place.y)) {
                places.push_back({place.x, place.y});
            }
        }
        all.push_back({{"text", finding.text}, {"places", places}});
    }
    return all;
}

json entityKindNames() {
    json names = json::array();
    for (auto kind = 0; kind <= static_cast<int>(converters::PathEntityKind::spline); ++kind) {
        names.push_back(converters::nameOf(static_cast<converters::PathEntityKind>(kind)));
    }
    return names;
}

json contourKindNames() {
    json names = json::array();
    for (const ContourKind kind :
         {ContourKind::Open, ContourKind::Closed, ContourKind::Circle, ContourKind::Points}) {
        names.push_back(nameOf(kind));
    }
    return names;
}

json factsOf(const DrawingPage& page) {
    json notes = page.path.notes;
    for (const std::string& note : page.notes) {
        notes.push_back(note);
    }
    return {{"title", page.title},
            {"unit", symbolOf(page.path.unit)},
            {"layers", layersOf(page.path)},
            {"leftOut", leftOutOf(page.path)},
            {"findings", findingsOf(page.findings)},
            {"notes", notes},
            {"entityKindNames", entityKindNames()},
            {"contourKindNames", contourKindNames()}};
}

void addPoints(PageWriter& writer, const DrawingPath& path) {
    std::vector<double> places;
    std::vector<double> heights;
    places.reserve(2 * path.points.size());
    for (const cv::Point3_<double>& point : path.points) {
        places.push_back(point.x);
        places.push_back(point.y);
    }
    writer.add("points", places);
    // Most drawings are flat, and a third of the page is saved.
    const auto isHigh = [](const cv::Point3_<double>& point) { return point.z != 0.0; };
    if (std::any_of(path.points.begin(), path.points.end(), isHigh)) {
        heights.reserve(path.points.size());
        for (const cv::Point3_<double>& point : path.points) {
            heights.push_back(point.z);
        }
    }
    writer.add("heights", heights);
}

void addContours(PageWriter& writer, const DrawingPath& path) {
    std::vector<std::uint32_t> ends;
    std::vector<std::uint32_t> entityEnds;
    std::vector<std::uint32_t> layers;
    std::vector<double> lengths;
    std::vector<std::int32_t> colours;
    std::vector<std::uint8_t> kinds;
    for (const PathContour& contour : path.contours) {
        ends.push_back(static_cast<std::uint32_t>(contour.endPoint));
        entityEnds.push_back(static_cast<std::uint32_t>(contour.endEntity));
        layers.push_back(contour.layer);
        lengths.push_back(contour.length);
        // The index of a colour stands as a number below zero.
        colours.push_back(contour.trueColour >= 0 ? contour.trueColour : -contour.colour);
        kinds.push_back(static_cast<std::uint8_t>(kindOf(path, contour)));
    }
    writer.add("contourEnds", ends);
    writer.add("contourEntityEnds", entityEnds);
    writer.add("contourLayers", layers);
    writer.add("contourLengths", lengths);
    writer.add("contourColours", colours);
    writer.add("contourKinds", kinds);
}

void addEntities(PageWriter& writer, const DrawingPath& path) {
    std::vector<std::uint8_t> kinds;
    std::vector<std::uint64_t> handles;
    std::vector<std::uint64_t> inserts;
    std::vector<std::uint32_t> layers;
    for (const converters::PathEntity& entity : path.entities) {
        kinds.push_back(static_cast<std::uint8_t>(entity.kind));
        handles.push_back(entity.handle);
        inserts.push_back(entity.insert);
        layers.push_back(entity.layer);
    }
    writer.add("entityKinds", kinds);
    writer.add("entityHandles", handles);
    writer.add("entityInserts", inserts);
    writer.add("entityLayers", layers);
}

} // namespace

std::vector<unsigned char> drawingPage(const DrawingPage& page) {
    if (page.path.points.size() > mostPointsOfDrawingPage ||
        page.path.entities.size() > mostPointsOfDrawingPage) {
        throw std::length_error("more than a page takes");
    }
    PageWriter writer(drawingPageSource(), page.title);
    writer.add("facts", factsOf(page));
    addPoints(writer, page.path);
    addContours(writer, page.path);
    addEntities(writer, page.path);
    return writer.finish();
}
