// cloudconv info by the fixed rules, and what all commands have in common.

#include "tests/support/CloudconvFixture.h"
#include "tests/support/JsonKeys.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Json = nlohmann::json;

class CloudconvFiles : public Cloudconv {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    static Json infoOf(const fs::path& file) {
        const ProgramResult result = run({"info", file, "--json", "--plain"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        return Json::parse(result.output);
    }
};

using CloudconvInfoPlain = CloudconvFiles;

const fs::path examples = fs::path(CONVERTERS_TEST_DIR) / "../examples";

TEST_F(CloudconvInfoPlain, DescribesTheShippedScan) {
    const Json info = infoOf(examples / "ripple_scan.ply");
    EXPECT_EQ(info["format"], "PLY");
    EXPECT_EQ(info["encoding"], "ascii");
    EXPECT_EQ(info["readable"], true);
    EXPECT_EQ(info["points"], 1200);
    EXPECT_EQ(info["width"], 40);
    EXPECT_EQ(info["height"], 30);
    EXPECT_EQ(info["organised"], true);
    EXPECT_EQ(info["points_without_place"], 19);
    EXPECT_DOUBLE_EQ(info["share_without_place"], 19.0 / 1200);
    EXPECT_EQ(info["bounds"], (Json{{"x", {-2.0, 1.9}}, {"y", {-1.5, 1.4}}, {"z", {-0.2, 0.2}}}));
    EXPECT_EQ(info["elements"][0]["count"], 1200);
    EXPECT_EQ(info["elements"][0]["fields"].size(), 4U);
    EXPECT_THAT(run({"info", examples / "ripple_scan.ply", "--plain"}).output,
                HasSubstr("\nintensity: 0, 255\n"
                          "elements:\n"
                          "  - name: vertex\n"
                          "    count: 1200\n"
                          "    fields:\n"
                          "      - name x, type float, fate read\n"));
}

/// Programs rely on them: a key may come, none may go.
TEST_F(CloudconvInfoPlain, HasJsonOfTheseKeys) {
    const auto keys = [](const fs::path& file) {
        return keysOf(
            nlohmann::ordered_json::parse(run({"info", file, "--json", "--plain"}).output));
    };
    const std::string elements = "elements(name count fields(name type fate))";
    EXPECT_EQ(keys(examples / "ripple_scan.ply"),
              "file format bytes encoding readable points width height organised "
              "points_without_place share_without_place bounds(x y z) intensity " +
                  elements);
    EXPECT_EQ(keys(input("ply\nelement vertex 1\nproperty int x\nend_header\n")),
              "file format bytes encoding readable reason " + elements);
    EXPECT_EQ(keys(examples / "plate.dxf"),
              "file format bytes version unit layers(name entities colour frozen) "
              "entities(ARC CIRCLE LINE LWPOLYLINE POLYLINE SPLINE) ignored_entities "
              "ignored_in_blocks bulged_edges_walked_straight points bounds_in_drawing(x y z) "
              "bounds_in_cloud(x y z) contours(count open closed circles points length) "
              "contour_list(number kind points length first last)");
}

TEST_F(CloudconvInfoPlain, ShowsHeadersThatMakeNoSenseAsTheyAre) {
    const Json info = infoOf(input("ply\nelement vertex 99999999999999999999999\n"
                                   "element face many\nproperty float x\nend_header\n"));
    EXPECT_EQ(info["readable"], false);
    EXPECT_EQ(info["encoding"], nullptr);
    EXPECT_EQ(info["elements"][0]["count"], "99999999999999999999999");
    EXPECT_EQ(info["elements"][1]["count"], "many");
}

TEST_F(CloudconvInfoPlain, TellsWhatBecomesOfEachFieldAndWhyAFileIsRefused) {
    const Json info = infoOf(input("ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
                                   "property double y\nproperty float64 z\nproperty uchar red\n"
                                   "element face 2\nproperty list uchar int vertex_index\n"
                                   "end_header\n"));
    EXPECT_EQ(info["readable"], false);
    EXPECT_EQ(info["reason"], "[PlyDeserializer::ReadHeader] Error parsing ply, line: 8 element "
                              "type 'face' not supported");
    const Json fields = info["elements"][0]["fields"];
    EXPECT_EQ(fields[0]["fate"], "read");
    EXPECT_EQ(fields[1]["fate"], "dropped: it has to be of type float");
    EXPECT_EQ(fields[2]["fate"], "not seen: the reader knows no type float64");
    EXPECT_EQ(fields[3]["fate"], "dropped: the cloud has no place for it");
    EXPECT_EQ(info["elements"][1]["fields"][0], (Json{{"name", "vertex_index"},
                                                      {"type", "list uchar int"},
                                                      {"fate", "refused: lists are not read"}}));
}

TEST_F(CloudconvInfoPlain, TakesWordsApartAsTheLibraryDoes) {
    const Json info = infoOf(input("ply element\fvertex\v00\nproperty float\fx\nend_header\n"));
    EXPECT_EQ(info["readable"], true);
    EXPECT_EQ(info["elements"][0]["count"], 0);
    EXPECT_EQ(info["elements"][0]["fields"][0],
              (Json{{"name", "x"}, {"type", "float"}, {"fate", "read"}}));
}

TEST_F(CloudconvInfoPlain, DescribesCloudsWithoutPlacesOrPoints) {
    const std::string head = "ply\nformat ascii 1.0\nelement vertex ";
    const std::string fields =
        "\nproperty float x\nproperty float y\nproperty float z\nend_header\n";
    Json info = infoOf(input(head + "2" + fields + "nan nan nan\ninf 1 2\n"));
    EXPECT_EQ(info["points_without_place"], 2);
    EXPECT_EQ(info["share_without_place"], 1.0);
    EXPECT_EQ(info["bounds"]["x"], nullptr);
    EXPECT_EQ(info["intensity"], nullptr);
    info = infoOf(input(head + "0" + fields));
    EXPECT_EQ(info["points"], 0);
    EXPECT_EQ(info["share_without_place"], 0.0);
}

TEST_F(CloudconvInfoPlain, DescribesTheShippedDrawing) {
    const Json info = infoOf(examples / "plate.dxf");
    EXPECT_EQ(info["format"], "DXF");
    EXPECT_EQ(info["version"], "AC1015");
    EXPECT_EQ(info["unit"], "mm");
    EXPECT_EQ(info["layers"][0],
              (Json{{"name", "OUTLINE"}, {"entities", 8}, {"colour", 7}, {"frozen", false}}));
    EXPECT_EQ(info["entities"], (Json{{"ARC", 4},
                                      {"CIRCLE", 1},
                                      {"LINE", 4},
                                      {"LWPOLYLINE", 1},
                                      {"POLYLINE", 1},
                                      {"SPLINE", 1}}));
    EXPECT_EQ(info["points"], 683);
    EXPECT_EQ(info["bounds_in_drawing"]["y"], (Json{0.0, 8.0}));
    EXPECT_EQ(info["bounds_in_cloud"]["z"], (Json{0.0, 8.0}));
    const Json contours = info["contours"];
    EXPECT_EQ(contours["open"], 1);
    EXPECT_EQ(contours["closed"], 2);
    EXPECT_EQ(contours["circles"], 1);
    EXPECT_NEAR(info["contour_list"][3]["length"], 32 + 2 * 3.14159, 0.01);
    EXPECT_EQ(infoOf(examples / "plate_with_gap.dxf")["contours"]["closed"], 1);
}

TEST_F(CloudconvInfoPlain, CountsWhatIsPassedOverByKind) {
    const Json info =
        infoOf(drawingFile(dxf("0 SECTION  2 BLOCKS  0 BLOCK  2 B") + line(0, 0, 1, 0) +
                           line(0, 0, 1, 0) + dxf("0 ENDBLK  0 ENDSEC") +
                           drawing(dxf("0 TEXT  1 a") + dxf("0 TEXT  1 b") + dxf("0 INSERT  2 B") +
                                   line(0, 0, 2, 0))));
    EXPECT_EQ(info["entities"], (Json{{"LINE", 1}}));
    EXPECT_EQ(info["ignored_entities"], (Json{{"INSERT", 1}, {"TEXT", 2}}));
    EXPECT_EQ(info["ignored_in_blocks"], (Json{{"LINE", 2}}));
    EXPECT_EQ(info["points"], 21);
}

TEST_F(CloudconvInfoPlain, HasBoundsOfPointsInBothCoordinates) {
    const Json info =
        infoOf(drawingFile(drawing(pointAt(1, 2, 3) + pointAt(4, 5, 6) + line(0, 0, 0, 9))));
    EXPECT_EQ(info["bounds_in_drawing"],
              (Json{{"x", {0.0, 4.0}}, {"y", {0.0, 9.0}}, {"z", {0.0, 6.0}}}));
    EXPECT_EQ(info["bounds_in_cloud"],
              (Json{{"x", {0.0, 4.0}}, {"y", {0.0, 5.0}}, {"z", {-6.0, 9.0}}}));
    EXPECT_EQ(info["contour_list"][1]["kind"], "points");
}

/// The kinds of a drawing's contours, in the order of its walk.
std::vector<std::string> kindsOf(const Json& info) {
    std::vector<std::string> kinds;
    for (const Json& contour : info["contour_list"]) {
        kinds.push_back(contour["kind"]);
    }
    return kinds;
}

TEST_F(CloudconvInfoPlain, KnowsCirclesFromWhatLooksLikeThem) {
    const std::string circle = dxf("0 CIRCLE  8 0  10 5  20 5  40 1");
    const std::string tiny = dxf("0 CIRCLE  8 0  10 8  20 8  40 0.004");
    const Json info = infoOf(drawingFile(
        drawing(circle + pointAt(6, 5, 0) + tiny + arc(11, 5, 1, 0, 359) + circle + circle)));
    EXPECT_EQ(info["contours"]["circles"], 1) << "the tiny one: the others are joined";
    const Json alone = infoOf(drawingFile(
        drawing(circle + pointAt(6, 5, 0) + tiny + arc(11, 5, 1, 0, 359) + line(0, 0, 1, 0))));
    EXPECT_EQ(kindsOf(alone), (std::vector<std::string>{"open", "open", "circle", "circle"}));
    EXPECT_EQ(kindsOf(infoOf(drawingFile(drawing(circle + line(6, 5, 6.3, 5))))),
              std::vector<std::string>{"open"});
    EXPECT_EQ(kindsOf(infoOf(drawingFile(drawing(circle + line(6, 5, 6.05, 5))))),
              std::vector<std::string>{"circle"})
        << "a line that is a single point in the walk";
}

TEST_F(CloudconvInfoPlain, KnowsPointsThatAreJoined) {
    const std::string first = pointAt(0, 0, 1) + pointAt(0, 0, 2);
    const std::string second = pointAt(0, 0, 2) + pointAt(0, 3, 3);
    const Json info =
        infoOf(drawingFile(drawing(first + line(9, 9, 10, 9) + second + line(7, 7, 8, 7))));
    EXPECT_EQ(kindsOf(info), (std::vector<std::string>{"open", "points", "open"}));
    EXPECT_EQ(info["contour_list"][1]["points"], 3);
    EXPECT_EQ(info["contour_list"][1]["length"], 0.0);
    EXPECT_EQ(info["bounds_in_drawing"]["z"], (Json{0.0, 3.0}));
}

TEST_F(CloudconvInfoPlain, IsReadableAsTextAndCutsLongLists) {
    std::string lines;
    for (int i = 0; i < 30; ++i) {
        lines += line(i, 0, i, 5);
    }
    const ProgramResult result = run({"info", drawingFile(drawing(lines)), "--plain"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("\nentities: LINE 30\n"));
    EXPECT_THAT(result.output, HasSubstr("\nbounds in cloud: x (0, 29), y (0, 0), z (0, 5)\n"));
    EXPECT_THAT(result.output, HasSubstr("\n  - number 20, kind open, points 51, length 5, first "
                                         "(10, 0, 0), last (10, 0, 5)\n"
                                         "  - and 10 more, all with --json\n"));
}

TEST_F(CloudconvInfoPlain, SurvivesNamesThatAreNotUtf8) {
    const fs::path file =
        drawingFile(drawing(dxf("0 LINE  8 gr\xFCn\x1B  10 0  20 0  11 1  21 0")));
    EXPECT_EQ(infoOf(file)["layers"].size(), 1U);
    EXPECT_THAT(run({"info", file, "--plain"}).output, HasSubstr("gr\xFCn\\x1B"));
}

TEST_F(CloudconvInfoPlain, OfWhatIsNeitherIsAFailure) {
    ProgramResult result = run({"info", input("garbage"), "--plain"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "cloudconv: " + in("in.ply").string() + ": not a PLY file\n");
    result = run({"info", drawingFile("garbage"), "--plain"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: " + in("in.dxf").string() + ": not a DXF text\n");
    EXPECT_EQ(run({"info"}).status, 2);
    EXPECT_EQ(run({"info", "-"}).status, 2);
}

TEST_F(CloudconvFiles, NumbersOfAllOptionsHaveToBeNumbers) {
    const std::string file = drawingFile(inMillimetres(line(0, 0, 1, 0) + line(2, 0, 3, 0)));
    const std::vector<std::vector<std::string>> commands = {
        {"check", file, "--distance"},
        {"preview", file, in("out.png"), "--distance"},
        {"convert", file, in("out.ply"), "--intensity"},
        {file, in("out.ply"), "--intensity"}};
    for (const std::vector<std::string>& command : commands) {
        for (const char* number : {"nan", "-nan", "NAN", "nan(1)", "inf", "-inf", "infinity",
                                   "1e999", "-1e999", "text", "1x", "1,5", "", " ", "--", "1 2"}) {
            std::vector<std::string> arguments = command;
            arguments.back() += '=' + std::string(number);
            ProgramResult result = run(arguments);
            EXPECT_EQ(result.status, 2) << ::testing::PrintToString(arguments);
            EXPECT_THAT(result.errors, HasSubstr(command[command.size() - 1]));
            EXPECT_EQ(result.output, "");
            arguments.back() = command.back();
            arguments.emplace_back(number);
            EXPECT_EQ(run(arguments).status, 2) << ::testing::PrintToString(arguments);
        }
        EXPECT_EQ(names(), std::vector<std::string>{"in.dxf"});
    }
    for (const char* distance : {"-1", "0", "0.0009", "-0.1"}) {
        EXPECT_EQ(run({"check", file, "--distance", distance}).status, 2) << distance;
        EXPECT_EQ(run({"preview", file, in("a.svg"), "--distance", distance}).status, 2);
    }
    // The lines are 1 apart.
    const std::vector<std::pair<const char*, int>> statuses = {
        {"0.001", 0}, {"+0.5", 0}, {"5", 3}, {"1e9", 3}, {"1e308", 3}};
    for (const auto& [distance, status] : statuses) {
        EXPECT_EQ(run({"check", file, "--distance", distance}).status, status) << distance;
    }
    EXPECT_EQ(run({file, in("out.ply"), "--intensity", "1e39"}).status, 2) << "no float";
    EXPECT_EQ(run({file, in("out.ply"), "--intensity", "-3e38"}).status, 0);
}

TEST_F(CloudconvFiles, HelpOfEveryCommandShowsAnExample) {
    for (const char* command : {"convert", "info", "check", "preview"}) {
        const ProgramResult result = run({command, "--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.output, HasSubstr("\n  cloudconv " + std::string(command) + ' '));
    }
}

} // namespace
