#pragma once

#include "converters/Scan.h"

#include <cstddef>
#include <vector>

namespace converters::scan {

/// A number of each record on its way from the file's records into those of the result.
struct Column {
    /// Offset and type in the file's records.
    std::size_t from;
    ScalarType fromType;
    /// Offset and type in the result's: the same type, float32 or float64.
    std::size_t to;
    ScalarType toType;
    /// Taken off in double precision.
    double shift = 0;
    /// Whether it matters how much the number loses by becoming a float32.
    bool isCoordinate = false;
};

/// Records one behind the other.
struct RecordBytes {
    const unsigned char* data;
    std::size_t size;
};

/// Carries columns from records to records.
class ColumnCopier {
public:
    /// @param isSwapped  whether the file's byte order is not that of the processor
    ColumnCopier(std::vector<Column> columns, bool isSwapped);

    /// @param from    `count` of the file's records
    /// @param to      the result's
    /// @param toSize  bytes from one to the next
    void copy(RecordBytes from, unsigned char* to, std::size_t toSize, std::size_t count);

    /// The most that a coordinate has lost by becoming a float32; infinite when one was beyond its
    /// range.
    double largestLoss() const { return m_largestLoss; }

private:
    std::vector<Column> m_columns;
    bool m_isSwapped;
    double m_largestLoss = 0;
};

/// The number of type `type` at `bytes`, in the byte order of the processor.
double numberAt(const unsigned char* bytes, ScalarType type);

} // namespace converters::scan
