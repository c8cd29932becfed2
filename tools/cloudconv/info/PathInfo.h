#pragma once

#include "tools/cloudconv/info/Info.h"

/// Describes a drawing by its path.
///
/// @throws FileError when it cannot be read
nlohmann::ordered_json describePath(const InfoOptions& options);
