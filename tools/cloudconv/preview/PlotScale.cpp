#include "tools/cloudconv/preview/PlotScale.h"

namespace {

double centreOf(const Interval& interval) {
    return interval.low / 2 + interval.high / 2;
}

/// Half of what has to be shown at least, for marks on the axis to be different numbers.
double leastHalf(double centre) {
    constexpr double share = 1e-12;
    constexpr double smallest = 1e-290;
    return std::max(std::abs(centre) * share, smallest);
}

} // namespace

PlotScale::PlotScale(const Bounds& bounds, const Rectangle& frame, double margin)
    : m_frame(frame), m_centre({centreOf(bounds.x), centreOf(bounds.y)}) {
    double halfX = bounds.x.high / 2 - bounds.x.low / 2;
    double halfY = bounds.y.high / 2 - bounds.y.low / 2;
    const double least = std::max(leastHalf(m_centre.x), leastHalf(m_centre.y));
    if (halfX < least && halfY < least) {
        halfX = halfY = std::max(1.0, least);
    }
    m_unitsPerPixel =
        2 * std::max({halfX / (frame.width - 2 * margin), halfY / (frame.height - 2 * margin),
                      least / std::min(frame.width, frame.height)});
}

Place PlotScale::pixel(const Place& place) const {
    return {m_frame.left + m_frame.width / 2 + (place.x - m_centre.x) / m_unitsPerPixel,
            m_frame.top + m_frame.height / 2 - (place.y - m_centre.y) / m_unitsPerPixel};
}

Interval PlotScale::shownX() const {
    const double half = m_frame.width / 2 * m_unitsPerPixel;
    return {m_centre.x - half, m_centre.x + half};
}

Interval PlotScale::shownY() const {
    const double half = m_frame.height / 2 * m_unitsPerPixel;
    return {m_centre.y - half, m_centre.y + half};
}
