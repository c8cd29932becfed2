// make_pages FOLDER: writes the pages that the browser test looks at, of drawings and scans that
// are made here.

#include "tools/cloudconv/page/DrawingPage.h"
#include "tools/cloudconv/page/ScanPage.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>

namespace {

using converters::DrawingPath;
using converters::PathCurveKind;
using converters::PathEntityKind;
using Point = cv::Point3_<double>;

constexpr double fullTurn = 6.283185307179586;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// What would run if a name were taken for markup, or if it could end its element.
constexpr char hostileName[] =
    "</script><script>window.hacked = 1</script><img src=x onerror=\"window.hacked = 1\">"
    "\xE2\x80\xA8 &amp; <!-- \xFF '\"";

double lengthOf(const std::vector<Point>& points) {
    double length = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double step = cv::norm(points[i] - points[i - 1]);
        length += std::isfinite(step) ? step : 0.0;
    }
    return length;
}

/// Adds a contour of one entity on a layer.
void add(DrawingPath& path, const std::vector<Point>& points, std::uint32_t layer,
         PathEntityKind kind) {
    const std::size_t first = path.points.size();
    const bool isPoint = kind == PathEntityKind::point;
    const auto handle = static_cast<std::uint64_t>(0x100 + path.entities.size());
    path.points.insert(path.points.end(), points.begin(), points.end());
    path.entities.push_back({handle, kind == PathEntityKind::line ? 0xABCU : 0U, layer, kind});
    path.pieces.push_back({first, path.points.size() - 1, 0,
                           static_cast<std::uint32_t>(path.entities.size() - 1),
                           isPoint ? PathCurveKind::point : PathCurveKind::line});
    converters::PathContour contour = {};
    contour.firstPoint = first;
    contour.endPoint = path.points.size();
    contour.firstPiece = path.pieces.size() - 1;
    contour.endPiece = path.pieces.size();
    contour.firstEntity = path.entities.size() - 1;
    contour.endEntity = path.entities.size();
    contour.length = isPoint ? 0.0 : lengthOf(points);
    contour.layer = layer;
    contour.trueColour = -1;
    contour.colour = path.layers.at(layer).colour;
    contour.closed = !isPoint && points.size() > 2 && points.front() == points.back();
    path.contours.push_back(contour);
}

std::vector<Point> circle(const Point& centre, double radius, int steps) {
    std::vector<Point> points;
    for (int i = 0; i < steps; ++i) {
        const double angle = fullTurn * i / steps;
        points.emplace_back(centre.x + radius * std::cos(angle),
                            centre.y + radius * std::sin(angle), centre.z);
    }
    points.push_back(points.front());
    return points;
}

/// Six contours on three layers, 120 x 80 mm, with a near miss.
DrawingPath shapes() {
    DrawingPath path;
    path.unit = converters::LengthUnit::millimetre;
    path.layers = {{"OUTLINE", 7, false, false},
                   {hostileName, 1, false, false},
                   {"EMPTY", 3, true, true},
                   {"MARKS", 5, false, false}};
    add(path, {{0, 0, 0}, {120, 0, 0}, {120, 80, 0}, {0, 80, 0}, {0, 0, 0}}, 0,
        PathEntityKind::lwpolyline);
    add(path, circle({30, 40, 0}, 20, 90), 1, PathEntityKind::circle);
    add(path, {{60, 20, 0}, {110, 20, 0}}, 1, PathEntityKind::line);
    add(path, {{110.05, 20, 0}, {110.05, 60, 0}, {60, 60, 0}}, 1, PathEntityKind::polyline);
    add(path, {{80, 40, 0}}, 3, PathEntityKind::point);
    add(path, {{90, 40, 0}, {nan, nan, 0}, {100, 40, 0}, {100, 45, 30}}, 3, PathEntityKind::spline);
    path.leftOut = {{"MTEXT", "NOTES", 24, converters::LeftOutReason::annotation},
                    {"INSERT", hostileName, 1, converters::LeftOutReason::blockMissing}};
    path.notes = {"the drawing was made for a test"};
    return path;
}

/// A grid of 10,000 closed contours of 24 points on eight layers.
DrawingPath crowd() {
    constexpr int side = 100;
    constexpr int steps = 24;
    DrawingPath path;
    for (int i = 0; i < 8; ++i) {
        path.layers.push_back({"ROW-" + std::to_string(i), 1, false, false});
    }
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            std::vector<Point> points = circle({10.0 * column, 10.0 * row, 0}, 4, steps);
            for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
                points[i] += 0.1 * (points[i] - Point(10.0 * column, 10.0 * row, 0));
            }
            points.back() = points.front();
            add(path, points, static_cast<std::uint32_t>(row % 8), PathEntityKind::lwpolyline);
        }
    }
    return path;
}

pcl::PointCloud<pcl::PointXYZI> ripples(int side) {
    pcl::PointCloud<pcl::PointXYZI> cloud;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double x = 10.0 * column / (side - 1) - 5.0;
            const double y = 10.0 * row / (side - 1) - 5.0;
            const double distance = std::hypot(x, y);
            const double z = std::cos(3.0 * distance) / (1.0 + distance);
            cloud.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z),
                             static_cast<float>(100.0 / (1.0 + distance))});
        }
    }
    return cloud;
}

std::vector<std::uint32_t> redAndBlue(const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    std::vector<std::uint32_t> colours;
    for (const pcl::PointXYZI& point : cloud) {
        colours.push_back(point.x < 0 ? 0xE01010U : 0x1010E0U);
    }
    return colours;
}

void write(const std::filesystem::path& file, const std::vector<unsigned char>& bytes) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
        std::cerr << "cannot write " << file << '\n';
        std::exit(1);
    }
}

void writeDrawings(const std::filesystem::path& folder) {
    const DrawingPath withShapes = shapes();
    write(folder / "shapes.html",
          drawingPage({hostileName,
                       withShapes,
                       {{"near miss: the ends at (110, 20) and (110.05, 20) lie 0.05 apart",
                         {{110, 20, 0}, {110.05, 20, 0}}},
                        {std::string("unit missing ") + hostileName, {}}},
                       {hostileName}}));
    write(folder / "crowd.html", drawingPage({"crowd.dxf", crowd(), {}, {}}));
    write(folder / "nothing.html", drawingPage({"nothing.dxf", DrawingPath(), {}, {}}));
}

void writeScans(const std::filesystem::path& folder) {
    const pcl::PointCloud<pcl::PointXYZI> cloud = ripples(200);
    ScanPage page = {hostileName, cloud};
    page.colours = redAndBlue(cloud);
    page.shift = {4512000, 5400000, 0};
    page.notes = {hostileName};
    write(folder / "ripples.html", scanPage(page));
    ScanPage thin = {"thin.ply", cloud};
    thin.hasIntensity = false;
    thin.mostPoints = 1000;
    write(folder / "thin.html", scanPage(thin));
    pcl::PointCloud<pcl::PointXYZI> none;
    none.push_back({std::nanf(""), 0, 0, 0});
    write(folder / "no_points.html", scanPage({"none.ply", none}));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_pages FOLDER\n";
        return 2;
    }
    std::filesystem::create_directories(argv[1]);
    writeDrawings(argv[1]);
    writeScans(argv[1]);
}
