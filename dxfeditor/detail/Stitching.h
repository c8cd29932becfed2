#pragma once

#include "dxfeditor/detail/Sampling.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dxfeditor {

/// Which point of a run is left out because the walk has it already, where the run joins others.
enum class Dropped : std::uint8_t { Nothing, First, Last };

/// A run as a part of a walk.
struct Piece {
    std::uint32_t run;
    Direction direction;
    /// First or last in the direction of the walk.
    Dropped dropped;
};

/// Pieces joined end to end.
struct Chain {
    /// Its pieces end before this place in Walk::pieces, and begin where those of the chain before
    /// it end.
    std::size_t piecesEnd;
    /// Whether its ends meet.
    bool closed;
};

/// The order in which the runs of a drawing are walked.
struct Walk {
    std::vector<Piece> pieces;
    std::vector<Chain> chains;
};

/// Joins runs whose ends lie within 0.001 of each other, so that a contour drawn in pieces, in any
/// order and direction, becomes one walk.
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
/// The cost grows as n log n with the number of runs.
Walk stitch(const std::vector<Run>& runs);

} // namespace dxfeditor
