#pragma once

#include <pcl/point_types.h>

/// A point of a scan, all of its bytes set.
inline pcl::PointXYZI point(float x, float y, float z, float intensity) {
    pcl::PointXYZI result(x, y, z, 0.0F);
    // The constructor leaves the bytes after the intensity as they were in memory. They reach the
    // file when a cloud's size disagrees with its width and height.
    for (float& value : result.data_c) {
        value = 0.0F;
    }
    result.intensity = intensity;
    return result;
}
