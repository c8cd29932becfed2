// What callers may ask for, and what they are told.
#include "tests/support/ScanFiles.h"
#include "tests/support/TemporaryDirectory.h"

#include <sys/stat.h>

#include <cmath>
#include <thread>

namespace {

using converters::ScanOptions;
using converters::ScanPropertyUse;
using converters::ScanReport;

/// A text of double coordinates.
std::string doubleScan(const std::string& body, const std::string& count,
                       const std::string& type = "double") {
    return "ply\nformat ascii 1.0\nelement vertex " + count + "\nproperty " + type +
           " x\nproperty " + type + " y\nproperty " + type + " z\nend_header\n" + body;
}

TEST(ScanOptions, IntensityFromAnyScalarProperty) {
    const std::string file =
        asciiScan("1 2 3 4 50 1 6\n", "1",
                  "property float intensity\nproperty uchar red\nproperty list uchar int l\n");
    ScanOptions options;
    options.intensity = "red";
    const ReadScan scan = expectPoints(file, {{1, 2, 3, 50}}, options);
    EXPECT_EQ(scan.result.report.elements[0].properties[3].use, ScanPropertyUse::dropped);
    EXPECT_EQ(scan.result.report.elements[0].properties[4].use, ScanPropertyUse::intensity);
    options.intensity = "z";
    expectPoints(file, {{1, 2, 3, 3}}, options);
    options.intensity = "l";
    expectRefused(file, "property 'l', wanted as intensity, is a list", options);
    options.intensity = "Red";
    expectRefused(file,
                  "the vertices have no property 'Red', wanted as intensity; they have 'x', 'y', "
                  "'z', 'intensity', 'red', 'l'",
                  options);
    // An empty scan among many that have the property.
    options.intensity = "time";
    expectPoints(asciiScan("", "0"), {}, options);
}

TEST(ScanOptions, AShiftIsTakenOffBeforeCoordinatesBecomeFloats) {
    ScanOptions options;
    options.shift = cv::Point3_<double>(4500000, 5400000.5, -100);
    const ReadScan scan = expectPoints(doubleScan("4500000.125 5400000.75 3\n", "1"),
                                       {{0.125F, 0.25F, 103, 0}}, options);
    EXPECT_EQ(scan.result.report.shift, *options.shift);
    EXPECT_LT(scan.result.report.largestLoss, 1e-6);
    expectPoints(asciiScan("5 6 7\n", "1"), {{-4499995, -5399994.5F, 107, 0}}, options);
    expectPoints(doubleScan("4500001 5400001 3\n", "1", "int"), {{1, 0.5F, 103, 0}}, options);
}

TEST(ScanOptions, AShiftHasToBeFinite) {
    ScanOptions options;
    options.shift = cv::Point3_<double>(0, NAN, 0);
    expectRefused(asciiScan("1 2 3\n", "1"), "the shift is not finite", options);
}

TEST(ScanOptions, AnAutomaticShiftIsInWholeHundreds) {
    ScanOptions options;
    options.automaticShift = true;
    const ReadScan scan = readEveryWay(doubleScan("4512345.25 -5412360.5 100\nnan 1 1\n"
                                                  "4512349.25 -5412349.5 2047\n",
                                                  "3"),
                                       options);
    ASSERT_TRUE(scan.result) << scan.result.reason;
    EXPECT_EQ(numbersOf(scan.cloud[0]), (std::vector<float>{45.25F, -60.5F, 100, 0}));
    EXPECT_EQ(scan.result.report.shift, cv::Point3_<double>(4512300, -5412300, 0));
}

TEST(ScanOptions, NoAutomaticShiftWhereFloatsWillDo) {
    ScanOptions options;
    options.automaticShift = true;
    const auto shiftOf = [&](const std::string& file) {
        const ReadScan scan = readEveryWay(file, options);
        EXPECT_TRUE(scan.result) << scan.result.reason;
        return scan.result.report.shift;
    };
    const cv::Point3_<double> none(0, 0, 0);
    EXPECT_EQ(shiftOf(doubleScan("2047.9 -2047.9 0\n", "1")), none);
    EXPECT_EQ(shiftOf(asciiScan("5000000 -5000000 0\n", "1")), none);
    EXPECT_EQ(shiftOf(doubleScan("5000000 -5000000 0\n", "1", "int")), none);
    EXPECT_EQ(shiftOf(doubleScan("nan nan inf\n", "1")), none);
    EXPECT_EQ(shiftOf(doubleScan("", "0")), none);
    EXPECT_EQ(shiftOf(doubleScan("2048 -2048 0\n", "1")), cv::Point3_<double>(2000, -2000, 0));
    EXPECT_EQ(shiftOf(doubleScan("500000050 -500000049 0\n", "1", "int")),
              cv::Point3_<double>(500000100, -500000000, 0));
}

TEST(ScanOptions, TheFirstPointsChooseTheShiftOfAllInEveryFormat) {
    constexpr std::size_t first = 65536;
    constexpr std::size_t points = first + 1000;
    std::string file = "ply\nformat binary_little_endian 1.0\nelement vertex " +
                       std::to_string(points) +
                       "\nproperty double x\nproperty uchar red\nproperty double y\n"
                       "property double z\nend_header\n";
    for (std::size_t i = 0; i < points; ++i) {
        appendBytes(file, i < first ? 700030.0 + static_cast<double>(i % 7) : 99.0);
        file += 'r';
        appendBytes(file, static_cast<double>(i));
        appendBytes(file, 5e6);
    }
    ScanOptions options;
    options.automaticShift = true;
    const ReadScan scan = readEveryWay(file, options);
    ASSERT_TRUE(scan.result) << scan.result.reason;
    EXPECT_EQ(scan.result.report.shift, cv::Point3_<double>(700000, 32800, 5000000));
    ASSERT_EQ(scan.cloud.size(), points);
    EXPECT_EQ(scan.cloud[1].x, 31);
    EXPECT_EQ(scan.cloud[first].x, 99 - 700000);
    EXPECT_EQ(scan.cloud[points - 1].y, static_cast<float>(points - 1) - 32800);
}

TEST(ScanOptions, ANoteSaysWhatFloatsLose) {
    const ReadScan scan = readEveryWay(doubleScan("4512345.3 1 1\n", "1"));
    ASSERT_TRUE(scan.result);
    EXPECT_NEAR(scan.result.report.largestLoss, 0.2, 1e-6);
    EXPECT_EQ(scan.result.report.notes,
              std::vector<std::string>{"coordinates differ by up to 0.2 from the file's for having "
                                       "become 32-bit floats; a shift would keep them"});
    EXPECT_TRUE(readEveryWay(doubleScan("2047.00001 1 1\n", "1")).result.report.notes.empty());
}

TEST(ScanOptions, CoordinatesBeyondFloatsBecomeInfiniteWithANote) {
    const ReadScan scan =
        expectPoints(doubleScan("1e300 -1e300 1\n", "1"), {{INFINITY, -INFINITY, 1, 0}});
    EXPECT_EQ(scan.result.report.pointsWithoutPlace, 1u);
    EXPECT_EQ(scan.result.report.notes,
              std::vector<std::string>{
                  "coordinates beyond the range of 32-bit floats have become infinite"});
}

TEST(ScanOptions, RecordsKeepTheirTypesUnlessAShiftNeedsAnother) {
    const std::string file = "ply\nformat ascii 1.0\nelement vertex 1\nproperty int x\n"
                             "property double y\nproperty float z\nproperty uint64 t\n"
                             "property uchar red\nend_header\n7 8 9 9007199254740993 200\n";
    pcl::PCLPointCloud2 cloud;
    ASSERT_TRUE(converters::readScan(file.data(), file.size(), cloud));
    const auto typesOf = [](const pcl::PCLPointCloud2& of) {
        std::vector<int> types;
        for (const pcl::PCLPointField& field : of.fields) {
            types.push_back(field.datatype);
        }
        return types;
    };
    EXPECT_EQ(typesOf(cloud), (std::vector<int>{5, 8, 7, 8, 2}));
    EXPECT_EQ(valueAt<std::int32_t>(cloud.data, 0), 7);
    EXPECT_EQ(valueAt<double>(cloud.data, 16), 9007199254740992.0);

    ScanOptions options;
    options.shift = cv::Point3_<double>(0.5, 0.25, 0.5);
    ASSERT_TRUE(converters::readScan(file.data(), file.size(), cloud, options));
    EXPECT_EQ(typesOf(cloud), (std::vector<int>{8, 8, 7, 8, 2}));
    EXPECT_EQ(valueAt<double>(cloud.data, 0), 6.5);
    EXPECT_EQ(valueAt<double>(cloud.data, 8), 7.75);
    EXPECT_EQ(valueAt<float>(cloud.data, 16), 8.5F);

    // A reader in blocks gives the whole number that no field of a cloud can hold.
    converters::ScanReader reader(file.data(), file.size());
    ASSERT_TRUE(reader.open());
    EXPECT_EQ(reader.layout().fields[3].type, converters::ScalarType::uint64);
    std::vector<unsigned char> record(reader.layout().recordSize);
    std::size_t count = 0;
    ASSERT_TRUE(reader.read(record.data(), 1, count));
    EXPECT_EQ(valueAt<std::uint64_t>(record, 16), 9007199254740993u);
}

TEST(ScanOptions, ProgressIsToldAndCanStop) {
    std::string file = "ply\nformat binary_little_endian 1.0\nelement vertex 500000\n"
                       "property float x\nproperty float y\nproperty float z\nend_header\n";
    file.append(500000 * 12, '\0');
    std::vector<double> told;
    ScanOptions options;
    options.progress = [&](double done) {
        told.push_back(done);
        return true;
    };
    ASSERT_TRUE(readWhole(file, options).result);
    ASSERT_GE(told.size(), 4u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.back(), 1);

    options.progress = [](double done) { return done < 0.5; };
    expectRefused(file, "stopped", options);
}

TEST(ScanOptions, TheReportTellsWhatBecameOfEachProperty) {
    const std::string file = "ply\nformat ascii 1.0\nelement vertex 1\nproperty uchar red\n"
                             "property float y\nproperty list uchar int l\nproperty double X\n"
                             "property float32 z\nproperty short scalar_Intensity\n"
                             "element face 0\nproperty list uchar int vertex_indices\nend_header\n"
                             "1 2 0 4 5 6\n";
    const ScanReport report = readEveryWay(file).result.report;
    EXPECT_EQ(report.format, converters::ScanFormat::ascii);
    ASSERT_EQ(report.elements.size(), 2u);
    EXPECT_EQ(report.vertexElement, 0u);
    using Use = ScanPropertyUse;
    const Use uses[] = {Use::dropped, Use::y, Use::dropped, Use::x, Use::z, Use::intensity};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(report.elements[0].properties[i].use, uses[i]) << i;
    }
    EXPECT_EQ(report.elements[0].properties[2].countType, converters::ScalarType::uint8);
    EXPECT_EQ(report.elements[1].name, "face");

