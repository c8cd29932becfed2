#pragma once

#include <string>
#include <vector>

class Progress;

/// The name of an input in messages: the path, or "standard input" for "-".
std::string inputName(const std::string& path);

/// Reads a whole file, or what a pipe or device gives until its end.
///
/// @param path      "-" is standard input
/// @param progress  told that this is done, and how far it is
/// @throws FileError with the system's reason when that fails
std::vector<unsigned char> readInputFile(const std::string& path, Progress& progress);
