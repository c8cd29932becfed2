#include "dxfeditor/text/DxfGroups.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

using dxfeditor::DxfCodeLines;
using dxfeditor::DxfGroup;
using dxfeditor::DxfGroups;
using Groups = std::vector<std::pair<int, std::string>>;

/// As dxflib reads a text, line by line.
Groups plainGroups(const std::string& text) {
    constexpr std::size_t longest = 1023;
    Groups groups;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t codeEnd = text.find('\n', begin);
        if (codeEnd == std::string::npos) {
            return groups;
        }
        const int code =
            dxfeditor::dxfInteger(text.substr(begin, codeEnd - begin).substr(0, longest));
        begin = codeEnd + 1;
        const std::size_t valueEnd = std::min(text.find('\n', begin), text.size());
        std::string value = text.substr(begin, valueEnd - begin).substr(0, longest);
        value.erase(value.find_last_not_of('\r') + 1);
        groups.emplace_back(code, value);
        begin = std::min(valueEnd + 1, text.size());
    }
}

template <typename Next>
Groups groupsOf(const std::string& text, Next next) {
    // Of its own size, so that a sanitizer sees whoever reads on.
    const std::vector<char> exact(text.begin(), text.end());
    DxfGroups walk(std::string_view(exact.data(), exact.size()));
    Groups groups;
    for (DxfGroup group; next(walk, group);) {
        groups.emplace_back(group.code, std::string(group.value));
    }
    EXPECT_TRUE(walk.rest().empty());
    return groups;
}

Groups groupsOf(const std::string& text) {
    return groupsOf(text, [](DxfGroups& walk, DxfGroup& group) { return walk.next(group); });
}

Groups groupsByLines(const std::string& text) {
    DxfCodeLines lines;
    return groupsOf(text,
                    [&](DxfGroups& walk, DxfGroup& group) { return walk.next(group, lines); });
}

/// A text of lines of which many follow each other more than once.
std::string randomText(Random& random) {
    const std::vector<std::string> lines = {"0",
                                            "  0",
                                            " 10",
                                            "10",
                                            "20",
                                            " 20",
                                            "8",
                                            "100",
                                            "1071",
                                            "-5",
                                            "+10",
                                            "x",
                                            "",
                                            " 1 0",
                                            "010",
                                            "\t10",
                                            "74",
                                            "10 ",
                                            "9999",
                                            "  8 ",
                                            "99999",
                                            "LINE",
                                            "1.5",
                                            "12.3456789012",
                                            "-123.4567890123456789",
                                            "a\rb"};
    const std::vector<std::string> ends = {"\n", "\n", "\r\n", "\r\r\n"};
    const std::string& usualEnd = random.pick(ends);
    std::string text;
    for (std::size_t i = random.below(60); i > 0; --i) {
        text += random.oneIn(40) ? std::string(1000 + random.below(std::size_t{50}), '1')
                                 : random.pick(lines);
        text += random.oneIn(8) ? random.pick(ends) : usualEnd;
    }
    text.resize(text.size() - std::min(text.size(), random.below(std::size_t{8})));
    return text;
}

TEST(DxfGroups, OfRandomTextsAreThoseOfAPlainReader) {
    Random random(1);
    std::size_t count = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomText(random);
        const Groups expected = plainGroups(text);
        ASSERT_EQ(groupsOf(text), expected) << text;
        ASSERT_EQ(groupsByLines(text), expected) << text;
        count += expected.size();
    }
    EXPECT_GT(count, 100000U);
}

TEST(DxfGroups, TellCodesApartThatShareAPlace) {
    // The line behind 10 and the one behind 74 are noted in one place.
    const std::string text =
        "10\na\n20\nb\n74\nc\n30\nd\n10\ne\n20\nf\n74\ng\n30\nh\n10\ni\n20\nj\n";
    EXPECT_EQ(groupsByLines(text), plainGroups(text));
    DxfCodeLines lines;
    EXPECT_EQ(&lines.behind(10), &lines.behind(74));
    EXPECT_NE(&lines.behind(10), &lines.behind(20));
    EXPECT_EQ(&lines.behind(-1), &lines.behind(-65));
}

TEST(DxfGroups, WithoutALineEndBehindTheCodeAreNone) {
    for (const char* text : {"", "0", " 10", "0\nPOINT\n10"}) {
        EXPECT_EQ(groupsOf(text), plainGroups(text)) << text;
        EXPECT_EQ(groupsByLines(text), plainGroups(text)) << text;
    }
}

} // namespace
