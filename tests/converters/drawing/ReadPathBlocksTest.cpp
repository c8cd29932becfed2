// What INSERTs draw, and where.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

namespace {

using converters::DrawingPath;
using Point = cv::Point3_<double>;

/// A block with these contents.
std::string block(const std::string& name, const std::string& contents,
                  const std::string& more = "10 0  20 0  70 0") {
    return "0 BLOCK  8 0  2 " + name + "  " + more + "  " + contents +
           (contents.empty() ? "" : "  ") + "0 ENDBLK  ";
}

const char* const lineInX = "0 LINE  8 0  10 0  20 0  11 1  21 0";

std::string drawing(const std::string& blocks, const std::string& entities) {
    return drawingOf(entities, section("BLOCKS", blocks));
}

TEST(ReadPathBlocks, AreDrawnWhereTheyAreInserted) {
    EXPECT_EQ(
        describe(pathOf(drawing(block("a", lineInX),
                                "0 INSERT  2 a  10 5  20 6  30 7  0 INSERT  2 a  10 1  20 2"))),
        "(5, 6, 7) (6, 6, 7)\n(1, 2) (2, 2)\n");
}

TEST(ReadPathBlocks, DrawNothingByThemselves) {
    EXPECT_EQ(describe(pathOf(drawing(block("a", lineInX), ""))), "");
}

TEST(ReadPathBlocks, HaveABasePointThatComesToLieOnTheInsertion) {
    EXPECT_EQ(describe(pathOf(drawing(block("a", lineInX, "70 0  10 1  20 2  30 3"),
                                      "0 INSERT  2 a  10 10  20 10  41 2  50 90"))),
              "(12, 8, -3) (12, 10, -3)\n");
}

TEST(ReadPathBlocks, AreScaledThenTurned) {
    EXPECT_EQ(describe(pathOf(drawing(block("a", "0 LINE  10 1  20 1  30 1  11 2  21 1  31 1"),
                                      "0 INSERT  2 a  41 2  42 3  43 4  50 90"))),
              "(-3, 2, 4) (-3, 4, 4)\n");
}

TEST(ReadPathBlocks, AreMirroredByNegativeScales) {
    const DrawingPath path =
        pathOf(drawing(block("a", "0 ARC  10 0  20 0  40 1  50 0  51 90"), "0 INSERT  2 a  41 -1"));
    EXPECT_NEAR(path.points.front().x, -1, 1e-12);
    EXPECT_NEAR(path.points.back().y, 1, 1e-12);
    EXPECT_EQ(path.arcs.at(0).normal, Point(0, 0, -1));
}

TEST(ReadPathBlocks, TurnCirclesIntoEllipsesByDifferentScales) {
    const DrawingPath path =
        pathOf(drawing(block("a", "0 CIRCLE  10 0  20 0  40 1"), "0 INSERT  2 a  41 2  42 3"));
    EXPECT_TRUE(path.arcs.empty());
    ASSERT_EQ(path.ellipticArcs.size(), 1U);
    EXPECT_NEAR(std::sqrt(path.ellipticArcs[0].major.dot(path.ellipticArcs[0].major)), 3, 1e-12);
    EXPECT_NEAR(std::sqrt(path.ellipticArcs[0].minor.dot(path.ellipticArcs[0].minor)), 2, 1e-12);
    EXPECT_EQ(path.entities.at(0).kind, converters::PathEntityKind::circle);
}

TEST(ReadPathBlocks, AreFlattenedByAScaleOfZeroInZ) {
    EXPECT_EQ(describe(pathOf(drawing(block("a", "0 LINE  10 0  20 0  30 5  11 1  21 0  31 6"),
                                      "0 INSERT  2 a  43 0"))),
              "(0, 0) (1, 0)\n");
}

TEST(ReadPathBlocks, HaveNoExtentByAScaleOfZero) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("a", lineInX), "0 INSERT  8 w  2 a  41 0  0 INSERT  8 "
                                                          "w  2 a  42 0"))),
              "2 INSERT on w: broken\n");
}

TEST(ReadPathBlocks, StandInTheObjectCoordinatesOfTheInsert) {
    EXPECT_EQ(describe(pathOf(drawing(block("a", lineInX),
                                      "0 INSERT  2 a  10 5  20 6  30 7  210 0  220 0  230 -1"))),
              "(-5, 6, -7) (-6, 6, -7)\n");
}

