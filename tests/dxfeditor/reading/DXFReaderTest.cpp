#include "dxfeditor/DXFReader.h"

#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/DrawingText.h"
#include "tests/support/Dxf.h"
#include "tests/support/Random.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<char> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::vector<std::string> entitiesOf(const DXFDocument& document) {
    std::vector<std::string> lines;
    for (const auto& entity : document.entities()) {
        lines.push_back(describe(*entity));
    }
    return lines;
}

/// The entities that a reader makes of a text.
std::vector<std::string> read(const std::string& text) {
    DXFDocument document;
    DXFReader reader(document);
    EXPECT_TRUE(reader.load(bytesOf(text)));
    return entitiesOf(document);
}

std::vector<std::string> read(const std::vector<std::string>& lines) {
    return read(dxfOfLines(lines));
}

// The reader's callbacks, called directly.

class DXFReaderCallbacks : public testing::Test {
protected:
    DXFDocument document;
    DXFReader reader{document};

    std::vector<std::string> entities() const { return entitiesOf(document); }
};

const std::string noAttributes = " { 0 -1 0 BYLAYER 1 -1}";

TEST_F(DXFReaderCallbacks, EndEntityAddsASinglePoint) {
    reader.addPoint({1, 2, 3});
    EXPECT_THAT(entities(), IsEmpty());
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("point 1 2 3" + noAttributes));
}

TEST_F(DXFReaderCallbacks, TwoPointsBecomeOneVectorAndTheFirstLeavesTheDocument) {
    reader.addPoint({1, 2, 3});
    reader.endEntity();
    reader.addPoint({4, 5, 6});
    EXPECT_THAT(entities(), IsEmpty());
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("points 1 2 3 4 5 6" + noAttributes));
}

TEST_F(DXFReaderCallbacks, AThirdPointGrowsTheVectorInTheDocument) {
    reader.addPoint({1, 2, 3});
    reader.addPoint({4, 5, 6});
    reader.endEntity();
    reader.addPoint({7, 8, 9});
    EXPECT_THAT(entities(), ElementsAre("points 1 2 3 4 5 6 7 8 9" + noAttributes));
}

TEST_F(DXFReaderCallbacks, APointBehindAnotherEntityStartsAnew) {
    reader.addLine({1, 2, 3, 4, 5, 6});
    reader.endEntity();
    reader.addPoint({7, 8, 9});
    reader.endEntity();
    EXPECT_THAT(entities(),
                ElementsAre("line 1 2 3 4 5 6" + noAttributes, "point 7 8 9" + noAttributes));
}

TEST_F(DXFReaderCallbacks, EndEntityTwiceAddsTwice) {
    reader.addCircle({1, 2, 3, 4});
    reader.endEntity();
    reader.endEntity();
    ASSERT_EQ(document.entities().size(), 2U);
    EXPECT_EQ(document.entities().front(), document.entities().back());
}

TEST_F(DXFReaderCallbacks, EndEntityWithoutAnEntityDoesNothing) {
    reader.endEntity();
    EXPECT_THAT(entities(), IsEmpty());
}

TEST_F(DXFReaderCallbacks, EndEntityInABlockDropsTheEntity) {
    reader.addBlock({"B", 0, 0, 0, 0});
    reader.addArc({1, 2, 3, 4, 5, 6});
    reader.endEntity();
    reader.endBlock();
    reader.endEntity();
    EXPECT_THAT(entities(), IsEmpty());
}

TEST_F(DXFReaderCallbacks, SimpleEntitiesActInsideABlockUntilTheyEnd) {
    reader.addPoint({1, 2, 3});
    reader.endEntity();
    reader.addBlock({"B", 0, 0, 0, 0});
    reader.addPoint({4, 5, 6});
    reader.endBlock();
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("points 1 2 3 4 5 6" + noAttributes));
}

TEST_F(DXFReaderCallbacks, ASplineInABlockIsIgnoredAndTheCurrentEntityStays) {
    reader.addPoint({1, 2, 3});
    reader.addBlock({"B", 0, 0, 0, 0});
    reader.addSpline({3, 1, 1, 1, 0});
    reader.addControlPoint({1, 2, 3, 1});
    reader.addKnot({1});
    reader.addFitPoint({1, 2, 3});
    reader.endBlock();
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("point 1 2 3" + noAttributes));
}

TEST_F(DXFReaderCallbacks, SplinePartsInABlockAreDropped) {
    reader.addSpline({3, 1, 1, 1, 0});
    reader.addBlock({"B", 0, 0, 0, 0});
    reader.addControlPoint({1, 2, 3, 1});
    reader.addKnot({1});
    reader.addFitPoint({1, 2, 3});
    reader.endBlock();
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("spline 3 knots control fit" + noAttributes));
}

