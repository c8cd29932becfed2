// What each kind of entity becomes.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using converters::DrawingPath;
using converters::PathCurveKind;
using converters::PathEntityKind;
using Point = cv::Point3_<double>;

constexpr double pi = 3.14159265358979323846;

void expectNear(const Point& point, const Point& expected) {
    EXPECT_NEAR(point.x, expected.x, 1e-9);
    EXPECT_NEAR(point.y, expected.y, 1e-9);
    EXPECT_NEAR(point.z, expected.z, 1e-9);
}

TEST(ReadPathEntities, OfNothingAreNoContours) {
    const DrawingPath path = pathOf(drawingOf(""));
    EXPECT_TRUE(path.points.empty());
    EXPECT_TRUE(path.contours.empty());
    EXPECT_EQ(path.length, 0.0);
    EXPECT_EQ(path.wayLength, 0.0);
}

TEST(ReadPathEntities, PointIsAContourOfOnePoint) {
    const DrawingPath path = pathOf(drawingOf("0 POINT  5 2A  8 holes  10 1  20 2  30 3"));
    EXPECT_EQ(describe(path), "(1, 2, 3)\n");
    EXPECT_FALSE(path.contours[0].closed);
    ASSERT_EQ(path.pieces.size(), 1U);
    EXPECT_EQ(path.pieces[0].kind, PathCurveKind::point);
    ASSERT_EQ(path.entities.size(), 1U);
    EXPECT_EQ(path.entities[0].kind, PathEntityKind::point);
    EXPECT_EQ(path.entities[0].handle, 0x2AU);
    EXPECT_EQ(path.entities[0].insert, 0U);
    EXPECT_EQ(path.layers[path.entities[0].layer].name, "holes");
}

TEST(ReadPathEntities, LineLeadsFromStartToEnd) {
    const DrawingPath path = pathOf(drawingOf("0 LINE  8 0  10 1  20 2  30 3  11 4  21 6  31 3"));
    EXPECT_EQ(describe(path), "(1, 2, 3) (4, 6, 3)\n");
    EXPECT_DOUBLE_EQ(path.length, 5.0);
    EXPECT_EQ(path.pieces[0].kind, PathCurveKind::line);
}

TEST(ReadPathEntities, LineMayHaveItsCoordinatesInAnyOrder) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 LINE  10 1  11 4  20 2  21 6  8 0"))),
              "(1, 2) (4, 6)\n");
}

TEST(ReadPathEntities, LineWithoutExtentIsAContourOfOnePoint) {
    const DrawingPath path = pathOf(drawingOf("0 LINE  10 1  20 2  11 1  21 2"));
    EXPECT_EQ(describe(path), "(1, 2)\n");
    EXPECT_EQ(path.pieces[0].kind, PathCurveKind::point);
    EXPECT_EQ(path.entities[0].kind, PathEntityKind::line);
    EXPECT_FALSE(path.contours[0].closed);
}

TEST(ReadPathEntities, OldFilesHaveHeightsInAGroupOfTheirOwn) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 LINE  10 1  20 2  11 4  21 6  38 7"))),
              "(1, 2, 7) (4, 6, 7)\n");
}

TEST(ReadPathEntities, CircleIsClosedAndStartsAtItsRight) {
    const DrawingPath path = pathOf(drawingOf("0 CIRCLE  10 1  20 2  30 3  40 5"));
    ASSERT_EQ(path.contours.size(), 1U);
    EXPECT_TRUE(path.contours[0].closed);
    EXPECT_EQ(path.points.front(), Point(6, 2, 3));
    EXPECT_NEAR(path.length, 10 * pi, 1e-9);
    ASSERT_EQ(path.arcs.size(), 1U);
    EXPECT_EQ(path.arcs[0].centre, Point(1, 2, 3));
    EXPECT_EQ(path.arcs[0].normal, Point(0, 0, 1));
    EXPECT_EQ(path.arcs[0].radius, 5.0);
    EXPECT_DOUBLE_EQ(path.arcs[0].sweep, 2 * pi);
    for (const Point& point : path.points) {
        EXPECT_NEAR(std::hypot(point.x - 1, point.y - 2), 5.0, 1e-9);
    }
}

