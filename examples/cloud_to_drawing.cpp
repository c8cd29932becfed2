// cloud_to_drawing IN.ply OUT.dxf: reads a PLY file and writes its points as a DXF drawing,
// without the missing ones.

#include "converters/Converters.h"

#include <cmath>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

pcl::PointCloud<pcl::PointXYZI> readCloud(const std::string& path) {
    std::vector<unsigned char> file;
    if (!converters::from_file(path, file)) {
        throw std::runtime_error("cannot read " + path);
    }
    pcl::PointCloud<pcl::PointXYZI> cloud;
    if (!converters::fromPly(file, cloud).success) {
        // Why is in the log: run with VOLMAR_ENABLE_LOG=1.
        throw std::runtime_error(path + " is refused");
    }
    return cloud;
}

/// The points that are there: few programs take nan in a drawing.
std::vector<cv::Point3_<double>> presentPoints(const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    std::vector<cv::Point3_<double>> points;
    for (const pcl::PointXYZI& point : cloud) {
        if (std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z)) {
            points.emplace_back(point.x, point.y, point.z);
        }
    }
    return points;
}

void writeFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (file.fail()) {
        throw std::runtime_error("cannot write " + path);
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::cerr << "usage: cloud_to_drawing IN.ply OUT.dxf\n";
        return 2;
    }
    // Besides lack of memory, fromPly throws for a width or height that is no number, and toDxf
    // when its temporary directory cannot be made.
    try {
        const std::vector<cv::Point3_<double>> points = presentPoints(readCloud(argv[1]));
        std::vector<unsigned char> drawing;
        if (!converters::toDxf(points, drawing)) {
            throw std::runtime_error("cannot make the drawing");
        }
        writeFile(argv[2], drawing);
        std::cout << argv[2] << ": " << points.size() << " points\n";
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "cloud_to_drawing: " << error.what() << '\n';
        return 1;
    }
}
