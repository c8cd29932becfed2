// Drawings through the command-line tool: into clouds, out of clouds, and what is none.

#include "converters/Converters.h"
#include "tests/support/CloudconvFixture.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// The vertices of an ASCII PLY file, with four numbers each.
std::vector<std::vector<double>> verticesOf(const std::string& file) {
    const std::string end = "end_header\n";
    const char* next = file.c_str() + file.find(end) + end.size();
    std::vector<std::vector<double>> vertices;
    for (char* after = nullptr;; next = after) {
        const double value = std::strtod(next, &after);
        if (after == next) {
            return vertices;
        }
        if (vertices.empty() || vertices.back().size() == 4) {
            vertices.emplace_back();
        }
        vertices.back().push_back(value);
    }
}

class CloudconvPlainDrawing : public CloudconvPlain {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    std::string note(const std::string& text) const {
        return "cloudconv: " + in("in.dxf").string() + ": note: " + text + '\n';
    }
};

TEST_F(CloudconvPlainDrawing, BecomesAWalkWhoseIntensityCountsTheRuns) {
    const fs::path from =
        drawingFile(drawing(line(5, 0, 5.2, 0) + line(0, 0, 0.2, 0) + line(0.2, 0.2, 0.2, 0)));
    const ProgramResult result = run({from, in("out.ply"), "--ascii"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, note("3 entities in 2 runs, 8 points"));
    const std::string written = readFile(in("out.ply"));
    EXPECT_THAT(written, HasSubstr("obj_info num_cols 8\nobj_info num_rows 1\nelement vertex 8\n"));
    const std::vector<std::vector<double>> expected = {
        {0.2, 0, 0.2, 1}, {0.2, 0, 0.1, 1}, {0.2, 0, 0, 1}, {0.1, 0, 0, 1},
        {0, 0, 0, 1},     {5, 0, 0, 2},     {5.1, 0, 0, 2}, {5.2, 0, 0, 2}};
    EXPECT_EQ(verticesOf(written), expected);
}

TEST_F(CloudconvPlainDrawing, TakesOneIntensityForAllPoints) {
    const fs::path from = drawingFile(drawing(line(0, 0, 0.1, 0) + line(1, 0, 1.1, 0)));
    EXPECT_EQ(run({"convert", from, in("out.ply"), "--ascii", "--intensity", "-2.5"}).status, 0);
    for (const std::vector<double>& vertex : verticesOf(readFile(in("out.ply")))) {
        EXPECT_EQ(vertex[3], -2.5);
    }
    EXPECT_EQ(run({in("out.ply"), in("again.ply"), "--ascii", "--intensity=7"}).status, 0);
    EXPECT_EQ(verticesOf(readFile(in("again.ply"))).size(), 4U);
    for (const std::vector<double>& vertex : verticesOf(readFile(in("again.ply")))) {
        EXPECT_EQ(vertex[3], 7);
    }
}

TEST_F(CloudconvPlainDrawing, IsKnownByItsExtensionInAnyCaseOrByTheOption) {
    const std::string bytes = drawing(line(0, 0, 1, 0));
    for (const char* name : {"a.dxf", "a.DXF", "a.b.Dxf"}) {
        writeFile(in(name), bytes);
        EXPECT_EQ(run({in(name), in("out.ply")}).status, 0) << name;
    }
    for (const char* name : {"a", "adxf", "a.dxf.bak", "a.ply"}) {
        writeFile(in(name), bytes);
        EXPECT_EQ(run({in(name), in("out.ply"), "--from", "DXF"}).status, 0) << name;
    }
}

TEST_F(CloudconvPlainDrawing, IsNeitherReadNorWrittenUnderAnExtensionThatSaysSomethingElse) {
    const std::string bytes = drawing(line(0, 0, 1, 0));
    for (const char* name : {"a", "adxf", "a.dxf.bak", "a.pcd", "a.plyx"}) {
        writeFile(in("in.dxf"), bytes);
        const std::string quoted = '"' + in(name).string() + '"';
        ProgramResult result = run({in("in.dxf"), in(name)});
        EXPECT_EQ(result.status, 2) << name;
        EXPECT_EQ(result.errors, "cloudconv: " + quoted +
                                     " ends in none of .ply, .dxf, .csv and .xyz: add --to "
                                     "with one of them\n");
        EXPECT_THAT(names(), ::testing::ElementsAre("in.dxf"));
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"convert", in(name), in("out.ply")},
              {"info", in(name)},
              {"preview", in(name), in("out.png")}}) {
            result = run(command);
            EXPECT_EQ(result.status, 2) << command[0];
            EXPECT_EQ(result.errors, "cloudconv: " + quoted +
                                         " ends neither in .ply nor in .dxf: add --from ply or "
                                         "--from dxf\n");
        }
    }
}

