#include "dxfeditor/DXFDocument.h"

#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPolyline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

static_assert(std::is_default_constructible_v<DXFDocument>);
static_assert(!std::is_copy_constructible_v<DXFDocument> &&
              !std::is_copy_assignable_v<DXFDocument>);
static_assert(!std::is_move_constructible_v<DXFDocument> &&
              !std::is_move_assignable_v<DXFDocument>);

/// An entity that notes each of its setups in a list.
class SetupNote : public DXFPoint {
public:
    SetupNote(int number, std::vector<int>& notes)
        : DXFPoint(0, 0, 0), m_number(number), m_notes(notes) {}
    void setup() override { m_notes.push_back(m_number); }

private:
    int m_number;
    std::vector<int>& m_notes;
};

std::shared_ptr<DXFLayer> layer(const std::string& name, int flags = 0) {
    return std::make_shared<DXFLayer>(name, flags);
}

std::shared_ptr<DXFLineType> lineType(const std::string& name) {
    return std::make_shared<DXFLineType>(name, "", 0, 0, 0.0, nullptr);
}

std::shared_ptr<DXFEntity> entity() {
    return std::make_shared<DXFPoint>(0, 0, 0);
}

#ifdef CONVERTERS_ADDRESS_SANITIZER
constexpr int tooManyToSearch = 50000;
#else
/// Walking a list of this many for each of them takes longer than the tests may.
constexpr int tooManyToSearch = 500000;
#endif

TEST(DXFDocument, StartsEmpty) {
    const DXFDocument document;
    EXPECT_TRUE(document.layers().empty());
    EXPECT_TRUE(document.entities().empty());
    EXPECT_EQ(document.getLayer("0"), nullptr);
}

TEST(DXFDocumentLayers, KeepTheFirstOfAName) {
    DXFDocument document;
    const auto first = layer("0", 1);
    const auto second = layer("0", 4);
    EXPECT_TRUE(document.addLayer(first));
    EXPECT_FALSE(document.addLayer(second));
    EXPECT_FALSE(document.addLayer(first));
    EXPECT_EQ(document.layers(), std::list<std::shared_ptr<DXFLayer>>{first});
    EXPECT_EQ(document.getLayer("0"), first);
    EXPECT_EQ(second.use_count(), 1);
}

TEST(DXFDocumentLayers, AreKeptInTheOrderInWhichTheyCame) {
    DXFDocument document;
    std::list<std::shared_ptr<DXFLayer>> expected;
    for (const char* name : {"walls", "0", "", "doors", "WALLS", " 0"}) {
        expected.push_back(layer(name));
        EXPECT_TRUE(document.addLayer(expected.back()));
    }
    EXPECT_EQ(document.layers(), expected);
}

TEST(DXFDocumentLayers, AreFoundByExactlyTheirName) {
    DXFDocument document;
    const std::string withZero("a\0b", 3);
    const auto walls = layer("Walls");
    const auto zero = layer(withZero);
    document.addLayer(walls);
    document.addLayer(zero);
    EXPECT_EQ(document.getLayer("Walls"), walls);
    EXPECT_EQ(document.getLayer("walls"), nullptr);
    EXPECT_EQ(document.getLayer("Wall"), nullptr);
    EXPECT_EQ(document.getLayer("Walls "), nullptr);
    EXPECT_EQ(document.getLayer(""), nullptr);
    EXPECT_EQ(document.getLayer("a"), nullptr);
    EXPECT_EQ(document.getLayer(withZero), zero);
}

TEST(DXFDocumentLayers, MayHoldEmptyPointersThatNoNameFinds) {
    DXFDocument document;
    EXPECT_TRUE(document.addLayer(nullptr));
    EXPECT_EQ(document.getLayer(""), nullptr);
    const auto unnamed = layer("");
    EXPECT_TRUE(document.addLayer(unnamed));
    EXPECT_TRUE(document.addLayer(nullptr));
    EXPECT_FALSE(document.addLayer(layer("")));
    EXPECT_EQ(document.getLayer(""), unnamed);
    EXPECT_EQ(document.layers(), (std::list<std::shared_ptr<DXFLayer>>{nullptr, unnamed, nullptr}));
}

TEST(DXFDocumentLayers, AreHandedOutAsACopyOfTheListOfTheSameLayers) {
    DXFDocument document;
    const auto first = layer("0");
    document.addLayer(first);
    std::list<std::shared_ptr<DXFLayer>> copy = document.layers();
    EXPECT_EQ(copy.front(), first);
    copy.clear();
    EXPECT_EQ(document.layers().size(), 1U);
}

TEST(DXFDocumentLayers, OfManyNamesAreAddedAndFoundWithoutWalkingTheList) {
    DXFDocument document;
    for (int i = 0; i < tooManyToSearch; ++i) {
        ASSERT_TRUE(document.addLayer(layer(std::to_string(i))));
    }
    for (int i = 0; i < tooManyToSearch; ++i) {
        ASSERT_FALSE(document.addLayer(layer(std::to_string(i))));
        ASSERT_EQ(document.getLayer(std::to_string(i))->name(), std::to_string(i));
    }
    int number = 0;
    for (const auto& each : document.layers()) {
        ASSERT_EQ(each->name(), std::to_string(number));
        ++number;
    }
    EXPECT_EQ(number, tooManyToSearch);
}

