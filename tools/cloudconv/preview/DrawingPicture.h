#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/DrawingScene.h"
#include "tools/cloudconv/preview/DrawingStyle.h"

#include <functional>
#include <string>

/// What a picture of a drawing says beside what it shows. Texts are printable UTF-8.
struct DrawingCaption {
    /// The name of the file.
    std::string title;
    /// What a drawing unit is, such as "mm"; empty when the file does not say.
    std::string unit;
    /// What y is called.
    std::string yName = "y";
    /// What of the drawing is not shown; empty when all is.
    std::string leftOut = {};
};

/// Draws a drawing: contours in colours, their starts, directions and open ends, gaps with their
/// widths, and what it all means.
///
/// @param progress  called with the part that is done, 0 to 1; may be empty
/// @return what the picture shows, in words
std::string drawPicture(Canvas& canvas, const PictureSize& size, const DrawingScene& scene,
                        const DrawingCaption& caption, const DrawingMarks& asked = {},
                        const std::function<bool(double)>& progress = {});
