#pragma once

#include "tools/cloudconv/preview/Plane.h"

#include <string>
#include <vector>

/// A mark of an axis.
struct PlotTick {
    double value;
    std::string label;
};

/// The marks of an axis.
struct PlotTicks {
    /// What the labels count from: 0, or a round number where labels would be long. An axis from
    /// 4512000.5 to 4512003 has the origin 4512000 and labels from 1 to 3.
    double origin = 0.0;
    std::vector<PlotTick> ticks;
};

/// Marks at round numbers: multiples of 1, 2 or 5 times a power of ten.
///
/// @param shown  what the axis shows: two different numbers, neither beyond 1e307, apart by at
///               least the 1e-13th part of the larger one
/// @param most   about how many marks there is room for, at least 1
PlotTicks ticksOf(const Interval& shown, int most);

/// A number in short: at most `digits` significant digits, but all of those before the point; an
/// exponent only where it would take more than fifteen.
std::string shortText(double number, int digits);
