#pragma once

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Points that a page of a scan shows where nobody says otherwise.
constexpr std::size_t mostPointsOfScanPage = 5'000'000;

/// What a page of a scan shows.
struct ScanPage {
    /// Of the page, printable UTF-8: the file's name.
    std::string title;
    /// What is shown. Points without a place (nan) are left out. Has to outlive this.
    const pcl::PointCloud<pcl::PointXYZI>& cloud;
    /// Whether the intensities of the cloud are the file's.
    bool hasIntensity = true;
    /// The file's colour of each point, 0xRRGGBB; empty when it has none.
    std::vector<std::uint32_t> colours = {};
    /// What was taken off the coordinates of the file: the page tells theirs.
    std::array<double, 3> shift = {0.0, 0.0, 0.0};
    /// What else there is to say, UTF-8.
    std::vector<std::string> notes = {};
    /// Of more points than this, so many are shown, evenly picked; at least 1.
    std::size_t mostPoints = mostPointsOfScanPage;
};

/// Makes the page of a scan: its points in space, to be turned.
///
/// @return the bytes of an HTML file that holds all it needs
/// @throws std::bad_alloc
std::vector<unsigned char> scanPage(const ScanPage& page);