TEST(DXFDocumentLineTypes, KeepTheFirstOfAName) {
    DXFDocument document;
    const auto first = lineType("DASHED");
    const auto second = lineType("DASHED");
    EXPECT_TRUE(document.addLineType(first));
    EXPECT_FALSE(document.addLineType(second));
    EXPECT_TRUE(document.addLineType(lineType("dashed")));
    EXPECT_EQ(second.use_count(), 1);
    EXPECT_GT(first.use_count(), 1);
}

TEST(DXFDocumentLineTypes, MayBeEmptyPointers) {
    DXFDocument document;
    EXPECT_TRUE(document.addLineType(nullptr));
    EXPECT_TRUE(document.addLineType(lineType("")));
    EXPECT_TRUE(document.addLineType(nullptr));
    EXPECT_FALSE(document.addLineType(lineType("")));
}

TEST(DXFDocumentLineTypes, ShareNoNamesWithLayers) {
    DXFDocument document;
    EXPECT_TRUE(document.addLayer(layer("A")));
    EXPECT_TRUE(document.addLineType(lineType("A")));
    EXPECT_EQ(document.layers().size(), 1U);
}

TEST(DXFDocumentLineTypes, OfManyNamesAreAddedWithoutWalkingTheList) {
    DXFDocument document;
    for (int i = 0; i < tooManyToSearch; ++i) {
        ASSERT_TRUE(document.addLineType(lineType(std::to_string(i))));
    }
    for (int i = 0; i < tooManyToSearch; ++i) {
        ASSERT_FALSE(document.addLineType(lineType(std::to_string(i))));
    }
}

TEST(DXFDocumentEntities, AreKeptInOrderWithDuplicatesAndEmptyPointers) {
    DXFDocument document;
    const auto a = entity();
    const auto b = entity();
    for (const auto& each : {b, a, std::shared_ptr<DXFEntity>(), b}) {
        EXPECT_TRUE(document.addEntity(each));
    }
    EXPECT_EQ(document.entities(), (std::list<std::shared_ptr<DXFEntity>>{b, a, nullptr, b}));
}

TEST(DXFDocumentEntities, AreHandedOutAsACopyOfTheListOfTheSameEntities) {
    DXFDocument document;
    const auto a = entity();
    document.addEntity(a);
    std::list<std::shared_ptr<DXFEntity>> copy = document.entities();
    EXPECT_EQ(copy.front(), a);
    copy.clear();
    EXPECT_EQ(document.entities().size(), 1U);
}

TEST(DXFDocumentEntities, AddedTwiceAreDeletedAtOnce) {
    DXFDocument document;
    const auto a = entity();
    const auto b = entity();
    for (const auto& each : {a, b, a}) {
        document.addEntity(each);
    }
    EXPECT_TRUE(document.deleteEntity(a));
    EXPECT_EQ(document.entities(), std::list<std::shared_ptr<DXFEntity>>{b});
    EXPECT_EQ(a.use_count(), 1);
}

TEST(DXFDocumentEntities, AreDeletedByIdentityAndNotByValue) {
    DXFDocument document;
    const auto a = std::make_shared<DXFPoint>(1, 2, 3);
    document.addEntity(a);
    EXPECT_TRUE(document.deleteEntity(std::make_shared<DXFPoint>(1, 2, 3)));
    EXPECT_TRUE(document.deleteEntity(nullptr));
    EXPECT_EQ(document.entities(), std::list<std::shared_ptr<DXFEntity>>{a});
    // The same object through another owner is the same entity.
    EXPECT_TRUE(document.deleteEntity(std::shared_ptr<DXFEntity>(a.get(), [](DXFEntity*) {})));
    EXPECT_TRUE(document.entities().empty());
}

TEST(DXFDocumentEntities, ThatAreEmptyAreDeletedByAnEmptyPointer) {
    DXFDocument document;
    const auto a = entity();
    for (const auto& each : {std::shared_ptr<DXFEntity>(), a, std::shared_ptr<DXFEntity>()}) {
        document.addEntity(each);
    }
    EXPECT_TRUE(document.deleteEntity(nullptr));
    EXPECT_EQ(document.entities(), std::list<std::shared_ptr<DXFEntity>>{a});
}

TEST(DXFDocumentEntities, CanBeAddedAgainAfterTheyWereDeleted) {
    DXFDocument document;
    const auto a = entity();
    const auto b = entity();
    document.addEntity(a);
    document.addEntity(b);
    document.deleteEntity(a);
    document.addEntity(a);
    EXPECT_EQ(document.entities(), (std::list<std::shared_ptr<DXFEntity>>{b, a}));
}