TEST(ReadPathBlocks, AreNested) {
    const std::string blocks = block("inner", lineInX) +
                               block("middle", "0 INSERT  2 inner  10 1  20 0") +
                               block("outer", "0 INSERT  2 middle  20 10  50 90");
    EXPECT_EQ(describe(pathOf(drawing(blocks, "0 INSERT  2 outer  10 100"))),
              "(100, 11) (100, 12)\n");
}

TEST(ReadPathBlocks, MayStandBehindWhatInsertsThem) {
    EXPECT_EQ(describe(pathOf(section("ENTITIES", "0 INSERT  2 a  10 5") +
                              section("BLOCKS", block("a", "0 INSERT  2 b") + block("b", lineInX)) +
                              "0\nEOF\n")),
              "(5, 0) (6, 0)\n");
}

TEST(ReadPathBlocks, AreFoundWhateverTheCase) {
    EXPECT_EQ(describe(pathOf(drawing(block("T\xFCr", lineInX), "0 INSERT  2 t\xDCR"))),
              "(0, 0) (1, 0)\n");
}

TEST(ReadPathBlocks, AreDrawnInArraysThatTurnAndAreNotScaled) {
    EXPECT_EQ(describe(pathOf(
                  drawing(block("a", "0 POINT  10 1  20 0"),
                          "0 INSERT  2 a  10 100  41 2  42 2  50 90  70 2  71 3  44 10  45 20"))),
              "(100, 2)\n(100, 12)\n(80, 2)\n(80, 12)\n(60, 2)\n(60, 12)\n");
}

TEST(ReadPathBlocks, OfAnArrayAreOnceWhereTheyHaveNoSpacing) {
    EXPECT_EQ(describe(pathOf(
                  drawing(block("a", "0 POINT  10 0  20 0"), "0 INSERT  2 a  70 3  71 2  45 20"))),
              "(0, 0)\n(0, 20)\n");
    EXPECT_EQ(describe(pathOf(drawing(block("a", "0 POINT  10 0  20 0"),
                                      "0 INSERT  2 a  70 0  71 -5  44 1  45 1"))),
              "(0, 0)\n");
}

TEST(ReadPathBlocks, ThatAreEmptyAreNoMatter) {
    const DrawingPath path = pathOf(drawing(block("a", "") + block("b", "0 INSERT  2 a"),
                                            "0 INSERT  2 a  0 INSERT  2 b  70 32767  71 32767  44 "
                                            "1  45 1"));
    EXPECT_EQ(leftOut(path), "");
}

TEST(ReadPathBlocks, ThatAreMissingAreListed) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("a", "0 INSERT  8 b  2 gone"),
                                     "0 INSERT  8 w  2 gone  0 INSERT  2 a  70 3  44 1"))),
              "1 INSERT on w: of a missing block\n3 INSERT on b: of a missing block\n");
}

TEST(ReadPathBlocks, OfOtherFilesAreListed) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("x", "", "70 4  1 other.dwg"), "0 INSERT  8 w  2 x"))),
              "1 INSERT on w: of a block in another file\n");
    // Its contents may be there all the same.
    EXPECT_EQ(describe(pathOf(drawing(block("x", lineInX, "70 4"), "0 INSERT  2 x"))),
              "(0, 0) (1, 0)\n");
}

TEST(ReadPathBlocks, ThatHoldThemselvesAreDrawnOnce) {
    const DrawingPath path = pathOf(
        drawing(block("a", std::string(lineInX) + "  0 INSERT  8 w  2 a  10 5"), "0 INSERT  2 a"));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0)\n");
    EXPECT_EQ(leftOut(path), "1 INSERT on w: of a block that holds itself\n");
}

TEST(ReadPathBlocks, ThatHoldThemselvesAroundCornersAreDrawnOnce) {
    const std::string blocks = block("a", std::string(lineInX) + "  0 INSERT  2 b  20 1") +
                               block("b", std::string(lineInX) + "  0 INSERT  2 c  20 1") +
                               block("c", std::string(lineInX) + "  0 INSERT  2 A  20 1");
    const DrawingPath path = pathOf(drawing(blocks, "0 INSERT  2 a"));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0)\n(0, 1) (1, 1)\n(0, 2) (1, 2)\n");
    EXPECT_EQ(leftOut(path), "1 INSERT on 0: of a block that holds itself\n");
}

TEST(ReadPathBlocks, OfEqualNamesCountAsTheFirstThatHoldsAnything) {
    const DrawingPath path = pathOf(drawing(block("a", "") + block("A", lineInX) +
                                                block("a", "0 POINT  10 9  20 9") + block("a", ""),
                                            "0 INSERT  2 a"));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0)\n");
    EXPECT_THAT(
        path.notes,
        testing::ElementsAre("1 block has the name of an earlier one; the earlier one is drawn"));
}

