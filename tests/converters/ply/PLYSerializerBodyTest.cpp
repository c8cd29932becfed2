#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyClouds.h"
#include "tests/support/Random.h"
#include "tests/support/ReferencePlyWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <limits>
#include <locale>
#include <new>
#include <stdexcept>

namespace {

using Bytes = std::vector<unsigned char>;
using Field = pcl::PCLPointField;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

Bytes binary(const pcl::PCLPointCloud2& cloud) {
    Bytes out;
    PLYSerializer().AppendContentBinary(cloud, out);
    return out;
}

std::string ascii(const pcl::PCLPointCloud2& cloud) {
    std::ostringstream stream;
    PLYSerializer().WriteDataASCII(cloud, stream);
    return stream.str();
}

LogMessage binaryWarning(int datatype) {
    return {1, "converters/PlySerializerDeserializer", "AppendContentBinary",
            "[PlySerializer::appendContentBinary] Incorrect field data type specified (" +
                std::to_string(datatype) + ")!\n"};
}

LogMessage asciiWarning(int datatype) {
    return {1, "converters/PlySerializerDeserializer", "WriteDataASCII",
            "[PLYSerializer::writeDataASCII] Incorrect field data type specified (" +
                std::to_string(datatype) + ")!\n"};
}

void expectAsReference(const pcl::PCLPointCloud2& cloud) {
    ASSERT_EQ(binary(cloud), reference::binaryBody(cloud));
    ASSERT_EQ(ascii(cloud), reference::asciiBody(cloud));
}

TEST(PLYSerializerBinaryBody, IsAppendedBehindWhatIsThere) {
    Bytes out = {'h'};
    PLYSerializer().AppendContentBinary(rawCloud(2, 1, {field("a", 0, Field::UINT8)}, {7, 8}), out);
    EXPECT_EQ(out, (Bytes{'h', 7, 8}));
}

TEST(PLYSerializerBinaryBody, PacksFieldsInTheirOrderWithoutPadding) {
    const auto cloud = rawCloud(2, 1, {field("c", 6, Field::UINT16), field("a", 1, Field::INT8)},
                                {0, 1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17});
    EXPECT_EQ(binary(cloud), (Bytes{6, 7, 1, 16, 17, 11}));
}

TEST(PLYSerializerBinaryBody, EachDatatypeTakesItsSize) {
    const std::size_t sizes[] = {1, 1, 2, 2, 4, 4, 4, 8};
    const Bytes data = {1, 2, 3, 4, 5, 6, 7, 8};
    for (std::uint8_t datatype = 1; datatype <= 8; ++datatype) {
        const auto size = static_cast<std::ptrdiff_t>(sizes[datatype - 1]);
        EXPECT_EQ(binary(rawCloud(1, 1, {field("a", 0, datatype)}, data)),
                  Bytes(data.begin(), data.begin() + size));
    }
}

TEST(PLYSerializerBinaryBody, OfAFieldWithSeveralElementsTheLastOneIsStored) {
    const auto cloud =
        rawCloud(1, 1, {field("a", 0, Field::FLOAT32), field("h", 4, Field::FLOAT32, 3)},
                 bytesOf(1.0F, 2.0F, 3.0F, 4.0F));
    EXPECT_EQ(binary(cloud), bytesOf(1.0F, 4.0F));
}

TEST(PLYSerializerBinaryBody, CountOfZeroIsOneElement) {
    EXPECT_EQ(binary(rawCloud(1, 1, {field("a", 0, Field::UINT8, 0)}, {7})), (Bytes{7}));
}

TEST(PLYSerializerBinaryBody, FieldWithNegativeCountIsZeros) {
    for (const std::uint32_t count : {0x80000000U, 0xFFFFFFFFU}) {
        const auto cloud = rawCloud(
            2, 1, {field("a", 0, Field::UINT8, count), field("b", 1, Field::UINT8)}, {7, 8, 9, 10});
        EXPECT_EQ(binary(cloud), (Bytes{0, 8, 0, 10}));
    }
}

TEST(PLYSerializerBinaryBody, BytesAreNotSwappedForBigEndianClouds) {
    auto cloud = rawCloud(1, 1, {field("a", 0, Field::UINT32)}, {1, 2, 3, 4});
    cloud.is_bigendian = 1;
    EXPECT_EQ(binary(cloud), (Bytes{1, 2, 3, 4}));
}

TEST(PLYSerializerBinaryBody, Int8IsItsByte) {
    EXPECT_EQ(binary(rawCloud(1, 1, {field("a", 0, Field::INT8)}, {0xFF})), (Bytes{0xFF}));
}

TEST(PLYSerializerBinaryBody, ColoursTakeTheSizeOfTheirDatatypeUnlikeInTheHeader) {
    EXPECT_EQ(binary(rawCloud(1, 1, {field("rgb", 0, Field::FLOAT32)}, {1, 2, 3, 4})),
              (Bytes{1, 2, 3, 4}));
}

TEST(PLYSerializerBinaryBody, UnknownDatatypeIsReportedForTheFieldAndForEachOfItsElements) {
    const CapturedLog log;
    const auto cloud = rawCloud(
        2, 1, {field("a", 0, 0, 2), field("b", 1, Field::UINT8), field("c", 0, 9)}, {7, 8, 9, 10});
    EXPECT_EQ(binary(cloud), (Bytes{8, 10}));
    EXPECT_THAT(log.messages(),
                testing::ElementsAre(binaryWarning(0), binaryWarning(9), binaryWarning(0),
                                     binaryWarning(0), binaryWarning(9), binaryWarning(0),
                                     binaryWarning(0), binaryWarning(9)));
    EXPECT_GT(log.messages().front().line, 0);
}

TEST(PLYSerializerBinaryBody, UnknownDatatypeIsReportedOfACloudWithoutPointsToo) {
    const CapturedLog log;
    EXPECT_EQ(binary(rawCloud(0, 1, {field("a", 0, 255)})), Bytes());
    EXPECT_THAT(log.messages(), testing::ElementsAre(binaryWarning(255)));
}

TEST(PLYSerializerBinaryBody, UnknownDatatypeWithNegativeCountIsReportedOnce) {
    const CapturedLog log;
    EXPECT_EQ(binary(rawCloud(3, 1, {field("a", 0, 9, 0xFFFFFFFF)}, {1, 2, 3})), Bytes());
    EXPECT_THAT(log.messages(), testing::ElementsAre(binaryWarning(9)));
}

TEST(PLYSerializerBinaryBodyDeathTest, ExceptionOfTheLogEndsTheProcess) {
    const auto cloud = rawCloud(1, 1, {field("a", 0, 9)}, {1});
    EXPECT_DEATH(
        {
            const ThrowingLog throwing;
            try {
                binary(cloud);
            } catch (...) {
            }
        },
        "terminate called");
}

TEST(PLYSerializerAsciiBody, UnknownDatatypeIsReportedForEachElementAndLeavesItsBlank) {
    const CapturedLog log;
    const auto cloud = rawCloud(
        2, 1, {field("a", 0, 0, 2), field("b", 1, Field::UINT8), field("c", 0, 9)}, {7, 8, 9, 10});
    EXPECT_EQ(ascii(cloud), "2   8 \n2   10 \n");
    EXPECT_THAT(log.messages(),
                testing::ElementsAre(asciiWarning(0), asciiWarning(0), asciiWarning(9),
                                     asciiWarning(0), asciiWarning(0), asciiWarning(9)));
    EXPECT_GT(log.messages().front().line, 0);
}

TEST(PLYSerializerAsciiBody, ExceptionOfTheLogReachesTheCaller) {
    const ThrowingLog throwing;
    std::ostringstream stream;
    const auto cloud = rawCloud(1, 1, {field("a", 0, 9)}, {1});
    EXPECT_THROW(PLYSerializer().WriteDataASCII(cloud, stream), std::runtime_error);
}

TEST(PLYSerializerAsciiBody, CountsStandAheadOfAllValues) {
    const std::vector<unsigned char> data = bytesOf(1.0F, 2.0F, 3.0F, 4.0F);
    EXPECT_EQ(ascii(rawCloud(
                  1, 1, {field("a", 0, Field::FLOAT32), field("h", 4, Field::FLOAT32, 3)}, data)),
              "3 1 2 3 4\n");
    EXPECT_EQ(ascii(rawCloud(1, 1,
                             {field("h", 0, Field::FLOAT32, 2), field("a", 0, Field::FLOAT32),
                              field("g", 4, Field::FLOAT32, 3)},
                             data)),
              "2 3 1 2 1 2 3 4\n");
}

TEST(PLYSerializerAsciiBody, CountOfZeroIsOneElementWithoutCount) {
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::UINT8, 0)}, {7})), "7\n");
}

