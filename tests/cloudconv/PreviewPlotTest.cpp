// What cloudconv preview draws, without the drawing: axes, scale, colours, paths, labels, scenes.

#include "converters/check/NearMisses.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPointVector.h"
#include "tests/support/PlyClouds.h"
#include "tools/cloudconv/LeftOutText.h"
#include "tools/cloudconv/Units.h"
#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/preview/CloudScene.h"
#include "tools/cloudconv/preview/DrawingScene.h"
#include "tools/cloudconv/preview/DrawingStyle.h"
#include "tools/cloudconv/preview/LabelPlaces.h"
#include "tools/cloudconv/preview/PixelPath.h"
#include "tools/cloudconv/preview/PlotColours.h"
#include "tools/cloudconv/preview/PlotScale.h"
#include "tools/cloudconv/preview/PlotTicks.h"
#include "tools/cloudconv/preview/SparsePlaces.h"
#include "tools/cloudconv/preview/WalkPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

namespace {

using ::testing::ElementsAre;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> labelsOf(double low, double high, int most) {
    std::vector<std::string> labels;
    for (const PlotTick& tick : ticksOf({low, high}, most).ticks) {
        labels.push_back(tick.label);
    }
    return labels;
}

TEST(PlotTicks, AreMultiplesOfOneTwoOrFive) {
    EXPECT_THAT(labelsOf(0, 10, 10),
                ElementsAre("0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"));
    EXPECT_THAT(labelsOf(0, 10, 6), ElementsAre("0", "2", "4", "6", "8", "10"));
    EXPECT_THAT(labelsOf(0, 10, 2), ElementsAre("0", "5", "10"));
    EXPECT_THAT(labelsOf(0, 10, 1), ElementsAre("0", "10"));
    EXPECT_THAT(labelsOf(-0.3, 0.3, 6),
                ElementsAre("-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2", "0.3"));
    EXPECT_THAT(labelsOf(0.0011, 0.0029, 4), ElementsAre("0.0015", "0.0020", "0.0025"));
    EXPECT_THAT(labelsOf(950, 2100, 3), ElementsAre("1000", "1500", "2000"));
}

TEST(PlotTicks, OfNumbersFarFromZeroCountFromARoundNumber) {
    const PlotTicks ticks = ticksOf({4512000.5, 4512003.25}, 4);
    EXPECT_EQ(ticks.origin, 4512000.0);
    ASSERT_EQ(ticks.ticks.size(), 3U);
    EXPECT_EQ(ticks.ticks[0].label, "1");
    EXPECT_EQ(ticks.ticks[0].value, 4512001.0);
    EXPECT_EQ(ticksOf({-4512003.25, -4512000.5}, 4).origin, -4512010.0);
    EXPECT_EQ(ticksOf({100000, 200000}, 4).origin, 0.0);
}

TEST(PlotTicks, OfHugeAndTinyNumbersHaveExponents) {
    EXPECT_THAT(labelsOf(0, 3e300, 3), ElementsAre("0", "1e+300", "2e+300", "3e+300"));
    EXPECT_THAT(labelsOf(0, 2.5e-200, 5),
                ElementsAre("0", "5e-201", "1e-200", "1.5e-200", "2e-200", "2.5e-200"));
    EXPECT_THAT(labelsOf(0, 3e6, 3), ElementsAre("0", "1e+06", "2e+06", "3e+06"));
}

TEST(PlotTicks, AreFewRoundAndInsideForAnyRange) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponent(-280, 290);
    std::uniform_real_distribution<double> relative(-10, 1);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int i = 0; i < 20000; ++i) {
        const double centre = unit(random) * std::pow(10.0, exponent(random));
        const double half = std::abs(centre) * std::pow(10.0, relative(random)) + 1e-290;
        const Interval shown = {centre - half, centre + half};
        const int most = 1 + i % 12;
        const PlotTicks ticks = ticksOf(shown, most);
        ASSERT_LE(ticks.ticks.size(), static_cast<std::size_t>(most) + 1);
        ASSERT_GE(ticks.ticks.size(), most == 1 ? 0U : static_cast<std::size_t>(most) / 3);
        for (std::size_t k = 0; k < ticks.ticks.size(); ++k) {
            const double slack = half * 1e-4;
            ASSERT_GE(ticks.ticks[k].value, shown.low - slack);
            ASSERT_LE(ticks.ticks[k].value, shown.high + slack);
            ASSERT_LE(ticks.ticks[k].label.size(), 14U) << ticks.ticks[k].label;
            // The label says what the mark stands for.
            ASSERT_NEAR(std::strtod(ticks.ticks[k].label.c_str(), nullptr) + ticks.origin,
                        ticks.ticks[k].value, half * 1e-3);
            ASSERT_TRUE(k == 0 || ticks.ticks[k].label != ticks.ticks[k - 1].label);
        }
    }
}

