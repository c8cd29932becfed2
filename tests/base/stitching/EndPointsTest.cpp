// The ends of runs in their short form, against a plain vector of both ends of each.
#include "base/stitching/EndPoints.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

using base::EndPoints;
using base::NumberedEnd;
using base::Point;
using base::RunNumber;

struct PlainRun {
    Point first;
    Point last;
    bool hasOnePoint = false;
};

void add(const PlainRun& run, EndPoints& ends) {
    if (run.hasOnePoint) {
        ends.add(run.first);
    } else {
        ends.add(run.first, run.last);
    }
}

void expectSame(const EndPoints& ends, const std::vector<PlainRun>& plain) {
    ASSERT_EQ(ends.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const auto run = static_cast<RunNumber>(i);
        ASSERT_EQ(ends[NumberedEnd::first(run)], plain[i].first) << i;
        ASSERT_EQ(ends[NumberedEnd::last(run)], plain[i].last) << i;
        ASSERT_EQ(ends.hasOnePoint(run), plain[i].hasOnePoint) << i;
        ASSERT_EQ(ends.hasEqualEnds(run), plain[i].first == plain[i].last) << i;
    }
}

/// What the runs of one list have in common decides in which form their ends are kept.
struct Mixture {
    /// One run in so many has one point; 0 for none.
    std::size_t singles;
    /// One point in so many has a height; 0 for none.
    std::size_t heights;
};

std::vector<PlainRun> randomRuns(Random& random, const Mixture& mixture) {
    const auto isChosen = [&](std::size_t inMany) { return inMany != 0 && random.oneIn(inMany); };
    const auto point = [&] {
        const auto coordinate = [&] { return static_cast<double>(random.below(4)) - 1.5; };
        return Point(coordinate(), isChosen(mixture.heights) ? coordinate() : 0.0, coordinate());
    };
    std::vector<PlainRun> runs(random.below(50));
    for (PlainRun& run : runs) {
        run.hasOnePoint = isChosen(mixture.singles);
        run.first = point();
        run.last = run.hasOnePoint ? run.first : point();
    }
    return runs;
}

constexpr std::array<Mixture, 7> mixtures = {
    {{0, 0}, {1, 0}, {3, 0}, {20, 0}, {0, 3}, {1, 20}, {3, 3}}};

TEST(EndPoints, GiveBackTheEndsOfAllRuns) {
    Random random(1);
    for (const Mixture& mixture : mixtures) {
        for (int round = 0; round < 50; ++round) {
            const std::vector<PlainRun> runs = randomRuns(random, mixture);
            EndPoints ends;
            if (random.oneIn(2)) {
                ends.reserve(random.below(60));
            }
            for (const PlainRun& run : runs) {
                add(run, ends);
            }
            expectSame(ends, runs);
        }
    }
}

TEST(EndPoints, TakeTheRunsOfOthersBehindTheirOwn) {
    Random random(2);
    for (const Mixture& mine : mixtures) {
        for (const Mixture& others : mixtures) {
            std::vector<PlainRun> runs = randomRuns(random, mine);
            const std::vector<PlainRun> more = randomRuns(random, others);
            EndPoints ends;
            EndPoints moreEnds;
            for (const PlainRun& run : runs) {
                add(run, ends);
            }
            for (const PlainRun& run : more) {
                add(run, moreEnds);
            }
            ends.add(moreEnds);
            runs.insert(runs.end(), more.begin(), more.end());
            expectSame(ends, runs);
        }
    }
}

TEST(EndPoints, KeepHeightsThatAreNotFinite) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EndPoints ends;
    ends.add({1, 0, 2});
    ends.add({1, -infinity, 2}, {1, std::nan(""), 2});
    EXPECT_EQ(ends[NumberedEnd::first(0)].y, 0);
    EXPECT_EQ(ends[NumberedEnd::first(1)].y, -infinity);
    EXPECT_TRUE(std::isnan(ends[NumberedEnd::last(1)].y));
    EXPECT_FALSE(ends.hasEqualEnds(1));
}

} // namespace
