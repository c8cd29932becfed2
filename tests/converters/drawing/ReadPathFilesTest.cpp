// Which files are read, and why others are refused.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"
#include "tests/support/PathBytes.h"
#include "tests/support/Pieces.h"
#include "tests/support/Repeated.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using converters::DrawingPath;
using converters::ReadResult;

const char* const line = "0 LINE  8 0  10 1  20 2  11 3  21 4";
const char* const linePoints = "(1, 2) (3, 4)\n";

std::string withLineEnds(const std::string& text, const std::string& end) {
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? end : std::string(1, c);
    }
    return result;
}

TEST(ReadPathFiles, HaveAnyLineEnds) {
    for (const std::string end : {"\r\n", "\r", "\r\r\n"}) {
        EXPECT_EQ(describe(pathOf(withLineEnds(drawingOf(line), end))), linePoints);
    }
}

TEST(ReadPathFiles, MayHaveBlankLinesBeforeCodes) {
    const std::string blank = "\n" + drawingOf("0 POINT  10 1  20 2") + "\n";
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        const DrawingPath path = pathOf(withLineEnds(blank, end));
        EXPECT_EQ(describe(path), "(1, 2)\n");
        EXPECT_TRUE(path.notes.empty());
    }
}

TEST(ReadPathFiles, MayHaveSectionsInAnyOrder) {
    const std::string header = section("HEADER", "9 $INSUNITS  70 5");
    EXPECT_EQ(pathOf(section("ENTITIES", line) + header).unit, converters::LengthUnit::centimetre);
}

TEST(ReadPathFiles, MayHaveMoreThanOneSectionOfAKind) {
    EXPECT_EQ(
        describe(pathOf(section("ENTITIES", line) + section("ENTITIES", "0 POINT  10 7  20 8"))),
        "(1, 2) (3, 4)\n(7, 8)\n");
}

TEST(ReadPathFiles, MayLackTheMarksOfEnds) {
    EXPECT_EQ(describe(pathOf(
                  "0\nSECTION\n2\nBLOCKS\n" +
                  dxf("0 BLOCK  2 a  0 POINT  10 1  20 1  0 BLOCK  2 b  0 POINT  10 2  20 2") +
                  "0\nSECTION\n2\nENTITIES\n" + dxf("0 INSERT  2 b  0 INSERT  2 a"))),
              "(2, 2)\n(1, 1)\n");
}

TEST(ReadPathFiles, MayHaveCommentsAnywhere) {
    EXPECT_EQ(describe(pathOf(dxf("999 a  0 SECTION  999 b  2 ENTITIES  999 c  0 LINE  999 d  8 0  "
                                  "10 1  20 2  999 e  11 3  21 4  0 ENDSEC  999 f  0 EOF"))),
              linePoints);
}

TEST(ReadPathFiles, ListEntitiesThatStandWhereNoneBelong) {
    const std::string circle = "  0 CIRCLE  8 cuts  10 1  20 2  40 3";
    const char* const listed = "1 CIRCLE on cuts: broken\n";
    for (const std::string& file :
         {section("ENTITIES", line) + dxf("0 ENDSEC" + circle + "  0 EOF"),
          section("CUTS", circle.substr(2)) + drawingOf(line),
          section("BLOCKS", "0 ENDBLK" + circle) + drawingOf(line),
          dxf("0 SECTION" + circle + "  0 ENDSEC") + drawingOf(line)}) {
        const DrawingPath path = pathOf(file);
        EXPECT_EQ(describe(path), linePoints) << file;
        EXPECT_EQ(leftOut(path), listed) << file;
    }
    const std::string vertices = "  0 TEXT  8 cuts  0 VERTEX  8 cuts  10 1  20 1  0 SEQEND";
    EXPECT_EQ(leftOut(pathOf(drawingOf(line + vertices))),
              "1 TEXT on cuts: annotation\n1 VERTEX on cuts: broken\n");
}

TEST(ReadPathFiles, WithoutEndMarkAreSaidToBeCutShort) {
    const DrawingPath path = pathOf(section("ENTITIES", line));
    EXPECT_EQ(describe(path), linePoints);
    EXPECT_THAT(path.notes, testing::ElementsAre("the file has no end mark; it may be cut short"));
}

TEST(ReadPathFiles, EndAtTheirEndMark) {
    EXPECT_EQ(describe(pathOf(drawingOf(line) + section("ENTITIES", "0 POINT  10 1  20 1"))),
              linePoints);
}

TEST(ReadPathFiles, SayWhatTheySkip) {
    EXPECT_THAT(pathOf(drawingOf(line) + "").notes, testing::IsEmpty());
    EXPECT_THAT(pathOf("junk before\n" + drawingOf(line)).notes,
                testing::ElementsAre("1 line is no part of any group and was skipped"));
    EXPECT_THAT(pathOf(drawingOf("0 POINT  10 1,5  20 2")).notes,
                testing::ElementsAre("1 number has a decimal comma; it is read as a point"));
    EXPECT_THAT(pathOf(drawingOf("0 POINT  10 1,5  20 2,5")).notes,
                testing::ElementsAre("2 numbers have a decimal comma; it is read as a point"));
}

TEST(ReadPathFiles, ThatAreNoDrawingsAreRefused) {
    EXPECT_EQ(refusalOf(""), "the file is empty");
    for (const std::string file :
         {"ply\nformat ascii 1.0\n", "\n\n\n", "0\nLINE\n10\n1\n", "x", "AutoCAD Binary DXF\r\n"}) {
        EXPECT_EQ(refusalOf(file), "no DXF file: no section begins in it") << file;
    }
    EXPECT_EQ(refusalOf(std::string("AC1015\0\0\0", 9)),
              "no DXF file: it begins as a DWG file does");
}