constexpr Rectangle frame = {100, 50, 400, 200};

TEST(PlotScale, HasUnitsOfOneLengthInXAndY) {
    const PlotScale wide({{0, 40}, {0, 10}}, frame, 0);
    EXPECT_EQ(wide.pixel({0, 0}).x, 100);
    EXPECT_EQ(wide.pixel({40, 0}).x, 500);
    EXPECT_EQ(wide.pixel({0, 10}).y - wide.pixel({0, 0}).y, -100);
    EXPECT_EQ(wide.pixel({20, 5}).y, 150);
    EXPECT_EQ(wide.shownY().low, -5);
    EXPECT_EQ(wide.shownY().high, 15);
    const PlotScale high({{0, 1}, {0, 10}}, frame, 20);
    EXPECT_DOUBLE_EQ(high.pixel({0, 10}).y, 70);
    EXPECT_DOUBLE_EQ(high.pixel({0, 0}).y, 230);
    EXPECT_DOUBLE_EQ(high.pixel({1, 0}).x - high.pixel({0, 0}).x, 16);
}

TEST(PlotScale, ShowsASinglePlaceInTheMiddleOfTwoUnits) {
    const PlotScale scale({{5, 5}, {7, 7}}, frame, 0);
    EXPECT_EQ(scale.pixel({5, 7}).x, 300);
    EXPECT_EQ(scale.pixel({5, 7}).y, 150);
    EXPECT_EQ(scale.shownY().low, 6);
    EXPECT_EQ(scale.shownY().high, 8);
}

TEST(PlotScale, IsFiniteForAnyBounds) {
    const double numbers[] = {-1e300, -1e15, -1, -1e-300, 0, 5e-324, 1e-300, 1e-5, 1, 1e15, 1e300};
    for (const double a : numbers) {
        for (const double b : numbers) {
            for (const double c : {a, std::nextafter(a, b), b}) {
                const PlotScale scale({{std::min(a, c), std::max(a, c)}, {b, b}}, frame, 10);
                const Place pixel = scale.pixel({c, b});
                EXPECT_GE(pixel.x, frame.left);
                EXPECT_LE(pixel.x, frame.right());
                EXPECT_NEAR(pixel.y, 150, 1e-6);
                for (const Interval& shown : {scale.shownX(), scale.shownY()}) {
                    EXPECT_TRUE(std::isfinite(shown.low) && std::isfinite(shown.high));
                    EXPECT_LT(shown.low, shown.high);
                    EXPECT_LE(ticksOf(shown, 5).ticks.size(), 6U);
                }
            }
        }
    }
}

double brightness(const Colour& colour) {
    return 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue;
}

double difference(const Colour& a, const Colour& b) {
    return std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
}

TEST(PlotColours, OfContoursDifferAndComeAgain) {
    for (std::size_t i = 0; i < contourColourCount; ++i) {
        EXPECT_LT(brightness(contourColour(i)), 0.75) << "on white";
        EXPECT_EQ(difference(contourColour(i), contourColour(i + contourColourCount)), 0.0);
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_GT(difference(contourColour(i), contourColour(j)), 0.3);
        }
    }
    EXPECT_EQ(contourColour(0).blue, 0xB2 / 255.0);
}

TEST(PlotColours, OfTheScaleGrowLighter) {
    for (int i = 0; i < 100; ++i) {
        EXPECT_LT(brightness(scaleColour(i / 100.0)), brightness(scaleColour((i + 1) / 100.0)));
    }
    EXPECT_EQ(difference(scaleColour(-1), scaleColour(0)), 0.0);
    EXPECT_EQ(difference(scaleColour(7), scaleColour(1)), 0.0);
    EXPECT_EQ(difference(scaleColour(nan), scaleColour(0)), 0.0);
}

/// One pixel a unit, y upwards from 200.
const PlotScale& plainScale() {
    static const PlotScale scale({{0, 400}, {0, 200}}, {0, 0, 400, 200}, 0);
    return scale;
}

std::vector<Place> sampled(const Place& from, const Place& to, int steps) {
    std::vector<Place> places;
    for (int i = 0; i <= steps; ++i) {
        const double share = static_cast<double>(i) / steps;
        places.push_back({from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)});
    }
    return places;
}

TEST(PixelPath, OfASampledLineHasItsEnds) {
    const std::vector<Place> path = pixelPath(sampled({10, 10}, {300, 150}, 5000), plainScale());
    ASSERT_EQ(path.size(), 2U);
    EXPECT_EQ(path[0].x, 10);
    EXPECT_EQ(path[0].y, 190);
    EXPECT_EQ(path[1].x, 300);
    EXPECT_EQ(path[1].y, 50);
}

