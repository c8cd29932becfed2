// The header reader, step by step.
#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kXyzi = "property float x\nproperty float y\nproperty float z\n"
                          "property float intensity\n";

LogMessage message(int level, const std::string& text) {
    return {level, "converters/PlySerializerDeserializer", "ReadHeader",
            "[PlyDeserializer::ReadHeader] " + text};
}

LogMessage refusal(int line) {
    return message(2, "Error parsing ply, line: " + std::to_string(line) + "\n");
}

LogMessage ignored(int line, const std::string& text) {
    return message(1, "Ignoring line " + std::to_string(line) + " : " + text + "\n");
}

/// Reads one header and keeps what came of it.
class PLYDeserializerHeader : public testing::Test {
protected:
    bool read(const std::string& text) {
        const CapturedLog log;
        reader.Init();
        const bool isAccepted = reader.ReadHeader(bytesOf(text));
        messages = log.messages();
        return isAccepted;
    }

    /// Reads a header of the given lines between "ply" and "end_header".
    bool readLines(const std::string& lines) { return read("ply\n" + lines + "end_header\n"); }

    std::vector<std::string> fieldNames() const {
        std::vector<std::string> names;
        for (const pcl::PCLPointField& field : reader.cloud->fields) {
            names.push_back(field.name);
        }
        return names;
    }

    PLYDeserializer reader;
    std::vector<LogMessage> messages;
};

TEST_F(PLYDeserializerHeader, NewReaderHasItsInitialState) {
    EXPECT_EQ(reader.cloud, nullptr);
    EXPECT_EQ(reader.vertexCount, 0u);
    EXPECT_EQ(reader.writeOffset, 0u);
    EXPECT_EQ(reader.stream.str(), "");
    EXPECT_EQ(reader.lineNumber, 0u);
    EXPECT_FALSE(reader.emptySceneInTeach);
    EXPECT_FALSE(reader.isEmptySceneInTeach());
    EXPECT_EQ(reader.format, PlyFormat::BinaryLittleEndian);
    static_assert(std::is_same_v<decltype(reader.cloud), boost::shared_ptr<pcl::PCLPointCloud2>>);
    static_assert(std::is_same_v<decltype(reader.vertexCount), std::uint64_t>);
    static_assert(std::is_same_v<decltype(reader.writeOffset), std::uint32_t>);
    static_assert(std::is_same_v<decltype(reader.stream), std::istringstream>);
    static_assert(std::is_same_v<decltype(reader.lineNumber), std::uint64_t>);
    static_assert(std::is_same_v<decltype(reader.emptySceneInTeach), bool>);
    static_assert(std::is_same_v<decltype(reader.format), PlyFormat>);
    static_assert(std::is_same_v<std::underlying_type_t<PlyFormat>, std::uint32_t>);
    EXPECT_EQ(static_cast<int>(PlyFormat::Ascii), 0);
    EXPECT_EQ(static_cast<int>(PlyFormat::BinaryBigEndian), 1);
    EXPECT_EQ(static_cast<int>(PlyFormat::BinaryLittleEndian), 2);
}

TEST_F(PLYDeserializerHeader, InitResetsAllButFormatAndEmptyScene) {
    ASSERT_TRUE(readLines("format ascii 1.0\nelement vertex 3\n" + kXyzi));
    const auto previous = reader.cloud;
    reader.emptySceneInTeach = true;
    reader.writeOffset = 7;
    reader.stream.setstate(std::ios::failbit);
    reader.Init();
    EXPECT_NE(reader.cloud, previous);
    EXPECT_EQ(previous.use_count(), 1);
    EXPECT_TRUE(reader.cloud->fields.empty());
    EXPECT_TRUE(reader.cloud->data.empty());
    EXPECT_EQ(reader.cloud->width, 0u);
    EXPECT_EQ(reader.cloud->height, 0u);
    EXPECT_EQ(reader.cloud->point_step, 0u);
    EXPECT_EQ(reader.vertexCount, 0u);
    EXPECT_EQ(reader.writeOffset, 0u);
    EXPECT_EQ(reader.lineNumber, 0u);
    EXPECT_EQ(reader.stream.str(), "");
    EXPECT_TRUE(reader.stream.good());
    EXPECT_TRUE(reader.emptySceneInTeach);
    EXPECT_EQ(reader.format, PlyFormat::Ascii);
}

