#pragma once

#include "converters/Export.h"
#include "converters/Scan.h"

#include <cstddef>
#include <string>
#include <vector>

namespace converters {

/// A number in each record of a block of points.
struct ScanField {
    /// As in the file.
    std::string name;
    /// Of the number.
    ScalarType type;
    /// Of its first byte from that of the record; need not be aligned.
    std::size_t offset;
};

/// How the records of a block of points lie in memory: one behind the other, the numbers in the
/// byte order of the processor.
struct ScanLayout {
    /// The numbers of a record.
    std::vector<ScanField> fields;
    /// Bytes from one record to the next.
    std::size_t recordSize = 0;
};

/// x, y, z and intensity as they lie in a pcl::PointXYZI.
CONVERTERS_EXPORT ScanLayout layoutOfPointXYZI();

/// The fields of a cloud, but those of several numbers (a count other than 1) and of unknown types.
CONVERTERS_EXPORT ScanLayout layoutOf(const pcl::PCLPointCloud2& cloud);

} // namespace converters