TEST(PLYSerializerAsciiBody, FieldWithNegativeCountIsLeftOut) {
    const auto skipped = field("a", 0, Field::UINT8, 0x80000000U);
    const auto kept = field("b", 0, Field::UINT8);
    EXPECT_EQ(ascii(rawCloud(1, 1, {skipped, kept}, {7})), "7\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {kept, skipped}, {7})), "7 \n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {skipped}, {7})), "\n");
}

TEST(PLYSerializerAsciiBody, CloudWithoutFieldsIsEmptyLines) {
    EXPECT_EQ(ascii(rawCloud(2, 1, {}, {1, 2})), "\n\n");
    EXPECT_EQ(binary(rawCloud(2, 1, {}, {1, 2})), Bytes());
}

TEST(PLYSerializerAsciiBody, BytesAreUnsignedWhateverTheirDatatype) {
    EXPECT_EQ(
        ascii(rawCloud(1, 1, {field("a", 0, Field::INT8), field("b", 0, Field::UINT8)}, {0xFF})),
        "255 255\n");
}

TEST(PLYSerializerAsciiBody, WritesTheLimitsOfIntegers) {
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::INT16, 2)},
                             bytesOf(std::int16_t(-32768), std::int16_t(32767)))),
              "2 -32768 32767\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::UINT16)}, bytesOf(std::uint16_t(65535)))),
              "65535\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::INT32, 2)},
                             bytesOf(std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()))),
              "2 -2147483648 2147483647\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::UINT32)}, bytesOf(0xFFFFFFFFU))),
              "4294967295\n");
}

