// cloudconv convert of scans of any program, streamed.

#include "tests/support/CloudconvFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Texts = std::vector<std::string>;

const std::string coordinates = "property float x\nproperty float y\nproperty float z\n";

std::string asciiScan(const std::string& vertices, const std::string& properties,
                      const std::string& body) {
    return "ply\nformat ascii 1.0\nelement vertex " + vertices + '\n' + properties +
           "end_header\n" + body;
}

class CloudconvScan : public Cloudconv {
protected:
    std::string converted(const std::string& bytes, const std::string& extension,
                          const Texts& options = {}) const {
        const fs::path output = in("out" + extension);
        Texts arguments = {input(bytes), output};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        return readFile(output);
    }
};

const std::string coloured =
    asciiScan("2",
              "property double x\nproperty double y\nproperty double z\nproperty uchar red\n"
              "property float nx\nproperty ushort intensity\n",
              "0.1 2 3 255 0.5 7\n4500000.125 5 6 0 -1 65535\n");

TEST_F(CloudconvScan, KeepsEveryPropertyUnderItsNameAndType) {
    const std::string text = converted(coloured, ".ply", {"--ascii"});
    EXPECT_THAT(text, HasSubstr("property double x\nproperty double y\nproperty double z\n"
                                "property uchar red\nproperty float nx\n"
                                "property ushort intensity\nend_header\n"
                                "0.1 2 3 255 0.5 7\n4500000.125 5 6 0 -1 65535\n"));
    EXPECT_EQ(converted(text, ".ply", {"--ascii"}), text);
}

TEST_F(CloudconvScan, IsTheSameThroughBinary) {
    const std::string text = converted(coloured, ".ply", {"--ascii"});
    const std::string binary = converted(coloured, ".ply");
    EXPECT_THAT(binary, HasSubstr("format binary_little_endian 1.0\n"));
    EXPECT_EQ(converted(binary, ".ply", {"--ascii"}), text);
}

TEST_F(CloudconvScan, WritesPositionAndIntensityAloneWhenAsked) {
    EXPECT_THAT(converted(coloured, ".ply", {"--ascii", "--xyzi", "--shift", "4500000,0,0"}),
                HasSubstr(coordinates + "property float intensity\nend_header\n"
                                        "-4500000 2 3 7\n0.125 5 6 65535\n"));
    EXPECT_THAT(run({in("in.ply"), in("out.ply"), "--xyzi"}).errors,
                HasSubstr("dropped properties: red, nx\n"));
}

TEST_F(CloudconvScan, TakesTheIntensityFromThePropertyThatIsNamed) {
    EXPECT_THAT(converted(coloured, ".ply", {"--ascii", "--xyzi", "--intensity-from", "red"}),
                HasSubstr("property float intensity\nend_header\n0.1 2 3 255\n4500000 5 6 0\n"));
    const ProgramResult result =
        run({in("in.ply"), in("out.ply"), "--intensity-from", "no_such_property"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("no_such_property"));
}

TEST_F(CloudconvScan, ShiftsInDoublePrecision) {
    EXPECT_EQ(converted(coloured, ".xyz", {"--shift", "0.1,2,3", "--xyzi"}),
              "0 0 0 7\n4500000 3 3 65535\n");
    for (const char* shift : {"1,2", "1,2,3,4", "a,b,c", "nan,0,0", "", "1;2;3"}) {
        EXPECT_EQ(run({in("in.ply"), in("out.ply"), "--shift", shift}).status, 2) << shift;
    }
    EXPECT_THAT(run({in("in.ply"), in("out.ply"), "--xyzi"}).errors, HasSubstr("(--shift auto)\n"));
    const std::string far =
        asciiScan("2", "property double x\nproperty double y\nproperty double z\n",
                  "4500000.125 2 3\n4500001.25 5 6\n");
    EXPECT_EQ(converted(far, ".xyz", {"--shift", "auto", "--xyzi", "--quiet"}),
              "0.125 2 3 0\n1.25 5 6 0\n");
}

TEST_F(CloudconvScan, WritesTextsForSpreadsheetsAndOtherPrograms) {
    EXPECT_EQ(converted(coloured, ".csv"), "x,y,z,red,nx,intensity\n0.1,2,3,255,0.5,7\n"
                                           "4500000.125,5,6,0,-1,65535\n");
    EXPECT_EQ(converted(coloured, ".xyz"), "0.1 2 3 255 0.5 7\n4500000.125 5 6 0 -1 65535\n");
}

TEST_F(CloudconvScan, WritesDigitsThatReadBackTheSameOrAsManyAsAsked) {
    const std::string scan = asciiScan("1", coordinates + "property float intensity\n",
                                       "0.123456789 16777217 -1e-7 3.14159274\n");
    EXPECT_EQ(converted(scan, ".xyz"), "0.12345679 16777216 -1e-07 3.1415927\n");
    const auto bodyOf = [](const std::string& text) {
        return text.substr(text.find("end_header\n"));
    };
    const std::string six = converted(scan, ".ply", {"--ascii", "--digits", "6"});
    EXPECT_EQ(bodyOf(six), bodyOf(converted(scan, ".ply", {"--ascii", "--plain"})));
}

TEST_F(CloudconvScan, ReadsBigEndianFilesAndStepsOverOtherElements) {
    const std::string scan = "ply\nformat binary_big_endian 1.0\nelement vertex 1\n" + coordinates +
                             "element face 1\nproperty list uchar int vertex_index\nend_header\n" +
                             std::string("\x3F\x80\0\0\x40\0\0\0\x40\x40\0\0\x01\0\0\0\0", 17);
    EXPECT_EQ(converted(scan, ".xyz"), "1 2 3\n");
    EXPECT_THAT(run({in("in.ply"), in("out.ply")}).errors, HasSubstr("dropped elements: 1 face\n"));
}

TEST_F(CloudconvScan, GoesThroughPipes) {
    const std::string file = input(asciiScan("1", coordinates, "1 2 3\n"));
    const ProgramResult result = runProgram(
        {"/bin/bash", "-c", "cat \"$1\" | " + toolCommand().back() + " - - --from ply --to xyz",
         "bash", file});
    if (toolCommand().size() > 1) {
        GTEST_SKIP() << "emulated";
    }
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "1 2 3\n");
}

