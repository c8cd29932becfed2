// Drawings of random runs full of near ties, against the plain procedure that goes through all
// runs after every join.

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "tests/support/PlainExtraction.h"
#include "tests/support/Random.h"
#include "tests/support/SamePoints.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace {

using Point = cv::Point3_<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// In [-1, 1), the same with every standard library.
double symmetric(Random& random) {
    return static_cast<double>(random() >> 11) * 0x1p-52 - 1.0;
}

/// Makes the ends of runs.
using EndSource = std::function<Point(Random&)>;

/// A drawing of runs of one to four points, a third of them closed, copied or reversed.
DXFDocument& fill(DXFDocument& document, Random& random, std::size_t runs, const EndSource& end) {
    std::vector<std::vector<Point>> made;
    for (std::size_t i = 0; i < runs; ++i) {
        std::vector<Point> run{end(random)};
        const std::size_t kind = random.below(12);
        if (kind == 0 && !made.empty()) {
            run = made[random.below(made.size())];
        } else if (kind == 1 && !made.empty()) {
            run = made[random.below(made.size())];
            std::reverse(run.begin(), run.end());
        } else if (kind == 2) {
            run.emplace_back(7.0, 8.0, 9.0 + static_cast<double>(i));
            run.push_back(run.front());
        } else if (kind != 3) {
            for (std::size_t between = random.below(3); between > 0; --between) {
                run.emplace_back(100.0, static_cast<double>(i), static_cast<double>(between));
            }
            run.push_back(end(random));
        }
        made.push_back(run);
        document.addEntity(std::make_shared<DXFPointVector>(run));
    }
    return document;
}

void expectPlainResult(std::uint64_t seed, std::size_t drawings, std::size_t largest,
                       const EndSource& end) {
    Random random(seed);
    for (std::size_t i = 0; i < drawings; ++i) {
        DXFDocument document;
        fill(document, random, 1 + random.below(largest), end);
        ASSERT_TRUE(samePoints(document.getPoints(), plainPoints(document))) << "drawing " << i;
    }
}

TEST(StitchingTest, RunsThatMeetInFewPlaces) {
    expectPlainResult(1, 1500, 60, [](Random& random) {
        return Point(static_cast<double>(random.below(4)), 0.0,
                     static_cast<double>(random.below(3)));
    });
}

TEST(StitchingTest, ContoursWithEveryEndNearOneOther) {
    expectPlainResult(2, 300, 150, [](Random& random) {
        return Point(static_cast<double>(random.below(12)) + 4e-4 * symmetric(random), 0.0,
                     static_cast<double>(random.below(12)) + 4e-4 * symmetric(random));
    });
}

TEST(StitchingTest, EndsJustInsideAndJustBeyondTheTolerance) {
    expectPlainResult(3, 1000, 60, [](Random& random) {
        const double steps[] = {0.0, 0.0009, 0.0011, 0.002, -0.0009, -0.0011, 0.001};
        const auto step = [&] { return steps[random.below(7)]; };
        return Point(static_cast<double>(random.below(2)) + step(), step(), step());
    });
}

TEST(StitchingTest, EndsWithinAFewBitsOfTheTolerance) {
    expectPlainResult(4, 1000, 60, [](Random& random) {
        Point point(0.001 * static_cast<double>(random.below(3)), 0.0,
                    0.001 * static_cast<double>(random.below(3)));
        for (std::size_t bits = random.below(4); bits > 0; --bits) {
            point.x = std::nextafter(point.x, symmetric(random));
            point.z = std::nextafter(point.z, symmetric(random));
        }
        return point;
    });
}

TEST(StitchingTest, EndsAllOverOneNeighbourhoodOfTheTolerance) {
    for (const double extent : {0.0003, 0.001, 0.002, 0.005}) {
        expectPlainResult(5, 250, 120, [extent](Random& random) {
            return Point(extent * symmetric(random), extent * symmetric(random),
                         extent * symmetric(random));
        });
    }
}

