// What docs/security.md says of files from strangers and of who owns the temporary directory.
#include "converters/Converters.h"
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnFileSystem.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <memory>

namespace {

using Points = std::vector<cv::Point3_<double>>;
using Bytes = std::vector<unsigned char>;

std::vector<char> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(SecurityNotes, CoordinatesMayBeInfiniteOrNoNumbers) {
    Points points;
    ASSERT_TRUE(converters::fromDxf(bytesOf("0\nCIRCLE\n10\n1e308\n40\n1e308\n0\nEOF\n"), points));
    ASSERT_EQ(points.size(), 32U);
    EXPECT_TRUE(std::isinf(points[0].x));

    const std::string weighted = "0\nSPLINE\n71\n1\n10\n1\n41\n1\n10\n1e308\n41\n1e308\n"
                                 "40\n0\n40\n0\n40\n1\n40\n1\n0\nEOF\n";
    ASSERT_TRUE(converters::fromDxf(bytesOf(weighted), points));
    ASSERT_EQ(points.size(), 5U);
    EXPECT_TRUE(std::isnan(points[0].x));
}

TEST(SecurityNotes, WhatIsNoNumberReadsAsZero) {
    Points points;
    ASSERT_TRUE(converters::fromDxf(bytesOf("0\nPOINT\n10\nfive\n20\n5\n0\nEOF\n"), points));
    EXPECT_EQ(points, (Points{{0.0, 0.0, 5.0}}));
}

/// What a program could take for a drawing of its own trade: nothing beyond a kilometre.
bool isSensible(const DXFEntity& entity) {
    constexpr double most = 1000.0;
    constexpr unsigned highestDegree = 25;
    constexpr std::size_t mostSamples = 10'000;
    if (const auto* line = dynamic_cast<const DXFLine*>(&entity)) {
        const auto start = line->getP1();
        const auto end = line->getP2();
        return std::hypot(end.x - start.x, end.y - start.y) <= most;
    }
    if (const auto* circle = dynamic_cast<const DXFCircle*>(&entity)) {
        return circle->getRadius() <= most;
    }
    if (const auto* arc = dynamic_cast<const DXFArc*>(&entity)) {
        return arc->getRadius() <= most && std::fabs(arc->getStartAngle()) <= most &&
               std::fabs(arc->getEndAngle()) <= most;
    }
    if (const auto* polyline = dynamic_cast<const DXFPolyline*>(&entity)) {
        for (const DXFVertex& vertex : polyline->vertices()) {
            if (!(std::hypot(vertex.x(), vertex.y()) <= most)) {
                return false;
            }
        }
        return true;
    }
    if (const auto* spline = dynamic_cast<const DXFSpline*>(&entity)) {
        return spline->degree() <= highestDegree && spline->sampleCount(0.1) <= mostSamples;
    }
    return true;
}

std::shared_ptr<DXFDocument> load(const std::string& drawing) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("drawing.dxf");
    writeContent(path, drawing);
    return DXFDocument::load(path);
}

bool isSensible(const DXFDocument& document) {
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        if (!isSensible(*entity)) {
            return false;
        }
    }
    return true;
}

std::string spline(unsigned degree, const std::string& lastX) {
    std::string text = "0\nSPLINE\n71\n" + std::to_string(degree) + "\n";
    for (unsigned i = 0; i <= degree; ++i) {
        text += "10\n" + (i == degree ? lastX : "1") + "\n";
    }
    for (unsigned i = 0; i < 2 * degree + 2; ++i) {
        text += "40\n" + std::to_string(i) + "\n";
    }
    return text;
}

TEST(SecurityNotes, DrawingsThatClaimTooMuchAreKnownBeforeTheyAreSampled) {
    for (const std::string& claim :
         {std::string("0\nLINE\n11\n2e8\n"), std::string("0\nCIRCLE\n40\n3e7\n"),
          std::string("0\nARC\n40\n3e7\n51\n90\n"), std::string("0\nARC\n40\n1\n51\n1e9\n"),
          std::string("0\nLWPOLYLINE\n90\n2\n10\n0\n10\n2e8\n"), spline(4000, "2"),
          spline(3, "2e8")}) {
        const auto document = load(claim + "0\nEOF\n");
        ASSERT_NE(document, nullptr);
        ASSERT_EQ(document->entities().size(), 1U) << claim.substr(0, 40);
        EXPECT_FALSE(isSensible(*document)) << claim.substr(0, 40);
    }
}

