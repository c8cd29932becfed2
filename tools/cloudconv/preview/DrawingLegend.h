#pragma once

#include "tools/cloudconv/preview/DrawingScene.h"
#include "tools/cloudconv/preview/DrawingStyle.h"
#include "tools/cloudconv/preview/Legend.h"

#include <string>

/// Writes what the lines and signs of a drawing's picture mean: contours one by one or, beyond
/// twenty, summed up by layer or by kind.
///
/// @param unit  of lengths; empty when the drawing does not say
void writeLegend(Canvas& canvas, Legend& legend, const DrawingScene& scene,
                 const DrawingStyle& style, const std::string& unit);

/// "5 contours (1 open, 2 closed, 1 circle, 1 of points), 690 points".
std::string summaryOf(const DrawingScene& scene);