TEST(PixelPath, KeepsCornersAndTheWayBack) {
    std::vector<Place> places = sampled({10, 10}, {100, 10}, 90);
    for (const Place& place : sampled({100, 10}, {100, 50}, 40)) {
        places.push_back(place);
    }
    for (const Place& place : sampled({100, 50}, {100, 20}, 30)) {
        places.push_back(place);
    }
    const std::vector<Place> path = pixelPath(places, plainScale());
    ASSERT_EQ(path.size(), 4U);
    EXPECT_EQ(path[1].x, 100);
    EXPECT_EQ(path[1].y, 190);
    EXPECT_EQ(path[2].y, 150);
    EXPECT_EQ(path[3].y, 180);
}

/// How far a place is from the nearest line of a path.
double distanceFrom(const std::vector<Place>& path, const Place& place) {
    double least = infinity;
    for (std::size_t i = 1; i < path.size(); ++i) {
        const Place way = {path[i].x - path[i - 1].x, path[i].y - path[i - 1].y};
        const double length = way.x * way.x + way.y * way.y;
        const double along = (place.x - path[i - 1].x) * way.x + (place.y - path[i - 1].y) * way.y;
        const double share = length > 0.0 ? std::min(std::max(along / length, 0.0), 1.0) : 0.0;
        least = std::min(least, distanceOf(place, {path[i - 1].x + share * way.x,
                                                   path[i - 1].y + share * way.y}));
    }
    return least;
}

TEST(PixelPath, StaysWithinATenthOfAPixel) {
    std::mt19937_64 random(11);
    for (int run = 0; run < 60; ++run) {
        std::normal_distribution<double> turn(0.0, run % 2 == 0 ? 0.02 : 0.7);
        std::uniform_real_distribution<double> step(0.01, run % 3 == 0 ? 0.1 : 4.0);
        std::vector<Place> places = {{200, 100}};
        double direction = 0.0;
        for (int i = 0; i < 500; ++i) {
            direction += turn(random);
            const double length = step(random);
            places.push_back({places.back().x + length * std::cos(direction),
                              places.back().y + length * std::sin(direction)});
        }
        const std::vector<Place> path = pixelPath(places, plainScale());
        EXPECT_LE(path.size(), places.size());
        for (const Place& place : places) {
            ASSERT_LE(distanceFrom(path, plainScale().pixel(place)), 0.11);
        }
    }
}

TEST(PixelPath, IsBrokenByPlacesThatCannotBeShown) {
    const std::vector<Place> path = pixelPath(
        {{nan, 0}, {1, 1}, {2, 1}, {0, infinity}, {nan, nan}, {5, 5}, {1e301, 0}}, plainScale());
    ASSERT_EQ(path.size(), 6U);
    EXPECT_FALSE(canBeShown(path[2]));
    EXPECT_EQ(path[3].x, 5);
    EXPECT_FALSE(canBeShown(path[5]));
    EXPECT_TRUE(pixelPath({}, plainScale()).empty());
    EXPECT_TRUE(pixelPath({{nan, nan}}, plainScale()).empty());
}

TEST(Arrows, PointAlongTheWalkInEvenSteps) {
    const std::vector<Arrow> arrows = arrowsAlong({{0, 0}, {100, 0}, {100, 200}});
    ASSERT_EQ(arrows.size(), 3U);
    EXPECT_EQ(arrows[0].place.x, 45);
    EXPECT_EQ(arrows[0].direction.x, 1);
    EXPECT_DOUBLE_EQ(arrows[1].place.y, 55);
    EXPECT_EQ(arrows[1].direction.y, 1);
    EXPECT_DOUBLE_EQ(arrows[2].place.y, 165);
}

TEST(Arrows, AreInTheMiddleOfShortPathsAndNotOnTheShortest) {
    ASSERT_EQ(arrowsAlong({{0, 0}, {20, 0}}).size(), 1U);
    EXPECT_EQ(arrowsAlong({{0, 0}, {20, 0}})[0].place.x, 10);
    EXPECT_TRUE(arrowsAlong({{0, 0}, {15, 0}}).empty());
    EXPECT_TRUE(arrowsAlong({}).empty());
    EXPECT_TRUE(arrowsAlong({{0, 0}, {nan, nan}, {500, 0}}).empty());
}

TEST(LabelPlaces, DoNotOverlapAndStayInside) {
    const Rectangle area = {0, 0, 300, 200};
    LabelPlaces places(area);
    const Place centre = {150, 100};
    places.avoid(centre, 10);
    std::vector<Rectangle> labels;
    while (const std::optional<Rectangle> label = places.take(centre, 12, 40, 15)) {
        for (const Rectangle& other : labels) {
            EXPECT_TRUE(label->left >= other.right() || other.left >= label->right() ||
                        label->top >= other.bottom() || other.top >= label->bottom());
        }
        EXPECT_TRUE(label->right() <= 140 || label->left >= 160 || label->bottom() <= 90 ||
                    label->top >= 110);
        labels.push_back(*label);
        ASSERT_LT(labels.size(), 100U);
    }
    EXPECT_GE(labels.size(), 4U);
    EXPECT_EQ(labels[0].left, 162) << "first to the right";
}

