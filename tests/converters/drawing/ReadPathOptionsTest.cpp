// What the options of a path do.
#include "converters/DrawingPath.h"
#include "tests/converters/drawing/support/PathReading.h"
#include "tests/support/Dxf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using converters::DrawingPath;
using converters::LengthUnit;
using converters::PathAxes;
using converters::PathOptions;
using converters::PathOrder;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

std::string units(int number) {
    return section("HEADER", "9 $INSUNITS  70 " + std::to_string(number));
}

const char* const inchLine = "0 LINE  10 0  20 0  30 1  11 1  21 2  31 1";
const char* const circle = "0 CIRCLE  10 0  20 0  40 100";

TEST(ReadPathOptions, KeepTheUnitOfTheDrawing) {
    const DrawingPath path = pathOf(drawingOf(inchLine, units(1)));
    EXPECT_EQ(path.drawingUnit, LengthUnit::inch);
    EXPECT_EQ(path.unit, LengthUnit::inch);
    EXPECT_EQ(describe(path), "(0, 0, 1) (1, 2, 1)\n");
    EXPECT_TRUE(path.notes.empty());
}

TEST(ReadPathOptions, ConvertToAUnit) {
    PathOptions options;
    options.unit = LengthUnit::millimetre;
    const DrawingPath path = pathOf(drawingOf(inchLine, units(1)), options);
    EXPECT_EQ(path.drawingUnit, LengthUnit::inch);
    EXPECT_EQ(path.unit, LengthUnit::millimetre);
    EXPECT_EQ(describe(path), "(0, 0, 25.4) (25.4, 50.8, 25.4)\n");
}

TEST(ReadPathOptions, TakeDrawingsWithoutUnitAsMillimetresAndSaySo) {
    PathOptions options;
    options.unit = LengthUnit::metre;
    const DrawingPath path = pathOf(drawingOf(inchLine), options);
    EXPECT_EQ(describe(path), "(0, 0, 0.001) (0.001, 0.002, 0.001)\n");
    EXPECT_EQ(path.drawingUnit, LengthUnit::none);
    EXPECT_EQ(path.unit, LengthUnit::metre);
    ASSERT_EQ(path.notes.size(), 1U);
    EXPECT_EQ(path.notes[0], "the drawing names no unit; its numbers are taken as millimetres");
    EXPECT_TRUE(pathOf(drawingOf(inchLine)).notes.empty()) << "nothing is converted";
}

TEST(ReadPathOptions, TakeImperialDrawingsWithoutUnitAsInches) {
    PathOptions options;
    options.unit = LengthUnit::millimetre;
    const DrawingPath path =
        pathOf(drawingOf(inchLine, section("HEADER", "9 $MEASUREMENT  70 0")), options);
    EXPECT_EQ(describe(path), "(0, 0, 25.4) (25.4, 50.8, 25.4)\n");
    EXPECT_EQ(path.notes.at(0), "the drawing names no unit; its numbers are taken as inches");
}

TEST(ReadPathOptions, SayWhenAUnitIsNotKnown) {
    for (const int number : {-1, 22, 99}) {
        const DrawingPath path = pathOf(drawingOf(inchLine, units(number)));
        EXPECT_EQ(path.unit, LengthUnit::none);
        EXPECT_EQ(path.notes.size(), 1U);
    }
}

TEST(ReadPathOptions, KnowTheLengthOfEveryUnit) {
    EXPECT_EQ(converters::metresPer(LengthUnit::none), 0.0);
    EXPECT_EQ(converters::metresPer(LengthUnit::metre), 1.0);
    EXPECT_DOUBLE_EQ(converters::metresPer(LengthUnit::yard), 0.9144);
    EXPECT_DOUBLE_EQ(converters::metresPer(LengthUnit::mile), 1609.344);
    EXPECT_DOUBLE_EQ(converters::metresPer(LengthUnit::mil), 2.54e-5);
    EXPECT_DOUBLE_EQ(converters::metresPer(LengthUnit::angstrom), 1e-10);
    EXPECT_DOUBLE_EQ(converters::metresPer(LengthUnit::surveyFoot), 1200.0 / 3937);
    EXPECT_EQ(converters::metresPer(static_cast<LengthUnit>(22)), 0.0);
}

TEST(ReadPathOptions, ScaleBehindUnits) {
    PathOptions options;
    options.unit = LengthUnit::millimetre;
    options.scale = 2;
    EXPECT_EQ(describe(pathOf(drawingOf(inchLine, units(1)), options)),
              "(0, 0, 50.8) (50.8, 101.6, 50.8)\n");
}

TEST(ReadPathOptions, LayTheDrawingIntoThePlaneOfTheCloud) {
    PathOptions options;
    options.axes = PathAxes::plain;
    const DrawingPath path = pathOf(drawingOf(inchLine), options);
    EXPECT_EQ(describe(path), "(0, 0) (1, 0, 2)\n");
    const DrawingPath round = pathOf(drawingOf("0 CIRCLE  10 1  20 2  30 3  40 1"), options);
    EXPECT_EQ(round.arcs.at(0).centre, cv::Point3d(1, 0, 2));
    EXPECT_EQ(round.arcs.at(0).normal, cv::Point3d(0, -1, 0));
}

