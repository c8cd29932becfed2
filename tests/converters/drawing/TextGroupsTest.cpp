#include "converters/detail/drawing/dxf/TextGroups.h"

#include "tests/support/Pieces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using converters::drawing::TextGroups;
using converters::input::ByteWindow;

ByteWindow windowOn(std::string_view text) {
    return {text.data(), text.size()};
}

/// The groups of a text, "code=value".
std::vector<std::string> groupsOf(std::string_view text) {
    std::vector<std::string> found;
    TextGroups groups(windowOn(text));
    while (groups.next()) {
        found.push_back(std::to_string(groups.code()) + "=" + std::string(groups.text()));
    }
    return found;
}

using Groups = std::vector<std::string>;

TEST(TextGroups, AreACodeLineAndAValueLine) {
    EXPECT_EQ(groupsOf("0\nLINE\n10\n1.5\n"), (Groups{"0=LINE", "10=1.5"}));
}

TEST(TextGroups, EndInAnyLineEnd) {
    for (const std::string end : {"\n", "\r\n", "\r", "\r\r\n"}) {
        EXPECT_EQ(groupsOf("0" + end + "LINE" + end + "10" + end + "1.5" + end),
                  (Groups{"0=LINE", "10=1.5"}));
    }
}

TEST(TextGroups, MayEndWithoutALineEnd) {
    EXPECT_EQ(groupsOf("0\nEOF"), (Groups{"0=EOF"}));
}

TEST(TextGroups, NeedAValueLine) {
    EXPECT_EQ(groupsOf("0\nLINE\n10"), (Groups{"0=LINE"}));
    EXPECT_EQ(groupsOf("0\nLINE\n10\n"), (Groups{"0=LINE", "10="}));
}

TEST(TextGroups, HaveBlanksAroundTheirCodes) {
    EXPECT_EQ(groupsOf("   0\nLINE\n\t10 \n1\n  +20\n2\n-1\nx\n"),
              (Groups{"0=LINE", "10=1", "20=2", "-1=x"}));
}

TEST(TextGroups, KeepTheBlanksOfValues) {
    EXPECT_EQ(groupsOf("1\n  two words \n"), (Groups{"1=  two words "}));
}

TEST(TextGroups, StandBehindAByteOrderMark) {
    EXPECT_EQ(groupsOf("\xEF\xBB\xBF  0\nSECTION\n"), (Groups{"0=SECTION"}));
}

TEST(TextGroups, MayHoldZeroBytes) {
    EXPECT_EQ(groupsOf(std::string_view("1\na\0b\n0\nLINE\n", 13)),
              (Groups{std::string("1=a\0b", 5), "0=LINE"}));
}

TEST(TextGroups, AreInStepAgainBehindLinesThatAreNoCodes) {
    for (const std::string end : {"\n", "\r\n", "\r", "\r\r\n"}) {
        std::string text;
        for (const char* const line :
             {"", "0", "TEXT", "1", "one", "line too many", "", "  ", "8", "walls", ""}) {
            text += line + end;
        }
        EXPECT_EQ(groupsOf(text), (Groups{"0=TEXT", "1=one", "8=walls"}));
        TextGroups groups(windowOn(text));
        while (groups.next()) {
        }
        EXPECT_EQ(groups.skippedLines(), 1U) << "blank lines are not worth a word";
    }
}

TEST(TextGroups, HaveCodesOfAtMostFiveDigits) {
    EXPECT_EQ(groupsOf("99999999999\n0\nLINE\n"), (Groups{"0=LINE"}));
}

TEST(TextGroups, OfNothingAreNone) {
    EXPECT_EQ(groupsOf(""), Groups{});
    EXPECT_EQ(groupsOf("\n"), Groups{});
    EXPECT_EQ(groupsOf("0"), Groups{});
}

double realOf(const std::string& value) {
    const std::string text = "10\n" + value + "\n20\n7\n";
    TextGroups groups(windowOn(text));
    EXPECT_TRUE(groups.next());
    const double number = groups.real();
    // Whatever the value was, the next group is the next one.
    EXPECT_TRUE(groups.next());
    EXPECT_EQ(groups.code(), 20) << value;
    EXPECT_EQ(groups.real(), 7.0) << value;
    return number;
}

TEST(TextGroups, HaveNumbersAsProgramsWriteThem) {
    EXPECT_EQ(realOf("1.5"), 1.5);
    EXPECT_EQ(realOf("  -1.5  "), -1.5);
    EXPECT_EQ(realOf("+1.5"), 1.5);
    EXPECT_EQ(realOf(".5"), 0.5);
    EXPECT_EQ(realOf("5."), 5.0);
    EXPECT_EQ(realOf("1e-005"), 1e-5);
    EXPECT_EQ(realOf("1.25E+02"), 125.0);
    EXPECT_EQ(realOf("-0"), 0.0);
    EXPECT_EQ(realOf("1.5\r"), 1.5);
    EXPECT_EQ(realOf("12345678901234567890123456789"), 12345678901234567890123456789.0);
    EXPECT_EQ(realOf("0.1000000000000000055511151231257827"), 0.1);
    EXPECT_EQ(realOf("1e-400"), 0.0);
    EXPECT_EQ(realOf("1.5D+02"), 150.0);
}