TEST_F(DXFReaderCallbacks, ASplineTakesItsParts) {
    reader.addSpline({2, 9, 9, 9, 0});
    reader.addControlPoint({1, 2, 3, 0.5});
    reader.addFitPoint({4, 5, 6});
    reader.addKnot({7});
    reader.endEntity();
    EXPECT_THAT(entities(),
                ElementsAre("spline 2 knots 7 control 1 2 3 0.5 fit 4 5 6" + noAttributes));
}

TEST_F(DXFReaderCallbacks, PartsOfAnotherKindThanTheCurrentEntityAreDropped) {
    reader.addVertex({1, 2, 3, 4});
    reader.addControlPoint({1, 2, 3, 1});
    reader.addKnot({1});
    reader.addFitPoint({1, 2, 3});
    reader.addLine({1, 2, 3, 4, 5, 6});
    reader.addVertex({1, 2, 3, 4});
    reader.addControlPoint({1, 2, 3, 1});
    reader.addKnot({1});
    reader.addFitPoint({1, 2, 3});
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("line 1 2 3 4 5 6" + noAttributes));
}

TEST_F(DXFReaderCallbacks, APolylineCountsTheVerticesThatItGets) {
    reader.addPolyline({7, 1, 2, 3, 0});
    reader.addVertex({1, 2, 3, 0.5});
    reader.endEntity();
    reader.addVertex({4, 5, 6, 0});
    EXPECT_THAT(entities(), ElementsAre("polyline 1 2 3 1 2 3 0.5 4 5 6 0" + noAttributes));
}

TEST_F(DXFReaderCallbacks, AnEntityGetsTheAttributesReportedWhenItEnds) {
    reader.setAttributes(DL_Attributes("first", 1, 2, 3, "DASHED", 4));
    reader.addLine({1, 2, 3, 4, 5, 6});
    DL_Attributes last("last", 5, 6, 7, "DOT", 8);
    last.setLinetypeScale(2.5);
    last.setInPaperSpace(true);
    reader.setAttributes(last);
    reader.endEntity();
    EXPECT_THAT(entities(), ElementsAre("line 1 2 3 4 5 6 {last 5 6 7 DOT 2.5 8}"));
}

TEST_F(DXFReaderCallbacks, EntitiesOfEqualAttributesShareARecord) {
    for (const int handle : {4, 4, 5}) {
        reader.setAttributes(DL_Attributes("walls", 1, 2, 3, "DASHED", handle));
        reader.addLine({1, 2, 3, 4, 5, 6});
        reader.endEntity();
    }
    std::vector<std::shared_ptr<DXFAttributes>> records;
    for (const auto& entity : document.entities()) {
        records.push_back(entity->attributes());
    }
    EXPECT_EQ(records[0], records[1]);
    EXPECT_NE(records[0], records[2]);
    EXPECT_EQ(records[0]->handle(), 4);
    EXPECT_EQ(records[2]->handle(), 5);
}

TEST_F(DXFReaderCallbacks, EveryEntityGetsItsOwnAttributesWhateverOthersHave) {
    Random32 random(1);
    const auto below = [&](std::size_t count) { return random.below<int>(count); };
    const std::vector<std::string> names = {"", "0", "walls", "a name of more than fifteen bytes"};
    const std::vector<double> scales = {1.0, 0.0, -0.0, 2.5};
    std::vector<std::string> expected;
    for (int i = 0; i < 20000; ++i) {
        DL_Attributes attributes(random.pick(names), below(8), below(3), below(3),
                                 random.pick(names), below(3));
        attributes.setLinetypeScale(random.pick(scales));
        attributes.setInPaperSpace(below(2) == 0);
        reader.setAttributes(attributes);
        reader.addLine({1, 2, 3, 4, 5, 6});
        reader.endEntity();
        DXFLine line({1, 2, 3}, {4, 5, 6});
        line.setAttributes(DXFAdapter::makeAttributes(attributes));
        expected.push_back(describe(line));
    }
    EXPECT_EQ(entities(), expected);
}

TEST_F(DXFReaderCallbacks, AnEntityThatEndsTakesNoMoreMemoryThanItsParts) {
    reader.addPolyline({0, 0, 0, 0});
    for (int i = 0; i < 13; ++i) {
        reader.addVertex({1, 2, 3, 0});
    }
    reader.endEntity();
    reader.addSpline({3, 13, 9, 0, 0});
    for (int i = 0; i < 13; ++i) {
        reader.addKnot({1.0 * i});
        reader.addControlPoint({1, 2, 3, 1});
        reader.addFitPoint({1, 2, 3});
    }
    reader.endEntity();
    const auto polyline = std::dynamic_pointer_cast<DXFPolyline>(document.entities().front());
    const auto spline = std::dynamic_pointer_cast<DXFSpline>(document.entities().back());
    EXPECT_EQ(polyline->vertices().capacity(), 13U);
    EXPECT_EQ(spline->knots().capacity(), 13U);
    EXPECT_EQ(spline->controlPoints().capacity(), 13U);
    EXPECT_EQ(spline->fitPoints().capacity(), 13U);
}

