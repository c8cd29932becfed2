#include "converters/detail/numbers/NumberFormat.h"

#include "converters/detail/numbers/FloatFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

char* write(char* out, double value) {
    return converters::detail::writeGeneral(out, value);
}

char* write(char* out, float value) {
    return converters::detail::writeGeneralFloat(out, value);
}

template <typename Number>
std::string written(Number value) {
    char text[32];
    std::memset(text, '#', sizeof text);
    char* end = write(text, value);
    EXPECT_LE(end - text, converters::detail::maxGeneralLength);
    for (const char* rest = text + 24; rest < text + sizeof text; ++rest) {
        EXPECT_EQ(*rest, '#') << "wrote beyond the promised room";
    }
    return {text, end};
}

std::string streamed(double value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

/// "%g", which is what a stream prints; quicker than a stream.
std::string printed(double value) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%g", value);
    return {text, static_cast<std::size_t>(length)};
}

template <typename To, typename From>
To withBitsOf(From bits) {
    static_assert(sizeof(To) == sizeof(From));
    To value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Both signs of a value, its neighbours and theirs.
template <typename Number>
std::vector<Number> neighbourhood(Number value) {
    const Number infinity = std::numeric_limits<Number>::infinity();
    const Number below = std::nextafter(value, -infinity);
    const Number above = std::nextafter(value, infinity);
    std::vector<Number> values = {value, below, above, std::nextafter(below, -infinity),
                                  std::nextafter(above, infinity)};
    for (std::size_t i = 0; i < 5; ++i) {
        values.push_back(-values[i]);
    }
    return values;
}

TEST(NumberFormat, HasTheFormsOfAStream) {
    const std::pair<double, const char*> cases[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {1, "1"},
        {-1, "-1"},
        {0.5, "0.5"},
        {123456, "123456"},
        {1234567, "1.23457e+06"},
        {999999.5, "1e+06"},
        {999999.4, "999999"},
        {1e6, "1e+06"},
        {1e5, "100000"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {0.000123456789, "0.000123457"},
        {0.0000999999999, "0.0001"},
        {100000.5, "100000"},
        {100001.5, "100002"},
        {9.999994, "9.99999"},
        {9.999996, "10"},
        {1e22, "1e+22"},
        {1e100, "1e+100"},
        {-1.7976931348623157e308, "-1.79769e+308"},
        {5e-324, "4.94066e-324"},
    };
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(written(value), text);
        EXPECT_EQ(streamed(value), text);
    }
    const std::pair<float, const char*> floats[] = {
        {0.0F, "0"},
        {-0.0F, "-0"},
        {-1.0F, "-1"},
        {0.1F, "0.1"},
        {123456.0F, "123456"},
        {-123.456F, "-123.456"},
        {100000.5F, "100000"},
        {100001.5F, "100002"},
        {999999.4F, "999999"},
        {999999.5F, "1e+06"},
        {9.999996F, "10"},
        {4.5e6F, "4.5e+06"},
        {0.0001F, "0.0001"},
        {0.00001F, "1e-05"},
        {-2.5e-9F, "-2.5e-09"},
        {2.5e-10F, "2.5e-10"},
        {3.4028234e38F, "3.40282e+38"},
        {1e-45F, "1.4013e-45"},
    };
    for (const auto& [value, text] : floats) {
        EXPECT_EQ(written(value), text);
    }
}

TEST(NumberFormat, NotANumberAndInfinityKeepTheirSign) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(written(std::copysign(nan, 1.0)), "nan");
    EXPECT_EQ(written(std::copysign(nan, -1.0)), "-nan");
    EXPECT_EQ(written(infinity), "inf");
    EXPECT_EQ(written(-infinity), "-inf");
    for (const double value : {std::copysign(nan, 1.0), std::copysign(nan, -1.0), infinity}) {
        EXPECT_EQ(written(value), streamed(value));
        EXPECT_EQ(written(static_cast<float>(value)), streamed(value));
    }
}

