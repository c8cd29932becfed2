// Small fixed pieces of work, one for each function whose cost matters, counted by callgrind; see
// counts.py.

#include "converters/Converters.h"
#include "converters/PathReader.h"
#include "converters/Scan.h"
#include "converters/ScanWriter.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/PathDrawings.h"
#include "tests/support/SampleClouds.h"
#include "tests/support/SampleDrawings.h"

#include <unistd.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr std::size_t points = 20000;
/// Drawings take more instructions for each point.
constexpr std::size_t drawingPoints = 5000;

void require(bool condition) {
    if (!condition) {
        std::fputs("a workload failed\n", stderr);
        std::exit(1);
    }
}

/// Runs a workload twice and has the second run counted, in a file of its own: what happens once,
/// such as binding functions and setting up the heap, is not the workload.
void count(const char* name, const std::function<void()>& workload) {
    workload();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    workload();
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
}

void countPly() {
    const pcl::PointCloud<pcl::PointXYZI> cloud = sampleCloud(points);
    std::vector<unsigned char> binary;
    std::vector<unsigned char> ascii;
    require(converters::toPlyBinary(cloud, binary) && converters::toPlyAscii(cloud, ascii));

    count("toPlyBinary", [&] {
        std::vector<unsigned char> file;
        require(converters::toPlyBinary(cloud, file));
    });
    count("toPlyAscii", [&] {
        std::vector<unsigned char> file;
        require(converters::toPlyAscii(cloud, file));
    });
    count("fromPly-binary", [&] {
        pcl::PointCloud<pcl::PointXYZI> read;
        require(converters::fromPly(binary, read).success);
    });
    count("fromPly-ascii", [&] {
        pcl::PointCloud<pcl::PointXYZI> read;
        require(converters::fromPly(ascii, read).success);
    });
}

/// A text of double coordinates, colours and faces.
std::string richScan() {
    const pcl::PointCloud<pcl::PointXYZI> cloud = sampleCloud(points);
    std::string file = "ply\nformat ascii 1.0\nelement vertex " + std::to_string(points) +
                       "\nproperty double x\nproperty double y\nproperty double z\n"
                       "property uchar red\nelement face " +
                       std::to_string(points) +
                       "\nproperty list uchar int vertex_indices\nend_header\n";
    char line[200];
    for (const pcl::PointXYZI& point : cloud) {
        std::snprintf(line, sizeof line, "%.9f %.9f %.9f %d\n", 4.5e6 + double{point.x} * 1.1,
                      double{point.y} * 1.1, double{point.z} * 1.1,
                      static_cast<int>(point.intensity));
        file += line;
    }
    for (std::size_t i = 0; i < points; ++i) {
        file += "3 " + std::to_string(i) + " 7 12345\n";
    }
    return file;
}

void countScans() {
    const pcl::PointCloud<pcl::PointXYZI> cloud = sampleCloud(points);
    std::vector<unsigned char> binary;
    std::vector<unsigned char> ascii;
    require(converters::toPlyBinary(cloud, binary) && converters::toPlyAscii(cloud, ascii));
    const std::string rich = richScan();
    const auto read = [](const void* bytes, std::size_t size) {
        pcl::PointCloud<pcl::PointXYZI> scan;
        require(bool(converters::readScan(bytes, size, scan)));
    };
    count("readScan-binary", [&] { read(binary.data(), binary.size()); });
    count("readScan-ascii", [&] { read(ascii.data(), ascii.size()); });
    count("readScan-ascii-doubles-faces", [&] { read(rich.data(), rich.size()); });
    count("writeScan-ascii", [&] {
        converters::ScanWriter writer([](const void*, std::size_t) { return true; },
                                      converters::layoutOfPointXYZI(),
                                      converters::ScanOutput::plyAscii);
        require(writer.begin(points) && writer.write(cloud.data(), points) && writer.finish());
    });
}

void countDxf() {
    const std::vector<cv::Point3_<double>> vector = samplePoints(drawingPoints);
    pcl::PointCloud<pcl::PointXYZ> cloud;
    for (const cv::Point3_<double>& point : vector) {
        cloud.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y),
                           static_cast<float>(point.z));
    }
    std::vector<unsigned char> file;
    require(converters::toDxf(vector, file));
    const std::vector<char> drawing(file.begin(), file.end());

    count("toDxf-vector", [&] {
        std::vector<unsigned char> written;
        require(converters::toDxf(vector, written));
    });
    count("toDxf-cloud", [&] {
        std::vector<unsigned char> written;
        require(converters::toDxf(cloud, written));
    });
    count("fromDxf-vector", [&] {
        std::vector<cv::Point3_<double>> read;
        require(converters::fromDxf(drawing, read));
    });
    count("fromDxf-cloud", [&] {
        pcl::PointCloud<pcl::PointXYZ> read;
        require(converters::fromDxf(drawing, read));
    });
}

void countFromFile() {
    const std::string path =
        std::filesystem::temp_directory_path() / ("workload" + std::to_string(getpid()));
    std::ofstream(path, std::ios::binary) << std::string(std::size_t{1} << 20, 'a');
    count("from_file", [&] {
        std::vector<unsigned char> bytes;
        require(converters::from_file(path, bytes));
    });
    std::filesystem::remove(path);
}

void countDrawings() {
    const std::string text = ordinaryDrawing();
    count("read-ordinary-drawing", [&] {
        DXFDocument document;
        require(DXFReader(document).load(text.data(), text.size()));
    });

    DXFDocument contours;
    addShuffledContours(contours, 10000);
    count("stitch-10000-runs", [&] { require(!contours.getPoints().empty()); });

    DXFDocument circles;
    addCircles(circles, 50);
    count("sample-circles", [&] { require(circles.getPoints().size() == 50000); });

    DXFDocument splines;
    addSplines(splines, 100);
    count("sample-splines", [&] { require(!splines.getPoints().empty()); });
}

void countPath(const char* name, const std::string& drawing, converters::PathOrder order) {
    converters::PathOptions options;
    options.order = order;
    count(name, [&] {
        converters::DrawingPath path;
        require(converters::readPath(drawing.data(), drawing.size(), path, options).success);
    });
}

/// A few contours at a time.
void countPathInParts(const std::string& drawing) {
    count("PathReader", [&] {
        converters::PathReader reader(drawing.data(), drawing.size());
        converters::PathContours contours;
        require(reader.open().success);
        do {
            require(reader.read(contours).success);
        } while (!contours.contours.empty());
    });
}

void countPaths() {
    constexpr std::size_t entities = 2000;
    const std::string plain = pathDrawing(entities, PathDrawingKind::plain);
    const std::string blocks = pathDrawing(entities, PathDrawingKind::inBlocks);
    countPath("readPath", plain, converters::PathOrder::drawn);
    countPathInParts(plain);
    countPath("readPath-blocks", blocks, converters::PathOrder::drawn);
    countPath("readPath-nearest", plain, converters::PathOrder::nearest);
    countPath("readPath-inside-first", plain, converters::PathOrder::insideFirst);
}

} // namespace

int main() {
    countPly();
    countScans();
    countDxf();
    countFromFile();
    countDrawings();
    countPaths();
    return 0;
}
