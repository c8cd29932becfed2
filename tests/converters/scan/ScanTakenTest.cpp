// What a scan may look like: every valid file gives every point.
#include "tests/support/ScanFiles.h"

#include <cmath>

namespace {

using converters::ScanPropertyUse;
using converters::ScanReport;

const std::vector<std::vector<float>> twoPoints = {{1, 2, 3, 0}, {4, 5, 6, 0}};

std::string header(const std::string& format, const std::string& rest) {
    return "ply\nformat " + format + " 1.0\n" + rest + "end_header\n";
}

const std::string floatVertices =
    "element vertex 2\nproperty float x\nproperty float y\nproperty float z\n";

template <typename Value>
std::string bytes(std::initializer_list<Value> values, bool isSwapped = false) {
    std::string text;
    for (const Value value : values) {
        std::string one;
        appendBytes(one, value);
        if (isSwapped) {
            std::reverse(one.begin(), one.end());
        }
        text += one;
    }
    return text;
}

TEST(ScanTaken, Ascii) {
    expectPoints(asciiScan("1 2 3\n4 5 6\n", "2"), twoPoints);
}

TEST(ScanTaken, BinaryOfBothByteOrders) {
    expectPoints(header("binary_little_endian", floatVertices) + bytes<float>({1, 2, 3, 4, 5, 6}),
                 twoPoints);
    expectPoints(header("binary_big_endian", floatVertices) +
                     bytes<float>({1, 2, 3, 4, 5, 6}, true),
                 twoPoints);
}

template <typename Value>
void expectType(const std::string& name) {
    SCOPED_TRACE(name);
    const std::string vertices = "element vertex 2\nproperty " + name + " x\nproperty " + name +
                                 " y\nproperty " + name + " z\nproperty " + name + " intensity\n";
    const std::vector<std::vector<float>> points = {{1, 2, 3, 100}, {4, 5, 6, 127}};
    expectPoints(header("ascii", vertices) + "1 2 3 100\n4 5 6 127\n", points);
    for (const bool isBig : {false, true}) {
        expectPoints(header(isBig ? "binary_big_endian" : "binary_little_endian", vertices) +
                         bytes<Value>({1, 2, 3, 100, 4, 5, 6, 127}, isBig),
                     points);
    }
}

TEST(ScanTaken, EveryTypeByEveryName) {
    expectType<std::int8_t>("char");
    expectType<std::int8_t>("int8");
    expectType<std::uint8_t>("uchar");
    expectType<std::uint8_t>("uint8");
    expectType<std::uint8_t>("bool");
    expectType<std::int16_t>("short");
    expectType<std::int16_t>("int16");
    expectType<std::uint16_t>("ushort");
    expectType<std::uint16_t>("uint16");
    expectType<std::int32_t>("int");
    expectType<std::int32_t>("int32");
    expectType<std::uint32_t>("uint");
    expectType<std::uint32_t>("uint32");
    expectType<std::int64_t>("int64");
    expectType<std::uint64_t>("uint64");
    expectType<float>("float");
    expectType<float>("float32");
    expectType<double>("double");
    expectType<double>("float64");
    expectType<double>("double64");
}

TEST(ScanTaken, TheLimitsOfEachType) {
    const auto first = [](const std::string& type, const std::string& value) {
        const ReadScan scan =
            readEveryWay(header("ascii", "element vertex 1\nproperty " + type +
                                             " x\nproperty float y\nproperty float z\n") +
                         value + " 0 0\n");
        EXPECT_TRUE(scan.result) << scan.result.reason;
        return scan.cloud.at(0).x;
    };
    EXPECT_EQ(first("char", "-128"), -128);
    EXPECT_EQ(first("uchar", "255"), 255);
    EXPECT_EQ(first("short", "-32768"), -32768);
    EXPECT_EQ(first("ushort", "65535"), 65535);
    EXPECT_EQ(first("int", "-2147483648"), -2147483648.0F);
    EXPECT_EQ(first("uint", "4294967295"), 4294967296.0F);
    EXPECT_EQ(first("int64", "-9223372036854775808"), -9223372036854775808.0F);
    EXPECT_EQ(first("uint64", "18446744073709551615"), 18446744073709551616.0F);
    EXPECT_EQ(first("float", "3.40282347e38"), 3.40282347e38F);
    EXPECT_EQ(first("float", "1e-46"), 0);
}

TEST(ScanTaken, ListsAnywhere) {
    const std::string vertices = "element vertex 2\nproperty list uchar int a\nproperty float x\n"
                                 "property list ushort double b\nproperty float y\n"
                                 "property float z\nproperty list int uchar c\n";
    expectPoints(header("ascii", vertices) + "2 7 8 1 0 2 3 1 9\n0 4 3 1.5 2.5 3.5 5 6 0\n",
                 twoPoints);
    for (const bool isBig : {false, true}) {
        const std::string body = bytes<std::uint8_t>({2}) + bytes<std::int32_t>({7, 8}, isBig) +
                                 bytes<float>({1}, isBig) + bytes<std::uint16_t>({0}, isBig) +
                                 bytes<float>({2, 3}, isBig) + bytes<std::int32_t>({1}, isBig) +
                                 bytes<std::uint8_t>({9}) + bytes<std::uint8_t>({0}) +
                                 bytes<float>({4}, isBig) + bytes<std::uint16_t>({3}, isBig) +
                                 bytes<double>({1.5, 2.5, 3.5}, isBig) +
                                 bytes<float>({5, 6}, isBig) + bytes<std::int32_t>({0}, isBig);
        expectPoints(header(isBig ? "binary_big_endian" : "binary_little_endian", vertices) + body,
                     twoPoints);
    }
}

TEST(ScanTaken, ListsCountedByAnyType) {
    const auto expectCounted = [](const std::string& type, const std::string& count) {
        SCOPED_TRACE(type);
        const std::string elements =
            "element face 1\nproperty list " + type + " uchar vertex_index\n" + floatVertices;
        expectPoints(header("binary_little_endian", elements) + count + "abc" +
                         bytes<float>({1, 2, 3, 4, 5, 6}),
                     twoPoints);
        expectPoints(header("ascii", elements) + "3 1 2 3\n1 2 3\n4 5 6\n", twoPoints);
    };
    expectCounted("char", bytes<std::int8_t>({3}));
    expectCounted("short", bytes<std::int16_t>({3}));
    expectCounted("ushort", bytes<std::uint16_t>({3}));
    expectCounted("int", bytes<std::int32_t>({3}));
    expectCounted("uint", bytes<std::uint32_t>({3}));
    expectCounted("int64", bytes<std::int64_t>({3}));
    expectCounted("float", bytes<float>({3}));
    expectCounted("double", bytes<double>({3}));
}

TEST(ScanTaken, ElementsBeforeAndBehindTheVertices) {
    const std::string elements = "element camera 1\nproperty float view_px\nproperty int id\n"
                                 "element empty 0\nproperty list uchar int no\n"
                                 "element nothing 5\n" +
                                 floatVertices +
                                 "element face 3\nproperty list uchar int vertex_indices\n"
                                 "property uchar flag\nelement edge 1\nproperty int vertex1\n";
    expectPoints(header("ascii", elements) +
                     "0.5 7\n1 2 3\n4 5 6\n3 0 1 2 9\n4 0 1 2 3 9\n0 9\n12\n",
                 twoPoints);
    const std::string body =
        bytes<float>({0.5F}) + bytes<std::int32_t>({7}) + bytes<float>({1, 2, 3, 4, 5, 6}) +
        bytes<std::uint8_t>({3}) + bytes<std::int32_t>({0, 1, 2}) + "f" + bytes<std::uint8_t>({1}) +
        bytes<std::int32_t>({0}) + "f" + bytes<std::uint8_t>({0}) + "f" + bytes<std::int32_t>({12});
    const ReadScan scan = expectPoints(header("binary_little_endian", elements) + body, twoPoints);
    const ScanReport& report = scan.result.report;
    ASSERT_EQ(report.elements.size(), 6u);
    EXPECT_EQ(report.vertexElement, 3u);
    EXPECT_EQ(report.elements[4].name, "face");
    EXPECT_EQ(report.elements[4].count, 3u);
    EXPECT_TRUE(report.notes.empty());
}

TEST(ScanTaken, ManyFacesOfOneSizeAndOfOthers) {
    std::string file = header("binary_little_endian",
                              "element face 1000\nproperty uchar red\n"
                              "property list uchar int vertex_indices\nproperty float area\n" +
                                  floatVertices);
    for (int i = 0; i < 1000; ++i) {
        const std::uint8_t corners = i > 500 && i % 7 == 0 ? 5 : 3;
        file += 'r' + bytes<std::uint8_t>({corners}) + std::string(4 * corners + 4u, 'x');
    }
    expectPoints(file + bytes<float>({1, 2, 3, 4, 5, 6}), twoPoints);
}

TEST(ScanTaken, CoordinatesInCapitals) {
    expectPoints(header("ascii", "element vertex 1\nproperty float Z\nproperty float y\n"
                                 "property float X\n") +
                     "3 2 1\n",
                 {{1, 2, 3, 0}});
}

TEST(ScanTaken, SmallCoordinatesGoBeforeCapitals) {
    expectPoints(header("ascii", "element vertex 1\nproperty float X\nproperty float x\n"
                                 "property float y\nproperty float z\n") +
                     "9 1 2 3\n",
                 {{1, 2, 3, 0}});
}

TEST(ScanTaken, IntensityByItsUsualNames) {
    for (const char* name :
         {"intensity", "Intensity", "INTENSITY", "scalar_Intensity", "scalar_intensity",
          "reflectance", "Reflectance", "remission", "scalar_Reflectance"}) {
        SCOPED_TRACE(name);
        const ReadScan scan = expectPoints(
            asciiScan("1 2 3 200\n", "1", std::string("property uchar ") + name + "\n"),
            {{1, 2, 3, 200}});
        EXPECT_TRUE(scan.result.report.hasIntensity);
        EXPECT_EQ(scan.result.report.elements[0].properties[3].use, ScanPropertyUse::intensity);
    }
}

TEST(ScanTaken, TheMoreUsualNameIsTheIntensity) {
    expectPoints(asciiScan("1 2 3 4 5\n", "1",
                           "property float reflectance\nproperty float scalar_Intensity\n"),
                 {{1, 2, 3, 5}});
}

TEST(ScanTaken, HeadersWithBlanksAndTabs) {
    expectPoints("ply \n \tformat\t ascii   1.0 \n\n comment\n\tcomment  made  by hand\n"
                 "  element\tvertex  2\t\n\tproperty   float x\n property float\ty\n"
                 "property float z  \n obj_info\n end_header \n1 2 3\n4 5 6\n",
                 twoPoints);
}

TEST(ScanTaken, CommentsAndObjectInformationAnywhere) {
    const ReadScan scan =
        expectPoints("ply\ncomment before the format\nobj_info a b\nformat ascii 1.0\n"
                     "element vertex 2\ncomment  between \nproperty float x\nproperty float y\n"
                     "obj_info\nproperty float z\ncomment\nend_header\n1 2 3\n4 5 6\n",
                     twoPoints);
    EXPECT_EQ(scan.result.report.comments,
              (std::vector<std::string>{"before the format", "between", ""}));
    EXPECT_EQ(scan.result.report.objInfo, (std::vector<std::string>{"a b", ""}));
}

std::string withLineEnds(std::string text, const std::string& end) {
    for (std::size_t place = 0; (place = text.find('\n', place)) != std::string::npos;
         place += end.size()) {
        text.replace(place, 1, end);
    }
    return text;
}

TEST(ScanTaken, EveryLineEnd) {
    const std::string ascii = asciiScan("1 2 3\n4 5 6\n", "2");
    const std::string binaryHeader = header("binary_little_endian", floatVertices);
    for (const char* end : {"\n", "\r\n", "\r"}) {
        SCOPED_TRACE(end);
        expectPoints(withLineEnds(ascii, end), twoPoints);
        expectPoints(withLineEnds(binaryHeader, end) + bytes<float>({1, 2, 3, 4, 5, 6}), twoPoints);
    }
}

TEST(ScanTaken, ABinaryBodyThatBeginsLikeALineEnd) {
    const std::string vertices =
        "element vertex 1\nproperty uchar x\nproperty uchar y\nproperty uchar z\n";
    const std::string binary = header("binary_little_endian", vertices);
    expectPoints(binary + "\n\r\n", {{10, 13, 10, 0}});
    expectPoints(withLineEnds(binary, "\r\n") + "\n\r\n", {{10, 13, 10, 0}});
    expectPoints(withLineEnds(binary, "\r") + "\n\r\n", {{10, 13, 10, 0}});
}

TEST(ScanTaken, RecordsOverSeveralLines) {
    expectPoints(asciiScan("1\n2\n3\n\n4 5\n6\n", "2"), twoPoints);
}

TEST(ScanTaken, SeveralRecordsInALine) {
    expectPoints(asciiScan("1 2 3 4 5 6", "2"), twoPoints);
}

TEST(ScanTaken, LinesOfAnyNumberOfValues) {
    const std::vector<std::vector<float>> points = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0},
                                                    {1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}};
    const std::string numbers = "1 2 3 4 5 6 7 8 9 1 2 3 4 5 6 7 8 9 ";
    const std::string face = "element face 1\nproperty list uchar int vertex_indices\n";
    for (std::size_t values = 1; values < 18; ++values) {
        std::string body = numbers + "3 0 1 2\n";
        for (std::size_t place = 2 * values - 1; place < numbers.size(); place += 2 * values) {
            body[place] = '\n';
        }
        expectPoints(asciiScan(body, "6", face), points);
    }
    // Not all in one way.
    expectPoints(asciiScan("1 2 3\n4 5 6\n7\n8 9\n1 2 3\n4 5 6 7 8 9\n3 0 1 2\n", "6", face),
                 points);
}

