// What readPath makes of drawings that are broken or made to hurt: never a crash, never a number
// that is none, and no more memory than the file and the most points account for. The time is
// counted in instructions: tests/instructions/growth.py.
#include "converters/PathReader.h"
#include "tests/support/HostilePathDrawings.h"
#include "tests/support/Pieces.h"
#include "tests/support/Random.h"
#include "tests/support/Repeated.h"

#ifdef CONVERTERS_COUNTED_MEMORY
#include "tests/support/FailingAllocator.h"
#endif

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

void PrintTo(const HostileDrawing& drawing, std::ostream* stream) {
    *stream << drawing.name;
}

namespace {

using converters::DrawingPath;
using converters::LeftOutReason;
using converters::PathOptions;
using converters::ReadResult;

ReadResult read(const std::string& bytes, DrawingPath& path, const PathOptions& options = {}) {
    return converters::readPath(bytes.data(), bytes.size(), path, options);
}

bool isFinite(const cv::Point3_<double>& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

void expectSound(const DrawingPath& path) {
    EXPECT_TRUE(std::all_of(path.points.begin(), path.points.end(), isFinite));
    std::size_t point = 0;
    std::size_t piece = 0;
    for (const converters::PathContour& contour : path.contours) {
        ASSERT_EQ(contour.firstPoint, point);
        ASSERT_EQ(contour.firstPiece, piece);
        ASSERT_LT(contour.firstPoint, contour.endPoint);
        ASSERT_LT(contour.firstPiece, contour.endPiece);
        ASSERT_LE(contour.endPoint, path.points.size());
        ASSERT_LE(contour.endPiece, path.pieces.size());
        ASSERT_LT(contour.layer, path.layers.size());
        EXPECT_EQ(path.pieces[contour.firstPiece].firstPoint, contour.firstPoint);
        EXPECT_EQ(path.pieces[contour.endPiece - 1].lastPoint, contour.endPoint - 1);
        EXPECT_TRUE(std::isfinite(contour.length));
        point = contour.endPoint;
        piece = contour.endPiece;
    }
    EXPECT_EQ(point, path.points.size());
    EXPECT_EQ(piece, path.pieces.size());
    for (const converters::PathPiece& each : path.pieces) {
        ASSERT_LT(each.entity, path.entities.size());
    }
    EXPECT_TRUE(std::isfinite(path.length));
    EXPECT_TRUE(std::isfinite(path.wayLength));
}

/// Reads a drawing that must be read, and be sound.
DrawingPath pathOf(const std::string& bytes, const PathOptions& options = {}) {
    DrawingPath path;
    const ReadResult result = read(bytes, path, options);
    EXPECT_TRUE(result.success) << result.reason;
    EXPECT_EQ(result.reason, "");
    expectSound(path);
    return path;
}

/// Reads a drawing that may be refused with a reason; otherwise it must be sound.
void expectReadOrRefused(const std::string& bytes, const PathOptions& options = {}) {
    DrawingPath path;
    const ReadResult result = read(bytes, path, options);
    EXPECT_EQ(result.success, result.reason.empty());
    expectSound(path);
}

/// Returns the reason of a drawing that must be refused; what was there before must stay.
std::string refusalOf(const std::string& bytes, const PathOptions& options = {}) {
    DrawingPath path;
    path.points.emplace_back(1, 2, 3);
    path.wayLength = 7;
    const ReadResult result = read(bytes, path, options);
    EXPECT_FALSE(result.success);
    EXPECT_NE(result.reason, "");
    EXPECT_EQ(path.points.size(), 1U);
    EXPECT_EQ(path.wayLength, 7);
    return result.reason;
}

std::uint64_t leftOutFor(const DrawingPath& path, LeftOutReason reason) {
    std::uint64_t number = 0;
    for (const converters::LeftOut& leftOut : path.leftOut) {
        number += leftOut.reason == reason ? leftOut.number : 0;
    }
    return number;
}

const std::string onePoint = "0\nPOINT\n8\n0\n10\n1\n20\n1\n";
const std::string oneLine = "0\nLINE\n8\n0\n10\n1\n20\n1\n11\n2\n21\n2\n";
const std::string oneCircle = "0\nCIRCLE\n8\n0\n10\n1\n20\n1\n40\n2\n";

/// Numbers that are none, too large, too small, or just many.
const std::vector<std::string>& numbersToFear() {
    static const std::vector<std::string> numbers = {
        "0",          "-0.0",    "nan",           "inf",    "-inf",
        "1e308",      "-1e308",  "1e-308",        "5e-324", "1e200",
        "-1e200",     "1e99999", "1e-99999",      "7200.5", "-99999",
        "1e18",       "1,5",     "0x1p4",         "",       " ",
        "2147483648", "-32769",  "1e16",          "1e9",    "18446744073709551616",
        "-1",         "abc",     "360.0000000001"};
    return numbers;
}

// Blocks

TEST(HostilePath, ABlockThatHoldsItselfIsDrawnWithoutItself) {
    const DrawingPath path =
        pathOf(drawingOf(insertOf("a"), blockOf("a", oneLine + insertOf("a"))));
    EXPECT_EQ(path.contours.size(), 1U);
    EXPECT_EQ(leftOutFor(path, LeftOutReason::blockHoldsItself), 1U);
}

TEST(HostilePath, ABlockThatHoldsItselfAroundCornersIsDrawnWithoutItself) {
    const std::string blocks = blockOf("a", oneLine + insertOf("b")) +
                               blockOf("b", oneLine + insertOf("C")) +
                               blockOf("c", oneLine + insertOf("A"));
    const DrawingPath path = pathOf(drawingOf(insertOf("a"), blocks));
    EXPECT_EQ(path.entities.size(), 3U);
    EXPECT_EQ(leftOutFor(path, LeftOutReason::blockHoldsItself), 1U);
}

TEST(HostilePath, BlocksThatHoldOneAnotherManyTimesEndAtOnce) {
    std::string blocks;
    std::string everyOne;
    for (int i = 0; i < 30; ++i) {
        everyOne += insertOf("b" + std::to_string(i));
    }
    for (int i = 0; i < 30; ++i) {
        blocks += blockOf("b" + std::to_string(i), everyOne);
    }
    PathOptions options;
    options.maximumEntities = 100'000;
    expectReadOrRefused(drawingOf(insertOf("b0"), blocks), options);
}

/// 2 to the power of `levels` times the contents.
std::string towerOf(int levels, const std::string& contents) {
    std::string blocks = blockOf("t0", contents);
    for (int i = 1; i <= levels; ++i) {
        const std::string below = "t" + std::to_string(i - 1);
        blocks += blockOf("t" + std::to_string(i), insertOf(below) + insertOf(below));
    }
    return drawingOf(insertOf("t" + std::to_string(levels)), blocks);
}

TEST(HostilePath, ATowerOfBlocksIsRefusedBeforeItIsBuilt) {
    EXPECT_THAT(refusalOf(towerOf(40, oneLine)), testing::HasSubstr("entities"));
    EXPECT_NE(refusalOf(towerOf(200, oneLine)), "");
}

TEST(HostilePath, ATowerOfBlocksThatHoldNothingEndsAtOnce) {
    expectReadOrRefused(towerOf(40, ""));
    expectReadOrRefused(towerOf(200, ""));
    expectReadOrRefused(towerOf(40, "0\nTEXT\n8\n0\n1\nx\n"));
    expectReadOrRefused(towerOf(60, insertOf("missing")));
    expectReadOrRefused(towerOf(60, "0\nLINE\n8\n0\n60\n1\n"));
    expectReadOrRefused(towerOf(60, "0\nCIRCLE\n8\n0\n10\n3\n20\n4\n8\n0\n40\n0\n"));
}

TEST(HostilePath, ALowTowerIsDrawnWhole) {
    EXPECT_EQ(pathOf(towerOf(10, onePoint)).points.size(), 1024U);
}

const std::string hugeArray = "70\n32767\n71\n32767\n44\n1\n45\n1\n";

TEST(HostilePath, AnArrayOfABillionIsRefusedBeforeItIsBuilt) {
    EXPECT_THAT(refusalOf(drawingOf(insertOf("b", hugeArray), blockOf("b", onePoint))),
                testing::HasSubstr("entities"));
}

TEST(HostilePath, AnArrayOfABillionThatDrawsNothingEndsAtOnce) {
    for (const std::string& contents :
         {std::string(), std::string("0\nTEXT\n8\n0\n1\nx\n"), insertOf("missing"), insertOf("b"),
          std::string("0\nLINE\n8\n0\n60\n1\n")}) {
        expectReadOrRefused(drawingOf(insertOf("b", hugeArray), blockOf("b", contents)));
    }
    const DrawingPath missing = pathOf(drawingOf(insertOf("missing", hugeArray)));
    EXPECT_EQ(leftOutFor(missing, LeftOutReason::blockMissing), 1U);
}

TEST(HostilePath, ArraysWithCountsThatMakeNoSenseAreReadOrLeftOut) {
    for (const std::string& count : numbersToFear()) {
        SCOPED_TRACE(count);
        PathOptions options;
        options.maximumEntities = 100'000;
        expectReadOrRefused(drawingOf(insertOf("b", "70\n" + count + "\n71\n2\n44\n1\n45\n1\n"),
                                      blockOf("b", oneLine)),
                            options);
    }
}

TEST(HostilePath, BlocksNestedDeepDoNotOverflowTheStack) {
    constexpr int depth = 100'000;
    std::string blocks = blockOf("n" + std::to_string(depth), oneLine);
    for (int i = 0; i < depth; ++i) {
        blocks += blockOf("n" + std::to_string(i), insertOf("n" + std::to_string(i + 1)));
    }
    expectReadOrRefused(drawingOf(insertOf("n0"), blocks));
}

// Numbers

struct Field {
    const char* name;
    std::string before;
    std::string after;
    /// Blocks of the drawing.
    std::string blocks;
};

void PrintTo(const Field& field, std::ostream* stream) {
    *stream << field.name;
}

class HostileNumber : public testing::TestWithParam<Field> {};

TEST_P(HostileNumber, IsReadOrLeftOutAndNeverDrawnAsNoNumber) {
    PathOptions options;
    options.maximumPoints = 100'000;
    for (const std::string& number : numbersToFear()) {
        SCOPED_TRACE('"' + number + '"');
        const Field& field = GetParam();
        const std::string text =
            drawingOf(oneLine + field.before + number + '\n' + field.after, field.blocks);
        for (const auto order : {converters::PathOrder::drawn, converters::PathOrder::nearest,
                                 converters::PathOrder::insideFirst}) {
            options.order = order;
            expectReadOrRefused(text, options);
        }
        options.order = converters::PathOrder::drawn;
        expectReadOrRefused(binaryDrawingOf(groupsOf(text)), options);
    }
}

const std::string splineStart = "0\nSPLINE\n8\n0\n70\n8\n71\n2\n";
const std::string splinePoints = "10\n0\n20\n0\n10\n1\n20\n1\n10\n2\n20\n0\n";
const std::string splineKnots = "40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n";
const std::string mixed =
    blockOf("b", oneLine + oneCircle + splineStart + splineKnots + splinePoints +
                     "0\nLWPOLYLINE\n90\n2\n10\n0\n20\n0\n42\n1\n10\n1\n20\n"
                     "1\n");

INSTANTIATE_TEST_SUITE_P(
    Fields, HostileNumber,
    testing::Values(
        Field{"PointX", "0\nPOINT\n20\n1\n10\n", "", ""},
        Field{"LineEnd", "0\nLINE\n10\n1\n20\n1\n21\n5\n11\n", "", ""},
        Field{"Radius", "0\nCIRCLE\n8\n0\n10\n3\n20\n4\n10\n0\n20\n0\n40\n", "", ""},
        Field{"Centre", "0\nCIRCLE\n8\n0\n10\n3\n20\n4\n40\n2\n10\n", "", ""},
        Field{"StartAngle", "0\nARC\n8\n0\n10\n3\n20\n4\n40\n2\n51\n90\n50\n", "", ""},
        Field{"EndAngle", "0\nARC\n8\n0\n10\n3\n20\n4\n40\n2\n50\n10\n51\n", "", ""},
        Field{"ArcExtrusion", "0\nARC\n8\n0\n10\n3\n20\n4\n40\n2\n50\n10\n51\n20\n210\n",
              "220\n0\n230\n0\n", ""},
        Field{"CircleExtrusion", "0\nCIRCLE\n8\n0\n10\n3\n20\n4\n40\n2\n210\n0\n220\n0\n230\n", "",
              ""},
        Field{"MajorAxis", "0\nELLIPSE\n8\n0\n10\n3\n20\n4\n40\n0.5\n41\n0\n42\n6.28\n11\n",
              "21\n0\n", ""},
        Field{"Ratio", "0\nELLIPSE\n8\n0\n10\n3\n20\n4\n11\n2\n21\n0\n41\n0\n42\n6.28\n40\n", "",
              ""},
        Field{"StartParameter",
              "0\nELLIPSE\n8\n0\n10\n3\n20\n4\n11\n2\n21\n0\n40\n0.5\n42\n6.28\n41\n", "", ""},
        Field{"EndParameter", "0\nELLIPSE\n8\n0\n10\n3\n20\n4\n11\n2\n21\n0\n40\n0.5\n41\n1\n42\n",
              "", ""},
        Field{"EllipseExtrusion",
              "0\nELLIPSE\n8\n0\n10\n3\n20\n4\n11\n2\n21\n0\n40\n0.5\n41\n1\n42\n2\n230\n", "", ""},
        Field{"Bulge", "0\nLWPOLYLINE\n90\n2\n10\n0\n20\n0\n42\n", "10\n1\n20\n1\n", ""},
        Field{"ClosingBulge", "0\nLWPOLYLINE\n90\n2\n70\n1\n10\n0\n20\n0\n10\n1\n20\n1\n42\n", "",
              ""},
        Field{"VertexX", "0\nLWPOLYLINE\n90\n2\n10\n0\n20\n0\n42\n1\n10\n", "20\n1\n", ""},
        Field{"VertexCount", "0\nLWPOLYLINE\n90\n", "10\n0\n20\n0\n10\n1\n20\n1\n", ""},
        Field{"Elevation", "0\nLWPOLYLINE\n90\n2\n38\n", "10\n0\n20\n0\n10\n1\n20\n1\n", ""},
        Field{"PolylineFlags", "0\nPOLYLINE\n66\n1\n70\n",
              "0\nVERTEX\n10\n0\n20\n0\n42\n1\n0\nVERTEX\n10\n1\n20\n1\n0\nSEQEND\n", ""},
        Field{"OldBulge", "0\nPOLYLINE\n66\n1\n0\nVERTEX\n10\n0\n20\n0\n42\n",
              "0\nVERTEX\n10\n1\n20\n1\n0\nSEQEND\n", ""},
        Field{"Degree", "0\nSPLINE\n71\n", splineKnots + splinePoints, ""},
        Field{"KnotCount", splineStart + "72\n", splineKnots + splinePoints, ""},
        Field{"ControlPointCount", splineStart + "73\n", splineKnots + splinePoints, ""},
        Field{"FirstKnot", splineStart + "40\n",
              "40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n" + splinePoints, ""},
        Field{"MiddleKnot", splineStart + "40\n0\n40\n0\n40\n0\n40\n",
              "40\n1\n40\n1\n40\n1\n" + splinePoints + "10\n4\n20\n4\n", ""},
        Field{"LastKnot", splineStart + "40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n", splinePoints,
              ""},
        Field{"Weight", splineStart + splineKnots + splinePoints + "41\n1\n41\n", "41\n1\n", ""},
        Field{"ControlPoint", splineStart + splineKnots + "10\n0\n20\n0\n10\n1\n20\n1\n10\n",
              "20\n0\n", ""},
        Field{"FitPoint", "0\nSPLINE\n71\n3\n11\n0\n21\n0\n11\n1\n21\n1\n11\n", "21\n3\n", ""},
        Field{"Tangent", "0\nSPLINE\n71\n3\n11\n0\n21\n0\n11\n1\n21\n1\n11\n5\n21\n3\n12\n",
              "22\n0\n", ""},
        Field{"Scale", insertOf("b", "42\n2\n41\n"), "", mixed},
        Field{"AllScales", insertOf("b", "41\n1e200\n42\n1e200\n43\n"), "", mixed},
        Field{"Rotation", insertOf("b", "50\n"), "", mixed},
        Field{"Extrusion", insertOf("b", "210\n0\n220\n0\n230\n"), "", mixed},
        Field{"InsertPoint", "0\nINSERT\n2\nb\n20\n1\n10\n", "", mixed},
        Field{"Spacing", insertOf("b", "70\n3\n71\n3\n45\n1\n44\n"), "", mixed},
        Field{"Unit", "0\nENDSEC\n0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n", "", ""},
        Field{"Handle", "0\nPOINT\n10\n1\n20\n1\n5\n", "", ""},
        Field{"Colour", "0\nPOINT\n10\n1\n20\n1\n62\n", "", ""},
        Field{"TrueColour", "0\nPOINT\n10\n1\n20\n1\n420\n", "", ""}),
    [](const auto& field) { return std::string(field.param.name); });

TEST(HostilePath, AScaleOfZeroLeavesOutWhatHasNoExtentAndSaysSo) {
    const DrawingPath path = pathOf(drawingOf(insertOf("b", "41\n0\n42\n0\n43\n0\n"), mixed));
    EXPECT_GE(leftOutFor(path, LeftOutReason::broken), 1U);
}

TEST(HostilePath, AnglesOfThousandsOfDegreesAreTurnsAndTheRest) {
    const auto circular = [](const std::string& start, const std::string& end) {
        return pathOf(
            drawingOf("0\nARC\n8\n0\n10\n0\n20\n0\n40\n1\n50\n" + start + "\n51\n" + end + "\n"));
    };
    const DrawingPath plain = circular("10", "100");
    const DrawingPath turned = circular("7210", "-3500");
    ASSERT_EQ(plain.arcs.size(), 1U);
    ASSERT_EQ(turned.arcs.size(), 1U);
    EXPECT_NEAR(turned.arcs[0].sweep, plain.arcs[0].sweep, 1e-9);
    EXPECT_NEAR(turned.points[0].x, plain.points[0].x, 1e-9);
}

TEST(HostilePath, AnglesOnEitherSideOfZeroAreTurnsAndTheRest) {
    const DrawingPath path =
        pathOf(drawingOf("0\nARC\n8\n0\n10\n0\n20\n0\n40\n1\n50\n717\n51\n-115\n"));
    ASSERT_EQ(path.arcs.size(), 1U);
    constexpr double degree = 3.14159265358979323846 / 180;
    EXPECT_NEAR(path.arcs[0].sweep, 248 * degree, 1e-9);
}

TEST(HostilePath, KnotsThatFallAreLeftOutAsBroken) {
    const DrawingPath path = pathOf(
        drawingOf(splineStart + "40\n0\n40\n0\n40\n0\n40\n1\n40\n0.5\n40\n1\n" + splinePoints));
    EXPECT_TRUE(path.points.empty());
    EXPECT_EQ(leftOutFor(path, LeftOutReason::broken), 1U);
}

TEST(HostilePath, AnEllipseOfRatioZeroIsNoCrash) {
    pathOf(drawingOf("0\nELLIPSE\n8\n0\n10\n0\n20\n0\n11\n2\n21\n0\n40\n0\n41\n0\n42\n6.283185\n"));
}

std::string group(int code, double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%d\n%.17g\n", code, value);
    return text;
}

/// A spline whose knots rise by steps of all sizes, as do the places of its control points. It ends
/// at x = 1, y = 2.
std::string wildSpline(Random& random) {
    const std::vector<double> steps = {0,     0,      0,   1,    1,     0.5,  1e-6,
                                       1e-13, 1e-300, 1e6, 1e17, 1e110, 1e299};
    const std::vector<double> places = {0, 1, 2, 3, -1, 1e-9, 1e6, 1e100, 1e-200};
    const std::vector<double> weights = {1, 1, 0.5, 1e-6, 1e6};
    const int degree = random.below<int>(5) + 1;
    const int points = degree + 1 + random.below<int>(4);
    std::string text = "0\nSPLINE\n8\n0\n" +
                       group(70, random.pick(std::vector<int>{0, 0, 0, 1, 2})) + group(71, degree);
    double knot = random.oneIn(2) ? 0 : -random.pick(steps);
    for (int i = 0; i < points + degree + 1; ++i) {
        text += group(40, knot);
        knot += random.oneIn(3) ? random.pick(steps) : 1;
    }
    const bool isWild = random.oneIn(3);
    const bool isWeighted = random.oneIn(4);
    for (int i = 0; i < points; ++i) {
        const bool isLast = i + 1 == points;
        text += group(10, isLast   ? 1
                          : isWild ? random.pick(places)
                                   : i % 3) +
                group(20, isLast   ? 2
                          : isWild ? random.pick(places)
                                   : i * i % 5) +
                (isWeighted ? group(41, random.pick(weights)) : "");
    }
    return text;
}

TEST(HostilePath, SplinesOfAnyKnotsAreSoundInAnyDirection) {
    Random random(20261122);
    int reversals = 0;
    for (int round = 0; round < 3000; ++round) {
        // The line is walked towards the end of the spline.
        const std::string line = "0\nLINE\n8\n0\n10\n5\n20\n5\n11\n1\n21\n2\n";
        const std::string drawing = drawingOf((random.oneIn(2) ? line : "") + wildSpline(random));
        PathOptions options;
        options.maximumPoints = 20'000;
        options.order = static_cast<converters::PathOrder>(random.below<int>(3));
        if (random.oneIn(4)) {
            options.step = 0.1;
        }
        DrawingPath path;
        read(drawing, path, options);
        SCOPED_TRACE(drawing);
        ASSERT_NO_FATAL_FAILURE(expectSound(path));
        reversals += path.contours.size() == 1 && path.entities.size() == 2 ? 1 : 0;
    }
    EXPECT_GT(reversals, 200);
}

// Limits

TEST(HostilePath, OptionsThatMakeNoSenseAreRefused) {
    const std::string drawing = drawingOf(oneCircle);
    for (const double number : {std::nan(""), 0.0, -1.0}) {
        SCOPED_TRACE(number);
        PathOptions options;
        options.tolerance = number;
        EXPECT_NE(refusalOf(drawing, options), "");
        options = {};
        options.step = number;
        EXPECT_NE(refusalOf(drawing, options), "");
        options = {};
        options.scale = number;
        EXPECT_NE(refusalOf(drawing, options), "");
    }
    for (const double number : {std::nan(""), -1.0}) {
        PathOptions options;
        options.joinDistance = number;
        EXPECT_NE(refusalOf(drawing, options), "");
    }
}

TEST(HostilePath, TinyTolerancesAndStepsAreRefusedBeforeMemoryIsAskedFor) {
    for (const double tiny : {1e-300, std::numeric_limits<double>::denorm_min(), 1e-30}) {
        SCOPED_TRACE(tiny);
        PathOptions options;
        options.tolerance = tiny;
        EXPECT_NE(refusalOf(drawingOf(oneCircle), options), "");
        options = {};
        options.step = tiny;
        EXPECT_NE(refusalOf(drawingOf(oneLine), options), "");
    }
}

TEST(HostilePath, HugeOptionsAreReadOrRefused) {
    for (const double huge :
         {1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max()}) {
        SCOPED_TRACE(huge);
        for (int which = 0; which < 4; ++which) {
            PathOptions options;
            (which == 0   ? options.tolerance
             : which == 1 ? options.step
                          : options.joinDistance) = huge;
            options.scale = which == 3 ? huge : 1;
            expectReadOrRefused(drawingOfEverything(), options);
        }
    }
}

TEST(HostilePath, TheMostPointsAreKept) {
    const std::string drawing = drawingOf(oneLine + onePoint + oneLine);
    const std::size_t number = pathOf(drawing).points.size();
    PathOptions options;
    options.maximumPoints = number;
    EXPECT_EQ(pathOf(drawing, options).points.size(), number);
    options.maximumPoints = number - 1;
    EXPECT_THAT(refusalOf(drawing, options), testing::HasSubstr("points"));
    options.maximumPoints = 0;
    EXPECT_THAT(refusalOf(drawing, options), testing::HasSubstr("points"));
    EXPECT_TRUE(pathOf(drawingOf(""), options).points.empty());
}

TEST(HostilePath, TheMostPointsHoldForEachKindOfCurve) {
    PathOptions options;
    options.maximumPoints = 50;
    options.tolerance = 1e-9;
    for (const std::string& curve :
         {oneCircle, splineStart + splineKnots + splinePoints,
          std::string("0\nELLIPSE\n8\n0\n10\n3\n20\n4\n11\n2\n21\n0\n40\n0.5\n41\n1\n42\n6\n"),
          std::string("0\nLWPOLYLINE\n90\n2\n10\n0\n20\n0\n42\n1\n10\n1\n20\n1\n"),
          std::string("0\nSPLINE\n71\n3\n11\n0\n21\n0\n11\n1\n21\n1\n11\n5\n21\n3\n")}) {
        EXPECT_THAT(refusalOf(drawingOf(curve), options), testing::HasSubstr("points"));
    }
}

TEST(HostilePath, TheMostEntitiesAreKept) {
    const std::string drawing =
        drawingOf(insertOf("b", "70\n3\n71\n3\n44\n5\n45\n5\n"), blockOf("b", oneLine));
    PathOptions options;
    options.maximumEntities = 9;
    EXPECT_EQ(pathOf(drawing, options).entities.size(), 9U);
    options.maximumEntities = 8;
    EXPECT_THAT(refusalOf(drawing, options), testing::HasSubstr("entities"));
}

// Bytes

TEST(HostilePath, ABinaryDrawingCutAnywhereIsRefused) {
    const std::string whole = binaryDrawingOf(groupsOf(drawingOfEverything()));
    EXPECT_FALSE(pathOf(whole).points.empty());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        // A copy that is just as long, so that a sanitizer sees what reads behind it.
        const std::vector<char> cut(whole.begin(),
                                    whole.begin() + static_cast<std::ptrdiff_t>(size));
        DrawingPath path;
        const ReadResult result = converters::readPath(cut.data(), cut.size(), path);
        ASSERT_FALSE(result.success);
        ASSERT_NE(result.reason, "");
        ASSERT_TRUE(path.points.empty());
        const std::string_view text(cut.data(), cut.size());
        ASSERT_EQ(converters::readPath(piecesOf(text, 100), path).reason, result.reason);
    }
}

TEST(HostilePath, ATextCutAnywhereIsReadOrRefused) {
    const std::string whole = drawingOfEverything();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const std::vector<char> cut(whole.begin(),
                                    whole.begin() + static_cast<std::ptrdiff_t>(size));
        DrawingPath path;
        const ReadResult result = converters::readPath(cut.data(), cut.size(), path);
        ASSERT_EQ(result.success, result.reason.empty());
        expectSound(path);
        DrawingPath again;
        const std::string_view text(cut.data(), cut.size());
        ASSERT_EQ(converters::readPath(piecesOf(text, 100), again).reason, result.reason);
        ASSERT_EQ(again.points, path.points);
        ASSERT_EQ(again.notes, path.notes);
    }
}

