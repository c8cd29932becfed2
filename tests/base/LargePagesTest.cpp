#include "base/LargePages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstddef>
#include <numeric>
#include <vector>

namespace {

constexpr std::size_t large = std::size_t(8) << 20;

TEST(LargePages, ARefusalByTheKernelLeavesErrnoAsItIs) {
    void* const memory =
        mmap(nullptr, large, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    ASSERT_EQ(munmap(memory, large), 0);
    // Of memory that is not there every kernel says so, by errno.
    errno = EDOM;
    base::askForLargePages(memory, large);
    EXPECT_EQ(errno, EDOM);
}

TEST(LargePages, MemoryAroundWholePagesStaysUsable) {
    std::vector<unsigned char> bytes(large + 4096 + 5);
    for (const std::size_t skipped : {0U, 1U, 4095U, 4096U}) {
        base::askForLargePages(bytes.data() + skipped, bytes.size() - skipped);
    }
    base::askForLargePages(bytes.data(), 0);
    base::askForLargePages(nullptr, 0);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    for (std::size_t i = 0; i < bytes.size(); i += 4093) {
        ASSERT_EQ(bytes[i], i % 256);
    }
}

TEST(LargePages, ReservingKeepsWhatTheVectorHas) {
    std::vector<int> numbers = {1, 2, 3};
    base::reserveLarge(numbers, large);
    EXPECT_GE(numbers.capacity(), large);
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3}));
    const int* const data = numbers.data();
    base::reserveLarge(numbers, large / 2);
    EXPECT_EQ(numbers.data(), data) << "there is room already";
}

} // namespace
