#pragma once

#include "converters/check/Finding.h"
#include "tools/cloudconv/DxfFile.h"

#include <functional>
#include <string_view>
#include <vector>

/// What a user must know of a drawing before a robot follows its walk by the fixed rules of
/// fromDxf():
///
/// - near misses: ends of the walk that lie apart by no more than `distance`, but by more than the
///   0.001 within which ends are joined. Of the ends near an end, the nearest;
/// - duplicates: entities that equal an earlier one of their kind to six decimals, in either
///   direction;
/// - entities too short to sample, of which only the start is walked, or that give no points;
/// - arcs and circles of no length;
/// - what is walked otherwise than it is drawn: arcs of polylines, closing edges, mirrored
///   entities, hidden ones and those of paper space; blocks and kinds that are not walked;
/// - a drawing that is not read to its end.
///
/// The cost grows as n log n with the entities.
///
/// @param text      the drawing's file
/// @param progress  as that of converters::findingsOf()
std::vector<converters::Finding> findingsOf(const DxfContents& drawing, std::string_view text,
                                            double distance,
                                            std::function<bool(double)> progress = {});
