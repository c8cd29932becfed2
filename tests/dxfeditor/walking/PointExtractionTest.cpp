#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/PlainExtraction.h"
#include "tests/support/SamePoints.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using Point = cv::Point3_<double>;
using Points = std::vector<Point>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <typename Kind, typename... Arguments>
Points pointsOf(Arguments&&... arguments) {
    DXFDocument document;
    document.addEntity(std::make_shared<Kind>(std::forward<Arguments>(arguments)...));
    return document.getPoints();
}

Points lineFrom(double x1, double y1, double x2, double y2) {
    return pointsOf<DXFLine>(Point(x1, y1, 0), Point(x2, y2, 0));
}

Points circle(double radius) {
    return pointsOf<DXFCircle>(Point(0, 0, 0), radius);
}

Points arc(double radius, double start, double end) {
    return pointsOf<DXFArc>(Point(0, 0, 0), radius, start, end);
}

std::shared_ptr<DXFPolyline> polyline(const std::vector<std::pair<double, double>>& corners,
                                      unsigned flags = 0) {
    auto result = std::make_shared<DXFPolyline>(0U, 0U, flags);
    for (const auto& [x, y] : corners) {
        result->appendPoint(DXFVertex(x, y, 99.0, true, 0.5));
    }
    return result;
}

Points pointsOfDrawing(const std::vector<std::shared_ptr<DXFEntity>>& entities) {
    DXFDocument document;
    for (const auto& entity : entities) {
        document.addEntity(entity);
    }
    document.setup();
    return document.getPoints();
}

TEST(PointExtractionTest, AnEmptyDrawingHasNoPoints) {
    EXPECT_TRUE(DXFDocument().getPoints().empty());
}

TEST(PointExtractionTest, EntitiesWithoutPointsGiveNone) {
    EXPECT_TRUE(pointsOfDrawing({polyline({{1, 2}}), polyline({}),
                                 std::make_shared<DXFPointVector>(Points{}),
                                 std::make_shared<DXFSpline>(3U, 0U, 0U, 0U, 0)})
                    .empty());
}

TEST(PointExtractionTest, ASmallCircleHas32Points) {
    EXPECT_EQ(circle(0.1).size(), 32U);
    EXPECT_EQ(circle(0.0).size(), 32U);
    EXPECT_EQ(circle(0.5).size(), 32U);
    EXPECT_EQ(circle(33.0 / 62.83185307179586 + 1e-9).size(), 33U);
}

TEST(PointExtractionTest, ACircleOfRadius1Has62Points) {
    EXPECT_EQ(circle(1.0).size(), 62U);
}

TEST(PointExtractionTest, ACircleStartsAtAngleZeroAndDoesNotComeBackToIt) {
    const Points points = pointsOf<DXFCircle>(Point(3, 4, 5), 2.0);
    ASSERT_EQ(points.size(), 125U);
    EXPECT_TRUE(samePoints({points.front()}, {Point(5, 0, 4)}));
    const double angle = 124 * 6.283185307179586 * (1.0 / 125);
    EXPECT_DOUBLE_EQ(points.back().x, 3 + 2 * std::cos(angle));
    EXPECT_EQ(points.back().y, 0.0);
    EXPECT_DOUBLE_EQ(points.back().z, 4 + 2 * std::sin(angle));
}

TEST(PointExtractionTest, ANegativeRadiusIsWalkedFromTheOtherSide) {
    const Points points = circle(-2.0);
    ASSERT_EQ(points.size(), 32U);
    EXPECT_TRUE(samePoints({points.front()}, {Point(-2, 0, 0)}));
    EXPECT_EQ(arc(-2.0, 0, 90).size(), 5U);
}

TEST(PointExtractionTest, ATinyCircleClosesOntoItsFirstPoint) {
    const Points points = circle(0.001);
    ASSERT_EQ(points.size(), 32U);
    EXPECT_TRUE(samePoints({points.back()}, {points.front()}));
}

TEST(PointExtractionTest, AnArcThroughZeroSweepsTheShortWay) {
    const Points points = arc(10.0, 350, 10);
    ASSERT_EQ(points.size(), 35U) << "20 degrees of radius 10, times ten: 34 steps";
    for (const Point& point : points) {
        EXPECT_GT(point.x, 9.84);
        EXPECT_LT(std::fabs(point.z), 1.74);
    }
    EXPECT_NEAR(points.front().z, -10 * std::sin(10 * 0.017453292519943295), 1e-12);
    EXPECT_NEAR(points.back().z, 10 * std::sin(10 * 0.017453292519943295), 1e-12);
}

