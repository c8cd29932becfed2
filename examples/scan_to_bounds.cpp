// scan_to_bounds IN.ply: reads a scan of any program, tells what the file holds, and prints the
// smallest box around its points, in the coordinates of the file.

#include "converters/Scan.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

namespace {

void tellWhatTheFileHolds(const converters::ScanReport& report) {
    std::cerr << report.points << " points, " << nameOf(report.format) << '\n';
    for (const converters::ScanElement& element : report.elements) {
        for (const converters::ScanProperty& property : element.properties) {
            std::cerr << element.name << ' ' << property.name << ", " << nameOf(property.type)
                      << (property.use == converters::ScanPropertyUse::dropped ? ": not read\n"
                                                                               : "\n");
        }
    }
    for (const std::string& note : report.notes) {
        std::cerr << "note: " << note << '\n';
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::cerr << "usage: scan_to_bounds IN.ply\n";
        return 2;
    }
    // Map coordinates are too large for floats; what is taken off is in the report.
    converters::ScanOptions options;
    options.automaticShift = true;
    pcl::PointCloud<pcl::PointXYZI> cloud;
    const auto result = converters::readScan(std::filesystem::path(argv[1]), cloud, options);
    if (!result) {
        std::cerr << "scan_to_bounds: " << argv[1] << ": " << result.reason << '\n';
        return 1;
    }
    tellWhatTheFileHolds(result.report);

    constexpr double infinity = std::numeric_limits<double>::infinity();
    cv::Point3_<double> low(infinity, infinity, infinity);
    cv::Point3_<double> high = -low;
    for (const pcl::PointXYZI& point : cloud) {
        if (std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z)) {
            const cv::Point3_<double> place =
                cv::Point3_<double>(point.x, point.y, point.z) + result.report.shift;
            low = {std::min(low.x, place.x), std::min(low.y, place.y), std::min(low.z, place.z)};
            high = {std::max(high.x, place.x), std::max(high.y, place.y),
                    std::max(high.z, place.z)};
        }
    }
    std::cout.precision(std::numeric_limits<double>::digits10);
    std::cout << "x " << low.x << " to " << high.x << "\ny " << low.y << " to " << high.y << "\nz "
              << low.z << " to " << high.z << '\n';
    return std::cout.flush() ? 0 : 1;
}