TEST(NumberFormat, PowersOfTenAndTheirNeighboursAreThoseOfAStream) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        for (const double value : neighbourhood(power)) {
            ASSERT_EQ(written(value), streamed(value)) << exponent;
        }
        const auto single = static_cast<float>(power);
        for (const float value : neighbourhood(single)) {
            ASSERT_EQ(written(value), streamed(value)) << exponent;
        }
    }
}

TEST(NumberFormat, PowersOfTwoAndTheirNeighboursAreThoseOfAStream) {
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        for (const double value : neighbourhood(std::ldexp(1.0, exponent))) {
            ASSERT_EQ(written(value), streamed(value)) << exponent;
        }
    }
    for (int exponent = -149; exponent <= 127; ++exponent) {
        for (const float value : neighbourhood(std::ldexp(1.0F, exponent))) {
            ASSERT_EQ(written(value), streamed(value)) << exponent;
        }
    }
}

TEST(NumberFormat, NumbersHalfwayBetweenTwoTextsAreThoseOfAStream) {
    std::mt19937_64 random(1);
    for (int exponent = -30; exponent <= 30; ++exponent) {
        for (int i = 0; i < 2000; ++i) {
            const std::uint64_t digits = 100000 + random() % 900000;
            const double half = std::stod(std::to_string(digits) + "5e" + std::to_string(exponent));
            for (const double value : neighbourhood(half)) {
                ASSERT_EQ(written(value), printed(value)) << digits << "5e" << exponent;
            }
            const auto single = static_cast<float>(half);
            ASSERT_EQ(written(single), printed(single)) << digits << "5e" << exponent;
        }
    }
}

TEST(NumberFormat, EveryFloatHalfwayBetweenTwoTextsGetsTheEvenOne) {
    // Six digits and a half, by a power of ten, which is an odd number by powers of five and two.
    std::size_t count = 0;
    std::int64_t five = 1;
    for (int k = 0; k <= 8; ++k, five *= 5) {
        for (std::int64_t odd = 200000 / five | 1; odd * five < 2000000; odd += 2) {
            const float value = std::ldexp(static_cast<float>(odd), -k - 1);
            ASSERT_EQ(written(value), printed(value)) << odd;
            ++count;
        }
    }
    EXPECT_GT(count, 1000000U);
}

TEST(NumberFormat, SubnormalFloatsAreThoseOfAStream) {
    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        const auto value = withBitsOf<float>(std::uint32_t(random()) & 0x807FFFFF);
        ASSERT_EQ(written(value), printed(value));
    }
}

TEST(NumberFormat, RandomBitsOfFloatsAreThoseOfAStream) {
    std::mt19937 random(2);
    for (int i = 0; i < 2000000; ++i) {
        const auto value = withBitsOf<float>(std::uint32_t(random()));
        ASSERT_EQ(written(value), printed(value));
        ASSERT_EQ(written(static_cast<double>(value)), written(value));
    }
}

TEST(NumberFormat, RandomBitsOfDoublesAreThoseOfAStream) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 1000000; ++i) {
        const auto value = withBitsOf<double>(std::uint64_t(random()));
        ASSERT_EQ(written(value), printed(value));
    }
}

TEST(NumberFormat, RandomNumbersOfEveryUsualMagnitudeAreThoseOfAStream) {
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    for (int i = 0; i < 2000000; ++i) {
        const double value = mantissa(random) * std::pow(10, i % 44 - 20);
        ASSERT_EQ(written(value), printed(value));
        const auto single = static_cast<float>(value);
        ASSERT_EQ(written(single), printed(single));
    }
}

TEST(NumberFormat, ShortDecimalsAreThoseOfAStream) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 1000000; ++i) {
        const double value = double(random() % 100000000) / std::pow(10, i % 10);
        ASSERT_EQ(written(value), printed(value));
        const auto single = static_cast<float>(value);
        ASSERT_EQ(written(single), printed(single));
    }
}

TEST(NumberFormat, AgreesWithAStreamOnRandomBits) {
    std::mt19937_64 random(6);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bits = random();
        ASSERT_EQ(written(withBitsOf<double>(bits)), streamed(withBitsOf<double>(bits)));
        const auto single = static_cast<double>(withBitsOf<float>(std::uint32_t(bits)));
        ASSERT_EQ(written(single), streamed(single));
    }
}

} // namespace
