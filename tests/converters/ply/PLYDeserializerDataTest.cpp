// The body reader, step by step.
#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Field = pcl::PCLPointField;

LogMessage message(int level, const std::string& function, const std::string& text) {
    return {level, "converters/PlySerializerDeserializer", function,
            "[PlyDeserializer::" + function + "] " + text};
}

LogMessage refusal(int line) {
    return message(2, "ReadData", "Error parsing ply, line: " + std::to_string(line) + "\n");
}

const LogMessage wrongSize =
    message(2, "ReadData", "Error parsing ply, Binary Data doesn't match expected size\n");

const LogMessage bigEndian =
    message(2, "ReadData", "Error parsing ply, Binary Big Endian not implemented\n");

TEST(PLYDeserializerProgress, IsToldWhileThePointsAreMade) {
    constexpr std::size_t count = 10'000;
    std::string lines;
    for (std::size_t i = 0; i < count; ++i) {
        lines += std::to_string(i) + '\n';
    }
    const std::string header =
        " 1.0\nelement vertex " + std::to_string(count) + "\nproperty float x\nend_header\n";
    for (const std::vector<unsigned char>& data :
         {bytesOf("ply\nformat ascii" + header + lines),
          bytesOf("ply\nformat binary_little_endian" + header + std::string(4 * count, '\0'))}) {
        std::vector<double> told;
        PLYDeserializer reader;
        pcl::PointCloud<pcl::PointXYZ> cloud;
        pcl::PointCloud<pcl::PointXYZ> same;
        ASSERT_TRUE(
            reader.DeserializePlyT(data, cloud, [&told](double done) { told.push_back(done); }));
        ASSERT_TRUE(reader.DeserializePlyT(data, same));
        EXPECT_EQ(cloud.back().x, same.back().x);
        EXPECT_EQ(cloud.size(), count);
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        EXPECT_GT(told.size(), 20U);
        EXPECT_EQ(told.front(), 0.0);
        EXPECT_GT(told.back(), 0.95);
        EXPECT_LE(told.back(), 1.0);
        const auto stop = [](double done) {
            if (done > 0.5) {
                throw std::runtime_error("enough");
            }
        };
        EXPECT_THROW(reader.DeserializePlyT(data, same, stop), std::runtime_error);
        EXPECT_EQ(same.size(), count);
    }
}

class PLYDeserializerData : public testing::Test {
protected:
    /// Reads a header, which has to be accepted, and its body.
    bool read(const std::string& format, std::uint64_t vertices, const std::string& properties,
              const std::string& body) {
        const auto data =
            bytesOf("ply\nformat " + format + " 1.0\nelement vertex " + std::to_string(vertices) +
                    "\n" + properties + "end_header\n" + body);
        reader.Init();
        EXPECT_TRUE(reader.ReadHeader(data));
        const CapturedLog log;
        const bool isAccepted = reader.ReadData(data);
        messages = log.messages();
        return isAccepted;
    }

    bool readAscii(std::uint64_t vertices, const std::string& properties, const std::string& body) {
        return read("ascii", vertices, properties, body);
    }

    template <typename Value>
    std::vector<Value> values() const {
        std::vector<Value> result;
        for (std::size_t i = 0; i < reader.cloud->data.size(); i += sizeof(Value)) {
            result.push_back(valueAt<Value>(reader.cloud->data, i));
        }
        return result;
    }

    PLYDeserializer reader;
    std::vector<LogMessage> messages;
};

const std::string kTwoFloats = "property float a\nproperty float b\n";