TEST_F(PLYDeserializerHeader, AcceptedHeaderLeavesAllThatTheBodyNeeds) {
    const std::string header = "ply\nformat ascii 1.0\nelement vertex 2\n" + kXyzi + "end_header\n";
    ASSERT_TRUE(read(header + "1 2 3 4\n5 6 7 8\n"));
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_THAT(fieldNames(), ElementsAre("x", "y", "z", "intensity"));
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(reader.cloud->fields[i].offset, 4 * i);
        EXPECT_EQ(reader.cloud->fields[i].datatype, pcl::PCLPointField::FLOAT32);
        EXPECT_EQ(reader.cloud->fields[i].count, 1u);
    }
    EXPECT_EQ(reader.cloud->point_step, 16u);
    EXPECT_EQ(reader.cloud->row_step, 0u);
    EXPECT_EQ(reader.cloud->is_bigendian, 0);
    EXPECT_EQ(reader.cloud->is_dense, 0);
    EXPECT_EQ(reader.cloud->data, std::vector<unsigned char>(32));
    EXPECT_EQ(reader.vertexCount, 2u);
    EXPECT_EQ(reader.format, PlyFormat::Ascii);
    EXPECT_EQ(reader.lineNumber, 8u);
    EXPECT_TRUE(reader.stream.good());
    EXPECT_EQ(std::size_t(reader.stream.tellg()), header.size());
    EXPECT_EQ(reader.stream.str(), header + "1 2 3 4\n5 6 7 8\n");
}

TEST_F(PLYDeserializerHeader, CarriageReturnsAreWhitespace) {
    const std::string header = "ply\r\nformat ascii 1.0\r\nobj_info num_cols 1\r\n"
                               "obj_info num_rows 3\r\nelement vertex 3\r\nproperty float x\r\n"
                               "end_header\r\n";
    ASSERT_TRUE(read(header));
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_THAT(fieldNames(), ElementsAre("x"));
    EXPECT_EQ(reader.cloud->width, 1u);
    EXPECT_EQ(reader.cloud->height, 3u);
    EXPECT_EQ(reader.lineNumber, 7u);
    EXPECT_EQ(std::size_t(reader.stream.tellg()), header.size());
}

TEST_F(PLYDeserializerHeader, FourthByteOfTheFileIsNotTested) {
    EXPECT_TRUE(read("plyXelement vertex 1\nproperty int a\nend_header\n"));
    EXPECT_EQ(reader.vertexCount, 1u);
    // Behind a carriage return one more byte is skipped, whatever it is.
    EXPECT_TRUE(read("ply\rXelement vertex 1\nproperty int a\nend_header\n"));
    EXPECT_EQ(reader.vertexCount, 1u);
}

TEST_F(PLYDeserializerHeader, OtherFirstLinesAreRefused) {
    for (const char* text : {"PLY\nend_header\n", "pl", "ply", "p", "\n", " ply\nend_header\n"}) {
        EXPECT_FALSE(read(text)) << text;
        EXPECT_THAT(messages, ElementsAre(refusal(1))) << text;
    }
}

TEST_F(PLYDeserializerHeader, LeadingZeroByteIsAnEmptyText) {
    EXPECT_FALSE(read(std::string("\0ply\nend_header\n", 16)));
    EXPECT_THAT(messages, ElementsAre(refusal(1)));
}

TEST_F(PLYDeserializerHeader, EmptyVectorIsALogicError) {
    reader.Init();
    EXPECT_THROW(reader.ReadHeader({}), std::logic_error);
}

