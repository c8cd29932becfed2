// Scans in blocks, from any source.
#include "converters/ScanReader.h"

#include "tests/support/ScanFiles.h"
#include "tests/support/TemporaryDirectory.h"

#include <stdexcept>

namespace {

using converters::ReadResult;
using converters::ScanReader;

const std::string fivePoints = asciiScan("1 2 3\n4 5 6\n7 8 9\n1 1 1\n2 2 2\n", "5");

TEST(ScanReader, GivesBlocksOfTheSizeAskedForAndThenNone) {
    ScanReader reader(fivePoints.data(), fivePoints.size());
    ASSERT_TRUE(reader.open());
    EXPECT_EQ(reader.report().points, 5u);
    std::vector<pcl::PointXYZI> points(2);
    std::size_t count = 0;
    for (const std::size_t expected : {2, 2, 1, 0, 0}) {
        ASSERT_TRUE(reader.read(points.data(), 2, count));
        EXPECT_EQ(count, expected);
    }
}

TEST(ScanReader, LeavesWhatAPointHasBesidesAsItIs) {
    pcl::PointXYZI point;
    point.intensity = 7;
    point.data[3] = 5;
    std::size_t count = 0;
    ScanReader reader(fivePoints.data(), fivePoints.size());
    ASSERT_TRUE(reader.open());
    ASSERT_TRUE(reader.read(&point, 1, count));
    EXPECT_EQ(point.data[3], 5);
    EXPECT_EQ(point.intensity, 0);
}

TEST(ScanReader, SaysWhereRecordsLie) {
    const std::string file = "ply\nformat ascii 1.0\nelement vertex 1\nproperty uchar red\n"
                             "property double x\nproperty list uchar int l\nproperty float y\n"
                             "property short z\nend_header\n200 1 0 2 3\n";
    ScanReader reader(file.data(), file.size());
    EXPECT_TRUE(reader.layout().fields.empty());
    ASSERT_TRUE(reader.open());
    const converters::ScanLayout& layout = reader.layout();
    EXPECT_EQ(layout.recordSize, 15u);
    ASSERT_EQ(layout.fields.size(), 4u);
    EXPECT_EQ(layout.fields[0].offset, 0u);
    EXPECT_EQ(layout.fields[1].offset, 1u);
    EXPECT_EQ(layout.fields[2].offset, 9u);
    EXPECT_EQ(layout.fields[3].offset, 13u);
    EXPECT_EQ(layout.fields[3].name, "z");
    EXPECT_EQ(layout.fields[3].type, converters::ScalarType::int16);
}

TEST(ScanReader, FindsFaultsBehindTheLastPoint) {
    const std::string file =
        asciiScan("1 2 3\n3 0 0\n", "1", "element face 1\nproperty list uchar int vertex_index\n");
    ScanReader reader(file.data(), file.size());
    ASSERT_TRUE(reader.open());
    pcl::PointXYZI point;
    std::size_t count = 0;
    ASSERT_TRUE(reader.read(&point, 1, count));
    EXPECT_EQ(count, 1u);
    for (int i = 0; i < 2; ++i) {
        const ReadResult result = reader.read(&point, 1, count);
        EXPECT_EQ(result.reason, "the file ends after 0 of 1 records of element 'face'");
        EXPECT_EQ(count, 0u);
    }
}

TEST(ScanReader, ASourceMayThrow) {
    int calls = 0;
    ScanReader reader([&](void* bytes, std::size_t) -> std::size_t {
        if (++calls > 40) {
            throw std::runtime_error("unplugged");
        }
        *static_cast<char*>(bytes) = fivePoints[static_cast<std::size_t>(calls - 1)];
        return 1;
    });
    EXPECT_THROW(reader.open(), std::runtime_error);
    EXPECT_EQ(reader.open().reason, "reading was interrupted");
}

TEST(ScanReader, ReadsAFile) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("scan.ply");
    writeContent(path, fivePoints);
    expectSameScan(readWhole(fivePoints), readBlocks(ScanReader(std::filesystem::path(path)), 2));
    EXPECT_EQ(ScanReader(directory.path() / "none").open().reason,
              "the file cannot be opened: No such file or directory");
}

/// A file that is made as it is read: a header, `points` points and their faces.
class EndlessFile {
public:
    explicit EndlessFile(std::uint64_t points)
        : m_header("ply\nformat binary_little_endian 1.0\nelement strip 1\n"
                   "property list uint uchar indices\nelement vertex " +
                   std::to_string(points) +
                   "\nproperty float x\nproperty float y\nproperty float z\n"
                   "property uchar intensity\nend_header\n") {
        appendBytes(m_header, std::uint32_t{3'000'000});
        m_size = m_header.size() + 3'000'000 + points * 13;
    }

    std::size_t read(void* bytes, std::size_t room) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(room, m_size - m_given));
        for (std::size_t i = 0; i < count; ++i, ++m_given) {
            static_cast<char*>(bytes)[i] = m_given < m_header.size() ? m_header[m_given] : '\0';
        }
        m_largest = std::max(m_largest, room);
        return count;
    }

    std::size_t largestRequest() const { return m_largest; }

private:
    std::string m_header;
    std::uint64_t m_size = 0;
    std::uint64_t m_given = 0;
    std::size_t m_largest = 0;
};

TEST(ScanReader, KeepsNoMoreThanAWindowOfTheFile) {
    EndlessFile file(3'000'000);
    ScanReader reader([&](void* bytes, std::size_t room) { return file.read(bytes, room); });
    ASSERT_TRUE(reader.open());
    std::vector<pcl::PointXYZI> block(4096);
    std::uint64_t points = 0;
    std::size_t count = 0;
    do {
        ASSERT_TRUE(reader.read(block.data(), block.size(), count));
        points += count;
    } while (count != 0);
    EXPECT_EQ(points, 3'000'000u);
    EXPECT_LE(file.largestRequest(), std::size_t{1} << 20);
}

TEST(ScanReader, ManyPropertiesAreOneWideRecord) {
    std::string file = "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\n"
                       "property float y\nproperty float z\n";
    for (int i = 0; i < 100000; ++i) {
        file += "property double p" + std::to_string(i) + "\n";
    }
    file += "end_header\n" + std::string(3 * 800012, '\0');
    const ReadScan scan = readWhole(file);
    ASSERT_TRUE(scan.result) << scan.result.reason;
    expectSameScan(scan, readBlocks(ScanReader(piecesOf(file, 65536)), 2));
}

} // namespace
