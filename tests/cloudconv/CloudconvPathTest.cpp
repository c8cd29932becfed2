// cloudconv convert of drawings, by their path.

#include "converters/DrawingPath.h"
#include "converters/Scan.h"
#include "tests/support/CloudconvFixture.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Texts = std::vector<std::string>;

class CloudconvPath : public Cloudconv {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    /// What a conversion of this drawing writes to a file with this extension.
    std::string converted(const std::string& bytes, const std::string& extension,
                          const Texts& options = {}) const {
        const fs::path output = in("out" + extension);
        Texts arguments = {drawingFile(bytes), output};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        return readFile(output);
    }

    /// The points as blanks separate them.
    std::string xyzOf(const std::string& bytes, const Texts& options = {}) const {
        return converted(bytes, ".xyz", options);
    }
};

TEST_F(CloudconvPath, WritesPointsAndContoursAsText) {
    const std::string two = inMillimetres(line(0, 0, 0.5, 2) + line(5, 0, 6, 0));
    EXPECT_EQ(converted(two, ".csv"), "x,y,z,contour\n0,0,0,1\n0.5,2,0,1\n5,0,0,2\n6,0,0,2\n");
    EXPECT_EQ(xyzOf(two), "0 0 0 1\n0.5 2 0 1\n5 0 0 2\n6 0 0 2\n");
    EXPECT_EQ(xyzOf(two, {"--intensity", "7"}), "0 0 0 7\n0.5 2 0 7\n5 0 0 7\n6 0 0 7\n");
}

TEST_F(CloudconvPath, WritesOneRowOfPointsAsPly) {
    EXPECT_EQ(converted(inMillimetres(line(0, 0, 0.5, 2)), ".ply", {"--ascii"}),
              "ply\nformat ascii 1.0\nobj_info num_cols 2\nobj_info num_rows 1\n"
              "element vertex 2\nproperty float x\nproperty float y\nproperty float z\n"
              "property float intensity\nend_header\n0 0 0 1\n0.5 2 0 1\n");
}