TEST_F(PLYDeserializerHeader, IsReadWithoutInitToo) {
    const std::string header = "ply\nelement vertex 2\nproperty short a\nend_header\n";
    EXPECT_TRUE(reader.ReadHeader(bytesOf(header)));
    EXPECT_EQ(reader.vertexCount, 2u);
    EXPECT_EQ(reader.cloud->data.size(), 4u);
    EXPECT_EQ(std::size_t(reader.stream.tellg()), header.size());

    PLYDeserializer unready;
    const CapturedLog log;
    EXPECT_FALSE(unready.ReadHeader(bytesOf("ply\nformat ascii\n")));
    EXPECT_THAT(log.messages(), ElementsAre(refusal(2)));
}

TEST_F(PLYDeserializerHeader, SecondHeaderWithoutInitIsAddedToTheCloud) {
    const auto data = bytesOf("ply\nelement vertex 2\nproperty short a\nend_header\n");
    reader.Init();
    reader.writeOffset = 7;
    EXPECT_TRUE(reader.ReadHeader(data));
    EXPECT_TRUE(reader.ReadHeader(data));
    EXPECT_THAT(fieldNames(), ElementsAre("a", "a"));
    EXPECT_EQ(reader.cloud->fields[1].offset, 2u);
    EXPECT_EQ(reader.cloud->point_step, 4u);
    EXPECT_EQ(reader.lineNumber, 4u);
    EXPECT_EQ(reader.writeOffset, 7u);
}

TEST_F(PLYDeserializerHeader, TextWithoutEndHeaderIsRefusedInSilence) {
    for (const char* text : {"ply\n", "ply\r", "ply\nelement vertex 1\n", "ply\nend_headers"}) {
        EXPECT_FALSE(read(text)) << text;
    }
    EXPECT_FALSE(read(std::string("ply\nelement vertex 1\n\0end_header\n", 32)));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, EndHeaderMayEndTheTextOrBeFollowedByWords) {
    EXPECT_TRUE(read("ply\nelement vertex 1\nproperty int a\nend_header"));
    EXPECT_TRUE(read("ply\nelement vertex 1\nproperty int a\n \tend_header now\n"));
}

TEST_F(PLYDeserializerHeader, BlankAndUnknownLinesAreIgnoredWithAWarning) {
    EXPECT_TRUE(readLines("\n \t \ncomment made by hand\nFormat ascii 1.0\nelement vertex 1\n"));
    EXPECT_THAT(messages,
                ElementsAre(ignored(2, ""), ignored(3, " \t "), ignored(4, "comment made by hand"),
                            ignored(5, "Format ascii 1.0")));
    EXPECT_EQ(reader.lineNumber, 7u);
}

TEST_F(PLYDeserializerHeader, FormatWords) {
    EXPECT_TRUE(readLines("format ascii 1.0\n"));
    EXPECT_EQ(reader.format, PlyFormat::Ascii);
    EXPECT_TRUE(readLines("format binary_big_endian 1.0\n"));
    EXPECT_EQ(reader.format, PlyFormat::BinaryBigEndian);
    EXPECT_TRUE(readLines("\tformat \t binary_little_endian\v1.0 \r\n"));
    EXPECT_EQ(reader.format, PlyFormat::BinaryLittleEndian);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, MalformedFormatLinesAreRefused) {
    for (const char* line : {"format ascii 1.0 extra\n", "format\n", "format \n", "format ascii\n",
                             "format ASCII 1.0\n", "format binary 1.0\n"}) {
        EXPECT_FALSE(readLines(line)) << line;
        EXPECT_THAT(messages, ElementsAre(refusal(2))) << line;
    }
}

TEST_F(PLYDeserializerHeader, OtherVersionsAreRefused) {
    for (const std::string version : {"1.1", "1", "1.00", "2.0"}) {
        EXPECT_FALSE(readLines("format ascii " + version + "\n"));
        EXPECT_THAT(messages, ElementsAre(message(2, "Error parsing ply, line: 2 version " +
                                                         version + " is not supported\n")));
    }
    EXPECT_FALSE(readLines("format ascii \n"));
    EXPECT_THAT(messages,
                ElementsAre(message(2, "Error parsing ply, line: 2 version  is not supported\n")));
}