TEST_F(DXFReaderCallbacks, LayersAreAddedInsideBlocksToo) {
    reader.addBlock({"B", 0, 0, 0, 0});
    reader.setAttributes(DL_Attributes("0", 1, 2, 3, "DASHED", 4));
    reader.addLayer({"walls", 5});
    EXPECT_EQ(describe(document), "layer walls 5 {0 1 2 3 DASHED 1 4}\n");
}

TEST_F(DXFReaderCallbacks, TheFirstLayerOfANameStays) {
    reader.addLayer({"walls", 5});
    reader.addLayer({"walls", 6});
    EXPECT_EQ(describe(document), "layer walls 5" + noAttributes + "\n");
}

TEST_F(DXFReaderCallbacks, LineTypesAreAdded) {
    reader.addLinetype({"DASHED", "", 0, 0, 0.0});
    const auto named = [](const std::string& name) {
        return std::make_shared<DXFLineType>(name, "", 0, 0, 0.0, nullptr);
    };
    EXPECT_FALSE(document.addLineType(named("DASHED")));
    EXPECT_TRUE(document.addLineType(named("DOT")));
}

TEST_F(DXFReaderCallbacks, ImportingAnEntityGivesItTheReportedAttributesAlone) {
    reader.setAttributes(DL_Attributes("walls", 1, 2, 3, "DASHED", 4));
    const auto line =
        std::make_shared<DXFLine>(cv::Point3_<double>(1, 2, 3), cv::Point3_<double>(4, 5, 6));
    reader.importEntity(line);
    EXPECT_EQ(describe(*line), "line 1 2 3 4 5 6 {walls 1 2 3 DASHED 1 4}");
    EXPECT_THAT(entities(), IsEmpty());
}

TEST_F(DXFReaderCallbacks, EndSectionEndsASimpleEntityOnce) {
    reader.addLine({1, 2, 3, 4, 5, 6});
    reader.endSection();
    reader.endSection();
    EXPECT_THAT(entities(), ElementsAre("line 1 2 3 4 5 6" + noAttributes));
}

TEST_F(DXFReaderCallbacks, EndSectionLeavesAnEndedEntityAlone) {
    reader.addLine({1, 2, 3, 4, 5, 6});
    reader.endEntity();
    reader.endSection();
    EXPECT_EQ(document.entities().size(), 1U);
}

TEST_F(DXFReaderCallbacks, EndSectionLeavesAPolylineToItsOwnEnd) {
    reader.addLine({1, 2, 3, 4, 5, 6});
    reader.addPolyline({0, 0, 0, 0, 0});
    reader.endSection();
    EXPECT_THAT(entities(), IsEmpty());
}

TEST_F(DXFReaderCallbacks, EndSectionAddsAVectorOfPointsOnce) {
    for (int i = 0; i < 4; ++i) {
        reader.addPoint({static_cast<double>(i), 0, 0});
        reader.endSection();
        EXPECT_EQ(document.entities().size(), 1U);
    }
    EXPECT_THAT(entities(), ElementsAre("points 0 0 0 1 0 0 2 0 0 3 0 0" + noAttributes));
}

// Whole texts.

const std::string defaults = " {0 256 -1 -1 BYLAYER 1 -1}";

TEST(DXFReader, ReadsEveryKindOfEntityOnceInTheOrderOfTheText) {
    EXPECT_THAT(
        read({"0",   "SECTION",    "2",  "ENTITIES",                                     //
              "0",   "LINE",       "10", "1",        "20", "2",  "11", "3",  "21", "4",  //
              "0",   "CIRCLE",     "10", "5",        "40", "6",                          //
              "0",   "ARC",        "10", "7",        "40", "8",  "50", "9",  "51", "10", //
              "0",   "POINT",      "10", "11",                                           //
              "0",   "LWPOLYLINE", "90", "2",        "70", "1",  "10", "1",  "20", "2",  "42",
              "0.5", "10",         "3",  "20",       "4",                               //
              "0",   "POLYLINE",   "66", "1",        "70", "8",                         //
              "0",   "VERTEX",     "10", "1",        "20", "2",  "30", "3",             //
              "0",   "VERTEX",     "10", "4",        "20", "5",  "30", "6",  "42", "1", //
              "0",   "SEQEND",                                                          //
              "0",   "SPLINE",     "71", "1",        "72", "4",  "73", "2",  "74", "1",  "40",
              "0",   "40",         "0",  "40",       "1",  "40", "1",  "10", "1",  "20", "2",
              "41",  "2",          "10", "3",        "20", "4",  "41", "3",  "11",
              "9", //
              "0",   "ENDSEC",     "0",  "EOF"}),
        ElementsAre("line 1 2 0 3 4 0" + defaults, "circle 5 0 0 6" + defaults,
                    "arc 7 0 0 8 9 10" + defaults, "point 11 0 0" + defaults,
                    "polyline 0 0 1 1 2 0 0.5 3 4 0 0" + defaults,
                    "polyline 0 0 8 1 2 3 0 4 5 6 1" + defaults,
                    "spline 1 knots 0 0 1 1 control 1 2 0 2 3 4 0 3 fit 9 0 0" + defaults));
}

