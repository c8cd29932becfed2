// The path of a drawing, a few contours at a time. That the contours are those of readPath() is
// tried with every drawing of the other tests: expectSameInPieces() in support/PathReading.cpp.
#include "converters/PathReader.h"

#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"
#include "tests/support/PathBytes.h"
#include "tests/support/PathInParts.h"
#include "tests/support/Pieces.h"
#include "tests/support/Repeated.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using converters::DrawingPath;
using converters::PathContours;
using converters::PathOptions;
using converters::PathReader;
using converters::ReadResult;

/// Three lines that do not meet, the second and third on layers of their own.
const std::string threeLines =
    drawingOf("0 LINE  10 0  20 0  11 1  21 0  0 LINE  8 b  10 5  20 0  11 6  21 0"
              "  0 LINE  8 c  10 9  20 4  11 9  21 7  0 TEXT  8 c");

PathReader readerOf(const std::string& file, const PathOptions& options = {}) {
    return {file.data(), file.size(), options};
}

TEST(PathReader, GivesContoursUntilThereArePointsEnough) {
    PathReader reader = readerOf(threeLines);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 3));
    EXPECT_EQ(contours.contours.size(), 2U);
    EXPECT_EQ(contours.points.size(), 4U);
    ASSERT_TRUE(reader.read(contours, 3));
    EXPECT_EQ(contours.contours.size(), 1U);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(reader.read(contours, 3));
        EXPECT_TRUE(contours.contours.empty() && contours.points.empty());
    }
}

TEST(PathReader, GivesOneContourAtLeast) {
    PathReader reader = readerOf(threeLines);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 0));
    EXPECT_EQ(contours.contours.size(), 1U);
}

TEST(PathReader, CountsInTheArraysThatItFills) {
    PathReader reader = readerOf(threeLines);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 1));
    ASSERT_TRUE(reader.read(contours, 1));
    ASSERT_EQ(contours.contours.size(), 1U);
    EXPECT_EQ(contours.contours[0].firstPoint, 0U);
    EXPECT_EQ(contours.contours[0].endPoint, 2U);
    EXPECT_EQ(contours.pieces.at(0).lastPoint, 1U);
    EXPECT_EQ(contours.pieces.at(0).entity, 0U);
    EXPECT_EQ(reader.report().layers.at(contours.contours[0].layer).name, "b");
    EXPECT_EQ(contours.points.at(0), cv::Point3d(5, 0, 0));
}

TEST(PathReader, FillsTheSameMemoryAgain) {
    const std::string file = drawingOf(repeated(100'000, "0 POINT  10 1  20 2  ") + "0 POINT");
    PathReader reader = readerOf(file);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 1000));
    const auto* const first = contours.points.data();
    ASSERT_TRUE(reader.read(contours, 1000));
    EXPECT_EQ(contours.points.data(), first);
}

TEST(PathReader, KnowsAllButBoundsAndLengthsOnceItIsOpen) {
    PathReader reader = readerOf(threeLines);
    EXPECT_TRUE(reader.report().layers.empty());
    ASSERT_TRUE(reader.open());
    EXPECT_EQ(reader.report().layers.size(), 3U);
    ASSERT_EQ(reader.report().leftOut.size(), 1U);
    EXPECT_EQ(reader.report().leftOut[0].kind, "TEXT");
    EXPECT_EQ(reader.report().length, 0);
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 3));
    EXPECT_EQ(reader.report().length, 2);
    EXPECT_EQ(reader.report().wayLength, 4);
    EXPECT_EQ(reader.report().highest, cv::Point3d(6, 0, 0));
    ASSERT_TRUE(reader.read(contours, 3));
    EXPECT_EQ(reader.report().length, 5);
    EXPECT_EQ(reader.report().wayLength, 9);
    EXPECT_EQ(reader.report().lowest, cv::Point3d(0, 0, 0));
    EXPECT_EQ(reader.report().highest, cv::Point3d(9, 7, 0));
}

