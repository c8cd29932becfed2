// Why the reader refuses a file: as a value, beside what the log says.
#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

const std::string start = "ply\nformat ascii 1.0\n";
const std::string point = "element vertex 1\nproperty float x\n";

struct Case {
    std::string file;
    std::string reason;
    std::uint64_t line;
    /// Behind "Error parsing ply, "; empty when the log does not tell the reason.
    std::string message;
};

const std::vector<Case> cases = {
    {"", "the file is empty", 0, ""},
    {"plx\n" + point, "the file does not begin with \"ply\"", 1, "line: 1"},
    {"ply\nformat ascii\n" + point, "\"format\" is not followed by a format and a version alone", 2,
     "line: 2"},
    {"ply\nformat text 1.0\n" + point, "format 'text' is unknown", 2, "line: 2"},
    {"ply\nformat ascii 2.0\n" + point, "version 2.0 is not supported", 2,
     "line: 2 version 2.0 is not supported"},
    {start + "comment\nformat ascii 1.0\n" + point, "there is a second format line", 4, "line: 4"},
    {start + point + "element vertex\n", "\"element\" is not followed by a name and a count alone",
     5, "line: 5"},
    {start + point + "element face 0\n", "element type 'face' not supported", 5,
     "line: 5 element type 'face' not supported"},
    {start + point + "element vertex 2\n", "Only one set of vertices supported", 5,
     "line: 5 Only one set of vertices supported"},
    {start + "property float x\n" + point, "there is a property before any element", 3, "line: 3"},
    {start + point + "property list uchar int i\n", "List not supported", 5,
     "line: 5 List not supported"},
    {start + point + "property float\n", "\"property\" is not followed by a type and a name", 5,
     "line: 5"},
    {start + point, "the header has no end_header line", 0, ""},
    {start + "obj_info num_cols 2\nobj_info num_rows 2\n" + point + "end_header\n1\n",
     "num_cols times num_rows is not the number of vertices", 0, ""},
    {start + "element vertex 99999999999\nproperty float x\nend_header\n",
     "the header declares more points than a file of this size can hold", 0, ""},
    {start + point + "end_header\n", "the file ends before its last vertex", 5, "line: 5"},
    {"ply\nformat binary_little_endian 1.0\n" + point + "end_header\n123",
     "Binary Data doesn't match expected size", 0, "Binary Data doesn't match expected size"},
    {"ply\nformat binary_big_endian 1.0\n" + point + "end_header\n1234",
     "Binary Big Endian not implemented", 0, "Binary Big Endian not implemented"},
};

/// What the log says of the reasons, without the name of the step.
std::vector<std::string> reasonsIn(const CapturedLog& log) {
    const std::string mark = "Error parsing ply, ";
    std::vector<std::string> reasons;
    for (const LogMessage& message : log.messages()) {
        if (const std::size_t found = message.text.find(mark); found != std::string::npos) {
            reasons.push_back(message.text.substr(found + mark.size()));
        }
    }
    return reasons;
}

TEST(PlyRefusal, TellsReasonAndLineWhateverTheLogSays) {
    for (const Case& each : cases) {
        PLYDeserializer reader;
        pcl::PointCloud<pcl::PointXYZI> cloud;
        const CapturedLog log;
        EXPECT_FALSE(reader.DeserializePlyT(bytesOf(each.file), cloud)) << each.file;
        EXPECT_EQ(reader.refusal().reason, each.reason) << each.file;
        EXPECT_EQ(reader.refusal().line, each.line) << each.file;
        const std::vector<std::string> expected =
            each.message.empty() ? std::vector<std::string>()
                                 : std::vector<std::string>{each.message + "\n"};
        EXPECT_EQ(reasonsIn(log), expected) << each.file;
    }
}

TEST(PlyRefusal, KeepsTheErrorsOfTheLogInTheirOrder) {
    for (const Case& each : cases) {
        PLYDeserializer reader;
        pcl::PointCloud<pcl::PointXYZI> cloud;
        const CapturedLog log;
        EXPECT_FALSE(reader.DeserializePlyT(bytesOf(each.file), cloud)) << each.file;
        std::vector<std::string> errors;
        for (const LogMessage& message : log.messages()) {
            if (message.level == 2) {
                errors.push_back(message.text);
            }
        }
        ASSERT_FALSE(errors.empty()) << each.file;
        ASSERT_EQ(reader.refusal().messages.size(), errors.size()) << each.file;
        for (std::size_t i = 0; i < errors.size(); ++i) {
            EXPECT_EQ(reader.refusal().messages[i] + "\n", errors[i]) << each.file;
        }
    }
}

TEST(PlyRefusal, IsTheSameStepByStep) {
    for (const Case& each : cases) {
        if (each.file.empty()) {
            continue;
        }
        PLYDeserializer reader;
        reader.Init();
        const CapturedLog log;
        EXPECT_FALSE(reader.ReadHeader(bytesOf(each.file)) && reader.ReadData(bytesOf(each.file)))
            << each.file;
        EXPECT_EQ(reader.refusal().reason, each.reason) << each.file;
        EXPECT_EQ(reader.refusal().line, each.line) << each.file;
    }
}

TEST(PlyRefusal, IsEmptyBeforeTheFirstReadAndAfterOneThatSucceeds) {
    PLYDeserializer reader;
    pcl::PointCloud<pcl::PointXYZI> cloud;
    EXPECT_EQ(reader.refusal().reason, "");
    for (const std::string& accepted : {start + point + "end_header\n1\n", std::string("ply\n")}) {
        const CapturedLog log;
        EXPECT_FALSE(
            reader.DeserializePlyT(bytesOf("ply\nelement vertex 1\nelement face 1\n"), cloud));
        EXPECT_EQ(reader.refusal().line, 3U);
        EXPECT_TRUE(reader.DeserializePlyT(bytesOf(accepted), cloud));
        EXPECT_EQ(reader.refusal().reason, "");
        EXPECT_EQ(reader.refusal().line, 0U);
        EXPECT_TRUE(reader.refusal().messages.empty());
    }
}

TEST(PlyRefusal, IsEmptyWhereAnExceptionTells) {
    PLYDeserializer reader;
    pcl::PointCloud<pcl::PointXYZI> cloud;
    const CapturedLog log;
    EXPECT_FALSE(reader.DeserializePlyT(bytesOf(""), cloud));
    EXPECT_THROW(reader.DeserializePlyT(bytesOf(start + "obj_info num_cols x\n" + point), cloud),
                 std::invalid_argument);
    EXPECT_EQ(reader.refusal().reason, "");
    EXPECT_TRUE(reader.refusal().messages.empty());
}

} // namespace
