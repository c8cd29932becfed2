// The adapter between dxflib's records and the model.

// Alone: it brings along every class that the adapter makes.
#include "dxfeditor/DXFAdapter.h"

#include <gtest/gtest.h>

namespace {

using Point = cv::Point3_<double>;

DL_Attributes someRecord() {
    DL_Attributes record("walls", 3, 0x112233, 25, "DASHED", 77);
    record.setLinetypeScale(2.5);
    record.setInPaperSpace(true);
    return record;
}

TEST(DXFAdapterAttributes, TakeOverEveryFieldButPaperSpace) {
    const std::shared_ptr<DXFAttributes> attributes = DXFAdapter::makeAttributes(someRecord());
    EXPECT_EQ(attributes->layerName(), "walls");
    EXPECT_EQ(attributes->color(), 3);
    EXPECT_EQ(attributes->color24(), 0x112233);
    EXPECT_EQ(attributes->width(), 25);
    EXPECT_EQ(attributes->lineType(), "DASHED");
    EXPECT_EQ(attributes->lineTypeScale(), 2.5);
    EXPECT_EQ(attributes->handle(), 77);
    EXPECT_FALSE(attributes->inPaperSpace());
}

TEST(DXFAdapterAttributes, ReadAndWrittenAgainLoseScaleAndPaperSpace) {
    const DL_Attributes record =
        DXFAdapter::makeAttributes(DXFAdapter::makeAttributes(someRecord()));
    EXPECT_EQ(record.getLayer(), "walls");
    EXPECT_EQ(record.getColor(), 3);
    EXPECT_EQ(record.getColor24(), 0x112233);
    EXPECT_EQ(record.getWidth(), 25);
    EXPECT_EQ(record.getLinetype(), "DASHED");
    EXPECT_EQ(record.getLinetypeScale(), 1.0);
    EXPECT_EQ(record.getHandle(), 77);
    EXPECT_FALSE(record.isInPaperSpace());
}

TEST(DXFAdapterAttributes, InPaperSpaceAreWrittenInModelSpace) {
    const DL_Attributes record = DXFAdapter::makeAttributes(
        std::make_shared<DXFAttributes>("a", 1, 2, 3, "b", 4.5, 5, true));
    EXPECT_FALSE(record.isInPaperSpace());
    EXPECT_EQ(record.getLinetypeScale(), 1.0);
}

TEST(DXFAdapterLayer, TakesOverNameAndFlagsButNotOff) {
    const std::shared_ptr<DXFLayer> layer = DXFAdapter::makeLayer(DL_LayerData("walls", 5, true));
    EXPECT_EQ(layer->name(), "walls");
    EXPECT_EQ(layer->flags(), 5);
    EXPECT_EQ(layer->attributes(), nullptr);
    const DL_LayerData record = DXFAdapter::makeLayer(layer);
    EXPECT_EQ(record.name, "walls");
    EXPECT_EQ(record.flags, 5);
    EXPECT_FALSE(record.off);
}

TEST(DXFAdapterLineType, TakesOverEveryFieldAndHandsThePatternOn) {
    double pattern[] = {0.5, -0.25};
    const std::shared_ptr<DXFLineType> lineType =
        DXFAdapter::makeLineType(DL_LinetypeData("DASHED", "text", 64, 2, 0.75, pattern));
    EXPECT_EQ(lineType->name(), "DASHED");
    EXPECT_EQ(lineType->description(), "text");
    EXPECT_EQ(lineType->flags(), 64);
    EXPECT_EQ(lineType->numberOfDashes(), 2);
    EXPECT_EQ(lineType->patternLength(), 0.75);
    EXPECT_EQ(lineType->pattern(), pattern);
    const DL_LinetypeData record = DXFAdapter::makeLineType(lineType);
    EXPECT_EQ(record.name, "DASHED");
    EXPECT_EQ(record.description, "text");
    EXPECT_EQ(record.flags, 64);
    EXPECT_EQ(record.numberOfDashes, 2);
    EXPECT_EQ(record.patternLength, 0.75);
    EXPECT_EQ(record.pattern, pattern);
}

TEST(DXFAdapterPoint, GoesBothWays) {
    const std::shared_ptr<DXFPoint> point = DXFAdapter::makePoint(DL_PointData(1, 2, 3));
    EXPECT_EQ(Point(point->mX(), point->mY(), point->mZ()), Point(1, 2, 3));
    const DL_PointData record = DXFAdapter::makePoint(point);
    EXPECT_EQ(Point(record.x, record.y, record.z), Point(1, 2, 3));
}

TEST(DXFAdapterLine, GoesBothWays) {
    const std::shared_ptr<DXFLine> line = DXFAdapter::makeLine(DL_LineData(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(line->getP1(), Point(1, 2, 3));
    EXPECT_EQ(line->getP2(), Point(4, 5, 6));
    const DL_LineData record = DXFAdapter::makeLine(line);
    EXPECT_EQ(Point(record.x1, record.y1, record.z1), Point(1, 2, 3));
    EXPECT_EQ(Point(record.x2, record.y2, record.z2), Point(4, 5, 6));
}

TEST(DXFAdapterCircle, GoesBothWays) {
    const std::shared_ptr<DXFCircle> circle = DXFAdapter::makeCircle(DL_CircleData(1, 2, 3, -4));
    EXPECT_EQ(circle->getCenter(), Point(1, 2, 3));
    EXPECT_EQ(circle->getRadius(), -4);
    const DL_CircleData record = DXFAdapter::makeCircle(circle);
    EXPECT_EQ(Point(record.cx, record.cy, record.cz), Point(1, 2, 3));
    EXPECT_EQ(record.radius, -4);
}

TEST(DXFAdapterArc, GoesBothWaysWithItsAnglesUnchanged) {
    const std::shared_ptr<DXFArc> arc = DXFAdapter::makeArc(DL_ArcData(1, 2, 3, 4, 350, 10));
    EXPECT_EQ(arc->getCenter(), Point(1, 2, 3));
    EXPECT_EQ(arc->getRadius(), 4);
    EXPECT_EQ(arc->getStartAngle(), 350);
    EXPECT_EQ(arc->getEndAngle(), 10);
    const DL_ArcData record = DXFAdapter::makeArc(arc);
    EXPECT_EQ(Point(record.cx, record.cy, record.cz), Point(1, 2, 3));
    EXPECT_EQ(record.radius, 4);
    EXPECT_EQ(record.angle1, 350);
    EXPECT_EQ(record.angle2, 10);
}

TEST(DXFAdapterPolyline, CountsTheVerticesItIsGivenAndNotTheRecords) {
    const std::shared_ptr<DXFPolyline> polyline =
        DXFAdapter::makePolyline(DL_PolylineData(7, 5, 6, 129, 3.5));
    EXPECT_EQ(polyline->vertexNumber(), 0);
    EXPECT_EQ(polyline->mVertices(), 5U);
    EXPECT_EQ(polyline->nVertices(), 6U);
    EXPECT_EQ(polyline->flags(), 129U);
    EXPECT_EQ(DXFAdapter::makePolyline(polyline).number, 0U);

    polyline->appendPoint(DXFVertex(1, 2, 3, true, 4));
    polyline->appendPoint(DXFVertex(1, 2, 3, true, 4));
    const DL_PolylineData record = DXFAdapter::makePolyline(polyline);
    EXPECT_EQ(record.number, 2U);
    EXPECT_EQ(record.m, 5U);
    EXPECT_EQ(record.n, 6U);
    EXPECT_EQ(record.flags, 129);
    EXPECT_EQ(record.elevation, 0.0);
}

TEST(DXFAdapterPolyline, KeepsCountsAndFlagsThatAreNegativeInTheRecord) {
    const std::shared_ptr<DXFPolyline> polyline =
        DXFAdapter::makePolyline(DL_PolylineData(-1, -2, -3, -4));
    EXPECT_EQ(polyline->mVertices(), 0xFFFFFFFEU);
    EXPECT_EQ(polyline->nVertices(), 0xFFFFFFFDU);
    EXPECT_EQ(polyline->flags(), 0xFFFFFFFCU);
    const DL_PolylineData record = DXFAdapter::makePolyline(polyline);
    EXPECT_EQ(record.m, 0xFFFFFFFEU);
    EXPECT_EQ(record.n, 0xFFFFFFFDU);
    EXPECT_EQ(record.flags, -4);
}

TEST(DXFAdapterVertex, GoesBothWaysWithItsFlagAlwaysTrue) {
    const DXFVertex vertex = DXFAdapter::makeVertex(DL_VertexData(1, 2, 3, 4));
    EXPECT_EQ(Point(vertex.x(), vertex.y(), vertex.z()), Point(1, 2, 3));
    EXPECT_EQ(vertex.bulge(), 4);
    EXPECT_TRUE(vertex.flag());
    const DL_VertexData record = DXFAdapter::makeVertex(DXFVertex(5, 6, 7, false, 8));
    EXPECT_EQ(Point(record.x, record.y, record.z), Point(5, 6, 7));
    EXPECT_EQ(record.bulge, 8);
}

TEST(DXFAdapterSpline, StartsEmptyWhateverTheRecordsCounts) {
    const std::shared_ptr<DXFSpline> spline =
        DXFAdapter::makeSpline(DL_SplineData(3, 100, 200, 300, 8));
    EXPECT_EQ(spline->degree(), 3U);
    EXPECT_EQ(spline->flags(), 8);
    EXPECT_TRUE(spline->knots().empty());
    EXPECT_TRUE(spline->controlPoints().empty());
    EXPECT_TRUE(spline->fitPoints().empty());
}

TEST(DXFAdapterSpline, CountsWhatItHoldsAndDropsItsFlags) {
    const auto spline = std::make_shared<DXFSpline>(2U, 9U, 9U, 9U, 11);
    for (const double knot : {0.0, 1.0, 2.0}) {
        spline->appendKnot(knot);
    }
    for (const double x : {0.0, 1.0, 2.0, 3.0}) {
        spline->appendControlPoint(x, 0, 0, 1);
    }
    const DL_SplineData record = DXFAdapter::makeSpline(spline);
    EXPECT_EQ(record.degree, 2U);
    EXPECT_EQ(record.nKnots, 3U);
    EXPECT_EQ(record.nControl, 4U);
    EXPECT_EQ(record.nFit, 0U);
    EXPECT_EQ(record.flags, 0);
    spline->appendFitPoint(1, 2, 3);
    EXPECT_EQ(DXFAdapter::makeSpline(spline).nFit, 1U);
}

TEST(DXFAdapterSpline, LeavesNoFieldOfTheRecordUnset) {
    const DL_SplineData record =
        DXFAdapter::makeSpline(std::make_shared<DXFSpline>(2U, 0U, 0U, 0U, 0));
    for (const double tangent : {record.tangentStartX, record.tangentStartY, record.tangentStartZ,
                                 record.tangentEndX, record.tangentEndY, record.tangentEndZ}) {
        EXPECT_EQ(tangent, 0.0);
    }
}

TEST(DXFAdapterPointVector, CopiesThePointsInOrder) {
    std::vector<Point> points = {{1, 2, 3}, {4, 5, 6}};
    const std::shared_ptr<DXFPointVector> vector = DXFAdapter::makePointVector(points);
    points[0].x = 9;
    EXPECT_EQ(vector->mV(), (std::vector<Point>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_TRUE(DXFAdapter::makePointVector({})->mV().empty());
}

} // namespace