TEST(LabelPlaces, AreOutsideALargerMarkAround) {
    LabelPlaces places({0, 0, 300, 200});
    places.avoid({150.2, 100.3}, 15);
    EXPECT_TRUE(places.take({150, 100}, 7.5, 14, 15).has_value());
}

TEST(LabelPlaces, AreLeftOfAMarkAtTheRightEdgeAndNoneInTooSmallAnArea) {
    LabelPlaces places({0, 0, 300, 200});
    EXPECT_EQ(places.take({295, 100}, 5, 40, 15)->right(), 290);
    LabelPlaces small({0, 0, 30, 200});
    EXPECT_FALSE(small.take({15, 100}, 5, 40, 15).has_value());
}

TEST(SparsePlaces, AreOneForEachCell) {
    SparsePlaces sparse(4.0);
    EXPECT_TRUE(sparse.take({1, 1}));
    EXPECT_FALSE(sparse.take({3.9, 3.9}));
    EXPECT_TRUE(sparse.take({4, 1}));
    EXPECT_TRUE(sparse.take({1, 4}));
    EXPECT_TRUE(sparse.take({-1, 1}));
    EXPECT_TRUE(sparse.take({1, -1}));
}

TEST(Wording, MakesAnyTextPrintableUtf8) {
    EXPECT_EQ(asPrintableUtf8("Gr\xC3\xBC\xC3\x9F"
                              "e \xE2\x82\xAC \xF0\x9F\x98\x80"),
              "Gr\xC3\xBC\xC3\x9F"
              "e \xE2\x82\xAC \xF0\x9F\x98\x80");
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ(asPrintableUtf8("gr\xFCn"), "gr" + mark + "n");
    EXPECT_EQ(asPrintableUtf8("\xC3"), mark);
    EXPECT_EQ(asPrintableUtf8("\xC0\xAF"), mark + mark);
    EXPECT_EQ(asPrintableUtf8("\xE0\x80\xAF"), mark + mark + mark);
    EXPECT_EQ(asPrintableUtf8("\xED\xA0\x80"), mark + mark + mark);
    EXPECT_EQ(asPrintableUtf8("\xEF\xBF\xBF"), mark + mark + mark);
    EXPECT_EQ(asPrintableUtf8("\xF4\x90\x80\x80"), mark + mark + mark + mark);
    EXPECT_EQ(asPrintableUtf8("a\nb\x1B"), "a\\x0Ab\\x1B");
    EXPECT_EQ(counted(1, "gap"), "1 gap");
    EXPECT_EQ(counted(0, "gap"), "0 gaps");
}

TEST(Wording, GivesNumbersAsManyDigitsAsAreAskedFor) {
    EXPECT_EQ(numberText(0.25, 2), "0.25");
    EXPECT_EQ(numberText(0.256, 2), "0.26");
    EXPECT_EQ(numberText(3.0, 9), "3");
    EXPECT_EQ(numberText(1234567.0, 6), "1.23457e+06");
    EXPECT_EQ(numberText(-1.7976931348623157e308, 17), "-1.7976931348623157e+308");
}

constexpr float nanf = std::numeric_limits<float>::quiet_NaN();
constexpr float inff = std::numeric_limits<float>::infinity();

TEST(CloudScene, LeavesOutPointsWithoutAPlaceAndValuesThatAreNone) {
    PreviewScan contents;
    contents.cloud.push_back(point(1, 2, 3, 4));
    contents.cloud.push_back(point(nanf, 2, 3, 400));
    contents.cloud.push_back(point(1, 2, inff, 400));
    contents.cloud.push_back(point(-5, 7, 9, nanf));
    contents.cloud.push_back(point(0, 0, 0, -2));
    const CloudScene scene(contents, CloudView::Top, CloudColour::Intensity);
    EXPECT_EQ(scene.pointsWithoutPlace(), 2U);
    EXPECT_EQ(scene.bounds().x.low, -5);
    EXPECT_EQ(scene.bounds().y.high, 7);
    EXPECT_EQ(scene.values().low, -2);
    EXPECT_EQ(scene.values().high, 4);
    EXPECT_EQ(scene.sides()[2].low, 0);
    EXPECT_EQ(scene.sides()[2].high, 9);
    EXPECT_EQ(CloudScene(contents, CloudView::Top, CloudColour::Height).values().high, 9);
    EXPECT_TRUE(CloudScene(PreviewScan(), CloudView::Iso, CloudColour::Rgb).bounds().isEmpty());
}

std::uint32_t cellAt(const Image& image, const PlotScale& scale, const Place& place) {
    const Place pixel = scale.pixel(place);
    const auto column = static_cast<std::size_t>(
        (pixel.x - scale.frame().left) / scale.frame().width * static_cast<double>(image.columns));
    const auto row = static_cast<std::size_t>((pixel.y - scale.frame().top) / scale.frame().height *
                                              static_cast<double>(image.rows));
    return image.cells.at(row * image.columns + column);
}

