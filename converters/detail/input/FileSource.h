#pragma once

#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

namespace converters::input {

/// Throws an exception that has the reason in it.
using Refuse = std::function<void(std::string reason)>;

/// A window on a file, a pipe or a device.
///
/// @param refuse    called with the system's reason when it cannot be opened; when it cannot be
///                  read, the window's functions call it
/// @param capacity  as of ByteWindow
ByteWindow openFile(const std::filesystem::path& file, const Refuse& refuse,
                    std::size_t capacity = ByteWindow::usualCapacity);

} // namespace converters::input
