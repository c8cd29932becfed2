#pragma once

#include "converters/check/NearMisses.h"
#include "tools/cloudconv/Contours.h"

#include <vector>

/// The near misses among the ends of the open contours of a drawing's walk by the fixed rules of
/// fromDxf(), in the order of the walk.
std::vector<converters::NearMiss> nearMissesOf(const DxfContents& drawing,
                                               const std::vector<Contour>& contours,
                                               double distance,
                                               converters::SearchProgress& progress);
