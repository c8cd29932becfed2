// cloudconv check: of the path, and with --plain of the walk by fixed rules.

#include "tests/support/CloudconvFixture.h"
#include "tests/support/SimpleDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Json = nlohmann::json;
using Texts = std::vector<std::string>;

const fs::path examples = fs::path(CONVERTERS_TEST_DIR) / "../examples";

std::string nearMiss(const std::string& first, const std::string& second,
                     const std::string& distance) {
    return "near miss: the ends at " + first + " and " + second + " lie " + distance +
           " apart and are not joined";
}

/// An entity with a handle, on a layer.
std::string named(const std::string& entity, const std::string& handle, const std::string& layer) {
    return onLayer(layer, entity).insert(entity.find("8\n"), dxf("5 " + handle));
}

/// A polyline of these corners, x and y in turn.
std::string polyline(const std::vector<double>& corners, bool closed = false) {
    std::string text = dxf("0 LWPOLYLINE  8 0  90 " + std::to_string(corners.size() / 2) + "  70 " +
                           (closed ? "1" : "0"));
    for (std::size_t i = 0; i < corners.size(); i += 2) {
        text += dxf("10 " + number(corners[i]) + "  20 " + number(corners[i + 1]));
    }
    return text;
}

std::string circle(double x, double y, double radius) {
    return dxf("0 CIRCLE  8 0  10 " + number(x) + "  20 " + number(y) + "  40 " + number(radius));
}

class CloudconvCheck : public Cloudconv {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    ProgramResult check(const std::string& bytes, const Texts& options = {}) const {
        Texts arguments = {"check", drawingFile(bytes)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments);
    }

    /// Expects that check lists exactly these findings.
    void expectFindings(const std::string& bytes, const Texts& findings,
                        const Texts& options = {}) const {
        const std::string name = in("in.dxf").string();
        const ProgramResult result = check(bytes, options);
        std::string expected = findings.empty() ? name + ": nothing found\n" : "";
        for (const std::string& finding : findings) {
            expected += name + ": " + finding + '\n';
        }
        EXPECT_EQ(result.output, expected);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(result.status, findings.empty() ? 0 : 3);
    }

    /// The same of a drawing that names its unit.
    void expectFound(const std::string& entities, const Texts& findings,
                     const Texts& options = {}) const {
        expectFindings(inMillimetres(entities), findings, options);
    }
};

TEST_F(CloudconvCheck, FindsNothingInASoundDrawing) {
    expectFindings(readFile(examples / "plate.dxf"), {});
    const ProgramResult quiet = check(readFile(examples / "plate.dxf"), {"-q"});
    EXPECT_EQ(quiet.output, "");
    EXPECT_EQ(quiet.status, 0);
}

TEST_F(CloudconvCheck, SaysOfADrawingWithoutAPathThatThereIsNone) {
    for (const std::string& entities : {std::string(), dxf("0 TEXT  8 0  1 a")}) {
        const ProgramResult result = check(inMillimetres(entities));
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.errors, HasSubstr("note: there is nothing to follow\n")) << entities;
    }
    const ProgramResult quiet = check(drawing({}), {"-q"});
    EXPECT_EQ(quiet.output + quiet.errors, "");
}

TEST_F(CloudconvCheck, FindsTheGapThatBreaksAContour) {
    expectFindings(readFile(examples / "plate_with_gap.dxf"),
                   {nearMiss("(0, 6.998)", "(0, 7)", "0.002")});
}

TEST_F(CloudconvCheck, FindsEndsBetweenTheJoiningAndTheGivenDistance) {
    const auto withGap = [](double gap) { return line(0, 0, 1, 0) + line(1 + gap, 0, 2, 0); };
    expectFound(withGap(0.0005), {});
    expectFound(withGap(0.0625), {nearMiss("(1, 0)", "(1.0625, 0)", "0.0625")});
    expectFound(withGap(0.125), {});
    expectFound(withGap(0.125), {nearMiss("(1, 0)", "(1.125, 0)", "0.125")}, {"--distance", "0.2"});
    expectFound(withGap(0.0625), {}, {"--distance", "0.05"});
    expectFound(withGap(0.0625), {}, {"--join", "0.07"});
    expectFound(withGap(0.0005), {nearMiss("(1, 0)", "(1.0005, 0)", "0.0005")},
                {"--join", "0.0001"});
    expectFound(line(0, 0, 1, 0) + circle(5, 5, 1), {});
}

