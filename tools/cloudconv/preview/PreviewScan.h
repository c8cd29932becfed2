#pragma once

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// What there is to see of a scan.
struct PreviewScan {
    pcl::PointCloud<pcl::PointXYZI> cloud;
    /// Whether the file has intensities; the cloud's are 0 when not.
    bool hasIntensity = true;
    /// The file's colour of each point, 0xRRGGBB; empty when it has none.
    std::vector<std::uint32_t> colours;
    /// What was taken off the coordinates of the file.
    std::array<double, 3> shift = {0.0, 0.0, 0.0};
    /// What there is to say about the file, in words for a person.
    std::vector<std::string> notes;
};
