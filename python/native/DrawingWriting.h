#pragma once

#include <pybind11/pybind11.h>

/// Adds write_drawing, which makes a file of points and polylines, to the native module.
void addDrawingWriter(pybind11::module_& module);
