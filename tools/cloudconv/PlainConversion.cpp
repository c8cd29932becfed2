#include "tools/cloudconv/PlainConversion.h"

#include "dxfeditor/WalkNumbers.h"
#include "tools/cloudconv/DxfFile.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/Wording.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using Cloud = pcl::PointCloud<pcl::PointXYZI>;
using Points = std::vector<cv::Point3_<double>>;

/// The names of the files, for messages, and what there is to say about them.
struct Report {
    std::string input;
    std::string output;
    Progress& progress;
    Notes notes;
};

std::string listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

/// What reading a scan takes of converting it; making the file is the rest.
constexpr double readingShare = 0.6;

/// @return called with the part that is done, 0 to 1
std::function<bool(double)> beginConverting(Report& report) {
    return report.progress.beginParts("converting " + report.input);
}

PlyContents readScan(const std::vector<unsigned char>& bytes, Report& report) {
    const auto progress = beginConverting(report);
    PlyContents contents =
        readPly(report.input, bytes, [&](double done) { progress(readingShare * done); });
    if (contents.cloud.points.empty()) {
        report.notes.add("the file declares no points, nor does " + report.output);
    }
    return contents;
}

DxfContents readDrawing(const std::vector<unsigned char>& bytes, Report& report) {
    DxfContents contents = readDxf(report.input, bytes, report.progress);
    report.notes.add(counted(contents.entityCount, "entity", "entities") + " in " +
                     counted(contents.contours.size(), "run") + ", " +
                     counted(contents.points.size(), "point"));
    if (!contents.cutOff.empty()) {
        report.notes.add(contents.cutOff);
    }
    if (contents.points.empty()) {
        report.notes.add("the drawing holds no points, nor does " + report.output);
    }
    return contents;
}

void tellWhatScanLacks(const PlyContents& contents, const ConvertOptions& options, Report& report) {
    if (contents.cloud.points.empty()) {
        return;
    }
    if (!contents.hasIntensity && !options.intensity.has_value()) {
        report.notes.add("no property \"intensity\" of type float, written as 0");
    }
    if (!contents.droppedProperties.empty()) {
        report.notes.add("dropped properties: " + listed(contents.droppedProperties));
    }
}

/// Drawings of other programs end where floats are too coarse: a plan in map coordinates, say.
void tellWhatRoundingCosts(const Points& points, const Cloud& cloud, Report& report) {
    double farthest = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (const double moved : {points[i].x - static_cast<double>(cloud.points[i].x),
                                   points[i].y - static_cast<double>(cloud.points[i].y),
                                   points[i].z - static_cast<double>(cloud.points[i].z)}) {
            farthest = std::max(farthest, std::abs(moved));
        }
    }
    if (farthest >= dxfeditor::joinDistance) {
        report.notes.add("PLY holds coordinates as 32-bit floats: points move by up to " +
                         numberText(farthest, 2) + " drawing units");
    }
}

/// The walk as a cloud of one row. Its intensities count the contours, from 1.
Cloud cloudOf(const DxfContents& drawing) {
    Cloud cloud;
    cloud.reserve(drawing.points.size());
    float number = 0.0F;
    for (const DXFContour& contour : drawing.contours) {
        number += 1.0F;
        for (std::size_t i = contour.begin; i < contour.end; ++i) {
            const cv::Point3_<double>& point = drawing.points[i];
            pcl::PointXYZI converted;
            converted.x = static_cast<float>(point.x);
            converted.y = static_cast<float>(point.y);
            converted.z = static_cast<float>(point.z);
            converted.intensity = number;
            cloud.push_back(converted);
        }
    }
    return cloud;
}

/// The scan's points, without those that have no place: as numbers of a drawing they would read 0.
Points pointsOf(const Cloud& cloud, Report& report) {
    Points points;
    points.reserve(cloud.size());
    for (const pcl::PointXYZI& point : cloud) {
        if (hasPlace(point)) {
            points.emplace_back(point.x, point.y, point.z);
        }
    }
    if (points.size() < cloud.size()) {
        report.notes.add(leftOutText(cloud.size() - points.size()) + " (nan or infinite)");
    }
    return points;
}

std::vector<unsigned char> plyOf(Cloud cloud, const ConvertOptions& options) {
    if (options.intensity.has_value()) {
        for (pcl::PointXYZI& point : cloud) {
            point.intensity = *options.intensity;
        }
    }
    return writePly(cloud, options.ascii);
}

std::vector<unsigned char> scanToPly(const std::vector<unsigned char>& bytes,
                                     const ConvertOptions& options, Report& report) {
    PlyContents contents = readScan(bytes, report);
    tellWhatScanLacks(contents, options, report);
    return plyOf(std::move(contents.cloud), options);
}

std::vector<unsigned char> scanToDxf(const std::vector<unsigned char>& bytes,
                                     const ConvertOptions& /*options*/, Report& report) {
    PlyContents contents = readScan(bytes, report);
    std::vector<std::string> dropped = contents.droppedProperties;
    if (contents.hasIntensity) {
        dropped.insert(dropped.begin(), "intensity");
    }
    if (!contents.cloud.empty() && !dropped.empty()) {
        report.notes.add("dropped properties: " + listed(dropped));
    }
    return writeDxf(report.output, pointsOf(contents.cloud, report));
}

std::vector<unsigned char> drawingToPly(const std::vector<unsigned char>& bytes,
                                        const ConvertOptions& options, Report& report) {
    const DxfContents contents = readDrawing(bytes, report);
    const auto progress = beginConverting(report);
    Cloud cloud = cloudOf(contents);
    tellWhatRoundingCosts(contents.points, cloud, report);
    progress(readingShare);
    return plyOf(std::move(cloud), options);
}

std::vector<unsigned char> drawingToDxf(const std::vector<unsigned char>& bytes,
                                        const ConvertOptions& /*options*/, Report& report) {
    const DxfContents contents = readDrawing(bytes, report);
    beginConverting(report);
    return writeDxf(report.output, contents.points);
}

} // namespace

void convertPlainly(const ConvertOptions& options, FileFormat from, FileFormat to) {
    Progress progress(options.quiet);
    Report report = {inputName(options.input), outputName(options.output), progress,
                     Notes(inputName(options.input))};
    const auto conversion = from == FileFormat::Ply
                                ? (to == FileFormat::Ply ? scanToPly : scanToDxf)
                                : (to == FileFormat::Ply ? drawingToPly : drawingToDxf);
    writeOutputFile(options.output,
                    conversion(readInputFile(options.input, progress), options, report), progress);
    progress.end();
    if (!options.quiet) {
        report.notes.print();
    }
}