TEST(PathReader, BoundsNeedNotHoldTheOrigin) {
    const std::string file = drawingOf("0 LINE  10 -9  20 -8  11 -5  21 -4");
    PathReader reader = readerOf(file);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours));
    ASSERT_TRUE(reader.read(contours));
    EXPECT_EQ(reader.report().lowest, cv::Point3d(-9, -8, 0));
    EXPECT_EQ(reader.report().highest, cv::Point3d(-5, -4, 0));
}

TEST(PathReader, CountsThePointsToCome) {
    PathReader reader = readerOf(threeLines);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    std::uint64_t points = 7;
    for (const std::uint64_t expected : {6U, 4U, 2U, 0U}) {
        ASSERT_TRUE(reader.countPoints(points));
        EXPECT_EQ(points, expected);
        ASSERT_TRUE(reader.read(contours, 1));
    }
}

TEST(PathReader, GivesAllAtOnceInAnotherOrder) {
    PathOptions options;
    options.order = converters::PathOrder::nearest;
    PathReader reader = readerOf(threeLines, options);
    ASSERT_TRUE(reader.open());
    std::uint64_t points = 0;
    ASSERT_TRUE(reader.countPoints(points));
    EXPECT_EQ(points, 6U);
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 1));
    EXPECT_EQ(contours.contours.size(), 3U);
    ASSERT_TRUE(reader.read(contours, 1));
    EXPECT_TRUE(contours.contours.empty());
}

TEST(PathReader, OfADrawingWithoutPathGivesNothing) {
    const std::string file = drawingOf("");
    PathReader reader = readerOf(file);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    contours.points.resize(3);
    ASSERT_TRUE(reader.read(contours));
    EXPECT_TRUE(contours.points.empty() && contours.contours.empty());
}

TEST(PathReader, RefusesWhatReadPathRefuses) {
    const std::string scan = "ply\n";
    PathReader reader = readerOf(scan);
    const ReadResult result = reader.open();
    EXPECT_EQ(result.reason, refusalOf(scan));
    EXPECT_NE(result.reason, "");
    PathContours contours;
    contours.points.resize(3);
    std::uint64_t points = 7;
    EXPECT_EQ(reader.read(contours).reason, result.reason);
    EXPECT_TRUE(contours.points.empty());
    EXPECT_EQ(reader.countPoints(points).reason, result.reason);
    EXPECT_EQ(points, 0U);
}

TEST(PathReader, RefusesToReadWhatWasNotOpened) {
    PathReader reader = readerOf(threeLines);
    PathContours contours;
    std::uint64_t points = 7;
    EXPECT_EQ(reader.read(contours).reason, "the drawing was not opened");
    EXPECT_EQ(reader.countPoints(points).reason, "the drawing was not opened");
    EXPECT_EQ(points, 0U);
    ASSERT_TRUE(reader.open());
    ASSERT_TRUE(reader.read(contours));
    EXPECT_EQ(contours.points.size(), 6U);
}

TEST(PathReader, OpensOnce) {
    auto lines = std::make_shared<std::string>(threeLines);
    const std::weak_ptr<std::string> held = lines;
    PathReader reader([lines, source = piecesOf(*lines, 9)](void* bytes, std::size_t room) mutable {
        return source(bytes, room);
    });
    lines.reset();
    ASSERT_TRUE(reader.open());
    EXPECT_TRUE(held.expired()) << "what was read is held";
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 1));
    ASSERT_TRUE(reader.open());
    ASSERT_TRUE(reader.read(contours, 1));
    EXPECT_EQ(contours.points.at(0).x, 5);
}

