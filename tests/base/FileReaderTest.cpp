#include "base/FileReader.h"

#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

TEST(FileReader, GivesEveryByteOfAFile) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("file");
    // More than are read at a time, of every value.
    std::string bytes;
    for (int i = 0; i < 700001; ++i) {
        bytes += static_cast<char>(static_cast<unsigned char>(i % 256));
    }
    std::ofstream(path, std::ios::binary) << bytes;

    std::string text = "before";
    EXPECT_TRUE(base::readFile(path, text));
    EXPECT_TRUE(text == bytes);
    std::vector<unsigned char> vector(3);
    EXPECT_TRUE(base::readFile(path, vector));
    EXPECT_TRUE(std::string(vector.begin(), vector.end()) == bytes);
}

TEST(FileReader, GivesFilesOfAnySize) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("file");
    // Small ones are read in smaller portions: as many bytes as one has, one more and one less, and
    // several portions.
    for (const std::size_t size : {0, 1, 4095, 4096, 4680, 4681, 4682, 9362, 9363, 37449, 262144}) {
        std::string bytes(size, 'a');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>('a' + i % 23);
        }
        std::ofstream(path, std::ios::binary) << bytes;
        std::string text = "before";
        ASSERT_TRUE(base::readFile(path, text)) << size;
        ASSERT_TRUE(text == bytes) << size;
    }
}

TEST(FileReader, GivesFilesThatTellNoSize) {
    std::string text;
    EXPECT_TRUE(base::readFile("/proc/self/status", text));
    EXPECT_NE(text.find("Name:"), std::string::npos);
}

TEST(FileReader, LeavesNothingWhereThereIsNothingToRead) {
    const TemporaryDirectory directory;
    for (const std::string& path : {directory.file("missing"), directory.file(".")}) {
        std::string text = "before";
        EXPECT_FALSE(base::readFile(path, text)) << path;
        EXPECT_EQ(text, "");
        std::vector<unsigned char> vector(3);
        EXPECT_FALSE(base::readFile(path, vector)) << path;
        EXPECT_TRUE(vector.empty());
    }
}

} // namespace