TEST(PLYSerializerAsciiBody, NumbersHaveSixSignificantDigits) {
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::FLOAT32, 5)},
                             bytesOf(1.0F / 3, 1e6F, 123456.0F, 1e-5F, -0.0F))),
              "5 0.333333 1e+06 123456 1e-05 -0\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("a", 0, Field::FLOAT64, 3)},
                             bytesOf(2.0 / 3, 1e300, -1.25e-310))),
              "3 0.666667 1e+300 -1.25e-310\n");
}

TEST(PLYSerializerAsciiBody, NotANumberAndInfinityAreWrittenWhateverIsDenseSays) {
    auto cloud =
        rawCloud(1, 1, {field("a", 0, Field::FLOAT32, 4)}, bytesOf(nan, -nan, infinity, -infinity));
    for (const bool dense : {false, true}) {
        cloud.is_dense = dense;
        EXPECT_EQ(ascii(cloud), "4 nan -nan inf -inf\n");
    }
}

TEST(PLYSerializerAsciiBody, ColoursAreSeparateNumbers) {
    const Bytes data = bytesOf(0x20FF8040U);
    const auto line = [&data](const char* name, std::uint8_t datatype) {
        return ascii(rawCloud(1, 1, {field(name, 0, datatype)}, data));
    };
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("rgb", 0, Field::FLOAT32)}, bytesOf(0x00FF8040U))),
              "255 128 64\n");
    EXPECT_EQ(line("rgba", Field::UINT32), "255 128 64 32\n");
}

TEST(PLYSerializerAsciiBody, ColourNamesNeedOnlyContainTheWordUnlikeInTheHeader) {
    const Bytes data = bytesOf(0x20FF8040U);
    const auto line = [&data](const char* name, std::uint8_t datatype) {
        return ascii(rawCloud(1, 1, {field(name, 0, datatype)}, data));
    };
    EXPECT_EQ(line("ergb", Field::FLOAT32), "255 128 64\n");
    EXPECT_EQ(line("rgba", Field::FLOAT32), "255 128 64\n");
    EXPECT_EQ(line("my_rgba_1", Field::UINT32), "255 128 64 32\n");
    EXPECT_EQ(line("rgb", Field::UINT32), "553615424\n");
    EXPECT_EQ(line("rgb", Field::INT32), "553615424\n");
    EXPECT_EQ(line("rg", Field::FLOAT32), "4.32835e-19\n");
}

