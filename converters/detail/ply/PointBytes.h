#pragma once

#include <pcl/PCLPointCloud2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace converters::detail {

/// The bytes of a cloud's points, seen as `count` records of `stride` bytes. Owns nothing.
///
/// The stride follows from the number of bytes and of points, not from the cloud's point_step: a
/// cloud whose width and height do not agree with its bytes is cut into equal records all the same.
struct PointBytes {
    /// @param width, height  their product, modulo 2^32 and read as a signed number, is the number
    ///                       of points; there are none when it is not positive
    PointBytes(std::uint32_t width, std::uint32_t height, const unsigned char* bytes,
               std::size_t byteCount)
        : data(bytes), size(byteCount), count(pointCount(width, height)),
          stride(count == 0 ? 0 : size / count) {}

    explicit PointBytes(const pcl::PCLPointCloud2& cloud)
        : PointBytes(cloud.width, cloud.height, cloud.data.data(), cloud.data.size()) {}

    /// @param point        index of the point, below `count`
    /// @param position     first byte of the wanted element, counted from the point's first byte
    /// @param elementSize  size of the element in bytes
    /// @return the element, or null when it does not lie wholly inside the bytes
    const unsigned char* element(std::size_t point, std::size_t position,
                                 std::size_t elementSize) const {
        const std::size_t begin = point * stride + position;
        return size >= elementSize && begin <= size - elementSize ? data + begin : nullptr;
    }

    /// How many points have the element at this position inside the bytes: the first ones.
    std::size_t countWithElement(std::size_t position, std::size_t elementSize) const {
        if (size < elementSize || position > size - elementSize) {
            return 0;
        }
        const std::size_t room = size - elementSize - position;
        return stride == 0 ? count : std::min(count, room / stride + 1);
    }

    const unsigned char* data;
    std::size_t size;
    std::size_t count;
    std::size_t stride;

private:
    static std::size_t pointCount(std::uint32_t width, std::uint32_t height) {
        const std::uint32_t product = height * width;
        return product > INT32_MAX ? 0 : product;
    }
};

} // namespace converters::detail
