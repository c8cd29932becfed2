#pragma once

#include <string_view>

/// The blocks that are no blocks: the drawing itself, and the sheets that it is plotted on.
namespace converters::drawing {

/// Whether a block of this name is what the drawing itself holds.
bool isModelSpace(std::string_view block);

/// Whether a block of this name is what a sheet holds.
bool isPaperSpace(std::string_view block);

} // namespace converters::drawing
