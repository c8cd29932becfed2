// Drawings whose points do not fit any memory. This executable has its own operator new, which
// refuses what no machine has and remembers the largest request, so that the tests mean the same
// with and without sanitizers, whose allocators end the process instead.

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPolyline.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr std::size_t mostBytes = std::size_t{1} << 30;

std::size_t largestRequest = 0;
std::size_t bytesGiven = 0;

} // namespace

// Not inlined: the compiler would take malloc and free for a mismatched pair with new and delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (size > largestRequest) {
        largestRequest = size;
    }
    if (size <= mostBytes) {
        if (void* memory = std::malloc(size > 0 ? size : 1)) {
            bytesGiven += size;
            return memory;
        }
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using Point = cv::Point3_<double>;

constexpr std::size_t mostPointsOfALine = std::size_t{2147483647} + 1;
constexpr double longestLine = 214748364.75;

TEST(HugeDrawingTest, FailsAtOnceWithBadAllocWhenThePointsDoNotFitTheMemory) {
    DXFDocument document;
    for (int i = 0; i < 1000; ++i) {
        document.addEntity(std::make_shared<DXFLine>(Point(0, i, 0), Point(longestLine, i, 0)));
    }
    largestRequest = 0;
    bytesGiven = 0;
    EXPECT_THROW(document.getPoints(), std::bad_alloc);
    EXPECT_EQ(largestRequest, 1000 * mostPointsOfALine * sizeof(Point))
        << "room for all points is asked for in one piece";
    EXPECT_LT(bytesGiven, 100000U) << "and before anything else is done";
}

TEST(HugeDrawingTest, ALineOfTheMostStepsThatFit32BitsHasOnePointMore) {
    DXFDocument document;
    document.addEntity(std::make_shared<DXFLine>(Point(0, 0, 0), Point(0, longestLine, 0)));
    largestRequest = 0;
    EXPECT_THROW(document.getPoints(), std::bad_alloc);
    EXPECT_EQ(largestRequest, mostPointsOfALine * sizeof(Point));
}

/// More points than a vector can ever hold, whatever the memory: 2^59 of them.
TEST(HugeDrawingTest, FailsWithBadAllocBeyondTheLargestVectorToo) {
    const std::vector<Segment> segments(1U << 14, Segment{0, 0, longestLine, 0});
    auto polyline = std::make_shared<DXFPolyline>(0U, 0U, 0U);
    polyline->setSegments(segments);
    DXFDocument document;
    for (int i = 0; i < 1 << 14; ++i) {
        document.addEntity(polyline);
    }
    EXPECT_THROW(document.getPoints(), std::bad_alloc);
}

TEST(HugeDrawingTest, AFailureLeavesTheDrawingAsItWas) {
    DXFDocument document;
    const auto line = std::make_shared<DXFLine>(Point(0, 0, 0), Point(longestLine, 0, 0));
    document.addEntity(line);
    document.addEntity(std::make_shared<DXFLine>(Point(0, 0, 0), Point(1, 0, 0)));
    EXPECT_THROW(document.getPoints(), std::bad_alloc);
    document.deleteEntity(line);
    EXPECT_EQ(document.getPoints().size(), 11U);
}

} // namespace
