// Whole files into typed clouds.
#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"
#include "tests/support/XyziPoint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <stdexcept>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

const std::string kXyzi = "property float x\nproperty float y\nproperty float z\n"
                          "property float intensity\n";

LogMessage driverMessage(const std::string& text) {
    return {2, "converters/PlySerializerDeserializer", "DeserializePlyT",
            "[PLYDeserializer::DeserializePlyT] " + text + "\n"};
}

const LogMessage kNoInput = driverMessage("No Input data!");
const LogMessage kHeaderFailed = driverMessage("Reading Header Failed!");
const LogMessage kDataFailed = driverMessage("Reading Data Failed!");

LogMessage refusal(const std::string& function, const std::string& text) {
    return {2, "converters/PlySerializerDeserializer", function,
            "[PlyDeserializer::" + function + "] Error parsing ply, " + text + "\n"};
}

std::string asciiFile(std::size_t vertices, const std::string& body) {
    return "ply\nformat ascii 1.0\nelement vertex " + std::to_string(vertices) + "\n" + kXyzi +
           "end_header\n" + body;
}

/// A cloud that a caller might pass: everything about it has to survive a refused file.
Cloud usedCloud() {
    Cloud cloud;
    cloud.push_back(point(1, 2, 3, 4));
    cloud.push_back(point(5, 6, 7, 8));
    cloud.header.seq = 3;
    cloud.header.stamp = 4;
    cloud.header.frame_id = "map";
    cloud.width = 2;
    cloud.height = 7;
    cloud.is_dense = true;
    cloud.sensor_origin_ = Eigen::Vector4f(1, 2, 3, 4);
    return cloud;
}

void expectSameBytes(const Cloud& a, const Cloud& b) {
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.is_dense, b.is_dense);
    EXPECT_EQ(a.header.seq, b.header.seq);
    EXPECT_EQ(a.header.stamp, b.header.stamp);
    EXPECT_EQ(a.header.frame_id, b.header.frame_id);
    EXPECT_EQ(a.sensor_origin_, b.sensor_origin_);
    ASSERT_EQ(a.points.size(), b.points.size());
    for (std::size_t i = 0; i < a.points.size(); ++i) {
        ASSERT_EQ(std::memcmp(&a.points[i].x, &b.points[i].x, 12), 0) << "point " << i;
        ASSERT_EQ(std::memcmp(&a.points[i].data[3], &b.points[i].data[3], 4), 0) << "point " << i;
        ASSERT_EQ(std::memcmp(&a.points[i].intensity, &b.points[i].intensity, 4), 0)
            << "point " << i;
    }
}

class FromPly : public testing::Test {
protected:
    bool read(const std::vector<unsigned char>& data) {
        const CapturedLog log;
        result = converters::fromPly(data, cloud);
        messages = log.messages();
        return result.success;
    }
    bool read(const std::string& text) { return read(bytesOf(text)); }

    void expectUntouched(bool success, bool emptyScene) {
        EXPECT_EQ(result.success, success);
        EXPECT_EQ(result.emptySceneInTeach, emptyScene);
        expectSameBytes(cloud, usedCloud());
    }

    Cloud cloud = usedCloud();
    converters::PlyReadResult result{};
    std::vector<LogMessage> messages;
};

TEST_F(FromPly, EmptyInputIsRefused) {
    read("");
    expectUntouched(false, false);
    EXPECT_THAT(messages, ElementsAre(kNoInput));
}

TEST_F(FromPly, FileWithoutVerticesIsAnEmptyScene) {
    for (const char* format : {"ascii", "binary_little_endian", "binary_big_endian", "unknown"}) {
        read(std::string("ply\nformat ") + format + " 1.0\nelement vertex 0\n" + kXyzi +
             "end_header\n");
        expectUntouched(true, true);
        EXPECT_THAT(messages, IsEmpty());
    }
}

TEST_F(FromPly, TextWithoutAVertexElementIsAnEmptyScene) {
    for (const std::string& text :
         {std::string("no PLY file"), std::string(1, '\0'), std::string("element"),
          std::string("ply\nelement face 3\n"), std::string("ply\nElement vertex 3\n"),
          std::string("ply\n\0element vertex 3\n", 22), std::string("xelement vertex 3\n"),
          std::string("element vertexes 3\n"), std::string("element\nvertex 3\n")}) {
        read(text);
        expectUntouched(true, true);
        EXPECT_THAT(messages, IsEmpty());
    }
}

