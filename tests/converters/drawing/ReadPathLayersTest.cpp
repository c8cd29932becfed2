// Which layer and colour entities are drawn in, and what is hidden.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"

#include <gtest/gtest.h>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathOptions;

/// A block "a" with a point on each of these layers.
std::string pointsOn(const std::vector<std::string>& layers) {
    std::string contents;
    for (const std::string& layer : layers) {
        contents += "0 POINT  8 " + layer + "  10 0  20 0  ";
    }
    return section("BLOCKS", "0 BLOCK  2 a  10 0  20 0  " + contents + "0 ENDBLK");
}

/// The layers that contours are on.
std::vector<std::string> layersOf(const DrawingPath& path) {
    std::vector<std::string> layers;
    for (const PathContour& contour : path.contours) {
        layers.push_back(path.layers.at(contour.layer).name);
    }
    return layers;
}

using Names = std::vector<std::string>;

const std::string plain = layerTable(layerGroups("0", 0, 7) + layerGroups("Off", 0, -5) +
                                     layerGroups("Frozen", 1, 3) + layerGroups("Locked", 4, 2));

TEST(ReadPathLayers, AreThoseOfTheTableThenThoseThatComeUp) {
    const DrawingPath path = pathOf(drawingOf("0 POINT  8 new  10 0  20 0", plain));
    ASSERT_EQ(path.layers.size(), 5U);
    EXPECT_EQ(path.layers[0].name, "0");
    EXPECT_EQ(path.layers[1].name, "Off");
    EXPECT_TRUE(path.layers[1].off);
    EXPECT_EQ(path.layers[1].colour, 5);
    EXPECT_TRUE(path.layers[2].frozen);
    EXPECT_FALSE(path.layers[2].off);
    EXPECT_EQ(path.layers[4].name, "new");
    EXPECT_EQ(path.layers[4].colour, 7);
}

TEST(ReadPathLayers, AreTheSameWhateverTheCase) {
    const DrawingPath path =
        pathOf(drawingOf("0 POINT  8 FROZEN  10 0  20 0  0 POINT  8 offf  10 0  20 0", plain));
    EXPECT_EQ(layersOf(path), Names{"offf"});
    EXPECT_EQ(leftOut(path), "1 POINT on Frozen: on a frozen layer\n");
}

TEST(ReadPathLayers, MayComeBehindTheEntities) {
    EXPECT_EQ(leftOut(pathOf(section("ENTITIES", "0 POINT  8 Off  10 0  20 0") + plain)),
              "1 POINT on Off: on a layer that is off\n");
}

TEST(ReadPathLayers, ThatAreOffOrFrozenAreLeftOut) {
    const std::string file = drawingOf(
        "0 POINT  8 Off  10 1  20 0  0 POINT  8 Frozen  10 2  20 0  0 POINT  8 Locked  10 "
        "3  20 0  0 POINT  60 1  10 4  20 0  0 TEXT  8 Frozen",
        plain);
    const DrawingPath path = pathOf(file);
    EXPECT_EQ(describe(path), "(3, 0)\n");
    EXPECT_EQ(leftOut(path), "1 POINT on Off: on a layer that is off\n"
                             "1 POINT on Frozen: on a frozen layer\n1 POINT on 0: invisible\n"
                             "1 TEXT on Frozen: on a frozen layer\n");
    PathOptions hidden;
    hidden.hidden = true;
    EXPECT_EQ(describe(pathOf(file, hidden)), "(1, 0)\n(2, 0)\n(3, 0)\n(4, 0)\n");
    EXPECT_EQ(leftOut(pathOf(file, hidden)), "1 TEXT on Frozen: annotation\n");
}

TEST(ReadPathLayers, OfAnInsertAreThoseOfWhatItsBlockHoldsOnLayerZero) {
    EXPECT_EQ(layersOf(pathOf(drawingOf("0 INSERT  8 walls  2 a", pointsOn({"0", "doors"})))),
              (Names{"walls", "doors"}));
}