/// The farthest that a chord of a circle around the origin is from it.
double sagittaOf(const DrawingPath& path, double radius) {
    double most = 0;
    for (std::size_t i = 1; i < path.points.size(); ++i) {
        const cv::Point3d middle = (path.points[i - 1] + path.points[i]) * 0.5;
        most = std::max(most, radius - std::hypot(middle.x, middle.y));
    }
    return most;
}

TEST(ReadPathOptions, KeepChordsWithinTheTolerance) {
    PathOptions options;
    options.tolerance = 0.5;
    const double most = sagittaOf(pathOf(drawingOf(circle), options), 100);
    EXPECT_LE(most, 0.5);
    EXPECT_GT(most, 0.4);
}

TEST(ReadPathOptions, HaveAToleranceOfAHundredthOfAMillimetre) {
    EXPECT_NEAR(sagittaOf(pathOf(drawingOf(circle)), 100), 0.01, 0.001);
    EXPECT_NEAR(sagittaOf(pathOf(drawingOf(circle, units(4))), 100), 0.01, 0.001);
    EXPECT_NEAR(sagittaOf(pathOf(drawingOf(circle, units(5))), 100), 0.001, 0.0001);
    EXPECT_NEAR(sagittaOf(pathOf(drawingOf(circle, units(1))), 100), 0.01 / 25.4, 1e-4);
    PathOptions options;
    options.unit = LengthUnit::centimetre;
    EXPECT_NEAR(sagittaOf(pathOf(drawingOf(circle, units(4)), options), 10), 0.001, 0.0001);
}

TEST(ReadPathOptions, KeepNeighboursWithinTheStep) {
    PathOptions options;
    options.step = 0.1;
    const DrawingPath path = pathOf(drawingOf("0 LINE  10 0  20 0  11 1  21 0"), options);
    ASSERT_EQ(path.points.size(), 11U);
    EXPECT_NEAR(path.points[3].x, 0.3, 1e-12);
    EXPECT_EQ(path.pieces.size(), 1U);
    options.step = infinity;
    EXPECT_EQ(pathOf(drawingOf("0 LINE  10 0  20 0  11 1  21 0"), options).points.size(), 2U);
}

TEST(ReadPathOptions, RefuseMorePointsThanAllowed) {
    PathOptions options;
    options.maximumPoints = 3;
    EXPECT_EQ(refusalOf(drawingOf("0 LINE  10 0  20 0  11 1  21 0  0 POINT  10 9  20 9"), options),
              "");
    EXPECT_EQ(refusalOf(drawingOf("0 LINE  10 0  20 0  11 1  21 0  0 LINE  10 3  20 0  11 4  21 0"),
                        options),
              "more than 3 points");
    options.maximumPoints = 100'000'000;
    options.step = 1e-12;
    EXPECT_EQ(refusalOf(drawingOf(circle), options), "more than 100000000 points");
    options.step.reset();
    options.tolerance = 1e-300;
    EXPECT_EQ(refusalOf(drawingOf(circle), options), "more than 100000000 points");
}

TEST(ReadPathOptions, AreRefusedOutOfRange) {
    const auto refused = [](auto change) {
        PathOptions options;
        change(options);
        return refusalOf(drawingOf(inchLine), options);
    };
    for (const double value : {0.0, -1.0, nan, -infinity}) {
        EXPECT_EQ(refused([&](PathOptions& options) { options.tolerance = value; }),
                  "the tolerance has to be above 0");
        EXPECT_EQ(refused([&](PathOptions& options) { options.step = value; }),
                  "the step has to be above 0");
        EXPECT_EQ(refused([&](PathOptions& options) { options.scale = value; }),
                  "the scale has to be above 0");
    }
    EXPECT_EQ(refused([](PathOptions& options) { options.scale = infinity; }),
              "the scale has to be finite");
    for (const double value : {-1.0, nan, infinity}) {
        EXPECT_EQ(refused([&](PathOptions& options) { options.joinDistance = value; }),
                  "the join distance has to be 0 or above, and finite");
    }
    EXPECT_EQ(refused([](PathOptions& options) { options.unit = static_cast<LengthUnit>(99); }),
              "the unit asked for is not known");
}

TEST(ReadPathOptions, TellHowFarTheWorkIsAndCanStopIt) {
    std::string many;
    for (int i = 0; i < 20'000; ++i) {
        many += "0 POINT  10 1  20 2  ";
    }
    const std::string file = drawingOf(many);
    PathOptions options;
    std::vector<double> reports;
    options.progress = [&](double done) {
        reports.push_back(done);
        return true;
    };
    pathOf(file, options);
    EXPECT_GT(reports.size(), 4U);
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_GE(reports.front(), 0.0);
    EXPECT_EQ(reports.back(), 1.0);
    for (std::size_t stop = 1; stop <= reports.size(); ++stop) {
        std::size_t calls = 0;
        options.progress = [&](double) { return ++calls < stop; };
        EXPECT_EQ(refusalOf(file, options), "stopped by the caller");
        EXPECT_EQ(calls, stop);
    }
}

