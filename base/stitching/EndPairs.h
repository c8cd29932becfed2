#pragma once

#include "base/StageProgress.h"
#include "base/stitching/RankedEnds.h"
#include "base/stitching/RunEnds.h"
#include "base/stitching/SpatialIndex.h"

#include <vector>

namespace base {

/// What each end meets: no end; one other end, which meets no third; or a crowd. What an end of a
/// crowd meets is of a crowd too, but two crowded ends need not meet.
///
/// In most drawings two lines meet in a corner, and nothing else does. Such pairs need no search
/// when the runs are joined. A crowd costs more, but is never wrong: any end may be called crowded
/// as long as all that it meets are.
///
/// The ends are put into the cells of a grid that is much wider than the join distance, and
/// compared with those in the same cell and, near its sides, in the next ones. A cell that gets too
/// full becomes a crowd as a whole, so that the cost grows with the number of ends only, wherever
/// they lie.
///
/// Equal ends of one run, as of a run of one point, are no different: what they meet is a crowd,
/// else they are a pair.
///
/// @param progress  told of each end
/// @return by RankedEnd::index(); crowds have no indices yet
std::vector<EndOrCrowd> pairEnds(const RankedEnds& ends, const SpatialIndex& index,
                                 const JoinDistance& distance, StageProgress progress = {});

} // namespace base