TEST(ReadPathLayers, OfAFrozenInsertHideAllThatItDraws) {
    const DrawingPath path =
        pathOf(drawingOf("0 INSERT  8 Frozen  2 a", plain + pointsOn({"0", "doors"})));
    EXPECT_TRUE(path.contours.empty());
    EXPECT_EQ(leftOut(path), "1 INSERT on Frozen: on a frozen layer\n");
}

TEST(ReadPathLayers, OfAnInsertThatIsOffHideWhatIsOnLayerZero) {
    const DrawingPath path =
        pathOf(drawingOf("0 INSERT  8 Off  2 a", plain + pointsOn({"0", "doors", "Frozen"})));
    EXPECT_EQ(layersOf(path), Names{"doors"});
    EXPECT_EQ(leftOut(path), "1 POINT on Off: on a layer that is off\n"
                             "1 POINT on Frozen: on a frozen layer\n");
}

TEST(ReadPathLayers, OfNestedInsertsOnLayerZeroAreThoseOfTheOuterOne) {
    const std::string blocks = section(
        "BLOCKS", "0 BLOCK  2 inner  0 POINT  8 0  10 0  20 0  0 ENDBLK  "
                  "0 BLOCK  2 a  0 INSERT  8 0  2 inner  0 INSERT  8 doors  2 inner  0 ENDBLK");
    EXPECT_EQ(layersOf(pathOf(drawingOf("0 INSERT  8 walls  2 a", blocks))),
              (Names{"walls", "doors"}));
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 INSERT  8 Frozen  2 a", plain + blocks))),
              "1 INSERT on Frozen: on a frozen layer\n");
}

TEST(ReadPathLayers, OfInvisibleInsertsDoNotMatter) {
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 INSERT  8 w  60 1  2 a", pointsOn({"0", "doors"})))),
              "1 INSERT on w: invisible\n");
}

TEST(ReadPathLayers, AreChosenByNames) {
    const std::string file =
        drawingOf("0 POINT  8 Walls  10 1  20 0  0 POINT  8 walls-2  10 2  20 0  "
                  "0 POINT  8 doors  10 3  20 0  0 INSERT  8 doors  2 a",
                  pointsOn({"0", "WALLS"}));
    PathOptions options;
    options.layers = {"WALLS*"};
    EXPECT_EQ(layersOf(pathOf(file, options)), (Names{"WALLS", "walls-2", "WALLS"}));
    EXPECT_EQ(leftOut(pathOf(file, options)), "2 POINT on doors: on a layer not asked for\n");
    options.exceptLayers = {"*-?"};
    EXPECT_EQ(layersOf(pathOf(file, options)), (Names{"WALLS", "WALLS"}));
    options.layers = {"nothing", "doors"};
    EXPECT_EQ(layersOf(pathOf(file, options)), (Names{"doors", "doors"}));
}

TEST(ReadPathLayers, HaveUtf8NamesWhateverTheCodePage) {
    const auto nameIn = [](const std::string& header, const std::string& name) {
        const DrawingPath path =
            pathOf(drawingOf("0 POINT  8 " + name + "  10 0  20 0", section("HEADER", header)));
        return path.layers.at(path.contours.at(0).layer).name;
    };
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1021", "T\xC3\xBCr"), "T\xC3\xBCr");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_1252", "T\xFCr"), "T\xC3\xBCr");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_1251", "\xD1"), "\xD0\xA1");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_932", "\x95\x5C"),
              "\xE8\xA1\xA8");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1009  9 $DWGCODEPAGE  3 dos850", "\x81"), "\xC3\xBC");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 nonsense", "\xFC"), "\xC3\xBC");
    // Nothing says which: what is UTF-8 is taken as such.
    EXPECT_EQ(nameIn("", "T\xC3\xBCr"), "T\xC3\xBCr");
    EXPECT_EQ(nameIn("", "T\xFCr"), "T\xC3\xBCr");
    // Nor does ANSI_1252, which stands in the headers of programs that write UTF-8.
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_1252", "T\xC3\xBCr"),
              "T\xC3\xBCr");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 nonsense", "\xE8\xA1\xA8"),
              "\xE8\xA1\xA8");
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_1252", "\xC3\xBC\xFC"),
              "\xC3\x83\xC2\xBC\xC3\xBC");
    // Others mean what they say: of two Cyrillic letters, some are valid UTF-8.
    EXPECT_EQ(nameIn("9 $ACADVER  1 AC1015  9 $DWGCODEPAGE  3 ANSI_1251", "\xCB\xB8"),
              "\xD0\x9B\xD1\x91");
}