TEST(ReadPathEntities, CircleOfNegativeRadiusIsThatOfThePositiveOne) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 CIRCLE  10 0  20 0  40 -5"))),
              describe(pathOf(drawingOf("0 CIRCLE  10 0  20 0  40 5"))));
}

TEST(ReadPathEntities, ArcTurnsCounterClockwise) {
    const DrawingPath path = pathOf(drawingOf("0 ARC  10 0  20 0  40 2  50 270  51 90"));
    expectNear(path.points.front(), {0, -2, 0});
    expectNear(path.points.back(), {0, 2, 0});
    expectNear(path.points[path.points.size() / 2], {2, 0, 0});
    EXPECT_NEAR(path.length, 2 * pi, 1e-9);
}

TEST(ReadPathEntities, ArcWhoseAnglesDifferByAFullTurnIsACircle) {
    for (const char* const angles : {"50 0  51 360", "50 90  51 450", "50 180  51 -180"}) {
        const DrawingPath path =
            pathOf(drawingOf(std::string("0 ARC  10 0  20 0  40 2  ") + angles));
        EXPECT_TRUE(path.contours.at(0).closed) << angles;
        EXPECT_NEAR(path.length, 4 * pi, 1e-9);
    }
}

TEST(ReadPathEntities, ArcMayHaveAnglesOfManyTurns) {
    const DrawingPath path = pathOf(drawingOf("0 ARC  10 0  20 0  40 2  50 720  51 -270"));
    EXPECT_NEAR(path.length, pi, 1e-9);
    expectNear(path.points.back(), {0, 2, 0});
}

TEST(ReadPathEntities, ArcOfEqualAnglesHasNoExtent) {
    const DrawingPath path = pathOf(drawingOf("0 ARC  8 walls  10 0  20 0  40 2  50 30  51 30"));
    EXPECT_TRUE(path.contours.empty());
    EXPECT_EQ(leftOut(path), "1 ARC on walls: broken\n");
}

TEST(ReadPathEntities, ArcIsMirroredByAnExtrusionThatPointsDown) {
    const DrawingPath path =
        pathOf(drawingOf("0 ARC  10 1  20 0  40 2  50 0  51 90  210 0  220 0  230 -1"));
    expectNear(path.points.front(), {-3, 0, 0});
    expectNear(path.points.back(), {-1, 2, 0});
    EXPECT_EQ(path.arcs.at(0).normal, Point(0, 0, -1));
}

TEST(ReadPathEntities, TiltedCircleStandsInItsPlane) {
    // Its extrusion is not of length 1. The object coordinates of (1, 0, 0) have the axes y and z.
    const DrawingPath path =
        pathOf(drawingOf("0 CIRCLE  10 1  20 2  30 3  40 1  210 5  220 0  230 0"));
    for (const Point& point : path.points) {
        EXPECT_NEAR(point.x, 3.0, 1e-9);
        EXPECT_NEAR(std::hypot(point.y - 1, point.z - 2), 1.0, 1e-9);
    }
}

TEST(ReadPathEntities, AnExtrusionWithoutLengthCountsAsTheUsualOne) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 CIRCLE  10 1  20 2  40 1  210 0  220 0  230 0"))),
              describe(pathOf(drawingOf("0 CIRCLE  10 1  20 2  40 1"))));
}

TEST(ReadPathEntities, EllipseGoesByItsParameters) {
    const DrawingPath path = pathOf(
        drawingOf("0 ELLIPSE  10 1  20 2  11 4  21 0  31 0  40 0.5  41 0  42 1.5707963267948966"));
    expectNear(path.points.front(), {5, 2, 0});
    expectNear(path.points.back(), {1, 4, 0});
    ASSERT_EQ(path.ellipticArcs.size(), 1U);
    EXPECT_EQ(path.ellipticArcs[0].major, Point(4, 0, 0));
    expectNear(path.ellipticArcs[0].minor, {0, 2, 0});
    EXPECT_FALSE(path.contours[0].closed);
}