TEST(CloudScene, ShowsTheHighestPointOfEachPlace) {
    PreviewScan contents;
    for (const float height : {1.0F, 3.0F, 2.0F}) {
        contents.cloud.push_back(point(0, 0, height, height));
    }
    contents.cloud.push_back(point(10, 5, -9, 1));
    contents.cloud.push_back(point(10, 0, -9, nanf));
    const CloudScene scene(contents, CloudView::Top, CloudColour::Intensity);
    for (const unsigned fineness : {1U, 3U}) {
        const PlotScale scale(scene.bounds(), frame, 20);
        const Image image = scene.view(scale, fineness);
        EXPECT_EQ(image.columns, 400 * fineness);
        EXPECT_EQ(image.rows, 200 * fineness);
        EXPECT_EQ(cellAt(image, scale, {0, 0}), 0xFFFDE725U);
        EXPECT_EQ(cellAt(image, scale, {10, 5}), 0xFF440154U);
        EXPECT_EQ(cellAt(image, scale, {10, 0}), 0xFF999999U);
        EXPECT_EQ(cellAt(image, scale, {5, 2}), 0U);
    }
}

TEST(CloudScene, ShowsEveryPointOfAThinCloud) {
    PreviewScan contents;
    for (int i = 0; i < 1000; ++i) {
        contents.cloud.push_back(point(static_cast<float>(i), static_cast<float>(i % 7), 0, 1));
    }
    const CloudScene scene(contents, CloudView::Top, CloudColour::Intensity);
    const PlotScale scale(scene.bounds(), frame, 2);
    const Image image = scene.view(scale, 1);
    for (const pcl::PointXYZI& point : contents.cloud) {
        EXPECT_NE(
            cellAt(image, scale, {static_cast<double>(point.x), static_cast<double>(point.y)}), 0U);
    }
}

TEST(CloudScene, IsSeenFromFourSides) {
    PreviewScan scan;
    scan.cloud.push_back(point(1, 2, 3, 4));
    scan.shift = {1000, 0, 0};
    const auto boundsOf = [&](CloudView view) {
        return CloudScene(scan, view, CloudColour::Intensity).bounds();
    };
    EXPECT_EQ(boundsOf(CloudView::Top).x.low, 1001);
    EXPECT_EQ(boundsOf(CloudView::Top).y.low, 2);
    EXPECT_EQ(boundsOf(CloudView::Front).x.low, 1001);
    EXPECT_EQ(boundsOf(CloudView::Front).y.low, 3);
    EXPECT_EQ(boundsOf(CloudView::Side).x.low, 2);
    EXPECT_EQ(boundsOf(CloudView::Side).y.low, 3);
    EXPECT_EQ(CloudProjection(CloudView::Side).horizontalName(), "y");
    EXPECT_EQ(CloudProjection(CloudView::Iso).horizontalName(), "");
}

TEST(CloudScene, FromACornerHasSidesOfOneLengthEqual) {
    const CloudProjection projection(CloudView::Iso);
    const Place origin = projection.placeOf(point(0, 0, 0, 0));
    const double x = distanceOf(origin, projection.placeOf(point(1, 0, 0, 0)));
    EXPECT_NEAR(distanceOf(origin, projection.placeOf(point(0, 1, 0, 0))), x, 1e-12);
    EXPECT_NEAR(distanceOf(origin, projection.placeOf(point(0, 0, 1, 0))), x, 1e-12);
    EXPECT_GT(projection.placeOf(point(0, 0, 1, 0)).y, 0) << "up is up";
    EXPECT_GT(projection.nearness(point(1, -1, 1, 0)), 1);
}

TEST(CloudScene, OfAnySideShowsWhatIsNearestToTheEye) {
    PreviewScan scan;
    // Each hides the other one from one of the sides.
    scan.cloud.push_back(point(0, 0, 0, 0));
    scan.cloud.push_back(point(0, 5, 0, 0));
    scan.cloud.push_back(point(7, 0, 0, 0));
    scan.colours = {0x112233, 0x445566, 0x778899};
    const CloudScene front(scan, CloudView::Front, CloudColour::Rgb);
    const PlotScale frontScale(front.bounds(), frame, 20);
    EXPECT_EQ(cellAt(front.view(frontScale, 1), frontScale, {0, 0}), 0xFF112233U);
    EXPECT_EQ(cellAt(front.view(frontScale, 1), frontScale, {7, 0}), 0xFF778899U);
    const CloudScene side(scan, CloudView::Side, CloudColour::Rgb);
    const PlotScale sideScale(side.bounds(), frame, 20);
    EXPECT_EQ(cellAt(side.view(sideScale, 1), sideScale, {0, 0}), 0xFF778899U);
    EXPECT_EQ(cellAt(side.view(sideScale, 1), sideScale, {5, 0}), 0xFF445566U);
}

