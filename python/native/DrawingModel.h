#pragma once

#include "dxfeditor/DXFDocument.h"

#include <pybind11/pybind11.h>

#include <memory>

/// What Python sees of one drawing: its tables as tuples, its walk as arrays.
///
/// The drawing is complete and set up when this is made, and nothing changes it: any number of
/// threads may read.
class DrawingModel {
public:
    /// @param data  DXF text in any contiguous buffer
    /// @throws a ValueError of Python when the data cannot be read at all
    static std::unique_ptr<DrawingModel> fromBytes(const pybind11::object& data);

    /// A list of (name, flags, frozen, locked, colour, line type, width), in file order.
    pybind11::list layers() const;

    /// A list of (type code, layer, colour, line type, width, data), in file order; what `data` is
    /// depends on the type code.
    pybind11::list entities() const;

    /// (points, contours): the walk as an array of n rows, and (first row, row behind the last,
    /// closed) of each contour.
    pybind11::tuple walk() const;

private:
    DXFDocument m_document;
};
