#pragma once

#include "tools/cloudconv/info/Info.h"

/// Describes a scan of any size, in constant memory.
///
/// @throws FileError when it cannot be read, or is no PLY file. One that is refused is described
///         with the reason.
nlohmann::ordered_json describeScan(const InfoOptions& options);
