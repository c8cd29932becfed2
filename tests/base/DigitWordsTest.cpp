// Short numbers read eight characters at a time, against std::from_chars.

#include "base/DigitWords.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace {

using base::readShortFloat;

std::uint32_t bitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Whether the whole token is a number, as std::from_chars has it.
bool readPlainly(const std::string& token, float& value) {
    const char* const end = token.data() + token.size();
    const auto [taken, error] = std::from_chars(token.data(), end, value, std::chars_format::fixed);
    return error == std::errc() && taken == end;
}

/// Reads a token in front of other characters.
bool read(const std::string& token, const std::string& rest, float& value) {
    const std::string text = token + rest;
    return readShortFloat(text.data(), static_cast<unsigned>(token.size()), value);
}

/// As many characters as may be read behind a token.
const std::string rests[] = {" 123.45678901234", "\n...............", " ---------------",
                             std::string(16, '\0'), std::string(16, '\xFF')};

/// Expects a token to be read as std::from_chars reads it, whatever is behind it.
void expectRead(const std::string& token) {
    float expected = 0;
    ASSERT_TRUE(readPlainly(token, expected)) << token;
    for (const std::string& rest : rests) {
        float value = 0;
        ASSERT_TRUE(read(token, rest, value)) << token;
        ASSERT_EQ(bitsOf(value), bitsOf(expected)) << token;
    }
}

TEST(DigitWords, ReadsUpToSevenDigitsWithAPointAnywhere) {
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        std::string token;
        for (std::size_t digits = 1 + random() % 7; digits > 0; --digits) {
            token += static_cast<char>('0' + random() % 10);
        }
        if (random() % 4 != 0) {
            token.insert(random() % (token.size() + 1), 1, '.');
        }
        ASSERT_NO_FATAL_FAILURE(expectRead((random() % 2 != 0 ? "-" : "") + token));
    }
}

TEST(DigitWords, ReadsEightDigitsAsFarAsAFloatHoldsThemAll) {
    for (const char* token : {"16777215", "-16777216", "10000000", "00000000", "-00000001"}) {
        expectRead(token);
    }
    for (const char* token : {"16777217", "-16777217", "16777218", "99999999"}) {
        float value = 0;
        EXPECT_FALSE(read(token, rests[0], value)) << token;
    }
}

TEST(DigitWords, KeepsTheSignOfZero) {
    for (const char* token : {"0", "-0", "-.0", "-0.", "0.000000", "-0.000000"}) {
        expectRead(token);
    }
}

TEST(DigitWords, LeavesWhatIsNoShortNumber) {
    for (const char* token :
         {"",         "-",         ".",          "-.",        "..",
          "1..2",     "1.2.3",     "--1",        "1-",        "+1",
          "-+1",      "1e5",       "1.e",        "0x1",       "nan",
          "inf",      "1,5",       "12/34",      "12:34",     "\xB1\xB2",
          "1\xB0",    "123456789", "-123456789", "12345.678", "1234567890123456",
          "........."}) {
        float value = 0;
        EXPECT_FALSE(read(token, rests[0], value)) << token;
    }
}

TEST(DigitWords, AnythingThatIsReadIsTheNumberThatItSays) {
    constexpr char characters[] = "00123456789..-+e /:\x1E\x8F\xB5";
    std::mt19937 random(2);
    int count = 0;
    for (int i = 0; i < 2000000; ++i) {
        std::string token;
        for (std::size_t length = random() % 11; length > 0; --length) {
            token += characters[random() % (sizeof characters - 1)];
        }
        float value = 0;
        float expected = 0;
        if (read(token, rests[random() % std::size(rests)], value)) {
            ASSERT_TRUE(readPlainly(token, expected)) << token;
            ASSERT_EQ(bitsOf(value), bitsOf(expected)) << token;
            ++count;
        }
    }
    EXPECT_GT(count, 100000);
}

TEST(DigitWords, SplitsEveryNumberOfUpToEightDigits) {
    std::mt19937 random(3);
    const auto expectSplit = [](std::uint32_t number) {
        char text[9];
        std::snprintf(text, sizeof text, "%08u", static_cast<unsigned>(number));
        const std::uint64_t digits = base::splitDigits(number);
        char stored[8];
        base::storeWord(digits + base::everyByte('0'), stored);
        ASSERT_EQ(std::string(stored, sizeof stored), text);
        ASSERT_EQ(base::joinDigits(digits), number);
    };
    // Each half on its own goes through all its values.
    for (std::uint32_t half = 0; half < 10000; ++half) {
        expectSplit(half);
        expectSplit(half * 10000 + static_cast<std::uint32_t>(random() % 10000));
    }
}

} // namespace