/// Places all over a square, in no order.
std::string scatteredLines(int count) {
    std::string lines;
    for (int i = 0; i < count; ++i) {
        const std::string x = std::to_string(i * 7919 % 1000);
        const std::string y = std::to_string(i * 104729 % 997);
        lines += "0 LINE  10 " + x + "  20 " + y + "  11 " + x + ".5  21 " + y + "  ";
    }
    return lines;
}

TEST(ReadPathOptions, TellHowFarTheOrderIsAndCanStopIt) {
    const std::string file = drawingOf(scatteredLines(20'000));
    for (const PathOrder order : {PathOrder::nearest, PathOrder::insideFirst}) {
        PathOptions options;
        options.order = order;
        std::vector<double> reports = {0.0};
        double longestStep = 0.0;
        options.progress = [&](double done) {
            longestStep = std::max(longestStep, done - reports.back());
            reports.push_back(done);
            return true;
        };
        pathOf(file, options);
        EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
        EXPECT_EQ(reports.back(), 1.0);
        EXPECT_LT(longestStep, 0.25) << "the work stands nowhere for long";
        options.progress = [](double done) { return done < 0.8; };
        EXPECT_EQ(refusalOf(file, options), "stopped by the caller");
    }
}

TEST(ReadPathOptions, PassOnWhatTheCallbackThrows) {
    PathOptions options;
    options.progress = [](double) -> bool { throw std::runtime_error("enough"); };
    DrawingPath path;
    const std::string file = drawingOf(inchLine);
    EXPECT_THROW(converters::readPath(file.data(), file.size(), path, options), std::runtime_error);
    EXPECT_TRUE(path.points.empty());
}

TEST(ReadPathOptions, TellLengthsWaysAndBounds) {
    const DrawingPath path = pathOf(drawingOf(
        "0 LINE  10 0  20 0  11 3  21 4  0 POINT  10 3  20 -1  30 2  0 POINT  10 3  20 1  30 2"));
    EXPECT_DOUBLE_EQ(path.length, 5.0);
    EXPECT_DOUBLE_EQ(path.contours.at(0).length, 5.0);
    EXPECT_DOUBLE_EQ(path.wayLength, std::sqrt(29.0) + 2);
    EXPECT_EQ(path.lowest, cv::Point3d(0, -1, 0));
    EXPECT_EQ(path.highest, cv::Point3d(3, 4, 2));
}

// What is more than a few million points is counted first, and written from where room ended.
TEST(ReadPathOptions, GiveMillionsOfPointsAsEachEntityAloneDoes) {
    const std::string entities[] = {
        "0 LINE  10 0  20 0  11 5  21 0",
        "0 LWPOLYLINE  90 3  70 0  10 5  20 0  42 1  10 6  20 9  42 0.5  10 0  20 9",
        "0 CIRCLE  10 50  20 0  40 3",
        "0 ELLIPSE  10 90  20 0  11 3  21 0  40 0.5  41 0  42 6.283185307179586",
        "0 SPLINE  71 3  70 8  72 8  73 4  40 0  40 0  40 0  40 0  40 1  40 1  40 1  40 1"
        "  10 100  20 0  10 101  20 5  10 102  20 5  10 103  20 0",
        "0 ARC  10 200  20 0  40 3  50 0  51 180"};
    PathOptions options;
    options.tolerance = 8e-12;
    std::string all;
    std::vector<cv::Point3_<double>> expected;
    for (const std::string& entity : entities) {
        all += entity + "  ";
        const DrawingPath path = pathOf(drawingOf(entity), options);
        // The polyline goes on where the line ends.
        const bool isJoined = expected.size() == 2;
        expected.insert(expected.end(), path.points.begin() + (isJoined ? 1 : 0),
                        path.points.end());
    }
    const DrawingPath path = pathOf(drawingOf(all), options);
    EXPECT_GT(path.points.size(), 2'200'000U);
    EXPECT_TRUE(path.points == expected);
    EXPECT_EQ(path.contours.size(), 5U);
    const auto [left, right] =
        std::minmax_element(path.points.begin(), path.points.end(),
                            [](const auto& p, const auto& q) { return p.x < q.x; });
    EXPECT_EQ(path.lowest.x, left->x);
    EXPECT_EQ(path.highest.x, right->x);
    EXPECT_EQ(faultOf(path), "");

    options.maximumPoints = path.points.size();
    EXPECT_TRUE(pathOf(drawingOf(all), options).points == expected);
    --options.maximumPoints;
    EXPECT_NE(refusalOf(drawingOf(all), options), "");
}

} // namespace
