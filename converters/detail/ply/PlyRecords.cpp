// Column by column over a block of points that stays in the cache, rather than point by point: the
// copy of one column is a loop of constant size, which a compiler makes a move or two. Columns that
// are neighbours in the point and in the record are copied as one: of a usual cloud, x, y and z.

#include "converters/detail/ply/PlyRecords.h"

#include "converters/detail/ply/OutputMemory.h"

#include <algorithm>
#include <cstring>

namespace converters::detail {
namespace {

/// Bytes that go from each point to its record as they are.
struct ByteRange {
    /// First byte in the point, and in the record.
    std::size_t inPoint;
    std::size_t inRecord;
    std::size_t size;
};

std::vector<ByteRange> rangesOf(const std::vector<PlyColumn>& columns) {
    std::vector<ByteRange> ranges;
    std::size_t inRecord = 0;
    for (const PlyColumn& column : columns) {
        if (column.isKnown() && column.elements > 0) {
            ranges.push_back({column.position(column.elements - 1), inRecord, column.elementSize});
        }
        inRecord += column.elementSize;
    }
    return ranges;
}

/// The same ranges, neighbours joined.
std::vector<ByteRange> joined(const std::vector<ByteRange>& ranges) {
    std::vector<ByteRange> result;
    for (const ByteRange& range : ranges) {
        if (!result.empty() && result.back().inPoint + result.back().size == range.inPoint &&
            result.back().inRecord + result.back().size == range.inRecord) {
            result.back().size += range.size;
        } else {
            result.push_back(range);
        }
    }
    return result;
}

/// A number of consecutive points and the records they go to.
struct Records {
    std::size_t first;
    std::size_t last;
    unsigned char* records;
    std::size_t recordSize;
};

/// Copies a range of each point. A size known at compile time, if not 0, makes each copy
/// a move or two.
template <std::size_t fixedSize>
void copyRange(const ByteRange& range, const PointBytes& points, const Records& to) {
    const std::size_t size = fixedSize != 0 ? fixedSize : range.size;
    const std::size_t inside = points.countWithElement(range.inPoint, size);
    unsigned char* record = to.records + range.inRecord;
    std::size_t i = to.first;
    for (const std::size_t last = std::min(to.last, inside); i < last; ++i) {
        std::memcpy(record, points.data + i * points.stride + range.inPoint, size);
        record += to.recordSize;
    }
    for (; i < to.last; ++i) {
        std::memset(record, 0, size);
        record += to.recordSize;
    }
}

void copyRange(const ByteRange& range, const PointBytes& points, const Records& to) {
    switch (range.size) {
    case 1:
        return copyRange<1>(range, points, to);
    case 2:
        return copyRange<2>(range, points, to);
    case 4:
        return copyRange<4>(range, points, to);
    case 8:
        return copyRange<8>(range, points, to);
    case 12:
        return copyRange<12>(range, points, to);
    case 16:
        return copyRange<16>(range, points, to);
    default:
        return copyRange<0>(range, points, to);
    }
}

} // namespace

std::size_t recordSize(const std::vector<PlyColumn>& columns) {
    std::size_t size = 0;
    for (const PlyColumn& column : columns) {
        size += column.elementSize;
    }
    return size;
}

void appendRecords(const std::vector<PlyColumn>& columns, const PointBytes& points,
                   std::vector<unsigned char>& out) {
    const std::vector<ByteRange> ranges = rangesOf(columns);
    const std::vector<ByteRange> joinedRanges = joined(ranges);
    // Where every range of a point is inside the bytes, joining changes nothing.
    std::size_t complete = points.count;
    for (const ByteRange& range : ranges) {
        complete = std::min(complete, points.countWithElement(range.inPoint, range.size));
    }

    // In blocks that stay in the cache: the output is written once, and not filled before.
    constexpr std::size_t pointsPerBlock = 256;
    const std::size_t size = recordSize(columns);
    std::vector<unsigned char> records(size * std::min(pointsPerBlock, points.count));
    reserveOutput(out, out.size() + size * points.count);
    for (std::size_t first = 0; first < points.count; first += pointsPerBlock) {
        const std::size_t last = std::min(first + pointsPerBlock, points.count);
        for (const ByteRange& range : last <= complete ? joinedRanges : ranges) {
            copyRange(range, points, {first, last, records.data(), size});
        }
        out.insert(out.end(), records.data(), records.data() + (last - first) * size);
    }
}

} // namespace converters::detail
