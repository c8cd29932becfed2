#pragma once

#include "dxfeditor/detail/RunEnds.h"

#include <vector>

namespace dxfeditor {

/// All runs in an order in which neighbours in the drawing are near each other: by the cells of a
/// coarse grid in which their first ends lie.
///
/// Whatever order the entities are in, what is kept in this order for each run is walked along
/// contours without going back and forth in a large memory. Nothing else follows from it.
///
/// @param ends  the first and the last end of each run
std::vector<RunNumber> spatialOrder(const std::vector<Run::Point>& ends);

} // namespace dxfeditor
