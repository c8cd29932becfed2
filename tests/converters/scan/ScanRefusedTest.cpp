// What is no scan, or a broken one: refused, with the reason in words.
#include "tests/support/Random.h"
#include "tests/support/ScanFiles.h"

#include <cmath>

namespace {

std::string header(const std::string& lines) {
    return "ply\n" + lines + "end_header\n";
}

const std::string coordinates = "property float x\nproperty float y\nproperty float z\n";

TEST(ScanRefused, WhatIsNoPlyFile) {
    const std::string reason = "this is no PLY file: its first line is not 'ply'";
    expectRefused("", "the file is empty");
    expectRefused("\x89PNG\r\n\x1a\n", reason);
    expectRefused("PLY\nformat ascii 1.0\n", reason);
    expectRefused("plyx\nformat ascii 1.0\n", reason);
    expectRefused("ply format ascii 1.0\n", reason);
    expectRefused("pl", reason);
    expectRefused("\nply\nformat ascii 1.0\n", reason);
    expectRefused("  0\nSECTION\n", reason);
    expectRefused("\x1F\x8B\b", "this is no PLY file but one compressed with gzip");
    expectRefused(std::string("\xFF\xFEp\0l\0y\0", 8), "this is no PLY file but text in UTF-16");
    expectRefused("\x1F", reason);
    expectRefused(std::string(3, '\0'), reason);
}

TEST(ScanRefused, HeadersThatDoNotEnd) {
    const std::string reason = "the file ends within its header: 'end_header' is missing";
    expectRefused("ply", reason);
    expectRefused("ply\nformat ascii 1.0\nelement vertex 1\n" + coordinates, reason);
    std::string endless = "ply\nformat ascii 1.0\ncomment ";
    endless.append(std::size_t{17} << 20, 'x');
    expectRefused(endless, "the header is longer than 16 MiB");
}

TEST(ScanRefused, FormatsThatAreNone) {
    expectRefused(header("format ascii 1.1\nelement vertex 0\n"),
                  "line 2: version '1.1' of the format is not known, only 1.0");
    expectRefused(header("format ascii\nelement vertex 0\n"),
                  "line 2: version '' of the format is not known, only 1.0");
    expectRefused(header("format text 1.0\nelement vertex 0\n"),
                  "line 2: 'text' is no format of PLY files");
    expectRefused(header("format ascii 1.0 x\nelement vertex 0\n"),
                  "line 2: there is something behind the version");
    expectRefused(header("format ascii 1.0\nformat ascii 1.0\nelement vertex 0\n"),
                  "line 3: a second format");
    expectRefused(header("element vertex 1\n" + coordinates) + std::string(12, '\1'),
                  "the header has no format: it does not say how the numbers are stored");
}

TEST(ScanRefused, ElementsThatAreNone) {
    expectRefused(header("format ascii 1.0\nelement\n"), "line 3: the element has no name");
    expectRefused(header("format ascii 1.0\nelement vertex\n"),
                  "line 3: element 'vertex' has no count");
    for (const char* count : {"-1", "+1", "1.0", "x", "1e3", "18446744073709551616"}) {
        expectRefused(header(std::string("format ascii 1.0\nelement vertex ") + count + "\n"),
                      std::string("line 3: element 'vertex': '") + count +
                          "' is no count of its records");
    }
    expectRefused(header("format ascii 1.0\nelement vertex 1 2\n"),
                  "line 3: there is something behind the count of element 'vertex'");
    expectRefused(
        header("format ascii 1.0\nelement vertex 1\n" + coordinates + "element vertex 1\n"),
        "line 7: a second element 'vertex'");
    expectRefused(header("format ascii 1.0\n"), "the file has no element 'vertex'");
    expectRefused(header("format ascii 1.0\nelement face 1\nproperty int a\n") + "1\n",
                  "the file has no element 'vertex'");
}

TEST(ScanRefused, PropertiesThatAreNone) {
    expectRefused(header("format ascii 1.0\nproperty float x\n"),
                  "line 3: a property before any element");
    const auto line = [](const std::string& property) {
        return header("format ascii 1.0\nelement vertex 1\n" + property + "\n");
    };
    expectRefused(line("property"), "line 4: the property has no type");
    expectRefused(line("property float"), "line 4: the property has no name");
    expectRefused(line("property real x"), "line 4: 'real' is no type of PLY files");
    expectRefused(line("property FLOAT x"), "line 4: 'FLOAT' is no type of PLY files");
    expectRefused(line("property list x"), "line 4: 'x' is no type of PLY files");
    expectRefused(line("property list uchar x"), "line 4: 'x' is no type of PLY files");
    expectRefused(line("property list uchar int"), "line 4: the property has no name");
    expectRefused(line("property list list int x"), "line 4: 'list' is no type of PLY files");
}

TEST(ScanRefused, VerticesWithoutACoordinate) {
    const auto vertices = [](const std::string& properties) {
        return header("format ascii 1.0\nelement vertex 1\n" + properties) + "1 2 3\n";
    };
    expectRefused(vertices("property float y\nproperty float z\n"), "property x is missing");
    expectRefused(vertices("property float x\nproperty float z\n"), "property y is missing");
    expectRefused(vertices("property float x\nproperty float y\n"), "property z is missing");
    expectRefused(vertices(""), "property x is missing");
    expectRefused(vertices("property float x\nproperty float x\nproperty float y\n"
                           "property float z\n"),
                  "property x is there twice");
    expectRefused(vertices("property list uchar float x\nproperty float y\nproperty float z\n"),
                  "property x is a list");
}

TEST(ScanRefused, TextThatIsNoNumber) {
    const auto at = [](const std::string& token, const std::string& hint = "") {
        const converters::ScanResult result =
            expectRefused(asciiScan("1 2 3\n4 " + token + " 6\n", "2"),
                          "line 9: '" + token + "' is no number" + hint);
        EXPECT_EQ(result.line, 9u);
    };
    at("1,5", "; a decimal comma?");
    at("1,5,6", "; commas between values?");
    at("1,", "; commas between values?");
    for (const char* token : {"x", "1.5x", "0x10", "1e", "1e+", "--1", "+-1", ".", "-", "+",
                              "1.2.3", "1d3", "1_000", "nanx", "1.#", "1.#FOO", "infinit", "'1'"}) {
        at(token);
    }
    expectRefused(asciiScan("1 2 \x01\n", "1"), "line 8: '\\x01' is no number");
}

TEST(ScanRefused, TextFarIntoAFile) {
    // Lines are counted many at a time: of every length, empty ones and all.
    Random random(1);
    for (const char* lineEnd : {"\n", "\r\n", "\r"}) {
        std::string body;
        constexpr std::size_t records = 20000;
        std::size_t line = 8;
        for (std::size_t i = 0; i + 1 < records; ++i) {
            body += "1" + std::string(1 + random.below(9), ' ') + "2 3" + lineEnd;
            ++line;
            for (; random.oneIn(3); ++line) {
                body += lineEnd;
            }
        }
        expectRefused(asciiScan(body + "1 2 x" + lineEnd, std::to_string(records)),
                      "line " + std::to_string(line) + ": 'x' is no number");
    }
}

TEST(ScanRefused, NumbersOutOfTheRangeOfTheirType) {
    const auto value = [](const std::string& type, const std::string& text) {
        expectRefused(asciiScan("1 2 3 " + text + "\n", "1", "property " + type + " s\n"),
                      "line 9: '" + text + "' is out of the range of " + type +
                          ", the type of property 's'");
    };
    value("char", "128");
    value("char", "-129");
    value("uchar", "256");
    value("uchar", "-1");
    value("uchar", "256.0");
    value("short", "32768");
    value("ushort", "65536");
    value("int", "2147483648");
    value("uint", "4294967296");
    value("uint", "-1");
    value("int64", "9223372036854775808");
    value("uint64", "18446744073709551616");
    value("uint64", "-1");
    value("float", "1e39");
    value("float", "-1e39");
    value("double", "1e400");
}

TEST(ScanRefused, FractionsOfWholeNumbers) {
    for (const char* text : {"1.5", "nan", "inf", "0.001"}) {
        expectRefused(asciiScan(std::string("1 2 3 ") + text + "\n", "1", "property int s\n"),
                      std::string("line 9: '") + text +
                          "' is no whole number, which property 's' has to be");
    }
}

TEST(ScanRefused, FilesCutShort) {
    expectRefused(asciiScan("1 2 3\n4 5\n", "2"), "the file ends after 1 of 2 vertices");
    expectRefused(asciiScan("", "5000"), "the file ends after 0 of 5,000 vertices");
    expectRefused(asciiScan("1 2 3\n4 5\n7 8 9\n", "3"),
                  "the file ends after 2 of 3 vertices; line 10 begins within a record: one before "
                  "may lack a value");
    const std::string binary =
        header("format binary_little_endian 1.0\nelement vertex 5000\n" + coordinates);
    expectRefused(binary + std::string(1203 * 12 + 11, '\2'),
                  "the file ends after 1,203 of 5,000 vertices");
    const std::string face = "element face 2\nproperty list uchar uchar vertex_index\n";
    expectRefused(asciiScan("1 2 3\n3 0 0 0\n3 0 0\n", "1", face),
                  "the file ends after 1 of 2 records of element 'face'");
    const std::string mesh =
        header("format binary_little_endian 1.0\nelement vertex 1\n" + coordinates + face);
    expectRefused(mesh + std::string(12, '\2') + "\3abc\3ab",
                  "the file ends after 1 of 2 records of element 'face'");
    expectRefused(mesh + std::string(12, '\2') + "\3abc",
                  "the file ends after 1 of 2 records of element 'face'");
    const std::string edges = header("format binary_little_endian 1.0\nelement vertex 1\n" +
                                     coordinates + "element edge 3\nproperty int a\n");
    expectRefused(edges + std::string(12, '\2') + "aaaabbbbccc",
                  "the file ends after 2 of 3 records of element 'edge'");
}

TEST(ScanRefused, CountsThatNoFileHolds) {
    const std::string most = "18446744073709551615";
    expectRefused(asciiScan("1 2 3\n", "4294967295"),
                  "the file ends after 1 of 4,294,967,295 vertices");
    expectRefused(
        header("format binary_big_endian 1.0\nelement vertex 4294967295\n" + coordinates) +
            std::string(12, '\2'),
        "the file ends after 1 of 4,294,967,295 vertices");
    expectRefused(header("format binary_big_endian 1.0\nelement a " + most +
                         "\nproperty double a\nelement vertex 1\n" + coordinates) +
                      std::string(20, '\2'),
                  "the file ends after 2 of 18,446,744,073,709,551,615 records of element 'a'");
    expectRefused(
        header("format binary_big_endian 1.0\nelement a 1\nproperty list uint64 double a\n"
               "element vertex 1\n" +
               coordinates) +
            std::string(28, '\xFF'),
        "the file ends after 0 of 1 records of element 'a'");
    // Records of nothing are no work.
    const ReadScan scan = readEveryWay(
        header("format ascii 1.0\nelement nothing " + most + "\nelement vertex 1\n" + coordinates) +
        "1 2 3\n");
    EXPECT_TRUE(scan.result) << scan.result.reason;
}

TEST(ScanRefused, MorePointsThanACloudCanNumber) {
    const std::string file = header("format ascii 1.0\nelement vertex 4294967296\n" + coordinates);
    pcl::PointCloud<pcl::PointXYZI> cloud;
    EXPECT_EQ(converters::readScan(file.data(), file.size(), cloud).reason,
              "the file declares 4,294,967,296 vertices, more than a cloud can number");
}

TEST(ScanRefused, ListsOfANegativeOrBrokenNumberOfItems) {
    const std::string face = "element face 1\nproperty list int int vertex_index\n";
    expectRefused(asciiScan("1 2 3\n-3 0 0 0\n", "1", face),
                  "line 11: a list of -3 items in property 'vertex_index'");
    const std::string mesh =
        header("format binary_little_endian 1.0\nelement vertex 1\n" + coordinates + face);
    expectRefused(mesh + std::string(12, '\2') + "\xFD\xFF\xFF\xFF",
                  "byte " + std::to_string(mesh.size() + 12) +
                      ": a list of -3 items in element 'face'");
    expectRefused(asciiScan("1 2 3\n2.5 0 0\n", "1",
                            "element face 1\nproperty list float int vertex_index\n"),
                  "line 11: a list of 2.5 items in property 'vertex_index'");
}

TEST(ScanRefused, LinesWithMoreValuesThanDeclared) {
    expectRefused(asciiScan("1 2 3 0.5\n4 5 6 0.7\n", "2"),
                  "line 8: there are more values than a record of element 'vertex' has");
    expectRefused(asciiScan("1 2 3\n4 5 6 7\n8 9 10\n", "3"),
                  "line 9: there are more values than a record of element 'vertex' has");
    expectRefused(asciiScan("1 2 3\n4 5 6 7\n", "2"),
                  "line 9: there are more values than a record of element 'vertex' has");
}

/// A cube's corners, a line each, then faces.
std::string meshOf(const std::string& corners, const std::string& faces, const std::string& count) {
    return asciiScan(corners + faces, "8",
                     "element face " + count + "\nproperty list uchar int vertex_indices\n");
}

// All numbers of these files can be taken: a face whose first corner is one less than their number
// makes up for a missing value.
TEST(ScanRefused, LinesThatLackAValueEvenIfFacesMakeUpForIt) {
    expectRefused(
        meshOf("0 0 0\n1 0 0\n1 1\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1 1\n", "3 2 1 0\n3 0 2 3\n", "2"),
        "line 12: there are fewer values than a record of element 'vertex' has");
    expectRefused(meshOf("0 0 0\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1\n",
                         "4 3 2 1 0\n4 4 5 6 7\n", "2"),
                  "line 17: there are fewer values than a record of element 'vertex' has");
    expectRefused(meshOf("0 0\n\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1 1\n",
                         "3 2 1 0\n3 0 2 3\n", "2"),
                  "line 10: there are fewer values than a record of element 'vertex' has");
    // A whole line.
    expectRefused(meshOf("0 0 0\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n", "4 3 2 1 0\n", "1"),
                  "line 17: there are more values than a record of element 'vertex' has");
}

TEST(ScanRefused, LinesThatLackAValueInSmallFiles) {
    const std::string face = "element face 1\nproperty list uchar int vertex_indices\n";
    expectRefused(asciiScan("0 0 0\n1 0 0\n0 1\n0 0 1\n3 2 1 0\n", "4", face),
                  "line 12: there are fewer values than a record of element 'vertex' has");
}

TEST(ScanRefused, LinesThatLackAValueThatAnotherHasTooMany) {
    expectRefused(asciiScan("1 2 3\n4 5\n7 8 9\n1 2 3\n4 5 6\n7 8 9 6\n1 2 3\n", "7"),
                  "line 9: there are fewer values than a record of element 'vertex' has");
    expectRefused(asciiScan("1 2 3\r\n4 5 6 6\r\n7 8\r\n1 2 3\r\n4 5 6\r\n7 8 9\r\n", "6"),
                  "line 9: there are more values than a record of element 'vertex' has");
}

TEST(ScanRefused, TextThatIsSaidToBeBinary) {
    expectRefused(header("format binary_little_endian 1.0\nelement vertex 2\n" + coordinates) +
                      "1.25 2.5 3.125\n4 5.5 6.75\n",
                  "the header says binary_little_endian, but what follows is text");
}

/// Coordinates as they are: none is a power of two, some are 0.
std::string binaryPoints(std::size_t count, bool isSwapped, bool areDoubles) {
    std::string body;
    for (std::size_t i = 0; i < 3 * count; ++i) {
        const double value = i % 7 == 0 ? 0.0 : std::sin(static_cast<double>(i)) * 1234.5;
        std::string number;
        if (areDoubles) {
            appendBytes(number, value);
        } else {
            appendBytes(number, static_cast<float>(value));
        }
        if (isSwapped) {
            std::reverse(number.begin(), number.end());
        }
        body += number;
    }
    return body;
}

std::string binaryHeader(const std::string& format, std::size_t count, const std::string& type) {
    return header("format " + format + " 1.0\nelement vertex " + std::to_string(count) +
                  "\nproperty " + type + " x\nproperty " + type + " y\nproperty " + type + " z\n");
}

TEST(ScanRefused, NumbersOfTheOtherByteOrder) {
    for (const bool isBig : {false, true}) {
        const std::string format = isBig ? "binary_big_endian" : "binary_little_endian";
        for (const bool areDoubles : {false, true}) {
            const std::string start = binaryHeader(format, 200, areDoubles ? "double" : "float");
            expectRefused(start + binaryPoints(200, !isBig, areDoubles),
                          "the header says " + format +
                              ", but the coordinates make sense in the other byte order only");
            EXPECT_TRUE(readEveryWay(start + binaryPoints(200, isBig, areDoubles)).result);
        }
    }
}

TEST(ScanRefused, BinaryFilesCopiedAsText) {
    std::string file = binaryHeader("binary_little_endian", 2, "float");
    for (const float value : {8.625F, 8.63F, 1.0F, 2.0F, 4.0F, 0.1F}) {
        appendBytes(file, value);
    }
    // Two line feeds, one right behind the other.
    file[file.size() - 8] = file[file.size() - 7] = '\n';
    std::string copied;
    for (const char c : file) {
        copied += c == '\n' ? "\r\n" : std::string(1, c);
    }
    ASSERT_TRUE(readEveryWay(file).result);
    expectRefused(copied,
                  "the body has as many bytes too many as line feeds, each of them behind a "
                  "carriage return: the file was copied as if it were text");
}

TEST(ScanRefused, BinaryFilesConvertedToUtf8) {
    const std::string start = binaryHeader("binary_little_endian", 200, "float");
    const std::string body = binaryPoints(200, false, false);
    std::string fromLatin;
    std::string replaced;
    for (const char c : body) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isAscii = byte < 0x80;
        fromLatin += isAscii ? std::string(1, c)
                             : std::string{static_cast<char>(byte < 0xC0 ? 0xC2 : 0xC3),
                                           static_cast<char>(0x80 | (byte & 0x3F))};
        replaced += isAscii ? std::string(1, c) : "\xEF\xBF\xBD";
    }
    for (const std::string& converted : {fromLatin, replaced}) {
        expectRefused(start + converted,
                      "the header says binary_little_endian, but what follows are characters in "
                      "UTF-8: the file was converted as if it were text");
    }
    EXPECT_TRUE(readEveryWay(start + body).result);
}

