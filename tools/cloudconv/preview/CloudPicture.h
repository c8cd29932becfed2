#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/CloudScene.h"

#include <string>

/// Draws a cloud, and what its colours mean.
///
/// @param name     of the file: printable UTF-8
/// @param summary  what is in it
/// @return what the picture shows, in words
std::string drawPicture(Canvas& canvas, const PictureSize& size, const CloudScene& scene,
                        const std::string& name, const std::string& summary);
