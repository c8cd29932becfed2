#include "converters/detail/drawing/contours/ContourOrder.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Visits = std::vector<ContourVisit>;
using Order = Visits (*)(const std::vector<ContourShape>&, OrderCost*);

constexpr Order bothOrders[] = {nearestOrder, insideFirstOrder};

struct Contours {
    std::vector<std::vector<Point>> points;
    std::vector<bool> closed;

    void open(std::vector<Point> run) {
        points.push_back(std::move(run));
        closed.push_back(false);
    }
    void ring(std::vector<Point> corners) {
        corners.push_back(Point(corners.front()));
        points.push_back(std::move(corners));
        closed.push_back(true);
    }
    void polygon(double x, double y, double radius, int corners, double turn = 0.1) {
        std::vector<Point> run;
        for (int i = 0; i < corners; ++i) {
            const double angle = turn + fullTurn * i / corners;
            run.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle), 0});
        }
        ring(std::move(run));
    }
    std::size_t size() const { return points.size(); }

    std::vector<ContourShape> shapes() const {
        std::vector<ContourShape> result;
        for (std::size_t i = 0; i < points.size(); ++i) {
            result.push_back({points[i].data(), points[i].size(), closed[i]});
        }
        return result;
    }

    Point entryOf(const ContourVisit& visit) const {
        const std::vector<Point>& run = points[visit.contour];
        return closed[visit.contour] ? run[visit.firstPoint]
                                     : (visit.reversed ? run.back() : run.front());
    }
    Point exitOf(const ContourVisit& visit) const {
        const std::vector<Point>& run = points[visit.contour];
        return closed[visit.contour] ? run[visit.firstPoint]
                                     : (visit.reversed ? run.front() : run.back());
    }
    double wayOf(const Visits& visits) const {
        double way = 0;
        for (std::size_t i = 1; i < visits.size(); ++i) {
            way += distance(exitOf(visits[i - 1]), entryOf(visits[i]));
        }
        return way;
    }
};

void expectEachOnce(const Contours& contours, const Visits& visits) {
    ASSERT_EQ(visits.size(), contours.size());
    std::vector<bool> seen(contours.size(), false);
    for (const ContourVisit& visit : visits) {
        ASSERT_LT(visit.contour, contours.size());
        EXPECT_FALSE(seen[visit.contour]);
        seen[visit.contour] = true;
        const std::size_t size = contours.points[visit.contour].size();
        if (contours.closed[visit.contour]) {
            EXPECT_LT(visit.firstPoint, std::max<std::size_t>(size - 1, 1));
            EXPECT_FALSE(visit.reversed);
        } else {
            EXPECT_EQ(visit.firstPoint, 0U);
        }
    }
}

Contours randomContours(RandomCurves& random, std::size_t number) {
    Contours contours;
    for (std::size_t i = 0; i < number; ++i) {
        const Point at = random.point();
        switch (random.below(4)) {
        case 0:
            contours.open({at});
            break;
        case 1:
            contours.open({at, random.point(), random.point()});
            break;
        case 2:
            contours.ring({at});
            break;
        default:
            contours.polygon(at.x, at.y, random.within(0.1, 3),
                             3 + static_cast<int>(random.below(60)));
        }
    }
    return contours;
}

TEST(ContourOrderTest, EachContourIsThereOnce) {
    RandomCurves random(1);
    for (std::size_t number = 0; number < 200; number += 1 + number / 10) {
        const Contours contours = randomContours(random, number);
        for (const Order order : bothOrders) {
            expectEachOnce(contours, order(contours.shapes(), nullptr));
        }
    }
}

