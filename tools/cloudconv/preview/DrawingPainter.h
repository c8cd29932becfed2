#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/DrawingScene.h"
#include "tools/cloudconv/preview/DrawingStyle.h"
#include "tools/cloudconv/preview/PixelPath.h"
#include "tools/cloudconv/preview/PlotScale.h"

#include <functional>

/// The lines that are no contours.
extern const Pen wayPen;
extern const Pen gapPen;

/// Signs, for the picture and its legend.
/// @param size  1, or less where there are many
void drawArrow(Canvas& canvas, const Arrow& arrow, const Colour& colour, double size = 1.0);
void drawStart(Canvas& canvas, const Place& place, const Colour& colour, double size = 1.0);
void drawOpenEnd(Canvas& canvas, const Place& place, double size = 1.0);

/// Draws what is inside the axes of a drawing's picture: contours, the ways between them, and
/// signs.
///
/// @param progress  called with the part that is done, 0 to 1; may be empty
void paintDrawing(Canvas& canvas, const DrawingScene& scene, const DrawingStyle& style,
                  const PlotScale& scale, const std::function<bool(double)>& progress = {});