TEST(PLYSerializerAsciiBody, OrganisedCloudsAreWrittenRowByRow) {
    EXPECT_EQ(ascii(rawCloud(2, 3, {field("a", 0, Field::UINT8)}, {1, 2, 3, 4, 5, 6})),
              "1\n2\n3\n4\n5\n6\n");
}

TEST(PLYSerializerAsciiBody, DoesNotDependOnTheStreamsSettings) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::ostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new Comma));
    stream << std::setw(20) << std::setfill('*') << std::hex << std::showpos << std::fixed;
    const auto cloud =
        rawCloud(1, 1, {field("a", 0, Field::FLOAT32), field("h", 4, Field::INT32, 2)},
                 bytesOf(1234.5F, std::int32_t(123456), std::int32_t(-7)));
    PLYSerializer().WriteDataASCII(cloud, stream);
    EXPECT_EQ(stream.str(), "2 1234.5 123456 -7\n");
}

TEST(PLYSerializerAsciiBody, IsWrittenBehindWhatTheStreamHolds) {
    std::ostringstream stream;
    stream << "header\n";
    PLYSerializer().WriteDataASCII(rawCloud(1, 1, {field("a", 0, Field::UINT8)}, {7}), stream);
    EXPECT_EQ(stream.str(), "header\n7\n");
}

TEST(PLYSerializerBody, StrideFollowsFromTheDataNotFromPointStep) {
    auto cloud = rawCloud(2, 1, {field("a", 0, Field::UINT8)}, {1, 2, 3, 4, 5, 6, 7});
    for (const unsigned step : {0U, 1U, 100U}) {
        cloud.point_step = step;
        EXPECT_EQ(binary(cloud), (Bytes{1, 4}));
        EXPECT_EQ(ascii(cloud), "1\n4\n");
    }
}

TEST(PLYSerializerBody, ElementsMayLieInTheBytesOfTheNextPoint) {
    const auto cloud = rawCloud(2, 1, {field("a", 1, Field::UINT16)}, {1, 2, 3, 4});
    EXPECT_EQ(binary(cloud), (Bytes{2, 3, 0, 0}));
    EXPECT_EQ(ascii(cloud), "770\n0\n");
}

TEST(PLYSerializerBody, ElementPartlyOutsideTheDataIsZero) {
    for (const std::uint32_t offset : {1U, 2U, 3U, 4U, 5U, 0x7FFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        const auto cloud = rawCloud(1, 1, {field("a", offset, Field::UINT32)}, {1, 2, 3, 4});
        EXPECT_EQ(binary(cloud), (Bytes{0, 0, 0, 0}));
        EXPECT_EQ(ascii(cloud), "0\n");
    }
}

TEST(PLYSerializerBody, ColoursOutsideTheDataAreZeros) {
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("rgb", 8, Field::FLOAT32)}, {1, 2, 3, 4})), "0 0 0\n");
    EXPECT_EQ(ascii(rawCloud(1, 1, {field("rgba", 8, Field::UINT32)}, {1, 2, 3, 4})), "0 0 0 0\n");
}

TEST(PLYSerializerBody, ElementsOfALongCountThatLieOutsideTheDataAreZero) {
    const auto cloud = rawCloud(1, 1, {field("a", 0, Field::UINT8, 5)}, {1, 2, 3});
    EXPECT_EQ(binary(cloud), (Bytes{0}));
    EXPECT_EQ(ascii(cloud), "5 1 2 3 0 0\n");
}

TEST(PLYSerializerBody, LargestCountsReadNothingOutside) {
    for (const std::uint32_t count : {0x7FFFFFFFU, 0x7FFFFFFEU}) {
        EXPECT_EQ(binary(rawCloud(1, 1, {field("a", 0xFFFFFFFF, Field::FLOAT64, count)}, {1, 2})),
                  Bytes(8));
    }
    for (const std::uint32_t count : {0x80000000U, 0x80000001U, 0xFFFFFFFFU}) {
        const auto cloud = rawCloud(1, 1, {field("a", 0xFFFFFFFF, Field::FLOAT64, count)}, {1, 2});
        EXPECT_EQ(binary(cloud), Bytes(8));
        EXPECT_EQ(ascii(cloud), "\n");
    }
}

