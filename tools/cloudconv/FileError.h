#pragma once

#include <stdexcept>
#include <string>

/// A file that could not be read, converted or written. what() is "PATH: REASON".
class FileError : public std::runtime_error {
public:
    FileError(const std::string& path, const std::string& reason)
        : std::runtime_error(path + ": " + reason) {}
};
