#pragma once

#include "converters/detail/ply/PlyColumn.h"
#include "converters/detail/ply/PointBytes.h"

#include <vector>

namespace converters::detail {

/// Size in bytes of the record of a point: one element of each column.
std::size_t recordSize(const std::vector<PlyColumn>& columns);

/// Appends the packed record of every point: the columns in their order, one element of each.
///
/// Of a column with several elements the last one is stored: they share one place. An element that
/// is not inside the points' bytes, and a column without elements, is zero. A column of unknown
/// datatype takes no bytes.
void appendRecords(const std::vector<PlyColumn>& columns, const PointBytes& points,
                   std::vector<unsigned char>& out);

} // namespace converters::detail
