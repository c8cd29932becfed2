// Random input, sane and hostile, against plain slow readers.
#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"
#include "tests/support/Random.h"
#include "tests/support/StreamPlyReader.h"

#include <gtest/gtest.h>
#include <pcl/conversions.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

/// Multiplies the number of random cases: CONVERTERS_TEST_EFFORT, 1 when unset.
int effort() {
    const char* value = std::getenv("CONVERTERS_TEST_EFFORT");
    return value == nullptr ? 1 : std::max(1, std::atoi(value));
}

std::string digits(Random& random, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += static_cast<char>('0' + random.below(10));
    }
    return text;
}

std::string printed(const char* format, double value) {
    char text[1200];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

template <typename Value>
Value ofBits(std::uint64_t bits) {
    Value value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// A decimal number of any length and size.
std::string anyDecimal(Random& random) {
    std::string text = random.pick(std::vector<std::string>{"", "", "", "-", "-", "+"});
    const std::size_t longest = random.oneIn(20) ? 60 : random.oneIn(3) ? 22 : 9;
    text += digits(random, random.below(longest));
    if (!random.oneIn(4)) {
        text += "." + (random.oneIn(10) ? std::string(random.below(30), '0') : "") +
                digits(random, random.below(longest));
    }
    if (random.oneIn(3)) {
        const std::size_t range = random.oneIn(5) ? 400 : random.oneIn(2) ? 50 : 24;
        text += random.pick(std::string("eE")) +
                std::string(random.pick(std::vector<std::string>{"", "+", "-", "-"})) +
                std::to_string(random.below(range));
    }
    return text;
}

/// The point halfway between two neighbouring floats, in full, just below or just above.
std::string nearTie(Random& random) {
    const double value = static_cast<double>(ofBits<float>(random() & 0x7FFFFFFF));
    if (!std::isfinite(value)) {
        return "1";
    }
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    std::string text =
        printed(random.oneIn(2) ? "%.25e" : "%.160f", ofBits<double>(bits | (1u << 28)));
    if (random.oneIn(2)) {
        const std::size_t end = std::min(text.find('e'), text.size());
        text[end - 1] = random.oneIn(2) ? '1' : '9';
    }
    return text;
}

/// A tie with few digits, which the fast conversion meets.
std::string shortTie(Random& random) {
    const std::uint64_t odd = ((std::uint64_t{1} << 24) + random.below(1 << 24)) | 1;
    const int shift = static_cast<int>(random.below(12));
    std::string text = printed("%.12f", std::ldexp(static_cast<double>(odd), -shift));
    if (random.oneIn(2)) {
        text.back() = '1';
    }
    return text;
}

std::string anyInteger(Random& random) {
    static const std::vector<std::string> edges = {"0",
                                                   "-0",
                                                   "32767",
                                                   "32768",
                                                   "-32768",
                                                   "-32769",
                                                   "65535",
                                                   "65536",
                                                   "-65535",
                                                   "-65536",
                                                   "2147483647",
                                                   "2147483648",
                                                   "-2147483648",
                                                   "-2147483649",
                                                   "4294967295",
                                                   "4294967296",
                                                   "-4294967295",
                                                   "-4294967296",
                                                   "9223372036854775807",
                                                   "9223372036854775808",
                                                   "18446744073709551615",
                                                   "18446744073709551616",
                                                   "-18446744073709551616",
                                                   "99999999999999999999999"};
    if (random.oneIn(3)) {
        return random.pick(edges);
    }
    return random.pick(std::vector<std::string>{"", "", "-", "+", "000", "-0"}) +
           digits(random, 1 + random.below(random.oneIn(5) ? 25 : 7));
}

std::string anyWord(Random& random) {
    static const std::vector<std::string> words = {
        "nan",      "NaN",        "-nan",      "+NAN", "inf",  "-inf",   "+Inf",     "infinity",
        "nan(ind)", "-nan(snan)", "-INFINITY", "info", "nanx", "nan()x", "inf(1)",   "e5",
        "-",        "+",          ".",         "-.",   "1e",   "1e+",    "1.5e-",    "0x1p3",
        "..5",      "1..5",       "1,5",       "--1",  "+-1",  "#",      "\xC3\xA9", "5.5.5"};
    return random.pick(words);
}

std::string garbage(Random& random) {
    static const std::string alphabet = "+-.eExX0123456789naifNIFty_()pP\xFF#,";
    std::string text;
    for (std::size_t i = random.below(12); i > 0; --i) {
        text += random.pick(alphabet);
    }
    return text;
}

std::string anyToken(Random& random) {
    switch (random.below(12)) {
    case 0:
        return printed("%.17g", ofBits<double>(random()));
    case 1:
        return printed("%.9g", static_cast<double>(ofBits<float>(random())));
    case 2:
        return printed("%g", static_cast<double>(static_cast<std::int32_t>(random())) * 1e-6);
    case 3:
        return nearTie(random);
    case 4:
        return shortTie(random);
    case 5:
    case 6:
        return anyInteger(random);
    case 7:
        return random.oneIn(2) ? anyWord(random) : garbage(random);
    default:
        return anyDecimal(random);
    }
}

/// Changes, inserts or removes a character.
void mutate(std::string& text, Random& random, const std::string& alphabet) {
    const std::size_t place = random.below(text.size() + 1);
    switch (random.below(3)) {
    case 0:
        text.insert(place, 1, random.pick(alphabet));
        break;
    case 1:
        text.erase(place, 1);
        break;
    default:
        text.replace(place, place < text.size() ? 1 : 0, 1, random.pick(alphabet));
    }
}

std::string anyLine(Random& random, std::size_t values) {
    static const std::vector<std::string> blanks = {" ", " ", " ", " ", "\t", "  ", " \v\f", ""};
    std::string line = random.oneIn(10) ? " " : "";
    for (std::size_t i = random.oneIn(10) ? random.below(values + 2) : values; i > 0; --i) {
        line += anyToken(random) + random.pick(blanks);
    }
    if (random.oneIn(3)) {
        mutate(line, random, "+-.eE0123456789 \tnanifx\r");
    }
    return line + (random.oneIn(5) ? "\r" : "");
}

/// Reads lines through the library, whose records have the given datatypes.
std::vector<unsigned char> readByLibrary(const std::vector<std::uint8_t>& datatypes,
                                         const std::vector<std::string>& lines,
                                         std::size_t recordSize) {
    PLYDeserializer reader;
    reader.Init();
    reader.format = PlyFormat::Ascii;
    reader.vertexCount = lines.size();
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    reader.stream.str(text);
    for (const std::uint8_t datatype : datatypes) {
        pcl::PCLPointField field;
        field.datatype = datatype;
        reader.cloud->fields.push_back(field);
    }
    reader.cloud->data.resize(recordSize * lines.size());
    EXPECT_TRUE(reader.ReadData({}));
    return reader.cloud->data;
}

void compareLines(std::uint64_t seed, int count, const std::vector<std::uint8_t>& choices) {
    Random random(seed);
    constexpr std::size_t linesPerLayout = 200;
    for (int i = 0; i < count * effort(); ++i) {
        std::vector<std::uint8_t> datatypes(1 + random.below(4));
        for (std::uint8_t& datatype : datatypes) {
            datatype = random.pick(choices);
        }
        std::vector<std::string> lines(linesPerLayout);
        for (std::string& line : lines) {
            line = anyLine(random, datatypes.size());
        }
        const std::size_t recordSize = readRecordByStream(datatypes, "").size();
        const std::vector<unsigned char> records = readByLibrary(datatypes, lines, recordSize);
        ASSERT_EQ(records.size(), recordSize * lines.size());
        for (std::size_t k = 0; k < lines.size(); ++k) {
            const std::vector<unsigned char> expected = readRecordByStream(datatypes, lines[k]);
            ASSERT_EQ(std::memcmp(&records[k * recordSize], expected.data(), recordSize), 0)
                << '"' << lines[k] << "\" datatypes " << testing::PrintToString(datatypes) << ": "
                << testing::PrintToString(std::vector<unsigned char>(
                       records.begin() + static_cast<std::ptrdiff_t>(k * recordSize),
                       records.begin() + static_cast<std::ptrdiff_t>((k + 1) * recordSize)))
                << " for " << testing::PrintToString(expected);
        }
    }
}

TEST(PLYDeserializerDifferential, FloatsAreThoseOfStreamExtraction) {
    compareLines(1, 2000, {pcl::PCLPointField::FLOAT32});
}

TEST(PLYDeserializerDifferential, DoublesAreThoseOfStreamExtraction) {
    compareLines(2, 1500, {pcl::PCLPointField::FLOAT64});
}

TEST(PLYDeserializerDifferential, IntegersAreThoseOfStreamExtraction) {
    compareLines(3, 1000, {3, 4, 5, 6});
}

TEST(PLYDeserializerDifferential, RecordsOfAllDatatypesAreThoseOfStreamExtraction) {
    compareLines(4, 1500, {1, 2, 3, 4, 5, 6, 7, 8});
}

std::string anyHeader(Random& random) {
    static const std::vector<std::string> lines = {"format ascii 1.0",
                                                   "format binary_little_endian 1.0",
                                                   "format binary_big_endian 1.0",
                                                   "format ascii 1.1",
                                                   "obj_info num_cols 3",
                                                   "obj_info num_rows 2",
                                                   "obj_info num_cols -1",
                                                   "obj_info author me",
                                                   "obj_info num_rows 99999999999",
                                                   "element vertex 6",
                                                   "element vertex 7",
                                                   "element face 0",
                                                   "element vertex 4294967296",
                                                   "element vertex -3",
                                                   "element vertex 1000000",
                                                   "property float x",
                                                   "property float y",
                                                   "property double64 z",
                                                   "property float64 w",
                                                   "property uchar red",
                                                   "property list uchar int i",
                                                   "property short intensity",
                                                   "comment",
                                                   "",
                                                   "comment hello  there"};
    static const std::vector<std::string> good = {
        "format ascii 1.0", "obj_info num_cols 3", "obj_info num_rows 2",
        "element vertex 6", "property float x",    "property float y",
        "property float z", "property int a",      "property float intensity"};
    std::string text = random.oneIn(20) ? "plx" : "ply";
    const std::string end = random.oneIn(4) ? "\r\n" : "\n";
    text += end;
    for (const std::string& line : good) {
        if (!random.oneIn(12)) {
            text += line + end;
        }
        if (random.oneIn(25)) {
            text += random.pick(lines) + end;
        }
    }
    text += "end_header" + end + "1 2 3\n";
    for (std::size_t i = random.below(4); i > 0; --i) {
        mutate(text, random, " \t\r\n\v0123456789-+.abcdefilnopqrstuvxy_");
    }
    return text;
}

/// What reading a header came to.
template <typename Read>
std::string outcomeOf(Read read) {
    try {
        return read() ? "accepted" : "refused";
    } catch (const std::invalid_argument& error) {
        return std::string("invalid ") + error.what();
    } catch (const std::out_of_range& error) {
        return std::string("out of range ") + error.what();
    }
}

TEST(PLYDeserializerDifferential, HeadersAreReadAsThroughStreams) {
    Random random(5);
    std::size_t accepted = 0;
    const int count = 40000 * effort();
    for (int i = 0; i < count; ++i) {
        const std::string text = anyHeader(random);
        SCOPED_TRACE(text);
        StreamPlyReader expected;
        const std::string expectedOutcome = outcomeOf([&] { return expected.readHeader(text); });

        PLYDeserializer reader;
        reader.Init();
        const CapturedLog log;
        ASSERT_EQ(outcomeOf([&] { return reader.ReadHeader(bytesOf(text)); }), expectedOutcome);
        ASSERT_EQ(log.messages(), expected.messages);
        ASSERT_EQ(reader.lineNumber, expected.lineNumber);
        ASSERT_EQ(reader.vertexCount, expected.vertexCount);
        ASSERT_EQ(static_cast<int>(reader.format), expected.format);
        ASSERT_EQ(reader.cloud->width, expected.cloud.width);
        ASSERT_EQ(reader.cloud->height, expected.cloud.height);
        ASSERT_EQ(reader.cloud->point_step, expected.cloud.point_step);
        ASSERT_EQ(reader.cloud->fields.size(), expected.cloud.fields.size());
        for (std::size_t k = 0; k < expected.cloud.fields.size(); ++k) {
            ASSERT_EQ(reader.cloud->fields[k].name, expected.cloud.fields[k].name);
            ASSERT_EQ(reader.cloud->fields[k].offset, expected.cloud.fields[k].offset);
            ASSERT_EQ(reader.cloud->fields[k].datatype, expected.cloud.fields[k].datatype);
        }
        if (expectedOutcome == "accepted") {
            ++accepted;
            ASSERT_EQ(static_cast<std::size_t>(reader.stream.tellg()), expected.position);
            ASSERT_EQ(reader.cloud->data.size(), reader.cloud->point_step * reader.vertexCount);
        }
    }
    // The test says something only while both happen often.
    EXPECT_GT(accepted, static_cast<std::size_t>(count / 10));
    EXPECT_LT(accepted, static_cast<std::size_t>(count * 9 / 10));
}

/// A file that is mostly whole: fields in any order, some of them strangers, ASCII or binary.
std::string anyFile(Random& random) {
    static const std::vector<std::string> types = {"float", "float", "float", "float",  "double",
                                                   "int",   "short", "uchar", "float64"};
    static const std::vector<std::string> names = {"x", "y", "z", "intensity", "x", "other"};
    const bool isAscii = random.oneIn(2);
    const std::size_t width = 1 + random.below(random.oneIn(10) ? 700 : 30);
    const std::size_t height = 1 + random.below(3);
    std::string text =
        std::string("ply\nformat ") + (isAscii ? "ascii" : "binary_little_endian") + " 1.0\n";
    if (height > 1 || random.oneIn(2)) {
        text += "obj_info num_cols " + std::to_string(width) + "\nobj_info num_rows " +
                std::to_string(height) + "\n";
    }
    text += "element vertex " + std::to_string(width * height) + "\n";
    const bool isUsual = random.oneIn(3);
    const std::size_t fields = isUsual ? 4 : 1 + random.below(7);
    std::size_t step = 0;
    for (std::size_t i = 0; i < fields; ++i) {
        const std::string& type = isUsual ? types[0] : random.pick(types);
        const std::string& name = isUsual || random.oneIn(2) ? names[i % 6] : random.pick(names);
        text += "property " + type + " " + name + "\n";
        step += type == "uchar" ? 1 : type == "short" ? 2 : type == "double" ? 8 : 4;
        step -= type == "float64" ? 4 : 0;
    }
    if (step == 0) {
        text += "property float x\n";
        step = 4;
    }
    text += "end_header\n";
    for (std::size_t i = 0; i < width * height; ++i) {
        if (isAscii) {
            text += anyLine(random, fields) + "\n";
        }
        for (std::size_t k = 0; !isAscii && k < step; ++k) {
            text += static_cast<char>(random());
        }
    }
    if (random.oneIn(10)) {
        text.resize(text.size() - random.below(std::min<std::size_t>(text.size(), 50)));
    }
    if (random.oneIn(10)) {
        text += random.oneIn(2) ? "\n" : "1 2 3";
    }
    if (random.oneIn(20)) {
        text[random.below(text.size())] = static_cast<char>(random());
    }
    return text;
}

/// Reads a file step by step and converts it with the Point Cloud Library.
bool readBySteps(PLYDeserializer& reader, const std::vector<unsigned char>& data,
                 pcl::PointCloud<pcl::PointXYZI>& cloud) {
    reader.Init();
    reader.emptySceneInTeach = reader.IsVertexCountZero(data);
    if (reader.emptySceneInTeach) {
        return true;
    }
    const auto fail = [](const char* text) {
        p7::deliver(p7::level_error, 0, "converters/PlySerializerDeserializer", "DeserializePlyT",
                    "[PLYDeserializer::DeserializePlyT] Reading %s Failed!\n", text);
        return false;
    };
    if (!reader.ReadHeader(data)) {
        return fail("Header");
    }
    if (!reader.ReadData(data)) {
        return fail("Data");
    }
    reader.cloud->row_step = reader.cloud->point_step * reader.cloud->width;
    pcl::fromPCLPointCloud2(*reader.cloud, cloud);
    return true;
}

/// All that a whole read leaves in its reader as the steps do. It fills neither stream nor data.
void expectSameMembers(const PLYDeserializer& a, const PLYDeserializer& b) {
    EXPECT_EQ(a.vertexCount, b.vertexCount);
    EXPECT_EQ(a.lineNumber, b.lineNumber);
    EXPECT_EQ(a.writeOffset, b.writeOffset);
    EXPECT_EQ(a.format, b.format);
    EXPECT_EQ(a.emptySceneInTeach, b.emptySceneInTeach);
    EXPECT_EQ(a.cloud->width, b.cloud->width);
    EXPECT_EQ(a.cloud->height, b.cloud->height);
    EXPECT_EQ(a.cloud->point_step, b.cloud->point_step);
    EXPECT_EQ(a.cloud->row_step, b.cloud->row_step);
    EXPECT_EQ(a.cloud->is_bigendian, b.cloud->is_bigendian);
    EXPECT_EQ(a.cloud->is_dense, b.cloud->is_dense);
    ASSERT_EQ(a.cloud->fields.size(), b.cloud->fields.size());
    for (std::size_t i = 0; i < a.cloud->fields.size(); ++i) {
        EXPECT_EQ(a.cloud->fields[i].name, b.cloud->fields[i].name);
        EXPECT_EQ(a.cloud->fields[i].offset, b.cloud->fields[i].offset);
        EXPECT_EQ(a.cloud->fields[i].datatype, b.cloud->fields[i].datatype);
        EXPECT_EQ(a.cloud->fields[i].count, b.cloud->fields[i].count);
    }
    EXPECT_EQ(a.stream.str(), "");
    EXPECT_TRUE(a.cloud->data.empty());
}

TEST(PLYDeserializerDifferential, WholeReadEqualsItsStepsAndTheConversionOfThePointCloudLibrary) {
    // Its warnings about missing fields would fill the screen.
    const auto verbosity = pcl::console::getVerbosityLevel();
    pcl::console::setVerbosityLevel(pcl::console::L_ERROR);
    Random random(6);
    int accepted = 0;
    const int count = 2500 * effort();
    for (int i = 0; i < count; ++i) {
        const std::vector<unsigned char> data = bytesOf(anyFile(random));
        pcl::PointCloud<pcl::PointXYZI> expected;
        std::vector<LogMessage> expectedMessages;
        PLYDeserializer steps;
        const std::string expectedOutcome = outcomeOf([&] {
            const CapturedLog log;
            const bool isRead = readBySteps(steps, data, expected);
            expectedMessages = log.messages();
            return isRead;
        });
        pcl::PointCloud<pcl::PointXYZI> cloud;
        const CapturedLog log;
        PLYDeserializer whole;
        const std::string outcome = outcomeOf([&] { return whole.DeserializePlyT(data, cloud); });
        ASSERT_EQ(outcome, expectedOutcome);
        expectSameMembers(whole, steps);
        ASSERT_FALSE(testing::Test::HasFailure());
        if (outcome != "accepted" && outcome != "refused") {
            continue;
        }
        ASSERT_EQ(log.messages(), expectedMessages);
        ASSERT_EQ(cloud.width, expected.width);
        ASSERT_EQ(cloud.height, expected.height);
        ASSERT_EQ(cloud.is_dense, outcome == "refused" || whole.isEmptySceneInTeach());
        ASSERT_EQ(cloud.size(), expected.size());
        for (std::size_t k = 0; k < cloud.size(); ++k) {
            ASSERT_EQ(std::memcmp(&cloud[k], &expected[k], 20), 0) << "point " << k;
        }
        accepted += outcome == "accepted" ? 1 : 0;
    }
    pcl::console::setVerbosityLevel(verbosity);
    EXPECT_GT(accepted, count / 2);
    EXPECT_LT(accepted, count * 19 / 20);
}

/// A number as most files have them, or one that nearly is.
std::string shortDecimal(Random& random) {
    std::string text = random.oneIn(2) ? "-" : "";
    text += digits(random, random.below(6));
    if (!random.oneIn(5)) {
        text += "." + digits(random, random.below(random.oneIn(5) ? 12 : 5));
    }
    return text + (random.oneIn(100) ? "e1" : "");
}

/// Lines of four floats as most files have them, sometimes with a character changed.
std::string linesOfShortDecimals(Random& random, std::size_t lines) {
    std::string text;
    for (std::size_t i = 0; i < 4 * lines; ++i) {
        text += shortDecimal(random) + (i % 4 == 3 ? "\n" : " ");
    }
    if (random.oneIn(2)) {
        const std::string others = " \t\n\r\v.-+e05\x01!\x80\xFF";
        text[random.below(text.size())] = random.pick(others);
    }
    return text;
}

TEST(PLYDeserializerDifferential, LinesOfShortDecimalsAreTheSameAsOneByOne) {
    Random random(11);
    for (int i = 0; i < 3000 * effort(); ++i) {
        const std::size_t lines = 1 + random.below(8);
        const std::vector<unsigned char> data =
            bytesOf("ply\nformat ascii 1.0\nelement vertex " + std::to_string(lines) +
                    "\nproperty float x\nproperty float y\nproperty float z\n"
                    "property float intensity\nend_header\n" +
                    linesOfShortDecimals(random, lines));
        const CapturedLog log;
        pcl::PointCloud<pcl::PointXYZI> expected;
        PLYDeserializer steps;
        const bool isRead = readBySteps(steps, data, expected);
        pcl::PointCloud<pcl::PointXYZI> cloud;
        ASSERT_EQ(PLYDeserializer().DeserializePlyT(data, cloud), isRead);
        ASSERT_EQ(cloud.size(), expected.size());
        for (std::size_t k = 0; k < cloud.size(); ++k) {
            ASSERT_EQ(std::memcmp(&cloud[k], &expected[k], 20), 0)
                << std::string(data.begin(), data.end()) << "point " << k;
        }
    }
}

} // namespace
