#include "dxfeditor/DXFPolyline.h"

#include "tests/support/CloneOf.h"

#include <gtest/gtest.h>

#include <random>
#include <type_traits>

bool operator==(const Segment& a, const Segment& b) {
    return a.startX == b.startX && a.startY == b.startY && a.endX == b.endX && a.endY == b.endY;
}

std::ostream& operator<<(std::ostream& stream, const Segment& s) {
    return stream << '(' << s.startX << ", " << s.startY << ")-(" << s.endX << ", " << s.endY
                  << ')';
}

namespace {

static_assert(std::is_aggregate_v<Segment>);
static_assert(offsetof(Segment, startX) == 0 && offsetof(Segment, startY) == 8 &&
              offsetof(Segment, endX) == 16 && offsetof(Segment, endY) == 24);

constexpr unsigned closed = 1;

DXFVertex vertex(double x, double y, double z = 0.0, double bulge = 0.0) {
    return DXFVertex(x, y, z, true, bulge);
}

TEST(DXFVertex, KeepsEveryValueInItsOwnPlace) {
    const DXFVertex v(1, 2, 3, true, 4);
    EXPECT_EQ(v.x(), 1);
    EXPECT_EQ(v.y(), 2);
    EXPECT_EQ(v.z(), 3);
    EXPECT_TRUE(v.flag());
    EXPECT_EQ(v.bulge(), 4);
    EXPECT_FALSE(DXFVertex(1, 2, 3, false, 4).flag());
}

TEST(DXFPolyline, StartsEmptyWithTheGivenCountsAndFlags) {
    const DXFPolyline polyline(7, 0xFFFFFFFFU, 0x80000002U);
    EXPECT_TRUE(polyline.vertices().empty());
    EXPECT_TRUE(polyline.segments().empty());
    EXPECT_EQ(polyline.vertexNumber(), 0);
    EXPECT_EQ(polyline.mVertices(), 7U);
    EXPECT_EQ(polyline.nVertices(), 0xFFFFFFFFU);
    EXPECT_EQ(polyline.flags(), 0x80000002U);
    EXPECT_FALSE(polyline.isClosed());
}

TEST(DXFPolyline, IsClosedWhenBitZeroIsSetWhateverTheOthers) {
    EXPECT_TRUE(DXFPolyline(0, 0, 1).isClosed());
    EXPECT_TRUE(DXFPolyline(0, 0, 129).isClosed());
    EXPECT_FALSE(DXFPolyline(0, 0, 128).isClosed());
}

TEST(DXFPolyline, KeepsItsVerticesInOrder) {
    DXFPolyline polyline(0, 0, 0);
    polyline.appendPoint(vertex(1, 2, 3, 4));
    polyline.appendPoint(vertex(5, 6, 7, 8));
    ASSERT_EQ(polyline.vertexNumber(), 2);
    EXPECT_EQ(polyline.vertices()[0].x(), 1);
    EXPECT_EQ(polyline.vertices()[0].bulge(), 4);
    EXPECT_EQ(polyline.vertices()[1].z(), 7);
}

TEST(DXFPolylineSetup, OfNoneOrOneVertexGivesNoSegment) {
    for (const unsigned flags : {0U, closed}) {
        DXFPolyline none(0, 0, flags);
        none.setup();
        EXPECT_TRUE(none.segments().empty());
        DXFPolyline one(0, 0, flags);
        one.appendPoint(vertex(1, 2));
        one.setup();
        EXPECT_TRUE(one.segments().empty());
    }
}

TEST(DXFPolylineSetup, OfTwoVerticesGivesOneSegmentAlsoWhenClosed) {
    for (const unsigned flags : {0U, closed}) {
        DXFPolyline polyline(0, 0, flags);
        polyline.appendPoint(vertex(1, 2));
        polyline.appendPoint(vertex(3, 4));
        polyline.setup();
        EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{1, 2, 3, 4}}));
    }
}

TEST(DXFPolylineSetup, ClosesFromTheFirstVertexToTheLastAndNotBack) {
    DXFPolyline triangle(0, 0, closed);
    triangle.appendPoint(vertex(0, 0));
    triangle.appendPoint(vertex(4, 0));
    triangle.appendPoint(vertex(4, 3));
    triangle.setup();
    EXPECT_EQ(triangle.segments(),
              (std::vector<Segment>{{0, 0, 4, 0}, {4, 0, 4, 3}, {0, 0, 4, 3}}));
}

TEST(DXFPolylineSetup, LeavesAnOpenPolylineOpen) {
    DXFPolyline polyline(0, 0, 128);
    polyline.appendPoint(vertex(0, 0));
    polyline.appendPoint(vertex(4, 0));
    polyline.appendPoint(vertex(4, 3));
    polyline.setup();
    EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{0, 0, 4, 0}, {4, 0, 4, 3}}));
}

