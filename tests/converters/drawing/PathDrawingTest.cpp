// Paths that become drawings again.
#include "converters/PathDrawing.h"

#include "converters/Converters.h"
#include "dxfeditor/DXFWriter.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"
#include "tests/support/Random.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using converters::DrawingPath;
using converters::PathCurveKind;
using converters::PathEntityKind;
using converters::PathOptions;

std::string savedTextOf(const DrawingPath& path) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("saved.dxf");
    const std::shared_ptr<DXFDocument> drawing = converters::drawingOf(path);
    EXPECT_TRUE(DXFWriter(*drawing).save(file));
    return contentOf(file);
}

/// The path of the drawing that a path becomes.
DrawingPath again(const DrawingPath& path) {
    PathOptions exact;
    exact.joinDistance = 0;
    return pathOf(savedTextOf(path), exact);
}

/// A file has sixteen decimals.
void expectSamePoints(const std::vector<cv::Point3_<double>>& points,
                      const std::vector<cv::Point3_<double>>& expected) {
    ASSERT_EQ(points.size(), expected.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const cv::Point3_<double> way = points[i] - expected[i];
        EXPECT_LE(std::sqrt(way.dot(way)), 1e-15) << i;
    }
}

TEST(PathDrawing, HoldsPointsAndPolylinesOnTheirLayers) {
    const DrawingPath path = again(pathOf(drawingOf(
        "0 LINE  8 walls  10 0  20 0  11 4  21 0  0 LINE  8 walls  10 4  20 0  11 4  21 3  "
        "0 POINT  8 marks  10 7  20 8")));
    EXPECT_EQ(describe(path), "(0, 0) (4, 0) (4, 3)\n(7, 8)\n");
    EXPECT_EQ(path.layers.at(path.contours.at(0).layer).name, "walls");
    EXPECT_EQ(path.layers.at(path.contours.at(1).layer).name, "marks");
    EXPECT_EQ(path.entities.at(0).kind, PathEntityKind::polyline);
    EXPECT_EQ(path.entities.at(1).kind, PathEntityKind::point);
}

TEST(PathDrawing, HasArcsAsBulges) {
    for (const char* const extrusion : {"1", "-1"}) {
        const DrawingPath first = pathOf(
            drawingOf(std::string("0 ARC  10 1  20 2  40 5  50 30  51 100  230 ") + extrusion));
        const DrawingPath path = again(first);
        ASSERT_EQ(path.arcs.size(), 1U) << extrusion;
        EXPECT_NEAR(path.arcs[0].radius, 5, 1e-14);
        EXPECT_NEAR(path.arcs[0].centre.x, first.arcs[0].centre.x, 1e-14);
        EXPECT_NEAR(path.arcs[0].sweep * path.arcs[0].normal.z,
                    first.arcs[0].sweep * first.arcs[0].normal.z, 1e-14);
        expectSamePoints({path.points.front(), path.points.back()},
                         {first.points.front(), first.points.back()});
    }
}

TEST(PathDrawing, HasTwoBulgesForMoreThanAHalfTurn) {
    const DrawingPath path = again(pathOf(drawingOf("0 CIRCLE  10 1  20 2  40 5")));
    ASSERT_EQ(path.arcs.size(), 2U);
    EXPECT_TRUE(path.contours.at(0).closed);
    EXPECT_NEAR(path.length, 10 * M_PI, 1e-12);
    EXPECT_NEAR(path.arcs[1].centre.y, 2, 1e-14);
}

TEST(PathDrawing, KeepsHeightsIn3dPolylines) {
    const DrawingPath first =
        pathOf(drawingOf("0 LINE  10 0  20 0  30 1  11 4  21 0  31 2  0 CIRCLE  10 1  20 2  30 3  "
                         "40 5  0 CIRCLE  10 0  20 0  40 5  210 1  220 0  230 0"));
    const DrawingPath path = again(first);
    expectSamePoints(path.points, first.points);
    EXPECT_TRUE(path.arcs.empty());
}

TEST(PathDrawing, HasEllipsesAndSplinesByTheirPoints) {
    const DrawingPath first = pathOf(
        drawingOf("0 ELLIPSE  10 0  20 0  11 5  21 0  40 0.5  41 0  42 2  0 SPLINE  70 8  71 2  "
                  "72 6  73 3  40 0  40 0  40 0  40 1  40 1  40 1  10 0  20 9  10 3  20 12  10 9  "
                  "20 9"));
    const DrawingPath path = again(first);
    expectSamePoints(path.points, first.points);
    EXPECT_EQ(path.contours.size(), 2U);
}