TEST(ReadPathLayers, HaveNamesWithEscapes) {
    const auto nameOf = [](const std::string& name) {
        const DrawingPath path = pathOf(drawingOf("0 POINT  8 " + name + "  10 0  20 0"));
        return path.layers.at(path.contours.at(0).layer).name;
    };
    EXPECT_EQ(nameOf("T\\U+00FCr"), "T\xC3\xBCr");
    EXPECT_EQ(nameOf("\\U+d83d\\U+dE00"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(nameOf("\\U+D83Dx"), "\xEF\xBF\xBDx");
    EXPECT_EQ(nameOf("\\U+00"), "\\U+00");
    EXPECT_EQ(nameOf("\\M+1955C"), "\xE8\xA1\xA8");
    EXPECT_EQ(nameOf("\\M+9955C\\"), "\\M+9955C\\");
}

TEST(ReadPathLayers, HaveValidUtf8NamesWhateverIsInThem) {
    const DrawingPath path = pathOf(
        drawingOf("0 POINT  8 a\xFF\xC3  10 0  20 0", section("HEADER", "9 $ACADVER  1 AC1027")));
    EXPECT_EQ(path.layers.at(path.contours.at(0).layer).name, "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ReadPathColours, AreThoseOfTheEntityItsLayerOrItsInsert) {
    const std::string before =
        layerTable(layerGroups("walls", 0, 3)) +
        section("BLOCKS", "0 BLOCK  2 a  0 POINT  8 0  62 0  10 0  20 0  0 POINT  8 0  10 0  20 0  "
                          "0 ENDBLK");
    const DrawingPath path = pathOf(
        drawingOf("0 POINT  8 walls  10 0  20 0  0 POINT  8 walls  62 5  10 0  20 0  "
                  "0 POINT  8 walls  62 5  420 1193046  10 0  20 0  0 POINT  62 0  10 0  20 0  "
                  "0 INSERT  8 walls  62 6  2 a",
                  before));
    ASSERT_EQ(path.contours.size(), 6U);
    const auto expect = [&](std::size_t contour, int colour, int trueColour) {
        EXPECT_EQ(path.contours[contour].colour, colour) << contour;
        EXPECT_EQ(path.contours[contour].trueColour, trueColour) << contour;
    };
    expect(0, 3, -1);
    expect(1, 5, -1);
    expect(2, 5, 0x123456);
    expect(3, 7, -1);
    expect(4, 6, -1);
    expect(5, 3, -1);
}

TEST(ReadPathSpaces, ThatAreOfPaperAreLeftOut) {
    const std::string records =
        section("TABLES", "0 TABLE  2 BLOCK_RECORD  0 BLOCK_RECORD  5 1B  330 1  2 *Paper_Space  0 "
                          "BLOCK_RECORD  5 1F  2 *Model_Space  0 ENDTAB");
    const std::string file =
        drawingOf("0 POINT  67 1  10 1  20 0  0 POINT  330 1B  10 2  20 0  "
                  "0 POINT  330 1F  10 3  20 0  0 POINT  67 0  330 1B  10 4  20 0  "
                  "0 POINT  102 {ACAD_REACTORS  330 1B  102 }  10 5  20 0  "
                  "0 VIEWPORT  67 1",
                  records);
    EXPECT_EQ(describe(pathOf(file)), "(3, 0)\n(4, 0)\n(5, 0)\n");
    EXPECT_EQ(leftOut(pathOf(file)), "2 POINT on 0: in paper space\n");
    PathOptions options;
    options.paperSpace = true;
    EXPECT_EQ(pathOf(file, options).contours.size(), 5U);
    // Handles are numbers.
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 POINT  330 01b  10 2  20 0", records))),
              "1 POINT on 0: in paper space\n");
}

} // namespace
