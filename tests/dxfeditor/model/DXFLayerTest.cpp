// Layers and line types.

#include "dxfeditor/DXFLayer.h"

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFLineType.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

static_assert(!std::is_polymorphic_v<DXFLayer> && !std::is_polymorphic_v<DXFLineType>);
static_assert(!std::is_copy_assignable_v<DXFLayer> && !std::is_copy_assignable_v<DXFLineType>,
              "a drawing finds both by their names, so they keep them");

TEST(DXFLayer, KeepsNameAndFlags) {
    const DXFLayer layer("walls", 68);
    EXPECT_EQ(layer.name(), "walls");
    EXPECT_EQ(layer.flags(), 68);
}

TEST(DXFLayer, IsFrozenOrLockedWhenTheWholeFlagsWordSaysSo) {
    struct Case {
        int flags;
        bool frozen;
        bool locked;
    };
    for (const Case& expected :
         {Case{0, false, false}, Case{1, true, false}, Case{2, false, false}, Case{4, false, true},
          Case{5, false, false}, Case{65, false, false}, Case{68, false, false},
          Case{-1, false, false}}) {
        const DXFLayer layer("0", expected.flags);
        EXPECT_EQ(layer.isFrozen(), expected.frozen) << expected.flags;
        EXPECT_EQ(layer.isLocked(), expected.locked) << expected.flags;
    }
}

TEST(DXFLayer, StartsWithoutAttributes) {
    EXPECT_EQ(DXFLayer("0", 0).attributes(), nullptr);
}

TEST(DXFLayer, SharesTheAttributesItIsGiven) {
    DXFLayer layer("0", 0);
    const auto first = std::make_shared<DXFAttributes>("0", 1, 2, 3, "A", 4.0, 5, false);
    layer.setAttributes(first);
    EXPECT_EQ(layer.attributes(), first);
    layer.setAttributes(layer.attributes());
    EXPECT_EQ(layer.attributes(), first);
    EXPECT_EQ(first.use_count(), 2);

    const auto second = std::make_shared<DXFAttributes>(*first);
    layer.setAttributes(second);
    EXPECT_EQ(layer.attributes(), second);
    EXPECT_EQ(first.use_count(), 1);
    layer.setAttributes(nullptr);
    EXPECT_EQ(layer.attributes(), nullptr);
}

TEST(DXFLineType, KeepsEveryValueInItsOwnPlace) {
    double pattern[] = {0.5, -0.25, 0.0};
    const DXFLineType lineType("DASHDOT", "Dash dot _ . _", 64, 3, 0.75, pattern);
    EXPECT_EQ(lineType.name(), "DASHDOT");
    EXPECT_EQ(lineType.description(), "Dash dot _ . _");
    EXPECT_EQ(lineType.flags(), 64);
    EXPECT_EQ(lineType.numberOfDashes(), 3);
    EXPECT_EQ(lineType.patternLength(), 0.75);
    EXPECT_EQ(lineType.pattern(), pattern);
}

TEST(DXFLineType, LeavesThePatternToItsOwner) {
    auto* pattern = new double[2]{0.5, -0.25};
    { const DXFLineType lineType("DASHED", "", 0, 2, 0.75, pattern); }
    EXPECT_EQ(pattern[0], 0.5);
    EXPECT_EQ(pattern[1], -0.25);
    delete[] pattern;
}

TEST(DXFLineType, MayHaveNoPattern) {
    EXPECT_EQ(DXFLineType("CONTINUOUS", "", 0, 3, 0.0, nullptr).pattern(), nullptr);
}

TEST(DXFLineType, TextIsAnUnfilledTemplate) {
    const std::string text = "[LTYPE name: %1, description: %2, flags: %3, numberOfDashes: %4, "
                             "patternLength: %5, pattern: %6]";
    ASSERT_EQ(text.size(), 96U);
    EXPECT_EQ(DXFLineType("A", "B", 1, 2, 3.0, nullptr).toString(), text);
    EXPECT_EQ(DXFLineType("", "", 0, 0, 0.0, nullptr).toString(), text);
}

} // namespace
