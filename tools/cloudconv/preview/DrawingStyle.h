#pragma once

#include "tools/cloudconv/preview/DrawingScene.h"
#include "tools/cloudconv/preview/Plane.h"
#include "tools/cloudconv/preview/PlotColours.h"

#include <cstddef>

/// What is asked of the picture of a drawing.
struct DrawingMarks {
    /// Starts, arrows, open ends, gaps and numbers.
    bool marks = true;
    /// The ways between contours, however many.
    bool ways = false;
};

/// How a drawing is drawn, so that it can be read however much of it there is: with more contours
/// lines get thinner and signs smaller and sparser.
class DrawingStyle {
public:
    /// @param scene  has to outlive the style
    /// @param area   the picture inside its axes
    DrawingStyle(const DrawingScene& scene, const Rectangle& area, const DrawingMarks& asked);

    /// Whether contours are listed one by one and have colours and numbers of their own. Beyond
    /// twenty they have those of their layers or, where there is only one layer, of their kinds.
    bool isOneByOne() const { return m_isOneByOne; }
    bool isByLayer() const { return !m_isOneByOne && m_isByLayer; }

    Colour colourOf(std::size_t contour) const;
    Colour colourOfLayer(std::size_t layer) const { return contourColour(layer); }
    Colour colourOf(ContourKind kind) const;

    bool hasMarks() const { return m_hasMarks; }
    bool hasWays() const { return m_hasWays; }
    /// Lines of contours, in pixels.
    double strokeWidth() const;
    /// How large signs are, of 1.
    double signSize() const { return m_signSize; }
    /// The dots of POINTs, in pixels.
    double dotWidth() const { return m_dotWidth; }
    /// Of the signs of a kind, one in a square of this many pixels.
    double startSpacing() const { return 3.0 + crowding() * 45.0; }
    double endSpacing() const { return 3.0 + crowding() * 25.0; }
    double arrowSpacing() const { return 18.0 + crowding() * 110.0; }
    /// The longer side, in pixels, of the smallest contour that has signs, and the length of the
    /// shortest that has arrows.
    double leastWithSigns() const { return m_isOneByOne ? 0.0 : 10.0 + crowding() * 20.0; }
    double shortestWithArrows() const { return m_isOneByOne ? 16.0 : 120.0; }

private:
    double crowding() const { return 1.0 - m_signSize; }

    const DrawingScene& m_scene;
    bool m_isOneByOne;
    bool m_isByLayer;
    bool m_hasMarks;
    bool m_hasWays;
    double m_signSize;
    double m_dotWidth;
};
