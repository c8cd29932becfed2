#pragma once

#include <pybind11/pybind11.h>

namespace converters {
struct DrawingPath;
}

/// The path as a drawing of release R12: a polyline a contour, on its layer.
///
/// @throws pybind11::error_already_set (OSError) when there is no room for it
pybind11::bytes drawingFileOf(const converters::DrawingPath& path);

/// Adds write_drawing, which makes a file of points and polylines, to the native module.
void addDrawingWriter(pybind11::module_& module);
