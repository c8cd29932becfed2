#pragma once

#include "tools/cloudconv/Convert.h"

/// Converts a scan in blocks of points, of any size in constant memory.
///
/// A PLY, CSV or XYZ file gets all scalar properties of the vertices, or with `xyzi` four; a DXF
/// file a POINT for each point that has a place.
///
/// @throws as convert()
void convertScan(const ConvertOptions& options, FileFormat to);
