#include "tools/cloudconv/DrawingConversion.h"

#include "base/LargePages.h"
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
#include <type_traits>
#include <vector>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathContours;
using converters::PathReport;
using converters::ScalarType;
using converters::ScanLayout;

/// What a path holds, in numbers.
struct PathTotals {
    std::size_t contours = 0;
    std::size_t entities = 0;
    std::size_t points = 0;
    /// The most that a coordinate moves for becoming a 32-bit float.
    double farthestMove = 0.0;
};

void add(const PathContours& path, PathTotals& totals) {
    totals.contours += path.contours.size();
    totals.entities += path.entities.size();
    totals.points += path.points.size();
}

void addMoves(const PathContours& path, PathTotals& totals) {
    for (const cv::Point3_<double>& point : path.points) {
        for (const double value : {point.x, point.y, point.z}) {
            totals.farthestMove =
                std::max(totals.farthestMove,
                         std::abs(value - static_cast<double>(static_cast<float>(value))));
        }
    }
}

/// A point of a text: as exact as the drawing.
struct ExactPoint {
    ExactPoint(const cv::Point3_<double>& point, double number)
        : x(point.x), y(point.y), z(point.z), contour(number) {}

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

/// A point of a PLY file.
struct FloatPoint {
    FloatPoint(const cv::Point3_<double>& point, double number)
        : x(static_cast<float>(point.x)), y(static_cast<float>(point.y)),
          z(static_cast<float>(point.z)), intensity(static_cast<float>(number)) {}

    float x;
    float y;
    float z;
    float intensity;
};

const ScanLayout floatLayout = {
    {{"x", ScalarType::float32, offsetof(FloatPoint, x)},
     {"y", ScalarType::float32, offsetof(FloatPoint, y)},
     {"z", ScalarType::float32, offsetof(FloatPoint, z)},
     {"intensity", ScalarType::float32, offsetof(FloatPoint, intensity)}},
    sizeof(FloatPoint)};

/// The points of a path on their way to a file, a few contours at a time.
template <typename Record>
class PointConversion {
public:
    PointConversion(PathFileReader& reader, const ConvertOptions& options)
        : m_reader(reader), m_options(options) {}

    /// Reads the first contours, and counts all points.
    void begin() {
        while (readSome() && m_records.size() + m_contours.points.size() <= mostKept) {
            if (m_records.size() + m_contours.points.size() > mostKept / 8) {
                base::reserveLarge(m_records, mostKept);
            }
            makeRecords([] {});
        }
        m_points = m_totals.points + m_reader.countPoints();
    }

    /// All points.
    std::size_t points() const { return m_points; }
    /// What has been read.
    const PathTotals& totals() const { return m_totals; }

    /// Writes all points, and reads those that are still to be read.
    void writeTo(OutputFile& file, const ScanLayout& layout, FileFormat to, Progress& progress) {
        converters::ScanWriteOptions writing;
        writing.digits = m_options.digits;
        if (to == FileFormat::Ply) {
            writing.width = m_points;
            writing.height = m_points == 0 ? 0 : 1;
        }
        converters::ScanWriter writer(sinkTo(file), layout, pointOutputOf(to, m_options.ascii),
                                      writing);
        std::size_t written = 0;
        const auto writeRecords = [&] {
            for (std::size_t i = 0; i < m_records.size(); i += blockSize) {
                const std::size_t size = std::min(blockSize, m_records.size() - i);
                static_cast<void>(writer.write(&m_records[i], size));
                written += size;
                progress.reached(written);
            }
            m_records.clear();
        };
        writer.begin(m_points);
        writeRecords();
        while (!m_contours.contours.empty()) {
            makeRecords([&] {
                if (m_records.size() == blockSize) {
                    writeRecords();
                }
            });
            writeRecords();
            readSome();
        }
        static_cast<void>(writer.finish());
    }

private:
    // Points come behind their number in a PLY file, and in no file when they are too many. So
    // drawings of more points than these are followed twice: to count, and to write.
    static constexpr std::size_t mostKept = std::size_t{1} << 18;
    // Few enough to stay in the second cache.
    static constexpr std::size_t blockSize = 4096;

    /// @return false when there are no more contours
    bool readSome() {
        const bool isSome = m_reader.read(m_contours);
        add(m_contours, m_totals);
        if (std::is_same_v<Record, FloatPoint> && !m_options.quiet) {
            addMoves(m_contours, m_totals);
        }
        return isSome;
    }

    /// @param added  called behind each record
    template <typename Added>
    void makeRecords(const Added& added) {
        for (const PathContour& contour : m_contours.contours) {
            m_number += 1.0;
            const double number =
                m_options.intensity ? static_cast<double>(*m_options.intensity) : m_number;
            for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
                m_records.emplace_back(m_contours.points[i], number);
                added();
            }
        }
    }

