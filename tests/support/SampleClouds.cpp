#include "tests/support/SampleClouds.h"

#include <cstdint>
#include <random>

namespace {

/// In [0, 1), the same with every standard library.
float fraction(std::mt19937& random) {
    return static_cast<float>(random() >> 8) * 0x1p-24F;
}

float coordinate(std::mt19937& random) {
    return fraction(random) * 200.0F - 100.0F;
}

} // namespace

pcl::PointCloud<pcl::PointXYZI> sampleCloud(std::size_t size) {
    std::mt19937 random(1);
    pcl::PointCloud<pcl::PointXYZI> cloud;
    cloud.points.resize(size);
    cloud.width = static_cast<std::uint32_t>(size);
    cloud.height = 1;
    for (pcl::PointXYZI& point : cloud.points) {
        point.x = coordinate(random);
        point.y = coordinate(random);
        point.z = coordinate(random);
        point.intensity = fraction(random) * 255.0F;
    }
    return cloud;
}

std::vector<cv::Point3_<double>> samplePoints(std::size_t size) {
    const pcl::PointCloud<pcl::PointXYZI> cloud = sampleCloud(size);
    std::vector<cv::Point3_<double>> points;
    points.reserve(size);
    for (const pcl::PointXYZI& point : cloud.points) {
        points.emplace_back(point.x, point.y, point.z);
    }
    return points;
}
