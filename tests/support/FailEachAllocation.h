#pragma once

#include "tests/support/FailingAllocator.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

enum class Outcome { ReturnedTrue, ReturnedFalse, BadAlloc, OtherException };

/// How a call with failing allocations ends.
template <typename Call>
Outcome outcomeOf(Call call, std::size_t first, allocator::Failure failure) {
    const allocator::Failing failing(first, failure);
    try {
        return call() ? Outcome::ReturnedTrue : Outcome::ReturnedFalse;
    } catch (const std::bad_alloc&) {
        return Outcome::BadAlloc;
    } catch (...) {
        return Outcome::OtherException;
    }
}

/// What one attempt with a failed allocation came to.
struct Attempt {
    Outcome outcome = Outcome::OtherException;
    bool hasFailed = false;
    /// The output is complete after a call that succeeded, and as promised after one that did not.
    bool isOutputRight = false;
    bool worksAfterwards = false;
    std::size_t leakedBlocks = 0;
    std::size_t leakedBytes = 0;
};

/// A function under test: `Case` is made anew for each attempt. It has call(), isComplete() for the
/// output of a call that succeeded and isAfterFailure() for that of one that did not.
template <typename Case>
Attempt attempt(std::size_t first, allocator::Failure failure) {
    Attempt result;
    const std::size_t blocksBefore = allocator::liveBlocks();
    const std::size_t bytesBefore = allocator::liveBytes();
    {
        Case tried;
        result.outcome = outcomeOf([&] { return tried.call(); }, first, failure);
        result.hasFailed = allocator::hasFailed();
        result.isOutputRight =
            result.outcome == Outcome::ReturnedTrue ? tried.isComplete() : tried.isAfterFailure();
    }
    result.leakedBlocks = allocator::liveBlocks() - blocksBefore;
    result.leakedBytes = allocator::liveBytes() - bytesBefore;
    Case again;
    result.worksAfterwards = again.call() && again.isComplete();
    return result;
}

/// A block of the allocator for the longest line that dxflib reads.
inline constexpr std::size_t longestDxflibLine = 1040;

/// What the function under test makes use of.
struct Uses {
    /// Files: they may fail to open for lack of memory, which is reported as false.
    bool files = false;
    /// dxflib: it loses the line that it is reading, or the path that it is to open, when it runs
    /// out of memory there. It reads numbers through streams, which keep a lack of memory to
    /// themselves: with memory for everything but that, a number is lost without a word.
    bool dxflib = false;
};

/// Fails each allocation that a call makes, alone and with all after it.
template <typename Case>
void failEachAllocation(Uses uses = {}) {
    // What is made once for the process is no leak.
    attempt<Case>(1'000'000'000, allocator::Failure::Once);
    for (const auto failure : {allocator::Failure::Once, allocator::Failure::FromThenOn}) {
        std::size_t first = 1;
        for (;; ++first) {
            const Attempt result = attempt<Case>(first, failure);
            SCOPED_TRACE("allocation " + std::to_string(first) +
                         (failure == allocator::Failure::Once ? " alone" : " and all after it"));
            ASSERT_TRUE(result.outcome == Outcome::ReturnedTrue ||
                        result.outcome == Outcome::BadAlloc ||
                        (uses.files && result.outcome == Outcome::ReturnedFalse))
                << static_cast<int>(result.outcome);
            const bool mayMisread = uses.dxflib && result.outcome == Outcome::ReturnedTrue &&
                                    failure == allocator::Failure::Once;
            ASSERT_TRUE(result.isOutputRight || mayMisread) << static_cast<int>(result.outcome);
            ASSERT_TRUE(result.worksAfterwards);
            const bool mayLeak = uses.dxflib && result.outcome == Outcome::BadAlloc;
            ASSERT_LE(result.leakedBlocks, mayLeak ? 1U : 0U);
            ASSERT_LE(result.leakedBytes, mayLeak ? longestDxflibLine : 0U);
            if (!result.hasFailed) {
                ASSERT_EQ(result.outcome, Outcome::ReturnedTrue);
                break;
            }
        }
        EXPECT_GT(first, 1U) << "nothing was allocated";
    }
}
