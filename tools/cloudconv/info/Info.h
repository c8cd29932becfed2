#pragma once

#include "converters/DrawingPath.h"
#include "tools/cloudconv/FileFormat.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

/// What is to be described, and how it is read.
struct InfoOptions {
    /// "-" is standard input.
    std::string input;
    /// The format, where it does not follow from the name.
    std::optional<FileFormat> from;
    /// By the fixed rules of fromPly() and fromDxf().
    bool plain = false;
    bool json = false;
    bool quiet = false;
    converters::PathOptions path;
    /// An option of paths that was given; else empty.
    std::string pathOption;
};

/// Describes a file.
///
/// @throws FileError for a file that cannot be read, or is of neither format. A PLY file that is
///         refused is described with the reason.
/// @throws UsageError when the options contradict each other
nlohmann::ordered_json describeFile(const InfoOptions& options);
