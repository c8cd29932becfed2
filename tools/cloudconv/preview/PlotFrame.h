#pragma once

#include "tools/cloudconv/preview/Canvas.h"
#include "tools/cloudconv/preview/PictureSize.h"
#include "tools/cloudconv/preview/Plane.h"
#include "tools/cloudconv/preview/PlotScale.h"
#include "tools/cloudconv/preview/PlotTicks.h"

#include <string>

constexpr Colour plotInk = {0.13, 0.13, 0.13};
constexpr Colour plotGrey = {0.4, 0.4, 0.4};
constexpr double plotTextSize = 12.0;

/// Where the parts of a picture are.
struct PlotFrame {
    Rectangle plot;
    /// Right of it.
    Rectangle legend;
};

/// The parts of a picture of this size.
///
/// @param lines  of the heading, below its first
PlotFrame frameOf(const PictureSize& size, std::size_t lines = 1);

/// What an axis shows: "x", in "mm".
struct AxisName {
    std::string name;
    std::string unit;
};

/// The name of the file, in bold, and below it lines on what is in it.
void drawHeading(Canvas& canvas, const PictureSize& size, const std::string& name,
                 const std::vector<std::string>& lines);

/// Axes in x and y: a grid, numbers and names around what the scale shows.
class PlotAxes {
public:
    explicit PlotAxes(const PlotScale& scale);

    /// The lines below what is shown.
    void drawGrid(Canvas& canvas) const;
    /// What is around it.
    void drawAround(Canvas& canvas, const AxisName& x, const AxisName& y) const;

private:
    PlotScale m_scale;
    PlotTicks m_x;
    PlotTicks m_y;
};

/// The text, or what of it fits into the width with an ellipsis in its middle.
std::string fitted(Canvas& canvas, const std::string& text, const Lettering& lettering,
                   double width);
