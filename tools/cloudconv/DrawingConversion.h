#pragma once

#include "tools/cloudconv/Convert.h"

/// Converts a drawing to the points of its path, whose intensity counts the contours from 1.
///
/// @throws as convert(); FileError, too, when the drawing holds something and all was left out
void convertDrawing(const ConvertOptions& options, FileFormat to);
