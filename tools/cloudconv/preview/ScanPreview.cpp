#include "tools/cloudconv/preview/ScanPreview.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/UsageError.h"
#include "tools/cloudconv/page/ScanPage.h"
#include "tools/cloudconv/preview/CloudPicture.h"
#include "tools/cloudconv/preview/ScanContents.h"

namespace {

using Bytes = std::vector<unsigned char>;

void checkOptions(const PreviewOptions& options, PictureFormat format) {
    if (!options.pathOption.empty()) {
        throw UsageError(options.pathOption + " is for drawings");
    }
    if (!options.marks.marks || options.marks.ways) {
        throw UsageError("--no-marks and --ways are for drawings");
    }
    if (options.plain && !options.intensity.empty()) {
        throw UsageError("--plain has rules of its own: --intensity-from does not go with it");
    }
    const bool isPage = format == PictureFormat::Html;
    if (isPage && (options.view.has_value() || options.colour.has_value())) {
        throw UsageError("--view and --colour are for pictures: a page has buttons for them");
    }
    if (!isPage && options.pagePoints.has_value()) {
        throw UsageError("--points is for pages: a picture shows all points");
    }
}

PreviewScan plainScanOf(const Bytes& bytes, PreviewReport& report) {
    PlyContents contents = readPly(report.input, bytes,
                                   report.progress.beginParts("reading points of " + report.input));
    PreviewScan scan;
    scan.cloud = std::move(contents.cloud);
    scan.hasIntensity = contents.hasIntensity;
    return scan;
}

/// What the colours show where nobody says: what the file has.
CloudColour colourOf(const PreviewScan& scan, const PreviewOptions& options,
                     PreviewReport& report) {
    if (!options.colour.has_value()) {
        if (scan.hasIntensity) {
            return CloudColour::Intensity;
        }
        if (!scan.colours.empty()) {
            return CloudColour::Rgb;
        }
        report.notes.add("no intensity, coloured by z");
        return CloudColour::Height;
    }
    if (*options.colour == CloudColour::Intensity && !scan.hasIntensity) {
        throw FileError(report.input, "has no intensities for --colour intensity");
    }
    if (*options.colour == CloudColour::Rgb && scan.colours.empty()) {
        throw FileError(report.input, "has no colours for --colour rgb");
    }
    return *options.colour;
}

std::string summaryOf(const PreviewScan& scan) {
    const std::string points = counted(scan.cloud.size(), "point");
    return scan.cloud.height > 1 ? points + ", organised " + std::to_string(scan.cloud.width) +
                                       " \u00D7 " + std::to_string(scan.cloud.height)
                                 : points;
}

/// @throws FileError when no point has a place
void checkIsVisible(const CloudScene& scene, std::size_t points, const PreviewReport& report) {
    if (scene.bounds().isEmpty()) {
        throw FileError(report.input, points == 0 ? "nothing to draw: no points"
                                                  : "nothing to draw: none of " +
                                                        counted(points, "point") + " has a place");
    }
}

} // namespace

Bytes previewOfScan(const Bytes& bytes, const PreviewOptions& options, PictureFormat format,
                    PreviewReport& report) {
    checkOptions(options, format);
    const PreviewScan scan =
        options.plain ? plainScanOf(bytes, report)
                      : previewScanOf(report.input, bytes, options.intensity, report.progress);
    for (const std::string& note : scan.notes) {
        report.notes.add(note);
    }
    constexpr std::size_t steps = 3;
    report.progress.begin("drawing " + report.input, steps);
    const bool isPage = format == PictureFormat::Html;
    const CloudColour colour = isPage ? CloudColour::Height : colourOf(scan, options, report);
    const CloudScene scene(scan, options.view.value_or(CloudView::Top), colour);
    report.progress.step();
    checkIsVisible(scene, scan.cloud.size(), report);
    report.addLeftOut(scene.pointsWithoutPlace());
    if (isPage) {
        return scanPage({report.title, scan.cloud, scan.hasIntensity, scan.colours, scan.shift,
                         scan.notes, options.pagePoints.value_or(mostPointsOfScanPage)});
    }
    Canvas canvas(format, options.size);
    const std::string words =
        drawPicture(canvas, options.size, scene, report.title, summaryOf(scan));
    report.progress.step();
    return canvas.finish(report.title, words);
}
