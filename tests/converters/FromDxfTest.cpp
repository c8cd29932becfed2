#include "converters/Converters.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Dxf.h"
#include "tests/support/SamePoints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using Point = cv::Point3_<double>;
using Points = std::vector<Point>;

std::vector<char> drawing(std::string_view groups) {
    const std::string text = dxf(groups);
    return {text.begin(), text.end()};
}

const std::vector<char> twoPoints =
    drawing("0 POINT  10 1.5  20 2  30 3  0 POINT  10 0.1  20 1e300  30 -0  0 EOF");

TEST(FromDxf, ReplacesThePointsByThoseOfTheDrawing) {
    Points points = {{7, 8, 9}};
    EXPECT_TRUE(converters::fromDxf(twoPoints, points));
    EXPECT_TRUE(samePoints(points, {{1.5, 2, -3}, {0.1, 1e300, 0}}));
}

TEST(FromDxf, LeavesThePointsWhenNothingCanBeLoaded) {
    Points points = {{7, 8, 9}};
    EXPECT_FALSE(converters::fromDxf({}, points));
    EXPECT_TRUE(samePoints(points, {{7, 8, 9}}));
}

TEST(FromDxf, WhatIsNoDrawingHasNoPoints) {
    Points points = {{7, 8, 9}};
    EXPECT_TRUE(converters::fromDxf(drawing("ply format ascii 1.0"), points));
    EXPECT_TRUE(points.empty());
}

TEST(FromDxf, SetsTheDrawingUpBeforeItSamplesIt) {
    Points points;
    EXPECT_TRUE(converters::fromDxf(
        drawing("0 LWPOLYLINE  90 4  70 1  10 0  20 0  10 1  20 0  10 1  20 1  10 0  20 1  0 EOF"),
        points));
    // Corners inside a run are there twice.
    EXPECT_EQ(points.size(), 4U * 11);
}

TEST(FromDxf, JoinsFourLinesIntoASquare) {
    Points points;
    EXPECT_TRUE(converters::fromDxf(
        drawing("0 LINE  10 0  20 0  11 1  21 0  0 LINE  10 0  20 1  11 1  21 1  "
                "0 LINE  10 1  20 0  11 1  21 1  0 LINE  10 0  20 0  11 0  21 1  0 EOF"),
        points));
    ASSERT_EQ(points.size(), 4U * 11 - 3);
    EXPECT_EQ(points.front(), points.back());
}

TEST(FromDxf, ReadsUpToTheFirstNul) {
    std::vector<char> data = drawing("0 POINT  10 1  0 LINE");
    data.push_back('\0');
    const std::vector<char> more = drawing("0 POINT  0 EOF");
    data.insert(data.end(), more.begin(), more.end());
    Points points;
    EXPECT_TRUE(converters::fromDxf(data, points));
    EXPECT_TRUE(samePoints(points, {{1, 0, 0}}));
}

TEST(FromDxf, LogsNothing) {
    const CapturedLog log;
    Points points;
    converters::fromDxf(twoPoints, points);
    converters::fromDxf({}, points);
    EXPECT_THAT(log.messages(), testing::IsEmpty());
}

TEST(FromDxf, GivesACloudOfThePointsWithoutWidthAndHeight) {
    pcl::PointCloud<pcl::PointXYZ> cloud;
    cloud.push_back({7, 8, 9});
    cloud.is_dense = false;
    cloud.header.frame_id = "frame";
    EXPECT_TRUE(converters::fromDxf(twoPoints, cloud));
    ASSERT_EQ(cloud.points.size(), 2U);
    EXPECT_EQ(cloud.width, 0U);
    EXPECT_EQ(cloud.height, 0U);
    EXPECT_FALSE(cloud.is_dense);
    EXPECT_EQ(cloud.header.frame_id, "frame");
    EXPECT_EQ(cloud.points[0].x, 1.5F);
    EXPECT_EQ(cloud.points[0].y, 2.0F);
    EXPECT_EQ(cloud.points[0].z, -3.0F);
    EXPECT_EQ(cloud.points[1].x, 0.1F);
    EXPECT_EQ(cloud.points[1].y, std::numeric_limits<float>::infinity());
    for (const pcl::PointXYZ& point : cloud.points) {
        EXPECT_EQ(point.data[3], 1.0F);
    }
}

TEST(FromDxf, LeavesTheCloudWhenNothingCanBeLoaded) {
    pcl::PointCloud<pcl::PointXYZ> cloud;
    cloud.push_back({7, 8, 9});
    EXPECT_FALSE(converters::fromDxf({}, cloud));
    ASSERT_EQ(cloud.points.size(), 1U);
    EXPECT_EQ(cloud.points[0].x, 7.0F);
    EXPECT_EQ(cloud.width, 1U);
    EXPECT_EQ(cloud.height, 1U);
}

/// The points that come back from a file made of `points`.
Points throughDxf(const Points& points) {
    std::vector<unsigned char> file;
    EXPECT_TRUE(converters::toDxf(points, file));
    Points back = {{7, 8, 9}};
    EXPECT_TRUE(converters::fromDxf({file.begin(), file.end()}, back));
    return back;
}

TEST(FromDxf, NoPointsComeBackAsNone) {
    EXPECT_TRUE(throughDxf({}).empty());
}

TEST(FromDxf, OnePointComesBackInTheDrawingPlane) {
    EXPECT_TRUE(samePoints(throughDxf({{1.5, -2.25, 3}}), {{1.5, 0, -2.25}}));
}

TEST(FromDxf, SeveralPointsComeBackInOrderWithTheOtherSignOfZ) {
    EXPECT_TRUE(
        samePoints(throughDxf({{1.5, -2.25, 3}, {0.1, 0, 0}}), {{1.5, -2.25, -3}, {0.1, 0, -0.0}}));
    Points points;
    Points expected;
    for (int i = 0; i < 10000; ++i) {
        points.emplace_back(i / 8.0, -i / 1024.0, i - 5000.5);
        expected.emplace_back(i / 8.0, -i / 1024.0, 5000.5 - i);
    }
    expected[0].y = points[0].y = 0.0;
    EXPECT_TRUE(samePoints(throughDxf(points), expected));
}

} // namespace
