#pragma once

#include "converters/DrawingPath.h"
#include "converters/Export.h"
#include "dxfeditor/DXFDocument.h"

#include <memory>

namespace converters {

/// The contours of a path as a drawing that DXFWriter can save: each a polyline on its layer, or a
/// point.
///
/// A contour in the plane z = 0 becomes a 2D polyline, in which arcs are bulges, exactly, two for
/// an arc of more than a half turn; any other becomes a 3D polyline. Ellipses and splines, and arcs
/// of 3D polylines, are there by the points of the path. A closed contour ends with a vertex where
/// it began, which every reader takes rightly, fromDxf() too, and has no closing edge of its own.
/// Colours are index colours. A drawing of release R12 is ASCII and names no unit: other characters
/// in the names of layers are written by their numbers, as readers of that release expect them.
///
/// @param path  as readPath() gives it, or built likewise; pieces may be missing, the points alone
///              count then
/// @return never empty; the path is no longer needed
/// @throws std::bad_alloc when it does not fit into memory
CONVERTERS_EXPORT std::shared_ptr<DXFDocument> drawingOf(const DrawingPath& path);

} // namespace converters