TEST(DXFReader, GathersConsecutivePoints) {
    EXPECT_THAT(read(dxf("0 POINT  10 1  0 POINT  10 2  0 TEXT  1 x  0 POINT  10 3  0 LINE  "
                         "0 POINT  10 4  0 EOF")),
                ElementsAre("points 1 0 0 2 0 0 3 0 0" + defaults, "line 0 0 0 0 0 0" + defaults,
                            "point 4 0 0" + defaults));
}

TEST(DXFReader, TablesBetweenPointsDoNotPartThem) {
    EXPECT_THAT(
        read(dxf(
            "0 POINT  10 1  0 LAYER  2 walls  0 LTYPE  2 DOT  9 $ACADVER  0 POINT  10 2  0 EOF")),
        ElementsAre("points 1 0 0 2 0 0" + defaults));
}

TEST(DXFReader, GatheredPointsHaveTheAttributesOfTheSecond) {
    EXPECT_THAT(read(dxf("0 POINT  8 a  0 POINT  8 b  0 POINT  8 c  0 EOF")),
                ElementsAre("points 0 0 0 0 0 0 0 0 0 {b 256 -1 -1 BYLAYER 1 -1}"));
}

TEST(DXFReader, LineTypesOfTheTextAreAdded) {
    DXFDocument document;
    DXFReader reader(document);
    reader.load(bytesOf(dxf("0 LTYPE  2 DOT  0 ENDTAB")));
    EXPECT_FALSE(
        document.addLineType(std::make_shared<DXFLineType>("DOT", "", 0, 0, 0.0, nullptr)));
}

TEST(DXFReader, ObjectsThatTheModelDoesNotHoldEndNothing) {
    for (const std::string kind : {"LEADER", "HATCH", "IMAGE", "IMAGEDEF", "INSERT", "SEQEND"}) {
        EXPECT_THAT(read({"0", "LINE", "10", "1", "0", kind, "10", "2", "0", "EOF"}),
                    ElementsAre("line 1 0 0 0 0 0" + defaults))
            << kind;
    }
}

TEST(DXFReader, VerticesThatFollowNoPolylineAddNothing) {
    for (const std::string kind : {"LINE", "LWPOLYLINE", "SPLINE"}) {
        EXPECT_EQ(read({"0", kind, "0", "VERTEX", "10", "2", "0", "SEQEND", "0", "EOF"}),
                  read({"0", kind, "0", "EOF"}))
            << kind;
    }
    EXPECT_THAT(read(dxf("0 POLYLINE  0 VERTEX  10 1  0 SEQEND  0 VERTEX  10 2  0 EOF")),
                ElementsAre("polyline 0 0 0 1 0 0 0" + defaults));
}

TEST(DXFReader, APolylineInterruptedByAnotherObjectIsAddedOnce) {
    EXPECT_THAT(
        read(dxf("0 POLYLINE  0 VERTEX  10 1  0 TEXT  10 3  0 VERTEX  10 2  0 SEQEND  0 EOF")),
        ElementsAre("polyline 0 0 0 1 0 0 0 2 0 0 0" + defaults));
}

TEST(DXFReader, APolylineWithoutVerticesIsAddedWithItsAttributes) {
    const std::string polyline = "polyline 0 0 1 {walls 3 -1 -1 BYLAYER 1 31}";
    EXPECT_THAT(
        read(dxf("0 POLYLINE  8 walls  62 3  5 1F  70 1  10 9  0 SEQEND  8 other  0 LINE  0 EOF")),
        ElementsAre(polyline, "line 0 0 0 0 0 0" + defaults));
    EXPECT_THAT(read(dxf("0 POLYLINE  8 walls  62 3  5 1F  70 1  0 EOF")), ElementsAre(polyline));
}