TEST_F(CloudconvPath, WritesContoursAsPolylinesOnTheirLayersIntoADrawing) {
    const std::string drawn =
        inMillimetres(onLayer("cut", line(0, 0, 3, 0)) + onLayer("cut", line(3, 0, 3, 4)));
    const std::string written = converted(drawn, ".dxf");
    EXPECT_THAT(written, HasSubstr("POLYLINE\n  8\ncut\n"));
    EXPECT_THAT(written, ::testing::Not(HasSubstr("POINT\n")));
    writeFile(in("again.dxf"), written);
    const ProgramResult result = run({in("again.dxf"), in("again.xyz")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(readFile(in("again.xyz")), "0 0 0 1\n3 0 0 1\n3 4 0 1\n");
}

TEST_F(CloudconvPath, FollowsTheOptions) {
    const std::string file = inMillimetres(line(0, 0, 10, 0) + onLayer("Aux 1", line(0, 5, 20, 5)));
    EXPECT_EQ(xyzOf(file, {"--unit", "cm"}), "0 0 0 1\n1 0 0 1\n0 0.5 0 2\n2 0.5 0 2\n");
    EXPECT_EQ(xyzOf(file, {"--scale", "3", "--layer", "0"}), "0 0 0 1\n30 0 0 1\n");
    EXPECT_EQ(xyzOf(file, {"--except-layer", "aux*"}), "0 0 0 1\n10 0 0 1\n");
    EXPECT_EQ(xyzOf(file, {"--layer", "AUX ?", "--axes", "plain"}), "0 0 5 1\n20 0 5 1\n");
    EXPECT_EQ(xyzOf(file, {"--layer", "0", "--step", "5"}), "0 0 0 1\n5 0 0 1\n10 0 0 1\n");
    EXPECT_EQ(xyzOf(file, {"--layer", "0", "--layer", "aux 1"}),
              "0 0 0 1\n10 0 0 1\n0 5 0 2\n20 5 0 2\n");
    EXPECT_EQ(xyzOf(inMillimetres(line(0, 0, 10, 0) + line(0, 5, 12, 5)), {"--order", "nearest"}),
              "0 0 0 1\n10 0 0 1\n12 5 0 2\n0 5 0 2\n");
    const ProgramResult result = run({drawingFile(file), in("out.ply"), "--max-points", "3"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("more than 3 points"));
}

TEST_F(CloudconvPath, TakesFewerPointsWithMoreTolerance) {
    const std::string circle = inMillimetres(dxf("0 CIRCLE  8 0  10 0  20 0  40 9"));
    const auto lines = [](const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    };
    EXPECT_GT(lines(xyzOf(circle)), 2 * lines(xyzOf(circle, {"--tolerance", "0.5"})));
}

TEST_F(CloudconvPath, SaysWhatIsLeftOutAndWhy) {
    const fs::path file = drawingFile(inMillimetres(line(0, 0, 1, 0) + dxf("0 TEXT  8 0  1 a") +
                                                    dxf("0 INSERT  8 0  2 MISSING") +
                                                    onLayer("AUX", line(5, 5, 6, 5))));
    const ProgramResult result = run({file, in("out.ply"), "--except-layer", "aux"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("left out: 1 TEXT (annotation); "));
    EXPECT_THAT(result.errors, HasSubstr("1 LINE (on a layer not asked for: AUX)"));
    EXPECT_THAT(result.errors, HasSubstr("1 INSERT (of a missing block)"));
    EXPECT_EQ(run({file, in("out.ply"), "--quiet"}).errors, "");
}

TEST_F(CloudconvPath, FailsWhenNothingIsLeftButNotOfAnEmptyDrawing) {
    const fs::path file = drawingFile(drawing(dxf("0 TEXT  8 0  1 a")));
    expectFailure(file, in("out.ply"),
                  file.string() + ": nothing is left to follow; left out: 1 TEXT (annotation)");
    EXPECT_THAT(converted(drawing({}), ".ply"), HasSubstr("element vertex 0\n"));
}

TEST_F(CloudconvPath, SaysOfADrawingThatIsCutShortWhyNothingIsLeft) {
    const fs::path file = drawingFile(dxf("0 SECTION  2 HEADER  9 $INSUNITS  70 4  0 ENDSEC  "
                                          "0 SECTION  2 ENTITIES  0 LINE  8 a  10 1"));
    const std::string start = "cloudconv: " + file.string() + ": ";
    const std::string failure = start + "nothing is left to follow; left out: 1 LINE (broken)\n";
    EXPECT_EQ(run({file, in("out.ply")}).errors,
              start + "note: the file has no end mark; it may be cut short\n" + failure);
    EXPECT_EQ(run({file, in("out.ply"), "--quiet"}).errors, failure);
}

/// Circles that become some hundred points each, with a tolerance of 0.01.
std::string circles(std::size_t number) {
    std::string entities;
    for (std::size_t i = 0; i < number; ++i) {
        entities += dxf("0 CIRCLE  8 0  10 " + std::to_string(i) + "  20 5  40 100");
    }
    return inMillimetres(entities);
}

TEST_F(CloudconvPath, WritesAllPointsOfDrawingsThatItFollowsTwice) {
    const std::string drawn = circles(4000);
    converters::DrawingPath path;
    ASSERT_TRUE(converters::readPath(drawn.data(), drawn.size(), path));
    ASSERT_GT(path.points.size(), 800'000U);
    const std::string file = converted(drawn, ".ply");
    pcl::PointCloud<pcl::PointXYZI> cloud;
    ASSERT_TRUE(converters::readScan(file.data(), file.size(), cloud));
    ASSERT_EQ(cloud.size(), path.points.size());
    EXPECT_EQ(cloud.height, 1U);
    std::size_t wrong = 0;
    for (std::size_t number = 0; number < path.contours.size(); ++number) {
        const converters::PathContour& contour = path.contours[number];
        for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
            const cv::Point3_<double>& point = path.points[i];
            wrong += cloud[i].x == static_cast<float>(point.x) &&
                             cloud[i].y == static_cast<float>(point.y) && cloud[i].z == 0.0F &&
                             cloud[i].intensity == static_cast<float>(number + 1)
                         ? 0
                         : 1;
        }
    }
    EXPECT_EQ(wrong, 0U);
    EXPECT_THAT(
        run({in("in.dxf"), in("out.ply")}).errors,
        HasSubstr("4000 entities in 4000 contours, " + std::to_string(cloud.size()) + " points\n"));
}

TEST_F(CloudconvPath, WritesNothingOfADrawingOfTooManyPoints) {
    const fs::path file = drawingFile(circles(4000));
    for (const std::string most : {"1000", "700000"}) {
        writeFile(in("out.csv"), "as it was");
        const ProgramResult result = run({file, in("out.csv"), "--max-points", most});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors,
                  "cloudconv: " + file.string() + ": more than " + most + " points\n");
        EXPECT_EQ(readFile(in("out.csv")), "as it was");
        const ProgramResult streamed = run({file, "-", "--to", "csv", "--max-points", most});
        EXPECT_EQ(streamed.status, 1);
        EXPECT_EQ(streamed.output, "");
        EXPECT_EQ(run({file, in("missing") / "out.csv", "--max-points", most}).errors,
                  result.errors);
    }
}

TEST_F(CloudconvPath, TakesTheMemoryOfTheDrawingNotThatOfItsPoints) {
    if (!unmeasuredMemory().empty()) {
        GTEST_SKIP() << unmeasuredMemory();
    }
    constexpr long room = 16L << 10;
    const fs::path file = drawingFile(circles(4000));
    for (const std::string extension : {".ply", ".csv"}) {
        const auto memoryFor = [&](const std::string& tolerance) {
            return mostMemoryOf({file, in("out" + extension), "-q", "--tolerance", tolerance});
        };
        const long few = memoryFor("1");
        const long many = memoryFor("0.001");
        EXPECT_LT(many, few + room);
        EXPECT_GT(fs::file_size(in("out" + extension)), 30'000'000U);
    }
}

TEST_F(CloudconvPath, TakesThePointsOfAContourOnce) {
    if (!unmeasuredMemory().empty()) {
        GTEST_SKIP() << unmeasuredMemory();
    }
    constexpr long room = 16L << 10;
    constexpr long points = 3'000'000;
    constexpr long kibibytes = points * 24 / 1024;
    const fs::path file = drawingFile(inMillimetres(line(0, 0, points, 0)));
    for (const std::string extension : {".ply", ".csv"}) {
        const auto memoryFor = [&](const std::string& step) {
            return mostMemoryOf({file, in("out" + extension), "-q", "--step", step});
        };
        EXPECT_LT(memoryFor("1"), memoryFor("1000") + kibibytes + room) << extension;
    }
}

TEST_F(CloudconvPath, ReadsANamedPipe) {
    const fs::path file = drawingFile(inMillimetres(line(0, 0, 1, 0)));
    const std::string pipe = in("pipe.dxf");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(pipe) << readFile(file); });
    EXPECT_EQ(run({pipe, in("out.xyz")}).status, 0);
    writer.join();
    EXPECT_EQ(readFile(in("out.xyz")), "0 0 0 1\n1 0 0 1\n");
}

TEST_F(CloudconvPath, ReplacesItsInputOnlyWhenForced) {
    const std::string bytes = inMillimetres(line(0, 0, 1, 0));
    const fs::path file = drawingFile(bytes);
    const ProgramResult refused = run({file, file, "--to=ply"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("--force"));
    EXPECT_EQ(readFile(file), bytes);
    EXPECT_EQ(run({file, file, "--to=xyz", "--force"}).status, 0);
    EXPECT_EQ(readFile(file), "0 0 0 1\n1 0 0 1\n");
}

TEST_F(CloudconvPath, ReadsBinaryDrawings) {
    const auto coordinate = [](unsigned char code, const std::string& bytes) {
        return std::string{static_cast<char>(code), '\0'} + bytes;
    };
    const auto text = [](unsigned char code, const std::string& value) {
        return std::string{static_cast<char>(code), '\0'} + value + '\0';
    };
    const std::string zero(8, '\0');
    const std::string two = std::string(7, '\0') + '\x40';
    const std::string bytes = std::string("AutoCAD Binary DXF\r\n\x1A") + '\0' +
                              text(0, "SECTION") + text(2, "ENTITIES") + text(0, "LINE") +
                              text(8, "0") + coordinate(10, zero) + coordinate(20, zero) +
                              coordinate(11, two) + coordinate(21, two) + text(0, "ENDSEC") +
                              text(0, "EOF");
    EXPECT_EQ(xyzOf(bytes), "0 0 0 1\n2 2 0 1\n");
}

TEST_F(CloudconvPath, SaysInPrintableWordsWhatAnOptionTakes) {
    const auto whyNot = [&](const Texts& options) {
        Texts arguments = {drawingFile(inMillimetres(line(0, 0, 1, 0))), in("out.ply")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult refused = run(arguments);
        EXPECT_EQ(refused.status, 2);
        return refused.errors;
    };
    const std::string help = ": see \"cloudconv convert --help\"\n";
    EXPECT_EQ(whyNot({"--order", "best"}),
              "cloudconv: --order: \"best\" is none of drawn, inside-first, nearest" + help);
    EXPECT_EQ(whyNot({"--axes", "z"}), "cloudconv: --axes: \"z\" is none of drawing, plain" + help);
    EXPECT_EQ(whyNot({"--unit", "mile"}),
              "cloudconv: --unit: \"mile\" is none of cm, ft, in, m, mm" + help);
    EXPECT_EQ(whyNot({"--to", "doc"}),
              "cloudconv: --to: \"doc\" is none of csv, dxf, ply, xyz" + help);
    EXPECT_EQ(whyNot({"--max-points", "0"}),
              "cloudconv: --max-points: \"0\" is not a number from 1 to 1e+15" + help);
}

TEST_F(CloudconvPath, TakesChoicesInWhateverCase) {
    const std::string drawing = inMillimetres(line(0, 0, 10, 0));
    EXPECT_EQ(xyzOf(drawing, {"--unit", "CM", "--axes", "Plain", "--order", "Inside-First"}),
              "0 0 0 1\n1 0 0 1\n");
}

TEST_F(CloudconvPath, RefusesOptionsThatMakeNoSense) {
    const std::string file = drawingFile(inMillimetres(line(0, 0, 1, 0)));
    for (const Texts& options :
         {Texts{"--tolerance", "0"}, Texts{"--tolerance", "nan"}, Texts{"--step", "-1"},
          Texts{"--join", "-1"}, Texts{"--unit", "parsec"}, Texts{"--order", "shuffled"},
          Texts{"--axes", "x"}, Texts{"--max-points", "0"}, Texts{"--xyzi"},
          Texts{"--shift", "auto"}, Texts{"--plain", "--step", "1"}}) {
        Texts arguments = {file, in("out.ply")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(run(arguments).status, 2) << ::testing::PrintToString(options);
    }
    EXPECT_EQ(names(), Texts{"in.dxf"});
}

} // namespace