TEST_F(PLYDeserializerHeader, SecondFormatLineIsRefusedAfterItTookEffect) {
    EXPECT_FALSE(readLines("format binary_little_endian 1.0\nformat ascii 1.0\n"));
    EXPECT_THAT(messages, ElementsAre(refusal(3)));
    EXPECT_EQ(reader.format, PlyFormat::Ascii);
}

TEST_F(PLYDeserializerHeader, FormatLineIsNotRequired) {
    reader.format = PlyFormat::Ascii;
    EXPECT_TRUE(readLines("element vertex 1\n"));
    EXPECT_EQ(reader.format, PlyFormat::Ascii);
}

TEST_F(PLYDeserializerHeader, ObjInfoGivesWidthAndHeight) {
    EXPECT_TRUE(readLines("obj_info num_cols 4\nobj_info num_rows 3\nelement vertex 12\n" + kXyzi));
    EXPECT_EQ(reader.cloud->width, 4u);
    EXPECT_EQ(reader.cloud->height, 3u);
    EXPECT_FALSE(
        readLines("obj_info num_cols 4\nobj_info num_rows 3\nelement vertex 10\n" + kXyzi));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, OneObjInfoValueAloneIsOverridden) {
    for (const char* line : {"obj_info num_cols 4\n", "obj_info num_rows 4\n",
                             "obj_info num_cols 0\nobj_info num_rows 4\n", ""}) {
        EXPECT_TRUE(readLines(line + ("element vertex 10\n" + kXyzi)));
        EXPECT_EQ(reader.cloud->width, 10u);
        EXPECT_EQ(reader.cloud->height, 1u);
        EXPECT_EQ(reader.cloud->data.size(), 160u);
    }
}

TEST_F(PLYDeserializerHeader, ObjInfoValuesAreReadLeniently) {
    EXPECT_TRUE(readLines("obj_info num_cols +4x junk\nobj_info num_rows 3.9\n"
                          "obj_info author nobody\nobj_info\nobj_info \nelement vertex 12\n" +
                          kXyzi));
    EXPECT_EQ(reader.cloud->width, 4u);
    EXPECT_EQ(reader.cloud->height, 3u);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, NegativeObjInfoValueIsStoredAsItsBitPattern) {
    EXPECT_FALSE(
        readLines("obj_info num_cols -1\nobj_info num_rows 1\nelement vertex 1\n" + kXyzi));
    EXPECT_EQ(reader.cloud->width, 4294967295u);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, ObjInfoValueThatIsNoIntegerThrows) {
    for (const char* line :
         {"obj_info num_cols many\n", "obj_info num_rows\n", "obj_info num_rows -\n"}) {
        try {
            readLines(line);
            ADD_FAILURE() << line;
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "stoi");
        }
    }
    for (const char* line : {"obj_info num_cols 2147483648\n", "obj_info num_rows -2147483649\n",
                             "obj_info num_rows 99999999999999999999\n"}) {
        try {
            readLines(line);
            ADD_FAILURE() << line;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "stoi");
        }
    }
}

TEST_F(PLYDeserializerHeader, MalformedElementLinesAreRefused) {
    for (const char* line :
         {"element vertex 2 extra\n", "element\n", "element vertex\n", "element vertex 2x\n",
          "element vertex x\n", "element vertex 2.0\n", "element vertex 0x10\n",
          "element vertex 99999999999999999999 \n", "element face 3 4\n"}) {
        EXPECT_FALSE(readLines(line)) << line;
        EXPECT_THAT(messages, ElementsAre(refusal(2))) << line;
    }
}

