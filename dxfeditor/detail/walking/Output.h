#pragma once

#include "base/StageProgress.h"
#include "base/stitching/Stitching.h"
#include "dxfeditor/DXFContour.h"
#include "dxfeditor/DXFPiece.h"
#include "dxfeditor/detail/walking/Sampling.h"

#include <vector>

namespace dxfeditor {

/// An empty vector with room for the points of all runs, so that a drawing too large for the memory
/// fails with std::bad_alloc before any work is done.
std::vector<Run::Point> roomFor(const std::vector<Run>& runs, const Entities& entities);

/// Appends the points of a walk through `runs`. The last point of a closed chain becomes an exact
/// copy of its first.
///
/// @param contours  receives one contour for each chain; may be null
/// @param pieces    receives one piece for each run; may be null
/// @param progress  told of the points of each run
void append(const base::Walk& walk, const std::vector<Run>& runs, const Entities& entities,
            std::vector<Run::Point>& points, std::vector<DXFContour>* contours,
            std::vector<DXFPiece>* pieces, base::StageProgress progress = {});

} // namespace dxfeditor
