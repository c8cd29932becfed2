#pragma once

#include "tools/cloudconv/FileFormat.h"

#include <optional>
#include <string>

/// What one conversion is to do.
struct ConvertOptions {
    /// "-" is standard input and output.
    std::string input;
    std::string output;
    /// Formats that do not follow from the names.
    std::optional<FileFormat> from;
    std::optional<FileFormat> to;
    /// ASCII instead of binary PLY.
    bool ascii = false;
    /// The intensity of every point, in place of the scan's own or of the contour's number.
    std::optional<float> intensity;
    /// Nothing on standard error but failures.
    bool quiet = false;
};

/// Converts a file. Says on standard error what the output does not show: what was found in a
/// drawing, that the output is empty, or that something of the input has no place in it.
///
/// @throws FileError when that fails; the output is then as it was
/// @throws UsageError when the options contradict each other
void convert(const ConvertOptions& options);
