#include "converters/detail/drawing/dxf/BinaryGroups.h"

#include "tests/support/Dxf.h"
#include "tests/support/Pieces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

using converters::drawing::BinaryGroups;
using converters::input::ByteWindow;

bool isBinary(const std::string& file) {
    ByteWindow window(file.data(), file.size());
    return BinaryGroups::isBinary(window);
}

TEST(BinaryGroups, BeginWithTheirSentinel) {
    EXPECT_TRUE(isBinary(binary("0 EOF")));
    EXPECT_FALSE(isBinary("0\nSECTION\n"));
    EXPECT_FALSE(isBinary("AutoCAD Binary DXF\r\n"));
}

TEST(BinaryGroups, HaveValuesOfTheFormThatTheCodeTells) {
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const std::string file = binary("0 SECTION  10 -1.5  70 -3  90 70000  160 5000000000  "
                                        "290 1  310 bytes  420 255  1070 -7  1010 2.5  5 1F",
                                        form);
        BinaryGroups groups({file.data(), file.size()});
        const auto next = [&](int code) { return groups.next() && groups.code() == code; };
        EXPECT_TRUE(next(0));
        EXPECT_EQ(groups.text(), "SECTION");
        EXPECT_TRUE(next(10));
        EXPECT_EQ(groups.real(), -1.5);
        EXPECT_EQ(groups.integer(), -1);
        EXPECT_EQ(groups.text(), "");
        EXPECT_TRUE(next(70));
        EXPECT_EQ(groups.integer(), -3);
        EXPECT_EQ(groups.real(), -3.0);
        EXPECT_TRUE(next(90));
        EXPECT_EQ(groups.integer(), 70000);
        EXPECT_TRUE(next(160));
        EXPECT_EQ(groups.integer(), 5000000000);
        EXPECT_TRUE(next(290));
        EXPECT_EQ(groups.integer(), 1);
        EXPECT_TRUE(next(310));
        EXPECT_EQ(groups.text(), "");
        EXPECT_EQ(groups.integer(), 0);
        EXPECT_TRUE(std::isnan(groups.real()));
        EXPECT_TRUE(next(420));
        EXPECT_EQ(groups.integer(), 255);
        EXPECT_TRUE(next(1070));
        EXPECT_EQ(groups.integer(), -7);
        EXPECT_TRUE(next(1010));
        EXPECT_EQ(groups.real(), 2.5);
        EXPECT_TRUE(next(5));
        EXPECT_EQ(groups.text(), "1F");
        EXPECT_FALSE(groups.next());
        EXPECT_EQ(groups.position(), file.size());
    }
}

TEST(BinaryGroups, MayBeginWithAComment) {
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const std::string file = binary("999 made by hand  0 SECTION", form);
        BinaryGroups groups({file.data(), file.size()});
        EXPECT_TRUE(groups.next());
        EXPECT_EQ(groups.code(), 999);
        EXPECT_TRUE(groups.next());
        EXPECT_EQ(groups.text(), "SECTION");
    }
}

TEST(BinaryGroups, EndWhereTheFileIsCut) {
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const std::string file = binary("0 SECTION  10 1.5  310 chunk  1000 text", form);
        for (std::size_t size = 22; size < file.size(); ++size) {
            const std::vector<char> part(file.begin(),
                                         file.begin() + static_cast<std::ptrdiff_t>(size));
            BinaryGroups groups({part.data(), part.size()});
            std::size_t begin = 22;
            int count = 0;
            while (groups.next()) {
                EXPECT_GE(groups.position(), begin);
                begin = groups.position();
                ++count;
            }
            EXPECT_LT(count, 4);
            EXPECT_LE(groups.position(), size);
        }
    }
}

/// All that the groups of a file say, in words.
std::vector<std::string> groupsOf(ByteWindow window) {
    std::vector<std::string> found;
    BinaryGroups groups(std::move(window));
    while (groups.next()) {
        found.push_back(std::to_string(groups.position()) + ": " + std::to_string(groups.code()) +
                        "=" + std::string(groups.text()) + "," + std::to_string(groups.real()) +
                        "," + std::to_string(groups.integer()));
    }
    found.push_back(std::to_string(groups.position()));
    return found;
}

TEST(BinaryGroups, AreTheSameInWhateverPiecesTheyCome) {
    const std::string longText(300, 'x');
    for (const BinaryForm form : {BinaryForm::longCodes, BinaryForm::shortCodes}) {
        const std::string file = binary("0 SECTION  10 -1.5  70 -3  90 70000  310 " + longText +
                                            "  1000 " + longText + "  1071 5  160 7  0 EOF",
                                        form);
        for (std::size_t size = 22; size <= file.size(); size += size % 23 + 1) {
            const std::string cut = file.substr(0, size);
            const std::vector<std::string> groups = groupsOf({cut.data(), cut.size()});
            for (const std::size_t piece : {1, 2, 3, 11, 64, 1000}) {
                for (const std::size_t capacity : {1, 16, 1000}) {
                    EXPECT_EQ(groupsOf({piecesOf(cut, piece), 0, capacity}), groups)
                        << piece << " bytes at a time in a window of " << capacity;
                }
            }
        }
    }
}

} // namespace