TEST(ReadPathFiles, AreReadInPlace) {
    DrawingPath path;
    const ReadResult result = converters::readPath(nullptr, 0, path);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.reason, "the file is empty");
}

const char* const binaryDrawing =
    "0 SECTION  2 HEADER  9 $ACADVER  1 AC1015  9 $INSUNITS  70 4  0 ENDSEC  "
    "0 SECTION  2 ENTITIES  0 LWPOLYLINE  5 1F  8 walls  90 2  70 1  10 1.5  20 2  10 3  20 4  "
    "310 thumbnail  1001 ACAD  1010 5  0 ENDSEC  0 EOF";

TEST(ReadPathFiles, MayBeBinary) {
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const DrawingPath path = pathOf(binary(binaryDrawing, form));
        EXPECT_EQ(describe(path), "closed (1.5, 2) (3, 4) (1.5, 2)\n");
        EXPECT_EQ(path.unit, converters::LengthUnit::millimetre);
        EXPECT_EQ(path.layers.at(path.contours.at(0).layer).name, "walls");
        EXPECT_EQ(path.entities.at(0).handle, 0x1FU);
        EXPECT_TRUE(path.notes.empty());
    }
}

TEST(ReadPathFiles, ThatAreBinaryAndCutAreRefusedWithTheByte) {
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const std::string file = binary(binaryDrawing, form);
        for (std::size_t size = 22; size < file.size(); ++size) {
            EXPECT_THAT(refusalOf(file.substr(0, size)),
                        testing::StartsWith("the file is cut short: the group at byte "))
                << size;
        }
    }
    const std::string file = binary("0 SECTION  2 ENTITIES  0 LINE  10 1.5");
    EXPECT_EQ(refusalOf(file.substr(0, file.size() - 1)),
              "the file is cut short: the group at byte 50 is not whole, or is missing");
}

TEST(ReadPathFiles, AreReadByTheirPaths) {
    const TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "a drawing.dxf";
    std::ofstream(file, std::ios::binary) << drawingOf(line);
    DrawingPath path;
    EXPECT_TRUE(converters::readPath(file, path));
    EXPECT_EQ(describe(path), linePoints);
    const ReadResult missing = converters::readPath(directory.path() / "none.dxf", path);
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing.reason, (directory.path() / "none.dxf").string() +
                                  ": the file cannot be opened: No such file or directory");
    const ReadResult folder = converters::readPath(directory.path(), path);
    EXPECT_FALSE(folder);
    EXPECT_EQ(folder.reason,
              directory.path().string() + ": the file cannot be read: Is a directory");
    EXPECT_EQ(describe(path), linePoints) << "as it was";
}

TEST(ReadPathFiles, AreReadByTheirPathsAsInMemory) {
    const std::filesystem::path samples = CONVERTERS_SAMPLE_DIR;
    if (!std::filesystem::exists(samples)) {
        GTEST_SKIP() << "no drawings of other programs in " << samples;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(samples)) {
        if (entry.path().extension() == ".dxf") {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
            DrawingPath path;
            EXPECT_TRUE(converters::readPath(entry.path(), path));
            EXPECT_EQ(bytesOf(path), bytesOf(pathOf(bytes))) << entry.path();
        }
    }
}

TEST(ReadPathFiles, ThatComeInPiecesMayFail) {
    DrawingPath path = pathOf(drawingOf(line));
    const std::string file = drawingOf("0 POINT  10 1  20 1");
    const auto failing = [&, isFirst = true](void* bytes, std::size_t room) mutable {
        if (!isFirst) {
            throw std::runtime_error("the line is dead");
        }
        isFirst = false;
        const std::size_t count = std::min(room, file.size());
        std::memcpy(bytes, file.data(), count);
        return count;
    };
    EXPECT_THROW(converters::readPath(failing, path), std::runtime_error);
    EXPECT_EQ(describe(path), linePoints) << "as it was";
}

TEST(ReadPathFiles, ThatComeInPiecesTellHowFarTheyAre) {
    const std::string file = drawingOf(repeated(1'000'000, std::string(line) + "  ") + line);
    for (const bool isSizeKnown : {true, false}) {
        std::vector<double> parts;
        converters::PathOptions options;
        options.progress = [&](double done) {
            parts.push_back(done);
            return true;
        };
        DrawingPath path;
        EXPECT_TRUE(converters::readPath(piecesOf(file, 4096), path, options,
                                         isSizeKnown ? file.size() : 0));
        EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
        EXPECT_EQ(parts.back(), 1);
        EXPECT_EQ(isSizeKnown, parts.front() > 0);
    }
}

TEST(ReadPathFiles, OfASizeThatIsWrongAreReadAllTheSame) {
    const std::string file = drawingOf(line);
    for (const std::uint64_t size : {std::uint64_t{1}, std::uint64_t{1} << 63}) {
        DrawingPath path;
        EXPECT_TRUE(converters::readPath(piecesOf(file, 10), path, {}, size));
        EXPECT_EQ(describe(path), linePoints);
    }
}

TEST(ReadPathFiles, ReplaceWhatThePathHeld) {
    DrawingPath path = pathOf(drawingOf("0 POINT  10 1  20 1  0 TEXT  8 x"));
    const std::string file = drawingOf(line);
    EXPECT_TRUE(converters::readPath(file.data(), file.size(), path));
    EXPECT_EQ(describe(path), linePoints);
    EXPECT_TRUE(path.leftOut.empty());
}

TEST(ReadPathFiles, NameEveryReason) {
    for (int reason = 0; reason <= static_cast<int>(converters::LeftOutReason::broken); ++reason) {
        EXPECT_STRNE(converters::nameOf(static_cast<converters::LeftOutReason>(reason)), "");
    }
}

} // namespace