TEST(PointExtractionTest, AnArcHasBothItsEnds) {
    const Points points = pointsOf<DXFArc>(Point(1, 2, 9), 1.0, 0.0, 90.0);
    ASSERT_EQ(points.size(), 16U);
    EXPECT_TRUE(samePoints({points.front()}, {Point(2, 0, 2)}));
    EXPECT_NEAR(points.back().x, 1.0, 1e-15);
    EXPECT_NEAR(points.back().z, 3.0, 1e-15);
}

TEST(PointExtractionTest, AnArcHasAtLeastFiveAndAnArcFromItsEndFiveEqualPoints) {
    EXPECT_EQ(arc(0.1, 0, 90).size(), 5U);
    EXPECT_TRUE(samePoints(arc(2.0, 0, 0), Points(5, Point(2, 0, 0))));
}

TEST(PointExtractionTest, AnArcOfMoreThanOneTurnIsWalkedAsItStands) {
    EXPECT_EQ(arc(1.0, 0, 720).size(), 126U);
    EXPECT_EQ(arc(1.0, 720, 0).size(), 5U) << "a negative sweep even after one more turn";
}

TEST(PointExtractionTest, ALineOfLength1Has11Points) {
    const Points points = lineFrom(0, 0, 1, 0);
    ASSERT_EQ(points.size(), 11U);
    for (int i = 0; i <= 10; ++i) {
        EXPECT_TRUE(
            samePoints({points[static_cast<std::size_t>(i)]}, {Point(i * (1.0 / 10), 0, 0)}));
    }
}

TEST(PointExtractionTest, AShortLineIsItsFirstPoint) {
    EXPECT_TRUE(samePoints(lineFrom(3, 4, 3.05, 4.05), {Point(3, 0, 4)}));
    EXPECT_TRUE(samePoints(lineFrom(-0.0, -0.0, 0, 0), {Point(-0.0, 0, -0.0)}));
    EXPECT_EQ(lineFrom(0, 0, 0.1, 0).size(), 2U);
}

TEST(PointExtractionTest, HeightsOfLineEndsAreNotUsed) {
    EXPECT_TRUE(
        samePoints(pointsOf<DXFLine>(Point(1, 2, 30), Point(2, 2, 90)), lineFrom(1, 2, 2, 2)));
}

TEST(PointExtractionTest, PolylinesRepeatTheirCorners) {
    const Points points = pointsOfDrawing({polyline({{0, 0}, {1, 0}, {1, 1}})});
    ASSERT_EQ(points.size(), 22U);
    EXPECT_TRUE(samePoints({points[10], points[11]}, {Point(1, 0, 0), Point(1, 0, 0)}));
    EXPECT_TRUE(samePoints({points.back()}, {Point(1, 0, 1)}));
}

TEST(PointExtractionTest, AClosedPolylineEndsWithTheWalkFromItsFirstToItsLastVertex) {
    const Points points = pointsOfDrawing({polyline({{0, 0}, {1, 0}, {1, 1}}, 1)});
    ASSERT_EQ(points.size(), 22U + 15U);
    EXPECT_TRUE(samePoints({points[22]}, {Point(0, 0, 0)}));
    EXPECT_TRUE(samePoints({points.back()}, {Point(1, 0, 1)}));
}

TEST(PointExtractionTest, APolylineThatWasNotSetUpHasNoPoints) {
    DXFDocument document;
    document.addEntity(polyline({{0, 0}, {1, 0}}));
    EXPECT_TRUE(document.getPoints().empty());
    document.setup();
    EXPECT_EQ(document.getPoints().size(), 11U);
}

std::shared_ptr<DXFSpline> legs() {
    auto spline = std::make_shared<DXFSpline>(1U, 5U, 3U, 0U, 0);
    for (const double knot : {0.0, 0.0, 1.0, 2.0, 2.0}) {
        spline->appendKnot(knot);
    }
    spline->appendControlPoint(0, 0, 5, 1);
    spline->appendControlPoint(1, 0, 5, 1);
    spline->appendControlPoint(1, 1, 5, 1);
    return spline;
}

TEST(PointExtractionTest, ASplineIsSampledIntoTheDrawingPlane) {
    const Points points = pointsOfDrawing({legs()});
    ASSERT_EQ(points.size(), 21U);
    EXPECT_TRUE(samePoints({points[0], points[10], points[20]},
                           {Point(0, 0, 0), Point(1, 0, 0), Point(1, 0, 1)}));
}

