#pragma once

#include "converters/DrawingPath.h"
#include "converters/Scan.h"
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
    /// Significant digits of numbers in texts; without, those that read back the same.
    std::optional<int> digits;
    /// The intensity of every point, in place of the scan's own or of the contour's number.
    std::optional<float> intensity;
    /// x, y, z and intensity alone, in place of all properties of a scan.
    bool xyzi = false;
    /// Replaces the input.
    bool force = false;
    /// By the fixed rules of fromPly() and fromDxf().
    bool plain = false;
    /// Nothing on standard error but failures.
    bool quiet = false;
    /// How a drawing is followed, and a scan is read.
    converters::PathOptions path;
    converters::ScanOptions scan;
    /// An option that is given and only for drawings, or only for scans; else empty.
    std::string drawingOption;
    std::string scanOption;
};

/// Converts a file. Says on standard error what the output does not show: what a drawing holds that
/// was left out, that the output is empty, or that something of the input has no place in it.
///
/// @throws FileError when that fails; the output is then as it was
/// @throws UsageError when the options contradict each other
void convert(const ConvertOptions& options);