TEST_F(PLYDeserializerHeader, CountIsTakenAsAnUnsigned64BitNumber) {
    EXPECT_TRUE(readLines("element vertex +5 \t\n"));
    EXPECT_EQ(reader.vertexCount, 5u);
    EXPECT_TRUE(readLines("element vertex \n"));
    EXPECT_EQ(reader.vertexCount, 0u);
    EXPECT_FALSE(readLines("element vertex -5\n"));
    EXPECT_EQ(reader.vertexCount, UINT64_MAX - 4);
    EXPECT_FALSE(readLines("element vertex 18446744073709551615\n"));
    EXPECT_EQ(reader.vertexCount, UINT64_MAX);
    EXPECT_FALSE(readLines("element vertex 99999999999999999999\n"));
    EXPECT_EQ(reader.vertexCount, UINT64_MAX);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, OtherElementsAreRefusedByName) {
    EXPECT_FALSE(readLines("element vertex 1\n" + kXyzi + "element face 0\n"));
    EXPECT_THAT(messages, ElementsAre(message(2, "Error parsing ply, line: 7 element type 'face' "
                                                 "not supported\n")));
    EXPECT_FALSE(readLines("element Vertex 1\n"));
    EXPECT_THAT(messages, ElementsAre(message(2, "Error parsing ply, line: 2 element type 'Vertex' "
                                                 "not supported\n")));
}

TEST_F(PLYDeserializerHeader, SecondVertexElementIsRefused) {
    EXPECT_FALSE(readLines("element vertex 1\nelement vertex 1\n"));
    EXPECT_THAT(
        messages,
        ElementsAre(message(2, "Error parsing ply, line: 3 Only one set of vertices supported\n")));
    EXPECT_EQ(reader.vertexCount, 1u);
}

TEST_F(PLYDeserializerHeader, PropertyBeforeTheVertexElementIsRefused) {
    EXPECT_FALSE(readLines("format ascii 1.0\nproperty float x\nelement vertex 1\n"));
    EXPECT_THAT(messages, ElementsAre(refusal(3)));
}

TEST_F(PLYDeserializerHeader, MalformedPropertyLinesAreRefused) {
    for (const char* line :
         {"property\n", "property float\n", "property mystery\n", "property \n"}) {
        EXPECT_FALSE(readLines(std::string("element vertex 1\n") + line)) << line;
        EXPECT_THAT(messages, ElementsAre(refusal(3))) << line;
    }
}

TEST_F(PLYDeserializerHeader, ListPropertiesAreRefused) {
    for (const char* line : {"property list uchar int a\n", "property list\n"}) {
        EXPECT_FALSE(readLines(std::string("element vertex 1\n") + line));
        EXPECT_THAT(messages, ElementsAre(message(2, "Error parsing ply, line: 3 List not "
                                                     "supported\n")));
    }
}

TEST_F(PLYDeserializerHeader, TextBehindAPropertyNameIsNotExamined) {
    EXPECT_TRUE(readLines("element vertex 1\nproperty float x extra\nproperty float \n"));
    EXPECT_THAT(fieldNames(), ElementsAre("x", ""));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, EveryTypeNameGivesItsDatatypeWithoutAlignment) {
    using Field = pcl::PCLPointField;
    const struct {
        const char* name;
        std::uint8_t datatype;
        std::uint32_t size;
    } types[] = {
        {"char", Field::INT8, 1},      {"int8", Field::INT8, 1},
        {"uchar", Field::UINT8, 1},    {"uint8", Field::UINT8, 1},
        {"short", Field::INT16, 2},    {"int16", Field::INT16, 2},
        {"ushort", Field::UINT16, 2},  {"uint16", Field::UINT16, 2},
        {"int", Field::INT32, 4},      {"int32", Field::INT32, 4},
        {"uint", Field::UINT32, 4},    {"uint32", Field::UINT32, 4},
        {"float", Field::FLOAT32, 4},  {"float32", Field::FLOAT32, 4},
        {"double", Field::FLOAT64, 8}, {"double64", Field::FLOAT64, 8},
    };
    std::string lines = "element vertex 3\n";
    for (const auto& type : types) {
        lines += std::string("property ") + type.name + " p_" + type.name + "\n";
    }
    ASSERT_TRUE(readLines(lines));
    ASSERT_EQ(reader.cloud->fields.size(), std::size(types));
    std::uint32_t offset = 0;
    for (std::size_t i = 0; i < std::size(types); ++i) {
        const Field& field = reader.cloud->fields[i];
        EXPECT_EQ(field.name, std::string("p_") + types[i].name);
        EXPECT_EQ(field.datatype, types[i].datatype);
        EXPECT_EQ(field.offset, offset);
        EXPECT_EQ(field.count, 1u);
        offset += types[i].size;
    }
    EXPECT_EQ(reader.cloud->point_step, offset);
    EXPECT_EQ(reader.cloud->data.size(), 3 * offset);
}