TEST(ScanTaken, BlankLinesTabsAndNoLastLineEnd) {
    expectPoints(asciiScan("\n  1\t2 \t3  \n\n\n\t4 5 6", "2"), twoPoints);
}

TEST(ScanTaken, NumbersHoweverTheyAreSpelled) {
    expectPoints(asciiScan("+1.0 1.5E+01 .5\n1. -0.0 1e-3\n00012 1e2 0.30000000000000004\n", "3"),
                 {{1, 15, 0.5F, 0}, {1, -0.0F, 0.001F, 0}, {12, 100, 0.3F, 0}});
}

TEST(ScanTaken, WholeNumbersSpelledWithAPoint) {
    expectPoints(asciiScan("1 2 3 255.0\n4 5 6 1.5e1\n", "2", "property uchar intensity\n"),
                 {{1, 2, 3, 255}, {4, 5, 6, 15}});
}

TEST(ScanTaken, NumbersOfManyDigits) {
    const std::string zeros(5000, '0');
    expectPoints(asciiScan("1." + zeros + " " + zeros + "2 0.3e1\n", "1"), {{1, 2, 3, 0}});
}

TEST(ScanTaken, MissingPointsByEveryName) {
    for (const char* name : {"nan", "NaN", "-nan", "nan(ind)", "-nan(ind)", "-1.#IND", "1.#QNAN",
                             "1.#QNAN0", "-1.#IND00", "1.#SNAN"}) {
        SCOPED_TRACE(name);
        const ReadScan scan = readEveryWay(asciiScan(std::string(name) + " 2 3\n4 5 6\n", "2"));
        ASSERT_TRUE(scan.result) << scan.result.reason;
        EXPECT_TRUE(std::isnan(scan.cloud[0].x));
        EXPECT_FALSE(scan.cloud.is_dense);
        EXPECT_EQ(scan.result.report.pointsWithoutPlace, 1u);
    }
    for (const char* name : {"inf", "Infinity", "1.#INF", "1.#INF00", "+inf"}) {
        SCOPED_TRACE(name);
        const ReadScan scan =
            expectPoints(asciiScan("1 2 " + std::string(name) + "\n", "1"), {{1, 2, INFINITY, 0}});
        EXPECT_EQ(scan.result.report.pointsWithoutPlace, 1u);
    }
    expectPoints(asciiScan("1 2 -1.#INF\n", "1"), {{1, 2, -INFINITY, 0}});
}