TEST_F(CloudconvPlainDrawing, OfAScanHasOnePointForEachThatHasAPlace) {
    const fs::path from = input("ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                                "property float y\nproperty float z\nproperty float intensity\n"
                                "end_header\n1 2 3 4\nnan nan nan 0\n5.5 6 -7 8\n");
    const ProgramResult result = run({from, in("out.dxf")});
    EXPECT_EQ(result.status, 0);
    const std::string start = "cloudconv: " + from.string() + ": note: ";
    EXPECT_EQ(result.errors, start + "dropped properties: intensity\n" + start +
                                 "left out 1 point without a place (nan or infinite)\n");
    std::vector<unsigned char> expected;
    ASSERT_TRUE(converters::toDxf({{1, 2, 3}, {5.5, 6, -7}}, expected));
    EXPECT_EQ(readFile(in("out.dxf")), std::string(expected.begin(), expected.end()));
}

TEST_F(CloudconvPlainDrawing, OfADrawingHasThePointsOfItsWalkInFull) {
    const std::string bytes = drawing(line(1.0 / 3, 0, 1, 1) + pointAt(1, 2, 3));
    const fs::path from = drawingFile(bytes);
    EXPECT_EQ(run({from, in("out.dxf")}).errors, note("2 entities in 2 runs, 14 points"));
    std::vector<cv::Point3_<double>> walk;
    ASSERT_TRUE(converters::fromDxf({bytes.begin(), bytes.end()}, walk));
    std::vector<unsigned char> expected;
    ASSERT_TRUE(converters::toDxf(walk, expected));
    EXPECT_EQ(readFile(in("out.dxf")), std::string(expected.begin(), expected.end()));
}