using Path = converters::DrawingPath;
using Points = std::vector<cv::Point3_<double>>;

/// The walk of a drawing of these entities, as a path.
Path walkOf(const std::vector<std::shared_ptr<DXFEntity>>& entities) {
    DxfContents contents;
    contents.document = std::make_shared<DXFDocument>();
    for (const std::shared_ptr<DXFEntity>& entity : entities) {
        contents.document->addEntity(entity);
    }
    contents.document->setup();
    contents.points = contents.document->getPoints(contents.contours, contents.pieces);
    return pathOfWalk(contents, converters::LengthUnit::millimetre);
}

std::shared_ptr<DXFEntity> lineOf(double x1, double y1, double x2, double y2) {
    return std::make_shared<DXFLine>(cv::Point3_<double>(x1, y1, 0),
                                     cv::Point3_<double>(x2, y2, 0));
}

/// Adds a contour of straight lines, or of points.
void addContour(Path& path, const Points& points, std::uint32_t layer, bool ofPoints = false) {
    converters::PathContour contour = {};
    contour.firstPoint = path.points.size();
    path.points.insert(path.points.end(), points.begin(), points.end());
    contour.endPoint = path.points.size();
    contour.firstPiece = path.pieces.size();
    contour.endPiece = contour.firstPiece + 1;
    path.pieces.push_back(
        {contour.firstPoint, contour.endPoint - 1, 0, 0,
         ofPoints ? converters::PathCurveKind::point : converters::PathCurveKind::line});
    contour.length = 1;
    contour.layer = layer;
    contour.closed = points.size() > 2 && points.front() == points.back();
    path.contours.push_back(contour);
}

/// So many lines, in turns on so many layers.
Path linesOn(std::size_t lines, std::uint32_t layers) {
    Path path;
    for (std::uint32_t i = 0; i < layers; ++i) {
        path.layers.push_back({"layer " + std::to_string(i), 7, false, false});
    }
    for (std::size_t i = 0; i < lines; ++i) {
        const auto x = static_cast<double>(i);
        addContour(path, {{x, 0, 0}, {x, 5, 0}}, static_cast<std::uint32_t>(i) % layers);
    }
    return path;
}

TEST(WalkPath, HasTheContoursOfTheWalkInThePlaneOfTheDrawing) {
    const auto circle = std::make_shared<DXFCircle>(cv::Point3_<double>(20, 30, 0), 2);
    const auto single = std::make_shared<DXFPointVector>(Points{{-7, -8, 9}});
    const Path path = walkOf({lineOf(0, 0, 1, 0), lineOf(1, 0, 1, 1), lineOf(1, 1, 0, 0), circle,
                              lineOf(5, 5, 6, 7), single});
    ASSERT_EQ(path.contours.size(), 4U);
    std::vector<std::string> kinds;
    for (const converters::PathContour& contour : path.contours) {
        kinds.emplace_back(nameOf(kindOf(path, contour)));
    }
    // The walk takes the entities from the last one on.
    EXPECT_THAT(kinds, ElementsAre("points", "open", "circle", "closed"));
    EXPECT_NEAR(path.contours[3].length, 2 + std::sqrt(2), 1e-9);
    EXPECT_EQ(path.points.front(), (cv::Point3_<double>(-7, -8, 9)));
    EXPECT_EQ(path.lowest.x, -7);
    EXPECT_NEAR(path.highest.y, 32, 1e-3) << "a point of the walk near the top";
    EXPECT_EQ(path.unit, converters::LengthUnit::millimetre);
    EXPECT_TRUE(nearMissesOf(path, 1).empty()) << "a circle has no ends";
}

TEST(ContourKind, OfAPathIsThatOfItsPieces) {
    Path path;
    addContour(path, {{0, 0, 0}, {1, 0, 0}}, 0);
    addContour(path, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}}, 0);
    addContour(path, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}}, 0);
    addContour(path, {{0, 0, 0}, {1, 0, 0}}, 0, true);
    path.arcs.push_back({{0, 0, 0}, {0, 0, 1}, 1, 6.283185307179586});
    path.pieces[2].kind = converters::PathCurveKind::arc;
    std::vector<ContourKind> kinds;
    for (const converters::PathContour& contour : path.contours) {
        kinds.push_back(kindOf(path, contour));
    }
    EXPECT_THAT(kinds, ElementsAre(ContourKind::Open, ContourKind::Closed, ContourKind::Circle,
                                   ContourKind::Points));
    path.arcs[0].sweep = 6;
    EXPECT_EQ(kindOf(path, path.contours[2]), ContourKind::Closed) << "an arc and a line, say";
}

