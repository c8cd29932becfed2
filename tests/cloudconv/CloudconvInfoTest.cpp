// cloudconv info: drawings by their path, scans of any program.

#include "tests/support/CloudconvFixture.h"
#include "tests/support/JsonKeys.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Json = nlohmann::json;

const fs::path examples = fs::path(CONVERTERS_TEST_DIR) / "../examples";

class CloudconvInfo : public Cloudconv {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    static Json infoOf(const fs::path& file, const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"info", file, "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        return Json::parse(result.output);
    }
};

/// Programs rely on them: a key may come, none may go.
TEST_F(CloudconvInfo, HasJsonOfTheseKeys) {
    const auto keys = [](const fs::path& file) {
        return keysOf(nlohmann::ordered_json::parse(run({"info", file, "--json"}).output));
    };
    const std::string elements = "notes elements(name count fields(name type fate use))";
    EXPECT_EQ(keys(examples / "ripple_scan.ply"),
              "file format bytes encoding readable points width height organised "
              "points_without_place share_without_place bounds(x y z) intensity " +
                  elements);
    EXPECT_EQ(keys(input("ply\nformat ascii 1.0\nelement vertex 1\nproperty int x\nend_header\n")),
              "file format bytes encoding readable reason " + elements);
    EXPECT_EQ(keys(drawingFile(inMillimetres(line(0, 0, 1, 0) + dxf("0 TEXT  8 0  1 a")))),
              "file format bytes unit unit_of_path notes layers(name entities colour frozen off) "
              "entities(LINE) left_out(kind layer number reason) points bounds(x y z) "
              "contours(count open closed points length way_length) "
              "contour_list(number kind layer entities points length first last)");
}

TEST_F(CloudconvInfo, TellsWhatThePathOfADrawingHolds) {
    const Json info = infoOf(examples / "plate.dxf");
    EXPECT_EQ(info["unit"], "mm");
    EXPECT_EQ(info["entities"]["ARC"], 4);
    EXPECT_EQ(info["contours"]["open"], 1);
    EXPECT_EQ(info["contours"]["closed"], 3);
    EXPECT_EQ(info["bounds"], (Json{{"x", {0.0, 12.0}}, {"y", {0.0, 8.0}}, {"z", {0.0, 0.0}}}));
    EXPECT_NEAR(info["contour_list"][0]["length"], 32 + 2 * 3.14159265, 1e-6);
    EXPECT_THAT(run({"info", examples / "plate.dxf"}).output,
                HasSubstr("\nbounds: x (0, 12), y (0, 8), z (0, 0)\n"));
}

TEST_F(CloudconvInfo, TellsWhatIsLeftOutAndWhichLayersAreHidden) {
    const std::string layers = dxf("0 SECTION  2 TABLES  0 TABLE  2 LAYER") +
                               dxf("0 LAYER  2 COLD  70 1  62 3  6 CONTINUOUS") +
                               dxf("0 LAYER  2 DARK  70 0  62 -5  6 CONTINUOUS") +
                               dxf("0 ENDTAB  0 ENDSEC");
    const std::string cold = onLayer("COLD", line(0, 0, 1, 0));
    const fs::path file = drawingFile(layers + drawing(cold + line(0, 0, 0, 7)));
    Json info = infoOf(file);
    EXPECT_EQ(
        info["left_out"][0],
        (Json{
            {"kind", "LINE"}, {"layer", "COLD"}, {"number", 1}, {"reason", "on a frozen layer"}}));
    std::size_t hidden = 0;
    for (const Json& layer : info["layers"]) {
        hidden += layer["name"] == "COLD" && layer["frozen"] && !layer["off"] ? 1U : 0U;
        hidden += layer["name"] == "DARK" && layer["off"] && !layer["frozen"] ? 1U : 0U;
    }
    EXPECT_EQ(hidden, 2U);
    EXPECT_EQ(info["unit"], nullptr);
    info = infoOf(file, {"--hidden"});
    EXPECT_EQ(info["left_out"], Json::array());
    EXPECT_EQ(info["entities"]["LINE"], 2);
}

