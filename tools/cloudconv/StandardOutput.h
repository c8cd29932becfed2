#pragma once

#include <string>

/// Writes a text to standard output.
///
/// @throws FileError when that fails
void printToStandardOutput(const std::string& text);
