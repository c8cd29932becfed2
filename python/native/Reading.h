#pragma once

#include <pybind11/pybind11.h>

/// Adds read_scan, write_points and read_path, the readers of any file, to the native module.
void addReaders(pybind11::module_& module);
