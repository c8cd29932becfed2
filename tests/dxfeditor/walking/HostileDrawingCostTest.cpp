// What reading a hostile drawing may cost, before anything is sampled: 64 MiB and 200 bytes for
// each of its bytes. instructions/growth.py has the time.
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/HostileDrawings.h"
#include "tests/support/TemporaryDirectory.h"

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

bool isReadFromFile(const std::string& path) {
    return DXFDocument::load(path) != nullptr;
}

std::size_t bytesToRead(bool (*read)(const std::string&), const std::string& from) {
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    EXPECT_TRUE(read(from));
    return allocator::peakBytes() - before;
}

void expectBound(std::size_t small, std::size_t large) {
    constexpr std::size_t fixedLimit = std::size_t{64} << 20;
    constexpr std::size_t limitPerByte = 200;
    EXPECT_LE(small, fixedLimit);
    EXPECT_LE(large, small + limitPerByte * (largeSize - smallSize));
    testing::Test::RecordProperty("bytesForEachByte", static_cast<int>(large / largeSize));
}

TEST_P(HostileDrawingCost, IsBoundedInMemory) {
    expectBound(bytesToRead(isRead, GetParam().text(smallSize)),
                bytesToRead(isRead, GetParam().text(largeSize)));
}

TEST_P(HostileDrawingCost, IsBoundedInMemoryFromAFile) {
    const TemporaryDirectory directory;
    const std::string small = directory.file("small.dxf");
    const std::string large = directory.file("large.dxf");
    writeContent(small, GetParam().text(smallSize));
    writeContent(large, GetParam().text(largeSize));
    expectBound(bytesToRead(isReadFromFile, small), bytesToRead(isReadFromFile, large));
}

#else

TEST_P(HostileDrawingCost, IsNotTheProcess) {
    EXPECT_TRUE(isRead(GetParam().text(largeSize)));
}

#endif

INSTANTIATE_TEST_SUITE_P(Drawings, HostileDrawingCost, testing::ValuesIn(hostileDrawings()),
                         [](const auto& drawing) { return std::string(drawing.param.name); });

} // namespace