TEST(ScanTaken, BytesBehindTheLastElementWithANote) {
    const ReadScan binary = expectPoints(header("binary_little_endian", floatVertices) +
                                             bytes<float>({1, 2, 3, 4, 5, 6, 7}),
                                         twoPoints);
    EXPECT_EQ(binary.result.report.bytesBehind, 4u);
    EXPECT_EQ(binary.result.report.notes,
              std::vector<std::string>{"4 bytes behind the last element were left out"});

    const ReadScan text = expectPoints(asciiScan("1 2 3\n4 5 6\n\nand more\n", "2"), twoPoints);
    EXPECT_EQ(text.result.report.bytesBehind, 7u);
    EXPECT_EQ(text.result.report.notes,
              std::vector<std::string>{"7 characters behind the last element were left out"});
}

TEST(ScanTaken, RowsAndColumns) {
    const auto scan = [](const std::string& columns, const std::string& rows) {
        return readEveryWay(
            asciiScan("1 2 3\n4 5 6\n7 8 9\n1 1 1\n2 2 2\n3 3 3\n", "6",
                      "obj_info num_cols " + columns + "\nobj_info num_rows " + rows + "\n"));
    };
    const ReadScan fitting = scan("3", "2");
    EXPECT_EQ(fitting.cloud.width, 3u);
    EXPECT_EQ(fitting.cloud.height, 2u);
    EXPECT_TRUE(fitting.result.report.notes.empty());
    for (const auto& [columns, rows] : {std::pair<std::string, std::string>{"3", "3"},
                                        {"0", "6"},
                                        {"-3", "-2"},
                                        {"x", ""},
                                        {"18446744073709551615", "3"},
                                        {"99999999999999999999", "1"}}) {
        const ReadScan other = scan(columns, rows);
        ASSERT_TRUE(other.result) << other.result.reason;
        EXPECT_EQ(other.cloud.width, 6u);
        EXPECT_EQ(other.cloud.height, 1u);
    }
}

