// Every byte that the own writer puts into a drawing, against dxflib's writer.

#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include "dxfeditor/detail/writing/RealText.h"
#include "dxfeditor/detail/writing/SixteenDigits.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TemporaryDirectory.h"

#include <dxflib/dl_dxf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
// From about here on dxflib writes outside its buffer.
constexpr double dxflibLimit = 1e237;

std::string realText(double value) {
    char text[dxfeditor::longestReal];
    return std::string(text, dxfeditor::writeReal(value, text));
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// What dxflib's own writer makes of the calls in `body`.
template <class Body>
std::string dxflibText(const Body& body) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("reference.dxf");
    DL_WriterA writer(path.c_str(), DL_Codes::AC1009);
    body(writer);
    writer.close();
    return contentOf(path);
}

void expectSameReals(const std::vector<double>& values) {
    const auto writeAll = [&](const DL_WriterA& writer) {
        for (const double value : values) {
            writer.dxfReal(10, value);
        }
    };
    const std::string expected = dxflibText(writeAll);
    const dxfeditor::DxfTextWriter own(DL_Codes::AC1009);
    writeAll(own);
    if (own.text() == expected) {
        return;
    }
    // Only now is it worth telling the values apart.
    const std::vector<std::string> lines = linesOf(expected);
    ASSERT_EQ(lines.size(), 2 * values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(realText(values[i]), lines[2 * i + 1]) << std::hexfloat << values[i];
    }
    FAIL() << "the groups differ otherwise";
}

/// Differs between the rounds of --gtest_repeat --gtest_shuffle.
std::mt19937_64 randomEngine() {
    return std::mt19937_64(
        static_cast<std::uint64_t>(1 + ::testing::UnitTest::GetInstance()->random_seed()));
}

