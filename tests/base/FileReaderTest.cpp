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
