#include "tools/cloudconv/preview/PlotColours.h"

#include <algorithm>
#include <array>

namespace {

constexpr Colour colourOf(unsigned rgb) {
    constexpr unsigned mask = 0xFF;
    constexpr double most = 255.0;
    return {((rgb >> 16) & mask) / most, ((rgb >> 8) & mask) / most, (rgb & mask) / most};
}

double between(double from, double to, double share) {
    return from + (to - from) * share;
}

} // namespace

Colour contourColour(std::size_t index) {
    // The palette of Okabe and Ito without its yellow, which is hard to see on white.
    constexpr std::array<unsigned, contourColourCount> colours = {
        0x0072B2, 0xD55E00, 0x009E73, 0xCC79A7, 0xE69F00, 0x56B4E9, 0x000000};
    return colourOf(colours[index % colours.size()]);
}

Colour scaleColour(double value) {
    // Ten steps of the colour map viridis.
    constexpr std::array<unsigned, 10> steps = {0x440154, 0x482878, 0x3E4989, 0x31688E, 0x26828E,
                                                0x1F9E89, 0x35B779, 0x6ECE58, 0xB5DE2B, 0xFDE725};
    constexpr double last = steps.size() - 1;
    const double position = value > 0.0 ? std::min(value, 1.0) * last : 0.0;
    const std::size_t step = std::min(static_cast<std::size_t>(position), steps.size() - 2);
    const Colour from = colourOf(steps[step]);
    const Colour to = colourOf(steps[step + 1]);
    const double share = position - static_cast<double>(step);
    return {between(from.red, to.red, share), between(from.green, to.green, share),
            between(from.blue, to.blue, share)};
}