TEST_F(CloudconvPlainDrawing, WithoutEntitiesGivesFilesWithoutPointsAndSaysSo) {
    const fs::path from = drawingFile(drawing({}));
    const ProgramResult result = run({from, in("out.ply")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors,
              note("0 entities in 0 runs, 0 points") +
                  note("the drawing holds no points, nor does " + in("out.ply").string()));
    EXPECT_THAT(readFile(in("out.ply")), HasSubstr("\nelement vertex 0\n"));
    EXPECT_EQ(run({in("out.ply"), in("out.dxf")}).status, 0);
    EXPECT_EQ(run({in("out.dxf"), in("again.ply")}).status, 0);
    EXPECT_EQ(readFile(in("again.ply")), readFile(in("out.ply")));
}

TEST_F(CloudconvPlainDrawing, ShippedOneIsFourRunsOfKnownSize) {
    const fs::path examples = fs::path(CONVERTERS_TEST_DIR) / "../examples";
    const std::string plate = examples / "plate.dxf";
    EXPECT_EQ(run({plate, in("plate.ply")}).errors,
              "cloudconv: " + plate + ": note: 12 entities in 4 runs, 683 points\n");
    const std::string withGap = examples / "plate_with_gap.dxf";
    EXPECT_EQ(run({withGap, in("plate.ply")}).errors,
              "cloudconv: " + withGap + ": note: 12 entities in 4 runs, 682 points\n");
}

TEST_F(CloudconvPlainDrawing, InMapCoordinatesIsToldToLosePlaces) {
    const fs::path from =
        drawingFile(drawing(line(4500000.25, 0, 4500000.25, 1) + line(0, 0, 1, 0)));
    const ProgramResult result = run({from, in("out.ply")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr(note("PLY holds coordinates as 32-bit floats: points move "
                                              "by up to 0.25 drawing units")));
}

TEST_F(CloudconvPlainDrawing, ThatIsCutShortOrHasAZeroByteIsConvertedWithANote) {
    std::string bytes = drawing(line(0, 0, 1, 0) + line(2, 0, 3, 0));
    bytes.resize(bytes.size() - std::string("  0\nEOF\n").size());
    ProgramResult result = run({drawingFile(bytes), in("out.ply")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr(note("no EOF mark at the end, the drawing may be cut "
                                              "short")));
    bytes = drawing(line(0, 0, 1, 0));
    const std::size_t size = bytes.size();
    result = run({drawingFile(bytes + '\0' + "tail"), in("out.ply")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr(note("read up to the zero byte at " +
                                              std::to_string(size) + ", 5 bytes are left out")));
}

TEST_F(CloudconvPlainDrawing, SaysNothingWhenQuiet) {
    const ProgramResult result =
        run({drawingFile(drawing(line(0, 0, 1, 0))), in("out.ply"), "--quiet"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output + result.errors, "");
}

class CloudconvPlainNoDrawing : public CloudconvPlainDrawing {
protected:
    void expectRefusal(const std::string& bytes, const std::string& reason) {
        const fs::path from = drawingFile(bytes);
        expectFailure(from, in("out.ply"), from.string() + ": not a DXF text" + reason);
        expectFailure(from, in("out.dxf"), from.string() + ": not a DXF text" + reason);
    }
};

TEST_F(CloudconvPlainNoDrawing, IsAFileOfAnotherKindThatItsFirstBytesTell) {
    using namespace std::string_literals;
    expectRefusal("", ": the file is empty");
    expectRefusal("AutoCAD Binary DXF\r\n\x1A\0\0SECTION\0"s,
                  ": it is a binary DXF; save it as a text (ASCII) DXF");
    expectRefusal("ply\nformat ascii 1.0\nelement vertex 0\nend_header\n", ": it is a PLY file");
    expectRefusal("ply\r\nformat ascii 1.0\r\n", ": it is a PLY file");
    expectRefusal("AC1032\0\0\0"s, ": it is a DWG drawing; save it as a text (ASCII) DXF");
    expectRefusal("\xFF\xFE\x20\0\x30\0\n\0"s, ": it is a text in UTF-16; save it in UTF-8");
    expectRefusal("\xFE\xFF\0\x20\0\x30\0\n"s, ": it is a text in UTF-16; save it in UTF-8");
}

TEST_F(CloudconvPlainNoDrawing, IsGarbage) {
    using namespace std::string_literals;
    expectRefusal("\x7F"
                  "ELF\x02\x01\x01\0\0\0"s,
                  "");
    expectRefusal(std::string(5000, '\0'), "");
    expectRefusal("Dear reader,\nthis is a letter.\n", "");
    expectRefusal("{\"type\": \"FeatureCollection\"}\n", "");
    expectRefusal("0\n1\n2\n3\n", "");
    expectRefusal("\n\n\n", "");
    expectRefusal("0 0\nSECTION\n", "");
    expectRefusal("999\nonly a comment\n", "");
    std::string noise;
    std::uint32_t state = 1;
    for (int i = 0; i < 100000; ++i) {
        state = state * 1664525U + 1013904223U;
        noise += static_cast<char>(state >> 24);
    }
    expectRefusal(noise, "");
}

TEST_F(CloudconvPlainNoDrawing, IsNotATextThatBeginsLikeOne) {
    for (const std::string& bytes :
         {std::string("0\nEOF\n"), std::string("  0\r\nSECTION\r\n"),
          std::string("999\ncomment\n999\n\n0\nSECTION\n"), std::string("\xEF\xBB\xBF  0\nEOF\n"),
          std::string("0\nLINE\n"), drawing(dxf("0 TEXT  1 ply"))}) {
        EXPECT_EQ(run({drawingFile(bytes), in("out.ply")}).status, 0) << bytes;
    }
    // What holds an entity is a drawing, however it begins.
    const ProgramResult result =
        run({drawingFile("first\nsecond\n" + drawing(line(0, 0, 1, 0))), in("out.ply")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, note("1 entity in 1 run, 11 points"));
}

class CloudconvPlainStreams : public CloudconvPlainDrawing {
protected:
    static std::function<void()> standardInput(const fs::path& path) {
        return [path] {
            if (std::freopen(path.c_str(), "rb", stdin) == nullptr) {
                _exit(99);
            }
        };
    }
};

TEST_F(CloudconvPlainStreams, AreReadAndWritten) {
    const fs::path from = drawingFile(drawing(line(0, 0, 1, 0)));
    ASSERT_EQ(run({from, in("out.ply")}).status, 0);
    const ProgramResult result =
        run({"convert", "-", "-", "--from", "dxf", "--to", "ply"}, standardInput(from));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, readFile(in("out.ply")));
    EXPECT_EQ(result.errors, "cloudconv: standard input: note: 1 entity in 1 run, 11 points\n");
    EXPECT_EQ(run({"-", in("again.ply"), "--from=dxf"}, standardInput(from)).status, 0);
    EXPECT_EQ(readFile(in("again.ply")), result.output);
}

TEST_F(CloudconvPlainStreams, GetNothingWhenTheConversionFails) {
    const ProgramResult result =
        run({"-", "-", "--from=dxf", "--to=ply"}, standardInput(drawingFile("garbage")));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "cloudconv: standard input: not a DXF text\n");
}

TEST_F(CloudconvPlainStreams, ThatAreFullOrClosedAreNamed) {
    const fs::path from = drawingFile(drawing(line(0, 0, 1, 0)));
    const std::vector<std::string> arguments = {from, "-", "--to=ply", "--quiet"};
    const auto full = [] { static_cast<void>(std::freopen("/dev/full", "wb", stdout)); };
    ProgramResult result = run(arguments, full);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: standard output: No space left on device\n");
    result = run(arguments, [] { close(STDOUT_FILENO); });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: standard output: Bad file descriptor\n");
    result = run({"-", in("out.ply"), "--from=ply"}, [] { close(STDIN_FILENO); });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: standard input: Bad file descriptor\n");
}

TEST_F(CloudconvPlainStreams, NeedAFormat) {
    const fs::path from = drawingFile(drawing(line(0, 0, 1, 0)));
    ProgramResult result = run({from, "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "cloudconv: \"-\" ends in none of .ply, .dxf, .csv and .xyz: add --to with one of "
              "them\n");
    result = run({"-", in("out.ply")});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "cloudconv: \"-\" ends neither in .ply nor in .dxf: add --from ply or --from dxf\n");
}

TEST_F(CloudconvPlainDrawing, OptionsOfTheOtherFormatAreWrongUsage) {
    const fs::path from = drawingFile(drawing(line(0, 0, 1, 0)));
    const std::vector<std::vector<std::string>> wrong = {
        {from, in("out.dxf"), "--ascii"},
        {from, in("out.dxf"), "--intensity", "1"},
        {from, in("out.ply"), "--from", "stl"},
        {from, in("out.ply"), "--intensity", "much"},
        {"convert", from},
        {"convert"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << ::testing::PrintToString(arguments);
        EXPECT_NE(result.errors, "");
        EXPECT_EQ(names(), std::vector<std::string>{"in.dxf"});
    }
}

TEST_F(CloudconvPlainDrawing, HelpOfTheCommandShowsAnExample) {
    const ProgramResult result = run({"convert", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("cloudconv convert drawing.dxf path.ply"));
}

} // namespace
