// The programs in examples/, run as their readers run them.

#include "converters/Converters.h"
#include "tests/support/ChildProgram.h"
#include "tests/support/SamePoints.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <vector>

namespace {

using ::testing::HasSubstr;

/// Runs an example, behind the emulator where one is needed.
ProgramResult runExample(const std::string& path, const std::vector<std::string>& arguments) {
    std::istringstream words(EXAMPLES_EMULATOR);
    std::vector<std::string> command = {std::istream_iterator<std::string>(words),
                                        std::istream_iterator<std::string>()};
    command.push_back(path);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command);
}

pcl::PointCloud<pcl::PointXYZI> readCloud(const std::string& path) {
    std::vector<unsigned char> file;
    EXPECT_TRUE(converters::from_file(path, file));
    pcl::PointCloud<pcl::PointXYZI> cloud;
    EXPECT_TRUE(converters::fromPly(file, cloud).success);
    return cloud;
}

class Examples : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return m_folder.file(name); }
    std::string fileOf(const std::string& name, const std::string& content) const {
        writeContent(file(name), content);
        return file(name);
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(Examples, ScanToPlyWritesTheOrganisedScanInBothForms) {
    const ProgramResult binary = runExample(SCAN_TO_PLY, {file("scan.ply")});
    EXPECT_EQ(binary.status, 0) << binary.errors;
    EXPECT_THAT(binary.output, HasSubstr("scan.ply: 16 x 12 pixels, "));
    const ProgramResult ascii = runExample(SCAN_TO_PLY, {file("text.ply"), "--ascii"});
    EXPECT_EQ(ascii.status, 0) << ascii.errors;
    EXPECT_THAT(contentOf(file("text.ply")), HasSubstr("\nformat ascii 1.0\n"));

    const auto scan = readCloud(file("scan.ply"));
    const auto text = readCloud(file("text.ply"));
    ASSERT_EQ(scan.width, 16U);
    ASSERT_EQ(scan.height, 12U);
    ASSERT_EQ(text.size(), scan.size());
    EXPECT_TRUE(std::isnan(scan(0, 0).x));
    EXPECT_TRUE(std::isnan(scan(15, 11).z));
    EXPECT_EQ(scan(3, 2).x, 0.03F);
    EXPECT_EQ(scan(3, 2).intensity, 2.0F);
    EXPECT_NEAR(text(3, 2).z, scan(3, 2).z, 1e-8);
}

TEST_F(Examples, ScanToPlyTellsThatItCannotWrite) {
    const ProgramResult result = runExample(SCAN_TO_PLY, {file("no folder/scan.ply")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "scan_to_ply: cannot write " + file("no folder/scan.ply") + '\n');
    EXPECT_EQ(runExample(SCAN_TO_PLY, {}).status, 2);
    EXPECT_EQ(runExample(SCAN_TO_PLY, {file("scan.ply"), "--text"}).status, 2);
}

TEST_F(Examples, DrawingToWalkPrintsThePointsOfEachContour) {
    const std::string drawing = fileOf("part.dxf", "0\nSECTION\n2\nENTITIES\n"
                                                   "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n0.2\n21\n0\n"
                                                   "0\nLINE\n8\n0\n10\n5\n20\n1\n11\n5\n21\n1.5\n"
                                                   "0\nENDSEC\n0\nEOF\n");
    const ProgramResult result = runExample(DRAWING_TO_WALK, {drawing});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "contour,x,y,z\n"
                             "0,5,0,1\n0,5,0,1.1000000000000001\n0,5,0,1.2\n0,5,0,1.3\n"
                             "0,5,0,1.3999999999999999\n0,5,0,1.5\n"
                             "1,0,0,0\n1,0.10000000000000001,0,0\n1,0.20000000000000001,0,0\n");
    EXPECT_EQ(result.errors, "contour 0: open, 6 points, 0.5 long\n"
                             "contour 1: open, 3 points, 0.2 long\n");
}

TEST_F(Examples, DrawingToWalkTellsThatAGapBreaksTheOutlineOfThePlate) {
    const ProgramResult whole = runExample(DRAWING_TO_WALK, {EXAMPLES_FOLDER "/plate.dxf"});
    EXPECT_EQ(whole.status, 0);
    EXPECT_THAT(whole.errors, HasSubstr("contour 3: closed, "));
    const ProgramResult broken =
        runExample(DRAWING_TO_WALK, {EXAMPLES_FOLDER "/plate_with_gap.dxf"});
    EXPECT_EQ(broken.status, 0);
    EXPECT_THAT(broken.errors, HasSubstr("contour 3: open, "));
}

TEST_F(Examples, DrawingToWalkTellsThatItCannotRead) {
    const ProgramResult result = runExample(DRAWING_TO_WALK, {file("missing.dxf")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "drawing_to_walk: cannot read " + file("missing.dxf") + '\n');
    EXPECT_EQ(runExample(DRAWING_TO_WALK, {}).status, 2);
}

/// An open contour in millimetres: a straight line, and a quarter of a circle on another layer; and
/// a text.
const std::string slotDrawing = "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n4\n0\nENDSEC\n"
                                "0\nSECTION\n2\nENTITIES\n"
                                "0\nLINE\n8\ncut\n10\n0\n20\n0\n11\n3\n21\n0\n"
                                "0\nARC\n8\nround\n10\n3\n20\n2\n40\n2\n50\n270\n51\n0\n"
                                "0\nTEXT\n8\nnotes\n10\n0\n20\n0\n1\nslot\n"
                                "0\nENDSEC\n0\nEOF\n";

TEST_F(Examples, DrawingToMovesPrintsLinesAndArcs) {
    const ProgramResult result = runExample(DRAWING_TO_MOVES, {fileOf("slot.dxf", slotDrawing)});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "go to 0 0 0: open contour on layer cut, 6.14159 long\n"
                             "line to 3 0 0\n"
                             "arc to 5 2 0 about 3 2 0, axis 0 0 1, 90 degrees\n");
    EXPECT_EQ(result.errors, "left out: 1 TEXT on layer notes (annotation)\n");
}

TEST_F(Examples, DrawingToMovesTellsWhyItCannotRead) {
    const ProgramResult result = runExample(DRAWING_TO_MOVES, {fileOf("not.dxf", "\x89PNG")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("not.dxf: no DXF file"));
    EXPECT_EQ(runExample(DRAWING_TO_MOVES, {}).status, 2);
}

TEST_F(Examples, RobotLoopMovesAsFarInEachTickAsTheSpeedSays) {
    const ProgramResult result =
        runExample(ROBOT_LOOP, {fileOf("slot.dxf", slotDrawing), "10", "0.1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    // 6.14 mm at 10 mm/s are seven ticks, of which the last ones lie on the arc.
    std::istringstream lines(result.output);
    std::vector<std::string> all;
    for (std::string line; std::getline(lines, line);) {
        all.push_back(line);
    }
    ASSERT_EQ(all.size(), 7U);
    EXPECT_EQ(all[0], "0,0,0,0,1");
    EXPECT_EQ(all[1], "0.1,1,0,0,1");
    EXPECT_EQ(all[3], "0.3,3,0,0,1");
    double x = 0;
    double y = 0;
    ASSERT_EQ(std::sscanf(all[6].c_str(), "0.6,%lf,%lf,0,1", &x, &y), 2) << all[6];
    EXPECT_NEAR(std::hypot(x - 3, y - 2), 2, 0.02);
    EXPECT_NEAR(std::atan2(y - 2, x - 3), -0.0708, 0.01);
}

TEST_F(Examples, RobotLoopTellsWhatIsWrong) {
    EXPECT_EQ(runExample(ROBOT_LOOP, {file("missing.dxf"), "10", "0.1"}).status, 1);
    EXPECT_EQ(runExample(ROBOT_LOOP, {file("missing.dxf"), "0", "0.1"}).status, 2);
    EXPECT_EQ(runExample(ROBOT_LOOP, {file("missing.dxf")}).status, 2);
    const std::string empty = fileOf("empty.dxf", "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    const ProgramResult nothing = runExample(ROBOT_LOOP, {empty, "10", "0.1"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_THAT(nothing.errors, HasSubstr("empty.dxf: nothing to follow"));
}

TEST_F(Examples, ScanToBoundsReadsScansOfOtherPrograms) {
    const std::string scan =
        fileOf("mesh.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty double x\n"
                           "property double y\nproperty double z\nproperty uchar red\n"
                           "element face 1\nproperty list uchar int vertex_indices\nend_header\n"
                           "4512000.25 1 2 9\n4512001.5 -3 nan 9\n4512003.75 5 -7 9\n3 0 1 2\n");
    const ProgramResult result = runExample(SCAN_TO_BOUNDS, {scan});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "x 4512000.25 to 4512003.75\ny 1 to 5\nz -7 to 2\n");
    EXPECT_THAT(result.errors, HasSubstr("3 points, ascii\nvertex x, double\n"));
    EXPECT_THAT(result.errors, HasSubstr("face vertex_indices, int: not read\n"));
}

TEST_F(Examples, ScanToBoundsTellsWhyItCannotRead) {
    const std::string scan =
        fileOf("comma.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
                            "property float y\nproperty float z\nend_header\n1,5 2 3\n");
    const ProgramResult result = runExample(SCAN_TO_BOUNDS, {scan});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "scan_to_bounds: " + scan + ": line 8: '1,5' is no number; a decimal comma?\n");
    EXPECT_EQ(runExample(SCAN_TO_BOUNDS, {}).status, 2);
}

TEST_F(Examples, CloudToDrawingLeavesOutMissingPoints) {
    const std::string scan = fileOf("scan.ply", "ply\nformat ascii 1.0\nelement vertex 4\n"
                                                "property float x\nproperty float y\n"
                                                "property float z\nend_header\n"
                                                "1 2 3\nnan nan nan\n4 inf 6\n0.5 0 -7\n");
    const ProgramResult result = runExample(CLOUD_TO_DRAWING, {scan, file("points.dxf")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, file("points.dxf") + ": 2 points\n");

    std::vector<unsigned char> drawing;
    ASSERT_TRUE(converters::toDxf({{1, 2, 3}, {0.5, 0, -7}}, drawing));
    EXPECT_EQ(contentOf(file("points.dxf")), std::string(drawing.begin(), drawing.end()));
}

TEST_F(Examples, CloudToDrawingTellsWhatIsWrongWithItsFiles) {
    const ProgramResult missing =
        runExample(CLOUD_TO_DRAWING, {file("missing.ply"), file("points.dxf")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "cloud_to_drawing: cannot read " + file("missing.ply") + '\n');

    const std::string mesh = fileOf("mesh.ply", "ply\nelement vertex 1\nelement face 0\n");
    const ProgramResult refused = runExample(CLOUD_TO_DRAWING, {mesh, file("points.dxf")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "cloud_to_drawing: " + mesh + " is refused\n");

    const std::string noWidth = fileOf("bad.ply", "ply\nobj_info num_cols x\nelement vertex 1\n");
    EXPECT_EQ(runExample(CLOUD_TO_DRAWING, {noWidth, file("points.dxf")}).status, 1);
    EXPECT_EQ(contentOf(file("points.dxf")), "");

    const std::string scan = fileOf("empty.ply", "ply\nelement vertex 0\nend_header\n");
    EXPECT_EQ(runExample(CLOUD_TO_DRAWING, {scan, file("no folder/points.dxf")}).status, 1);
    EXPECT_EQ(runExample(CLOUD_TO_DRAWING, {scan}).status, 2);
}

} // namespace
