#pragma once

#include "tools/cloudconv/DxfFile.h"

#include <string>
#include <vector>

/// What a user must know of a drawing before a robot follows its walk, one line each:
///
/// - near misses: ends of the walk that lie apart by no more than `distance`, but by more than the
///   0.001 within which ends are joined. Of the ends near an end, the nearest.
/// - duplicates: entities that equal an earlier one to six decimals, in either direction;
/// - entities too short to sample, of which only the start is walked, or that give no points;
/// - arcs and circles of no length.
///
/// The cost grows as n log n with the entities.
std::vector<std::string> findingsOf(const DxfContents& drawing, double distance);