TEST(Units, HaveSymbolsThatTellThemApart) {
    EXPECT_EQ(symbolOf(converters::LengthUnit::none), "");
    EXPECT_EQ(symbolOf(converters::LengthUnit::millimetre), "mm");
    std::set<std::string> symbols;
    for (std::uint8_t number = 0; number <= 21; ++number) {
        const auto unit = static_cast<converters::LengthUnit>(number);
        EXPECT_EQ(unitOf(symbolOf(unit)), unit);
        symbols.insert(symbolOf(unit));
    }
    EXPECT_EQ(symbols.size(), 22U);
    EXPECT_EQ(unitOf("parrots"), converters::LengthUnit::none);
}

TEST(DrawingScene, HasTheContoursAndTheLayersThatHaveSome) {
    Path path = linesOn(4, 2);
    path.layers.insert(path.layers.begin(), {"empty", 7, false, false});
    for (converters::PathContour& contour : path.contours) {
        ++contour.layer;
    }
    const DrawingScene scene = sceneOf(path, 0.1);
    ASSERT_EQ(scene.contours.size(), 4U);
    EXPECT_THAT(scene.layers, ElementsAre("layer 0", "layer 1"));
    EXPECT_EQ(scene.contours[2].layer, 0U);
    EXPECT_EQ(scene.contours[3].layer, 1U);
    EXPECT_EQ(scene.bounds.x.high, 3);
    EXPECT_EQ(scene.bounds.y.high, 5);
    EXPECT_EQ(scene.points, 8U);
    EXPECT_EQ(scene.pointsWithoutPlace, 0U);
    EXPECT_TRUE(scene.gaps.empty());
}

TEST(DrawingScene, OfAWalkHasPointsAtTheirXAndY) {
    const auto vector = std::make_shared<DXFPointVector>(Points{{1, 2, 3}, {4, 5, 6}});
    const auto single = std::make_shared<DXFPointVector>(Points{{-7, -8, 9}});
    const DrawingScene scene = sceneOf(walkOf({vector, lineOf(20, 30, 20, 40), single}), 0.1);
    EXPECT_EQ(scene.bounds.x.low, -7);
    EXPECT_EQ(scene.bounds.y.low, -8);
    EXPECT_EQ(scene.bounds.x.high, 20);
    EXPECT_EQ(scene.bounds.y.high, 40);
    EXPECT_EQ(sceneOf(walkOf({lineOf(0, 3, 0.01, 3)}), 0.1).bounds.y.high, 3);
}

TEST(DrawingScene, CountsPointsThatCannotBeShown) {
    Path path;
    addContour(path, {{1, 2, 3}, {nan, 5, 6}, {1, infinity, 6}, {1e301, 0, 0}}, 0, true);
    const DrawingScene scene = sceneOf(path, 0.1);
    EXPECT_EQ(scene.pointsWithoutPlace, 3U);
    EXPECT_EQ(scene.points, 4U);
    EXPECT_EQ(scene.bounds.x.high, 1);
}

TEST(DrawingScene, HasTheGapsUpToADistance) {
    Path path;
    addContour(path, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 0.002, 0}}, 0);
    path.contours[0].length = 34;
    const DrawingScene scene = sceneOf(path, 0.1);
    ASSERT_EQ(scene.gaps.size(), 1U);
    EXPECT_NEAR(scene.gaps[0].distance, 0.002, 1e-9);
    EXPECT_NEAR(scene.gaps[0].first.y + scene.gaps[0].second.y, 0.002, 1e-12);
    ASSERT_EQ(scene.contours.size(), 1U);
    EXPECT_EQ(scene.contours[0].kind, ContourKind::Open);
    EXPECT_NEAR(scene.contours[0].gap, 0.002, 1e-9);
    EXPECT_TRUE(sceneOf(path, 0.0015).gaps.empty());
}

constexpr Rectangle area = {0, 0, 640, 576};

TEST(DrawingStyle, ColoursContoursThenLayersThenKinds) {
    const DrawingScene few = sceneOf(linesOn(20, 3), 0);
    EXPECT_TRUE(DrawingStyle(few, area, {}).isOneByOne());
    EXPECT_EQ(DrawingStyle(few, area, {}).colourOf(std::size_t(5)), contourColour(5));
    const DrawingScene layered = sceneOf(linesOn(21, 3), 0);
    const DrawingStyle byLayer(layered, area, {});
    EXPECT_FALSE(byLayer.isOneByOne());
    EXPECT_TRUE(byLayer.isByLayer());
    EXPECT_EQ(byLayer.colourOf(std::size_t(5)), byLayer.colourOfLayer(2));
    const DrawingScene flat = sceneOf(linesOn(21, 1), 0);
    const DrawingStyle byKind(flat, area, {});
    EXPECT_FALSE(byKind.isByLayer());
    EXPECT_EQ(byKind.colourOf(std::size_t(5)), byKind.colourOf(ContourKind::Open));
}

