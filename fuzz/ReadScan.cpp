// readScan of any bytes, and ScanReader on the same bytes in pieces: both have to agree. Records
// and points have to agree, too.
#include "converters/Scan.h"
#include "converters/ScanReader.h"
#include "fuzz/support/Verify.h"
#include "tests/support/Pieces.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

namespace {

using converters::ReadResult;
using converters::ScanReader;
using converters::ScanResult;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

struct Input {
    const std::uint8_t* bytes;
    std::size_t size;
};

/// Pieces and blocks of sizes that the input chooses.
std::size_t sizeFrom(const Input& input, std::size_t most) {
    std::size_t sum = 1;
    for (std::size_t i = 0; i < std::min<std::size_t>(input.size, 200); ++i) {
        sum += input.bytes[i];
    }
    return 1 + sum % most;
}

std::string_view textOf(const Input& input) {
    return {reinterpret_cast<const char*>(input.bytes), input.size};
}

void verifySame(const pcl::PointXYZI& a, const pcl::PointXYZI& b) {
    FUZZ_VERIFY(std::memcmp(a.data, b.data, 12) == 0);
    FUZZ_VERIFY(std::memcmp(&a.intensity, &b.intensity, 4) == 0);
}

void verifyBlocks(const Input& input, const converters::ScanOptions& options,
                  const ScanResult& whole, const Cloud& cloud) {
    // Blocks may have more points than a cloud can number.
    if (whole.report.points > std::numeric_limits<std::uint32_t>::max()) {
        FUZZ_VERIFY(!whole);
        return;
    }
    ScanReader reader(piecesOf(textOf(input), sizeFrom(input, 5000)), options);
    std::vector<pcl::PointXYZI> block(sizeFrom(input, 97));
    ReadResult result = reader.open();
    std::size_t done = 0;
    for (std::size_t count = 1; result && count != 0; done += count) {
        result = reader.read(block.data(), block.size(), count);
        for (std::size_t i = 0; whole && i < count; ++i) {
            FUZZ_VERIFY(done + i < cloud.size());
            verifySame(block[i], cloud[done + i]);
        }
    }
    FUZZ_VERIFY(result.success == whole.success);
    FUZZ_VERIFY(result.reason == whole.reason);
    FUZZ_VERIFY(result.line == whole.line);
    FUZZ_VERIFY(!whole || done == cloud.size());
    FUZZ_VERIFY(reader.report().notes == whole.report.notes);
    FUZZ_VERIFY(reader.report().bytesBehind == whole.report.bytesBehind);
    // Where the file is broken, some points before may have been looked at by the one alone.
    FUZZ_VERIFY(!whole || reader.report().pointsWithoutPlace == whole.report.pointsWithoutPlace);
}

void verifyRecords(const Input& input, const converters::ScanOptions& options,
                   const ScanResult& whole) {
    pcl::PCLPointCloud2 fields;
    const ScanResult result = converters::readScan(input.bytes, input.size, fields, options);
    FUZZ_VERIFY(result.success == whole.success);
    FUZZ_VERIFY(result.reason == whole.reason);
    if (!whole) {
        FUZZ_VERIFY(fields.data.empty() && fields.fields.empty());
        return;
    }
    FUZZ_VERIFY(std::uint64_t{fields.width} * fields.height == whole.report.points);
    FUZZ_VERIFY(fields.data.size() == whole.report.points * fields.point_step);

    ScanReader reader(piecesOf(textOf(input), sizeFrom(input, 3000)), options);
    FUZZ_VERIFY(reader.open());
    FUZZ_VERIFY(reader.layout().fields.size() == fields.fields.size());
    const std::size_t size = reader.layout().recordSize;
    const std::size_t most = sizeFrom(input, 50);
    std::vector<std::uint8_t> block(most * size);
    std::size_t done = 0;
    for (std::size_t count = 1; count != 0; done += count * size) {
        FUZZ_VERIFY(reader.read(block.data(), most, count));
        // Whole numbers of eight bytes are floating ones in a cloud.
        const bool isSame = std::all_of(
            reader.layout().fields.begin(), reader.layout().fields.end(),
            [](const converters::ScanField& f) { return f.type < converters::ScalarType::int64; });
        FUZZ_VERIFY(done + count * size <= fields.data.size());
        FUZZ_VERIFY(!isSame || count == 0 ||
                    std::memcmp(block.data(), fields.data.data() + done, count * size) == 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const Input input{bytes, size};
    converters::ScanOptions options;
    options.automaticShift = size % 2 == 1;
    Cloud cloud(7, 1);
    const ScanResult whole = converters::readScan(bytes, size, cloud, options);
    FUZZ_VERIFY(whole.success == whole.reason.empty());
    FUZZ_VERIFY(whole ? cloud.size() == whole.report.points : cloud.size() == 7);
    // What the file can hold: three bytes a point at least.
    FUZZ_VERIFY(!whole || cloud.size() <= size);
    verifyBlocks(input, options, whole, cloud);
    verifyRecords(input, options, whole);
    return 0;
}
