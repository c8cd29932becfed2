#pragma once

#include "tools/cloudconv/FileFormat.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

/// Describes a file.
///
/// @param path  "-" is standard input
/// @param from  the format, where it does not follow from the name
/// @throws FileError for a file that cannot be read, or is of neither format. A PLY file that is
///         refused is described with the reason.
nlohmann::ordered_json describeFile(const std::string& path, std::optional<FileFormat> from,
                                    bool quiet);

/// The description as lines for people. Long lists are cut.
std::string asText(const nlohmann::ordered_json& description);