TEST(DrawingStyle, HasSmallerAndSparserSignsAndThinnerLinesForMoreContours) {
    double sign = 2;
    double stroke = 3;
    double spacing = 0;
    double least = 0;
    for (const std::size_t contours : {5U, 135U, 200U, 355U}) {
        const DrawingScene scene = sceneOf(linesOn(contours, 3), 0);
        const DrawingStyle style(scene, area, {});
        EXPECT_LT(style.signSize(), sign) << contours;
        EXPECT_LT(style.strokeWidth(), stroke) << contours;
        EXPECT_GT(style.arrowSpacing(), spacing) << contours;
        EXPECT_GE(style.leastWithSigns(), least) << contours;
        sign = contours == 5 ? 1 : style.signSize();
        stroke = style.strokeWidth();
        spacing = style.arrowSpacing();
        least = style.leastWithSigns();
    }
    const DrawingScene crowd = sceneOf(linesOn(20000, 3), 0);
    EXPECT_GT(DrawingStyle(crowd, area, {}).signSize(), 0.3) << "signs can still be seen";
    EXPECT_GT(DrawingStyle(crowd, area, {}).strokeWidth(), 0.8);
}

TEST(DrawingStyle, HasWaysOfFewContoursAndWhereTheyAreAskedFor) {
    const DrawingScene few = sceneOf(linesOn(20, 1), 0);
    const DrawingScene many = sceneOf(linesOn(21, 1), 0);
    EXPECT_TRUE(DrawingStyle(few, area, {}).hasWays());
    EXPECT_FALSE(DrawingStyle(many, area, {}).hasWays());
    EXPECT_TRUE(DrawingStyle(many, area, {true, true}).hasWays());
    EXPECT_FALSE(DrawingStyle(few, area, {false, false}).hasWays());
    EXPECT_FALSE(DrawingStyle(few, area, {false, false}).hasMarks());
    EXPECT_TRUE(DrawingStyle(few, area, {false, true}).hasWays());
}

TEST(ShortText, HasNoExponentWherePeopleWouldWriteANumberOut) {
    EXPECT_EQ(shortText(10951.26, 4), "10951");
    EXPECT_EQ(shortText(123456789.4, 4), "123456789");
    EXPECT_EQ(shortText(1095.126, 4), "1095");
    EXPECT_EQ(shortText(109.5126, 4), "109.5");
    EXPECT_EQ(shortText(7.2, 4), "7.2");
    EXPECT_EQ(shortText(0.00001234, 3), "0.0000123");
    EXPECT_EQ(shortText(-2.5, 3), "-2.5");
    EXPECT_EQ(shortText(100, 3), "100");
    EXPECT_EQ(shortText(-0.0, 3), "0");
    EXPECT_EQ(shortText(2e15, 3), "2e+15");
    EXPECT_EQ(shortText(2.5e-12, 3), "2.5e-12");
}

TEST(LeftOutText, CountsByReasonAndKindAndNamesLayersThatAreTheReason) {
    using converters::LeftOutReason;
    EXPECT_EQ(leftOutText(std::vector<converters::LeftOut>()), "");
    EXPECT_EQ(leftOutText({{"TEXT", "a", 20, LeftOutReason::annotation},
                           {"LINE", "aux", 3, LeftOutReason::layerFrozen},
                           {"TEXT", "b", 4, LeftOutReason::annotation},
                           {"HATCH", "a", 1, LeftOutReason::annotation},
                           {"LINE", "old\n", 2, LeftOutReason::layerFrozen}}),
              "24 TEXT, 1 HATCH (annotation); 3 LINE (on a frozen layer: aux); "
              "2 LINE (on a frozen layer: old\\x0A)");
}

TEST(LeftOutText, CountsLayersWhenTheyAreMany) {
    using converters::LeftOutReason;
    std::vector<converters::LeftOut> leftOut = {{"TEXT", "a", 20, LeftOutReason::annotation}};
    for (int i = 1; i < 6; ++i) {
        leftOut.push_back({"LINE", std::to_string(i), 2, LeftOutReason::layerFrozen});
    }
    EXPECT_THAT(leftOutText(leftOut), ::testing::HasSubstr("2 LINE (on a frozen layer: 5)"));
    leftOut.push_back({"ARC", "5", 1, LeftOutReason::layerFrozen});
    leftOut.push_back({"ARC", "6", 1, LeftOutReason::layerOff});
    EXPECT_THAT(leftOutText(leftOut),
                ::testing::HasSubstr("2 LINE, 1 ARC (on a frozen layer: 5); 1 ARC (on a layer"));
    leftOut.push_back({"ARC", "6", 1, LeftOutReason::layerFrozen});
    EXPECT_EQ(leftOutText(leftOut), "20 TEXT (annotation); 10 LINE, 2 ARC (on a frozen layer: 6 "
                                    "layers); 1 ARC (on a layer that is off: 6)");
}

} // namespace