TEST(DXFReader, AMeshOfFacesIsAddedWithoutVertices) {
    EXPECT_THAT(read(dxf("0 POLYLINE  70 64  0 VERTEX  70 128  10 1  0 SEQEND  0 EOF")),
                ElementsAre("polyline 0 0 64" + defaults));
}

TEST(DXFReader, APolylineHasTheAttributesOfItsLastVertex) {
    EXPECT_THAT(read(dxf("0 POLYLINE  8 a  0 VERTEX  8 b  0 VERTEX  8 c  0 SEQEND  8 d  0 EOF")),
                ElementsAre("polyline 0 0 0 0 0 0 0 0 0 0 0 {c 256 -1 -1 BYLAYER 1 -1}"));
}

TEST(DXFReader, ReadsAllAttributes) {
    EXPECT_THAT(read(dxf("0 LINE  5 1F  6 DASHED  8 walls  39 2  48 2.5  62 5  67 1  420 255  "
                         "0 LINE  39 2  370 25  0 EOF")),
                ElementsAre("line 0 0 0 0 0 0 {walls 5 255 2 DASHED 2.5 31}",
                            "line 0 0 0 0 0 0 {0 256 -1 25 BYLAYER 1 -1}"));
}

TEST(DXFReader, ReadsLayersWithTheirRawAttributes) {
    DXFDocument document;
    DXFReader reader(document);
    reader.load(bytesOf(dxf("0 TABLE  2 LAYER  0 LAYER  2 walls  70 4  62 -3  6 DOT  370 9  "
                            "0 LAYER  2 plain  0 LAYER  70 1  0 ENDTAB")));
    EXPECT_EQ(describe(document), "layer walls 4 {0 -3 -1 9 DOT 1 -1}\n"
                                  "layer plain 0 {0 256 -1 -1 BYLAYER 1 -1}\n");
}

TEST(DXFReader, EntitiesInBlocksStayOut) {
    EXPECT_THAT(read(dxf("0 BLOCK  2 B  0 POINT  10 1  0 LINE  0 CIRCLE  0 ARC  "
                         "0 LWPOLYLINE  90 1  10 1  0 POLYLINE  0 VERTEX  0 SEQEND  "
                         "0 SPLINE  73 1  10 1  0 POINT  0 POINT  0 ENDBLK  0 POINT  10 5  0 EOF")),
                ElementsAre("point 5 0 0" + defaults));
}

TEST(DXFReader, PointsInABlockDoNotMixWithThoseBeforeIt) {
    EXPECT_THAT(
        read(dxf("0 POINT  10 1  0 BLOCK  2 B  0 POINT  10 2  0 ENDBLK  0 POINT  10 3  0 EOF")),
        ElementsAre("point 1 0 0" + defaults, "point 3 0 0" + defaults));
    EXPECT_THAT(
        read(dxf("0 POINT  10 1  0 POINT  10 1  0 BLOCK  2 B  0 POINT  10 2  0 ENDBLK  0 EOF")),
        ElementsAre("points 1 0 0 1 0 0" + defaults));
}

TEST(DXFReader, APolylineInABlockDoesNotTakeVerticesBehindTheBlock) {
    EXPECT_THAT(read(dxf("0 BLOCK  2 B  0 POLYLINE  0 ENDBLK  0 VERTEX  0 SEQEND  0 EOF")),
                IsEmpty());
}

TEST(DXFReader, ABlockWithoutANameIsNoBlock) {
    EXPECT_THAT(read(dxf("0 BLOCK  70 0  0 LINE  0 ENDBLK  0 EOF")),
                ElementsAre("line 0 0 0 0 0 0" + defaults));
}

TEST(DXFReader, AnObjectThatNothingFollowsIsNotRead) {
    EXPECT_THAT(read(dxf("0 LINE  0 POINT  10 1")), ElementsAre("line 0 0 0 0 0 0" + defaults));
    EXPECT_THAT(read(dxf("0 POLYLINE  0 VERTEX  0 VERTEX")), IsEmpty());
    EXPECT_THAT(read(dxf("0 POLYLINE  0 VERTEX  0 VERTEX  0 TEXT")),
                ElementsAre("polyline 0 0 0 0 0 0 0 0 0 0 0" + defaults));
}

TEST(DXFReader, ACodeLineAtTheEndOfTheTextCountsWhenItHasALineEnd) {
    EXPECT_THAT(read("0\nLINE\n0"), IsEmpty());
    EXPECT_THAT(read("0\nLINE\n0\n"), ElementsAre("line 0 0 0 0 0 0" + defaults));
    EXPECT_THAT(read("0\nLINE\n0\nEOF"), ElementsAre("line 0 0 0 0 0 0" + defaults));
}

