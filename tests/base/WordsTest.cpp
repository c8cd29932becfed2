#include "base/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (std::string_view line; base::takeLine(text, line);) {
        lines.emplace_back(line);
    }
    return lines;
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (base::takeBlanks(text); !text.empty(); base::takeBlanks(text)) {
        words.emplace_back(base::takeWord(text));
    }
    return words;
}

TEST(Words, LinesEndAtLineFeedsAlone) {
    EXPECT_THAT(linesOf("a\r\n\n b\rc"), ElementsAre("a\r", "", " b\rc"));
    EXPECT_THAT(linesOf("a\n"), ElementsAre("a"));
    EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST(Words, AreSeparatedByAnyWhitespace) {
    EXPECT_THAT(wordsOf(" property\tfloat\fx\v\r\n"), ElementsAre("property", "float", "x"));
    EXPECT_THAT(wordsOf("a\xA0\x85 b"), ElementsAre("a\xA0\x85", "b")) << "in no other locale";
    EXPECT_THAT(wordsOf(" \t"), IsEmpty());
}

TEST(Words, OfNothingIsEmptyAndTakesNothing) {
    std::string_view text = " a";
    EXPECT_EQ(base::takeWord(text), "");
    EXPECT_EQ(text, " a");
}

} // namespace