/// The shortest way over all orders, directions and starts, for few contours.
double shortestWay(const Contours& contours) {
    double shortest = infinity;
    std::vector<std::size_t> order(contours.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    do {
        // The shortest way up to each way to walk the contour before.
        std::vector<std::pair<ContourVisit, double>> before;
        for (const std::size_t contour : order) {
            std::vector<std::pair<ContourVisit, double>> here;
            const bool closed = contours.closed[contour];
            const std::size_t ways = closed ? contours.points[contour].size() - 1 : 2;
            for (std::size_t way = 0; way < ways; ++way) {
                const ContourVisit visit{contour, closed ? way : 0, !closed && way == 1};
                double least = before.empty() ? 0 : infinity;
                for (const auto& [other, length] : before) {
                    least = std::min(
                        least, length + distance(contours.exitOf(other), contours.entryOf(visit)));
                }
                here.emplace_back(visit, least);
            }
            before = std::move(here);
        }
        for (const auto& each : before) {
            shortest = std::min(shortest, each.second);
        }
    } while (std::next_permutation(order.begin(), order.end()));
    return shortest;
}

TEST(NearestOrderTest, FewContoursHaveNearlyTheShortestWays) {
    RandomCurves random(2);
    double sum = 0;
    double least = 0;
    for (int i = 0; i < 60; ++i) {
        Contours contours;
        for (std::size_t number = 3 + random.below(4); number > 0; --number) {
            const Point at = random.point();
            if (random.oneIn(2)) {
                contours.open({at, at + 0.3 * random.point()});
            } else {
                contours.polygon(at.x, at.y, random.within(0.1, 3), 5);
            }
        }
        const double way = contours.wayOf(nearestOrder(contours.shapes()));
        const double shortest = shortestWay(contours);
        EXPECT_GE(way, shortest * (1 - 1e-9));
        sum += way;
        least += shortest;
    }
    EXPECT_LE(sum, 1.1 * least);
}

TEST(NearestOrderTest, ManyPointsComeWithinATenthOfTheShortestWay) {
    RandomCurves random(3);
    Contours contours;
    for (int i = 0; i < 5000; ++i) {
        contours.open({{random.within(0, 1), random.within(0, 1), 0}});
    }
    // What the shortest way through many random points of a unit square tends to.
    const double shortest = 0.7124 * std::sqrt(5000.0);
    EXPECT_LE(contours.wayOf(nearestOrder(contours.shapes())), 1.1 * shortest);
}

TEST(NearestOrderTest, LinesAreTurnedAndRingsStartWhereTheWaysAreShort) {
    Contours contours;
    contours.open({{30, 0, 0}, {0, 0, 0}});
    contours.ring({{35, 9, 0}, {45, 9, 0}, {45, 0, 0}, {31, 0, 0}});
    contours.open({{90, 0, 0}, {46, 0, 0}});
    const Visits visits = nearestOrder(contours.shapes());
    EXPECT_EQ(visits[0].contour, 0U);
    EXPECT_TRUE(visits[0].reversed);
    EXPECT_EQ(visits[1].contour, 1U);
    EXPECT_TRUE(visits[1].firstPoint == 2 || visits[1].firstPoint == 3);
    EXPECT_TRUE(visits[2].reversed);
    EXPECT_NEAR(contours.wayOf(visits), 16, 1e-9);
}

TEST(NearestOrderTest, RingsStartOnlyWhereTheyMay) {
    Contours contours;
    contours.open({{0, 0, 0}});
    contours.polygon(10, 0, 5, 100);
    contours.polygon(30, 0, 5, 100);
    std::vector<ContourShape> shapes = contours.shapes();
    const std::size_t starts[] = {0, 50};
    shapes[1].starts = shapes[2].starts = starts;
    shapes[1].numberOfStarts = shapes[2].numberOfStarts = 2;
    for (const Order order : bothOrders) {
        for (const ContourVisit& visit : order(shapes, nullptr)) {
            EXPECT_EQ(visit.firstPoint % 50, 0U);
        }
    }
    EXPECT_EQ(nearestOrder(shapes)[1].firstPoint, 50U);
}

TEST(NearestOrderTest, HeightsCount) {
    Contours contours;
    for (const double z : {0.0, 10.0, 1.0, 11.0, 2.0, 12.0}) {
        contours.open({{1, 1, z}});
    }
    EXPECT_NEAR(contours.wayOf(nearestOrder(contours.shapes())), 12, 1e-9);
}

bool isInside(const Point& point, const std::vector<Point>& ring) {
    bool inside = false;
    for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
        const Point& a = ring[i];
        const Point& b = ring[i + 1];
        if ((a.y <= point.y) != (b.y <= point.y) &&
            a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x) > point.x) {
            inside = !inside;
        }
    }
    return inside;
}

