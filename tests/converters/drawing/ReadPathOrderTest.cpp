// In which order and direction contours come.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathOptions;
using converters::PathOrder;

PathOptions inOrder(PathOrder order) {
    PathOptions options;
    options.order = order;
    return options;
}

TEST(ReadPathOrder, IsThatOfTheDrawingByDefault) {
    const std::string file =
        drawingOf("0 POINT  10 0  20 0  0 POINT  10 9  20 0  0 POINT  10 1  20 0");
    EXPECT_EQ(describe(pathOf(file)), "(0, 0)\n(9, 0)\n(1, 0)\n");
    EXPECT_EQ(describe(pathOf(file, inOrder(PathOrder::drawn))), "(0, 0)\n(9, 0)\n(1, 0)\n");
}

TEST(ReadPathOrder, NearestMakesWaysShort) {
    const std::string file =
        drawingOf("0 POINT  10 0  20 0  0 POINT  10 9  20 0  0 POINT  10 1  20 0  "
                  "0 LINE  10 8  20 0  11 2  21 0");
    const DrawingPath path = pathOf(file, inOrder(PathOrder::nearest));
    EXPECT_EQ(describe(path), "(0, 0)\n(1, 0)\n(2, 0) (8, 0)\n(9, 0)\n");
    EXPECT_DOUBLE_EQ(path.wayLength, 3.0);
    EXPECT_DOUBLE_EQ(path.length, 6.0);
}

TEST(ReadPathOrder, InsideFirstCutsHolesBeforeOutlines) {
    const std::string file =
        drawingOf("0 CIRCLE  5 1  10 0  20 0  40 10  0 CIRCLE  5 2  10 0  20 0  40 1  "
                  "0 CIRCLE  5 3  10 0  20 0  40 5");
    const DrawingPath path = pathOf(file, inOrder(PathOrder::insideFirst));
    std::vector<std::uint64_t> handles;
    for (const PathContour& contour : path.contours) {
        handles.push_back(path.entities[contour.firstEntity].handle);
    }
    EXPECT_EQ(handles, (std::vector<std::uint64_t>{2, 3, 1}));
}

TEST(ReadPathOrder, AClosedContourMayStartAtAnyOfItsCorners) {
    const std::string file = drawingOf("0 POINT  10 -1  20 -1  0 LWPOLYLINE  70 1  10 10  20 10  "
                                       "10 0  20 10  10 0  20 0  10 10  20 0");
    const DrawingPath path = pathOf(file, inOrder(PathOrder::nearest));
    EXPECT_EQ(describe(path), "closed (0, 0) (10, 0) (10, 10) (0, 10) (0, 0)\n(-1, -1)\n");
    EXPECT_EQ(path.pieces.size(), 5U);
}

TEST(ReadPathOrder, ACircleMayStartAnywhere) {
    const std::string file = drawingOf("0 POINT  10 -20  20 0  0 CIRCLE  10 0  20 0  40 10  "
                                       "0 ELLIPSE  10 0  20 50  11 0  21 10  40 0.5");
    const DrawingPath path = pathOf(file, inOrder(PathOrder::nearest));
    ASSERT_EQ(path.contours.size(), 3U);
    EXPECT_NE(path.points[path.contours[1].firstPoint], cv::Point3d(10, 0, 0));
    EXPECT_EQ(path.pieces.size(), 3U);
    EXPECT_EQ(path.arcs.size(), 1U);
}

/// The points of a path, in any order.
std::multiset<std::tuple<double, double, double>> pointSet(const DrawingPath& path) {
    std::multiset<std::tuple<double, double, double>> points;
    for (const PathContour& contour : path.contours) {
        // The last point of a closed one is that where it starts.
        const std::size_t end = contour.endPoint - (contour.closed ? 1 : 0);
        for (std::size_t i = contour.firstPoint; i < end; ++i) {
            points.emplace(path.points[i].x, path.points[i].y, path.points[i].z);
        }
    }
    return points;
}

std::string number(Random& random) {
    return std::to_string(static_cast<double>(random.below(200)) / 4 - 25);
}

/// An entity of any kind somewhere.
std::string entity(Random& random) {
    const auto point = [&](const char* x, const char* y) {
        return std::string("  ") + x + " " + number(random) + "  " + y + " " + number(random);
    };
    const std::string place = point("10", "20");
    switch (random.below(7)) {
    case 0:
        return "0 POINT" + place;
    case 1:
        return "0 LINE" + place + point("11", "21");
    case 2:
        return "0 ARC" + place + "  40 3  50 " + number(random) + "  51 100";
    case 3:
        return "0 CIRCLE" + place + "  40 2";
    case 4:
        return "0 ELLIPSE" + place + "  11 3  21 1  40 0.3  41 " + number(random) + "  42 50";
    case 5:
        return "0 LWPOLYLINE  70 " + std::to_string(random.below(2)) + place + "  42 0.5" +
               point("10", "20") + point("10", "20") + "  42 -2";
    default:
        return "0 SPLINE  70 8  71 2  40 0  40 0  40 0  40 1  40 2  40 2  40 2" + place +
               point("10", "20") + point("10", "20") + point("10", "20");
    }
}

TEST(ReadPathOrder, ChangesNothingElse) {
    Random random(7);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        std::string entities;
        for (int i = 0; i < 12; ++i) {
            entities += (i > 0 ? "  " : "") + entity(random);
        }
        const std::string file = drawingOf(entities);
        const DrawingPath drawn = pathOf(file);
        for (const PathOrder order : {PathOrder::nearest, PathOrder::insideFirst}) {
            const DrawingPath path = pathOf(file, inOrder(order));
            EXPECT_EQ(pointSet(path), pointSet(drawn));
            EXPECT_NEAR(path.length, drawn.length, 1e-9 * drawn.length);
            EXPECT_EQ(path.contours.size(), drawn.contours.size());
            EXPECT_EQ(path.pieces.size(), drawn.pieces.size());
            EXPECT_EQ(path.entities.size(), drawn.entities.size());
        }
    }
}

TEST(ReadPathOrder, EllipsesOfNearlyNoWidthStartElsewhereAsWell) {
    const std::string blocks =
        section("BLOCKS", "0 BLOCK  2 b  10 0  20 0  0 CIRCLE  10 0  20 0  40 2  0 ENDBLK");
    for (const char* const height : {"1e-3", "1e-170", "6e-313"}) {
        SCOPED_TRACE(height);
        const std::string insert = "0 INSERT  2 b  10 0  20 0  42 " + std::string(height);
        const DrawingPath path =
            pathOf(drawingOf("0 LINE  10 -9  20 0  11 -8  21 0  " + insert, blocks),
                   inOrder(PathOrder::nearest));
        ASSERT_EQ(path.ellipticArcs.size(), 1U);
        EXPECT_NEAR(std::cos(path.ellipticArcs[0].start), -1, 1e-12);
        EXPECT_EQ(faultOf(path), "");
    }
}

} // namespace