TEST_F(CloudconvCheck, FindsTheGapBetweenTheEndsOfOneContourButNoneInAShortLine) {
    expectFound(line(0, 0, 0.05, 0), {});
    expectFound(polyline({0, 0, 4, 0, 4, 3, 0, 3, 0, 0.0625}),
                {nearMiss("(0, 0)", "(0, 0.0625)", "0.0625")});
}

TEST_F(CloudconvCheck, MeasuresInUnitsOfThePath) {
    const std::string apart = line(0, 0, 100, 0) + line(100.625, 0, 200, 0);
    expectFound(apart, {});
    const Texts gap = {nearMiss("(10, 0)", "(10.0625, 0)", "0.0625")};
    expectFound(apart, gap, {"--unit", "cm"});
    expectFound(apart, gap, {"--unit", "cm", "--axes", "plain"});
}

TEST_F(CloudconvCheck, FindsEntitiesThatRepeatOthersWhateverTheirKind) {
    expectFound(named(line(0, 0, 1, 0), "1A", "CUT") + named(line(1, 0, 0, 0), "2B", "OTHER") +
                    polyline({0, 0, 0.5, 0, 1, 0}),
                {"duplicate: LINE 2B on layer OTHER at (1, 0) repeats LINE 1A",
                 "duplicate: LWPOLYLINE on layer 0 at (0, 0) repeats LINE 1A"});
    expectFound(named(arc(9, 9, 1, 0, 90), "A", "0") + arc(9, 9, 1, 0, 90) + arc(9, 9, 1, 0, 80),
                {"duplicate: ARC on layer 0 at (9, 10) repeats ARC A"});
}

TEST_F(CloudconvCheck, FindsClosedEntitiesThatStartElsewhere) {
    expectFound(polyline({0, 0, 4, 0, 4, 3}, true) + polyline({4, 3, 4, 0, 0, 0}, true),
                {"duplicate: LWPOLYLINE on layer 0 at (4, 3) repeats LWPOLYLINE"});
    const std::string halves =
        dxf("0 LWPOLYLINE  8 0  90 2  70 1  10 4  20 5  42 1  10 6  20 5  42 1");
    expectFound(circle(5, 5, 1) + halves,
                {"duplicate: LWPOLYLINE on layer 0 at (4, 5) repeats CIRCLE"});
    expectFound(circle(5, 5, 1) + circle(5, 5, 1.01) + circle(5.01, 5, 1), {});
}

TEST_F(CloudconvCheck, FindsNoDuplicateInWhatIsOnlyAPart) {
    expectFound(polyline({0, 0, 4, 0, 4, 3}, true) + polyline({4, 0, 8, 0, 8, 3}, true), {});
    expectFound(polyline({0, 0, 4, 0, 4, 3}) + polyline({10, 0, 14, 0, 14, 3, 0, 9}), {});
}

TEST_F(CloudconvCheck, FindsEntitiesWithoutExtent) {
    expectFound(named(line(3, 4, 3, 4), "7", "0") + line(0, 0, 1, 0) + line(1, 0, 1, 0),
                {"without extent: LINE 7 on layer 0 at (3, 4) has no extent",
                 "without extent: LINE on layer 0 at (1, 0) has no extent"});
    expectFound(line(3, 4, 3, 4) + pointAt(3, 4, 0) + line(3, 4, 3, 4),
                {"without extent: LINE on layer 0 at (3, 4) has no extent",
                 "without extent: LINE on layer 0 at (3, 4) has no extent"});
    expectFound(pointAt(3, 4, 0), {});
}

TEST_F(CloudconvCheck, FindsGeometryThatIsLeftOutAndMentionsAnnotation) {
    const ProgramResult result = check(inMillimetres(line(0, 0, 1, 0) + dxf("0 TEXT  8 0  1 a") +
                                                     dxf("0 INSERT  8 PARTS  2 MISSING") +
                                                     dxf("0 XLINE  8 0  10 0  20 0  11 1  21 0")));
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.output, HasSubstr("left out: 1 INSERT on layer PARTS (of a missing block)"));
    EXPECT_THAT(result.output, HasSubstr("left out: 1 XLINE on layer 0 (an infinite line)"));
    EXPECT_EQ(result.output.find("TEXT"), std::string::npos);
    EXPECT_THAT(result.errors, HasSubstr("note: left out: 1 TEXT (annotation)"));
}

