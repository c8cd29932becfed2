#pragma once

#include <pybind11/pybind11.h>

/// Adds read_scan, write_points, read_path and check_path, the readers of any file, to the native
/// module.
void addReaders(pybind11::module_& module);