TEST(SecurityNotes, DrawingsThatWereJudgedHaveThePointsOfFromDxf) {
    const std::string drawing = "0\nLINE\n11\n2\n0\nCIRCLE\n40\n3\n0\nARC\n40\n2\n51\n90\n"
                                "0\nLWPOLYLINE\n90\n2\n10\n7\n10\n9\n" +
                                spline(3, "2") + "0\nEOF\n";
    const auto document = load(drawing);
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(isSensible(*document));
    document->setup();
    Points points;
    ASSERT_TRUE(converters::fromDxf(bytesOf(drawing), points));
    EXPECT_EQ(document->getPoints(), points);
    EXPECT_GT(points.size(), 100U);
}

const std::filesystem::path base = converters::tmpDxfPath.parent_path().parent_path();

std::filesystem::path transientFile() {
    return converters::tmpDxfPath / ("tmp" + std::to_string(getpid()) + ".dxf");
}

std::size_t entriesOf(const std::filesystem::path& directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

bool writesADrawing() {
    Bytes out;
    return converters::toDxf(Points{{1.0, 2.0, 3.0}}, out) && !out.empty();
}

/// Runs `body` in a child process with an empty file system over the first directory of the
/// temporary directory's path, and expects 0 of it.
void withOwnBase(const char* options, const std::function<int()>& body) {
    const int status = inChildProcess([&] {
        umask(0022);
        return mountOwnFileSystem(base, options) ? body() : notPermitted;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST(SecurityNotes, LinkInPlaceOfAParentCostsNoFileButThatOfTheSameName) {
    withOwnBase("", [] {
        const std::filesystem::path elsewhere = base / "elsewhere";
        const std::filesystem::path target = elsewhere / converters::tmpDxfPath.filename();
        std::filesystem::create_directories(target);
        std::filesystem::create_symlink(elsewhere, converters::tmpDxfPath.parent_path());
        const std::filesystem::path neighbour = target / "tmp1x.dxf";
        writeContent(neighbour, "precious");
        writeContent(target / transientFile().filename(), "of the same name");
        if (!writesADrawing()) {
            return 1;
        }
        return entriesOf(target) == 1 && contentOf(neighbour) == "precious" ? 0 : 2;
    });
}

TEST(SecurityNotes, MissingDirectoriesAreMadeForTheCallerAloneToWrite) {
    withOwnBase("mode=1777", [] {
        if (setuid(nobody) != 0) {
            return notPermitted;
        }
        if (!writesADrawing()) {
            return 1;
        }
        for (const auto& made : {converters::tmpDxfPath, converters::tmpDxfPath.parent_path()}) {
            struct stat status = {};
            if (stat(made.c_str(), &status) != 0 || status.st_uid != nobody ||
                (status.st_mode & 0022U) != 0) {
                return 2;
            }
        }
        return 0;
    });
}

TEST(SecurityNotes, DirectoriesMadeBeforehandForTheProgramsUserServe) {
    withOwnBase("mode=755", [] {
        std::filesystem::create_directories(converters::tmpDxfPath);
        chmod(converters::tmpDxfPath.c_str(), 0700);
        if (chown(converters::tmpDxfPath.c_str(), nobody, nobody) != 0 || setuid(nobody) != 0) {
            return notPermitted;
        }
        if (!writesADrawing()) {
            return 1;
        }
        struct stat status = {};
        return stat(converters::tmpDxfPath.c_str(), &status) == 0 &&
                       (status.st_mode & 0777U) == 0700 && entriesOf(converters::tmpDxfPath) == 0
                   ? 0
                   : 2;
    });
}

TEST(SecurityNotes, DrawingsAreWrittenWhereThereIsNoProc) {
    withOwnBase("", [] {
        if (mount("tmpfs", "/proc", "tmpfs", 0, "") != 0) {
            return notPermitted;
        }
        const bool isWritten = writesADrawing();
        const std::filesystem::path victim = base / "victim";
        writeContent(victim, "precious");
        std::filesystem::create_symlink(victim, transientFile());
        return isWritten && writesADrawing() && entriesOf(converters::tmpDxfPath) == 0 &&
                       contentOf(victim) == "precious"
                   ? 0
                   : 1;
    });
}

} // namespace
