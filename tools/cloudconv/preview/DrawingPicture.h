#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/DrawingScene.h"

#include <string>

/// Draws a drawing's walk: contours in colours, their starts, directions and open ends, gaps with
/// their widths, and what it all means.
///
/// @param name  of the file: printable UTF-8
/// @param unit  what a drawing unit is, such as "mm"; empty when the file does not say
/// @return what the picture shows, in words
std::string drawPicture(Canvas& canvas, const PictureSize& size, const DrawingScene& scene,
                        const std::string& name, const std::string& unit);