/// Whether each of many points along a contour is in a closed one.
bool liesIn(const Contours& contours, std::size_t inner, std::size_t outer) {
    const std::vector<Point>& run = contours.points[inner];
    if (!contours.closed[outer] || inner == outer) {
        return false;
    }
    for (std::size_t i = 0; i < run.size(); ++i) {
        for (int part = 0; part < 20; ++part) {
            const Point& next = run[std::min(i + 1, run.size() - 1)];
            if (!isInside(between(run[i], next, part / 20.0), contours.points[outer])) {
                return false;
            }
        }
    }
    return true;
}

void expectInsideFirst(const Contours& contours) {
    const Visits visits = insideFirstOrder(contours.shapes());
    expectEachOnce(contours, visits);
    for (std::size_t i = 0; i < visits.size(); ++i) {
        for (std::size_t j = i + 1; j < visits.size(); ++j) {
            ASSERT_FALSE(liesIn(contours, visits[j].contour, visits[i].contour))
                << visits[j].contour << " lies in " << visits[i].contour;
        }
    }
}

TEST(InsideFirstOrderTest, WhatLiesInAContourComesBeforeIt) {
    RandomCurves random(4);
    for (int i = 0; i < 100; ++i) {
        expectInsideFirst(randomContours(random, 5 + random.below(60)));
    }
}

TEST(InsideFirstOrderTest, ContoursThatCrossKeepWhatLiesInBothBeforeBoth) {
    RandomCurves random(5);
    for (int i = 0; i < 100; ++i) {
        Contours contours;
        for (std::size_t number = 5 + random.below(60); number > 0; --number) {
            contours.polygon(random.within(0, 10), random.within(0, 10), random.within(0.1, 5), 12,
                             random.within(0, 1));
        }
        expectInsideFirst(contours);
    }
}

TEST(InsideFirstOrderTest, ContoursOfAnyShapeAreKept) {
    RandomCurves random(6);
    for (int i = 0; i < 60; ++i) {
        Contours contours;
        for (std::size_t number = 5 + random.below(30); number > 0; --number) {
            // A star with up to 60 tips, which others may lie between.
            std::vector<Point> star;
            const Point at = random.point();
            const std::size_t corners = 3 + random.below(120);
            const double size = random.within(0.1, 8);
            for (std::size_t j = 0; j < corners; ++j) {
                const double angle =
                    fullTurn * static_cast<double>(j) / static_cast<double>(corners);
                const double radius = size * (j % 2 == 0 ? 1 : random.within(0.2, 1));
                star.push_back(
                    {at.x + radius * std::cos(angle), at.y + radius * std::sin(angle), 0});
            }
            contours.ring(std::move(star));
            contours.open({random.point(), random.point()});
        }
        expectInsideFirst(contours);
    }
}

TEST(InsideFirstOrderTest, ManyCopiesOfOneContourDoNotHideWhatIsAround) {
    Contours contours;
    contours.polygon(0, 0, 100, 8);
    for (int i = 0; i < 200; ++i) {
        contours.polygon(0, 0, 10, 8);
    }
    contours.polygon(0, 0, 1, 8);
    expectInsideFirst(contours);
}

