#pragma once

#include "tests/support/XyziPoint.h"

#include <pcl/PCLPointCloud2.h>

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

inline std::string textOf(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}