TEST(StitchingTest, EndsOnASphereOfTheToleranceAroundOnePoint) {
    expectPlainResult(6, 500, 120, [](Random& random) {
        if (random.below(3) == 0) {
            return Point(5.0, 0.0, 5.0);
        }
        const double angle = 3.2 * symmetric(random);
        const double radius = 0.001 + 1e-18 * static_cast<double>(random.below(3));
        return Point(5.0 + radius * std::cos(angle), 0.0, 5.0 + radius * std::sin(angle));
    });
}

TEST(StitchingTest, CoordinatesWithoutMeaningNeverJoinAndHugeOnesOnlyTheirEquals) {
    const double odd[] = {
        0.0,      -0.0,      0.0,        1e300,     -1e300,   1e300,  std::nextafter(1e300, 0.0),
        infinity, -infinity, notANumber, 1.7e308,   -1.7e308, 5e-324, -5e-324,
        1e-310,   0.0005,    1e16,       1e16 + 2.0};
    expectPlainResult(7, 2000, 50, [&odd](Random& random) {
        const auto coordinate = [&] {
            return random.below(2) == 0 ? 0.0 : odd[random.below(std::size(odd))];
        };
        return Point(coordinate(), coordinate(), coordinate());
    });
}

TEST(StitchingTest, EndsOfVeryDifferentMagnitude) {
    expectPlainResult(8, 500, 100, [](Random& random) {
        const auto coordinate = [&] {
            return std::ldexp(static_cast<double>(random.below(3)) - 1.0,
                              static_cast<int>(random.below(40)) - 20);
        };
        return Point(coordinate(), 0.0, coordinate());
    });
}

TEST(StitchingTest, CoordinatesCoarserThanTheTolerance) {
    expectPlainResult(9, 300, 80, [](Random& random) {
        return Point(1e15 + 0.125 * static_cast<double>(random.below(4)), 0.0,
                     -1e14 - 0.0156 * static_cast<double>(random.below(4)));
    });
}

TEST(StitchingTest, LargeDrawings) {
    for (const double extent : {0.02, 0.3, 30.0}) {
        expectPlainResult(11, 2, 1500, [extent](Random& random) {
            return Point(extent * symmetric(random), 0.0, extent * symmetric(random));
        });
        // Many equal coordinates.
        expectPlainResult(12, 2, 1500, [extent](Random& random) {
            return Point(extent * static_cast<double>(random.below(5)),
                         4e-4 * static_cast<double>(random.below(2)),
                         extent * std::floor(9.0 * symmetric(random)));
        });
    }
}

TEST(StitchingTest, MeshesOverManyPlacesWithAndWithoutStragglers) {
    // Whatever a search divides the plane into, ends meet on both sides of it: the mesh's lines lie
    // anywhere, and a straggler far out changes how the rest is divided.
    const double stragglers[] = {0.0, 1e4, -1e9, 1e300};
    for (const double width : {0.37, 1.0 / 3, 5.3}) {
        for (const double straggler : stragglers) {
            expectPlainResult(15, 1, 1500, [=](Random& random) {
                if (straggler != 0.0 && random.below(500) == 0) {
                    return Point(straggler * static_cast<double>(random.below(3)), 0.0, straggler);
                }
                const auto coordinate = [&] {
                    return width * static_cast<double>(random.below(40)) + 5e-4 * symmetric(random);
                };
                return Point(coordinate(), 0.0, coordinate());
            });
        }
    }
}