TEST_F(PLYDeserializerData, AsciiFileWithoutVerticesLeavesAnEmptyBlock) {
    EXPECT_TRUE(readAscii(0, kTwoFloats, ""));
    EXPECT_TRUE(reader.cloud->data.empty());
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerData, EachAsciiLineIsOneVertex) {
    EXPECT_TRUE(readAscii(2, kTwoFloats, "1 2\n3 4\nnot read\n"));
    EXPECT_THAT(values<float>(), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(reader.lineNumber, 8u);
    EXPECT_EQ(reader.writeOffset, 16u);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerData, LastAsciiLineNeedsNoLineFeed) {
    EXPECT_TRUE(readAscii(2, kTwoFloats, "1 2\n3 4"));
    EXPECT_THAT(values<float>(), ElementsAre(1, 2, 3, 4));
}

TEST_F(PLYDeserializerData, MissingAsciiLineIsRefusedWithTheNumberOfTheLastOne) {
    EXPECT_FALSE(readAscii(2, kTwoFloats, "1 2\n"));
    EXPECT_THAT(messages, ElementsAre(refusal(7)));
    EXPECT_THAT(values<float>(), ElementsAre(1, 2, 0, 0));
    EXPECT_FALSE(readAscii(2, kTwoFloats, ""));
    EXPECT_THAT(messages, ElementsAre(refusal(6)));
}

TEST_F(PLYDeserializerData, SurplusAsciiValuesAreIgnored) {
    EXPECT_TRUE(readAscii(2, kTwoFloats, "1 2 3 4\n5 6 seven\n"));
    EXPECT_THAT(values<float>(), ElementsAre(1, 2, 5, 6));
}

TEST_F(PLYDeserializerData, MissingAsciiValuesAreZeroAndNotTakenFromTheNextLine) {
    EXPECT_TRUE(readAscii(4, kTwoFloats, "1\n\n3 4\n \t\r\n"));
    EXPECT_THAT(values<float>(), ElementsAre(1, 0, 0, 0, 3, 4, 0, 0));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerData, AfterAMalformedAsciiValueTheRestOfTheRecordIsZero) {
    EXPECT_TRUE(readAscii(3, kTwoFloats + "property uchar c\n", "x 2 3\n1 - 3\n5 6 7\n"));
    const auto& data = reader.cloud->data;
    EXPECT_EQ(std::vector<unsigned char>(data.begin(), data.begin() + 9),
              std::vector<unsigned char>(9));
    EXPECT_EQ(valueAt<float>(data, 9), 1);
    EXPECT_EQ(valueAt<float>(data, 13), 0);
    EXPECT_EQ(data[17], 0);
    EXPECT_EQ(valueAt<float>(data, 18), 5);
    EXPECT_EQ(valueAt<float>(data, 22), 6);
    EXPECT_EQ(data[26], '7');
}

TEST_F(PLYDeserializerData, EightBitAsciiValuesAreSingleCharacters) {
    EXPECT_TRUE(
        readAscii(2, "property uchar a\nproperty char b\nproperty int c\n", "255 9\n  x\ty -7\n"));
    const auto& data = reader.cloud->data;
    EXPECT_EQ(data[0], '2');
    EXPECT_EQ(data[1], '5');
    EXPECT_EQ(valueAt<int>(data, 2), 5);
    EXPECT_EQ(data[6], 'x');
    EXPECT_EQ(data[7], 'y');
    EXPECT_EQ(valueAt<int>(data, 8), -7);
}

TEST_F(PLYDeserializerData, AsciiBodyEndsAtAZeroByte) {
    EXPECT_FALSE(readAscii(2, kTwoFloats, std::string("1 2\n\0003 4\n", 9)));
    EXPECT_THAT(messages, ElementsAre(refusal(7)));
}

TEST_F(PLYDeserializerData, BinaryBodyHasToHaveTheExactSize) {
    const std::string properties = "property float x\nproperty float y\nproperty float z\n"
                                   "property float intensity\n";
    std::string body;
    for (int i = 0; i < 8; ++i) {
        appendBytes(body, static_cast<float>(i) - 0.5F);
    }
    EXPECT_TRUE(read("binary_little_endian", 2, properties, body));
    EXPECT_EQ(reader.cloud->data, bytesOf(body));
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_FALSE(read("binary_little_endian", 2, properties, body.substr(1)));
    EXPECT_THAT(messages, ElementsAre(wrongSize));
    EXPECT_EQ(reader.cloud->data, std::vector<unsigned char>(32));
    EXPECT_FALSE(read("binary_little_endian", 2, properties, body + "\n"));
    EXPECT_THAT(messages, ElementsAre(wrongSize));
    EXPECT_FALSE(read("binary_little_endian", 2, properties, ""));
    EXPECT_THAT(messages, ElementsAre(wrongSize));
}

TEST_F(PLYDeserializerData, BinaryBodyMovesNeitherStreamNorCounters) {
    EXPECT_TRUE(read("binary_little_endian", 2, "property short a\n", "1234"));
    EXPECT_EQ(reader.lineNumber, 5u);
    EXPECT_EQ(reader.writeOffset, 0u);
    EXPECT_EQ(reader.stream.tellg(), std::streamoff(reader.stream.str().size() - 4));
}

TEST_F(PLYDeserializerData, BinaryBodyWithZeroBytesIsCopiedInFull) {
    const std::string body("\0\1\0\2\0\0\0\3", 8);
    EXPECT_TRUE(read("binary_little_endian", 2, "property short a\nproperty ushort b\n", body));
    EXPECT_EQ(reader.cloud->data, bytesOf(body));
}

TEST_F(PLYDeserializerData, BigEndianBodyIsRefused) {
    EXPECT_FALSE(read("binary_big_endian", 1, "property int a\n", "1234"));
    EXPECT_THAT(messages, ElementsAre(bigEndian));
}

TEST_F(PLYDeserializerData, UnknownStorageFormReadsNothing) {
    reader.Init();
    reader.format = static_cast<PlyFormat>(3);
    EXPECT_TRUE(reader.ReadData(bytesOf("text")));
}

TEST_F(PLYDeserializerData, BodyIsReadWithoutAHeaderToo) {
    const auto messagesOf = [](PlyFormat format, std::uint64_t vertices, bool isAccepted) {
        PLYDeserializer unready;
        unready.format = format;
        unready.vertexCount = vertices;
        const CapturedLog log;
        EXPECT_EQ(unready.ReadData(bytesOf("text")), isAccepted);
        return log.messages();
    };
    EXPECT_THAT(messagesOf(PlyFormat::Ascii, 0, true), IsEmpty());
    EXPECT_THAT(messagesOf(PlyFormat::Ascii, 1, false), ElementsAre(refusal(0)));
    EXPECT_THAT(messagesOf(PlyFormat::BinaryLittleEndian, 0, false), ElementsAre(wrongSize));
    EXPECT_THAT(messagesOf(PlyFormat::BinaryBigEndian, 0, false), ElementsAre(bigEndian));
    EXPECT_THAT(messagesOf(static_cast<PlyFormat>(3), 0, true), IsEmpty());
}

TEST_F(PLYDeserializerData, UnknownDatatypeIsReportedTwice) {
    const auto data = bytesOf("ply\nformat ascii 1.0\nelement vertex 1\nproperty int a\n"
                              "property int b\nend_header\n5 6\n");
    for (const std::uint8_t datatype : {std::uint8_t{0}, std::uint8_t{9}, std::uint8_t{255}}) {
        reader.Init();
        ASSERT_TRUE(reader.ReadHeader(data));
        reader.cloud->fields[1].datatype = datatype;
        const CapturedLog log;
        EXPECT_FALSE(reader.ReadData(data));
        EXPECT_THAT(log.messages(),
                    ElementsAre(message(1, "ParseVertices", "Unsupported type\n"), refusal(7)));
        EXPECT_EQ(valueAt<int>(reader.cloud->data, 0), 5);
    }
}

TEST_F(PLYDeserializerData, StepsInAnyOrderStayInsideTheBlock) {
    const auto data = bytesOf("ply\nformat ascii 1.0\nelement vertex 2\nproperty int a\n"
                              "end_header\n5\n6\n7\n8\n");
    reader.Init();
    EXPECT_FALSE(reader.ReadData(data)); // no header: binary, and no bytes are expected
    ASSERT_TRUE(reader.ReadHeader(data));
    EXPECT_TRUE(reader.ReadData(data));
    EXPECT_TRUE(reader.ReadData(data));
    EXPECT_THAT(values<int>(), ElementsAre(5, 6));
    reader.cloud->data.clear();
    reader.stream.seekg(0);
    EXPECT_TRUE(reader.ReadData(data));
    reader.cloud->data.resize(7);
    reader.writeOffset = 0;
    reader.stream.seekg(0);
    EXPECT_TRUE(reader.ReadData(data));
}

TEST_F(PLYDeserializerData, ThrowingLogIsFatal) {
    const auto readWithThrowingLog = [&](const std::string& format) {
        const auto data = bytesOf("ply\nformat " + format +
                                  " 1.0\nelement vertex 9\nproperty int a\nend_header\n5 6\n");
        try {
            reader.Init();
            reader.ReadHeader(data);
            const ThrowingLog throwing;
            reader.ReadData(data);
        } catch (const std::exception&) {
        }
    };
    EXPECT_DEATH(readWithThrowingLog("ascii"), "");
    EXPECT_DEATH(readWithThrowingLog("binary_little_endian"), "");
    EXPECT_DEATH(readWithThrowingLog("binary_big_endian"), "");
}

class PLYDeserializerValue : public testing::Test {
protected:
    PLYDeserializerValue() {
        reader.Init();
        reader.cloud->data.resize(64);
    }

    template <typename Value>
    Value parse(std::uint8_t type, const std::string& text) {
        std::istringstream line(text);
        reader.writeOffset = 0;
        EXPECT_TRUE(reader.ParseVertices(type, line));
        EXPECT_EQ(reader.writeOffset, sizeof(Value));
        line.clear();
        rest = line.str().substr(static_cast<std::size_t>(line.tellg()));
        return valueAt<Value>(reader.cloud->data, 0);
    }
    float parseFloat(const std::string& text) { return parse<float>(Field::FLOAT32, text); }
    double parseDouble(const std::string& text) { return parse<double>(Field::FLOAT64, text); }
    int parseInt(const std::string& text) { return parse<int>(Field::INT32, text); }

    PLYDeserializer reader;
    std::string rest;
};

TEST_F(PLYDeserializerValue, NumbersAreTakenByLongestPrefix) {
    EXPECT_EQ(parseFloat("1.5abc"), 1.5F);
    EXPECT_EQ(rest, "abc");
    EXPECT_EQ(parseInt("3.7"), 3);
    EXPECT_EQ(rest, ".7");
    EXPECT_EQ(parseFloat(" \t+5  6"), 5);
    EXPECT_EQ(rest, "6");
    EXPECT_EQ(parseFloat("0x1p3"), 0);
    EXPECT_EQ(rest, "x1p3");
    EXPECT_EQ(parseFloat("1.5.25"), 1.5F);
    EXPECT_EQ(rest, ".25");
    EXPECT_EQ(parseDouble("000012e2"), 1200);
    EXPECT_EQ(parseFloat("1e5e3"), 100000);
    EXPECT_EQ(rest, "e3");
}

TEST_F(PLYDeserializerValue, MalformedNumbersAreZeroAndConsumed) {
    for (const char* text : {"1e", "1e+", "+", "-", ".", "-.", "1.5e-"}) {
        EXPECT_EQ(parseFloat(text), 0) << text;
        EXPECT_EQ(rest, "") << text;
    }
    EXPECT_EQ(parseFloat("e5"), 0);
    EXPECT_EQ(rest, "e5");
    EXPECT_EQ(parseFloat(""), 0);
}

TEST_F(PLYDeserializerValue, OverflowStoresTheNearestValue) {
    EXPECT_EQ(parseFloat("1e39"), std::numeric_limits<float>::max());
    EXPECT_EQ(parseFloat("-3.5e38"), -std::numeric_limits<float>::max());
    EXPECT_EQ(parseDouble("1e400"), std::numeric_limits<double>::max());
    EXPECT_EQ(parseInt("2147483648"), 2147483647);
    EXPECT_EQ(parseInt("-99999999999999999999"), -2147483647 - 1);
    EXPECT_EQ(parse<std::uint16_t>(Field::UINT16, "65536"), 65535);
    EXPECT_EQ(parse<std::int16_t>(Field::INT16, "-32769"), -32768);
    EXPECT_EQ(parse<std::uint32_t>(Field::UINT32, "4294967296"), 4294967295u);
}

TEST_F(PLYDeserializerValue, UnsignedNumbersTakeAMinusSign) {
    EXPECT_EQ(parse<std::uint16_t>(Field::UINT16, "-1"), 65535);
    EXPECT_EQ(parse<std::uint32_t>(Field::UINT32, "-2"), 4294967294u);
    EXPECT_EQ(parse<std::uint16_t>(Field::UINT16, "-65536"), 65535);
}

TEST_F(PLYDeserializerValue, UnderflowGivesTheNearestValue) {
    EXPECT_EQ(parseFloat("1e-46"), 0);
    EXPECT_EQ(parseFloat("1e-45"), std::numeric_limits<float>::denorm_min());
    EXPECT_EQ(parseDouble("1e-999999999999999999999"), 0);
    EXPECT_EQ(parseFloat("0e99999999999999999999"), 0);
    EXPECT_TRUE(std::signbit(parseFloat("-0")));
    EXPECT_TRUE(std::signbit(parseFloat("-1e-50")));
}

TEST_F(PLYDeserializerValue, VeryLongNumbersAreRoundedCorrectly) {
    EXPECT_EQ(parseFloat("0." + std::string(700000, '0') + "1e700001"), 1);
    EXPECT_EQ(parseDouble("1" + std::string(100000, '0') + "e-100000"), 1);
    // A tie between two floats, and just above it.
    EXPECT_EQ(parseFloat("16777217"), 16777216);
    EXPECT_EQ(parseFloat("16777217." + std::string(1000, '0') + "1"), 16777218);
    EXPECT_EQ(parseFloat("16777217.00000000000000000001"), 16777218);
}

TEST_F(PLYDeserializerValue, WordsForMissingAndInfiniteValuesAreRead) {
    for (const char* text : {"nan", "NaN", "NAN", "+nan", "nan(ind)", "nan()", "nan\r", "nan 1"}) {
        EXPECT_TRUE(std::isnan(parseFloat(text))) << text;
        EXPECT_FALSE(std::signbit(parseFloat(text))) << text;
        EXPECT_TRUE(std::isnan(parseDouble(text))) << text;
    }
    for (const char* text : {"-nan", "-NaN", "-nan(ind)", "-nan(0x8)"}) {
        EXPECT_TRUE(std::isnan(parseFloat(text))) << text;
        EXPECT_TRUE(std::signbit(parseFloat(text))) << text;
        EXPECT_TRUE(std::signbit(parseDouble(text))) << text;
    }
    for (const char* text : {"inf", "Inf", "INF", "+inf", "infinity", "Infinity", "inf 3"}) {
        EXPECT_EQ(parseFloat(text), std::numeric_limits<float>::infinity()) << text;
        EXPECT_EQ(parseDouble(text), std::numeric_limits<double>::infinity()) << text;
    }
    EXPECT_EQ(parseFloat("-INF"), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(parseDouble("-infinity"), -std::numeric_limits<double>::infinity());
}

TEST_F(PLYDeserializerValue, OtherWordsAreZero) {
    for (const char* text : {"nanx", "na", "n", "info", "infinit", "nan(", "nan(-)", "nan()1",
                             "--inf", "+-nan", "in f", ".nan", "nan1", "null", "-i"}) {
        EXPECT_EQ(parseFloat(text), 0) << text;
        EXPECT_FALSE(std::signbit(parseFloat(text))) << text;
    }
    EXPECT_EQ(parseInt("nan"), 0);
    EXPECT_EQ(parse<char>(Field::INT8, "nan"), 'n');
}

TEST_F(PLYDeserializerValue, StreamGivesItsValuesOneByOne) {
    std::istringstream line("  12 -3.5 x7 nan  ");
    EXPECT_TRUE(reader.ParseVertices(Field::INT16, line));
    EXPECT_EQ(line.tellg(), 5);
    EXPECT_TRUE(reader.ParseVertices(Field::FLOAT64, line));
    EXPECT_TRUE(reader.ParseVertices(Field::UINT8, line));
    EXPECT_TRUE(reader.ParseVertices(Field::UINT8, line));
    EXPECT_TRUE(line.good());
    EXPECT_TRUE(reader.ParseVertices(Field::FLOAT32, line));
    EXPECT_TRUE(line.eof());
    EXPECT_FALSE(line.fail());
    EXPECT_TRUE(reader.ParseVertices(Field::UINT32, line));
    EXPECT_TRUE(line.fail());
    const auto& data = reader.cloud->data;
    EXPECT_EQ(valueAt<std::int16_t>(data, 0), 12);
    EXPECT_EQ(valueAt<double>(data, 2), -3.5);
    EXPECT_EQ(data[10], 'x');
    EXPECT_EQ(data[11], '7');
    EXPECT_TRUE(std::isnan(valueAt<float>(data, 12)));
    EXPECT_EQ(valueAt<std::uint32_t>(data, 16), 0u);
    EXPECT_EQ(reader.writeOffset, 20u);
}

TEST_F(PLYDeserializerValue, FailedStreamGivesOnlyZeros) {
    std::istringstream line("1e+ 5 6");
    std::fill(reader.cloud->data.begin(), reader.cloud->data.end(), 0xFF);
    EXPECT_TRUE(reader.ParseVertices(Field::FLOAT32, line));
    EXPECT_TRUE(line.fail());
    EXPECT_TRUE(reader.ParseVertices(Field::INT32, line));
    EXPECT_TRUE(reader.ParseVertices(Field::INT8, line));
    EXPECT_EQ(
        std::vector<unsigned char>(reader.cloud->data.begin(), reader.cloud->data.begin() + 10),
        (std::vector<unsigned char>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF}));
}

TEST_F(PLYDeserializerValue, UnknownTypeReadsNothing) {
    std::istringstream line("1 2");
    const CapturedLog log;
    for (const std::uint8_t type : {std::uint8_t{0}, std::uint8_t{9}, std::uint8_t{255}}) {
        EXPECT_FALSE(reader.ParseVertices(type, line));
    }
    EXPECT_EQ(log.messages(),
              std::vector<LogMessage>(3, message(1, "ParseVertices", "Unsupported type\n")));
    EXPECT_EQ(line.tellg(), 0);
    EXPECT_EQ(reader.writeOffset, 0u);
}

TEST_F(PLYDeserializerValue, NothingIsStoredOutsideTheBlock) {
    const std::vector<unsigned char> before(64);
    for (const std::uint32_t offset : {57u, 64u, 65u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        std::istringstream line("1.5");
        reader.writeOffset = offset;
        EXPECT_TRUE(reader.ParseVertices(Field::FLOAT64, line));
        EXPECT_EQ(reader.writeOffset, offset + 8);
        EXPECT_EQ(reader.cloud->data, before);
    }
    std::istringstream line("1.5");
    reader.writeOffset = 56;
    EXPECT_TRUE(reader.ParseVertices(Field::FLOAT64, line));
    EXPECT_EQ(valueAt<double>(reader.cloud->data, 56), 1.5);
}

TEST_F(PLYDeserializerValue, WithoutACloudValuesAreReadAndDropped) {
    PLYDeserializer unready;
    std::istringstream line("1 2");
    EXPECT_TRUE(unready.ParseVertices(Field::INT32, line));
    EXPECT_EQ(line.tellg(), 2);
    EXPECT_EQ(unready.writeOffset, 4u);
}

TEST_F(PLYDeserializerValue, ThrowingLogReachesTheCaller) {
    std::istringstream line("1");
    {
        const ThrowingLog throwing;
        EXPECT_THROW(reader.ParseVertices(9, line), std::runtime_error);
    }
    const auto data = bytesOf("ply\nformat ascii 1.0\nelement vertex 1\nproperty int a\n"
                              "end_header\n5\n");
    reader.Init();
    ASSERT_TRUE(reader.ReadHeader(data));
    reader.cloud->fields[0].datatype = 9;
    const ThrowingLog throwing;
    EXPECT_THROW(reader.ReadData(data), std::runtime_error);
}

} // namespace