TEST_F(CloudconvScan, ReplacesItsInputOnlyWhenForced) {
    const std::string scan = asciiScan("1", coordinates, "1 2 3\n");
    const fs::path file = input(scan);
    EXPECT_EQ(run({file, file}).status, 2);
    EXPECT_EQ(readFile(file), scan);
    EXPECT_EQ(run({file, file, "--force"}).status, 0);
    EXPECT_THAT(readFile(file), HasSubstr("binary_little_endian"));
    EXPECT_EQ(names(), Texts{"in.ply"});
}

TEST_F(CloudconvScan, RefusesWhatIsNoNumberOrNotWhole) {
    for (const char* const body : {"1,5 2 3\n", "1 2\n", "1 2 x\n", ""}) {
        const fs::path file = input(asciiScan("1", coordinates, body));
        writeFile(in("out.ply"), "old");
        const ProgramResult result = run({file, in("out.ply")});
        EXPECT_EQ(result.status, 1) << body;
        EXPECT_EQ(readFile(in("out.ply")), "old");
        EXPECT_THAT(result.errors, HasSubstr("cloudconv: " + file.string() + ": "));
    }
    EXPECT_EQ(run({input(coloured), in("out.ply"), "--hidden"}).status, 2);
}

TEST_F(CloudconvScan, LeavesPointsWithoutAPlaceOutOfDrawings) {
    const std::string drawing = converted(asciiScan("2", coordinates, "nan 2 3\n1 2 3\n"), ".dxf");
    EXPECT_EQ(drawing.find("nan"), std::string::npos);
    EXPECT_THAT(run({in("in.ply"), in("out.dxf")}).errors,
                HasSubstr("left out 1 point without a place"));
}

/// A binary scan of so many points of 16 bytes.
void writeLargeScan(const fs::path& path, std::size_t points) {
    std::ofstream stream(path, std::ios::binary);
    stream << "ply\nformat binary_little_endian 1.0\nelement vertex " << points << '\n'
           << coordinates << "property float intensity\nend_header\n";
    constexpr std::size_t blockSize = 65536;
    const std::string block(16 * blockSize, '\x3C');
    for (std::size_t written = 0; written < points; written += blockSize) {
        const std::size_t count = std::min(blockSize, points - written);
        stream.write(block.data(), static_cast<std::streamsize>(16 * count));
    }
}

/// What the program maps of its libraries counts, too: so a small file is the measure.
TEST_F(CloudconvScan, TakesNoMoreMemoryForLargeFilesThanForSmallOnes) {
    if (!unmeasuredMemory().empty()) {
        GTEST_SKIP() << unmeasuredMemory();
    }
    constexpr std::size_t large = 8'000'000;
    constexpr long most = 64L << 10;
    constexpr long room = 8L << 10;
    writeLargeScan(in("small.ply"), 200'000);
    writeLargeScan(in("large.ply"), large);
    for (const Texts& arguments : {Texts{"convert", "OUT.ply", "-q"},
                                   Texts{"convert", "OUT.csv", "-q"}, Texts{"info", "", "-q"}}) {
        const auto memoryOf = [&](const std::string& scan) {
            return mostMemoryOf({arguments[0], in(scan),
                                 arguments[1].empty() ? "-q" : std::string(in(arguments[1])),
                                 "-q"});
        };
        const long small = memoryOf("small.ply");
        const long whole = memoryOf("large.ply");
        EXPECT_LT(whole, small + room) << arguments[0] << ' ' << arguments[1];
        EXPECT_LT(whole - small, most);
        fs::remove(in("OUT.ply"));
        fs::remove(in("OUT.csv"));
    }
}

} // namespace
