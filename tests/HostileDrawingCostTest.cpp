// What reading a hostile drawing may cost, before anything is sampled: 64 MiB and 200 bytes for
// each of its bytes. instructions/growth.py has the time.
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/HostileDrawings.h"

#ifdef CONVERTERS_COUNTED_MEMORY
#include "tests/support/FailingAllocator.h"
#endif

#include <gtest/gtest.h>

#include <ostream>
#include <string>

void PrintTo(const HostileDrawing& drawing, std::ostream* stream) {
    *stream << drawing.name;
}

namespace {

class HostileDrawingCost : public testing::TestWithParam<HostileDrawing> {};

constexpr std::size_t smallSize = 40'000;
constexpr std::size_t largeSize = 10 * smallSize;

bool isRead(const std::string& text) {
    DXFDocument document;
    return DXFReader(document).load(text.data(), text.size());
}

#ifdef CONVERTERS_COUNTED_MEMORY

std::size_t bytesToRead(const std::string& text) {
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    EXPECT_TRUE(isRead(text));
    return allocator::peakBytes() - before;
}

TEST_P(HostileDrawingCost, IsBoundedInMemory) {
    constexpr std::size_t fixedLimit = std::size_t{64} << 20;
    constexpr std::size_t limitPerByte = 200;
    const std::size_t small = bytesToRead(GetParam().text(smallSize));
    const std::size_t large = bytesToRead(GetParam().text(largeSize));
    EXPECT_LE(small, fixedLimit);
    EXPECT_LE(large, small + limitPerByte * (largeSize - smallSize));
    RecordProperty("bytesForEachByte", static_cast<int>(large / largeSize));
}

#else

TEST_P(HostileDrawingCost, IsNotTheProcess) {
    EXPECT_TRUE(isRead(GetParam().text(largeSize)));
}

#endif

INSTANTIATE_TEST_SUITE_P(Drawings, HostileDrawingCost, testing::ValuesIn(hostileDrawings()),
                         [](const auto& drawing) { return std::string(drawing.param.name); });

} // namespace