TEST(ReadPathBlocks, WithAttributesAreFollowedByText) {
    const DrawingPath path = pathOf(drawing(
        block("a", std::string(lineInX) + "  0 ATTDEF  8 t  2 TAG  70 0  0 ATTDEF  8 c  100 "
                                          "AcDbEntity  100 AcDbText  2 TAG  70 2"),
        "0 INSERT  8 0  66 1  2 a  0 ATTRIB  8 t  10 1  20 1  0 SEQEND  8 0  0 POINT  10 3  20 4"));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0)\n(3, 4)\n");
    EXPECT_EQ(leftOut(path), "1 ATTDEF on c: annotation\n1 ATTRIB on t: annotation\n");
}

TEST(ReadPathBlocks, CountWhatTheyLeaveOutOnceForEachTimeThatTheyAreDrawn) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("a", "0 TEXT  8 t  0 TEXT  8 0  0 TEXT  8 t") +
                                         block("b", "0 INSERT  2 a  70 5  71 2  44 1  45 1"),
                                     "0 INSERT  8 w  2 b  0 INSERT  8 v  2 a"))),
              "22 TEXT on t: annotation\n10 TEXT on w: annotation\n1 TEXT on v: annotation\n");
}

TEST(ReadPathBlocks, TellWhichInsertDrawsThem) {
    const DrawingPath path = pathOf(drawing(block("inner", "0 POINT  5 A1  10 0  20 0") +
                                                block("outer", "0 INSERT  5 B1  2 inner"),
                                            "0 INSERT  5 C1  2 outer  0 INSERT  5 C2  2 inner"));
    ASSERT_EQ(path.entities.size(), 2U);
    EXPECT_EQ(path.entities[0].handle, 0xA1U);
    EXPECT_EQ(path.entities[0].insert, 0xC1U);
    EXPECT_EQ(path.entities[1].insert, 0xC2U);
}

TEST(ReadPathBlocks, OfModelSpaceAreTheDrawing) {
    EXPECT_EQ(describe(pathOf(drawing(block("*Model_Space", lineInX), "0 POINT  10 9  20 9"))),
              "(0, 0) (1, 0)\n(9, 9)\n");
}

TEST(ReadPathBlocks, OfSpacesAreNotInserted) {
    EXPECT_EQ(
        leftOut(pathOf(drawing(block("*Model_Space", lineInX), "0 INSERT  8 w  2 *Model_Space"))),
        "1 INSERT on w: of a block that holds itself\n");
    EXPECT_EQ(leftOut(pathOf(drawing(block("*Paper_Space", ""), "0 INSERT  8 w  2 *PAPER_SPACE"))),
              "1 INSERT on w: in paper space\n");
}

TEST(ReadPathBlocks, OfPaperSpaceAreLeftOut) {
    const std::string file =
        drawing(block("*Paper_Space0", "0 LINE  8 p  10 0  20 0  11 1  21 0"), "");
    EXPECT_EQ(leftOut(pathOf(file)), "1 LINE on p: in paper space\n");
    converters::PathOptions options;
    options.paperSpace = true;
    EXPECT_EQ(describe(pathOf(file, options)), "(0, 0) (1, 0)\n");
}

TEST(ReadPathBlocks, ThatAreClippedAreDrawnAsAWhole) {
    const std::string objects = section(
        "OBJECTS", "0 DICTIONARY  5 D1  330 A1  3 ACAD_FILTER  360 D2  0 DICTIONARY  5 D2  102 "
                   "{ACAD_REACTORS  330 D1  102 }  330 D1  3 SPATIAL  360 D3  0 SPATIAL_FILTER  5 "
                   "D3  330 D2  100 AcDbFilter  71 1");
    const std::string entities = "0 INSERT  5 A1  102 {ACAD_XDICTIONARY  360 D1  102 }  8 w  2 a  "
                                 "0 INSERT  5 A2  8 w  2 a  20 1";
    const DrawingPath path =
        pathOf(section("BLOCKS", block("a", lineInX)) + section("ENTITIES", entities) + objects);
    EXPECT_EQ(path.contours.size(), 2U);
    EXPECT_EQ(leftOut(path), "1 INSERT on w: drawn without its clipping boundary\n");
}

TEST(ReadPathBlocks, ThatOverflowAreBroken) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("a", "0 LINE  10 0  20 0  11 1e300  21 0"),
                                     "0 INSERT  2 a  41 1e300"))),
              "1 LINE on 0: broken\n");
}

