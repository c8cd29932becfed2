#include "tools/cloudconv/preview/DrawingPreview.h"

#include "converters/DrawingPath.h"
#include "converters/check/PathFindings.h"
#include "tools/cloudconv/DxfFile.h"
#include "tools/cloudconv/DxfInventory.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/LeftOutText.h"
#include "tools/cloudconv/PathFile.h"
#include "tools/cloudconv/Units.h"
#include "tools/cloudconv/UsageError.h"
#include "tools/cloudconv/check/WalkFindings.h"
#include "tools/cloudconv/page/DrawingPage.h"
#include "tools/cloudconv/preview/DrawingPicture.h"
#include "tools/cloudconv/preview/WalkPath.h"

#include <stdexcept>

namespace {

using Bytes = std::vector<unsigned char>;
using converters::DrawingPath;
using converters::Finding;

void checkOptions(const PreviewOptions& options) {
    if (options.view.has_value() || options.colour.has_value() || options.pagePoints.has_value() ||
        !options.intensity.empty()) {
        throw UsageError("--view, --colour, --points and --intensity-from are for scans");
    }
    if (options.plain && !options.pathOption.empty()) {
        throw UsageError("--plain has rules of its own: " + options.pathOption +
                         " does not go with it");
    }
    if (options.path.axes != converters::PathAxes::drawing) {
        throw UsageError("--axes is for cloudconv convert: a drawing is shown as it is drawn");
    }
}

/// A path or a walk, and what there is to look at in it.
struct Drawn {
    DrawingPath path;
    /// Of pages only: pictures show near misses, which are found faster.
    std::vector<PageFinding> findings;
    /// Besides those of the path.
    std::vector<std::string> notes;
};

std::string textOf(const Finding& finding) {
    return std::string(nameOf(finding.kind)) + ": " + finding.text;
}

Drawn followed(const Bytes& bytes, const PreviewOptions& options, bool isPage,
               PreviewReport& report) {
    Drawn drawn;
    drawn.path = readPathFile(report.input, bytes, options.path, report.progress);
    if (isPage) {
        const converters::PathOptions checking = optionsForChecking(options.path);
        const DrawingPath path = readPathFile(report.input, bytes, checking, report.progress);
        const auto progress = report.progress.beginParts("checking " + report.input);
        for (const Finding& finding :
             findingsOf(path, checking, options.distance, progress).findings) {
            drawn.findings.push_back({textOf(finding), finding.places});
        }
    }
    return drawn;
}

Drawn walked(const Bytes& bytes, const PreviewOptions& options, bool isPage,
             PreviewReport& report) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const DxfContents drawing = readDxf(report.input, bytes, report.progress);
    Drawn drawn;
    drawn.path = pathOfWalk(drawing, unitOf(inventoryOf(text).unit));
    if (!drawing.cutOff.empty()) {
        drawn.notes.push_back(drawing.cutOff);
    }
    if (isPage) {
        const auto progress = report.progress.beginParts("checking " + report.input);
        for (const Finding& finding : findingsOf(drawing, text, options.distance, progress)) {
            drawn.findings.push_back({textOf(finding), {}});
            for (const cv::Point3_<double>& place : finding.places) {
                drawn.findings.back().places.emplace_back(place.x, place.z, 0.0);
            }
        }
    }
    return drawn;
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

Bytes pageOf(const Drawn& drawn, const PreviewReport& report) {
    try {
        return drawingPage({report.title, drawn.path, drawn.findings, drawn.notes});
    } catch (const std::length_error&) {
        throw FileError(report.input, counted(drawn.path.points.size(), "point") +
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
    const bool isPage = format == PictureFormat::Html;
    const Drawn drawn = (options.plain ? walked : followed)(bytes, options, isPage, report);
    const auto progress = report.progress.beginParts("drawing " + report.input);
    // Half the time goes into what there is to see, and half into showing it.
    constexpr double half = 0.5;
    const DrawingScene scene =
        sceneOf(drawn.path, options.distance, [&](double done) { return progress(half * done); });
    const std::string leftOut = leftOutText(drawn.path.leftOut);
    checkIsVisible(scene, leftOut, report);
    for (const auto* const notes : {&drawn.path.notes, &drawn.notes}) {
        for (const std::string& note : *notes) {
            report.notes.add(note);
        }
    }
    if (!leftOut.empty()) {
        report.notes.add("left out: " + leftOut);
    }
    report.addLeftOut(scene.pointsWithoutPlace);
    if (isPage) {
        return pageOf(drawn, report);
    }
    Canvas canvas(format, options.size);
    const DrawingCaption caption = {report.title, symbolOf(drawn.path.unit),
                                    yNameOf(scene, options.plain), leftOut};
    const std::string words =
        drawPicture(canvas, options.size, scene, caption, options.marks,
                    [&](double done) { return progress(half + half * done); });
    return canvas.finish(report.title, words);
}
