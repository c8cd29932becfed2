// Random files of every layout: each gives every number, and no broken one any.
#include "converters/Converters.h"
#include "tests/support/RandomScan.h"
#include "tests/support/ScanFiles.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

using converters::ScalarType;
using converters::ScanProperty;

/// CONVERTERS_TEST_EFFORT makes the random tests longer.
int rounds(int usual) {
    const char* effort = std::getenv("CONVERTERS_TEST_EFFORT");
    return usual * (effort == nullptr ? 1 : std::max(1, std::atoi(effort)));
}

bool isSame(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

template <typename Number>
double loaded(const std::uint8_t* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

double numberAt(const std::uint8_t* bytes, ScalarType type) {
    switch (type) {
    case ScalarType::int8:
        return loaded<std::int8_t>(bytes);
    case ScalarType::uint8:
        return loaded<std::uint8_t>(bytes);
    case ScalarType::int16:
        return loaded<std::int16_t>(bytes);
    case ScalarType::uint16:
        return loaded<std::uint16_t>(bytes);
    case ScalarType::int32:
        return loaded<std::int32_t>(bytes);
    case ScalarType::uint32:
        return loaded<std::uint32_t>(bytes);
    case ScalarType::int64:
        return loaded<std::int64_t>(bytes);
    case ScalarType::uint64:
        return loaded<std::uint64_t>(bytes);
    case ScalarType::float32:
        return loaded<float>(bytes);
    default:
        return loaded<double>(bytes);
    }
}

/// The number of a property that a name stands for, as a float; 0 without one.
float numberOf(const RandomScan& scan, std::size_t vertex, const std::string& name) {
    for (std::size_t i = 0; i < scan.properties.size(); ++i) {
        const std::string& own = scan.properties[i].name;
        if (own == name || (name.size() == 1 && own.size() == 1 && (own[0] | 0x20) == name[0])) {
            return static_cast<float>(scan.vertices[vertex][i]);
        }
    }
    return 0;
}

void expectPointsOf(const RandomScan& scan, const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    ASSERT_EQ(cloud.size(), scan.vertices.size());
    EXPECT_EQ(cloud.width, scan.width);
    EXPECT_EQ(cloud.height, scan.height);
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        ASSERT_TRUE(isSame(cloud[i].x, numberOf(scan, i, "x"))) << i;
        ASSERT_TRUE(isSame(cloud[i].y, numberOf(scan, i, "y"))) << i;
        ASSERT_TRUE(isSame(cloud[i].z, numberOf(scan, i, "z"))) << i;
        ASSERT_TRUE(isSame(cloud[i].intensity, numberOf(scan, i, "intensity"))) << i;
    }
}

void expectRecordsOf(const RandomScan& scan, const std::vector<std::uint8_t>& data,
                     const converters::ScanLayout& layout) {
    ASSERT_EQ(layout.fields.size(), scan.properties.size());
    ASSERT_EQ(data.size(), scan.vertices.size() * layout.recordSize);
    for (std::size_t i = 0; i < scan.vertices.size(); ++i) {
        for (std::size_t k = 0; k < layout.fields.size(); ++k) {
            const std::uint8_t* const bytes =
                data.data() + i * layout.recordSize + layout.fields[k].offset;
            ASSERT_EQ(layout.fields[k].name, scan.properties[k].name);
            ASSERT_TRUE(isSame(numberAt(bytes, layout.fields[k].type), scan.vertices[i][k]))
                << i << ' ' << layout.fields[k].name;
        }
    }
}

TEST(RandomScans, GiveEveryPoint) {
    Random random(1);
    for (int i = 0; i < rounds(2000); ++i) {
        const RandomScan scan = randomScan(random);
        const ReadScan read = i % 8 == 0 ? readEveryWay(scan.file) : readWhole(scan.file);
        ASSERT_TRUE(read.result) << read.result.reason << '\n' << scan.file;
        EXPECT_EQ(read.result.report.bytesBehind, 0u);
        expectPointsOf(scan, read.cloud);
        ASSERT_FALSE(HasFailure()) << i << '\n' << scan.file;
    }
}

TEST(RandomScans, KeepEveryScalarProperty) {
    Random random(2);
    for (int i = 0; i < rounds(2000); ++i) {
        const RandomScan scan = randomScan(random);
        pcl::PCLPointCloud2 cloud;
        const converters::ScanResult result =
            converters::readScan(scan.file.data(), scan.file.size(), cloud);
        ASSERT_TRUE(result) << result.reason << '\n' << scan.file;
        EXPECT_EQ(cloud.width, scan.width);
        EXPECT_EQ(cloud.height, scan.height);
        EXPECT_EQ(cloud.row_step, cloud.width * cloud.point_step);
        expectRecordsOf(scan, cloud.data, converters::layoutOf(cloud));
        ASSERT_FALSE(HasFailure()) << i << '\n' << scan.file;
    }
}

TEST(RandomScans, GiveTheirRecordsInBlocks) {
    Random random(3);
    for (int i = 0; i < rounds(500); ++i) {
        const RandomScan scan = randomScan(random);
        converters::ScanReader reader(piecesOf(scan.file, 1 + random.below(std::size_t{100})));
        ASSERT_TRUE(reader.open());
        const std::size_t size = reader.layout().recordSize;
        const std::size_t most = 1 + random.below(std::size_t{40});
        std::vector<std::uint8_t> data;
        std::size_t count = 0;
        do {
            const std::size_t begin = data.size();
            data.resize(begin + most * size);
            ASSERT_TRUE(reader.read(data.data() + begin, most, count));
            data.resize(begin + count * size);
        } while (count != 0);
        expectRecordsOf(scan, data, reader.layout());
        ASSERT_FALSE(HasFailure()) << i << '\n' << scan.file;
    }
}

void expectBroken(const std::string& file, const std::string& how) {
    const ReadScan read = readWhole(file);
    ASSERT_FALSE(read.result) << how << '\n' << file;
    ASSERT_FALSE(read.result.reason.empty());
    ASSERT_TRUE(read.cloud.empty());
}

TEST(RandomScans, AreRefusedWhenCutAnywhere) {
    Random random(4);
    for (int i = 0; i < rounds(500); ++i) {
        const RandomScan scan = randomScan(random);
        for (int k = 0; k < 5; ++k) {
            const std::size_t cut = random.below(scan.lastNumber + 1);
            expectBroken(scan.file.substr(0, cut), "cut at " + std::to_string(cut));
        }
        expectBroken(scan.file.substr(0, scan.lastNumber), "cut before the last number");
        ASSERT_FALSE(HasFailure()) << i;
    }
}

TEST(RandomScans, AreRefusedWithAWordAmongTheNumbers) {
    Random random(5);
    const std::string words[] = {"x", "1,5", "0x1", "1e ", "--", "1.5.5", "nan0", "\x80"};
    for (int i = 0; i < rounds(500); ++i) {
        const RandomScan scan = randomScan(random);
        if (scan.format != converters::ScanFormat::ascii) {
            continue;
        }
        // The beginning of a number.
        std::size_t place = scan.body + random.below(scan.lastNumber - scan.body + 1);
        while (place > scan.body && scan.file[place - 1] != ' ') {
            --place;
        }
        std::string file = scan.file;
        file.insert(place, random.pick(words));
        expectBroken(file, "a word at " + std::to_string(place));
        ASSERT_FALSE(HasFailure()) << i;
    }
}

TEST(RandomScans, AreRefusedWithALineMissingFromTheirHeader) {
    Random random(6);
    for (int i = 0; i < rounds(500); ++i) {
        const RandomScan scan = randomScan(random);
        for (const char* word : {"format", "element vertex", "end_header"}) {
            std::string file = scan.file;
            const std::size_t place = file.find(word);
            if (place != std::string::npos) {
                file.replace(place, 1, "?");
                expectBroken(file, word);
            }
        }
        ASSERT_FALSE(HasFailure()) << i << '\n' << scan.file;
    }
}

TEST(RandomScans, ThatFromPlyTakesGiveTheSamePoints) {
    Random random(7);
    RandomScanRules rules;
    rules.forFromPly = true;
    for (int i = 0; i < rounds(2000); ++i) {
        const RandomScan scan = randomScan(random, rules);
        pcl::PointCloud<pcl::PointXYZI> expected;
        ASSERT_TRUE(converters::fromPly(bytesOf(scan.file), expected).success) << scan.file;
        const ReadScan read = readWhole(scan.file);
        ASSERT_TRUE(read.result) << read.result.reason << '\n' << scan.file;
        EXPECT_EQ(read.cloud.width, expected.width);
        EXPECT_EQ(read.cloud.height, expected.height);
        ASSERT_EQ(read.cloud.size(), expected.size());
        for (std::size_t k = 0; k < expected.size(); ++k) {
            const std::vector<float> own = numbersOf(read.cloud[k]);
            const std::vector<float> other = numbersOf(expected[k]);
            for (std::size_t n = 0; n < own.size(); ++n) {
                ASSERT_TRUE(isSame(own[n], other[n])) << scan.file;
            }
        }
    }
}

} // namespace