TEST(DXFReader, ReadsDosLineEndsAndBlanksAroundCodes) {
    EXPECT_THAT(read("  0\r\nPOINT\r\n 10 \r\n  1.5\r\n\t20\t\r\n2,5\r\n  0\r\nEOF\r\n"),
                ElementsAre("point 1.5 2.5 0" + defaults));
}

TEST(DXFReader, ACodeThatIsNoNumberBeginsAnObject) {
    EXPECT_THAT(read("0\nLINE\nabc\nPOINT\n10\n1\n\nPOINT\n4294967296\nEOF\n"),
                ElementsAre("line 0 0 0 0 0 0" + defaults, "points 1 0 0 0 0 0" + defaults));
}

TEST(DXFReader, NamesOfObjectsAreExact) {
    EXPECT_THAT(read("0\nLINE \n0\n LINE\n0\nline\n0\nLINES\n0\nEOF\n"), IsEmpty());
    EXPECT_THAT(read("9\nLINE\n9\n$LTSCALE\n40\n1.0\n"),
                ElementsAre("line 0 0 0 0 0 0" + defaults));
}

TEST(DXFReader, OfARepeatedGroupTheLastCounts) {
    EXPECT_THAT(read(dxf("0 POINT  10 1  10 2  0 EOF")), ElementsAre("point 2 0 0" + defaults));
}

TEST(DXFReader, ReadsNumbersAsStreamsDo) {
    EXPECT_THAT(read(dxf("0 LINE  10 abc  20 1e3x  30 +.5  11 -0  21 1e999  31 nan  0 EOF")),
                ElementsAre("line 0 1000 0.5 -0 1.7976931348623157e+308 0" + defaults));
}

TEST(DXFReader, ABlankNumberIsZero) {
    EXPECT_THAT(
        read({"0", "LINE", "10", "", "20", "  ", "30", "\t\v", "48", "", "11", "\r", "0", "EOF"}),
        ElementsAre("line 0 0 0 0 0 0 {0 256 -1 -1 BYLAYER 0 -1}"));
}

TEST(DXFReader, ReadsUpToTheFirstNul) {
    std::string text = dxf("0 LINE  0 CIRCLE  0 ARC  0 EOF");
    text[text.find("ARC")] = '\0';
    EXPECT_THAT(read(text),
                ElementsAre("line 0 0 0 0 0 0" + defaults, "circle 0 0 0 0" + defaults));
}

TEST(DXFReader, ReadsToTheEndOfABufferWithoutNul) {
    std::vector<char> bytes = bytesOf(dxf("0 LINE  0 EOF"));
    bytes.shrink_to_fit();
    DXFDocument document;
    EXPECT_TRUE(DXFReader(document).load(bytes));
    EXPECT_EQ(document.entities().size(), 1U);
}

TEST(DXFReader, AVectorThatNeverHeldStorageIsAFailedLoad) {
    DXFDocument document;
    EXPECT_FALSE(DXFReader(document).load(std::vector<char>()));
    EXPECT_EQ(describe(document), "");
}

TEST(DXFReader, BytesInTheCallersMemoryAreReadInPlace) {
    const std::string text = dxf("0 LINE  0 EOF");
    DXFDocument document;
    EXPECT_TRUE(DXFReader(document).load(text.data(), text.size()));
    EXPECT_FALSE(DXFReader(document).load(nullptr, 0));
    EXPECT_FALSE(DXFReader(document).load(text.data(), 0));
    EXPECT_EQ(document.entities().size(), 1U);
}

TEST(DXFReader, AnEmptyTextIsAnEmptyDrawing) {
    std::vector<char> reserved;
    reserved.reserve(8);
    DXFDocument document;
    EXPECT_TRUE(DXFReader(document).load(std::move(reserved)));
    EXPECT_THAT(read(std::string(1, '\0')), IsEmpty());
}

TEST(DXFReader, GarbageIsAnEmptyDrawing) {
    EXPECT_THAT(read("ply\nformat ascii 1.0\nelement vertex 0\nend_header\n"), IsEmpty());
}

// Texts that dxflib by itself does not survive.

TEST(DXFReaderHazards, LongLinesAreCut) {
    const std::string limit(1023, 'a');
    for (const std::size_t length : {1022U, 1023U, 1024U, 5000U}) {
        const std::string layer(length, 'a');
        EXPECT_THAT(
            read({"0", "LINE", "8", layer, "0", "EOF"}),
            ElementsAre("line 0 0 0 0 0 0 {" + layer.substr(0, 1023) + " 256 -1 -1 BYLAYER 1 -1}"));
    }
    EXPECT_THAT(read({"0", "MTEXT", "1", std::string(100000, 'x'), "0", "LINE", "0", "EOF"}),
                ElementsAre("line 0 0 0 0 0 0" + defaults));
    EXPECT_THAT(read(dxfOfLines({"0", "LINE", std::string(2000, ' ') + "8", "x", "0", "EOF"})),
                ElementsAre("line 0 0 0 0 0 0" + defaults));
    EXPECT_THAT(read(std::string(3000000, 'x')), IsEmpty());
}