TEST_F(CloudconvCheck, OfLayersThatNobodyAskedForMentionsWhatIsLeftOut) {
    const ProgramResult result =
        check(inMillimetres(line(0, 0, 1, 0) + named(line(5, 5, 6, 5), "8", "AUX")),
              {"--except-layer", "aux"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("note: left out: 1 LINE (on a layer not asked for)"));
}

TEST_F(CloudconvCheck, FindsOpenContoursThatTouchThemselves) {
    const std::string start = "touches itself: the open contour of LWPOLYLINE on layer 0 at ";
    expectFound(polyline({0, 0, 4, 0, 4, 3, 2, 0}), {start + "(0, 0) meets itself at (2, 0)"});
    expectFound(polyline({0, 0, 4, 0, 4, 3, 2, -1}), {start + "(0, 0) meets itself at (2.5, 0)"});
    expectFound(polyline({0, 0, 4, 0, 4, 3, 2, 0.0005}),
                {start + "(0, 0) meets itself at (2, 0.0005)"});
    expectFound(polyline({0, 0, 4, 0, 4, 3, 2, 0.01}), {});
    expectFound(polyline({0, 0, 4, 0, 4, 3, 2, -1}), {start + "(0, 0) meets itself at (2.5, 0)"},
                {"--axes", "plain"});
}

TEST_F(CloudconvCheck, FindsClosedContoursThatCrossThemselves) {
    const std::string start = "crosses itself: the closed contour of LWPOLYLINE on layer 0 at ";
    expectFound(polyline({0, 0, 2, 2, 2, 0, 0, 2}, true),
                {start + "(0, 0) meets itself at (1, 1)"});
    // Through a corner.
    expectFound(polyline({0, 0, 1, 1, 2, 2, 2, 0, 1, 1, 0, 2}, true),
                {start + "(0, 0) meets itself at (1, 1)"});
    // Two parts that meet in a corner, and do not cross.
    expectFound(polyline({0, 0, 1, 1, 0, 2, 2, 2, 1, 1, 2, 0}, true), {});
    expectFound(polyline({0, 0, 4, 0, 4, 4, 2, 0, 0, 4}, true), {});
}

TEST_F(CloudconvCheck, FindsTheOneCrossingOfALongContour) {
    std::vector<double> corners;
    for (int i = 0; i < 2000; ++i) {
        const double x = 3.0 * i;
        corners.insert(corners.end(), {x, 0, x + 1, 900, x + 2, 0});
    }
    expectFound(polyline(corners), {});
    corners[1000 * 6 + 2] = 3000 - 4;
    const ProgramResult result = check(inMillimetres(polyline(corners)));
    EXPECT_THAT(result.output, HasSubstr("touches itself"));
}

TEST_F(CloudconvCheck, FindsThatTheUnitIsMissing) {
    expectFindings(drawing(line(0, 0, 1, 0)),
                   {"no unit: the drawing does not say what its unit is"});
}

TEST_F(CloudconvCheck, ListsTwentyOfAKindAndAllWhenAsked) {
    std::string lines;
    for (int i = 0; i < 25; ++i) {
        lines += line(i, 0, i, 1) + line(i, 0, i, 1);
    }
    const auto linesOf = [](const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    };
    const ProgramResult some = check(inMillimetres(lines));
    EXPECT_EQ(linesOf(some.output), 21);
    EXPECT_THAT(some.output, HasSubstr("duplicate: and 5 more, listed with --all\n"));
    EXPECT_EQ(linesOf(check(inMillimetres(lines), {"--all"}).output), 25);
}

TEST_F(CloudconvCheck, ChecksSeveralFilesAndGoesOnBehindOneThatCannotBeRead) {
    writeFile(in("a.dxf"), inMillimetres(line(0, 0, 1, 0)));
    writeFile(in("b.dxf"), drawing(line(0, 0, 1, 0)));
    const std::string a = in("a.dxf");
    const std::string b = in("b.dxf");
    ProgramResult result = run({"check", b, a});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, b + ": no unit: the drawing does not say what its unit is\n" + a +
                                 ": nothing found\n");
    writeFile(in("c.dxf"), "garbage");
    result = run({"check", in("c.dxf"), b});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("c.dxf: "));
    EXPECT_THAT(result.output, HasSubstr("b.dxf: no unit"));
}

