#pragma once

#include "tools/cloudconv/Convert.h"

/// Converts a file by the fixed rules of fromPly() and fromDxf(), on which existing programs rely:
/// a drawing to its walk, a scan to x, y, z and intensity.
///
/// @throws as convert()
void convertPlainly(const ConvertOptions& options, FileFormat from, FileFormat to);
