#include "converters/Converters.h"
#include "converters/mpaths.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>

namespace {

/// Directories created so far in this process, by whatever library: from its start, before any
/// static object is set.
int createdDirectories = 0;

} // namespace

// In place of the C library's, also for the libraries that this program loads.
#pragma GCC visibility push(default)
extern "C" int mkdirat(int directory, const char* path, mode_t mode) noexcept {
    ++createdDirectories;
    return static_cast<int>(syscall(SYS_mkdirat, directory, path, mode));
}

extern "C" int mkdir(const char* path, mode_t mode) noexcept {
    return mkdirat(AT_FDCWD, path, mode);
}
#pragma GCC visibility pop

namespace {

const int createdBeforeMain = createdDirectories;

std::string temporaryFile(const std::string& name) {
    return ::testing::TempDir() + std::to_string(getpid()) + name;
}

TEST(Paths, BaseTemporaryDirectoryHasSingleSeparatorsAndNoTrailingOne) {
    EXPECT_EQ(mpaths::getTMP_DIRECTORY(), "/var/tmp/melgrav/tarnowell3");
}

TEST(Paths, DrawingDirectoryIsSetAtLoad) {
    EXPECT_EQ(converters::tmpDxfPath.string(), "/var/tmp/melgrav/tarnowell3/temp_dxf_files");
}

TEST(Paths, LoadingCreatesNoDirectory) {
    EXPECT_EQ(createdBeforeMain, 0);
    // Would it have been seen?
    const int before = createdDirectories;
    const std::string directory = temporaryFile("directory");
    std::filesystem::create_directories(directory);
    EXPECT_EQ(createdDirectories, before + 1);
    std::filesystem::remove(directory);
}

TEST(FromFile, ReadsEveryByte) {
    const std::string path = temporaryFile("bytes");
    for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u, 200000u}) {
        std::vector<unsigned char> bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<unsigned char>(i * 7);
        }
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        std::vector<unsigned char> out = {9, 9};
        EXPECT_TRUE(converters::from_file(path, out));
        EXPECT_EQ(out, bytes);
    }
    unlink(path.c_str());
}

TEST(FromFile, ReadsFilesThatDoNotTellTheirSize) {
    std::vector<unsigned char> out;
    EXPECT_TRUE(converters::from_file("/proc/self/cmdline", out));
    EXPECT_NE(std::string(out.begin(), out.end()).find("paths_test"), std::string::npos);

    const std::string pipe = temporaryFile("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string bytes(1'000'000, 'x');
    auto writer = std::async(std::launch::async, [&] { std::ofstream(pipe) << bytes; });
    EXPECT_TRUE(converters::from_file(pipe, out));
    EXPECT_EQ(std::string(out.begin(), out.end()), bytes);
    unlink(pipe.c_str());
}

TEST(FromFile, TakesNoMoreMemoryThanTheFileIsLong) {
    const std::string path = temporaryFile("long");
    std::ofstream(path) << std::string(3'000'000, 'x');
    std::vector<unsigned char> out;
    EXPECT_TRUE(converters::from_file(path, out));
    EXPECT_EQ(out.capacity(), 3'000'000U);
    unlink(path.c_str());
}

TEST(FromFile, MissingPathLeavesTheOutputEmpty) {
    std::vector<unsigned char> out = {1, 2, 3};
    const std::size_t capacity = out.capacity();
    EXPECT_FALSE(converters::from_file("/nonexistent/file", out));
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(out.capacity(), capacity);
}

TEST(FromFile, DirectoryIsNotReadable) {
    std::vector<unsigned char> out = {1, 2, 3};
    EXPECT_FALSE(converters::from_file("/", out));
    EXPECT_TRUE(out.empty());
}

} // namespace
