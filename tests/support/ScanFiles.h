#pragma once

#include "converters/Scan.h"
#include "converters/ScanReader.h"
#include "tests/support/Pieces.h"
#include "tests/support/PlyBytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A PLY file of float x, y, z, with other lines in the header where tests want them.
inline std::string asciiScan(const std::string& body, const std::string& count,
                             const std::string& moreLines = "") {
    return "ply\nformat ascii 1.0\nelement vertex " + count +
           "\nproperty float x\nproperty float y\nproperty float z\n" + moreLines + "end_header\n" +
           body;
}

/// What a scan came to: points, or a reason.
struct ReadScan {
    converters::ScanResult result;
    pcl::PointCloud<pcl::PointXYZI> cloud;
};

inline ReadScan readWhole(const std::string& file, const converters::ScanOptions& options = {}) {
    ReadScan scan;
    scan.result = converters::readScan(file.data(), file.size(), scan.cloud, options);
    return scan;
}

/// All points of a reader, `block` at a time.
inline ReadScan readBlocks(converters::ScanReader reader, std::size_t block) {
    ReadScan scan;
    std::vector<pcl::PointXYZI> points(block);
    std::size_t count = 0;
    static_cast<converters::ReadResult&>(scan.result) = reader.open();
    while (scan.result) {
        static_cast<converters::ReadResult&>(scan.result) =
            reader.read(points.data(), block, count);
        if (count == 0) {
            break;
        }
        scan.cloud.points.insert(scan.cloud.points.end(), points.begin(),
                                 points.begin() + static_cast<std::ptrdiff_t>(count));
    }
    scan.result.report = reader.report();
    return scan;
}

inline void expectSameReport(const converters::ScanReport& a, const converters::ScanReport& b) {
    EXPECT_EQ(a.format, b.format);
    EXPECT_EQ(a.points, b.points);
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_EQ(a.shift, b.shift);
    EXPECT_EQ(a.pointsWithoutPlace, b.pointsWithoutPlace);
    EXPECT_EQ(a.largestLoss, b.largestLoss);
    EXPECT_EQ(a.bytesBehind, b.bytesBehind);
    EXPECT_EQ(a.notes, b.notes);
    EXPECT_EQ(a.elements.size(), b.elements.size());
}

inline void expectSameScan(const ReadScan& a, const ReadScan& b) {
    ASSERT_EQ(a.result.success, b.result.success) << a.result.reason << " / " << b.result.reason;
    EXPECT_EQ(a.result.reason, b.result.reason);
    EXPECT_EQ(a.result.line, b.result.line);
    if (!a.result) {
        return;
    }
    ASSERT_EQ(a.cloud.size(), b.cloud.size());
    for (std::size_t i = 0; i < a.cloud.size(); ++i) {
        ASSERT_EQ(std::memcmp(a.cloud[i].data, b.cloud[i].data, sizeof a.cloud[i].data), 0) << i;
        ASSERT_EQ(std::memcmp(&a.cloud[i].intensity, &b.cloud[i].intensity, sizeof(float)), 0) << i;
    }
    expectSameReport(a.result.report, b.result.report);
}

/// Reads a scan from memory; expects the same from readers that get it in pieces.
inline ReadScan readEveryWay(const std::string& file, const converters::ScanOptions& options = {}) {
    const ReadScan whole = readWhole(file, options);
    EXPECT_EQ(whole.result.success, whole.result.reason.empty());
    struct Way {
        std::size_t piece;
        std::size_t block;
    };
    for (const Way way : {Way{1, 1}, Way{7, 1000}, Way{100000, 3}}) {
        if (file.size() / way.piece > 20000) {
            continue;
        }
        SCOPED_TRACE("pieces of " + std::to_string(way.piece));
        expectSameScan(whole, readBlocks(converters::ScanReader(piecesOf(file, way.piece), options),
                                         way.block));
    }
    return whole;
}

/// A point's numbers, for comparisons that show them.
inline std::vector<float> numbersOf(const pcl::PointXYZI& point) {
    return {point.x, point.y, point.z, point.intensity};
}

/// Expects that a file gives these points, four numbers each.
inline ReadScan expectPoints(const std::string& file, const std::vector<std::vector<float>>& points,
                             const converters::ScanOptions& options = {}) {
    ReadScan scan = readEveryWay(file, options);
    EXPECT_TRUE(scan.result) << scan.result.reason;
    EXPECT_EQ(scan.cloud.size(), points.size());
    for (std::size_t i = 0; i < std::min(points.size(), scan.cloud.size()); ++i) {
        EXPECT_EQ(numbersOf(scan.cloud[i]), points[i]) << "point " << i;
    }
    return scan;
}

/// Expects that a file is refused for this reason, and that the cloud is untouched.
inline converters::ScanResult expectRefused(const std::string& file, const std::string& reason,
                                            const converters::ScanOptions& options = {}) {
    pcl::PointCloud<pcl::PointXYZI> cloud(7, 1);
    const converters::ScanResult result =
        converters::readScan(file.data(), file.size(), cloud, options);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.reason, reason);
    EXPECT_EQ(cloud.size(), 7u);
    readEveryWay(file, options);
    return result;
}