TEST(InsideFirstOrderTest, ContoursThatTouchFromInsideAreInside) {
    Contours contours;
    contours.ring({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    contours.ring({{0, 0, 0}, {5, 0, 0}, {5, 10, 0}, {0, 10, 0}});
    contours.open({{5, 5, 0}, {10, 5, 0}});
    contours.open({{0, 0, 0}, {5, 10, 0}});
    const Visits visits = insideFirstOrder(contours.shapes());
    EXPECT_EQ(visits[3].contour, 0U);
    const auto at = [&](std::size_t contour) {
        return std::find_if(visits.begin(), visits.end(),
                            [&](const ContourVisit& visit) { return visit.contour == contour; });
    };
    EXPECT_LT(at(3), at(1));
}

TEST(InsideFirstOrderTest, APartIsFinishedBeforeTheNext) {
    Contours contours;
    for (int part = 0; part < 30; ++part) {
        const double x = 20 * (part % 6);
        const double y = 20 * (part / 6);
        contours.polygon(x, y, 9.9, 30);
        for (int hole = 0; hole < 4; ++hole) {
            contours.polygon(x + 4 * (hole % 2) - 2, y + 4 * (hole / 2) - 2, 1.5, 12);
        }
    }
    const Visits visits = insideFirstOrder(contours.shapes());
    for (std::size_t i = 0; i < visits.size(); i += 5) {
        for (std::size_t j = i; j < i + 5; ++j) {
            EXPECT_EQ(visits[j].contour / 5, visits[i].contour / 5);
        }
        EXPECT_EQ(visits[i + 4].contour % 5, 0U);
    }
    // From part to part, at most from one side of a part to the other.
    EXPECT_LT(contours.wayOf(visits), 30 * 25 + 150 * 3);
}

TEST(InsideFirstOrderTest, RingsWithinRingsAreOneWayOutwards) {
    Contours contours;
    for (int i = 0; i < 3000; ++i) {
        contours.polygon(0, 0, 1 + i, 16);
    }
    const Visits visits = insideFirstOrder(contours.shapes());
    for (std::size_t i = 0; i < visits.size(); ++i) {
        ASSERT_EQ(visits[i].contour, i);
    }
    EXPECT_NEAR(contours.wayOf(visits), 2999, 1e-6);
}

bool areSame(const Visits& a, const Visits& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const ContourVisit& one, const ContourVisit& other) {
                          return one.contour == other.contour &&
                                 one.firstPoint == other.firstPoint &&
                                 one.reversed == other.reversed;
                      });
}

TEST(ContourOrderTest, TheLastBitsOfCoordinatesDecideNothing) {
    RandomCurves random(7);
    Contours contours;
    // As full of ties as can be.
    for (int i = 0; i < 400; ++i) {
        contours.polygon(10 * (i % 20), 10 * (i / 20), i % 3 == 0 ? 5 : 2, 24, 0);
        contours.open(
            {{10.0 * (i % 20), 10.0 * (i / 20), 0}, {10.0 * (i % 20) + 5, 10.0 * (i / 20), 0}});
    }
    Contours nearly = contours;
    for (std::vector<Point>& run : nearly.points) {
        for (Point& point : run) {
            point.x = std::nextafter(point.x, random.within(-1e9, 1e9));
            point.y = std::nextafter(point.y, random.within(-1e9, 1e9));
        }
    }
    for (const Order order : bothOrders) {
        EXPECT_TRUE(areSame(order(contours.shapes(), nullptr), order(nearly.shapes(), nullptr)));
    }
}

TEST(ContourOrderTest, WhatIsNoNumberIsSomewhere) {
    Contours contours;
    for (int i = 0; i < 300; ++i) {
        const double strange[] = {notANumber, infinity, -infinity, 1e308, -1e308, 5e-324, 0, 1};
        const auto number = [&](int place) { return strange[(i * 7 + place * place) % 8]; };
        contours.open({{number(1), number(2), number(3)}, {number(4), number(5), number(6)}});
        contours.ring(
            {{number(2), number(3), 0}, {number(5), number(7), 0}, {number(8), number(9), 0}});
        contours.polygon(0, 0, number(4), 6);
    }
    for (const Order order : bothOrders) {
        expectEachOnce(contours, order(contours.shapes(), nullptr));
    }
}

