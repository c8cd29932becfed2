#pragma once

#include "converters/Export.h"

#include <pcl/point_cloud.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

/// Records of a PLY body as typed points.
namespace converters::detail {

/// Points decoded at a time: 8 KiB of pcl::PointXYZI.
constexpr std::size_t pointsPerBlock = 256;

/// Copies the mapped bytes of records into points; what is not mapped stays as it is.
///
/// @param records     records without gaps, one for each point
/// @param recordSize  in bytes
/// @param mapping     as pcl::createMapping makes it, inside the record and inside the point
template <typename PointT>
void applyMapping(const unsigned char* records, std::size_t recordSize,
                  const pcl::MsgFieldMap& mapping, PointT* first, PointT* last) {
    const auto copyAll = [=](auto copyRecord) {
        const unsigned char* record = records;
        for (PointT* point = first; point != last; ++point, record += recordSize) {
            copyRecord(record, reinterpret_cast<unsigned char*>(point));
        }
    };
    // The usual mapping, x, y, z in one piece and a fourth value, in copies of constant size.
    if (mapping.size() == 2 && mapping[0].size == 12 && mapping[1].size == 4) {
        const pcl::detail::FieldMapping a = mapping[0];
        const pcl::detail::FieldMapping b = mapping[1];
        copyAll([=](const unsigned char* record, unsigned char* point) {
            std::memcpy(point + a.struct_offset, record + a.serialized_offset, 12);
            std::memcpy(point + b.struct_offset, record + b.serialized_offset, 4);
        });
    } else {
        copyAll([&](const unsigned char* record, unsigned char* point) {
            for (const pcl::detail::FieldMapping& part : mapping) {
                std::memcpy(point + part.struct_offset, record + part.serialized_offset, part.size);
            }
        });
    }
}

/// Asks the kernel for large pages for memory that has not been touched yet, if it is large: the
/// first touch of small ones takes longer than making the points. All is the same without.
CONVERTERS_EXPORT void askForLargePages(void* memory, std::size_t size);

/// Makes points of records.
///
/// The points grow by blocks that stay in the fastest cache, where each is constructed and then
/// written: memory is passed over once.
///
/// @param count        number of points
/// @param nextRecords  called with the size of each block; gives its records
template <typename PointT, typename NextRecords>
auto makePoints(std::size_t count, std::size_t recordSize, const pcl::MsgFieldMap& mapping,
                NextRecords nextRecords) {
    typename pcl::PointCloud<PointT>::VectorType points;
    points.reserve(count);
    askForLargePages(points.data(), count * sizeof(PointT));
    while (points.size() < count) {
        const std::size_t first = points.size();
        const std::size_t size = std::min(pointsPerBlock, count - first);
        points.resize(first + size);
        applyMapping(nextRecords(size), recordSize, mapping, points.data() + first,
                     points.data() + first + size);
    }
    return points;
}

} // namespace converters::detail