TEST(HostilePath, TextAndBinaryGiveTheSamePath) {
    const DrawingPath text = pathOf(drawingOfEverything());
    const DrawingPath binary = pathOf(binaryDrawingOf(groupsOf(drawingOfEverything())));
    EXPECT_EQ(text.points, binary.points);
    EXPECT_EQ(text.contours.size(), binary.contours.size());
    EXPECT_EQ(text.leftOut.size(), binary.leftOut.size());
}

TEST(HostilePath, WhatIsNoDrawingIsRefused) {
    EXPECT_NE(refusalOf(""), "");
    EXPECT_NE(refusalOf(std::string(1000, '\0')), "");
    EXPECT_NE(refusalOf("ply\nformat ascii 1.0\n"), "");
    EXPECT_NE(refusalOf("AutoCAD Binary DXF\r\n"), "");
    DrawingPath path;
    EXPECT_FALSE(converters::readPath(nullptr, 0, path).success);
}

TEST(HostilePath, FilesThatCannotBeReadAreRefused) {
    DrawingPath path;
    for (const char* const file : {"/nonexistent/drawing.dxf", "/", ""}) {
        const ReadResult result = converters::readPath(std::filesystem::path(file), path);
        EXPECT_FALSE(result.success);
        EXPECT_NE(result.reason, "");
    }
}

