#pragma once

#include <benchmark/benchmark.h>
#include <opencv2/core/types.hpp>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstddef>
#include <string>
#include <vector>

/// What the conversions are measured on. Each input is made once, on first need, and kept, so that
/// a conversion and its peers work on the same bytes.

const pcl::PointCloud<pcl::PointXYZI>& cloudOf(std::size_t size);
const std::vector<cv::Point3_<double>>& pointsOf(std::size_t size);
const std::vector<unsigned char>& binaryPlyOf(std::size_t size);
const std::vector<unsigned char>& asciiPlyOf(std::size_t size);
/// A drawing of `size` POINTs.
const std::vector<char>& pointDrawingOf(std::size_t size);
/// A drawing of `size` LINEs of 11 points, as in lineDrawing().
const std::vector<char>& lineDrawingOf(std::size_t size);

/// The path of a file in memory. The caller removes it.
std::string memoryFile(const std::string& name);
void writeFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// Numbers of points.
void allSizes(benchmark::internal::Benchmark* benchmark);
