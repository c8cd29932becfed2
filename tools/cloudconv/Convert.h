#pragma once

#include <string>

/// What one conversion is to do.
struct ConvertOptions {
    std::string input;
    std::string output;
    /// ASCII instead of binary PLY.
    bool ascii = false;
};

/// Converts a file. Says on standard error what the output does not show: that it is empty, or that
/// something of the input has no place in it.
///
/// @throws FileError when that fails; the output is then as it was
void convert(const ConvertOptions& options);