TEST_F(FromPly, EmptySceneIsFoundBehindOtherElementsAndBehindTheHeader) {
    read("ply\nelement face 3\nelement vertex 0\nend_header\n");
    expectUntouched(true, true);
    read("ply\nend_header\n element\tvertex\t0\n");
    expectUntouched(true, true);
}

TEST_F(FromPly, UnreadableCountIsAnEmptyScene) {
    for (const char* count : {"", " ", " x", " +", " -0", " 0x5", " .5", " 00"}) {
        read(std::string("ply\nelement vertex") + count + "\nend_header\n");
        expectUntouched(true, true);
    }
}

TEST_F(FromPly, OnlyTheFirstVertexElementSaysWhetherTheSceneIsEmpty) {
    read("ply\nelement vertex 5\nelement vertex 0\nend_header\n");
    expectUntouched(false, false);
    EXPECT_THAT(messages,
                ElementsAre(refusal("ReadHeader", "line: 3 Only one set of vertices supported"),
                            kHeaderFailed));
    read("ply\nelement vertex 99999999999999999999\nend_header\n");
    expectUntouched(false, false);
    EXPECT_THAT(messages, ElementsAre(kHeaderFailed));
}

TEST(PLYDeserializerIsVertexCountZero, TouchesNoMember) {
    PLYDeserializer reader;
    reader.stream.str("text");
    reader.lineNumber = 7;
    const CapturedLog log;
    EXPECT_TRUE(reader.IsVertexCountZero(bytesOf("element vertex 0\n")));
    EXPECT_FALSE(reader.IsVertexCountZero(bytesOf("element vertex 5\n")));
    EXPECT_FALSE(reader.IsVertexCountZero(bytesOf("ply\r\nelement vertex 5\r\n")));
    EXPECT_FALSE(reader.IsVertexCountZero(bytesOf(" element \v vertex 5abc")));
    EXPECT_TRUE(reader.IsVertexCountZero({}));
    EXPECT_EQ(reader.stream.str(), "text");
    EXPECT_EQ(reader.stream.tellg(), 0);
    EXPECT_EQ(reader.lineNumber, 7u);
    EXPECT_FALSE(reader.isEmptySceneInTeach());
    EXPECT_EQ(reader.cloud, nullptr);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(PLYDeserializer, EmptySceneIsRememberedWhateverIsReadNext) {
    PLYDeserializer reader;
    Cloud cloud;
    EXPECT_TRUE(reader.DeserializePlyT<pcl::PointXYZI>(bytesOf("element vertex 0\n"), cloud));
    EXPECT_TRUE(reader.isEmptySceneInTeach());
    EXPECT_TRUE(reader.DeserializePlyT<pcl::PointXYZI>(bytesOf(asciiFile(1, "1 2 3 4\n")), cloud));
    EXPECT_TRUE(reader.isEmptySceneInTeach());
    EXPECT_EQ(cloud.size(), 1u);
}

TEST(PLYDeserializer, EmptyInputLeavesTheReaderAsItWas) {
    PLYDeserializer reader;
    Cloud cloud;
    EXPECT_FALSE(reader.DeserializePlyT<pcl::PointXYZI>({}, cloud));
    EXPECT_EQ(reader.cloud, nullptr);
    reader.lineNumber = 7;
    EXPECT_FALSE(reader.DeserializePlyT<pcl::PointXYZI>({}, cloud));
    EXPECT_EQ(reader.lineNumber, 7u);
}

TEST(PLYDeserializer, ReadsCloudsOfOtherPointTypes) {
    const auto data = bytesOf(asciiFile(2, "1 2 3 4\n5 6 7 8\n"));
    pcl::PointCloud<pcl::PointXYZ> cloud;
    EXPECT_TRUE(PLYDeserializer().DeserializePlyT(data, cloud));
    ASSERT_EQ(cloud.size(), 2u);
    EXPECT_EQ(cloud[1].x, 5);
    EXPECT_EQ(cloud[1].y, 6);
    EXPECT_EQ(cloud[1].z, 7);
    EXPECT_EQ(cloud[1].data[3], 1);
}

TEST_F(FromPly, RefusedHeaderLeavesTheCloudUntouched) {
    read("ply\nformat ascii 1.0\nelement vertex 1\n" + kXyzi);
    expectUntouched(false, false);
    EXPECT_THAT(messages, ElementsAre(kHeaderFailed));
    read("PLY\nelement vertex 1\n");
    expectUntouched(false, false);
    EXPECT_THAT(messages, ElementsAre(refusal("ReadHeader", "line: 1"), kHeaderFailed));
}

TEST_F(FromPly, RefusedBodyLeavesTheCloudUntouched) {
    read(asciiFile(2, "1 2 3 4\n"));
    expectUntouched(false, false);
    EXPECT_THAT(messages, ElementsAre(refusal("ReadData", "line: 9"), kDataFailed));
    read("ply\nelement vertex 2\n" + kXyzi + "end_header\n" + std::string(31, 'x'));
    expectUntouched(false, false);
    EXPECT_THAT(
        messages,
        ElementsAre(refusal("ReadData", "Binary Data doesn't match expected size"), kDataFailed));
    read("ply\nformat binary_big_endian 1.0\nelement vertex 1\n" + kXyzi + "end_header\n" +
         std::string(16, 'x'));
    expectUntouched(false, false);
    EXPECT_THAT(messages,
                ElementsAre(refusal("ReadData", "Binary Big Endian not implemented"), kDataFailed));
}

TEST_F(FromPly, ObjInfoValueThatIsNoIntegerThrows) {
    for (const char* value : {"wide", "2147483648", ""}) {
        EXPECT_THROW(read(std::string("ply\nelement vertex 1\nobj_info num_cols ") + value +
                          "\nend_header\n"),
                     std::logic_error);
        expectUntouched(false, false);
    }
}

TEST_F(FromPly, AcceptedFileReplacesTheCloud) {
    ASSERT_TRUE(read(asciiFile(3, "1 2 3 4\n-1.5 nan inf 1e-3\n7 8 9 10\n")));
    EXPECT_FALSE(result.emptySceneInTeach);
    EXPECT_THAT(messages, IsEmpty());
    Cloud expected = usedCloud();
    expected.clear();
    expected.push_back(point(1, 2, 3, 4));
    expected.push_back(point(-1.5F, std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(), 1e-3F));
    expected.push_back(point(7, 8, 9, 10));
    expected.header = pcl::PCLHeader();
    expected.is_dense = false;
    expectSameBytes(cloud, expected);
}

TEST_F(FromPly, OldPointsAreNotSeenThroughMissingFields) {
    ASSERT_TRUE(read("ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float z\n"
                     "property double y\nend_header\n1 2 3\n4 5 6\n"));
    ASSERT_EQ(cloud.size(), 2u);
    EXPECT_EQ(cloud[0].x, 1);
    EXPECT_EQ(cloud[0].y, 0);
    EXPECT_EQ(cloud[0].z, 2);
    EXPECT_EQ(cloud[0].intensity, 0);
    EXPECT_EQ(cloud[1].x, 4);
    EXPECT_EQ(cloud[1].z, 5);
}

TEST_F(FromPly, MissingFieldsAreReportedByThePointCloudLibraryOnceTheBodyIsRead) {
    const std::string header =
        "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float z\nend_header\n";
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    read(header);
    EXPECT_THAT(testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout(),
                testing::Not(HasSubstr("Failed to find match")));
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_TRUE(read(header + "1 2\n"));
    const std::string printed =
        testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout();
    EXPECT_THAT(printed, HasSubstr("Failed to find match for field 'y'.\n"));
    EXPECT_THAT(printed, HasSubstr("Failed to find match for field 'intensity'.\n"));
    EXPECT_THAT(printed, testing::Not(HasSubstr("'x'")));
}

TEST_F(FromPly, OrganisedCloudComesBackPointForPoint) {
    Cloud organised(640, 480);
    for (std::size_t i = 0; i < organised.size(); ++i) {
        const auto value = static_cast<float>(i);
        organised[i] = point(value, -value, value / 4, value + 1);
        if (i % 3 == 0) {
            organised[i].z = std::numeric_limits<float>::quiet_NaN();
        }
    }
    organised.is_dense = false;
    std::vector<unsigned char> file;
    ASSERT_TRUE(converters::toPlyBinary(organised, file));
    cloud = Cloud();
    ASSERT_TRUE(read(file));
    expectSameBytes(cloud, organised);
}

TEST_F(FromPly, SmallFileThatDeclaresBillionsOfVerticesFailsAtOnce) {
    for (const char* format : {"ascii", "binary_little_endian"}) {
        std::string text = std::string("ply\nformat ") + format +
                           " 1.0\nelement vertex 4000000000\n" + kXyzi + "end_header\n";
        text.resize(200, ' ');
        read(text);
        expectUntouched(false, false);
        EXPECT_THAT(messages, ElementsAre(kHeaderFailed));
    }
}

TEST_F(FromPly, FileWithoutPropertiesGivesDefaultPoints) {
    ASSERT_TRUE(read("ply\nformat ascii 1.0\nobj_info num_cols 2\nobj_info num_rows 2\n"
                     "element vertex 1\nend_header\nanything\n"));
    EXPECT_EQ(cloud.width, 2u);
    EXPECT_EQ(cloud.height, 2u);
    ASSERT_EQ(cloud.size(), 4u);
    EXPECT_EQ(cloud[3].x, 0);
    EXPECT_EQ(cloud[3].data[3], 1);
}

TEST_F(FromPly, ThrowingLogIsFatal) {
    const auto readWithThrowingLog = [&](const std::string& text, int messagesBefore = 0) {
        const ThrowingLog throwing(messagesBefore);
        try {
            converters::fromPly(bytesOf(text), cloud);
        } catch (const std::exception&) {
        }
    };
    EXPECT_DEATH(readWithThrowingLog(""), "");
    EXPECT_DEATH(readWithThrowingLog("ply\nelement vertex 1\n"), "");
    EXPECT_DEATH(readWithThrowingLog(asciiFile(1, "")), "");
    // The reader of the body reports before its caller does.
    EXPECT_DEATH(readWithThrowingLog(asciiFile(1, ""), 1), "");
    readWithThrowingLog(asciiFile(1, ""), 2);
}

/// Numbers as some countries write them: decimal comma, points between groups of digits.
class CommaNumbers : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(FromPly, GlobalLocaleHasNoEffect) {
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    ASSERT_TRUE(read(asciiFile(2, "1.5 1,5 3 4\n1234.5 -0.25 1e3 .5\n")));
    PLYDeserializer reader;
    reader.Init();
    reader.cloud->data.resize(8);
    std::istringstream line("2.5,5");
    reader.ParseVertices(pcl::PCLPointField::FLOAT32, line);
    Cloud big(1500, 1);
    std::vector<unsigned char> file;
    converters::toPlyAscii(big, file);
    Cloud again;
    const bool isRead = converters::fromPly(file, again).success;
    std::locale::global(previous);
    EXPECT_EQ(cloud[0].x, 1.5F);
    EXPECT_EQ(cloud[0].y, 1);
    EXPECT_EQ(cloud[0].z, 0);
    EXPECT_EQ(cloud[1].x, 1234.5F);
    EXPECT_EQ(cloud[1].y, -0.25F);
    EXPECT_EQ(cloud[1].z, 1000);
    EXPECT_EQ(cloud[1].intensity, 0.5F);
    EXPECT_EQ(valueAt<float>(reader.cloud->data, 0), 2.5F);
    EXPECT_EQ(line.tellg(), 3);
    EXPECT_TRUE(isRead);
    EXPECT_EQ(again.size(), 1500u);
}

float randomFloat(std::mt19937& random) {
    switch (random() % 8) {
    case 0:
        return std::numeric_limits<float>::quiet_NaN();
    case 1:
        return std::copysign(std::numeric_limits<float>::infinity(),
                             random() % 2 == 0 ? 1.0F : -1.0F);
    case 2: {
        const auto bits = static_cast<std::uint32_t>(random());
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    default:
        return static_cast<float>(static_cast<std::int32_t>(random())) * 1e-6F;
    }
}

Cloud randomCloud(std::mt19937& random) {
    const auto width = static_cast<std::uint32_t>(1 + random() % (random() % 4 == 0 ? 2000 : 40));
    Cloud cloud(width, static_cast<std::uint32_t>(1 + random() % 5));
    for (pcl::PointXYZI& p : cloud.points) {
        p = point(randomFloat(random), randomFloat(random), randomFloat(random),
                  randomFloat(random));
    }
    cloud.is_dense = false;
    return cloud;
}

TEST_F(FromPly, BinaryRoundTripIsExact) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const Cloud original = randomCloud(random);
        std::vector<unsigned char> file;
        ASSERT_TRUE(converters::toPlyBinary(original, file));
        cloud = Cloud();
        ASSERT_TRUE(read(file));
        expectSameBytes(cloud, original);
    }
}