TEST(PathReader, FindsTooManyPointsWhenItComesToThem) {
    PathOptions options;
    options.maximumPoints = 5;
    PathReader reader = readerOf(threeLines, options);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 1));
    ASSERT_TRUE(reader.read(contours, 1));
    EXPECT_EQ(contours.points.size(), 2U);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(reader.read(contours, 1).reason, "more than 5 points");
        EXPECT_TRUE(contours.points.empty() && contours.contours.empty());
    }
    EXPECT_EQ(reader.report().highest, cv::Point3d(6, 0, 0)) << "those of contours that were given";
    EXPECT_EQ(reader.report().length, 2);
}

TEST(PathReader, FindsTooManyPointsWhereNoneIsAllowedAnyMore) {
    const std::string file =
        drawingOf("0 LINE  10 0  20 0  11 1  21 0  0 CIRCLE  10 9  20 9  40 3");
    PathOptions options;
    options.maximumPoints = 2;
    for (const bool isReused : {true, false}) {
        PathReader reader = readerOf(file, options);
        ASSERT_TRUE(reader.open());
        PathContours first;
        ASSERT_TRUE(reader.read(first, 1));
        PathContours second;
        EXPECT_EQ(reader.read(isReused ? first : second, 1).reason, "more than 2 points");
    }
}

TEST(PathReader, CountsTooManyPointsBeforeAnyIsGiven) {
    PathOptions options;
    options.maximumPoints = 5;
    PathReader reader = readerOf(threeLines, options);
    ASSERT_TRUE(reader.open());
    std::uint64_t points = 7;
    EXPECT_EQ(reader.countPoints(points).reason, "more than 5 points");
    EXPECT_EQ(points, 0U);
    PathContours contours;
    EXPECT_EQ(reader.read(contours, 1).reason, "more than 5 points");
}

// What is more than a few million points is counted first.
TEST(PathReader, GivesContoursOfMillionsOfPoints) {
    const std::string file = drawingOf("0 LINE  10 0  20 0  11 5  21 0  0 CIRCLE  10 50  20 0  40 3"
                                       "  0 CIRCLE  10 90  20 0  40 3  0 POINT  10 99  20 0");
    PathOptions options;
    options.tolerance = 2e-12;
    DrawingPath whole;
    ASSERT_TRUE(converters::readPath(file.data(), file.size(), whole, options));
    EXPECT_GT(whole.contours.at(1).endPoint, 2'200'000U);
    options.maximumPoints = whole.points.size();
    for (const std::size_t points : {std::size_t{1}, std::size_t{3'000'000}}) {
        DrawingPath path;
        const ReadResult result = readInParts({file.data(), file.size(), options}, points, path);
        ASSERT_EQ(result.reason, "");
        EXPECT_TRUE(bytesOf(path) == bytesOf(whole));
    }
    --options.maximumPoints;
    PathReader reader = readerOf(file, options);
    ASSERT_TRUE(reader.open());
    PathContours contours;
    ASSERT_TRUE(reader.read(contours, 3));
    ASSERT_TRUE(reader.read(contours, 1));
    EXPECT_EQ(reader.read(contours, 3'000'000).reason,
              "more than " + std::to_string(options.maximumPoints) + " points");
}

// Contours that are closed where the room ends that is written without counting.
TEST(PathReader, GivesThePointsOfReadPathWhereverTheseAreCountedFrom) {
    constexpr std::size_t uncounted = std::size_t{1} << 21;
    PathOptions options;
    options.step = 1;
    for (std::size_t more = 0; more < 6; ++more) {
        const std::size_t length = uncounted - 5 + more;
        const std::string file =
            drawingOf("0 LINE  10 0  20 0  11 " + std::to_string(length) +
                      "  21 0  0 LINE  10 0  20 5  11 1  21 5  0 LINE  10 1  20 5  11 0  21 6"
                      "  0 LINE  10 0  20 6  11 0  21 5");
        DrawingPath whole;
        ASSERT_TRUE(converters::readPath(file.data(), file.size(), whole, options));
        ASSERT_EQ(whole.contours.size(), 2U);
        EXPECT_EQ(whole.points.at(whole.contours[0].endPoint - 1),
                  cv::Point3d(static_cast<double>(length), 0, 0));
        DrawingPath path;
        ASSERT_TRUE(readInParts({file.data(), file.size(), options}, 1, path, false));
        EXPECT_TRUE(bytesOf(path) == bytesOf(whole)) << more;
    }
}

