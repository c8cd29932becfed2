#include "tools/cloudconv/preview/PixelPath.h"

#include <cmath>

namespace {

double lengthOf(const std::vector<Place>& path) {
    double length = 0.0;
    for (std::size_t i = 1; i < path.size(); ++i) {
        const bool joined = canBeShown(path[i - 1]) && canBeShown(path[i]);
        length += joined ? distanceOf(path[i - 1], path[i]) : 0.0;
    }
    return length;
}

/// Lays straight lines through places that come one by one.
///
/// From the place where a line begins, each further place narrows the directions in which the line
/// may go to pass all of them. A place outside of them, or on the way back, begins another line.
class Straightening {
public:
    explicit Straightening(std::vector<Place>& path) : m_path(path) {}

    void add(const Place& place) {
        if (m_started && !extend(place)) {
            m_path.push_back(m_last);
            m_hasDirection = false;
            extend(place);
        } else if (!m_started) {
            m_path.push_back(place);
            m_started = true;
        }
        m_last = place;
    }

    /// Ends a piece.
    void finish() {
        if (m_started) {
            m_path.push_back(m_last);
        }
        m_started = m_hasDirection = false;
    }

private:
    static constexpr double tolerance = 0.1;

    /// Whether the line can go on to a place, past those since it began.
    bool extend(const Place& place) {
        const Place way = {place.x - m_path.back().x, place.y - m_path.back().y};
        const double distance = std::hypot(way.x, way.y);
        if (!m_hasDirection) {
            if (distance > tolerance) {
                m_direction = {way.x / distance, way.y / distance};
                m_reached = distance;
                m_slopes = {-tolerance / distance, tolerance / distance};
                m_hasDirection = true;
            }
            return true;
        }
        const double ahead = way.x * m_direction.x + way.y * m_direction.y;
        const double aside = way.y * m_direction.x - way.x * m_direction.y;
        if (ahead < m_reached || aside < m_slopes.low * ahead || aside > m_slopes.high * ahead) {
            return false;
        }
        m_reached = ahead;
        m_slopes.low = std::max(m_slopes.low, (aside - tolerance) / ahead);
        m_slopes.high = std::min(m_slopes.high, (aside + tolerance) / ahead);
        return true;
    }

    std::vector<Place>& m_path;
    bool m_started = false;
    bool m_hasDirection = false;
    Place m_last = {};
    /// Of the first place, how far the line got along it, and by how much others may leave it.
    Place m_direction = {};
    double m_reached = 0.0;
    Interval m_slopes;
};

} // namespace

std::vector<Place> pixelPath(const std::vector<Place>& places, const PlotScale& scale) {
    std::vector<Place> path;
    Straightening straightening(path);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (canBeShown(places[i])) {
            straightening.add(scale.pixel(places[i]));
        } else if (i > 0 && canBeShown(places[i - 1])) {
            straightening.finish();
            path.push_back(places[i]);
        }
    }
    straightening.finish();
    return path;
}

std::vector<Arrow> arrowsAlong(const std::vector<Place>& path, double shortest) {
    constexpr double firstAt = 45.0;
    constexpr double spacing = 110.0;
    const double length = lengthOf(path);
    std::vector<Arrow> arrows;
    if (length < shortest) {
        return arrows;
    }
    double next = std::min(firstAt, length / 2);
    double walked = 0.0;
    for (std::size_t i = 1; i < path.size(); ++i) {
        const Place& from = path[i - 1];
        const Place& to = path[i];
        if (!canBeShown(from) || !canBeShown(to)) {
            continue;
        }
        const double step = distanceOf(from, to);
        while (next < walked + step) {
            const double share = (next - walked) / step;
            arrows.push_back({{from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)},
                              {(to.x - from.x) / step, (to.y - from.y) / step}});
            next += spacing;
        }
        walked += step;
    }
    return arrows;
}