// Cost

class HostilePathCost : public testing::TestWithParam<HostileDrawing> {};

PathOptions boundedOptions() {
    PathOptions options;
    options.maximumPoints = mostHostilePathEntities;
    options.maximumEntities = mostHostilePathEntities;
    return options;
}

#ifdef CONVERTERS_COUNTED_MEMORY

std::size_t bytesToRead(const std::string& drawing, const PathOptions& options) {
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    expectReadOrRefused(drawing, options);
    return allocator::peakBytes() - before;
}

/// For the file, and for each of the most points and entities.
constexpr std::size_t limitPerByte = 60;
constexpr std::size_t limitPerPoint = 2000;

TEST_P(HostilePathCost, IsBoundedInMemoryByTheFileAndTheMostPoints) {
    constexpr std::size_t size = 1'000'000;
    constexpr std::size_t limit = limitPerByte * size + limitPerPoint * mostHostilePathEntities;
    const std::size_t bytes = bytesToRead(GetParam().text(size), boundedOptions());
    EXPECT_LE(bytes, limit);
    RecordProperty("bytesForEachByte", std::to_string(bytes / size));
}

TEST(HostilePath, TheMostPointsBoundTheMemory) {
    PathOptions options;
    options.tolerance = 1e-12;
    options.maximumPoints = 1000;
    EXPECT_LE(bytesToRead(drawingOf(oneCircle), options), std::size_t{1} << 20);
    EXPECT_LE(bytesToRead(drawingOf(insertOf("b", hugeArray), blockOf("b", onePoint)), {}),
              std::size_t{1} << 20);
    EXPECT_LE(bytesToRead(towerOf(40, oneLine), {}), std::size_t{1} << 20);
}

