#include "converters/Converters.h"
#include "tests/support/CapturedLog.h"
#include "universal_log_interface/universal_log_interface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Runs the program that does not define p7::deliver.
///
/// @param environment  arguments of env: "NAME=value" or "-u NAME"
/// @param what         what the program is to deliver
/// @return the lines it wrote, to standard error unless it failed
std::vector<std::string> linesOf(const std::string& environment, const std::string& what) {
    const std::string command = "env " + environment + " " + LOG_CHILD + " " + what + " 2>&1";
    FILE* output = popen(command.c_str(), "r");
    if (output == nullptr) {
        throw std::runtime_error("popen");
    }
    std::vector<std::string> lines(1);
    for (int character; (character = std::fgetc(output)) != EOF;) {
        if (character == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += static_cast<char>(character);
        }
    }
    EXPECT_EQ(pclose(output), 0) << command;
    EXPECT_EQ(lines.back(), "") << "the last line has an end";
    lines.pop_back();
    return lines;
}

const char* const switchedOn = "VOLMAR_ENABLE_LOG=1";
/// "2000-01-31 23:59:59.999 "
constexpr std::size_t timeLength = 24;

void expectTimeIn(const std::string& line) {
    EXPECT_THAT(line.substr(0, timeLength),
                testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}\\.[0-9]{3} "));
}

std::string withoutTime(const std::string& line) {
    return line.size() < timeLength ? "" : line.substr(timeLength);
}

TEST(Log, SwitchIsNamedVolmarEnableLog) {
    EXPECT_EQ(p7::ENABLE_LOG_ENV_VAR, "VOLMAR_ENABLE_LOG");
}

TEST(Log, ProgramThatDefinesDeliverReceivesTheLibrarysMessages) {
    const CapturedLog log;
    std::vector<unsigned char> out;
    converters::toPlyAscii({}, out);
    converters::toPlyBinary({}, out);
    EXPECT_THAT(log.messages(), testing::SizeIs(2));
}

TEST(Log, MessagesAreDeliveredWhetherTheSwitchIsSetOrNot) {
    for (const char* value : {"", "0", "1"}) {
        ASSERT_EQ(setenv("VOLMAR_ENABLE_LOG", value, 1), 0);
        const CapturedLog log;
        std::vector<unsigned char> out;
        converters::toPlyAscii({}, out);
        EXPECT_THAT(log.messages(), testing::SizeIs(1)) << value;
    }
    unsetenv("VOLMAR_ENABLE_LOG");
}

TEST(Log, IsSilentByDefault) {
    EXPECT_THAT(linesOf("-u VOLMAR_ENABLE_LOG", "levels"), testing::IsEmpty());
    EXPECT_THAT(linesOf("-u VOLMAR_ENABLE_LOG", "library"), testing::IsEmpty());
}

TEST(Log, IsSilentWhenSwitchedOff) {
    EXPECT_THAT(linesOf("VOLMAR_ENABLE_LOG=", "levels"), testing::IsEmpty());
    EXPECT_THAT(linesOf("VOLMAR_ENABLE_LOG=0", "levels"), testing::IsEmpty());
}

TEST(Log, AnyOtherValueSwitchesItOn) {
    for (const char* value : {"1", "00", "no", "true"}) {
        EXPECT_THAT(linesOf(std::string("VOLMAR_ENABLE_LOG=") + value, "library"),
                    testing::SizeIs(1))
            << value;
    }
}

TEST(Log, EachMessageIsOneLineWithTimeLevelPlaceFunctionAndText) {
    const std::vector<std::string> lines = linesOf(switchedOn, "levels");
    const std::string expected[] = {
        "info unit/first:11 inform text a and 7",
        "warning unit/second:22 warn two\\x0Alines\\x1B[0m",
        "error unit/third:33 fail " + std::string(5000, 'x'),
    };
    ASSERT_THAT(lines, testing::SizeIs(std::size(expected)));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        expectTimeIn(lines[i]);
        EXPECT_EQ(withoutTime(lines[i]), expected[i]);
    }
}

TEST(Log, MessageOfTheLibraryNamesItsUnit) {
    const std::vector<std::string> lines = linesOf(switchedOn, "library");
    ASSERT_THAT(lines, testing::SizeIs(1));
    expectTimeIn(lines[0]);
    EXPECT_THAT(withoutTime(lines[0]),
                testing::MatchesRegex("info converters/PlySerializerDeserializer:[0-9]+ "
                                      "SerializePlyASCIIT PLYSerializer::SerializePlyBinary\\] "
                                      "Input point cloud has no data!"));
}

TEST(Log, MessagesOfManyThreadsAreWholeLines) {
    std::map<std::string, int> counts;
    for (const std::string& line : linesOf(switchedOn, "threads")) {
        expectTimeIn(line);
        ++counts[withoutTime(line)];
    }
    ASSERT_EQ(counts.size(), 8U);
    for (int i = 0; i < 8; ++i) {
        const std::string text = "info unit:1 function from " + std::to_string(i) + ": " +
                                 std::string(200, static_cast<char>('a' + i)) + " end";
        EXPECT_EQ(counts[text], 200) << i;
    }
}

} // namespace
