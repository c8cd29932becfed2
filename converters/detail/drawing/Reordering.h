#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/Progress.h"

namespace converters::drawing {

/// Puts the contours of a path into an order, turns some of them round and lets closed ones start
/// elsewhere: at the start of a piece, a full circle or ellipse at any of its points.
///
/// A contour that is turned round has its pieces the other way round, too; its entities stay in
/// their order, of which the first is the one that its layer and colour are of.
void reorder(PathContours& path, PathOrder order, const Progress& progress);

} // namespace converters::drawing