TEST(HostilePath, WhatIsPassedOverTakesNoMemoryInAFileThatComesInPieces) {
    const std::string comment = "999\n" + std::string(1000, '-') + "\n";
    const std::string drawing = drawingOf(oneLine);
    std::size_t comments = 100'000;
    const converters::ByteSource source = [&, position = std::size_t{0}](void* bytes,
                                                                         std::size_t room) mutable {
        const std::string& text = comments > 0 ? comment : drawing;
        const std::size_t count = std::min(room, text.size() - position);
        std::memcpy(bytes, text.data() + position, count);
        position += count;
        if (position == comment.size() && comments > 0) {
            --comments;
            position = 0;
        }
        return count;
    };
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    DrawingPath path;
    EXPECT_TRUE(converters::readPath(source, path));
    EXPECT_EQ(path.points.size(), 2U);
    EXPECT_EQ(comments, 0U);
    EXPECT_LE(allocator::peakBytes() - before, std::size_t{1} << 17);
}

TEST(HostilePath, ContoursThatAreReadOneAfterAnotherTakeTheMemoryOfOne) {
    const std::string drawing = drawingOf(repeated(60'000, "0\nCIRCLE\n10\n1\n20\n2\n40\n1000\n"));
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    converters::PathReader reader(drawing.data(), drawing.size());
    ASSERT_TRUE(reader.open());
    const std::size_t peakOfOpening = allocator::peakBytes() - before;
    converters::PathContours contours;
    std::size_t points = 0;
    do {
        ASSERT_TRUE(reader.read(contours));
        points += contours.points.size();
    } while (!contours.contours.empty());
    EXPECT_GT(points * sizeof contours.points[0], std::size_t{20} << 20);
    EXPECT_LE(peakOfOpening, std::size_t{1} << 20);
    EXPECT_LE(allocator::peakBytes() - before, std::size_t{1} << 20);
}

#endif

TEST_P(HostilePathCost, IsNotTheProcess) {
    constexpr std::size_t size = 300'000;
    PathOptions options = boundedOptions();
    for (const auto order : {converters::PathOrder::drawn, converters::PathOrder::nearest,
                             converters::PathOrder::insideFirst}) {
        options.order = order;
        expectReadOrRefused(GetParam().text(size), options);
    }
}

INSTANTIATE_TEST_SUITE_P(Drawings, HostilePathCost, testing::ValuesIn(hostilePathDrawings()),
                         [](const auto& drawing) { return std::string(drawing.param.name); });

} // namespace
