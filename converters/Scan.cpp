#include "converters/Scan.h"

#include "base/LargePages.h"
#include "converters/detail/input/FileSource.h"
#include "converters/detail/scan/Decoder.h"
#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace converters {
namespace {

using input::ByteWindow;
using scan::Decoder;
using scan::refuse;
using scan::Target;

/// The file cannot hold the points that it declares. Reads what there is, so that the reason is
/// what is wrong where the points end.
[[noreturn]] void readInVain(Decoder& decoder) {
    constexpr std::size_t points = 64;
    std::vector<unsigned char> block(points * decoder.layout().recordSize);
    while (decoder.read(block.data(), points) != 0) {
    }
    refuse("the file has changed while it was read");
}

/// Reads all points into empty `elements`, `perPoint` of them a point. Where nobody knows what the
/// file can hold, room is made as points arrive.
template <typename Elements>
void readAll(Decoder& decoder, Elements& elements, std::size_t perPoint) {
    const std::uint64_t points = decoder.report().points;
    const std::optional<std::uint64_t> possible = decoder.mostPoints();
    if (possible && points > *possible) {
        readInVain(decoder);
    }
    constexpr std::size_t elementSize = sizeof(typename Elements::value_type);
    constexpr std::size_t blockBytes = 16384;
    const std::size_t block =
        std::max<std::size_t>(blockBytes / (elementSize * perPoint), 1) * perPoint;
    const auto wanted = static_cast<std::size_t>(points * perPoint);
    if (possible) {
        elements.reserve(wanted);
        base::askForLargePages(elements.data(), wanted * elementSize);
    }
    std::size_t count = 0;
    do {
        const std::size_t begin = elements.size();
        const std::size_t end = begin + std::min(wanted - begin, block);
        if (end > elements.capacity()) {
            elements.reserve(std::min(wanted, std::max(end, elements.capacity() * 2)));
        }
        elements.resize(end);
        count = decoder.read(reinterpret_cast<unsigned char*>(elements.data() + begin),
                             std::max<std::size_t>((end - begin) / perPoint, 1));
    } while (count != 0);
}

void refuseTooManyPoints(const ScanReport& report) {
    if (report.points > std::numeric_limits<std::uint32_t>::max()) {
        refuse("the file declares " + scan::grouped(report.points) +
               " vertices, more than a cloud can number");
    }
}

void read(Decoder& decoder, pcl::PointCloud<pcl::PointXYZI>& cloud) {
    decoder.open();
    refuseTooManyPoints(decoder.report());
    decoder.chooseTarget(Target::points);
    decltype(cloud.points) points;
    readAll(decoder, points, 1);

    const ScanReport& report = decoder.report();
    cloud.header = {};
    cloud.points.swap(points);
    cloud.width = static_cast<std::uint32_t>(report.width);
    cloud.height = static_cast<std::uint32_t>(report.height);
    cloud.is_dense = report.pointsWithoutPlace == 0;
}

std::vector<pcl::PCLPointField> fieldsOf(const ScanLayout& layout) {
    std::vector<pcl::PCLPointField> fields(layout.fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i].name = layout.fields[i].name;
        fields[i].offset = static_cast<std::uint32_t>(layout.fields[i].offset);
        fields[i].datatype = static_cast<std::uint8_t>(layout.fields[i].type);
        fields[i].count = 1;
    }
    return fields;
}

void read(Decoder& decoder, pcl::PCLPointCloud2& cloud) {
    decoder.open();
    refuseTooManyPoints(decoder.report());
    decoder.chooseTarget(Target::fields);
    const std::size_t size = decoder.layout().recordSize;
    pcl::PCLPointCloud2 result;
    result.fields = fieldsOf(decoder.layout());
    readAll(decoder, result.data, std::max<std::size_t>(size, 1));

    const ScanReport& report = decoder.report();
    result.width = static_cast<std::uint32_t>(report.width);
    result.height = static_cast<std::uint32_t>(report.height);
    result.point_step = static_cast<std::uint32_t>(size);
    result.row_step = static_cast<std::uint32_t>(size * report.width);
    result.is_bigendian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
    result.is_dense = report.pointsWithoutPlace == 0;
    cloud = std::move(result);
}

template <typename OpenWindow, typename Cloud>
ScanResult readFrom(OpenWindow openWindow, Cloud& cloud, const ScanOptions& options) {
    ScanResult result;
    std::optional<Decoder> decoder;
    try {
        decoder.emplace(openWindow(), options);
        read(*decoder, cloud);
        result.success = true;
    } catch (const scan::Fault& fault) {
        static_cast<ReadResult&>(result) = fault.result;
    }
    if (decoder) {
        result.report = decoder->takeReport();
    }
    return result;
}

} // namespace

ScanResult readScan(const void* bytes, std::size_t size, pcl::PointCloud<pcl::PointXYZI>& cloud,
                    const ScanOptions& options) {
    return readFrom([=] { return ByteWindow(bytes, size); }, cloud, options);
}

ScanResult readScan(const void* bytes, std::size_t size, pcl::PCLPointCloud2& cloud,
                    const ScanOptions& options) {
    return readFrom([=] { return ByteWindow(bytes, size); }, cloud, options);
}

ScanResult readScan(const std::filesystem::path& file, pcl::PointCloud<pcl::PointXYZI>& cloud,
                    const ScanOptions& options) {
    return readFrom([&] { return input::openFile(file, scan::refuse); }, cloud, options);
}

ScanResult readScan(const std::filesystem::path& file, pcl::PCLPointCloud2& cloud,
                    const ScanOptions& options) {
    return readFrom([&] { return input::openFile(file, scan::refuse); }, cloud, options);
}

} // namespace converters
