#include "tools/cloudconv/preview/DrawingPreview.h"

#include "converters/DrawingPath.h"
#include "tools/cloudconv/DxfFile.h"
#include "tools/cloudconv/DxfInventory.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/LeftOutText.h"
#include "tools/cloudconv/Units.h"
#include "tools/cloudconv/UsageError.h"
#include "tools/cloudconv/page/DrawingPage.h"
#include "tools/cloudconv/preview/DrawingPicture.h"
#include "tools/cloudconv/preview/PlotTicks.h"
#include "tools/cloudconv/preview/WalkPath.h"

#include <stdexcept>

namespace {

using Bytes = std::vector<unsigned char>;
using converters::DrawingPath;

void checkOptions(const PreviewOptions& options) {
    if (options.view.has_value() || options.colour.has_value() || options.pagePoints.has_value()) {
        throw UsageError("--view, --colour and --points are for scans");
    }
    if (options.plain && !options.layers.empty()) {
        throw UsageError("--layer does not go with --plain: the walk tells no layers");
    }
}

DrawingPath pathOf(const Bytes& bytes, const PreviewOptions& options, PreviewReport& report) {
    constexpr std::size_t steps = 1000;
    converters::PathOptions asked;
    asked.layers = options.layers;
    report.progress.begin("reading " + report.input, steps);
    asked.progress = [&](double done) {
        report.progress.reached(static_cast<std::size_t>(done * steps));
        return true;
    };
    DrawingPath path;
    const converters::ReadResult result =
        converters::readPath(bytes.data(), bytes.size(), path, asked);
    if (!result) {
        throw FileError(report.input, result.reason);
    }
    for (const std::string& note : path.notes) {
        report.notes.add(note);
    }
    return path;
}

DrawingPath walkOf(const Bytes& bytes, PreviewReport& report) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const DxfContents drawing = readDxf(report.input, bytes, report.progress);
    DrawingPath path = pathOfWalk(drawing, unitOf(inventoryOf(text).unit));
    if (!drawing.cutOff.empty()) {
        report.notes.add(drawing.cutOff);
        path.notes.push_back(drawing.cutOff);
    }
    return path;
}

/// @throws FileError when nothing can be seen
void checkIsVisible(const DrawingScene& scene, const std::string& leftOut,
                    const PreviewReport& report) {
    if (!scene.bounds.isEmpty()) {
        return;
    }
    throw FileError(report.input, scene.points > 0
                                      ? "nothing to draw: none of " +
                                            counted(scene.points, "point") + " has a place"
                                  : leftOut.empty() ? "nothing to draw: no points"
                                                    : "nothing to draw: left out " + leftOut);
}

/// The near misses: what one has to look at that has a place.
std::vector<PageFinding> findingsOf(const DrawingPath& path, double distance) {
    constexpr int digits = 9;
    constexpr int distanceDigits = 3;
    const auto text = [](const cv::Point3_<double>& end) {
        return '(' + shortText(end.x, digits) + ", " + shortText(end.y, digits) + ')';
    };
    std::vector<PageFinding> findings;
    for (const NearMiss& miss : nearMissesOf(path, distance)) {
        findings.push_back(
            {"near miss: the ends at " + text(miss.first) + " and " + text(miss.second) + " lie " +
                 shortText(miss.distance, distanceDigits) + " apart and are not joined",
             {miss.first, miss.second}});
    }
    return findings;
}

Bytes pageOf(const DrawingPath& path, const PreviewOptions& options, const PreviewReport& report) {
    try {
        return drawingPage({report.title, path, findingsOf(path, options.distance)});
    } catch (const std::length_error&) {
        throw FileError(report.input, counted(path.points.size(), "point") +
                                          " are more than a page takes; a picture takes them");
    }
}

/// Of the walk, the axis of a drawing's y is also that of the cloud's z; of POINTs it is not.
std::string yNameOf(const DrawingScene& scene, bool plain) {
    const bool hasLines =
        std::any_of(scene.contours.begin(), scene.contours.end(), [](const DrawnContour& contour) {
            return contour.kind != ContourKind::Points;
        });
    return plain && hasLines ? "y, the cloud's z" : "y";
}

} // namespace

Bytes previewOfDrawing(const Bytes& bytes, const PreviewOptions& options, PictureFormat format,
                       PreviewReport& report) {
    checkOptions(options);
    const DrawingPath path = options.plain ? walkOf(bytes, report) : pathOf(bytes, options, report);
    report.progress.begin("drawing " + report.input);
    const DrawingScene scene = sceneOf(path, options.distance);
    const std::string leftOut = leftOutText(path.leftOut);
    checkIsVisible(scene, leftOut, report);
    if (!leftOut.empty()) {
        report.notes.add("left out: " + leftOut);
    }
    report.addLeftOut(scene.pointsWithoutPlace);
    if (format == PictureFormat::Html) {
        return pageOf(path, options, report);
    }
    Canvas canvas(format, options.size);
    const std::string words = drawPicture(
        canvas, options.size, scene,
        {report.title, symbolOf(path.unit), yNameOf(scene, options.plain), leftOut}, options.marks);
    return canvas.finish(report.title, words);
}