TEST(ScanRefused, RecordsThatAreLongerThanDeclared) {
    const std::string start = binaryHeader("binary_little_endian", 200, "float");
    const std::string body = binaryPoints(200, false, false);
    std::string padded;
    for (std::size_t i = 0; i < body.size(); i += 12) {
        padded += body.substr(i, 12) + "\x7F";
    }
    expectRefused(start + padded, "there are 200 bytes behind the last element, 1 for each vertex: "
                                  "the header lacks a property, or names a smaller type");
    EXPECT_TRUE(readEveryWay(start + body + std::string(199, 'x')).result);
    // Half of the points are points, too.
    EXPECT_TRUE(readEveryWay(start + body + body).result);
}

TEST(ScanRefused, OddHeaderLinesWhenTheBodyIsNotWhatTheOthersDeclare) {
    expectRefused(
        header("format binary_little_endian 1.0\nelement vertex 1\n" + coordinates +
               "propery float s\n") +
            std::string(16, '\2'),
        "there are 4 bytes behind the last element; line 7 of the header: 'propery' is no "
        "keyword of a header");
    expectRefused(header("format binary_little_endian 1.0\nelement vertex 1\n" + coordinates +
                         "property uchar r property uchar g\n") +
                      std::string(14, '\2'),
                  "there is 1 byte behind the last element; line 7 of the header: 'property' "
                  "stands behind the name of a property");
}

} // namespace