TEST(PointExtractionTest, ASplineThatCannotBeEvaluatedGivesItsFitPoints) {
    auto spline = std::make_shared<DXFSpline>(3U, 0U, 0U, 0U, 0);
    spline->appendFitPoint(1, 2, 3);
    spline->appendFitPoint(4, 5, 6);
    EXPECT_TRUE(samePoints(pointsOfDrawing({spline}), {Point(1, 0, 2), Point(4, 0, 5)}));
}

TEST(PointExtractionTest, APointLosesItsHeight) {
    EXPECT_TRUE(samePoints(pointsOf<DXFPoint>(3.0, 4.0, 5.0), {Point(3, 0, 4)}));
}

TEST(PointExtractionTest, APointVectorKeepsItsAxesAndTurnsTheSignOfZ) {
    EXPECT_TRUE(samePoints(pointsOf<DXFPointVector>(Points{{3, 4, 5}, {6, 7, 0.0}, {1, 1, -2}}),
                           {Point(3, 4, -5), Point(6, 7, -0.0), Point(1, 1, 2)}));
}

TEST(PointExtractionTest, ASquareOfFourLinesInAnyOrderAndDirectionIsOneClosedWalk) {
    const Point corners[] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    std::vector<int> order{0, 1, 2, 3};
    do {
        for (unsigned flipped = 0; flipped < 16; ++flipped) {
            DXFDocument document;
            for (const int side : order) {
                Point start = corners[side];
                Point end = corners[(side + 1) % 4];
                if ((flipped >> side & 1U) != 0) {
                    std::swap(start, end);
                }
                document.addEntity(std::make_shared<DXFLine>(start, end));
            }
            const Points points = document.getPoints();
            ASSERT_EQ(points.size(), 4U * 11U - 3U);
            EXPECT_TRUE(samePoints({points.back()}, {points.front()}));
            EXPECT_TRUE(samePoints(points, plainPoints(document)));
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(PointExtractionTest, PolylinesJoinAcrossAHalfThousandthButNotAcrossTwo) {
    const auto first = polyline({{0, 0}, {1, 0}});
    EXPECT_EQ(pointsOfDrawing({first, polyline({{1.002, 0}, {2.1, 0}})}).size(), 22U);
    EXPECT_EQ(pointsOfDrawing({first, polyline({{1.0005, 0}, {2.1, 0}})}).size(), 21U);
    const Points apart = pointsOfDrawing({first, polyline({{1.002, 0}, {2.1, 0}})});
    EXPECT_TRUE(samePoints({apart.front()}, {Point(1.002, 0, 0)})) << "the last entity goes first";
}

/// An entity with any type code.
class Stranger : public DXFEntity {
public:
    explicit Stranger(int code) : m_code(code) {}
    int type() const override { return m_code; }
    void setup() override {}
    DXFEntity* clone() const override { return new Stranger(*this); }

private:
    int m_code;
};

/// A point that says it is something else.
class LyingPoint : public DXFPoint {
public:
    explicit LyingPoint(int code) : DXFPoint(1, 2, 3), m_code(code) {}
    int type() const override { return m_code; }

private:
    int m_code;
};

TEST(PointExtractionTest, EntitiesThatAreNotWhatTheirTypeCodeSaysAreSkipped) {
    for (int code = -2; code <= 9; ++code) {
        EXPECT_TRUE(pointsOf<Stranger>(code).empty()) << code;
        EXPECT_EQ(pointsOf<LyingPoint>(code).size(), code == 1 ? 1U : 0U) << code;
    }
}

/// A line and a circle in one, which says what it is told to.
class Two : public DXFLine, public DXFCircle {
public:
    explicit Two(int code)
        : DXFLine(Point(10, 20, 0), Point(11, 20, 0)), DXFCircle(Point(5, 6, 0), 1.0),
          m_code(code) {}
    int type() const override { return m_code; }
    void setup() override {}
    DXFEntity* clone() const override { return DXFLine::clone(); }

private:
    int m_code;
};

TEST(PointExtractionTest, AnEntityOfTwoClassesIsTheOneThatItsTypeCodeNames) {
    const auto line = std::make_shared<Two>(DXFEntityType::Line);
    const auto circle = std::make_shared<Two>(DXFEntityType::Circle);
    const Points plainLine = lineFrom(10, 20, 11, 20);
    const Points plainCircle = pointsOf<DXFCircle>(Point(5, 6, 0), 1.0);
    EXPECT_TRUE(samePoints(pointsOfDrawing({std::shared_ptr<DXFLine>(line)}), plainLine));
    EXPECT_TRUE(samePoints(pointsOfDrawing({std::shared_ptr<DXFCircle>(line)}), plainLine));
    EXPECT_TRUE(samePoints(pointsOfDrawing({std::shared_ptr<DXFLine>(circle)}), plainCircle));
    EXPECT_TRUE(samePoints(pointsOfDrawing({std::shared_ptr<DXFCircle>(circle)}), plainCircle));
}

TEST(PointExtractionTest, EmptyPointersAreSkipped) {
    EXPECT_EQ(pointsOfDrawing({nullptr, std::make_shared<DXFPoint>(1, 2, 3), nullptr}).size(), 1U);
}

TEST(PointExtractionTest, AnEntityThatIsAddedTwiceIsWalkedTwice) {
    const auto line = std::make_shared<DXFLine>(Point(0, 0, 0), Point(1, 0, 0));
    EXPECT_EQ(pointsOfDrawing({line, line}).size(), 21U);
}

TEST(PointExtractionTest, CountsThatAreNoNumbersOrDoNotFit32BitsCountAsNone) {
    for (const double bad : {notANumber, infinity, -infinity, 1e300, -1e300, 34178264.0}) {
        EXPECT_EQ(circle(bad).size(), 32U) << bad;
    }
    for (const double bad : {notANumber, infinity, 1e300, 214748364.8}) {
        EXPECT_EQ(lineFrom(0, 0, bad, 0).size(), 1U) << bad;
        EXPECT_EQ(lineFrom(0, 0, 0, -bad).size(), 1U) << bad;
    }
    for (const double bad : {notANumber, infinity, 1e300}) {
        EXPECT_EQ(arc(bad, 0, 90).size(), 5U) << bad;
        EXPECT_EQ(arc(1.0, bad, 90).size(), 5U) << bad;
        EXPECT_EQ(arc(1.0, 0, bad).size(), 5U) << bad;
    }
    EXPECT_EQ(lineFrom(-1.7e308, 0, 1.7e308, 0).size(), 1U);
    auto spline = legs();
    spline->appendControlPoint(1e300, 0, 0, 1);
    spline->appendKnot(3.0);
    EXPECT_EQ(pointsOfDrawing({spline}).size(), 5U);
}

TEST(PointExtractionTest, RandomDrawingsAreThePlainOnesToTheBit) {
    std::mt19937_64 random(20);
    const auto symmetric = [&] { return static_cast<double>(random() >> 11) * 0x1p-52 - 1.0; };
    const auto length = [&] {
        return symmetric() * std::ldexp(1.0, static_cast<int>(random() % 6));
    };
    const auto corner = [&] { return 0.25 * static_cast<double>(random() % 8); };
    for (int i = 0; i < 400; ++i) {
        DXFDocument document;
        for (std::size_t entities = random() % 30; entities > 0; --entities) {
            switch (random() % 9) {
            case 0:
                document.addEntity(
                    std::make_shared<DXFCircle>(Point(corner(), corner(), 1), length()));
                break;
            case 1:
                document.addEntity(std::make_shared<DXFArc>(Point(corner(), corner(), 1), length(),
                                                            400 * symmetric(), 400 * symmetric()));
                break;
            case 2:
                document.addEntity(
                    std::make_shared<DXFArc>(Point(corner(), corner(), 1), corner(),
                                             90.0 * static_cast<double>(random() % 5),
                                             90.0 * static_cast<double>(random() % 5)));
                break;
            case 3:
                document.addEntity(polyline({{corner(), corner()},
                                             {length(), length()},
                                             {corner(), corner()},
                                             {corner(), corner()}},
                                            random() % 2 == 0 ? 1U : 0U));
                break;
            case 4: {
                auto spline = std::make_shared<DXFSpline>(2U, 0U, 0U, 0U, 0);
                for (int control = 0; control < 5; ++control) {
                    spline->appendControlPoint(corner(), corner(), 0, 1 + 0.5 * symmetric());
                }
                for (const double knot : {0.0, 0.0, 0.0, 1.0, 1.5, 3.0, 3.0, 3.0}) {
                    spline->appendKnot(knot);
                }
                document.addEntity(spline);
                break;
            }
            case 5:
                document.addEntity(std::make_shared<DXFPoint>(corner(), corner(), length()));
                break;
            case 6:
                document.addEntity(std::make_shared<DXFPointVector>(Points{
                    {corner(), 0, -corner()}, {length(), 1, length()}, {corner(), 0, corner()}}));
                break;
            default:
                document.addEntity(std::make_shared<DXFLine>(Point(corner(), corner(), 0),
                                                             Point(corner(), corner(), 0)));
            }
        }
        document.setup();
        ASSERT_TRUE(samePoints(document.getPoints(), plainPoints(document))) << "drawing " << i;
    }
}

} // namespace