TEST(ReadPathEntities, EllipseAllRoundIsClosed) {
    for (const char* const parameters :
         {"41 0  42 6.283185307179586", "41 0  42 6.283185", "5 1"}) {
        const DrawingPath path = pathOf(
            drawingOf(std::string("0 ELLIPSE  10 1  20 2  11 4  21 0  40 0.5  ") + parameters));
        EXPECT_TRUE(path.contours.at(0).closed) << parameters;
    }
}

TEST(ReadPathEntities, EllipseTurnsAboutItsExtrusion) {
    // In world coordinates: not mirrored, but walked the other way.
    const DrawingPath path =
        pathOf(drawingOf("0 ELLIPSE  10 1  20 2  11 4  21 0  40 0.5  41 0  42 1.5707963267948966  "
                         "210 0  220 0  230 -1"));
    expectNear(path.points.front(), {5, 2, 0});
    expectNear(path.points.back(), {1, 0, 0});
}

TEST(ReadPathEntities, EllipseOfARatioAboveOneIsLongerAcross) {
    const DrawingPath path = pathOf(drawingOf("0 ELLIPSE  10 0  20 0  11 1  21 0  40 3"));
    expectNear(path.points.front(), {1, 0, 0});
    EXPECT_NEAR(path.highest.y, 3, 0.01);
    EXPECT_NEAR(std::abs(path.ellipticArcs.at(0).major.y), 3, 1e-9);
}

TEST(ReadPathEntities, EllipseOfRatioZeroIsFlat) {
    const DrawingPath path = pathOf(drawingOf("0 ELLIPSE  10 0  20 0  11 5  21 0  40 0"));
    EXPECT_TRUE(path.contours.at(0).closed);
    EXPECT_NEAR(path.length, 20, 1e-6);
}

TEST(ReadPathEntities, EllipseWithoutMajorAxisIsBroken) {
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 ELLIPSE  8 a  10 1  20 2  40 0.5"))),
              "1 ELLIPSE on a: broken\n");
}

TEST(ReadPathEntities, EllipseAcrossItsPlaneIsBroken) {
    for (const char* extrusion : {"210 1  220 0  230 0", "210 -2  220 0  230 0"}) {
        EXPECT_EQ(leftOut(pathOf(drawingOf(std::string("0 ELLIPSE  8 a  10 1  20 2  11 5  21 0  "
                                                       "40 0.5  ") +
                                           extrusion))),
                  "1 ELLIPSE on a: broken\n");
    }
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 ELLIPSE  8 a  10 1  20 2  11 0  21 0  31 5  40 0.5"))),
              "1 ELLIPSE on a: broken\n");
    // An extrusion without length says nothing.
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 ELLIPSE  8 a  10 1  20 2  11 5  21 0  40 0.5  "
                                       "210 0  220 0  230 0"))),
              "");
}

TEST(ReadPathEntities, LwPolylineHasACornerForEachVertex) {
    const DrawingPath path =
        pathOf(drawingOf("0 LWPOLYLINE  90 3  70 0  38 4  10 0  20 0  10 1  20 0  10 1  20 1"));
    EXPECT_EQ(describe(path), "(0, 0, 4) (1, 0, 4) (1, 1, 4)\n");
    EXPECT_EQ(path.pieces.size(), 2U);
    EXPECT_EQ(path.entities.at(0).kind, PathEntityKind::lwpolyline);
}

TEST(ReadPathEntities, ClosedPolylineEndsWhereItStarts) {
    const std::string square = "10 0  20 0  10 1  20 0  10 1  20 1  10 0  20 1";
    const char* const expected = "closed (0, 0) (1, 0) (1, 1) (0, 1) (0, 0)\n";
    EXPECT_EQ(describe(pathOf(drawingOf("0 LWPOLYLINE  70 1  " + square))), expected);
    // A last vertex equal to the first, with the flag and without it.
    EXPECT_EQ(describe(pathOf(drawingOf("0 LWPOLYLINE  70 1  " + square + "  10 0  20 0"))),
              expected);
    EXPECT_EQ(describe(pathOf(drawingOf("0 LWPOLYLINE  70 0  " + square + "  10 0  20 0"))),
              expected);
}