TEST(StitchingTest, EndsNearMultiplesOfAFractionOfAUnit) {
    // Where a search by cells of a grid would have the sides of its cells.
    for (const double fraction : {1.0, 0.0078125, 0.015625, 0.03125}) {
        for (const double start : {0.0, -3.0, 1e6, -1e9, 0x1p40, -0x1p40, 0x1p46}) {
            expectPlainResult(13, 20, 100, [=](Random& random) {
                const auto coordinate = [&] {
                    return start + fraction * (static_cast<double>(random.below(4)) - 2.0) +
                           6e-4 * symmetric(random);
                };
                return Point(coordinate(), coordinate(), coordinate());
            });
        }
    }
}

TEST(StitchingTest, ManyEndsCloseTogetherBesideContours) {
    for (const std::size_t places : {1U, 20U, 400U}) {
        expectPlainResult(14, 30, 300, [places](Random& random) {
            const double place = static_cast<double>(random.below(places));
            if (random.below(3) == 0) {
                return Point(place, 0.0, 0.0);
            }
            // Few of them meet.
            return Point(place + 0.05 * symmetric(random), 0.0, 0.05 * symmetric(random));
        });
    }
}

TEST(StitchingTest, ShuffledAndFlippedLinesOfALargeDrawing) {
    Random random(10);
    std::vector<std::shared_ptr<DXFEntity>> lines;
    for (int contour = 0; contour < 60; ++contour) {
        const Point corner(3.0 * contour, 0.0, 0.0);
        const Point corners[] = {corner, corner + Point(0.2, 0.0, 0.0),
                                 corner + Point(0.2, 0.2, 0.0), corner + Point(0.1, 0.3, 0.0),
                                 corner + Point(0.0, 0.2, 0.0)};
        for (std::size_t i = 0; i < 5; ++i) {
            Point start = corners[i];
            Point end = corners[(i + 1) % 5] + Point(3e-4 * symmetric(random), 0.0, 0.0);
            if (random.below(2) == 0) {
                std::swap(start, end);
            }
            lines.push_back(std::make_shared<DXFLine>(start, end));
        }
    }
    for (int order = 0; order < 20; ++order) {
        for (std::size_t i = lines.size() - 1; i > 0; --i) {
            std::swap(lines[i], lines[random.below(i + 1)]);
        }
        DXFDocument document;
        for (const auto& line : lines) {
            document.addEntity(line);
        }
        ASSERT_TRUE(samePoints(document.getPoints(), plainPoints(document))) << "order " << order;
    }
}

TEST(StitchingTest, LinesOfOnePointAmongLongerOnesAndOtherEntities) {
    Random random(16);
    for (int drawing = 0; drawing < 200; ++drawing) {
        const auto corner = [&] {
            return Point(0.06 * static_cast<double>(random.below(9)),
                         0.06 * static_cast<double>(random.below(9)), symmetric(random));
        };
        DXFDocument document;
        for (std::size_t i = 1 + random.below(80); i > 0; --i) {
            const Point start = corner();
            if (random.below(5) == 0) {
                document.addEntity(std::make_shared<DXFPoint>(start.x, start.y, start.z));
            } else {
                document.addEntity(std::make_shared<DXFLine>(start, corner()));
            }
        }
        ASSERT_TRUE(samePoints(document.getPoints(), plainPoints(document))) << drawing;
    }
}

/// A run of the given points, as they are to come out.
std::shared_ptr<DXFPointVector> run(std::vector<Point> points) {
    for (Point& point : points) {
        point.z = -point.z;
    }
    return std::make_shared<DXFPointVector>(points);
}

std::vector<Point> stitched(const std::vector<std::vector<Point>>& runs) {
    DXFDocument document;
    for (const std::vector<Point>& points : runs) {
        document.addEntity(run(points));
    }
    return document.getPoints();
}

const Point a(0, 0, 0);
const Point b(1, 0, 0);
const Point c(1, 0, 1);
const Point d(0, 0, 1);
const Point near(1.0, 0.0, 0.0005);

TEST(StitchingTest, ARunIsAppendedByItsFirstPoint) {
    EXPECT_TRUE(samePoints(stitched({{near, c}, {a, b}}), {a, b, c}));
}

