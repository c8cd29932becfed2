#pragma once

#include <stdexcept>
#include <string>

/// A file that could not be read, converted or written. what() is "PATH: REASON".
class FileError : public std::runtime_error {
public:
    FileError(const std::string& path, const std::string& reason)
        : std::runtime_error(path + ": " + reason), m_pathSize(path.size()) {}

    /// The reason alone; lives as long as the exception.
    const char* reason() const { return what() + m_pathSize + 2; }

private:
    std::size_t m_pathSize;
};
