// Scans with an allocation that fails, for each allocation that reading or writing them makes.
#include "converters/ScanWriter.h"
#include "tests/support/FailEachAllocation.h"
#include "tests/support/ScanFiles.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

const std::string richHeader =
    "element camera 1\nproperty list uchar float lens\nelement vertex 3\nproperty double x\n"
    "property double y\nproperty double z\nproperty uchar scalar_Intensity\n"
    "property list uchar int neighbours\nproperty float a_name_that_does_not_fit_into_a_string\n"
    "element face 1\nproperty list uchar int vertex_indices\ncomment made to fail\n"
    "obj_info num_cols 5\nobj_info num_rows 5\nend_header\n";

std::string richAscii() {
    return "ply\nformat ascii 1.0\n" + richHeader +
           "2 1 2\n4500001 2 3 4 0 0.5\n4500002 5 6 7 2 1 1 0.5\n4500003 8 9 1 0 0.5\n3 0 1 "
           "2\nend\n";
}

std::string richBinary() {
    std::string file = "ply\nformat binary_big_endian 1.0\n" + richHeader + std::string(1, '\0');
    for (int i = 0; i < 3; ++i) {
        file += std::string(8, '\x41') + std::string(17, '\0') + '\1' + "abcd" + "efgh";
    }
    return file + '\1' + "abcd";
}

converters::ScanOptions allOptions() {
    converters::ScanOptions options;
    options.intensity = "scalar_Intensity";
    options.automaticShift = true;
    options.progress = [](double) { return true; };
    return options;
}

template <std::string (*file)()>
struct PointsOf {
    std::string bytes = file();
    converters::ScanOptions options = allOptions();
    pcl::PointCloud<pcl::PointXYZI> cloud{7, 1};
    bool call() { return bool(converters::readScan(bytes.data(), bytes.size(), cloud, options)); }
    bool isComplete() const { return cloud.size() == 3; }
    bool isAfterFailure() const { return cloud.size() == 7; }
};

template <std::string (*file)()>
struct FieldsOf {
    std::string bytes = file();
    pcl::PCLPointCloud2 cloud;
    bool call() { return bool(converters::readScan(bytes.data(), bytes.size(), cloud)); }
    bool isComplete() const { return cloud.fields.size() == 5 && cloud.width == 3; }
    bool isAfterFailure() const { return cloud.fields.empty() && cloud.data.empty(); }
};

struct Refused {
    std::string bytes = asciiScan("1 2 3\n4 x 6\n", "2");
    pcl::PointCloud<pcl::PointXYZI> cloud{7, 1};
    bool call() {
        const auto result = converters::readScan(bytes.data(), bytes.size(), cloud);
        return result.reason == "line 9: 'x' is no number";
    }
    bool isComplete() const { return cloud.size() == 7; }
    bool isAfterFailure() const { return cloud.size() == 7; }
};

struct File {
    TemporaryDirectory directory;
    std::filesystem::path path = directory.path() / "scan.ply";
    pcl::PointCloud<pcl::PointXYZI> cloud{7, 1};
    File() { writeContent(path.string(), richAscii()); }
    bool call() { return bool(converters::readScan(path, cloud)); }
    bool isComplete() const { return cloud.size() == 3; }
    bool isAfterFailure() const { return cloud.size() == 7; }
};

struct Blocks {
    std::string bytes = richBinary();
    std::uint64_t points = 0;
    bool call() {
        converters::ScanReader reader(piecesOf(bytes, 10), allOptions());
        converters::ReadResult result = reader.open();
        std::vector<unsigned char> block(2 * reader.layout().recordSize);
        for (std::size_t count = 1; result && count != 0; points += count) {
            result = reader.read(block.data(), 2, count);
        }
        return bool(result);
    }
    bool isComplete() const { return points == 3; }
    bool isAfterFailure() const { return true; } // what has been read is with the caller
};

template <converters::ScanOutput output>
struct Written {
    std::string file;
    pcl::PointCloud<pcl::PointXYZI> cloud{7, 1};
    bool call() {
        converters::ScanWriteOptions options;
        options.comments = {"a comment that does not fit into the string object itself"};
        converters::ScanWriter writer(
            [this](const void* bytes, std::size_t size) {
                file.append(static_cast<const char*>(bytes), size);
                return true;
            },
            converters::layoutOfPointXYZI(), output, options);
        return writer.begin(7) && writer.write(cloud.data(), 7) && writer.finish();
    }
    bool isComplete() const { return !file.empty() && file.back() == '\n'; }
    bool isAfterFailure() const { return true; } // incomplete, as documented
};

TEST(FailedAllocation, OfReadScanKeepsTheCloud) {
    failEachAllocation<PointsOf<richAscii>>();
    failEachAllocation<PointsOf<richBinary>>();
    failEachAllocation<FieldsOf<richAscii>>();
    failEachAllocation<FieldsOf<richBinary>>();
}

TEST(FailedAllocation, OfReadScanThatRefuses) {
    failEachAllocation<Refused>();
}

TEST(FailedAllocation, OfReadScanFromAFile) {
    failEachAllocation<File>({true, false});
}

TEST(FailedAllocation, OfTheScanReader) {
    failEachAllocation<Blocks>();
}

TEST(FailedAllocation, OfTheScanWriter) {
    failEachAllocation<Written<converters::ScanOutput::plyAscii>>();
    failEachAllocation<Written<converters::ScanOutput::csv>>();
    failEachAllocation<Written<converters::ScanOutput::dxf>>({false, true});
}

} // namespace