TEST(DXFReaderHazards, CommentsAreDropped) {
    EXPECT_THAT(
        read({"999", "dxflib", "0", "LINE", "999", "dxflib", "10", "1", "999", "", "0", "EOF"}),
        ElementsAre("line 1 0 0 0 0 0" + defaults));
}

TEST(DXFReaderHazards, AnLwPolylineHasTheVerticesThatItGives) {
    for (const std::string count : {"1073741825", "536870912", "2147483647", "300000000", "3"}) {
        EXPECT_THAT(
            read({"0", "LWPOLYLINE", "90", count, "10", "1", "20", "2", "10", "3", "0", "EOF"}),
            ElementsAre("polyline 0 0 0 1 2 0 0 3 0 0 0" + defaults))
            << count;
    }
}

TEST(DXFReaderHazards, AnLwPolylineWithACountBelowItsVerticesEndsInTheLast) {
    EXPECT_THAT(read(dxf("0 LWPOLYLINE  90 1  10 1  20 2  10 3  0 EOF")),
                ElementsAre("polyline 0 0 0 3 2 0 0" + defaults));
    for (const std::string count : {"0", "-1", "-2147483648", "x"}) {
        EXPECT_THAT(read({"0", "LWPOLYLINE", "90", count, "10", "1", "0", "EOF"}),
                    ElementsAre("polyline 0 0 0" + defaults))
            << count;
    }
}

TEST(DXFReaderHazards, ValuesBeforeTheirCountAreLost) {
    EXPECT_THAT(read(dxf("0 LWPOLYLINE  90 5  10 1  90 2  10 2  20 3  0 EOF")),
                ElementsAre("polyline 0 0 0 2 3 0 0" + defaults));
    EXPECT_THAT(
        read(dxf("0 SPLINE  40 1  72 1  40 2  10 1  41 7  73 1  10 2  11 1  74 1  11 2  0 EOF")),
        ElementsAre("spline 3 knots 2 control 2 0 0 1 fit 2 0 0" + defaults));
}

TEST(DXFReaderHazards, AnEntityWithoutItsCountHasItsOwnValuesOnly) {
    const std::vector<std::string> full = {"0",  "LWPOLYLINE", "90", "3",      "10", "1", "10", "2",
                                           "10", "3",          "0",  "SPLINE", "72", "2", "73", "2",
                                           "74", "2",          "40", "1",      "40", "2", "10", "1",
                                           "10", "2",          "11", "1",      "11", "2"};
    std::vector<std::string> text = full;
    text.insert(text.end(), {"0",  "LWPOLYLINE", "10", "7", "42", "8",      "0",  "LWPOLYLINE",
                             "0",  "SPLINE",     "40", "5", "10", "6",      "20", "7",
                             "41", "8",          "11", "9", "0",  "SPLINE", "0",  "EOF"});
    const std::vector<std::string> entities = read(text);
    ASSERT_EQ(entities.size(), 6U);
    EXPECT_EQ(entities[2], "polyline 0 0 0 7 0 0 8" + defaults);
    EXPECT_EQ(entities[3], "polyline 0 0 0" + defaults);
    EXPECT_EQ(entities[4], "spline 3 knots 5 control 6 7 0 8 fit 9 0 0" + defaults);
    EXPECT_EQ(entities[5], "spline 3 knots control fit" + defaults);
}

TEST(DXFReaderHazards, ASplineThatPromisesMoreGetsZeros) {
    EXPECT_THAT(
        read(dxf("0 SPLINE  72 2  73 2  74 2  10 1  0 EOF")),
        ElementsAre("spline 3 knots 0 0 control 1 0 0 1 0 0 0 1 fit 0 0 0 0 0 0" + defaults));
}

TEST(DXFReaderHazards, ASplineCannotPromiseMoreThanTheTextHolds) {
    for (const std::string code : {"72", "73", "74"}) {
        const std::string text =
            dxfOfLines({"0", "SPLINE", code, "400000000", "0", "LINE", "0", "EOF"});
        const std::vector<std::string> entities = read(text);
        ASSERT_EQ(entities.size(), 2U) << code;
        EXPECT_LT(entities.front().size(), 200U) << code;
    }
}

TEST(DXFReaderHazards, ManySplinesTogetherCannotPromiseMoreThanTheTextHolds) {
    std::vector<std::string> lines;
    for (int i = 0; i < 20000; ++i) {
        lines.insert(lines.end(), {"0", "SPLINE", "73", "2000000000"});
    }
    lines.insert(lines.end(), {"0", "EOF"});
    const std::string text = dxfOfLines(lines);
    std::size_t total = 0;
    for (const std::string& entity : read(text)) {
        total += entity.size();
    }
    EXPECT_LT(total, text.size() * 10);
}