/// A tower of blocks, each of which holds the next one ten times.
std::string tower(int storeys, const std::string& ground) {
    std::string blocks = block("b0", ground);
    for (int i = 1; i <= storeys; ++i) {
        std::string inserts;
        for (int k = 0; k < 10; ++k) {
            inserts += (k == 0 ? "0 INSERT  2 b" : "  0 INSERT  2 b") + std::to_string(i - 1);
        }
        blocks += block("b" + std::to_string(i), inserts);
    }
    return drawing(blocks, "0 INSERT  2 b" + std::to_string(storeys));
}

TEST(ReadPathBlocks, ThatMultiplyBeyondTheMaximumAreRefused) {
    const char* const reason = "more than 100000000 entities when all blocks are drawn";
    EXPECT_EQ(refusalOf(tower(12, lineInX)), reason);
    EXPECT_EQ(refusalOf(tower(12, "0 TEXT  8 0")), reason);
    EXPECT_EQ(refusalOf(tower(100, lineInX)), reason);
    EXPECT_EQ(refusalOf(tower(12, "")), "") << "nothing is drawn";
    EXPECT_EQ(
        refusalOf(drawing(block("a", lineInX), "0 INSERT  2 a  70 32767  71 32767  44 1  45 1")),
        reason);
}

TEST(ReadPathBlocks, AreAllowedUpToTheMaximum) {
    converters::PathOptions options;
    options.maximumEntities = 1000;
    EXPECT_EQ(refusalOf(tower(3, lineInX), options), "");
    options.maximumEntities = 999;
    EXPECT_EQ(refusalOf(tower(3, lineInX), options),
              "more than 999 entities when all blocks are drawn");
    options.maximumEntities = 0;
    EXPECT_EQ(refusalOf(tower(3, ""), options), "");
}

TEST(ReadPathBlocks, OfTextAreCountedWithoutDrawingEachItemOfAnArray) {
    EXPECT_EQ(leftOut(pathOf(drawing(block("a", "0 TEXT  8 t"),
                                     "0 INSERT  2 a  70 32767  71 32767  44 1  45 1"))),
              "1073676289 TEXT on t: annotation\n");
}

TEST(ReadPathBlocks, OfEqualVerticesAreNotFollowedWithoutEnd) {
    // Each one a dot, of a thousand vertices or control points in one place.
    std::string vertices;
    for (int i = 0; i < 1000; ++i) {
        vertices += "  10 1  20 1";
    }
    converters::PathOptions options;
    options.maximumPoints = 100'000;
    for (const std::string& dot : {"0 LWPOLYLINE  70 0" + vertices, "0 SPLINE  71 3" + vertices}) {
        const auto drawn = [&](int columns) {
            return drawing(block("a", dot), "0 INSERT  2 a  44 1  70 " + std::to_string(columns));
        };
        EXPECT_EQ(refusalOf(drawn(400), options), "");
        EXPECT_EQ(refusalOf(drawn(402), options), "more than 100000 points");
    }
}

TEST(ReadPathBlocks, MayBeNestedAsDeepAsTheFileIsLong) {
    std::string blocks = block("b0", lineInX);
    constexpr int depth = 20'000;
    for (int i = 1; i <= depth; ++i) {
        blocks += block("b" + std::to_string(i), "0 INSERT  2 b" + std::to_string(i - 1));
    }
    EXPECT_EQ(describe(pathOf(drawing(blocks, "0 INSERT  2 b" + std::to_string(depth)))),
              "(0, 0) (1, 0)\n");
}

TEST(ReadPathBlocks, WhoseBasePointIsNoNumberAreBroken) {
    for (const char* const base : {"70 0  10 x", "70 0  20 x", "70 0  30 x"}) {
        SCOPED_TRACE(base);
        const DrawingPath path = pathOf(
            drawing(block("a", "0 POINT  8 0  10 0  20 0", base), "0 INSERT  2 a  10 0  20 0"));
        EXPECT_TRUE(path.points.empty());
        EXPECT_EQ(leftOut(path), "1 POINT on 0: broken\n");
    }
}

/// An INSERT of the block "a", and where it draws a point of that.
struct Placed {
    double x;
    double y;
    Point scale;
    double degrees;

