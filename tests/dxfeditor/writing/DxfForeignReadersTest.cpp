// Drawings that this library writes, read by independent programs.

#include "converters/Converters.h"
#include "dxfeditor/DXFDraw.h"
#include "dxfeditor/DXFPolyline.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <sstream>

namespace {

using Points = std::vector<cv::Point3_<double>>;

/// Where Debian's package puts ezdxf, whatever python stands first in the path.
const std::string python = "/usr/bin/python3";

/// Lines that a command prints; `status` receives its exit status.
std::vector<std::string> linesFrom(const std::string& command, int& status) {
    std::vector<std::string> lines;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    std::string line;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        lines.push_back(line);
        line.clear();
    }
    status = pclose(pipe);
    return lines;
}

bool succeeds(const std::string& command) {
    int status = -1;
    linesFrom(command, status);
    return status == 0;
}

/// Coordinates that six decimals tell exactly, and so does every reader.
Points exactPoints() {
    std::mt19937_64 random(3);
    std::uniform_int_distribution<int> sixtyFourths(-64'000, 64'000);
    Points points;
    for (int i = 0; i < 500; ++i) {
        points.emplace_back(sixtyFourths(random) / 64.0, sixtyFourths(random) / 64.0,
                            sixtyFourths(random) / 64.0);
    }
    return points;
}

class ForeignReader : public ::testing::Test {
protected:
    /// Path of a file with the drawing of the points.
    std::string drawingOf(const Points& points) {
        std::vector<unsigned char> bytes;
        EXPECT_TRUE(converters::toDxf(points, bytes));
        writeContent(m_path, std::string(bytes.begin(), bytes.end()));
        return m_path;
    }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.file("drawing.dxf");
};

/// Output of the script that reads a drawing with ezdxf.
std::vector<std::string> readByEzdxf(const std::string& path) {
    int status = -1;
    const std::vector<std::string> lines =
        linesFrom(python + " " CONVERTERS_TEST_DIR "/support/read_drawing.py " + path, status);
    EXPECT_EQ(status, 0) << ::testing::PrintToString(lines);
    return lines;
}

bool hasEzdxf() {
    return succeeds(python + " -c 'import ezdxf'");
}

TEST_F(ForeignReader, EzdxfFindsNothingWrongAndReadsEveryPoint) {
    if (!hasEzdxf()) {
        GTEST_SKIP() << "python3-ezdxf is not installed";
    }
    Points points = exactPoints();
    const std::vector<std::string> lines = readByEzdxf(drawingOf(points));
    ASSERT_EQ(lines.size(), points.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::istringstream line(lines[i]);
        std::string kind;
        std::string layer;
        cv::Point3_<double> point;
        line >> kind >> layer >> point.x >> point.y >> point.z;
        EXPECT_EQ(kind + " " + layer, "point 0") << lines[i];
        EXPECT_EQ(point, points[i]) << lines[i];
    }
}

TEST_F(ForeignReader, EzdxfReadsADrawingWithoutPoints) {
    if (!hasEzdxf()) {
        GTEST_SKIP() << "python3-ezdxf is not installed";
    }
    EXPECT_TRUE(readByEzdxf(drawingOf({})).empty());
}

TEST_F(ForeignReader, EzdxfReadsPolylines) {
    if (!hasEzdxf()) {
        GTEST_SKIP() << "python3-ezdxf is not installed";
    }
    DXFDraw draw(m_path);
    draw.setupFile();
    draw.createEntity();
    std::dynamic_pointer_cast<DXFPolyline>(draw.entities[0])
        ->appendPoint(DXFVertex(0.5, 0.25, 7.0, true, -0.5));
    ASSERT_TRUE(draw.drawPoly());
    EXPECT_EQ(readByEzdxf(m_path),
              (std::vector<std::string>{"polyline 1 False", "vertex 0.5 0.25 7.0 -0.5",
                                        "vertex 1.5 1.0 0.0 0", "vertex 10.0 1.0 0.0 0",
                                        "vertex 10.0 10.0 0.0 0", "vertex 1.5 10.0 0.0 0"}));
}

TEST_F(ForeignReader, GdalReadsEveryPoint) {
    if (!succeeds("ogrinfo --version")) {
        GTEST_SKIP() << "gdal-bin is not installed";
    }
    const Points points = exactPoints();
    int status = -1;
    const std::vector<std::string> lines =
        linesFrom("ogrinfo -ro -q -al " + drawingOf(points), status);
    EXPECT_EQ(status, 0);
    Points found;
    for (const std::string& line : lines) {
        cv::Point3_<double> point;
        if (std::sscanf(line.c_str(), " POINT Z (%lf %lf %lf)", &point.x, &point.y, &point.z) ==
            3) {
            found.push_back(point);
        } else if (std::sscanf(line.c_str(), " POINT (%lf %lf)", &point.x, &point.y) == 2) {
            found.push_back(point); // z is 0
        }
    }
    EXPECT_EQ(found, points);
}

} // namespace