TEST_F(CloudconvInfo, SumsUpWhatIsLeftOutOfManyLayers) {
    std::string entities = line(0, 0, 1, 0);
    for (int i = 0; i < 20; ++i) {
        entities += dxf("0 TEXT  8 L" + std::to_string(i) + "  1 a");
    }
    fs::path file = drawingFile(drawing(entities));
    EXPECT_THAT(run({"info", file}).output,
                HasSubstr("  - kind TEXT, layer L19, number 1, reason annotation\npoints"));
    entities += dxf("0 MTEXT  8 L0  1 a") + dxf("0 TEXT  8 M  1 a") + dxf("0 TEXT  8 M  1 a");
    file = drawingFile(drawing(entities));
    EXPECT_THAT(run({"info", file}).output,
                HasSubstr("\nleft out:\n"
                          "  - kind TEXT, layers 21, number 22, reason annotation\n"
                          "  - kind MTEXT, layers 1, number 1, reason annotation\npoints"));
    EXPECT_EQ(infoOf(file)["left_out"].size(), 22U);
}

TEST_F(CloudconvInfo, MeasuresInTheUnitThatIsAskedFor) {
    const Json info = infoOf(drawingFile(inMillimetres(line(0, 0, 50, 0))), {"--unit", "cm"});
    EXPECT_EQ(info["unit_of_path"], "cm");
    EXPECT_DOUBLE_EQ(info["contours"]["length"], 5.0);
}

TEST_F(CloudconvInfo, DescribesScansOfAnyProgram) {
    const Json info = infoOf(input("ply\nformat ascii 1.0\nelement camera 1\nproperty float f\n"
                                   "element vertex 2\nproperty double X\nproperty double Y\n"
                                   "property double Z\nproperty uchar red\n"
                                   "property ushort reflectance\nelement face 1\n"
                                   "property list uchar int vertex_index\nend_header\n"
                                   "1\n4500000.25 2 3 9 70\nnan 5 6 8 7\n3 0 1 1\n"));
    EXPECT_EQ(info["readable"], true);
    EXPECT_EQ(info["points"], 2);
    EXPECT_EQ(info["points_without_place"], 1);
    EXPECT_EQ(info["bounds"]["x"], (Json{4500000.25, 4500000.25}));
    EXPECT_EQ(info["bounds"]["z"], (Json{3.0, 6.0}));
    EXPECT_EQ(info["intensity"], (Json{7.0, 70.0}));
    const Json fields = info["elements"][1]["fields"];
    EXPECT_EQ(fields[0], (Json{{"name", "X"}, {"type", "double"}, {"fate", "read"}, {"use", "x"}}));
    EXPECT_EQ(fields[3]["fate"], "kept");
    EXPECT_EQ(fields[4]["use"], "intensity");
    EXPECT_EQ(info["elements"][2]["fields"][0]["type"], "list uchar int");
    EXPECT_EQ(info["elements"][2]["fields"][0]["fate"], "stepped over: a list");
}

TEST_F(CloudconvInfo, TellsWhyAScanIsRefused) {
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\n"
                             "property float y\nproperty float z\nend_header\n";
    const Json info = infoOf(input(head + "1 2 3\n1,5 2 3\n"));
    EXPECT_EQ(info["readable"], false);
    EXPECT_THAT(info["reason"].get<std::string>(), HasSubstr("1,5"));
    EXPECT_EQ(info["encoding"], "ascii");
    EXPECT_EQ(info["elements"][0]["count"], 2);
    EXPECT_EQ(info.count("points"), 0U);
}

TEST_F(CloudconvInfo, OfWhatIsNeitherIsAFailure) {
    ProgramResult result = run({"info", input("garbage")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("cloudconv: " + in("in.ply").string() + ": "));
    result = run({"info", drawingFile("garbage")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("cloudconv: " + in("in.dxf").string() + ": "));
    EXPECT_EQ(run({"info", in("in.ply"), "--hidden"}).status, 2);
    EXPECT_EQ(run({"info", in("in.dxf"), "--hidden", "--plain"}).status, 2);
}

} // namespace
