#include "base/LineEnd.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {

TEST(LineEnd, IsTheFirstOneWhereverItStands) {
    for (std::size_t size = 0; size < 70; ++size) {
        for (std::size_t first = 0; first <= size; ++first) {
            // Of their own size each, so that a sanitizer sees whoever reads on.
            std::vector<char> text;
            for (std::size_t i = 0; i < size; ++i) {
                text.push_back(i < first ? 'x' : '\n');
            }
            text.shrink_to_fit();
            const char* const begin = text.data();
            ASSERT_EQ(base::findLineEnd(begin, begin + size), begin + first) << size;
        }
    }
}

TEST(LineEnd, IsNoOtherCharacter) {
    std::vector<char> text;
    for (int c = -128; c < 128; ++c) {
        if (c != '\n') {
            text.push_back(static_cast<char>(c));
        }
    }
    const char* const end = text.data() + text.size();
    EXPECT_EQ(base::findLineEnd(text.data(), end), end);
}

TEST(LineEnd, OfNothingIsItsEnd) {
    EXPECT_EQ(base::findLineEnd(nullptr, nullptr), nullptr);
}

} // namespace
