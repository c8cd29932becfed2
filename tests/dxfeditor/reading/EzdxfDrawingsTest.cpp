#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "tests/support/DrawingText.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

const std::string python = "/usr/bin/python3 ";

std::vector<std::string> linesOf(const std::string& path) {
    std::istringstream stream(contentOf(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

using Point = std::tuple<double, double, double>;

/// Drawings written by ezdxf, with a list of their entities and points made beside it.
class EzdxfDrawings : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        if (std::system((python + "-c 'import ezdxf' 2>/dev/null").c_str()) != 0) {
            GTEST_SKIP() << "python3-ezdxf is not installed";
        }
        const std::string script = CONVERTERS_TEST_DIR "/support/write_drawings.py";
        ASSERT_EQ(std::system(
                      (python + script + " " + folder.path().string() + " " + GetParam()).c_str()),
                  0);
    }

    std::string file(const std::string& suffix) const { return folder.file(GetParam() + suffix); }

    TemporaryDirectory folder;
};

TEST_P(EzdxfDrawings, HaveTheirEntitiesInOrder) {
    const std::shared_ptr<DXFDocument> document = DXFDocument::load(file(".dxf"));
    ASSERT_NE(document, nullptr);
    const std::vector<std::string> expected = linesOf(file(".entities"));
    ASSERT_GT(expected.size(), 10U);
    std::vector<std::string> found;
    for (const auto& entity : document->entities()) {
        const std::string line = describe(*entity);
        const std::size_t color = line.find(' ', line.find('{')) + 1;
        found.push_back(line.substr(0, line.find(' ', color)));
    }
    EXPECT_EQ(found, expected);
    EXPECT_NE(document->getLayer("walls"), nullptr);
}

TEST_P(EzdxfDrawings, AreSampledIntoTheirPoints) {
    const std::string text = contentOf(file(".dxf"));
    std::vector<cv::Point3_<double>> points;
    ASSERT_TRUE(converters::fromDxf({text.begin(), text.end()}, points));
    std::vector<Point> found;
    for (const auto& point : points) {
        found.emplace_back(point.x, point.y, point.z);
    }
    std::vector<Point> expected;
    std::istringstream stream(contentOf(file(".points")));
    for (double x, y, z; stream >> x >> y >> z;) {
        expected.emplace_back(x, y, z);
    }
    ASSERT_EQ(found.size(), expected.size());
    ASSERT_GT(found.size(), 300U);
    // Points that differ in the last bits only must not change places.
    const auto before = [](const Point& a, const Point& b) {
        const auto rounded = [](const Point& p) {
            return std::make_tuple(std::round(std::get<0>(p) * 1e6),
                                   std::round(std::get<1>(p) * 1e6),
                                   std::round(std::get<2>(p) * 1e6));
        };
        return rounded(a) < rounded(b);
    };
    std::sort(found.begin(), found.end(), before);
    std::sort(expected.begin(), expected.end(), before);
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_NEAR(std::get<0>(found[i]), std::get<0>(expected[i]), 2e-6) << i;
        EXPECT_NEAR(std::get<1>(found[i]), std::get<1>(expected[i]), 2e-6) << i;
        EXPECT_NEAR(std::get<2>(found[i]), std::get<2>(expected[i]), 2e-6) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Releases, EzdxfDrawings, testing::Values("R12", "R2000", "R2018"),
                         [](const auto& release) { return release.param; });

} // namespace
