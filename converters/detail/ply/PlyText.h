#pragma once

#include "converters/detail/ply/PlyColumn.h"
#include "converters/detail/ply/PointBytes.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace converters::detail {

/// Takes the next piece of text; it is not kept.
using WriteText = std::function<void(const char* text, std::size_t length)>;

/// Told of every element whose datatype is unknown.
using WarnOfDatatype = std::function<void(unsigned datatype)>;

/// Writes one line for every point: the elements of the columns in their order, separated by a
/// blank. An element that is not inside the points' bytes is 0; one of unknown datatype is empty,
/// the blank behind it stays.
///
/// The counts of columns with several elements go out before the line that is being built, so they
/// stand ahead of all its values. That is the layout of these files, odd as it is.
void writeLines(const std::vector<PlyColumn>& columns, const PointBytes& points,
                const WriteText& write, const WarnOfDatatype& warn);

/// Most bytes that the line of a point can take.
std::size_t maxLineLength(const std::vector<PlyColumn>& columns);

} // namespace converters::detail