TEST_F(CloudconvCheck, TellsFindingsAsJson) {
    const ProgramResult result =
        check(drawing(line(0, 0, 1, 0) + named(line(1, 0, 0, 0), "2B", "CUT")), {"--json"});
    EXPECT_EQ(result.status, 3);
    const Json list = Json::parse(result.output);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["file"], in("in.dxf").string());
    EXPECT_EQ(list[0]["notes"], Json::array());
    ASSERT_EQ(list[0]["findings"].size(), 2U);
    EXPECT_EQ(list[0]["findings"][0],
              (Json{{"kind", "duplicate"},
                    {"text", "LINE 2B on layer CUT at (1, 0) repeats LINE"},
                    {"places", {{1.0, 0.0, 0.0}}},
                    {"entity", {{"kind", "LINE"}, {"handle", "2B"}, {"layer", "CUT"}}}}));
    EXPECT_EQ(list[0]["findings"][1]["entity"], nullptr);
}

TEST_F(CloudconvCheck, OfManyEndsInOnePlaceAndOfHugeOrMissingNumbersEnds) {
    std::string lines;
    for (int i = 0; i < 3000; ++i) {
        lines += line(0, 0, 10 + i, 1);
    }
    const std::string odd = dxf("0 LINE  8 0  10 nan  20 0  11 1e300  21 -1e300");
    const std::string huge =
        dxf("0 LWPOLYLINE  8 0  70 1  10 1e308  20 1e308  10 -1e308  20 1e308  10 0  "
            "20 -1e308  10 1  20 3");
    for (const char* plain : {"--quiet", "--plain"}) {
        EXPECT_NE(check(drawing(lines), {plain}).status, -1);
        EXPECT_NE(check(drawing(odd), {plain}).status, -1);
        EXPECT_NE(check(drawing(huge), {plain}).status, -1);
    }
}

TEST_F(CloudconvCheck, OfNoDrawingIsAFailure) {
    const ProgramResult result = check("garbage");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("cloudconv: " + in("in.dxf").string() + ": "));
    EXPECT_EQ(run({"check", in("in.dxf"), "--distance", "-1"}).status, 2);
    EXPECT_EQ(run({"check", in("in.dxf"), "--plain", "--join", "1"}).status, 2);
    EXPECT_EQ(run({"check"}).status, 2);
}

class CloudconvCheckPlain : public CloudconvCheck {
protected:
    void expectWalked(const std::string& bytes, const Texts& findings, Texts options = {}) const {
        options.emplace_back("--plain");
        expectFindings(bytes, findings, options);
    }
};

TEST_F(CloudconvCheckPlain, FindsNothingInASoundDrawing) {
    expectWalked(readFile(examples / "plate.dxf"), {});
    expectWalked(drawing({}), {});
    expectWalked(drawing(line(0, 0, 1, 0)), {});
}

TEST_F(CloudconvCheckPlain, FindsNearMissesOfTheWalk) {
    const auto withGap = [](double gap) {
        return drawing(line(0, 0, 1, 0) + line(1 + gap, 0, 2, 0));
    };
    expectWalked(readFile(examples / "plate_with_gap.dxf"),
                 {nearMiss("(0, 6.998)", "(0, 7)", "0.002")});
    expectWalked(withGap(0.0005), {});
    expectWalked(withGap(0.0625), {nearMiss("(1.0625, 0)", "(1, 0)", "0.0625")});
    expectWalked(withGap(0.125), {nearMiss("(1.125, 0)", "(1, 0)", "0.125")},
                 {"--distance", "0.2"});
    expectWalked(withGap(0.0625), {}, {"--distance", "0.05"});
    expectWalked(drawing(line(4512000.5, 5400000.25, 4512010, 5400003) +
                         line(4512010, 5400003.002, 4512012, 5400000)),
                 {nearMiss("(4512010, 5400003.002)", "(4512010, 5400003)", "0.002")});
}

TEST_F(CloudconvCheckPlain, FindsRepeatedEntitiesInEitherDirection) {
    expectWalked(drawing(named(line(0, 0, 1, 0), "1F", "0") + line(5, 5, 6, 5) + line(1, 0, 0, 0) +
                         arc(9, 9, 1, 0, 90) + arc(9, 9, 1, 0, 90)),
                 {"duplicate: LINE on layer 0 at (1, 0) repeats LINE 1F",
                  "duplicate: ARC on layer 0 at (9, 9) repeats ARC"});
}

