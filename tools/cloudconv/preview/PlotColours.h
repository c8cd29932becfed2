#pragma once

#include <cstddef>

/// A colour; its parts go from 0 to 1.
struct Colour {
    double red;
    double green;
    double blue;

    bool operator==(const Colour& other) const {
        return red == other.red && green == other.green && blue == other.blue;
    }
};

/// How many colours there are for contours.
constexpr std::size_t contourColourCount = 7;

/// The colour of the contour of this index. Those of neighbours can be told apart by the
/// colour-blind too, and on white; after the last the first comes again.
Colour contourColour(std::size_t index);

/// The colour of a value on a scale from 0 to 1: from dark blue over green to yellow, ever lighter,
/// so that the order shows without seeing colours. Values outside have the colours of the ends,
/// nan that of 0.
Colour scaleColour(double value);