TEST(ReadPathEntities, EqualNeighboursAreOneCorner) {
    const DrawingPath path = pathOf(drawingOf(
        "0 LWPOLYLINE  70 0  10 0  20 0  10 0  20 0  10 1  20 0  10 1  20 0  10 2  20 5"));
    EXPECT_EQ(describe(path), "(0, 0) (1, 0) (2, 5)\n");
    EXPECT_EQ(path.pieces.size(), 2U);
}

TEST(ReadPathEntities, BulgeIsAnArcToTheNextVertex) {
    const DrawingPath path =
        pathOf(drawingOf("0 LWPOLYLINE  70 0  10 0  20 0  42 1  10 2  20 0  10 3  20 0"));
    ASSERT_EQ(path.pieces.size(), 2U);
    EXPECT_EQ(path.pieces[0].kind, PathCurveKind::arc);
    EXPECT_EQ(path.pieces[1].kind, PathCurveKind::line);
    // Counter-clockwise: a half circle below.
    expectNear(path.arcs.at(0).centre, {1, 0, 0});
    EXPECT_NEAR(path.arcs[0].sweep, pi, 1e-12);
    expectNear(path.points[path.pieces[0].lastPoint / 2], {1, -1, 0});
    EXPECT_EQ(path.points[path.pieces[0].lastPoint], Point(2, 0, 0));
    EXPECT_NEAR(path.length, pi + 1, 1e-9);
}

TEST(ReadPathEntities, BulgeOfTheLastVertexIsThatOfTheClosingEdge) {
    const DrawingPath path = pathOf(drawingOf("0 LWPOLYLINE  70 1  10 0  20 0  10 2  20 0  42 -1"));
    EXPECT_TRUE(path.contours.at(0).closed);
    EXPECT_NEAR(path.length, pi + 2, 1e-9);
    EXPECT_EQ(path.pieces.at(1).kind, PathCurveKind::arc);
    EXPECT_EQ(path.arcs.at(0).normal, Point(0, 0, -1));
    // Of an open one it is of no edge.
    EXPECT_NEAR(pathOf(drawingOf("0 LWPOLYLINE  70 0  10 0  20 0  10 2  20 0  42 -1")).length, 2,
                1e-9);
}

TEST(ReadPathEntities, LwPolylineIsInObjectCoordinates) {
    EXPECT_EQ(describe(pathOf(drawingOf(
                  "0 LWPOLYLINE  70 0  38 2  10 1  20 0  10 3  20 4  210 0  220 0  230 -1"))),
              "(-1, 0, -2) (-3, 4, -2)\n");
}

TEST(ReadPathEntities, PolylineOfOneVertexIsADot) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 LWPOLYLINE  70 1  10 5  20 6"))), "(5, 6)\n");
}

TEST(ReadPathEntities, PolylineWithoutVerticesIsBroken) {
    EXPECT_EQ(
        leftOut(pathOf(drawingOf("0 LWPOLYLINE  8 a  70 1  0 POLYLINE  8 b  70 0  0 SEQEND"))),
        "1 LWPOLYLINE on a: broken\n1 POLYLINE on b: broken\n");
}

TEST(ReadPathEntities, PolylineTakesItsHeightFromItself) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 POLYLINE  66 1  10 0  20 0  30 7  70 0  "
                                        "0 VERTEX  8 x  10 1  20 2  30 9  0 VERTEX  10 3  20 4  "
                                        "0 SEQEND"))),
              "(1, 2, 7) (3, 4, 7)\n");
}