TEST(DXFReaderHazards, ManyCountsInOneEntityCostNoMoreThanOne) {
    for (const std::string kind : {"LWPOLYLINE", "SPLINE"}) {
        std::vector<std::string> lines = {"0", kind};
        for (int i = 0; i < 100000; ++i) {
            lines.insert(lines.end(), {kind == "SPLINE" ? "73" : "90", "100000"});
        }
        for (int i = 0; i < 100000; ++i) {
            lines.insert(lines.end(), {"10", "1"});
        }
        lines.insert(lines.end(), {"0", "EOF"});
        EXPECT_EQ(read(lines).size(), 1U);
    }
}

TEST(DXFReaderHazards, CountsOfObjectsThatAreNotTakenDoNoHarm) {
    EXPECT_THAT(read(dxf("0 LEADER  76 2000000000  0 HATCH  91 2000000000  "
                         "0 LTYPE  2 A  73 2000000000  49 1  0 LINE  0 EOF")),
                ElementsAre("line 0 0 0 0 0 0" + defaults));
}

TEST(DXFReaderHazards, ExtendedDataIsDropped) {
    EXPECT_THAT(read({"0",    "LINE", "10",   "1", "1001", "APP", "1010", "",  "1040", "x",
                      "1070", "y",    "1099", "z", "2000", "q",   "-5",   "r", "0",    "EOF"}),
                ElementsAre("line 1 0 0 0 0 0" + defaults));
}

// Files.

class DXFReaderFile : public testing::Test {
protected:
    std::string write(const std::string& text) const {
        const std::string path = directory.file("drawing.dxf");
        writeContent(path, text);
        return path;
    }

    TemporaryDirectory directory;
};

TEST_F(DXFReaderFile, IsReadLikeItsBytes) {
    const std::string text =
        dxfOfLines({"0", "LAYER", "2", "a", "0", "LINE", "8", std::string(2000, 'x'), "0", "EOF"}) +
        std::string("\0\n0\nLINE\n0\nEOF\n", 15);
    const std::shared_ptr<DXFDocument> document = DXFDocument::load(write(text));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->layers().size(), 1U);
    EXPECT_EQ(entitiesOf(*document), read(text));
}

TEST_F(DXFReaderFile, IsReadUpToItsFirstNul) {
    std::string text = dxf("0 LINE  0 CIRCLE  8 walls  0 ARC  0 EOF");
    text[text.find("walls") + 2] = '\0';
    DXFDocument document;
    EXPECT_TRUE(DXFReader(document).load(write(text)));
    EXPECT_THAT(entitiesOf(document), ElementsAre("line 0 0 0 0 0 0" + defaults));
}

TEST_F(DXFReaderFile, LoadLeavesSetupToTheCaller) {
    const auto document = DXFDocument::load(write(dxf("0 LWPOLYLINE  10 1  10 2  0 EOF")));
    const auto polyline = std::dynamic_pointer_cast<DXFPolyline>(document->entities().front());
    ASSERT_NE(polyline, nullptr);
    EXPECT_TRUE(polyline->segments().empty());
    document->setup();
    EXPECT_EQ(polyline->segments().size(), 1U);
}

TEST_F(DXFReaderFile, EmptyIsAnEmptyDrawing) {
    const auto document = DXFDocument::load(write(""));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(describe(*document), "");
}

TEST_F(DXFReaderFile, LargerThanAReadBlockIsReadWhole) {
    std::vector<std::string> lines;
    for (int i = 0; i < 50000; ++i) {
        lines.insert(lines.end(), {"0", "LINE", "10", std::to_string(i)});
    }
    lines.insert(lines.end(), {"0", "EOF"});
    const auto document = DXFDocument::load(write(dxfOfLines(lines)));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->entities().size(), 50000U);
    EXPECT_THAT(describe(*document->entities().back()), StartsWith("line 49999 0 0"));
}

TEST_F(DXFReaderFile, ThatCannotBeOpenedIsAFailedLoad) {
    EXPECT_EQ(DXFDocument::load(directory.file("missing.dxf")), nullptr);
    DXFDocument document;
    EXPECT_FALSE(DXFReader(document).load(directory.file("missing.dxf")));
}

TEST_F(DXFReaderFile, ThatIsADirectoryIsAFailedLoad) {
    EXPECT_EQ(DXFDocument::load(directory.path()), nullptr);
    DXFDocument document;
    EXPECT_FALSE(DXFReader(document).load(directory.path().string()));
}

} // namespace
