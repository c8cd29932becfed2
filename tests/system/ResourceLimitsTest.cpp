// Drawings that claim too much, read in a process with limits.
#include "converters/Converters.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <new>
#include <string>
#include <vector>

namespace {

using Points = std::vector<cv::Point3_<double>>;

std::vector<char> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(ResourceLimits, TooManyPointsForTheAddressSpaceEndInBadAlloc) {
    const int status = inChildProcess([] {
        const rlimit limits = {std::size_t{1} << 30, std::size_t{1} << 30};
        if (setrlimit(RLIMIT_AS, &limits) != 0) {
            return 1;
        }
        Points points = {{7.0, 7.0, 7.0}};
        try {
            converters::fromDxf(bytesOf("0\nLINE\n11\n1e7\n0\nEOF\n"), points);
            return 2;
        } catch (const std::bad_alloc&) {
        }
        if (points != Points{{7.0, 7.0, 7.0}}) {
            return 3;
        }
        const bool isRead = converters::fromDxf(bytesOf("0\nLINE\n11\n1\n0\nEOF\n"), points);
        return isRead && points.size() == 11 ? 0 : 4;
    });
    EXPECT_EQ(status, 0);
}

/// A curve of half a million steps for each of a million points.
std::string costlySpline() {
    constexpr int degree = 1000;
    std::string text = "0\nSPLINE\n71\n" + std::to_string(degree) + "\n10\n100000\n";
    for (int i = 0; i < degree; ++i) {
        text += "10\n1\n";
    }
    for (int i = 0; i < 2 * degree + 2; ++i) {
        text += "40\n" + std::to_string(i) + "\n";
    }
    return text + "0\nEOF\n";
}

TEST(ResourceLimits, CostlySplineEndsTheProcessOfLimitedTimeAlone) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore = {0, 0};
        const rlimit oneSecond = {1, 2};
        setrlimit(RLIMIT_CORE, &noCore);
        if (setrlimit(RLIMIT_CPU, &oneSecond) == 0) {
            Points points;
            converters::fromDxf(bytesOf(costlySpline()), points);
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGXCPU);
}

} // namespace