TEST(DXFDocumentEntities, FollowAPlainListThroughRandomChanges) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::shared_ptr<DXFEntity>> pool(8);
        std::generate(pool.begin() + 1, pool.end(), entity); // the first one stays empty
        DXFDocument document;
        std::list<std::shared_ptr<DXFEntity>> plain;
        for (int step = 0; step < 100; ++step) {
            const auto& chosen = pool[random() % pool.size()];
            if (random() % 4 == 0) {
                ASSERT_TRUE(document.deleteEntity(chosen));
                plain.remove(chosen);
            } else {
                ASSERT_TRUE(document.addEntity(chosen));
                plain.push_back(chosen);
            }
            ASSERT_EQ(document.entities(), plain);
        }
    }
}

TEST(DXFDocumentEntities, ThatAreHandedOverAreDeletedEveryTimeTheyOccur) {
    for (const bool isDeletedBefore : {false, true}) {
        for (const int occurrences : {1, 2, 3}) {
            DXFDocument document;
            const auto a = entity();
            const auto b = entity();
            document.addEntity(a);
            document.addEntity(b);
            if (isDeletedBefore) {
                document.deleteEntity(b);
            }
            auto given = entity();
            const std::weak_ptr<DXFEntity> watched = given;
            for (int i = 0; i < occurrences; ++i) {
                document.addEntity(given);
            }
            document.deleteEntity(std::move(given));
            EXPECT_TRUE(watched.expired());
            EXPECT_EQ(document.entities(),
                      (isDeletedBefore ? std::list<std::shared_ptr<DXFEntity>>{a}
                                       : std::list<std::shared_ptr<DXFEntity>>{a, b}));
        }
    }
}

TEST(DXFDocumentEntities, OfALargeDrawingAreDeletedWithoutWalkingTheList) {
    std::vector<std::shared_ptr<DXFEntity>> entities(tooManyToSearch);
    std::generate(entities.begin(), entities.end(), entity);
    DXFDocument document;
    for (const auto& each : entities) {
        document.addEntity(each);
    }
    for (std::size_t i = entities.size(); i > 1; --i) {
        document.deleteEntity(entities[i - 1]);
    }
    EXPECT_EQ(document.entities(), std::list<std::shared_ptr<DXFEntity>>{entities[0]});
}

TEST(DXFDocumentEntities, ThatRepeatOneObjectAreAddedAndDeletedWithoutWalkingTheList) {
    const auto a = entity();
    const auto b = entity();
    DXFDocument document;
    for (int i = 0; i < tooManyToSearch; ++i) {
        document.addEntity(i % 2 == 0 ? a : b);
    }
    document.deleteEntity(a);
    EXPECT_EQ(document.entities(), std::list<std::shared_ptr<DXFEntity>>(tooManyToSearch / 2, b));
    document.deleteEntity(b);
    EXPECT_TRUE(document.entities().empty());
}

TEST(DXFDocument, OutlivedByWhatItSharedReleasesTheRest) {
    const auto kept = layer("0");
    std::weak_ptr<DXFEntity> given;
    {
        DXFDocument document;
        document.addLayer(kept);
        const auto a = entity();
        given = a;
        document.addEntity(a);
    }
    EXPECT_EQ(kept.use_count(), 1);
    EXPECT_TRUE(given.expired());
}

TEST(DXFDocumentSetup, SetsUpEveryEntityOnceInOrder) {
    std::vector<int> notes;
    DXFDocument document;
    for (const int number : {3, 1, 2}) {
        document.addEntity(std::make_shared<SetupNote>(number, notes));
    }
    document.setup();
    EXPECT_EQ(notes, (std::vector<int>{3, 1, 2}));
    document.setup();
    EXPECT_EQ(notes.size(), 3U);
}

TEST(DXFDocumentSetup, SetsUpAnEntityAsOftenAsItIsListed) {
    std::vector<int> notes;
    DXFDocument document;
    const auto twice = std::make_shared<SetupNote>(7, notes);
    document.addEntity(twice);
    document.addEntity(twice);
    document.setup();
    EXPECT_EQ(notes, (std::vector<int>{7, 7}));
}

TEST(DXFDocumentSetup, LeavesEntitiesAddedAfterTheFirstCallAlone) {
    std::vector<int> notes;
    DXFDocument document;
    document.setup();
    document.addEntity(std::make_shared<SetupNote>(1, notes));
    document.setup();
    EXPECT_TRUE(notes.empty());
}

TEST(DXFDocumentSetup, PassesOverEmptyPointers) {
    std::vector<int> notes;
    DXFDocument document;
    document.addEntity(nullptr);
    document.addEntity(std::make_shared<SetupNote>(1, notes));
    document.addEntity(nullptr);
    document.setup();
    EXPECT_EQ(notes, std::vector<int>{1});
}

TEST(DXFDocumentSetup, GivesPolylinesTheirSegments) {
    DXFDocument document;
    const auto polyline = std::make_shared<DXFPolyline>(0U, 0U, 0U);
    polyline->appendPoint(DXFVertex(0, 0, 0, true, 0));
    polyline->appendPoint(DXFVertex(1, 0, 0, true, 0));
    document.addEntity(polyline);
    EXPECT_TRUE(polyline->segments().empty());
    document.setup();
    EXPECT_EQ(polyline->segments().size(), 1U);
}

} // namespace