TEST(DXFPolylineSetup, MakesAChordOfABulgedEdgeAndIgnoresHeights) {
    DXFPolyline polyline(0, 0, 0);
    polyline.appendPoint(vertex(0, 0, 5, 1));
    polyline.appendPoint(vertex(2, 0, 9, -1));
    polyline.setup();
    EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{0, 0, 2, 0}}));
}

TEST(DXFPolylineSetup, CalledAgainChangesNothing) {
    DXFPolyline polyline(0, 0, closed);
    for (const int i : {0, 1, 2}) {
        polyline.appendPoint(vertex(i, i * i));
    }
    polyline.setup();
    const std::vector<Segment> once = polyline.segments();
    polyline.setup();
    EXPECT_EQ(polyline.segments(), once);
}

TEST(DXFPolylineSetup, DoesNotTakeInVerticesAppendedAfterIt) {
    DXFPolyline polyline(0, 0, 0);
    polyline.appendPoint(vertex(0, 0));
    polyline.appendPoint(vertex(1, 0));
    polyline.setup();
    polyline.appendPoint(vertex(2, 0));
    polyline.setup();
    EXPECT_EQ(polyline.vertexNumber(), 3);
    EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{0, 0, 1, 0}}));
    polyline.setSegments({{5, 5, 6, 6}});
    polyline.appendPoint(vertex(7, 7));
    polyline.setup();
    EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{5, 5, 6, 6}, {6, 6, 7, 7}}));
}

TEST(DXFPolylineSetSegments, ReplacesVerticesByTheChain) {
    DXFPolyline polyline(3, 4, 5);
    polyline.appendPoint(vertex(9, 9, 9, 9));
    const std::vector<Segment> chain = {{0, 1, 2, 3}, {2, 3, 4, 5}};
    polyline.setSegments(chain);
    EXPECT_EQ(polyline.segments(), chain);
    EXPECT_EQ(polyline.mVertices(), 0U);
    EXPECT_EQ(polyline.nVertices(), 0U);
    EXPECT_EQ(polyline.flags(), 5U);
    ASSERT_EQ(polyline.vertexNumber(), 3);
    for (int i = 0; i < 3; ++i) {
        const DXFVertex& v = polyline.vertices()[static_cast<std::size_t>(i)];
        EXPECT_EQ(v.x(), 2 * i);
        EXPECT_EQ(v.y(), 2 * i + 1);
        EXPECT_EQ(v.z(), 0);
        EXPECT_TRUE(v.flag());
        EXPECT_EQ(v.bulge(), 0);
    }
}

TEST(DXFPolylineSetSegments, OfNothingLeavesNothing) {
    DXFPolyline polyline(3, 4, closed);
    for (const int i : {0, 1, 2}) {
        polyline.appendPoint(vertex(i, i * i));
    }
    polyline.setup();
    polyline.setSegments({});
    EXPECT_TRUE(polyline.vertices().empty());
    EXPECT_TRUE(polyline.segments().empty());
    EXPECT_EQ(polyline.mVertices(), 0U);
    EXPECT_EQ(polyline.nVertices(), 0U);
    polyline.setup();
    EXPECT_TRUE(polyline.segments().empty());
}

TEST(DXFPolylineSetSegments, DoesNotCompareStartsWithTheEndsBefore) {
    DXFPolyline polyline(0, 0, 0);
    const std::vector<Segment> gap = {{0, 0, 1, 0}, {50, 50, 2, 0}};
    polyline.setSegments(gap);
    EXPECT_EQ(polyline.segments(), gap);
    EXPECT_EQ(polyline.vertexNumber(), 3);
    polyline.setup();
    EXPECT_EQ(polyline.segments(), (std::vector<Segment>{{0, 0, 1, 0}, {1, 0, 2, 0}}));
}

TEST(DXFPolylineSetSegments, OfAClosedPolylineGetsTheClosingPieceAtTheNextSetup) {
    DXFPolyline polyline(0, 0, closed);
    polyline.setSegments({{0, 0, 4, 0}, {4, 0, 4, 3}});
    EXPECT_EQ(polyline.segments().size(), 2U);
    polyline.setup();
    EXPECT_EQ(polyline.segments(),
              (std::vector<Segment>{{0, 0, 4, 0}, {4, 0, 4, 3}, {0, 0, 4, 3}}));
}