TEST_F(PLYDeserializerHeader, UnknownTypesAreSkippedInSilence) {
    EXPECT_TRUE(readLines("element vertex 1\nproperty float64 x\nproperty Float y\n"
                          "property real z\nproperty double64 d\n"));
    EXPECT_THAT(fieldNames(), ElementsAre("d"));
    EXPECT_EQ(reader.cloud->fields[0].offset, 0u);
    EXPECT_EQ(reader.cloud->point_step, 8u);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(PLYDeserializerHeader, HeaderWithoutPropertiesIsAcceptedWithAnySize) {
    EXPECT_TRUE(readLines("obj_info num_cols 2\nobj_info num_rows 2\nelement vertex 9\n"));
    EXPECT_TRUE(reader.cloud->data.empty());
}

TEST_F(PLYDeserializerHeader, HostileCountsAreRefusedInSilenceWithoutAllocation) {
    for (const char* count : {"2147483648", "4000000000", "4294967295", "4294967296", "4294967297",
                              "1152921504606846976", "2305843009213693952", "9223372036854775808",
                              "18446744073709551615", "-1", "-2147483648"}) {
        for (const std::string& properties :
             {kXyzi, std::string("property char a\n"), std::string()}) {
            EXPECT_FALSE(readLines(std::string("element vertex ") + count + "\n" + properties))
                << count;
            EXPECT_THAT(messages, IsEmpty());
            EXPECT_EQ(reader.cloud->data.capacity(), 0u);
        }
    }
}

TEST_F(PLYDeserializerHeader, HostileSizesWithoutPropertiesAreRefused) {
    EXPECT_FALSE(readLines("obj_info num_cols 65536\nobj_info num_rows 65536\nelement vertex 1\n"));
    EXPECT_FALSE(readLines("obj_info num_cols -1\nobj_info num_rows -1\nelement vertex 1\n"));
}

TEST_F(PLYDeserializerHeader, ProductsThatWrapDoNotAgree) {
    // 2^31 * 2^31 points of 4 bytes are 0 bytes modulo 2^64.
    EXPECT_FALSE(readLines("obj_info num_cols -2147483648\nobj_info num_rows -2147483648\n"
                           "element vertex 4611686018427387904\nproperty float x\n"));
    EXPECT_EQ(reader.cloud->data.capacity(), 0u);
}

TEST_F(PLYDeserializerHeader, MemoryLimitFollowsTheSizeOfTheInput) {
    // A record of 16 bytes and a point of 32: 64 MiB and 64 bytes for each byte of the file.
    const auto fileOf = [](std::uint64_t vertices, std::size_t size) {
        std::string text = "ply\nformat ascii 1.0\nelement vertex " + std::to_string(vertices) +
                           "\n" + kXyzi + "end_header\n";
        text.resize(size, '\n');
        return text;
    };
    for (const std::size_t size : {200u, 100000u}) {
        const std::uint64_t most = ((64u << 20) + 64 * size) / 48;
        EXPECT_TRUE(read(fileOf(most, size)));
        EXPECT_FALSE(read(fileOf(most + 1, size)));
        EXPECT_THAT(messages, IsEmpty());
    }
}

TEST_F(PLYDeserializerHeader, ThrowingLogIsFatal) {
    for (const char* text : {"PLY\n", "ply\ncomment\n", "ply\nformat\n", "ply\nformat ascii 2.0\n",
                             "ply\nelement face 1\n", "ply\nelement vertex 1\nelement vertex 1\n",
                             "ply\nelement vertex 1\nproperty list\n"}) {
        const auto readWithThrowingLog = [&] {
            const ThrowingLog throwing;
            try {
                reader.Init();
                reader.ReadHeader(bytesOf(text));
            } catch (const std::exception&) {
            }
        };
        EXPECT_DEATH(readWithThrowingLog(), "") << text;
    }
}

} // namespace
