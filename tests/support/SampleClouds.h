#pragma once

#include <opencv2/core/types.hpp>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstddef>
#include <vector>

/// A row of random points as a scanner of rooms gives them: coordinates within 100 m, intensities
/// within 255, all digits used. The same size gives the same cloud everywhere.
pcl::PointCloud<pcl::PointXYZI> sampleCloud(std::size_t size);

/// The coordinates of sampleCloud(size).
std::vector<cv::Point3_<double>> samplePoints(std::size_t size);