    pcl::PCLPointCloud2 all;
    const ScanReport kept = converters::readScan(file.data(), file.size(), all).report;
    EXPECT_EQ(kept.elements[0].properties[0].use, Use::kept);
    EXPECT_EQ(kept.elements[0].properties[2].use, Use::dropped);
}

TEST(ScanFiles, AreReadFromTheirPath) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("scan.ply");
    std::string file = "ply\nformat binary_big_endian 1.0\nelement vertex 100000\n"
                       "property uchar x\nproperty uchar y\nproperty uchar z\nend_header\n";
    for (std::size_t i = 0; i < 300000; ++i) {
        file += static_cast<char>(i % 251);
    }
    writeContent(path, file);
    pcl::PointCloud<pcl::PointXYZI> cloud;
    const converters::ScanResult result = converters::readScan(std::filesystem::path(path), cloud);
    ASSERT_TRUE(result) << result.reason;
    expectSameScan(readWhole(file), {result, cloud});
    pcl::PCLPointCloud2 fields;
    ASSERT_TRUE(converters::readScan(std::filesystem::path(path), fields));
    EXPECT_EQ(std::string(fields.data.begin(), fields.data.end()),
              file.substr(file.size() - 300000));
}

TEST(ScanFiles, AreReadFromPipes) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string file = "ply\nformat ascii 1.0\nelement vertex 50000\n"
                       "property int x\nproperty int y\nproperty int z\nend_header\n";
    for (int i = 0; i < 50000; ++i) {
        file += std::to_string(i) + " 2 3\n";
    }
    std::thread writer([&] { writeContent(path, file); });
    pcl::PointCloud<pcl::PointXYZI> cloud;
    const converters::ScanResult result = converters::readScan(std::filesystem::path(path), cloud);
    writer.join();
    ASSERT_TRUE(result) << result.reason;
    ASSERT_EQ(cloud.size(), 50000u);
    EXPECT_EQ(cloud[49999].x, 49999);
}

TEST(ScanFiles, ThatCannotBeReadAreRefusedWithTheSystemsReason) {
    pcl::PointCloud<pcl::PointXYZI> cloud;
    const TemporaryDirectory directory;
    EXPECT_EQ(converters::readScan(directory.path() / "none", cloud).reason,
              "the file cannot be opened: No such file or directory");
    EXPECT_EQ(converters::readScan(directory.path(), cloud).reason,
              "the file cannot be read: Is a directory");
}

} // namespace