TEST(StitchingTest, ARunIsAppendedBackwardsByItsLastPoint) {
    EXPECT_TRUE(samePoints(stitched({{c, d, near}, {a, b}}), {a, b, d, c}));
}

TEST(StitchingTest, ARunIsPutInFrontByItsLastPoint) {
    EXPECT_TRUE(samePoints(stitched({{c, near}, {b, a}}), {c, b, a}));
}

TEST(StitchingTest, ARunIsPutInFrontBackwardsByItsFirstPoint) {
    EXPECT_TRUE(samePoints(stitched({{near, d, c}, {b, a}}), {c, d, b, a}));
}

TEST(StitchingTest, TheLowestRunThatFitsEitherEndGoesFirst) {
    EXPECT_TRUE(samePoints(stitched({{c, a}, {d, a}, {b, c}, {a, b}}), {c, a, b, c, d, a}));
}

TEST(StitchingTest, ChainsGrowFromTheLastRunBackwards) {
    EXPECT_TRUE(samePoints(stitched({{a}, {b}, {c}}), {c, b, a}));
}

TEST(StitchingTest, ASinglePointThatFitsIsDroppedAndTheChainEndsWhereItDid) {
    // The second point is within the tolerance of the chain's end, the first only of the second.
    const Point step1(1.0009, 0, 0);
    const Point step2(1.0018, 0, 0);
    EXPECT_TRUE(samePoints(stitched({{step2}, {step1}, {a, b}}), {a, b, step2}));
}

TEST(StitchingTest, AClosedRunThatFitsMovesTheEndOfTheChain) {
    // As above, with two equal ends in the place of a single point.
    const Point step1(1.0009, 0, 0);
    const Point step2(1.0018, 0, 0);
    EXPECT_TRUE(samePoints(stitched({{step2}, {step1, c, step1}, {a, b}}), {a, b, c, step1}));
}

TEST(StitchingTest, ASinglePointIsAClosedContourOfItsOwn) {
    DXFDocument document;
    document.addEntity(run({b}));
    document.addEntity(run({Point(infinity, 0, 0)}));
    std::vector<DXFContour> contours;
    document.getPoints(contours);
    ASSERT_EQ(contours.size(), 2U);
    EXPECT_FALSE(contours[0].closed) << "infinitely far, from itself too";
    EXPECT_TRUE(contours[1].closed);
}

TEST(StitchingTest, AClosedContourEndsWithAnExactCopyOfItsFirstPoint) {
    const Point almostA(0.0005, 0, -0.0005);
    EXPECT_TRUE(samePoints(stitched({{a, b, c, almostA}}), {a, b, c, a}));
    EXPECT_TRUE(samePoints(stitched({{c, almostA}, {a, b, c}}), {a, b, c, a}));
}

TEST(StitchingTest, ClosingCopiesTheSignOfZero) {
    EXPECT_TRUE(samePoints(stitched({{Point(-0.0, -0.0, -0.0), b, Point(0.0, 0.0, 0.0)}}),
                           {Point(-0.0, -0.0, -0.0), b, Point(-0.0, -0.0, -0.0)}));
}

TEST(StitchingTest, EndsAtExactlyTheToleranceDoNotMeet) {
    EXPECT_EQ(stitched({{Point(0.001, 0, 0), b}, {d, a}}).size(), 4U) << "0.001 squared is 1e-06";
    EXPECT_EQ(stitched({{Point(std::nextafter(0.001, 0.0), 0, 0), b}, {d, a}}).size(), 3U);
}

TEST(StitchingTest, AllThreeCoordinatesCount) {
    EXPECT_EQ(stitched({{Point(0.0006, 0.0006, 0.0006), b}, {d, a}}).size(), 4U);
    EXPECT_EQ(stitched({{Point(0.0005, 0.0005, 0.0005), b}, {d, a}}).size(), 3U);
}

} // namespace