/// Whether `read` is what six significant digits of `written` give.
bool isSameToSixDigits(float written, float read) {
    if (std::isnan(written)) {
        return std::isnan(read) && std::signbit(written) == std::signbit(read);
    }
    if (std::isinf(written)) {
        return written == read;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.5e", static_cast<double>(written));
    const float expected = std::strtof(text, nullptr);
    // The largest floats round up, out of range.
    return read == (std::isinf(expected)
                        ? std::copysign(std::numeric_limits<float>::max(), expected)
                        : expected);
}

TEST_F(FromPly, AsciiRoundTripKeepsSixDigits) {
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        const Cloud original = randomCloud(random);
        std::vector<unsigned char> file;
        ASSERT_TRUE(converters::toPlyAscii(original, file));
        ASSERT_TRUE(read(file));
        EXPECT_EQ(cloud.width, original.width);
        EXPECT_EQ(cloud.height, original.height);
        ASSERT_EQ(cloud.size(), original.size());
        for (std::size_t k = 0; k < cloud.size(); ++k) {
            ASSERT_TRUE(isSameToSixDigits(original[k].x, cloud[k].x)) << original[k];
            ASSERT_TRUE(isSameToSixDigits(original[k].y, cloud[k].y)) << original[k];
            ASSERT_TRUE(isSameToSixDigits(original[k].z, cloud[k].z)) << original[k];
            ASSERT_TRUE(isSameToSixDigits(original[k].intensity, cloud[k].intensity))
                << original[k];
        }
    }
}

