// The base class of the entities, their attributes, and the simple kinds.

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/CloneOf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace {

using Point = cv::Point3_<double>;

static_assert(std::is_abstract_v<DXFEntity>);
static_assert(std::has_virtual_destructor_v<DXFEntity>);
static_assert(!std::is_assignable_v<DXFEntity&, const DXFEntity&>,
              "assigning through the base would slice");
static_assert(!std::is_default_constructible_v<DXFAttributes>);
static_assert(std::is_copy_constructible_v<DXFAttributes>);
static_assert(!std::is_copy_assignable_v<DXFAttributes>, "a shared record never changes");
static_assert(DXFEntityType::Polyline == 0 && DXFEntityType::Point == 1 &&
              DXFEntityType::PointVector == 2 && DXFEntityType::Circle == 3 &&
              DXFEntityType::Arc == 4 && DXFEntityType::Line == 5 && DXFEntityType::Spline == 6);

std::shared_ptr<DXFAttributes> someAttributes() {
    return std::make_shared<DXFAttributes>("walls", 3, 0x112233, 25, "DASHED", 2.5, 77, true);
}

/// One maker for each kind of entity, with the code of the kind.
struct Kind {
    std::string name;
    int code;
    std::function<std::shared_ptr<DXFEntity>()> make;
};

const std::vector<Kind>& kinds() {
    static const std::vector<Kind> all = {
        {"polyline", 0, [] { return std::make_shared<DXFPolyline>(0U, 0U, 0U); }},
        {"point", 1, [] { return std::make_shared<DXFPoint>(1.0, 2.0, 3.0); }},
        {"point vector", 2,
         [] {
             return std::make_shared<DXFPointVector>(std::vector<Point>{{1, 2, 3}});
         }},
        {"circle", 3, [] { return std::make_shared<DXFCircle>(Point(1, 2, 3), 4.0); }},
        {"arc", 4, [] { return std::make_shared<DXFArc>(Point(1, 2, 3), 4.0, 5.0, 6.0); }},
        {"line", 5, [] { return std::make_shared<DXFLine>(Point(1, 2, 3), Point(4, 5, 6)); }},
        {"spline", 6, [] { return std::make_shared<DXFSpline>(3U, 0U, 0U, 0U, 0); }},
    };
    return all;
}

/// An entity of a caller's own, derived from one of the library's.
template <class Entity>
struct OwnKind : Entity {
    using Entity::Entity;
    DXFEntity* clone() const override { return new OwnKind(*this); }
};

TEST(DXFAttributes, KeepEveryValueInItsOwnPlace) {
    const DXFAttributes attributes("walls", 3, 0x112233, 25, "DASHED", 2.5, 77, true);
    EXPECT_EQ(attributes.layerName(), "walls");
    EXPECT_EQ(attributes.color(), 3);
    EXPECT_EQ(attributes.color24(), 0x112233);
    EXPECT_EQ(attributes.width(), 25);
    EXPECT_EQ(attributes.lineType(), "DASHED");
    EXPECT_EQ(attributes.lineTypeScale(), 2.5);
    EXPECT_EQ(attributes.handle(), 77);
    EXPECT_TRUE(attributes.inPaperSpace());
    EXPECT_FALSE(DXFAttributes("", 0, 0, 0, "", 0.0, 0, false).inPaperSpace());
}

TEST(DXFAttributes, AreNeitherCheckedNorCleaned) {
    const std::string name("a\0b", 3);
    const int least = std::numeric_limits<int>::min();
    const DXFAttributes attributes(name, least, least, least, "", -0.0, least, false);
    EXPECT_EQ(attributes.layerName(), name);
    EXPECT_EQ(attributes.color(), least);
    EXPECT_EQ(attributes.color24(), least);
    EXPECT_EQ(attributes.width(), least);
    EXPECT_EQ(attributes.lineType(), "");
    EXPECT_TRUE(std::signbit(attributes.lineTypeScale()));
    EXPECT_EQ(attributes.handle(), least);
}

TEST(DXFAttributes, WithAnotherHandleKeepTheRest) {
    const std::shared_ptr<DXFAttributes> attributes = someAttributes()->withHandle(5);
    EXPECT_EQ(attributes->layerName(), "walls");
    EXPECT_EQ(attributes->color(), 3);
    EXPECT_EQ(attributes->color24(), 0x112233);
    EXPECT_EQ(attributes->width(), 25);
    EXPECT_EQ(attributes->lineType(), "DASHED");
    EXPECT_EQ(attributes->lineTypeScale(), 2.5);
    EXPECT_EQ(attributes->handle(), 5);
    EXPECT_TRUE(attributes->inPaperSpace());
    EXPECT_EQ(someAttributes()->handle(), 77);
}

TEST(DXFEntity, OfEveryKindReportsItsCode) {
    for (const Kind& kind : kinds()) {
        EXPECT_EQ(kind.make()->type(), kind.code) << kind.name;
    }
}

TEST(DXFEntity, OfEveryKindStartsWithoutAttributes) {
    for (const Kind& kind : kinds()) {
        const std::shared_ptr<DXFEntity> entity = kind.make();
        EXPECT_EQ(entity->attributes(), nullptr) << kind.name;
        EXPECT_EQ(entity->lineWidth(), 0) << kind.name;
    }
}

TEST(DXFEntity, SharesTheAttributesItIsGiven) {
    for (const Kind& kind : kinds()) {
        const std::shared_ptr<DXFEntity> entity = kind.make();
        const std::shared_ptr<DXFAttributes> attributes = someAttributes();
        entity->setAttributes(attributes);
        EXPECT_EQ(entity->attributes(), attributes) << kind.name;
        EXPECT_EQ(attributes.use_count(), 2) << kind.name;
    }
}

TEST(DXFEntity, LetsGoOfAttributesThatAreReplaced) {
    DXFPoint point(1, 2, 3);
    std::weak_ptr<DXFAttributes> first;
    {
        const std::shared_ptr<DXFAttributes> attributes = someAttributes();
        first = attributes;
        point.setAttributes(attributes);
    }
    EXPECT_FALSE(first.expired());
    point.setAttributes(someAttributes());
    EXPECT_TRUE(first.expired());
    point.setAttributes(nullptr);
    EXPECT_EQ(point.attributes(), nullptr);
}

TEST(DXFEntity, GivenItsOwnAttributesAgainStaysAsItWas) {
    DXFPoint point(1, 2, 3);
    const std::shared_ptr<DXFAttributes> attributes = someAttributes();
    point.setAttributes(attributes);
    point.setAttributes(point.attributes());
    EXPECT_EQ(point.attributes(), attributes);
    EXPECT_EQ(attributes.use_count(), 2);
}

TEST(DXFEntity, DestroyedThroughItsBaseReleasesItsAttributes) {
    for (const Kind& kind : kinds()) {
        const std::shared_ptr<DXFAttributes> attributes = someAttributes();
        std::unique_ptr<DXFEntity> entity(kind.make()->clone());
        entity->setAttributes(attributes);
        entity.reset();
        EXPECT_EQ(attributes.use_count(), 1) << kind.name;
    }
}

TEST(DXFEntity, LineWidthIsApartFromThatOfTheAttributes) {
    DXFCircle circle(Point(), 1.0);
    circle.setAttributes(someAttributes());
    circle.setLineWidth(-7);
    EXPECT_EQ(circle.lineWidth(), -7);
    EXPECT_EQ(circle.attributes()->width(), 25);
}

TEST(DXFEntityClone, OfEveryKindButLinesSharesAttributesAndTakesOverTheLineWidth) {
    for (const Kind& kind : kinds()) {
        if (kind.code == DXFEntityType::Line) {
            continue;
        }
        const std::shared_ptr<DXFEntity> entity = kind.make();
        entity->setAttributes(someAttributes());
        entity->setLineWidth(9);
        const std::unique_ptr<DXFEntity> clone(entity->clone());
        EXPECT_NE(clone.get(), entity.get()) << kind.name;
        EXPECT_EQ(clone->type(), kind.code) << kind.name;
        EXPECT_EQ(clone->attributes(), entity->attributes()) << kind.name;
        EXPECT_NE(clone->attributes(), nullptr) << kind.name;
        EXPECT_EQ(clone->lineWidth(), 9) << kind.name;
    }
}

TEST(DXFEntityClone, OfALineTakesOverItsEndsOnly) {
    DXFLine line(Point(1, 2, 3), Point(4, 5, 6));
    line.setAttributes(someAttributes());
    line.setLineWidth(9);
    const std::unique_ptr<DXFLine> clone = cloneOf(line);
    EXPECT_EQ(clone->attributes(), nullptr);
    EXPECT_EQ(clone->lineWidth(), 0);
    EXPECT_EQ(clone->getP1(), Point(1, 2, 3));
    EXPECT_EQ(clone->getP2(), Point(4, 5, 6));
    EXPECT_NE(line.attributes(), nullptr);
    EXPECT_EQ(line.lineWidth(), 9);
}

TEST(DXFEntityClone, OfAClassOfTheCallersMayBeAnyEntity) {
    const std::shared_ptr<DXFEntity> entities[] = {
        std::make_shared<OwnKind<DXFPolyline>>(0U, 0U, 0U),
        std::make_shared<OwnKind<DXFPoint>>(1.0, 2.0, 3.0),
        std::make_shared<OwnKind<DXFPointVector>>(std::vector<Point>{{1, 2, 3}}),
        std::make_shared<OwnKind<DXFCircle>>(Point(1, 2, 3), 4.0),
        std::make_shared<OwnKind<DXFArc>>(Point(1, 2, 3), 4.0, 5.0, 6.0),
        std::make_shared<OwnKind<DXFLine>>(Point(1, 2, 3), Point(4, 5, 6)),
        std::make_shared<OwnKind<DXFSpline>>(3U, 0U, 0U, 0U, 0)};
    for (const std::shared_ptr<DXFEntity>& entity : entities) {
        const std::unique_ptr<DXFEntity> clone(entity->clone());
        const DXFEntity& original = *entity;
        const DXFEntity& copy = *clone;
        EXPECT_EQ(typeid(copy), typeid(original));
    }
}

TEST(DXFEntityClone, TakesOverTheGeometry) {
    const std::unique_ptr<DXFPoint> point = cloneOf(DXFPoint(1, 2, 3));
    EXPECT_EQ(Point(point->mX(), point->mY(), point->mZ()), Point(1, 2, 3));
    const std::unique_ptr<DXFCircle> circle = cloneOf(DXFCircle(Point(1, 2, 3), 4));
    EXPECT_EQ(circle->getCenter(), Point(1, 2, 3));
    EXPECT_EQ(circle->getRadius(), 4);
    const std::unique_ptr<DXFArc> arc = cloneOf(DXFArc(Point(1, 2, 3), 4, 5, 6));
    EXPECT_EQ(arc->getCenter(), Point(1, 2, 3));
    EXPECT_EQ(arc->getRadius(), 4);
    EXPECT_EQ(arc->getStartAngle(), 5);
    EXPECT_EQ(arc->getEndAngle(), 6);
}

TEST(DXFEntityClone, OfAPointVectorHasPointsOfItsOwn) {
    DXFPointVector vector({Point(1, 2, 3)});
    const std::unique_ptr<DXFPointVector> clone = cloneOf(vector);
    clone->addPoint(Point(4, 5, 6));
    vector.addPoint(Point(7, 8, 9));
    EXPECT_EQ(clone->mV(), (std::vector<Point>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(vector.mV(), (std::vector<Point>{{1, 2, 3}, {7, 8, 9}}));
}

TEST(DXFEntity, OfASimpleKindIsNotChangedBySetup) {
    DXFPoint point(1, 2, 3);
    point.setup();
    EXPECT_EQ(Point(point.mX(), point.mY(), point.mZ()), Point(1, 2, 3));
    DXFPointVector vector({Point(1, 2, 3)});
    vector.setup();
    EXPECT_EQ(vector.mV(), std::vector<Point>{Point(1, 2, 3)});
    DXFLine line(Point(1, 2, 3), Point(4, 5, 6));
    line.setup();
    EXPECT_EQ(line.getP1(), Point(1, 2, 3));
    EXPECT_EQ(line.getP2(), Point(4, 5, 6));
    DXFCircle circle(Point(1, 2, 3), 4);
    circle.setup();
    EXPECT_EQ(circle.getRadius(), 4);
    DXFArc arc(Point(1, 2, 3), 4, 5, 6);
    arc.setup();
    EXPECT_EQ(arc.getEndAngle(), 6);
}

TEST(DXFCircleAndDXFArc, KeepANegativeRadiusAndFallingAngles) {
    EXPECT_EQ(DXFCircle(Point(), -2).getRadius(), -2);
    const DXFArc arc(Point(), -3, 350, 10);
    EXPECT_EQ(arc.getRadius(), -3);
    EXPECT_EQ(arc.getStartAngle(), 350);
    EXPECT_EQ(arc.getEndAngle(), 10);
}

TEST(DXFPointVector, BuiltFromNothingGrowsByOnePoint) {
    DXFPointVector vector(std::vector<Point>{});
    EXPECT_TRUE(vector.mV().empty());
    vector.addPoint(Point(1, 2, 3));
    EXPECT_EQ(vector.mV(), std::vector<Point>{Point(1, 2, 3)});
    EXPECT_EQ(vector.points(), vector.mV());
}

TEST(DXFPointVector, HandsOutACopyOfItsPoints) {
    std::vector<Point> given = {{1, 2, 3}};
    const DXFPointVector vector(given);
    given[0].x = 8;
    std::vector<Point> returned = vector.mV();
    returned[0].x = 9;
    returned.clear();
    EXPECT_EQ(vector.mV(), std::vector<Point>{Point(1, 2, 3)});
}

TEST(DXFPointVector, CanAppendOneOfItsOwnPoints) {
    DXFPointVector vector({Point(1, 2, 3)});
    for (int i = 0; i < 100; ++i) {
        vector.addPoint(vector.points().front());
    }
    EXPECT_EQ(vector.mV(), std::vector<Point>(101, Point(1, 2, 3)));
}

} // namespace