TEST(PathDrawing, StaysOnStraightLinesWithoutTheirSteps) {
    PathOptions options;
    options.step = 0.1;
    const DrawingPath path = again(pathOf(drawingOf("0 LINE  10 0  20 0  11 4  21 0"), options));
    EXPECT_EQ(describe(path), "(0, 0) (4, 0)\n");
}

TEST(PathDrawing, OfPointsWithoutPiecesIsTheirPolyline) {
    DrawingPath path;
    path.points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    path.layers.push_back({"0", 7, false, false});
    converters::PathContour contour{};
    contour.endPoint = 3;
    contour.colour = 7;
    path.contours.push_back(contour);
    EXPECT_EQ(describe(again(path)), "(0, 0) (1, 0) (1, 1)\n");
}

TEST(PathDrawing, ClosedContoursAreWholeToTheWalkOfFromDxf) {
    const std::string text =
        savedTextOf(pathOf(drawingOf("0 LWPOLYLINE  70 1  10 0  20 0  10 4  20 0  10 4  20 3")));
    std::vector<cv::Point3_<double>> walk;
    const std::vector<char> bytes(text.begin(), text.end());
    ASSERT_TRUE(converters::fromDxf(bytes, walk));
    for (std::size_t i = 1; i < walk.size(); ++i) {
        EXPECT_LT(std::hypot(walk[i].x - walk[i - 1].x, walk[i].z - walk[i - 1].z), 0.2) << i;
    }
    EXPECT_EQ(walk.front(), walk.back());
}

TEST(PathDrawing, SpellsNamesInAsciiAndKeepsWhatLayersAre) {
    const std::string layers =
        layerTable(layerGroups("W\\U+00E4nde", 1, 3) + layerGroups("\\U+4E2D", 0, -5));
    const DrawingPath first = pathOf(drawingOf("0 POINT  8 other  62 1  10 1  20 2", layers));
    ASSERT_GE(first.layers.size(), 2U);
    const std::string text = savedTextOf(first);
    EXPECT_NE(text.find("W\\U+00E4nde"), std::string::npos);
    for (const char byte : text) {
        ASSERT_LT(static_cast<unsigned char>(byte), 0x80);
    }
    const DrawingPath path = pathOf(text);
    const auto layerOf = [&path](const std::string& name) {
        for (const converters::PathLayer& layer : path.layers) {
            if (layer.name == name) {
                return layer;
            }
        }
        ADD_FAILURE() << name;
        return converters::PathLayer{};
    };
    EXPECT_TRUE(layerOf("W\u00e4nde").frozen);
    EXPECT_EQ(layerOf("W\u00e4nde").colour, 3);
    EXPECT_TRUE(layerOf("\u4e2d").off);
    EXPECT_EQ(layerOf("\u4e2d").colour, 5);
    EXPECT_EQ(path.contours.at(0).colour, 1);
}

TEST(PathDrawing, OfAnEmptyPathIsAnEmptyDrawing) {
    EXPECT_TRUE(again({}).contours.empty());
}

TEST(PathDrawing, OfRandomContoursHasTheirPointsAndLengths) {
    Random random(11);
    const auto number = [&random] {
        return std::to_string(static_cast<int>(random.below(std::size_t{2000})) - 1000);
    };
    for (int round = 0; round < 200; ++round) {
        std::string drawing;
        for (std::size_t i = 1 + random.below(std::size_t{6}); i > 0; --i) {
            drawing += "0 LWPOLYLINE  70 " + std::to_string(random.below(std::size_t{2}));
            for (std::size_t k = 2 + random.below(std::size_t{5}); k > 0; --k) {
                drawing += "  10 " + number() + "  20 " + number() + "  42 " +
                           std::to_string(0.01 * std::stod(number()));
            }
            drawing += "  ";
        }
        const DrawingPath first = pathOf(drawingOf(drawing));
        const DrawingPath path = again(first);
        ASSERT_EQ(path.contours.size(), first.contours.size()) << drawing;
        for (std::size_t i = 0; i < path.contours.size(); ++i) {
            EXPECT_NEAR(path.contours[i].length, first.contours[i].length,
                        1e-9 * first.contours[i].length)
                << drawing;
            EXPECT_EQ(path.contours[i].closed, first.contours[i].closed) << drawing;
        }
        EXPECT_NEAR(path.lowest.x, first.lowest.x, 0.05);
        EXPECT_NEAR(path.highest.y, first.highest.y, 0.05);
    }
}

} // namespace