std::vector<unsigned char> sampleScan(const std::string& name) {
    std::vector<unsigned char> data;
    converters::from_file(std::string(CONVERTERS_SAMPLE_DIR) + "/scans/" + name, data);
    return data;
}

TEST_F(FromPly, ReadsTheBunnyScan) {
    const auto data = sampleScan("bunny_ascii.ply");
    if (data.empty()) {
        GTEST_SKIP() << "no scans/bunny_ascii.ply in " CONVERTERS_SAMPLE_DIR;
    }
    ASSERT_TRUE(read(data));
    ASSERT_EQ(cloud.size(), 397u);
    EXPECT_EQ(cloud.width, 397u);
    EXPECT_EQ(cloud.height, 1u);
    // Every value, by another way.
    std::istringstream text(std::string(data.begin(), data.end()));
    text.imbue(std::locale::classic());
    std::string line;
    while (std::getline(text, line) && line != "end_header") {
    }
    for (const pcl::PointXYZI& p : cloud.points) {
        pcl::PointXYZI expected;
        text >> expected.x >> expected.y >> expected.z >> expected.intensity;
        ASSERT_EQ(p.x, expected.x);
        ASSERT_EQ(p.y, expected.y);
        ASSERT_EQ(p.z, expected.z);
        ASSERT_EQ(p.intensity, expected.intensity);
    }
    EXPECT_TRUE(text.good());
}