double fromBits(std::uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

constexpr std::uint64_t tenToThe16 = 10'000'000'000'000'000;

TEST(SixteenDigits, AreThoseOfTheirHalvesAndCountedUpToTheLastOtherThanZero) {
    std::mt19937_64 random = randomEngine();
    for (int i = 0; i < 200'000; ++i) {
        // Of any length, with any number of zeros at the end.
        std::uint64_t number = random() % tenToThe16 >> random() % 54;
        for (auto zeros = random() % 16; zeros > 0; --zeros) {
            number = number * 10 % tenToThe16;
        }
        const auto upper = static_cast<std::uint32_t>(number / dxfeditor::eightDigits);
        const auto lower = static_cast<std::uint32_t>(number % dxfeditor::eightDigits);
        char expected[17];
        std::snprintf(expected, sizeof expected, "%016llu",
                      static_cast<unsigned long long>(number));
        std::size_t count = 16;
        while (count > 1 && expected[count - 1] == '0') {
            --count;
        }
        char digits[16];
        ASSERT_EQ(dxfeditor::writeSixteenDigits(upper, lower, digits), count) << number;
        ASSERT_EQ(std::string(digits, 16), expected);
        ASSERT_EQ(dxfeditor::writeTwoWordsOfDigits(upper, lower, digits), count) << number;
        ASSERT_EQ(std::string(digits, 16), expected);
    }
}

TEST(RealText, RandomBitPatternsAreWrittenAsDxflibWritesThem) {
    std::mt19937_64 random = randomEngine();
    std::vector<double> values;
    while (values.size() < 200'000) {
        const double value = fromBits(random());
        if (!(std::fabs(value) >= dxflibLimit)) {
            values.push_back(value);
        }
    }
    expectSameReals(values);
}

TEST(RealText, RandomCoordinatesAreWrittenAsDxflibWritesThem) {
    std::mt19937_64 random = randomEngine();
    std::uniform_int_distribution<int> exponent(-60, 70);
    std::uniform_real_distribution<double> significand(-2.0, 2.0);
    std::vector<double> values;
    for (int i = 0; i < 200'000; ++i) {
        const double value = std::ldexp(significand(random), exponent(random));
        values.push_back(value);
        // What a cloud of 32-bit floats holds.
        values.push_back(static_cast<double>(static_cast<float>(value)));
    }
    expectSameReals(values);
}

TEST(RealText, TiesBetweenSixteenDecimalsRoundToEven) {
    // A value that ends in 2^-17 has seventeen decimals, the last of them 5: exactly half.
    std::mt19937_64 random = randomEngine();
    std::vector<double> values;
    for (int i = 0; i < 100'000; ++i) {
        const std::uint64_t odd = (random() >> (12 + random() % 50)) | 1;
        values.push_back(std::ldexp(static_cast<double>(odd), -17));
        values.push_back(-values.back());
    }
    expectSameReals(values);
    EXPECT_EQ(realText(std::ldexp(1.0, -17)), "0.0000076293945312");
    EXPECT_EQ(realText(std::ldexp(3.0, -17)), "0.0000228881835938");
}

TEST(RealText, BoundariesAreWrittenAsDxflibWritesThem) {
    std::vector<double> values = {0.0,
                                  infinity,
                                  std::nan(""),
                                  std::numeric_limits<double>::denorm_min(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::epsilon(),
                                  fromBits(0x7FF0000000000001),
                                  5e-17,
                                  0.00000000000000005,
                                  1.5e-16,
                                  2.5e-16,
                                  9.99999999999999944e-17};
    for (int exponent = -1074; exponent < 787; ++exponent) {
        values.push_back(std::ldexp(1.0, exponent));
    }
    for (int exponent = -323; exponent <= 236; ++exponent) {
        values.push_back(std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr));
        values.push_back(std::strtod(("5e" + std::to_string(exponent)).c_str(), nullptr));
    }
    for (int i = 1; i < 4000; ++i) {
        values.push_back(i / 2.0);
        values.push_back(i / 100.0);
    }
    for (std::size_t i = 0, count = values.size(); i < count; ++i) {
        const double value = values[i];
        for (const double near : {value, std::nextafter(value, 0.0)}) {
            for (const double neighbour : {near, std::nextafter(value, infinity)}) {
                values.push_back(neighbour);
                values.push_back(-neighbour);
            }
        }
    }
    values.erase(std::remove_if(values.begin(), values.end(),
                                [](double value) {
                                    return std::isfinite(value) && std::fabs(value) >= dxflibLimit;
                                }),
                 values.end());
    expectSameReals(values);
}

TEST(RealText, RoundingUpCarriesIntoTheWholePart) {
    EXPECT_EQ(realText(std::nextafter(1.0, 0.0)), "0.9999999999999999");
    EXPECT_EQ(realText(0.99999999999999999), "1.0");
    EXPECT_EQ(realText(std::nextafter(8.0, 0.0)), "7.9999999999999991");
}

TEST(RealText, NoNumbersAreWords) {
    EXPECT_EQ(realText(infinity), "inf");
    EXPECT_EQ(realText(-infinity), "-inf");
    EXPECT_EQ(realText(std::copysign(std::nan(""), 1.0)), "nan");
    EXPECT_EQ(realText(std::copysign(std::nan(""), -1.0)), "-nan");
}

TEST(RealText, SignOfZeroAndOfWhatRoundsToZeroIsKept) {
    EXPECT_EQ(realText(0.0), "0.0");
    EXPECT_EQ(realText(-0.0), "-0.0");
    EXPECT_EQ(realText(-1e-300), "-0.0");
}

TEST(RealText, ValuesThatWouldOverrunDxflibsBufferFollowTheSameRule) {
    std::mt19937_64 random = randomEngine();
    std::vector<double> values = {1e237, 1e238, 1e239, 1e300, std::numeric_limits<double>::max()};
    while (values.size() < 20'000) {
        const double value = fromBits(random());
        if (std::isfinite(value) && std::fabs(value) >= dxflibLimit) {
            values.push_back(value);
        }
    }
    for (const double value : values) {
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.1f", value);
        ASSERT_EQ(realText(value), expected);
        ASSERT_LE(realText(value).size(), dxfeditor::longestReal);
    }
    EXPECT_EQ(realText(std::numeric_limits<double>::lowest()).size(), dxfeditor::longestReal);
}

const int groupCodes[] = {0,  1,   5,   9,    10,         11,         62,     70,
                          99, 100, 101, 420,  999,        1000,       1071,   12345,
                          -1, -9,  -10, -100, 1234567890, 2147483647, -99999, -2147483647 - 1};

TEST(DxfTextWriter, GroupsAreWrittenAsDxflibWritesThem) {
    const auto writeAll = [](const DL_Writer& writer) {
        for (const int code : groupCodes) {
            for (const int value : groupCodes) {
                writer.dxfInt(code, value);
                writer.dxfHex(code, value);
            }
            writer.dxfReal(code, 2.5);
            writer.dxfBool(code, true);
            writer.dxfString(code, "text");
            writer.dxfString(code, "");
            writer.dxfString(code, std::string());
            writer.dxfString(code, std::string("zero\0byte and line\nend", 22));
        }
        writer.handle();
        writer.handle();
    };
    const dxfeditor::DxfTextWriter own(DL_Codes::AC1009);
    writeAll(own);
    EXPECT_EQ(own.text(), dxflibText(writeAll));
}

TEST(DxfTextWriter, LocalesChangeNothing) {
    const auto writeAll = [](const DL_Writer& writer) {
        for (const int code : groupCodes) {
            writer.dxfInt(code, 1234567);
            writer.dxfHex(code, 1234567);
            writer.dxfReal(code, 1234567.5);
        }
    };
    const dxfeditor::DxfTextWriter plain(DL_Codes::AC1009);
    writeAll(plain);
    const CommaLocale commas(1);
    const dxfeditor::DxfTextWriter own(DL_Codes::AC1009);
    writeAll(own);
    EXPECT_EQ(own.text(), plain.text());
}

TEST(DxfTextWriter, NullTextIsEmpty) {
    const dxfeditor::DxfTextWriter writer(DL_Codes::AC1009);
    writer.dxfString(2, static_cast<const char*>(nullptr));
    EXPECT_EQ(writer.text(), "  2\n\n");
}

TEST(DxfTextWriter, RunOfPointsIsWrittenAsDxflibWritesEachPoint) {
    std::mt19937_64 random = randomEngine();
    std::vector<cv::Point3_<double>> points = {{-0.0, infinity, 1e300}};
    for (int i = 0; i < 1000; ++i) {
        points.emplace_back(fromBits(random()), fromBits(random()), fromBits(random()));
    }
    const DL_Attributes attributes("walls", 3, 0x112233, 25, "DASHED", 77);
    dxfeditor::DxfTextWriter own(DL_Codes::AC1009);
    dxfeditor::DxfTextWriter expected(DL_Codes::AC1009);
    own.dxfString(0, "before");
    expected.dxfString(0, "before");
    own.writePoints(attributes, points);
    DL_Dxf engine;
    const std::unique_ptr<DL_WriterA> none(engine.out("", DL_Codes::AC1009));
    for (const cv::Point3_<double>& point : points) {
        engine.writePoint(expected, DL_PointData(point.x, point.y, point.z), attributes);
    }
    EXPECT_EQ(own.text(), expected.text());
}

} // namespace
