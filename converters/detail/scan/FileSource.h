#pragma once

#include "converters/detail/scan/ByteWindow.h"

#include <filesystem>

namespace converters::scan {

/// A window on a file, a pipe or a device.
/// @throws Fault with the system's reason when it cannot be opened; when it cannot be read, the
///         window's functions do
ByteWindow openFile(const std::filesystem::path& file);

} // namespace converters::scan
