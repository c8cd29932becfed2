#include "dxfeditor/detail/DxfIntake.h"

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/detail/DxfParser.h"
#include "tests/support/BareDxflib.h"
#include "tests/support/DrawingText.h"
#include "tests/support/RandomDrawing.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using dxfeditor::dxfIntake;
using dxfeditor::dxfInteger;

/// Fails a test that hangs.
class DxfIntake : public testing::Test {
protected:
    void SetUp() override { alarm(300); }
    void TearDown() override { alarm(0); }
};

std::string drawingOf(const std::string& text) {
    DXFDocument document;
    DXFReader(document).load(std::vector<char>(text.begin(), text.end()));
    return describe(document);
}

std::string drawingByDxflib(const std::string& text) {
    DXFDocument document;
    BareReader reader(document);
    parseWithDxflib(text, reader);
    return describe(document);
}

std::vector<std::string> callsOf(const std::string& text) {
    CallbackRecorder recorder;
    dxfeditor::parseDxf(text, recorder);
    return recorder.calls;
}

std::vector<std::string> callsByDxflib(const std::string& text) {
    CallbackRecorder recorder;
    parseWithDxflib(text, recorder);
    return recorder.calls;
}

/// The first lines in which two lists differ, or nothing.
std::string difference(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (inA == a.end() && inB == b.end()) {
        return "";
    }
    return (inA == a.end() ? "nothing" : *inA) + "\n" + (inB == b.end() ? "nothing" : *inB);
}

TEST_F(DxfIntake, PutsOneUnknownObjectInPlaceOfThoseThatItDrops) {
    EXPECT_EQ(
        dxfIntake(
            dxf({"9",   "$ACADVER", "1",   "AC1009",   "0",    "LINE",  "8",    "a", "10", "1",
                 "999", "comment",  "100", "AcDbLine", "1001", "APP",   "1000", "x", "0",  "TEXT",
                 "1",   "text",     "0",   "ENDSEC",   "0",    "POINT", "20",   "2", "0",  "EOF"})),
        dxf({"0", "DROPPED", "0", "LINE", "8", "a", "10", "1", "0", "DROPPED", "0", "POINT", "20",
             "2", "0", "DROPPED"}));
}

TEST_F(DxfIntake, PutsCountsFirst) {
    EXPECT_EQ(dxfIntake(dxf({"0", "SPLINE", "40", "1", "73", "1", "10", "2", "41", "3", "11", "4",
                             "0", "EOF"})),
              dxf({"0", "SPLINE", "72", "1", "73", "1", "74", "1", "40", "1", "10", "2", "41", "3",
                   "11", "4", "0", "DROPPED"}));
}

TEST_F(DxfIntake, ReadsIntegersAsTheCLibraryDoes) {
    for (const char* text : {"",
                             " ",
                             "0",
                             "-0",
                             "7",
                             " 7",
                             "\t\v\f\r7",
                             "+7",
                             "-7",
                             "- 7",
                             "--7",
                             "+-7",
                             "7a",
                             "a7",
                             "0x1F",
                             "010",
                             "2147483647",
                             "2147483648",
                             "-2147483648",
                             "-2147483649",
                             "4294967296",
                             "4294967297",
                             "9223372036854775807",
                             "9223372036854775808",
                             "-9223372036854775807",
                             "-9223372036854775808",
                             "-9223372036854775809",
                             "99999999999999999999999999999",
                             "-99999999999999999999999999999",
                             "1.9",
                             "00000000000000000000000000000000000012"}) {
        EXPECT_EQ(dxfInteger(text), static_cast<int>(std::strtol(text, nullptr, 10))) << text;
    }
}

TEST_F(DxfIntake, ChangesNothingThatDxflibReportsOfRandomDrawings) {
    std::size_t calls = 0;
    for (std::uint32_t seed = 0; seed < 800; ++seed) {
        const std::string text = randomDrawing(seed);
        const std::vector<std::string> expected = callsByDxflib(text);
        ASSERT_EQ(difference(callsOf(text), expected), "") << "seed " << seed << '\n' << text;
        calls += expected.size();
    }
    EXPECT_GT(calls, 20000U);
}

TEST_F(DxfIntake, ChangesNothingInTheDocumentsOfRandomDrawings) {
    for (std::uint32_t seed = 10000; seed < 10800; ++seed) {
        const std::string text = randomDrawing(seed);
        ASSERT_EQ(drawingOf(text), drawingByDxflib(text)) << "seed " << seed << '\n' << text;
    }
}

TEST_F(DxfIntake, ChangesNothingOfALongDrawing) {
    const std::string text = randomDrawing(1, 60000);
    ASSERT_GT(text.size(), 1000000U);
    EXPECT_EQ(difference(callsOf(text), callsByDxflib(text)), "");
}

TEST_F(DxfIntake, ChangesNothingOfDrawingsByOtherPrograms) {
    const std::filesystem::path folder = std::filesystem::path(CONVERTERS_SAMPLE_DIR) / "drawings";
    if (!std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "no drawings in " << folder;
    }
    int compared = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        // dxflib by itself does not return from its long lines.
        if (file.path().extension() != ".dxf" || file.path().filename() == "mtext_long_line.dxf") {
            continue;
        }
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        EXPECT_EQ(difference(callsOf(text), callsByDxflib(text)), "") << file.path();
        EXPECT_EQ(drawingOf(text), drawingByDxflib(text)) << file.path();
        ++compared;
    }
    EXPECT_GE(compared, 4);
}

TEST_F(DxfIntake, ReadsADrawingWithLongLines) {
    const std::filesystem::path file =
        std::filesystem::path(CONVERTERS_SAMPLE_DIR) / "drawings" / "mtext_long_line.dxf";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP() << "no " << file;
    }
    const std::shared_ptr<DXFDocument> document = DXFDocument::load(file);
    ASSERT_NE(document, nullptr);
    EXPECT_FALSE(document->layers().empty());
}

TEST_F(DxfIntake, GivesDxflibNothingHarmfulOfHostileTexts) {
    for (std::uint32_t seed = 0; seed < 1000; ++seed) {
        const std::string text = mutated(randomDrawing(seed), seed);
        const std::string intake = dxfIntake(text.substr(0, text.find('\0')));
        std::size_t longest = 0;
        for (std::size_t begin = 0; begin < intake.size();) {
            const std::size_t end = intake.find('\n', begin);
            longest = std::max(longest, end - begin);
            begin = end + 1;
        }
        ASSERT_LE(longest, 1023U) << "seed " << seed;
        // Values promised and not given: a control point is described in eight bytes.
        ASSERT_LE(drawingOf(text).size(), 10000 + text.size() * 40) << "seed " << seed;
        // What the intake wrote needs no second one.
        ASSERT_EQ(drawingByDxflib(intake), drawingOf(text)) << "seed " << seed << '\n' << text;
    }
}

} // namespace