TEST(TextGroups, ReadADecimalCommaAsAPoint) {
    EXPECT_EQ(realOf("1,5"), 1.5);
    TextGroups groups(windowOn("10\n1,5\n20\n2.5\n"));
    while (groups.next()) {
        groups.real();
    }
    EXPECT_EQ(groups.decimalCommas(), 1U);
}

TEST(TextGroups, SayOfWhatIsNoNumberThatItIsNone) {
    for (const char* const value : {"", "abc", "1.#QNAN", "-1.#IND", "1.#INF", "nan", "1 2", "0x10",
                                    "1e400", "--1", "1.2.3", "1,2,3"}) {
        EXPECT_FALSE(std::isfinite(realOf(value))) << value;
    }
}

TEST(TextGroups, HaveTheNearestDoubleWhateverTheNumberOfDigits) {
    for (int digits = 1; digits < 25; ++digits) {
        for (const double number : {1.0 / 3, 123456.789, 9007199254740993.0, 2.0 / 3e-7}) {
            std::vector<char> text(64);
            std::snprintf(text.data(), text.size(), "%.*f", digits, number);
            EXPECT_EQ(realOf(text.data()), std::strtod(text.data(), nullptr)) << text.data();
        }
    }
}

TEST(TextGroups, HaveWholeNumbersAlsoWhereAPointIsBehindThem) {
    const std::string text = "70\n     3\n70\n4.0\n70\n-5\n70\nx\n70\n99999999999999999999\n";
    TextGroups groups(windowOn(text));
    std::vector<std::int64_t> numbers;
    while (groups.next()) {
        numbers.push_back(groups.integer());
    }
    EXPECT_EQ(numbers, (std::vector<std::int64_t>{3, 4, -5, 0, INT64_MAX}));
}

TEST(TextGroups, AreReadTheSameWhereverTheTextEnds) {
    const std::string text = "  0\r\nLINE\r\n 10\r\n-12.5e3\r\n";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        // A copy of its own size: what is read behind it is found.
        const std::vector<char> part(text.begin(),
                                     text.begin() + static_cast<std::ptrdiff_t>(size));
        TextGroups groups({part.data(), part.size()});
        while (groups.next()) {
            groups.real();
            groups.text();
        }
    }
}

/// Lines of all sorts, many of them no group, some longer than a window.
std::string randomText(std::mt19937& random) {
    const auto below = [&](std::size_t most) { return random() % most; };
    const std::vector<std::string> lines = {"0",    "LINE",   " 10", "1.5",  "-12.25e3", "  40  ",
                                            "8",    "walls",  "+20", "1,5",  "",         "junk",
                                            "\t70", "  12.0", "12",  "1e",   "5\r",      "-",
                                            "999",  "\r",     "0.1", "1234", "77777",    "777777"};
    const std::vector<std::string> ends = {"\n", "\r\n", "\r"};
    const std::string& end = ends[below(ends.size())];
    std::string text = below(8) == 0 ? "\xEF\xBB\xBF" : "";
    for (std::size_t i = below(60); i > 0; --i) {
        const std::size_t blanks = below(20) == 0 ? below(400) : 0;
        text += std::string(blanks, ' ') + lines[below(lines.size())];
        text += std::string(below(20) == 0 ? below(400) : 0, below(2) == 0 ? ' ' : '7');
        text += i == 1 && below(2) == 0 ? "" : end;
    }
    return text;
}

/// All that the groups of a text say, in words; of each the number, the text or nothing is asked
/// for first.
std::vector<std::string> everythingOf(ByteWindow window) {
    std::vector<std::string> found;
    TextGroups groups(std::move(window));
    for (int i = 0; groups.next(); ++i) {
        std::string group =
            std::to_string(groups.position()) + ": " + std::to_string(groups.code());
        if (i % 4 == 0) {
            group += "=" + std::to_string(groups.real());
        }
        if (i % 4 < 2) {
            group += "=" + std::string(groups.text()) + "," + std::to_string(groups.integer());
        }
        if (i % 4 < 3) {
            group += "=" + std::to_string(groups.real());
        }
        found.push_back(group);
    }
    found.push_back(std::to_string(groups.skippedLines()) + " skipped");
    found.push_back(std::to_string(groups.decimalCommas()) + " commas");
    return found;
}

TEST(TextGroups, AreTheSameInWhateverPiecesTheyCome) {
    std::mt19937 random(20261122);
    for (int round = 0; round < 300; ++round) {
        const std::string text = randomText(random);
        const std::vector<std::string> groups = everythingOf(windowOn(text));
        for (const std::size_t piece : {1, 3, 50, 129, 100000}) {
            for (const std::size_t capacity : {1, 130, 300, 100000}) {
                ASSERT_EQ(everythingOf({piecesOf(text, piece), 0, capacity}), groups)
                    << piece << " bytes at a time in a window of " << capacity << ":\n"
                    << text;
            }
        }
    }
}

TEST(TextGroups, EndTheirLinesInTheSameWayInWhateverPiecesTheyCome) {
    // Nothing but CR for longer than lines are looked through.
    std::string text;
    while (text.size() < 70000) {
        text += "  0\rLINE\r";
    }
    for (const std::string& end : {std::string("10\r1.5\r"), std::string("10\n1.5\n")}) {
        const std::string whole = text + end;
        EXPECT_EQ(everythingOf({piecesOf(whole, 1000), 0, 4096}), everythingOf(windowOn(whole)));
    }
}

} // namespace
