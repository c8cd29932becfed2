#include "converters/detail/drawing/geometry/Affine.h"

#include "converters/detail/drawing/geometry/Angle.h"
#include "tests/converters/drawing/support/RandomCurves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace converters::drawing {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(AngleTest, QuartersAreExact) {
    for (const double turns : {0.0, 360.0, -720.0, 3.6e14}) {
        EXPECT_EQ(Angle::fromDegrees(turns + 90).cos(), 0);
        EXPECT_EQ(Angle::fromDegrees(turns).sin(), 0);
        EXPECT_EQ(Angle::fromDegrees(turns).cos(), 1);
    }
    EXPECT_EQ(Angle::fromDegrees(-90).sin(), -1);
    EXPECT_EQ(Angle::fromDegrees(180).cos(), -1);
    EXPECT_EQ(Angle::fromDegrees(270).cos(), 0);
    EXPECT_EQ(Angle::fromDegrees(630).sin(), -1);
    EXPECT_DOUBLE_EQ(Angle::fromDegrees(30).sin(), 0.5);
    EXPECT_DOUBLE_EQ(Angle::fromDegrees(-300).radians(), -5 * pi / 3);
}

TEST(AngleTest, NoNumberIsNoTurn) {
    for (const double angle : {infinity, -infinity, notANumber}) {
        EXPECT_EQ(Angle::fromDegrees(angle).cos(), 1);
        EXPECT_EQ(Angle::fromRadians(angle).sin(), 0);
    }
}

TEST(AffineTest, TheIdentityLeavesEveryBit) {
    const Affine identity;
    const Point point(-0.0, notANumber, infinity);
    EXPECT_TRUE(std::signbit(identity(point).x));
    EXPECT_TRUE(std::isnan(identity(point).y));
    EXPECT_EQ(identity(point).z, infinity);
    EXPECT_TRUE((identity * identity).isIdentity());
    EXPECT_TRUE(Affine::ofInsert({}).isIdentity());
    EXPECT_TRUE(Affine::fromExtrusion({0, 0, 1})->isIdentity());
    EXPECT_TRUE(Affine::fromExtrusion({0, 0, 7})->isIdentity());
}

TEST(AffineTest, CompositionIsOneMapAfterTheOther) {
    RandomCurves random(1);
    for (int i = 0; i < 1000; ++i) {
        const Affine outer = random.affine();
        const Affine inner = random.affine();
        const Point point = random.point();
        EXPECT_LT(distance((outer * inner)(point), outer(inner(point))), 1e-12);
    }
}

TEST(AffineTest, AnExtrusionDownwardsMirrorsInX) {
    const Affine map = *Affine::fromExtrusion({0, 0, -1});
    EXPECT_EQ(map({2, 3, 5}), Point(-2, 3, -5));
}

TEST(AffineTest, ExtrusionsGiveRightHandedUnitAxesByTheArbitraryAxisAlgorithm) {
    RandomCurves random(2);
    for (int i = 0; i < 1000; ++i) {
        const Vector normal = std::pow(10, random.within(-200, 200)) * random.point();
        const Affine map = *Affine::fromExtrusion(normal);
        EXPECT_NEAR(map.xAxis().dot(map.xAxis()), 1, 1e-15);
        EXPECT_NEAR(map.xAxis().dot(map.yAxis()), 0, 1e-15);
        EXPECT_LT(distance(map.xAxis().cross(map.yAxis()), map.zAxis()), 1e-15);
        EXPECT_LT(distance(map.zAxis(), *directionOf(normal)), 1e-15);
        // Away from the direction of z, the x axis is horizontal.
        EXPECT_NEAR(map.xAxis().z, 0, 1e-15);
    }
}

TEST(AffineTest, NearTheDirectionOfZTheXAxisIsAcrossThatOfY) {
    const double below = 0.0156;
    const double above = 0.0157;
    EXPECT_EQ(Affine::fromExtrusion({below, 0, std::sqrt(1 - below * below)})->xAxis().y, 0);
    EXPECT_GT(Affine::fromExtrusion({below, 0, 1})->xAxis().x, 0.99);
    EXPECT_GT(Affine::fromExtrusion({above, 0, std::sqrt(1 - above * above)})->xAxis().y, 0.99);
}

TEST(AffineTest, AnExtrusionWithoutDirectionIsTold) {
    for (const Vector& extrusion :
         {Vector(0, 0, 0), Vector(0, notANumber, 1), Vector(infinity, 0, 0)}) {
        EXPECT_FALSE(Affine::fromExtrusion(extrusion));
        EXPECT_TRUE(Affine::ofInsert({{0, 0, 0}, {1, 1, 1}, 0, extrusion}).isIdentity());
    }
    EXPECT_TRUE(Affine::fromExtrusion({0, 0, 5e-324})->isIdentity());
    EXPECT_TRUE(Affine::fromExtrusion({0, 0, 1.7e308})->isIdentity());
}

TEST(AffineTest, AnInsertScalesTurnsAndMovesWhatLiesAroundTheBasePoint) {
    InsertPlacement placement;
    placement.point = {100, 200, 300};
    placement.scale = {2, -3, 4};
    placement.rotation = 90;
    placement.base = {1, 1, 1};
    const Affine map = Affine::ofInsert(placement);
    EXPECT_EQ(map({1, 1, 1}), Point(100, 200, 300));
    EXPECT_EQ(map({2, 1, 1}), Point(100, 202, 300));
    EXPECT_EQ(map({1, 2, 1}), Point(103, 200, 300));
    EXPECT_EQ(map({1, 1, 2}), Point(100, 200, 304));
}

TEST(AffineTest, TheItemsOfAnArrayTurnAndDoNotScale) {
    InsertPlacement placement;
    placement.scale = {5, 5, 5};
    placement.rotation = 90;
    placement.arrayOffset = {10, 1, 0};
    EXPECT_EQ(Affine::ofInsert(placement)({0, 0, 0}), Point(-1, 10, 0));
}

TEST(AffineTest, TheExtrusionOfAnInsertHoldsForItsPointToo) {
    InsertPlacement placement;
    placement.point = {10, 20, 30};
    placement.extrusion = {0, 0, -2};
    placement.rotation = 90;
    EXPECT_EQ(Affine::ofInsert(placement)({1, 0, 0}), Point(-10, 21, -30));
}

} // namespace
} // namespace converters::drawing
