#include "tools/cloudconv/DrawingConversion.h"

#include "converters/PathDrawing.h"
#include "converters/ScanWriter.h"
#include "dxfeditor/DXFWriter.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/LeftOutText.h"
#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/PathFile.h"
#include "tools/cloudconv/PointOutput.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::ScalarType;
using converters::ScanLayout;

/// A point of a text: as exact as the drawing.
struct ExactPoint {
    double x;
    double y;
    double z;
    double contour;
};

const ScanLayout exactLayout = {{{"x", ScalarType::float64, offsetof(ExactPoint, x)},
                                 {"y", ScalarType::float64, offsetof(ExactPoint, y)},
                                 {"z", ScalarType::float64, offsetof(ExactPoint, z)},
                                 {"contour", ScalarType::float64, offsetof(ExactPoint, contour)}},
                                sizeof(ExactPoint)};

/// Hands each point of the path, with the number of its contour, to the writer, in blocks.
template <typename Record, typename Make>
void writePoints(const DrawingPath& path, converters::ScanWriter& writer, Progress& progress,
                 Make make) {
    // Few enough to stay in the second cache.
    constexpr std::size_t blockSize = 4096;
    std::vector<Record> block;
    block.reserve(blockSize);
    double number = 0.0;
    writer.begin(path.points.size());
    for (const PathContour& contour : path.contours) {
        number += 1.0;
        for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
            block.push_back(make(path.points[i], number));
            if (block.size() == blockSize) {
                static_cast<void>(writer.write(block.data(), block.size()));
                block.clear();
                progress.reached(i);
            }
        }
    }
    static_cast<void>(writer.write(block.data(), block.size()));
    static_cast<void>(writer.finish());
}

/// The most that a coordinate moves for becoming a 32-bit float.
double farthestMove(const DrawingPath& path) {
    double farthest = 0.0;
    for (const cv::Point3_<double>& point : path.points) {
        for (const double value : {point.x, point.y, point.z}) {
            farthest = std::max(farthest,
                                std::abs(value - static_cast<double>(static_cast<float>(value))));
        }
    }
    return farthest;
}

/// Drawings of other programs end where floats are too coarse: a plan in map coordinates, say.
void tellWhatRoundingCosts(const DrawingPath& path, Notes& notes) {
    constexpr double samePlace = 0.001;
    const double farthest = farthestMove(path);
    if (farthest >= samePlace) {
        const std::string unit = shortName(path.unit);
        notes.add("PLY holds coordinates as 32-bit floats: points move by up to " +
                  numberText(farthest, 2) + (unit.empty() ? " drawing units" : " " + unit) +
                  "; .csv and .xyz hold them exactly");
    }
}

/// What the reader had to assume.
void tellAssumptions(const DrawingPath& path, Notes& notes) {
    for (const std::string& note : path.notes) {
        notes.add(note);
    }
}

void tell(const DrawingPath& path, const ConvertOptions& options, FileFormat to, Notes& notes) {
    if (path.contours.empty()) {
        notes.add("the drawing holds no points, nor does " + outputName(options.output));
    } else {
        notes.add(counted(path.entities.size(), "entity", "entities") + " in " +
                  counted(path.contours.size(), "contour") + ", " +
                  counted(path.points.size(), "point"));
    }
    tellAssumptions(path, notes);
    if (const std::string leftOut = leftOutText(path.leftOut); !leftOut.empty()) {
        notes.add("left out: " + leftOut);
    }
    if (to == FileFormat::Ply) {
        tellWhatRoundingCosts(path, notes);
    }
    if (to == FileFormat::Dxf && path.unit != converters::LengthUnit::none) {
        notes.add("a drawing of release R12 names no unit; coordinates are in " +
                  shortName(path.unit));
    }
}

/// Contours become polylines, not as many points.
void writeDrawing(const DrawingPath& path, OutputFile& file, const std::string& name) {
    const std::shared_ptr<DXFDocument> drawing = converters::drawingOf(path);
    if (!DXFWriter(*drawing).saveTo(file.descriptor(), name)) {
        throw FileError(name, "cannot be written");
    }
}

void write(const DrawingPath& path, const ConvertOptions& options, FileFormat to,
           Progress& progress) {
    progress.begin("writing " + outputName(options.output), path.points.size());
    OutputFile file(options.output);
    if (to == FileFormat::Dxf) {
        writeDrawing(path, file, outputName(options.output));
        file.commit();
        return;
    }
    converters::ScanWriteOptions writing;
    writing.digits = options.digits;
    const converters::ScanOutput output = pointOutputOf(to, options.ascii);
    if (to == FileFormat::Ply) {
        writing.width = path.points.size();
        writing.height = writing.width == 0 ? 0 : 1;
        converters::ScanWriter writer(sinkTo(file), converters::layoutOfPointXYZI(), output,
                                      writing);
        writePoints<pcl::PointXYZI>(
            path, writer, progress, [&options](const cv::Point3_<double>& point, double number) {
                return pcl::PointXYZI(static_cast<float>(point.x), static_cast<float>(point.y),
                                      static_cast<float>(point.z),
                                      options.intensity.value_or(static_cast<float>(number)));
            });
    } else {
        converters::ScanWriter writer(sinkTo(file), exactLayout, output, writing);
        writePoints<ExactPoint>(
            path, writer, progress, [&options](const cv::Point3_<double>& point, double number) {
                const double contour = options.intensity.has_value()
                                           ? static_cast<double>(*options.intensity)
                                           : number;
                return ExactPoint{point.x, point.y, point.z, contour};
            });
    }
    file.commit();
}

} // namespace

void convertDrawing(const ConvertOptions& options, FileFormat to) {
    const std::string name = inputName(options.input);
    Progress progress(options.quiet);
    Notes notes(name);
    const InputFile input(options.input);
    checkReplacement(input, options.output, options.force);
    const DrawingPath path = readPathFile(input, options.path, progress);
    if (path.contours.empty() && !path.leftOut.empty()) {
        // They may say why: a file that is cut short.
        if (!options.quiet) {
            tellAssumptions(path, notes);
            notes.print();
        }
        throw FileError(name, "nothing is left to follow; left out: " + leftOutText(path.leftOut));
    }
    write(path, options, to, progress);
    progress.end();
    if (!options.quiet) {
        tell(path, options, to, notes);
        notes.print();
    }
}