TEST(PathReader, TellsHowFarAllOfItIsAndCanBeStopped) {
    const std::string file =
        drawingOf(repeated(500'000, "0 CIRCLE  10 1  20 2  40 3  ") + "0 POINT");
    std::vector<double> reports;
    PathOptions options;
    options.progress = [&](double done) {
        reports.push_back(done);
        return true;
    };
    PathReader reader = readerOf(file, options);
    ASSERT_TRUE(reader.open());
    EXPECT_LT(reports.back(), 0.8);
    const std::size_t reportsOfOpening = reports.size();
    PathContours contours;
    std::uint64_t points = 0;
    ASSERT_TRUE(reader.read(contours, 10'000));
    ASSERT_TRUE(reader.countPoints(points));
    std::size_t reads = 0;
    do {
        ASSERT_TRUE(reader.read(contours, 10'000));
        ++reads;
    } while (!contours.contours.empty());
    EXPECT_GT(reads, 5U);
    EXPECT_GE(reports.size(), reportsOfOpening + reads);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_EQ(reports.back(), 1.0);

    bool goesOn = true;
    options.progress = [&](double) { return goesOn; };
    PathReader stopped = readerOf(file, options);
    ASSERT_TRUE(stopped.open());
    ASSERT_TRUE(stopped.read(contours, 10'000));
    goesOn = false;
    EXPECT_EQ(stopped.countPoints(points).reason, "stopped by the caller");
    goesOn = true;
    EXPECT_EQ(stopped.read(contours, 10'000'000).reason, "stopped by the caller");
}

TEST(PathReader, ReadsFilesAndNamesThoseThatItCannotOpen) {
    const TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "lines.dxf";
    std::ofstream(file) << threeLines;
    DrawingPath path;
    EXPECT_EQ(readInParts(PathReader(file), 1, path).reason, "");
    EXPECT_EQ(path.points.size(), 6U);
    PathReader missing(directory.path() / "missing.dxf");
    const std::string reason = missing.open().reason;
    DrawingPath untouched;
    EXPECT_EQ(reason, converters::readPath(directory.path() / "missing.dxf", untouched).reason);
    EXPECT_NE(reason.find("missing.dxf"), std::string::npos);
}

TEST(PathReader, ReadsWhatASourceGives) {
    DrawingPath path;
    EXPECT_EQ(
        readInParts(PathReader(piecesOf(threeLines, 7), {}, threeLines.size()), 1, path).reason,
        "");
    EXPECT_EQ(path.points.size(), 6U);
}

TEST(PathReader, ASourceMayThrow) {
    PathReader reader(
        [](void*, std::size_t) -> std::size_t { throw std::runtime_error("unplugged"); });
    EXPECT_THROW(reader.open(), std::runtime_error);
    PathContours contours;
    EXPECT_EQ(reader.read(contours).reason, "reading was interrupted");
    EXPECT_TRUE(contours.contours.empty());
}

TEST(PathReader, MayBeMoved) {
    PathReader first = readerOf(threeLines);
    ASSERT_TRUE(first.open());
    PathContours contours;
    ASSERT_TRUE(first.read(contours, 1));
    PathReader second = std::move(first);
    ASSERT_TRUE(second.read(contours, 1));
    EXPECT_EQ(contours.points.at(0).x, 5);
    PathReader third = readerOf(threeLines);
    third = std::move(second);
    ASSERT_TRUE(third.read(contours, 1));
    EXPECT_EQ(contours.points.at(0).x, 9);
}

} // namespace