TEST(ScanTaken, AFileOfNoVertices) {
    const ReadScan scan = expectPoints(asciiScan("", "0"), {});
    EXPECT_EQ(scan.result.report.notes, std::vector<std::string>{"the file declares 0 vertices"});
    // As toPlyBinary() makes it of a cloud without points.
    expectPoints("ply\ncomment none\nobj_info num_cols 0\nobj_info num_rows 0\nelement vertex 0\n"
                 "end_header\n",
                 {});
}

TEST(ScanTaken, LinesThatAreNoneOfAHeaderWhenTheBodyIsWhatTheOthersDeclare) {
    const ReadScan scan =
        expectPoints(asciiScan("1 2 3\n4 5 6\n", "2", "made by hand\n"), twoPoints);
    EXPECT_EQ(
        scan.result.report.notes,
        std::vector<std::string>{"line 7: 'made' is no keyword of a header; it was passed over"});
    expectPoints(asciiScan("1 2 3 9\n4 5 6 9\n", "2", "property uchar red flag\n"), twoPoints);
}

TEST(ScanTaken, AByteOrderMarkInFront) {
    expectPoints("\xEF\xBB\xBF" + asciiScan("1 2 3\n4 5 6\n", "2"), twoPoints);
}

TEST(ScanTaken, TheSecondPropertyOfANameIsDropped) {
    const ReadScan scan = expectPoints(
        asciiScan("1 2 3 4 5\n", "1", "property float s\nproperty uchar s\n"), {{1, 2, 3, 0}});
    pcl::PCLPointCloud2 all;
    const std::string file = asciiScan("1 2 3 4 5\n", "1", "property float s\nproperty uchar s\n");
    ASSERT_TRUE(converters::readScan(file.data(), file.size(), all));
    EXPECT_EQ(all.fields.size(), 4u);
}

} // namespace
