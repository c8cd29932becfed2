#pragma once

#include <string>
#include <vector>

/// Reads a whole file, or what a pipe or device gives until its end.
///
/// @throws FileError with the system's reason when that fails
std::vector<unsigned char> readInputFile(const std::string& path);
