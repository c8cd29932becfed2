#include "tools/cloudconv/Preview.h"

#include "tools/cloudconv/DxfFile.h"
#include "tools/cloudconv/DxfInventory.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/preview/CloudPicture.h"
#include "tools/cloudconv/preview/DrawingPicture.h"

#include <string_view>

namespace {

using Bytes = std::vector<unsigned char>;

/// The file's name for messages and in the picture, and what there is to say about it.
struct Report {
    std::string input;
    std::string title;
    Progress& progress;
    Notes notes;

    void addLeftOut(std::size_t count) {
        if (count > 0) {
            notes.add(leftOutText(count) + " (nan, infinite or too far away)");
        }
    }
};

/// @throws FileError when no point has a place
void checkBounds(const Bounds& bounds, std::size_t points, const Report& report) {
    if (bounds.isEmpty()) {
        throw FileError(report.input, points == 0 ? "nothing to draw: no points"
                                                  : "nothing to draw: none of " +
                                                        counted(points, "point") + " has a place");
    }
}

Bytes pictureOfScan(const Bytes& bytes, const PreviewOptions& options, PictureFormat format,
                    Report& report) {
    report.progress.begin("reading points of " + report.input);
    const PlyContents contents = readPly(report.input, bytes);
    report.progress.begin("drawing " + report.input);
    const CloudScene scene(contents);
    checkBounds(scene.bounds(), contents.cloud.size(), report);
    const std::string summary = contents.cloud.height > 1
                                    ? counted(contents.cloud.size(), "point") + ", organised " +
                                          std::to_string(contents.cloud.width) + " \xC3\x97 " +
                                          std::to_string(contents.cloud.height)
                                    : counted(contents.cloud.size(), "point");
    report.addLeftOut(scene.pointsWithoutPlace());
    if (scene.isColouredByHeight()) {
        report.notes.add("no property \"intensity\" of type float, coloured by z");
    }
    Canvas canvas(format, options.size);
    const std::string words = drawPicture(canvas, options.size, scene, report.title, summary);
    return canvas.finish(report.title, words);
}

Bytes pictureOfDrawing(const Bytes& bytes, const PreviewOptions& options, PictureFormat format,
                       Report& report) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const DxfContents drawing = readDxf(report.input, bytes, report.progress);
    report.progress.begin("drawing " + report.input);
    const DrawingScene scene = sceneOf(drawing, options.distance);
    checkBounds(scene.bounds, scene.points, report);
    if (!drawing.cutOff.empty()) {
        report.notes.add(drawing.cutOff);
    }
    report.addLeftOut(scene.pointsWithoutPlace);
    Canvas canvas(format, options.size);
    const std::string words =
        drawPicture(canvas, options.size, scene, report.title, inventoryOf(text).unit);
    return canvas.finish(report.title, words);
}

/// The file's name without its folder.
std::string titleOf(const std::string& path) {
    return asPrintableUtf8(path == "-" ? inputName(path) : path.substr(path.rfind('/') + 1));
}

} // namespace

void preview(const PreviewOptions& options) {
    const FileFormat from = inputFormatOf(options.input, options.from);
    const PictureFormat to = pictureFormatOf(options.output, options.to);
    Progress progress(options.quiet);
    Report report = {inputName(options.input), titleOf(options.input), progress,
                     Notes(inputName(options.input))};
    const auto draw = from == FileFormat::Ply ? pictureOfScan : pictureOfDrawing;
    writeOutputFile(options.output,
                    draw(readInputFile(options.input, progress), options, to, report), progress);
    progress.end();
    if (!options.quiet) {
        report.notes.print();
    }
}