TEST(ReadPathEntities, PolylineInSpaceHasHeightsOfItsOwn) {
    const DrawingPath path = pathOf(
        drawingOf("0 POLYLINE  66 1  70 9  0 VERTEX  10 1  20 2  30 3  42 1  0 VERTEX  10 4  "
                  "20 5  30 6  0 VERTEX  10 7  20 8  30 9  0 SEQEND"));
    EXPECT_EQ(describe(path), "closed (1, 2, 3) (4, 5, 6) (7, 8, 9) (1, 2, 3)\n");
    EXPECT_EQ(path.entities.at(0).kind, PathEntityKind::polyline);
}

TEST(ReadPathEntities, FittedVerticesAreTakenAndTheFrameIsNot) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 POLYLINE  66 1  70 4  "
                                        "0 VERTEX  10 0  20 9  70 16  0 VERTEX  10 1  20 0  70 8  "
                                        "0 VERTEX  10 2  20 0  70 8  0 VERTEX  10 0  20 9  70 16  "
                                        "0 SEQEND"))),
              "(1, 0) (2, 0)\n");
}

TEST(ReadPathEntities, OnlyFittedPolylinesHaveAFrame) {
    const auto drawn = [](const std::string& flags, const std::string& last) {
        return describe(pathOf(drawingOf("0 POLYLINE  66 1  70 " + flags +
                                         "  0 VERTEX  10 0  20 0  70 16  0 VERTEX  10 5  20 9  "
                                         "0 VERTEX  10 10  20 0  70 " +
                                         last + "  0 SEQEND")));
    };
    EXPECT_EQ(drawn("0", "0"), "(0, 0) (5, 9) (10, 0)\n");
    EXPECT_EQ(drawn("8", "0"), "(0, 0) (5, 9) (10, 0)\n");
    EXPECT_EQ(drawn("4", "0"), "(5, 9) (10, 0)\n");
    EXPECT_EQ(drawn("0", "8"), "(5, 9) (10, 0)\n");
}

TEST(ReadPathEntities, PolylineEndsWithoutItsEndMark) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 POLYLINE  66 1  0 VERTEX  10 1  20 2  0 VERTEX  10 3  "
                                        "20 4  0 LINE  10 5  20 6  11 7  21 8"))),
              "(1, 2) (3, 4)\n(5, 6) (7, 8)\n");
}

TEST(ReadPathEntities, MeshesAreLeftOut) {
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 POLYLINE  8 a  66 1  70 16  0 VERTEX  10 1  20 2  70 64  "
                                       "0 SEQEND  0 POLYLINE  8 a  66 1  70 64  0 VERTEX  10 1  "
                                       "20 2  70 192  0 SEQEND  0 3DFACE  8 a  10 1  20 1"))),
              "2 POLYLINE on a: a mesh or a solid\n1 3DFACE on a: a mesh or a solid\n");
}

constexpr const char* straightSpline =
    "0 SPLINE  70 8  71 3  72 8  73 4  74 0  40 0  40 0  40 0  40 0  40 1  40 1  40 1  40 1  "
    "10 0  20 0  30 0  10 1  20 2  30 0  10 3  20 2  30 0  10 4  20 0  30 0";

TEST(ReadPathEntities, SplineLeadsFromItsFirstControlPointToItsLast) {
    const DrawingPath path = pathOf(drawingOf(straightSpline));
    EXPECT_EQ(path.points.front(), Point(0, 0, 0));
    EXPECT_EQ(path.points.back(), Point(4, 0, 0));
    ASSERT_EQ(path.splines.size(), 1U);
    EXPECT_EQ(path.splines[0].degree, 3U);
    EXPECT_EQ(path.splines[0].controlPoints.size(), 4U);
    EXPECT_TRUE(path.splines[0].weights.empty());
    EXPECT_EQ(path.pieces.at(0).kind, PathCurveKind::spline);
    EXPECT_EQ(path.entities.at(0).kind, PathEntityKind::spline);
}

