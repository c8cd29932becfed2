// Which functions may run at the same time. Run with the thread sanitizer too (preset tsan).
#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFDraw.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <pcl/console/print.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <thread>

namespace {

using Bytes = std::vector<unsigned char>;
using Points = std::vector<cv::Point3_<double>>;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

constexpr int threads = 8;
constexpr int rounds = 10;

/// Runs the body in many threads that start together, several times in each.
void inManyThreads(const std::function<void(int)>& body, int times = rounds) {
    std::atomic<int> ready{0};
    std::vector<std::thread> running;
    for (int number = 0; number < threads; ++number) {
        running.emplace_back([&, number] {
            for (++ready; ready < threads;) {
                std::this_thread::yield();
            }
            for (int time = 0; time < times; ++time) {
                body(number);
            }
        });
    }
    for (std::thread& thread : running) {
        thread.join();
    }
}

Cloud scan() {
    Cloud cloud;
    for (int i = 0; i < 200; ++i) {
        pcl::PointXYZI point;
        point.x = 0.25F * static_cast<float>(i);
        point.y = 1.0F / (1.0F + static_cast<float>(i));
        point.z = -3.0F;
        point.intensity = static_cast<float>(i % 255);
        cloud.push_back(point);
    }
    return cloud;
}

/// A drawing of every kind of entity. The numbers with a plus sign are read by dxflib.
std::vector<char> drawing() {
    std::string text = "0\nLAYER\n2\nwalls\n0\nLTYPE\n2\ndots\n73\n2\n40\n1.5\n49\n0.5\n";
    for (int i = 0; i < 20; ++i) {
        const std::string x = std::to_string(i);
        text += "0\nPOINT\n10\n" + x + "\n20\n+1.5\n0\nLINE\n10\n" + x + "\n11\n+2.5\n21\n1.25\n" +
                "0\nCIRCLE\n10\n" + x + "\n40\n0.5\n0\nARC\n40\n1.5\n50\n10\n51\n+95.5\n" +
                "0\nLWPOLYLINE\n90\n2\n10\n+0.5\n20\n1\n10\n2\n20\n3\n" +
                "0\nPOLYLINE\n0\nVERTEX\n10\n+1.5\n0\nVERTEX\n10\n2\n0\nSEQEND\n" +
                "0\nSPLINE\n71\n1\n72\n4\n73\n2\n40\n0\n40\n0\n40\n1.5\n40\n1.5\n10\n0.5\n20\n0\n" +
                "10\n1.5\n20\n1\n";
    }
    text += "0\nEOF\n";
    return {text.begin(), text.end()};
}

Bytes refusedPly() {
    const std::string text = "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nwhat\n"
                             "end_header\n1\n";
    return {text.begin(), text.end()};
}

std::string asciiBody(const PLYSerializer& serializer, const pcl::PCLPointCloud2& cloud) {
    std::ostringstream stream;
    serializer.WriteDataASCII(cloud, stream);
    return stream.str();
}

/// What DXFDraw makes of a point and of an entity that it does not write.
std::string drawn(const std::string& path) {
    DXFDraw draw(path);
    draw.setupFile();
    draw.document.addEntity(std::make_shared<DXFPoint>(1.5, 2.5, 3.5));
    draw.document.addEntity(nullptr);
    draw.saveFile();
    return contentOf(path);
}

TEST(Threads, AllFunctionsButToDxfMayRunAtTheSameTimeOnSharedInputs) {
    const Cloud cloud = scan();
    const std::vector<char> dxf = drawing();
    const Bytes refused = refusedPly();
    const TemporaryDirectory directory;
    const std::string path = directory.file("drawing.dxf");
    writeContent(path, std::string(dxf.begin(), dxf.end()));
    pcl::PCLPointCloud2 raw;
    pcl::toPCLPointCloud2(cloud, raw);
    raw.fields[3].datatype = 77; // reported for each point

    Bytes binary;
    Bytes ascii;
    ASSERT_TRUE(converters::toPlyBinary(cloud, binary));
    ASSERT_TRUE(converters::toPlyAscii(cloud, ascii));
    Points walk;
    ASSERT_TRUE(converters::fromDxf(dxf, walk));
    const PLYSerializer serializer;
    const std::string body = asciiBody(serializer, raw);
    const std::string ownDrawing = drawn(directory.file("drawn.dxf"));
    ASSERT_FALSE(ownDrawing.empty());
    DXFDocument shared;
    DXFReader(shared).load(dxf.data(), dxf.size());
    shared.setup();

    std::atomic<int> wrong{0};
    const auto callAll = [&](int number) {
        const auto check = [&](bool isRight) { wrong += isRight ? 0 : 1; };
        Bytes out;
        check(converters::toPlyBinary(cloud, out) && out == binary);
        check(converters::toPlyAscii(cloud, out) && out == ascii);
        check(!converters::toPlyAscii(Cloud(), out));
        Cloud back;
        check(converters::fromPly(binary, back).success && back[7].x == cloud[7].x);
        check(converters::fromPly(ascii, back).success && back[7].x == cloud[7].x);
        check(!converters::fromPly(refused, back).success);
        Points points;
        check(converters::fromDxf(dxf, points) && points == walk);
        pcl::PointCloud<pcl::PointXYZ> narrow;
        check(converters::fromDxf(dxf, narrow) && narrow.size() == walk.size());
        check(converters::from_file(path, out) && out.size() == dxf.size());
        const std::shared_ptr<DXFDocument> document = DXFDocument::load(path);
        document->setup();
        check(document->getPoints() == walk);
        check(shared.getPoints() == walk && shared.getLayer("walls") != nullptr);
        check(asciiBody(serializer, raw) == body);
        check(drawn(directory.file("drawn" + std::to_string(number) + ".dxf")) == ownDrawing);
    };
    const auto messagesOf = [](const std::function<void()>& calls) {
        const CapturedLog log;
        calls();
        return log.messages().size();
    };
    const std::size_t messages = messagesOf([&] { callAll(0); });
    EXPECT_GT(messages, cloud.size());
    EXPECT_EQ(messagesOf([&] { inManyThreads(callAll); }), threads * rounds * messages);
    EXPECT_EQ(wrong, 0);
}

TEST(Threads, OneToDxfAtATimeMayRunBesideEverythingElse) {
    const Points points = {{1.5, 2.5, 3.5}, {-1.0, 0.0, 1.0}};
    const std::vector<char> dxf = drawing();
    Bytes expected;
    ASSERT_TRUE(converters::toDxf(points, expected));
    Points walk;
    ASSERT_TRUE(converters::fromDxf(dxf, walk));
    std::mutex oneAtATime;
    std::atomic<int> wrong{0};
    inManyThreads([&](int number) {
        if (number < 2) {
            const std::lock_guard<std::mutex> lock(oneAtATime);
            Bytes out;
            wrong += converters::toDxf(points, out) && out == expected ? 0 : 1;
        } else {
            Points read;
            wrong += converters::fromDxf(dxf, read) && read == walk ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(Threads, CallsOfToDxfThatOverlapGiveTheWholeDrawingOrNothing) {
    std::vector<Points> points;
    std::vector<Bytes> expected(threads);
    for (Bytes& file : expected) {
        points.emplace_back(100 * (points.size() + 1), cv::Point3_<double>(-0.5, 0.5, 1.5));
        ASSERT_TRUE(converters::toDxf(points.back(), file));
    }
    std::atomic<int> wrong{0};
    inManyThreads([&](int number) {
        const auto mine = static_cast<std::size_t>(number);
        Bytes out = {1, 2, 3};
        const bool isMade = converters::toDxf(points[mine], out);
        wrong += (isMade ? out == expected[mine] : out.empty()) ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    const std::string transientFile = "tmp" + std::to_string(getpid()) + ".dxf";
    EXPECT_FALSE(std::filesystem::exists(converters::tmpDxfPath / transientFile));
    Bytes out;
    EXPECT_TRUE(converters::toDxf(points[3], out) && out == expected[3]);
}

TEST(Threads, DrawingsMayBeReadAtTheSameTimeWhenTheGlobalLocaleHasADecimalComma) {
    const std::vector<char> dxf = drawing();
    Points walk;
    ASSERT_TRUE(converters::fromDxf(dxf, walk));
    const CommaLocale commas;
    const std::locale before;
    std::atomic<int> wrong{0};
    // Each start sets the locale, when all threads come to their first number.
    for (int start = 0; start < rounds; ++start) {
        inManyThreads(
            [&](int) {
                Points points;
                wrong += converters::fromDxf(dxf, points) && points == walk ? 0 : 1;
            },
            1);
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(std::locale() == before);
}

} // namespace