TEST(DXFPolylineSetSegments, OfRandomOpenChainsSurvivesSetup) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> coordinate(-1e6, 1e6);
    for (std::size_t length = 0; length < 50; ++length) {
        std::vector<Segment> chain;
        double x = coordinate(random);
        double y = coordinate(random);
        for (std::size_t i = 0; i < length; ++i) {
            chain.push_back({x, y, coordinate(random), coordinate(random)});
            x = chain.back().endX;
            y = chain.back().endY;
        }
        DXFPolyline polyline(0, 0, 0);
        polyline.setSegments(chain);
        polyline.setup();
        EXPECT_EQ(polyline.segments(), chain);
        polyline.setSegments(polyline.segments());
        EXPECT_EQ(polyline.segments(), chain);
    }
}

/// A polyline that makes its segments when it is set up, and keeps them.
struct PlainPolyline {
    bool isClosed;
    bool isPending = true;
    std::vector<DXFVertex> vertices = {};
    std::vector<Segment> segments = {};

    void setup() {
        if (!isPending) {
            return;
        }
        segments.clear();
        for (std::size_t i = 1; i < vertices.size(); ++i) {
            segments.push_back(
                {vertices[i - 1].x(), vertices[i - 1].y(), vertices[i].x(), vertices[i].y()});
        }
        if (isClosed && segments.size() > 1) {
            segments.push_back({segments.front().startX, segments.front().startY,
                                segments.back().endX, segments.back().endY});
        }
        isPending = false;
    }

    void setSegments(const std::vector<Segment>& given) {
        segments = given;
        isPending = true;
        vertices.clear();
        for (const Segment& segment : given) {
            if (vertices.empty()) {
                vertices.push_back(vertex(segment.startX, segment.startY));
            }
            vertices.push_back(vertex(segment.endX, segment.endY));
        }
    }
};

TEST(DXFPolyline, FollowsAPlainOneThroughRandomChanges) {
    std::mt19937 random(1);
    const auto number = [&] { return static_cast<double>(random() % 1000); };
    for (int round = 0; round < 1000; ++round) {
        DXFPolyline polyline(0, 0, round % 2 == 0 ? closed : 0);
        PlainPolyline plain{polyline.isClosed()};
        for (int step = 0; step < 12; ++step) {
            if (const unsigned choice = random() % 8; choice < 5) {
                plain.vertices.push_back(vertex(number(), number()));
                polyline.appendPoint(plain.vertices.back());
            } else if (choice < 7) {
                polyline.setup();
                plain.setup();
            } else {
                std::vector<Segment> given(random() % 4);
                for (Segment& segment : given) {
                    segment = {number(), number(), number(), number()};
                }
                polyline.setSegments(given);
                plain.setSegments(given);
            }
            ASSERT_EQ(polyline.segments(), plain.segments);
            ASSERT_EQ(polyline.segmentCount(), plain.segments.size());
            for (std::size_t i = 0; i < plain.segments.size(); ++i) {
                ASSERT_EQ(polyline.segment(i), plain.segments[i]);
            }
            ASSERT_EQ(polyline.vertexNumber(), static_cast<int>(plain.vertices.size()));
        }
    }
}

TEST(DXFPolylineClone, HasVerticesAndSegmentsOfItsOwn) {
    DXFPolyline polyline(7, 8, closed);
    polyline.appendPoint(vertex(0, 0, 1, 2));
    polyline.appendPoint(vertex(1, 0));
    polyline.setup();
    const std::unique_ptr<DXFPolyline> clone = cloneOf(polyline);
    EXPECT_EQ(clone->segments(), polyline.segments());
    EXPECT_EQ(clone->mVertices(), 7U);
    EXPECT_EQ(clone->nVertices(), 8U);
    EXPECT_EQ(clone->flags(), closed);
    polyline.setSegments({});
    ASSERT_EQ(clone->vertexNumber(), 2);
    EXPECT_EQ(clone->vertices()[0].z(), 1);
    EXPECT_EQ(clone->vertices()[0].bulge(), 2);
    EXPECT_EQ(clone->segments(), (std::vector<Segment>{{0, 0, 1, 0}}));
}

TEST(DXFPolylineClone, TakesOverWhetherSetupIsPending) {
    DXFPolyline polyline(0, 0, 0);
    polyline.appendPoint(vertex(0, 0));
    polyline.appendPoint(vertex(1, 0));
    const std::unique_ptr<DXFPolyline> pending = cloneOf(polyline);
    polyline.setup();
    const std::unique_ptr<DXFPolyline> done = cloneOf(polyline);
    pending->appendPoint(vertex(2, 0));
    done->appendPoint(vertex(2, 0));
    pending->setup();
    done->setup();
    EXPECT_EQ(pending->segments().size(), 2U);
    EXPECT_EQ(done->segments().size(), 1U);
}

} // namespace