TEST(PLYSerializerBody, LongLinesAreWhole) {
    auto cloud = rawCloud(2, 1, {field("a", 0, Field::FLOAT32, 100000)});
    for (int i = 0; i < 200000; ++i) {
        const Bytes value = bytesOf(1.0F / static_cast<float>(i + 1));
        cloud.data.insert(cloud.data.end(), value.begin(), value.end());
    }
    expectAsReference(cloud);
}

TEST(PLYSerializerBody, CloudWithMorePointsThanBytesIsZeros) {
    const auto cloud = rawCloud(3, 1, {field("a", 0, Field::UINT16)}, {1, 0});
    EXPECT_EQ(ascii(cloud), "1\n1\n1\n") << "the stride is 0: every point lies at the start";
    EXPECT_EQ(binary(cloud), (Bytes{1, 0, 1, 0, 1, 0}));
    const auto none = rawCloud(3, 1, {field("a", 0, Field::UINT16)});
    EXPECT_EQ(ascii(none), "0\n0\n0\n");
    EXPECT_EQ(binary(none), Bytes(6));
}

TEST(PLYSerializerBody, NumberOfPointsThatIsNotPositiveAsASignedNumberWritesNothing) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {0, 0},           {0, 7},           {7, 0},         {65536, 65536},
        {0x80000000U, 1}, {0xFFFFFFFFU, 1}, {65536, 32768}, {0x80000000U, 2}};
    for (const auto& [width, height] : sizes) {
        const auto cloud = rawCloud(width, height, {field("a", 0, Field::UINT8)}, {1, 2, 3});
        Bytes out = {9};
        PLYSerializer().AppendContentBinary(cloud, out);
        EXPECT_EQ(out, (Bytes{9})) << width << " x " << height;
        EXPECT_EQ(ascii(cloud), "") << width << " x " << height;
    }
}

TEST(PLYSerializerBody, NumberOfPointsWrapsAt32Bits) {
    const auto cloud = rawCloud(65536, 65537, {field("a", 0, Field::UINT8)}, Bytes(65536, 5));
    EXPECT_EQ(binary(cloud), Bytes(65536, 5));
    expectAsReference(cloud);
}

TEST(PLYSerializerBody, BinaryBodyBeyondTwoGibibytesIsWhole) {
    // 17 million points of one byte each, whose 16 fields overlap: 128 bytes a record.
    constexpr std::size_t points = 17000000;
    constexpr std::size_t recordSize = 16 * sizeof(double);
    if (std::getenv("CONVERTERS_LARGE_TESTS") == nullptr) {
        GTEST_SKIP() << "set CONVERTERS_LARGE_TESTS to run this test, which takes 3 GiB of memory";
    }
    auto cloud = rawCloud(17000, 1000, {}, Bytes(points));
    for (std::uint32_t offset = 0; offset < recordSize; offset += sizeof(double)) {
        cloud.fields.push_back(field("a", offset, Field::FLOAT64));
    }
    for (std::size_t i = 0; i < points; ++i) {
        cloud.data[i] = static_cast<unsigned char>(i * 2654435761U >> 24);
    }
    const Bytes out = binary(cloud);
    ASSERT_EQ(out.size(), points * recordSize);
    for (std::size_t i = 0; i < points - recordSize; i += 499) {
        ASSERT_EQ(std::memcmp(&out[i * recordSize], &cloud.data[i], recordSize), 0) << i;
    }
    EXPECT_EQ(std::count(out.end() - recordSize, out.end(), 0), recordSize)
        << "the last point's fields lie partly or wholly outside the data";
}

#ifndef CONVERTERS_ADDRESS_SANITIZER // which ends the process for such an allocation
TEST(PLYSerializerBody, BodyBeyondTheAddressSpaceIsBadAlloc) {
    const auto cloud =
        rawCloud(0x7FFFFFFF, 1, std::vector<Field>(1 << 15, field("a", 0, Field::FLOAT64)), {1});
    Bytes out = {7};
    EXPECT_THROW(PLYSerializer().AppendContentBinary(cloud, out), std::bad_alloc);
    EXPECT_EQ(out, (Bytes{7}));
}
#endif