TEST_F(FromPly, ReadsTheOrganisedTableScanPointForPoint) {
    const auto data = sampleScan("table_organized_binary.ply");
    if (data.empty()) {
        GTEST_SKIP() << "no scans/table_organized_binary.ply in " CONVERTERS_SAMPLE_DIR;
    }
    ASSERT_TRUE(read(data));
    EXPECT_EQ(cloud.width, 320u);
    EXPECT_EQ(cloud.height, 240u);
    ASSERT_EQ(cloud.size(), 76800u);
    const std::size_t body = data.size() - 16 * cloud.size();
    std::size_t missing = 0;
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        ASSERT_EQ(std::memcmp(&cloud[i].x, &data[body + 16 * i], 12), 0) << i;
        ASSERT_EQ(std::memcmp(&cloud[i].intensity, &data[body + 16 * i + 12], 4), 0) << i;
        missing += std::isnan(cloud[i].x) ? 1 : 0;
    }
    EXPECT_GT(missing, cloud.size() / 5);

    // Missing points stay missing through our own ASCII form, too.
    std::vector<unsigned char> ascii;
    ASSERT_TRUE(converters::toPlyAscii(cloud, ascii));
    const Cloud binary = cloud;
    ASSERT_TRUE(read(ascii));
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        ASSERT_TRUE(isSameToSixDigits(binary[i].x, cloud[i].x)) << i;
        ASSERT_TRUE(isSameToSixDigits(binary[i].z, cloud[i].z)) << i;
    }
}

} // namespace