    std::string text() const {
        std::ostringstream text;
        text << "0 INSERT  2 a  10 " << x << "  20 " << y << "  41 " << scale.x << "  42 "
             << scale.y << "  43 " << scale.z << "  50 " << degrees << "  ";
        return text.str();
    }
    Point operator()(const Point& point) const {
        const double angle = degrees / 180 * 3.14159265358979323846;
        const double u = scale.x * point.x;
        const double v = scale.y * point.y;
        return {x + std::cos(angle) * u - std::sin(angle) * v,
                y + std::sin(angle) * u + std::cos(angle) * v, scale.z * point.z};
    }
    /// The x within the block of a point that it draws.
    double xOf(const Point& point) const {
        const double angle = degrees / 180 * 3.14159265358979323846;
        return (std::cos(angle) * (point.x - x) + std::sin(angle) * (point.y - y)) / scale.x;
    }
};

double lengthOf(const Point& way) {
    return std::sqrt(way.dot(way));
}

double distanceFromLine(const Point& point, const Point& from, const Point& to) {
    const Point way = to - from;
    const Point across = (point - from).cross(way);
    return lengthOf(across) / lengthOf(way);
}

// The spline is x, x^2, z x for x from -1 to 1; flat ones keep their points where z is stretched.
TEST(ReadPathBlocks, DrawCurvesFinelyEnoughWhereverTheyAreDrawnAgain) {
    const std::vector<Placed> places = {{0, 0, {1, 1, 1}, 0},    {10, 5, {1, 1, 1}, 30},
                                        {-7, 3, {-1, 1, 1}, 77}, {100, 0, {1, -1, -1}, 200},
                                        {5, 5, {5, 5, 5}, 10},   {5, 50, {1, 1, 3}, 45},
                                        {3, 9, {1, 4, 1}, 60},   {0, 70, {0.1, 0.1, 0.1}, 5},
                                        {1, 1, {5, 5, 5}, 90},   {1e6, 1e6, {1, 1, 1}, 123.4}};
    for (const double z : {0.0, 1.0}) {
        std::ostringstream spline;
        spline << "0 SPLINE  71 2  40 0  40 0  40 0  40 1  40 1  40 1  10 -1  20 1  30 " << -z
               << "  10 0  20 -1  30 0  10 1  20 1  30 " << z;
        std::string inserts;
        for (const Placed& place : places) {
            inserts += place.text();
        }
        converters::PathOptions options;
        options.tolerance = 1e-4;
        const DrawingPath path = pathOf(drawing(block("a", spline.str()), inserts), options);
        ASSERT_EQ(path.contours.size(), places.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            const Placed& place = places[i];
            const double rounding = 1e-15 * std::abs(place.x) + 1e-12;
            const auto pointOf = [&](double x) { return place({x, x * x, z * x}); };
            const auto end = path.contours[i].endPoint - 1;
            for (auto k = path.contours[i].firstPoint; k < end; ++k) {
                const Point& from = path.points[k];
                const Point& to = path.points[k + 1];
                const double x0 = place.xOf(from);
                const double x1 = place.xOf(to);
                ASSERT_LT(x0, x1);
                ASSERT_LE(lengthOf(pointOf(x0) - from), rounding);
                // The farthest point of a parabola from its chord.
                ASSERT_LE(distanceFromLine(pointOf(0.5 * (x0 + x1)), from, to),
                          *options.tolerance + rounding);
            }
            EXPECT_LE(lengthOf(path.points[end] - place({1, 1, z})), rounding);
            double length = 0;
            for (double x = -1; x < 1; x += 0x1p-10) {
                length += lengthOf(pointOf(x + 0x1p-10) - pointOf(x));
            }
            EXPECT_NEAR(path.contours[i].length, length, 1e-6 * length + rounding);
        }
    }
}

TEST(ReadPathBlocks, OfManyPointsAreAllowedUpToTheMaximum) {
    std::string inserts;
    for (int i = 0; i < 60; ++i) {
        inserts += Placed{3.0 * i, 0, {1, 1, 1}, 7.0 * i}.text();
    }
    const std::string text =
        drawing(block("a", "0 ELLIPSE  10 0  20 0  11 1  21 0  40 0.5  41 0  42 6.283185307179586"),
                inserts);
    converters::PathOptions options;
    options.tolerance = 1e-9;
    // More than are written without counting them first.
    const std::size_t number = pathOf(text, options).points.size();
    EXPECT_GT(number, std::size_t{1} << 21);
    options.maximumPoints = number;
    EXPECT_EQ(pathOf(text, options).points.size(), number);
    options.maximumPoints = number - 1;
    EXPECT_EQ(refusalOf(text, options), "more than " + std::to_string(number - 1) + " points");
}

} // namespace
