#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A directory of its own for one test, removed with all that is in it.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = ::testing::TempDir() + "converters-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            throw std::filesystem::filesystem_error("mkdtemp", name,
                                                    std::make_error_code(std::errc::io_error));
        }
        m_path = name;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::filesystem::path path() const { return m_path; }
    /// Path of a file in the directory.
    std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

/// The whole file; empty when it cannot be read.
inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline void writeContent(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}