TEST(ReadPathEntities, SplineOfFitPointsGoesThroughThem) {
    const DrawingPath path =
        pathOf(drawingOf("0 SPLINE  70 8  71 3  72 0  73 0  74 3  12 0  22 0  32 0  "
                         "11 0  21 0  31 0  11 5  21 5  31 0  11 10  21 0  31 0"));
    EXPECT_EQ(path.points.front(), Point(0, 0, 0));
    EXPECT_EQ(path.points.back(), Point(10, 0, 0));
    double nearest = 1;
    for (const Point& point : path.points) {
        nearest = std::min(nearest, std::hypot(point.x - 5, point.y - 5));
    }
    EXPECT_LT(nearest, 0.5);
}

TEST(ReadPathEntities, HelixIsTheSplineThatItHolds) {
    const std::string helix = "0 HELIX  100 AcDbSpline  " + std::string(straightSpline).substr(10) +
                              "  100 AcDbHelix  90 29  10 99  20 99  40 99  41 99";
    EXPECT_EQ(describe(pathOf(drawingOf(helix))), describe(pathOf(drawingOf(straightSpline))));
}

TEST(ReadPathEntities, SplineThatContradictsItselfIsBroken) {
    EXPECT_EQ(leftOut(pathOf(drawingOf("0 SPLINE  8 a  71 3  40 0  40 1  10 0  20 0  10 1  20 1"))),
              "1 SPLINE on a: broken\n");
}

TEST(ReadPathEntities, WhatIsNoNumberIsBroken) {
    for (const char* const entity :
         {"LINE  8 a  10 1.#QNAN  20 0  11 1  21 1", "LINE  8 a  10 1  20 0",
          "CIRCLE  8 a  10 0  20 0  40 x", "CIRCLE  8 a  10 0  20 0", "POINT  8 a",
          "CIRCLE  8 a  10 0  20 0  40 1  210 nan", "LWPOLYLINE  8 a  10 0  20 0  10 inf  20 1"}) {
        const DrawingPath path = pathOf(drawingOf(std::string("0 ") + entity));
        EXPECT_TRUE(path.contours.empty()) << entity;
        EXPECT_EQ(path.leftOut.size(), 1U) << entity;
        EXPECT_EQ(path.leftOut.at(0).reason, converters::LeftOutReason::broken) << entity;
    }
}

TEST(ReadPathEntities, OneThatIsBrokenCostsNoOther) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 LINE  10 a  20 b  0 LINE  10 1  20 2  11 3  21 4"))),
              "(1, 2) (3, 4)\n");
}

TEST(ReadPathEntities, GroupsThatProgramsAddAreNotTaken) {
    EXPECT_EQ(describe(pathOf(drawingOf(
                  "0 LINE  5 1F  102 {ACAD_REACTORS  330 99  10 9  102 }  100 AcDbEntity  8 0  "
                  "100 AcDbLine  999 a comment  10 1  20 2  11 3  21 4  101 Embedded Object  10 7  "
                  "20 7  1001 ACAD  1010 8  1020 8  10 8  20 8"))),
              "(1, 2) (3, 4)\n");
    EXPECT_EQ(describe(pathOf(drawingOf("0 LINE  10 1  20 2  11 3  21 4  1001 ACAD  10 8  20 8"))),
              "(1, 2) (3, 4)\n");
    EXPECT_EQ(describe(pathOf(drawingOf(
                  "0 POLYLINE  66 1  0 VERTEX  10 1  20 2  102 {OTHER  10 9  42 1  70 16  102 }  "
                  "0 VERTEX  102 {OTHER  70 16  102 }  10 3  20 4  1001 ACAD  10 8  20 8  0 "
                  "SEQEND"))),
              "(1, 2) (3, 4)\n");
}

