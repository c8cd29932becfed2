#pragma once

#include "tools/cloudconv/preview/Plane.h"

/// Where coordinates lie in a picture: x to the right, y upwards, one unit as long in x as in y.
///
/// Makes sense of any bounds: a single place lies in the middle of an area of two units, and
/// numbers that differ in their last digits only are shown as equal.
class PlotScale {
public:
    /// @param bounds  what is to be seen; not empty, of places that can be shown
    /// @param frame   where to; the rest of it shows what is around
    /// @param margin  pixels of the frame that stay free on each side
    PlotScale(const Bounds& bounds, const Rectangle& frame, double margin);

    /// The pixel of a place.
    Place pixel(const Place& place) const;

    /// What the frame shows.
    Interval shownX() const;
    Interval shownY() const;

    const Rectangle& frame() const { return m_frame; }

private:
    Rectangle m_frame;
    Place m_centre;
    double m_unitsPerPixel;
};