TEST(ContourOrderTest, TinyAndHugeDrawingsAreOrderedAsOthers) {
    for (const double scale : {1e-280, 1e-250, 1.0, 1e250, 1e307}) {
        Contours contours;
        for (const double x : {0.0, 3.0, 1.0, 4.0, 2.0}) {
            contours.open({{scale * x, 0, 0}});
        }
        const Visits visits = nearestOrder(contours.shapes());
        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_EQ(contours.points[visits[i].contour][0].x, scale * static_cast<double>(i));
        }
    }
}

/// The cost of both orders, in looks for each point and contour.
double costOf(const Contours& contours) {
    std::size_t size = contours.size();
    for (const std::vector<Point>& run : contours.points) {
        size += run.size();
    }
    OrderCost cost;
    for (const Order order : bothOrders) {
        expectEachOnce(contours, order(contours.shapes(), &cost));
    }
    return static_cast<double>(cost.looks) / static_cast<double>(size);
}

/// Contours made one by one.
Contours made(int number, const std::function<void(Contours&, int)>& make) {
    Contours contours;
    for (int i = 0; i < number; ++i) {
        make(contours, i);
    }
    return contours;
}

// Fewer with sanitizers, which take ten times as long.
#ifdef CONVERTERS_ADDRESS_SANITIZER
constexpr int manyContours = 10'000;
#else
constexpr int manyContours = 100'000;
#endif

TEST(ContourOrderTest, HundredThousandContoursCostLittleForEach) {
    RandomCurves random(8);
    const auto spread = [&] { return random.within(0, 3000); };
    EXPECT_LT(costOf(made(manyContours,
                          [&](Contours& all, int) {
                              all.polygon(spread(), spread(), random.within(0.5, 5), 4);
                          })),
              600);
    EXPECT_LT(costOf(made(manyContours,
                          [&](Contours& all, int) {
                              const Point at(spread(), spread(), 0);
                              all.open({at, at + random.point()});
                          })),
              2500);
}

TEST(ContourOrderTest, HostileDrawingsCostNoMoreThanLargerOnes) {
    RandomCurves random(9);
    constexpr int number = 10'000;
    constexpr double bound = 4000;
    const auto expectCheap = [&](const std::function<void(Contours&, int)>& make) {
        EXPECT_LT(costOf(made(number, make)), bound);
    };
    // Equally far from where the walk begins, and from each other.
    expectCheap([](Contours& all, int i) {
        const double angle = fullTurn * i / number;
        all.open({{std::cos(angle), std::sin(angle), 0}});
    });
    expectCheap([](Contours& all, int) { all.open({{1, 1, 0}, {1, 1, 0}}); });
    expectCheap([](Contours& all, int) { all.polygon(0, 0, 1, 4); });
    expectCheap([](Contours& all, int i) { all.polygon(0, 0, 1 + i, 4); });
    expectCheap([](Contours& all, int i) { all.polygon(1e-3 * i, 0, number, 4); });
    expectCheap([&](Contours& all, int) {
        all.polygon(random.within(0, 10), random.within(0, 10), random.within(1, 10), 4);
    });
    expectCheap([](Contours& all, int i) {
        all.ring({{0, 1.0 * i, 0}, {1e6, 1.0 * i, 0}, {1e6, i + 0.5, 0}, {0, i + 0.5, 0}});
    });
    // Every ray crosses every edge.
    expectCheap([&](Contours& all, int i) {
        if (i == 0) {
            std::vector<Point> zigzag{{number, 2000, 0}, {0, 2000, 0}};
            for (int j = 0; j < number; ++j) {
                zigzag.push_back({1.0 * j, j % 2 == 0 ? 0 : 1000.0, 0});
            }
            all.ring(std::move(zigzag));
        } else {
            all.polygon(random.within(0, number), random.within(0, 1000), 0.01, 4);
        }
    });
}

} // namespace
} // namespace converters::drawing