TEST(PLYSerializerBody, GoodCloudIsNotReported) {
    const CapturedLog log;
    const auto cloud = rawCloud(2, 1, {field("a", 4, Field::FLOAT32, 3)}, {1, 2, 3});
    binary(cloud);
    ascii(cloud);
    EXPECT_THAT(log.messages(), testing::IsEmpty());
}

/// A cloud of random fields over random bytes: some outside, some unknown, all special names.
pcl::PCLPointCloud2 randomCloud(Random32& random) {
    const auto below = [&random](std::uint32_t count) {
        return random.below<std::uint32_t>(count);
    };
    const char* names[] = {"x", "y", "rgb", "rgba", "normal_x", "ergb", "argbaz", "RGB", "h"};
    pcl::PCLPointCloud2 cloud;
    const bool regular = random.oneIn(2);
    const std::uint32_t fieldCount = below(6);
    std::uint32_t end = 0;
    for (std::uint32_t i = 0; i < fieldCount; ++i) {
        const bool odd = !regular && random.oneIn(4);
        const std::uint32_t offset = odd ? below(100) : end + (random.oneIn(3) ? below(5) : 0);
        const std::uint32_t count = random.oneIn(4) ? below(6) : 1;
        const auto datatype = static_cast<std::uint8_t>(odd ? below(11) : 1 + below(8));
        cloud.fields.push_back(field(random.pick(names), offset, datatype, count));
        if (!regular && random.oneIn(20)) {
            cloud.fields.back().count = 0x80000000U + below(3);
        }
        end = offset + 8 * std::max(std::min(count, 6U), 1U);
    }
    cloud.width = below(random.oneIn(10) ? 600 : 9);
    cloud.height = 1 + below(3);
    cloud.is_bigendian = random.oneIn(4);
    const std::uint32_t size = cloud.width * cloud.height * end;
    cloud.data.resize(regular ? size + below(3) : below(size + 20));
    for (unsigned char& byte : cloud.data) {
        byte = static_cast<unsigned char>(random());
    }
    return cloud;
}

TEST(PLYSerializerBody, RandomLayoutsAreThoseOfThePlainWriter) {
    Random32 random(7);
    for (int i = 0; i < 3000; ++i) {
        const pcl::PCLPointCloud2 cloud = randomCloud(random);
        for (const bool inBinary : {false, true}) {
            ASSERT_EQ(PLYSerializer().GenerateHeader(cloud, inBinary),
                      reference::header(cloud, inBinary));
        }
        const CapturedLog log;
        ASSERT_NO_FATAL_FAILURE(expectAsReference(cloud)) << i;
        const auto unknownFields =
            std::count_if(cloud.fields.begin(), cloud.fields.end(), [](const Field& field) {
                return field.datatype == 0 || field.datatype > 8;
            });
        ASSERT_EQ(log.messages().size(),
                  2 * reference::unknownElements(cloud) + static_cast<std::size_t>(unknownFields));
    }
}

/// A cloud of floats only, some outside the bytes, or in those of the next point.
pcl::PCLPointCloud2 randomFloats(Random32& random) {
    const auto below = [&random](std::uint32_t count) {
        return random.below<std::uint32_t>(count);
    };
    pcl::PCLPointCloud2 cloud;
    const std::uint32_t fieldCount = 1 + below(5);
    for (std::uint32_t i = 0; i < fieldCount; ++i) {
        const std::uint32_t offset = below(4) == 0 ? below(40) : 4 * i;
        cloud.fields.push_back(field("x", offset, Field::FLOAT32, below(2)));
    }
    cloud.width = 1 + below(below(20) == 0 ? 3000 : 9);
    cloud.height = 1;
    cloud.data.resize(cloud.width * (4 * fieldCount + below(3)) - std::min(below(8), cloud.width));
    for (unsigned char& byte : cloud.data) {
        byte = static_cast<unsigned char>(random());
    }
    return cloud;
}

TEST(PLYSerializerBody, RandomFloatsAreThoseOfThePlainWriter) {
    Random32 random(8);
    for (int i = 0; i < 2000; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectAsReference(randomFloats(random))) << i;
    }
}

} // namespace
