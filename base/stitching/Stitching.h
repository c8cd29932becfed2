#pragma once

#include "base/StageProgress.h"
#include "base/stitching/EndPoints.h"
#include "base/stitching/RunEnds.h"

#include <cstdint>
#include <vector>

namespace base {

/// The direction in which the points of a run are walked.
enum class Direction : bool { Forwards, Backwards };

/// Which point of a run is left out because the walk has it already, where the run joins others:
/// the first or the last in the direction of the walk.
enum class Dropped : std::uint8_t { Nothing, First, Last };

/// A run as a part of a walk.
struct Piece {
    RunNumber run;
    Direction direction;
    Dropped dropped;
    /// Whether it is the last piece of a chain of pieces joined end to end, and whether the ends of
    /// that chain meet.
    bool endsChain;
    bool closesChain;
};

/// The order in which runs are walked.
using Walk = std::vector<Piece>;

/// Joins runs whose ends lie within a distance of each other, so that a contour drawn in pieces, in
/// any order and direction, becomes one walk.
///
/// The result is that of this procedure, whatever fits how often: take the last run of the pool as
/// the chain, then go through the pool from its start. The first run that fits is taken out and
/// joined, by the first of these that holds, and the search begins again at the start of the pool:
///
///   1. its first point meets the chain's last point: appended;
///   2. its last point meets the chain's last point: appended backwards;
///   3. its last point meets the chain's first point: put in front;
///   4. its first point meets the chain's first point: put in front backwards.
///
/// When nothing fits any more, the chain is finished and the next one begins.
///
/// Example: the runs A from (0, 0) to (1, 0) and B from (0, 0) to (0, 1) become the chain of A
/// backwards and B, since B, the later one, is the chain that A is put in front of.
///
/// The cost grows with the number of runs, and as n log n where more than two ends meet.
///
/// Of a run of one point nothing is left when it is joined: the chain ends where it did.
///
/// @param ends      the first and the last point of each run; freed when the walk is known
/// @param distance  ends closer than this are one point
/// @param progress  told of each end whose neighbours are found, and of each run that has its place
Walk stitch(EndPoints ends, const JoinDistance& distance, StageProgress progress = {});

} // namespace base