TEST_F(CloudconvCheckPlain, FindsWhatIsTooShortToSample) {
    expectWalked(drawing(line(0, 0, 0.05, 0)),
                 {"too short: LINE on layer 0 at (0, 0) is too short to sample (length 0.05): its "
                  "start is the only point"});
    expectWalked(drawing(named(polyline({0, 0, 5, 0, 5, 0.0625}), "2F", "0")),
                 {"too short: LWPOLYLINE 2F on layer 0 at (0, 0) has a last edge too short to "
                  "sample (length 0.0625): it stops at (5, 0)"});
    expectWalked(drawing(dxf("0 SPLINE  71 3")),
                 {"without extent: SPLINE on layer 0 at (0, 0) cannot be evaluated: no points"});
}

TEST_F(CloudconvCheckPlain, FindsArcsWithoutLength) {
    for (const std::string& entity : {arc(1, 2, 3, 45, 45), arc(1, 2, 0, 0, 90)}) {
        expectWalked(drawing(entity),
                     {"without extent: ARC on layer 0 at (1, 2) has no length: five equal points"});
    }
}

TEST_F(CloudconvCheckPlain, FindsArcsOfPolylinesAndClosingEdges) {
    expectWalked(
        drawing(dxf("0 LWPOLYLINE  5 2F  8 CUT  90 3  70 1  10 0  20 0  42 1  10 4  20 0  "
                    "10 4  20 3  42 0.5")),
        {"walked straight: LWPOLYLINE 2F on layer CUT at (0, 0) has 2 arcs walked as their "
         "chords",
         "closing edge: LWPOLYLINE 2F on layer CUT at (0, 0) has a closing edge that is "
         "walked backwards, after a jump"});
    // The last vertex of an open polyline begins no edge.
    expectWalked(
        drawing(dxf("0 POLYLINE  5 3A  8 0  66 1  0 VERTEX  8 0  10 7  20 0  42 1  "
                    "0 VERTEX  8 0  10 9  20 0  42 1  0 SEQEND")),
        {"walked straight: POLYLINE 3A on layer 0 at (7, 0) has 1 arc walked as its chord"});
}

TEST_F(CloudconvCheckPlain, FindsWhatIsMirroredHiddenOrOnPaper) {
    const std::string mirrored = arc(1, 2, 3, 0, 90) + dxf("210 0  220 0  230 -1");
    const std::string tilted = circle(1, 2, 3) + dxf("210 1  220 0  230 0");
    expectWalked(drawing(mirrored + tilted),
                 {"mirrored: ARC on layer 0 at (1, 2) is mirrored by its extrusion, and walked as "
                  "if it were not",
                  "mirrored: CIRCLE on layer 0 at (1, 2) is tilted by its extrusion, and walked as "
                  "if it were not"});
    expectWalked(
        dxf("0 SECTION  2 TABLES  0 TABLE  2 LAYER") +
            dxf("0 LAYER  2 Aux  70 1  62 7  6 CONTINUOUS") + dxf("0 ENDTAB  0 ENDSEC") +
            drawing(named(line(0, 0, 1, 0), "1", "AUX") + line(2, 0, 3, 0) + dxf("60 1") +
                    line(4, 0, 5, 0) + dxf("67 1")),
        {"hidden: LINE 1 on layer AUX at (0, 0) is on a layer that is off or frozen, and walked",
         "hidden: LINE on layer 0 at (2, 0) is invisible, and walked",
         "paper space: LINE on layer 0 at (4, 0) is in paper space, and walked"});
}

TEST_F(CloudconvCheckPlain, FindsWhatIsNotWalked) {
    expectWalked(drawing(dxf("0 INSERT  5 9  8 0  2 B  10 1  20 2") +
                         dxf("0 ELLIPSE  8 0  10 3  20 4") + dxf("0 TEXT  8 0  1 no geometry") +
                         dxf("0 SPLINE  8 0  71 3  74 2  11 0  21 0  11 5  21 5")),
                 {"walked straight: SPLINE on layer 0 at (0, 0) has fit points alone: its curve is "
                  "not walked",
                  "not walked: INSERT 9 on layer 0 at (1, 2) draws a block, which is not walked",
                  "not walked: ELLIPSE on layer 0 at (3, 4) is not walked"});
}

TEST_F(CloudconvCheckPlain, FindsThatADrawingIsCutShort) {
    const std::string whole = drawing(line(0, 0, 1, 0));
    expectWalked(whole.substr(0, whole.size() - 4),
                 {"cut short: no EOF mark at the end, the drawing may be cut short"});
}

} // namespace
