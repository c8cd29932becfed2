#pragma once

#include <pcl/PCLPointCloud2.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// Small clouds and fields for tests.

inline pcl::PCLPointField field(const std::string& name, std::uint32_t offset,
                                std::uint8_t datatype, std::uint32_t count = 1) {
    pcl::PCLPointField result;
    result.name = name;
    result.offset = offset;
    result.datatype = datatype;
    result.count = count;
    return result;
}

inline pcl::PCLPointCloud2 rawCloud(std::uint32_t width, std::uint32_t height,
                                    const std::vector<pcl::PCLPointField>& fields,
                                    const std::vector<unsigned char>& data = {}) {
    pcl::PCLPointCloud2 result;
    result.width = width;
    result.height = height;
    result.fields = fields;
    result.data = data;
    return result;
}

/// The bytes of values, one after the other.
template <typename... Values>
std::vector<unsigned char> bytesOf(Values... values) {
    std::vector<unsigned char> result;
    const auto append = [&result](auto value) {
        unsigned char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        result.insert(result.end(), bytes, bytes + sizeof value);
    };
    (append(values), ...);
    return result;
}

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

inline std::string textOf(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}
