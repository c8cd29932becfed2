// What reading a hostile drawing may cost, before anything is sampled: time in proportion to the
// text, and 64 MiB and 200 bytes for each of its bytes.
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"

#ifdef CONVERTERS_COUNTED_MEMORY
#include "tests/support/FailingAllocator.h"
#endif

#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <ostream>
#include <string>

namespace {

/// Repeats what `part` makes of 0, 1, 2... until the text has `size` bytes.
std::string repeated(std::size_t size, const std::function<std::string(std::size_t)>& part) {
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) {
        text += part(i);
    }
    return text;
}

std::string repeated(std::size_t size, const std::string& part) {
    return repeated(size, [&](std::size_t) { return part; });
}

struct Pattern {
    const char* name;
    /// The text of about so many bytes.
    std::string (*text)(std::size_t size);
};

void PrintTo(const Pattern& pattern, std::ostream* stream) {
    *stream << pattern.name;
}

const Pattern patterns[] = {
    {"LayersOfDifferentNames",
     [](std::size_t size) {
         return repeated(size,
                         [](std::size_t i) { return "0\nLAYER\n2\n" + std::to_string(i) + "\n"; });
     }},
    {"LineTypesOfDifferentNames",
     [](std::size_t size) {
         return repeated(size, [](std::size_t i) {
             return "0\nLTYPE\n2\n" + std::to_string(i) + "\n73\n9\n49\n1\n";
         });
     }},
    {"PointsAndLinesInTurn",
     [](std::size_t size) { return repeated(size, "0\nPOINT\n0\nPOINT\n0\nLINE\n"); }},
    {"ShortestEntities", [](std::size_t size) { return repeated(size, "0\nARC\n"); }},
    {"OneRunOfPoints", [](std::size_t size) { return repeated(size, "0\nPOINT\n"); }},
    {"OneRunOfVertices",
     [](std::size_t size) { return "0\nPOLYLINE\n" + repeated(size, "0\nVERTEX\n10\n1\n"); }},
    {"OneRunOfVerticesWithoutAnEndAndANumberForDxflib",
     [](std::size_t size) {
         return "0\nPOLYLINE\n" + repeated(size, "0\nVERTEX\n10\n1\n") +
                "0\nVERTEX\n10\n+1\n0\nVERTEX\n";
     }},
    {"PolylinesWithoutVertices", [](std::size_t size) { return repeated(size, "0\nPOLYLINE\n"); }},
    {"RunsOfVerticesWithoutAPolyline",
     [](std::size_t size) { return repeated(size, "0\nVERTEX\n0\nSEQEND\n"); }},
    {"OneSplineOfManyKnots",
     [](std::size_t size) {
         return "0\nSPLINE\n72\n1000000\n" + repeated(size, "40\n1\n") + "0\nEOF\n";
     }},
    {"OneSplineOfManyControlPointsAndAHighDegree",
     [](std::size_t size) {
         return "0\nSPLINE\n71\n100000\n" + repeated(size, "10\n1\n40\n1\n40\n1\n") + "0\nEOF\n";
     }},
    {"TinySplinesThatClaimHugeCounts",
     [](std::size_t size) {
         return repeated(size, "0\nSPLINE\n72\n999999999\n73\n999999999\n74\n999999999\n");
     }},
    {"TinySplines", [](std::size_t size) { return repeated(size, "0\nSPLINE\n"); }},
    {"TinyLwPolylinesThatClaimHugeCounts",
     [](std::size_t size) { return repeated(size, "0\nLWPOLYLINE\n90\n1073741825\n10\n+1\n"); }},
    {"OneLwPolylineThatStartsOverAgainAndAgain",
     [](std::size_t size) {
         return "0\nLWPOLYLINE\n" + repeated(size, "90\n99999\n10\n+1\n") + "0\nEOF\n";
     }},
    {"OneGiganticLine",
     [](std::size_t size) {
         return "0\nMTEXT\n1\n" + std::string(size, 'x') + "\n0\nPOINT\n0\nEOF\n";
     }},
    {"LongLinesOnly",
     [](std::size_t size) { return repeated(size, std::string(1500, '0') + "\n"); }},
    {"NoLineEnds", [](std::size_t size) { return std::string(size, '0'); }},
    {"NothingButLineEnds", [](std::size_t size) { return std::string(size, '\n'); }},
    {"NothingButNuls", [](std::size_t size) { return std::string(size, '\0'); }},
    {"GroupCodesThatAreNoNumbers", [](std::size_t size) { return repeated(size, "POINT\nx\n"); }},
    {"GroupCodesThatDoNotFit",
     [](std::size_t size) { return repeated(size, "99999999999999999999\nx\n"); }},
    {"BlocksThatDoNotEnd",
     [](std::size_t size) { return repeated(size, "0\nBLOCK\n2\nb\n0\nPOINT\n"); }},
    {"CommentsThatDxflibFallsOver",
     [](std::size_t size) { return repeated(size, "999\ndxflib\n"); }},
    {"ObjectsThatAreDropped",
     [](std::size_t size) { return repeated(size, "0\nHATCH\n91\n99999999\n0\nLEADER\n"); }},
};

class HostileDrawing : public testing::TestWithParam<Pattern> {};

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// The least of a few attempts, which other work on the machine disturbs.
double secondsToRead(const std::string& text) {
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < 3; ++i) {
        const double start = processorSeconds();
        DXFDocument document;
        EXPECT_TRUE(DXFReader(document).load(text.data(), text.size()));
        least = std::min(least, processorSeconds() - start);
    }
    return least;
}

constexpr std::size_t smallSize = 40'000;
constexpr std::size_t largeSize = 10 * smallSize;

TEST_P(HostileDrawing, IsReadInTimeInProportionToItsSize) {
    const double small = secondsToRead(GetParam().text(smallSize));
    const double large = secondsToRead(GetParam().text(largeSize));
    // Ten times in proportion, a hundred times where time goes with the square. What takes next to
    // no time says nothing about either.
    constexpr double nextToNothing = 0.001;
    EXPECT_LT(large, 35 * std::max(small, nextToNothing));
}

#ifdef CONVERTERS_COUNTED_MEMORY

std::size_t bytesToRead(const std::string& text) {
    const std::size_t before = allocator::liveBytes();
    allocator::forgetPeak();
    DXFDocument document;
    EXPECT_TRUE(DXFReader(document).load(text.data(), text.size()));
    return allocator::peakBytes() - before;
}

TEST_P(HostileDrawing, IsReadInBoundedMemory) {
    constexpr std::size_t fixedLimit = std::size_t{64} << 20;
    constexpr std::size_t limitPerByte = 200;
    const std::size_t small = bytesToRead(GetParam().text(smallSize));
    const std::size_t large = bytesToRead(GetParam().text(largeSize));
    EXPECT_LE(small, fixedLimit);
    EXPECT_LE(large, small + limitPerByte * (largeSize - smallSize));
    RecordProperty("bytesForEachByte", static_cast<int>(large / largeSize));
}

#endif

INSTANTIATE_TEST_SUITE_P(Patterns, HostileDrawing, testing::ValuesIn(patterns),
                         [](const auto& pattern) { return std::string(pattern.param.name); });

} // namespace