TEST(ReadPathEntities, MayHaveAnyOfTheirSubclassMarkersAnywhere) {
    const std::string arc = describe(pathOf(drawingOf("0 ARC  10 1  20 2  40 3  50 270  51 360")));
    EXPECT_EQ(describe(pathOf(drawingOf("0 ARC  8 a  6 CONTINUOUS  10 1  20 2  40 3  39 0  "
                                        "100 AcDbArc  50 270  51 360  62 0"))),
              arc);
    EXPECT_EQ(describe(pathOf(drawingOf("0 ARC  100 AcDbEntity  8 a  100 AcDbArc  50 270  51 360  "
                                        "100 AcDbCircle  10 1  20 2  40 3"))),
              arc);
    EXPECT_EQ(describe(pathOf(drawingOf("0 LWPOLYLINE  100 AcDbEntity  8 a  90 2  70 0  10 1  "
                                        "20 2  10 3  20 4"))),
              "(1, 2) (3, 4)\n");
}

TEST(ReadPathEntities, HaveTheirOwnAnglesWhateverThoseOfTheUserInterfaceAre) {
    const std::string arc = drawingOf("0 ARC  10 1  20 2  40 3  50 10  51 80");
    EXPECT_EQ(describe(pathOf(section("HEADER", "9 $ANGBASE  50 90.0  9 $ANGDIR  70 1") + arc)),
              describe(pathOf(arc)));
}

TEST(ReadPathEntities, MayHaveACommentBehindTheEndOfTheirVertices) {
    EXPECT_EQ(describe(pathOf(drawingOf("0 POLYLINE  8 50  66 1  0 VERTEX  10 1  20 2  0 VERTEX  "
                                        "10 3  20 4  0 SEQEND  999 that was a line  0 POINT  10 7  "
                                        "20 8"))),
              "(1, 2) (3, 4)\n(7, 8)\n");
}

TEST(ReadPathEntities, NamesMayHaveBlanksAndSmallLetters) {
    EXPECT_EQ(describe(pathOf("  0 \nsection\n  2\nEntities \n  0\nLine \n 10\n1\n 20\n2\n 11\n3\n "
                              "21\n4\n  0\nendsec\n  0\neof\n")),
              "(1, 2) (3, 4)\n");
}

TEST(ReadPathEntities, MayHaveTabsAroundCodesNamesAndNumbers) {
    const DrawingPath path =
        pathOf("\t0\nSECTION\n  2\nENTITIES\n\t0\nLINE\n\t8\n\t50 \n\t62\n\t\t "
               "3\n\t10\n\t1\n20 \n2\t\n 11\n 3\n 21\n4\n\t0\nENDSEC\n");
    EXPECT_EQ(describe(path), "(1, 2) (3, 4)\n");
    EXPECT_EQ(path.layers.at(path.contours.at(0).layer).name, "50");
    EXPECT_EQ(path.contours.at(0).colour, 3);
}

TEST(ReadPathEntities, WhatIsNoPathIsListed) {
    const DrawingPath path = pathOf(drawingOf(
        "0 TEXT  8 a  0 MTEXT  8 a  0 TEXT  8 a  0 HATCH  8 b  10 1  20 1  0 RAY  8 a  "
        "0 MLINE  8 a  0 VIEWPORT  8 a  0 ACAD_PROXY_ENTITY  8 a  0 DIMENSION  8 a  2 *D1  "
        "0 ACAD_TABLE  8 a  2 *T1"));
    EXPECT_EQ(leftOut(path), "2 TEXT on a: annotation\n1 MTEXT on a: annotation\n"
                             "1 HATCH on b: annotation\n1 RAY on a: an infinite line\n"
                             "1 MLINE on a: of a kind that is not followed\n"
                             "1 ACAD_PROXY_ENTITY on a: of a kind that is not followed\n"
                             "1 DIMENSION on a: annotation\n"
                             "1 ACAD_TABLE on a: annotation\n");
    EXPECT_TRUE(path.contours.empty());
}

TEST(ReadPathEntities, AreNamedAsInAFile) {
    EXPECT_STREQ(converters::nameOf(PathEntityKind::lwpolyline), "LWPOLYLINE");
    EXPECT_STREQ(converters::nameOf(PathEntityKind::point), "POINT");
    EXPECT_STREQ(converters::nameOf(PathEntityKind::spline), "SPLINE");
}

} // namespace