    PathFileReader& m_reader;
    const ConvertOptions& m_options;
    /// Those read last.
    PathContours m_contours;
    /// Of contours before these.
    std::vector<Record> m_records;
    std::size_t m_points = 0;
    PathTotals m_totals;
    double m_number = 0.0;
};

/// What the reader had to assume.
void tellAssumptions(const PathReport& report, Notes& notes) {
    for (const std::string& note : report.notes) {
        notes.add(note);
    }
}

/// Drawings of other programs end where floats are too coarse: a plan in map coordinates, say.
void tellWhatRoundingCosts(double farthestMove, const PathReport& report, Notes& notes) {
    constexpr double samePlace = 0.001;
    if (farthestMove >= samePlace) {
        const std::string unit = shortName(report.unit);
        notes.add("PLY holds coordinates as 32-bit floats: points move by up to " +
                  numberText(farthestMove, 2) + (unit.empty() ? " drawing units" : " " + unit) +
                  "; .csv and .xyz hold them exactly");
    }
}

void tell(const PathTotals& totals, const PathReport& report, const ConvertOptions& options,
          FileFormat to, Notes& notes) {
    if (totals.contours == 0) {
        notes.add("the drawing holds no points, nor does " + outputName(options.output));
    } else {
        notes.add(counted(totals.entities, "entity", "entities") + " in " +
                  counted(totals.contours, "contour") + ", " + counted(totals.points, "point"));
    }
    tellAssumptions(report, notes);
    if (const std::string leftOut = leftOutText(report.leftOut); !leftOut.empty()) {
        notes.add("left out: " + leftOut);
    }
    tellWhatRoundingCosts(totals.farthestMove, report, notes);
    if (to == FileFormat::Dxf && report.unit != converters::LengthUnit::none) {
        notes.add("a drawing of release R12 names no unit; coordinates are in " +
                  shortName(report.unit));
    }
}

/// A drawing on its way to another file.
class Conversion {
public:
    Conversion(const ConvertOptions& options, FileFormat to)
        : m_options(options), m_to(to), m_progress(options.quiet),
          m_notes(inputName(options.input)), m_input(options.input) {
        checkReplacement(m_input, options.output, options.force);
    }

    void run() {
        if (m_to == FileFormat::Dxf) {
            convertContours();
        } else if (m_to == FileFormat::Ply) {
            convertPoints<FloatPoint>(floatLayout);
        } else {
            convertPoints<ExactPoint>(exactLayout);
        }
    }

private:
    template <typename Record>
    void convertPoints(const ScanLayout& layout) {
        PathFileReader reader(m_input, m_options.path, m_progress);
        PointConversion<Record> conversion(reader, m_options);
        conversion.begin();
        checkThatSomethingIsLeft(conversion.totals(), reader.report());
        m_progress.begin("writing " + outputName(m_options.output), conversion.points());
        OutputFile file(m_options.output);
        conversion.writeTo(file, layout, m_to, m_progress);
        finish(file, conversion.totals(), reader.report());
    }

    /// Contours become polylines, not as many points.
    void convertContours() {
        const DrawingPath path = readPathFile(m_input, m_options.path, m_progress);
        PathTotals totals;
        add(path, totals);
        checkThatSomethingIsLeft(totals, path);
        m_progress.begin("writing " + outputName(m_options.output), path.points.size());
        OutputFile file(m_options.output);
        const std::string name = outputName(m_options.output);
        const std::shared_ptr<DXFDocument> drawing = converters::drawingOf(path);
        if (!DXFWriter(*drawing).saveTo(file.descriptor(), name)) {
            throw FileError(name, "cannot be written");
        }
        finish(file, totals, path);
    }

    void checkThatSomethingIsLeft(const PathTotals& totals, const PathReport& report) {
        if (totals.contours != 0 || report.leftOut.empty()) {
            return;
        }
        // They may say why: a file that is cut short.
        if (!m_options.quiet) {
            tellAssumptions(report, m_notes);
            m_notes.print();
        }
        throw FileError(inputName(m_options.input),
                        "nothing is left to follow; left out: " + leftOutText(report.leftOut));
    }

    void finish(OutputFile& file, const PathTotals& totals, const PathReport& report) {
        file.commit();
        m_progress.end();
        if (!m_options.quiet) {
            tell(totals, report, m_options, m_to, m_notes);
            m_notes.print();
        }
    }

    const ConvertOptions& m_options;
    FileFormat m_to;
    Progress m_progress;
    Notes m_notes;
    const InputFile m_input;
};

} // namespace

void convertDrawing(const ConvertOptions& options, FileFormat to) {
    Conversion(options, to).run();
}
