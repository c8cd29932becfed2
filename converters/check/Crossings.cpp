#include "converters/check/Crossings.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace converters {

namespace {

/// Pairs of segments that are compared at most, over all contours: about a second's work.
constexpr std::uint64_t mostTests = 300'000'000;

PlanePoint operator-(const PlanePoint& a, const PlanePoint& b) {
    return {a.u - b.u, a.v - b.v, a.height - b.height};
}

double cross(const PlanePoint& a, const PlanePoint& b) {
    return a.u * b.v - a.v * b.u;
}

double dot(const PlanePoint& a, const PlanePoint& b) {
    return a.u * b.u + a.v * b.v;
}

double lengthOf(const PlanePoint& a) {
    return std::hypot(a.u, a.v);
}

PlanePoint between(const PlanePoint& a, const PlanePoint& b, double share) {
    return {a.u + share * (b.u - a.u), a.v + share * (b.v - a.v),
            a.height + share * (b.height - a.height)};
}

/// Cells of the mean extent of a segment: each segment is in a few of them on the average, and
/// there are no more rows and columns than segments.
class Grid {
public:
    /// @param room  around a segment, that belongs to it
    Grid(const std::vector<PlanePoint>& points, double room)
        : m_lowest(points.front()), m_room(room) {
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            m_side.u += std::abs(points[i + 1].u - points[i].u);
            m_side.v += std::abs(points[i + 1].v - points[i].v);
            m_lowest.u = std::min(m_lowest.u, points[i + 1].u);
            m_lowest.v = std::min(m_lowest.v, points[i + 1].v);
        }
        const auto segments = static_cast<double>(points.size() - 1);
        m_side.u = m_side.u / segments + room;
        m_side.v = m_side.v / segments + room;
    }

    /// Calls the function with the number of each cell that the segment is in.
    template <typename Function>
    void forCellsOf(const PlanePoint& a, const PlanePoint& b, Function function) const {
        const PlanePoint& left = a.u < b.u ? a : b;
        const PlanePoint& right = a.u < b.u ? b : a;
        const std::uint64_t last = index(right.u + m_room - m_lowest.u, m_side.u);
        for (std::uint64_t column = index(left.u - m_room - m_lowest.u, m_side.u); column <= last;
             ++column) {
            const auto [low, high] = heightsIn(column, left, right);
            const std::uint64_t top = index(high + m_room - m_lowest.v, m_side.v);
            for (std::uint64_t row = index(low - m_room - m_lowest.v, m_side.v); row <= top;
                 ++row) {
                function(column << 32U | row);
            }
        }
    }

private:
    static std::uint64_t index(double distance, double size) {
        return static_cast<std::uint64_t>(std::max(std::floor(distance / size), 0.0));
    }

    /// The range of v of the part of a segment that is in a column.
    std::pair<double, double> heightsIn(std::uint64_t column, const PlanePoint& left,
                                        const PlanePoint& right) const {
        const double begin = m_lowest.u + static_cast<double>(column) * m_side.u;
        const double width = right.u - left.u;
        if (width <= 0.0) {
            return {std::min(left.v, right.v), std::max(left.v, right.v)};
        }
        const auto heightAt = [&](double u) {
            return left.v + std::clamp((u - left.u) / width, 0.0, 1.0) * (right.v - left.v);
        };
        const double first = heightAt(begin - m_room);
        const double second = heightAt(begin + m_side.u + m_room);
        return {std::min(first, second), std::max(first, second)};
    }

    PlanePoint m_lowest;
    PlanePoint m_side = {0.0, 0.0, 0.0};
    double m_room;
};

/// One contour, and the comparison of its segments: segment i runs from point i to the next.
class Tangle {
public:
    Tangle(std::vector<PlanePoint> points, bool closed, double nearness, std::uint64_t& tests)
        : m_points(std::move(points)), m_closed(closed), m_nearness(nearness), m_tests(tests) {}

    /// @return whether the work came to its end
    bool find(std::optional<PlanePoint>& place) {
        prepare();
        if (m_points.size() < 3) {
            return true;
        }
        if (!std::isfinite(m_extent * m_extent)) {
            return false;
        }
        constexpr std::size_t few = 24;
        const bool whole = segments() <= few ? compareAll() : compareInCells();
        place = m_place;
        return whole;
    }

private:
    std::size_t segments() const { return m_points.size() - 1; }

    /// Drops points that repeat the one before, and measures what is left.
    void prepare() {
        const auto same = [](const PlanePoint& a, const PlanePoint& b) {
            return a.u == b.u && a.v == b.v;
        };
        m_points.erase(std::unique(m_points.begin(), m_points.end(), same), m_points.end());
        m_reached.assign(m_points.size(), 0.0);
        for (std::size_t i = 0; i < m_points.size(); ++i) {
            m_extent = std::max({m_extent, std::abs(m_points[i].u), std::abs(m_points[i].v)});
            if (i > 0) {
                m_reached[i] = m_reached[i - 1] + lengthOf(m_points[i] - m_points[i - 1]);
            }
        }
        constexpr double exactness = 1e-11;
        m_tolerance = exactness * m_extent;
    }

    bool compareAll() {
        for (std::size_t i = 0; i < segments(); ++i) {
            for (std::size_t j = i + 1; j < segments(); ++j) {
                if (compare(i, j)) {
                    return true;
                }
            }
        }
        return true;
    }

    /// Turns the plane so that most of the contour's length runs along u.
    std::vector<PlanePoint> turned() const {
        double cosine = 0.0;
        double sine = 0.0;
        for (std::size_t i = 0; i < segments(); ++i) {
            const PlanePoint way = m_points[i + 1] - m_points[i];
            cosine += way.u * way.u - way.v * way.v;
            sine += 2.0 * way.u * way.v;
        }
        const double angle = std::atan2(sine, cosine) / 2.0;
        const PlanePoint axis = {std::cos(angle), std::sin(angle), 0.0};
        std::vector<PlanePoint> points;
        points.reserve(m_points.size());
        for (const PlanePoint& point : m_points) {
            points.push_back({dot(axis, point), cross(axis, point), 0.0});
        }
        return points;
    }

    /// A cell, and a segment in it.
    using Entry = std::pair<std::uint64_t, std::uint32_t>;

    std::vector<Entry> entriesOf(const std::vector<PlanePoint>& points) const;
    bool compareInCells();

    /// Compares two segments, of which the first comes first, and keeps the place where they meet.
    bool compare(std::size_t i, std::size_t j) {
        ++m_tests;
        const bool neighbours = j == i + 1 || (m_closed && i == 0 && j + 1 == segments());
        return !neighbours && boxesMeet(i, j) && (crosses(i, j) || touches(i, j));
    }

    bool boxesMeet(std::size_t i, std::size_t j) const {
        const PlanePoint& a = m_points[i];
        const PlanePoint& b = m_points[i + 1];
        const PlanePoint& c = m_points[j];
        const PlanePoint& d = m_points[j + 1];
        const double room = m_closed ? m_tolerance : std::max(m_tolerance, m_nearness);
        return std::min(a.u, b.u) <= std::max(c.u, d.u) + room &&
               std::min(c.u, d.u) <= std::max(a.u, b.u) + room &&
               std::min(a.v, b.v) <= std::max(c.v, d.v) + room &&
               std::min(c.v, d.v) <= std::max(a.v, b.v) + room;
    }

    bool isSameHeight(double a, double b) const {
        return std::abs(a - b) <= std::max(m_nearness, m_tolerance);
    }

    bool keep(const PlanePoint& place) {
        m_place = place;
        return true;
    }

    /// Whether the insides of two segments cross.
    bool crosses(std::size_t i, std::size_t j) {
        const PlanePoint& a = m_points[i];
        const PlanePoint& c = m_points[j];
        const PlanePoint first = m_points[i + 1] - a;
        const PlanePoint second = m_points[j + 1] - c;
        const double firstRoom = m_tolerance * lengthOf(first);
        const double secondRoom = m_tolerance * lengthOf(second);
        const double sideC = cross(first, c - a);
        const double sideD = cross(first, m_points[j + 1] - a);
        const double sideA = cross(second, a - c);
        const double sideB = cross(second, m_points[i + 1] - c);
        const auto differ = [](double one, double other, double room) {
            return (one > room && other < -room) || (one < -room && other > room);
        };
        if (!differ(sideC, sideD, firstRoom) || !differ(sideA, sideB, secondRoom)) {
            return false;
        }
        const PlanePoint here = between(a, m_points[i + 1], sideA / (sideA - sideB));
        const PlanePoint there = between(c, m_points[j + 1], sideC / (sideC - sideD));
        return isSameHeight(here.height, there.height) && keep(here);
    }

    /// Whether one segment begins or ends on the other; in a closed contour, whether the contour
    /// goes over to the other side there.
    bool touches(std::size_t i, std::size_t j) {
        return touchesAt(i, i, j) || touchesAt(i + 1, i, j) || touchesAt(j, j, i) ||
               touchesAt(j + 1, j, i);
    }

    /// Whether a point, an end of `own`, lies on the segment `other`.
    bool touchesAt(std::size_t point, std::size_t own, std::size_t other) {
        const bool isEnd = !m_closed && (point == 0 || point + 1 == m_points.size());
        const double room = isEnd ? std::max(m_nearness, m_tolerance) : m_tolerance;
        const PlanePoint& start = m_points[other];
        const PlanePoint way = m_points[other + 1] - start;
        const double share =
            std::clamp(dot(m_points[point] - start, way) / dot(way, way), 0.0, 1.0);
        const PlanePoint foot = between(start, m_points[other + 1], share);
        if (lengthOf(foot - m_points[point]) > room ||
            !isSameHeight(foot.height, m_points[point].height) ||
            wayBetween(own, other) <= 4.0 * room) {
            return false;
        }
        return (!m_closed || goesOver(point, other, share)) && keep(m_points[point]);
    }

    /// The length of the contour between two segments.
    double wayBetween(std::size_t a, std::size_t b) const {
        const auto [first, second] = std::minmax(a, b);
        const double inside = m_reached[second] - m_reached[first + 1];
        const double around = m_reached.back() - m_reached[second + 1] + m_reached[first];
        return m_closed ? std::min(inside, around) : inside;
    }

    const PlanePoint& before(std::size_t point) const {
        return point == 0 ? m_points[m_points.size() - 2] : m_points[point - 1];
    }

    const PlanePoint& after(std::size_t point) const {
        return point + 1 == m_points.size() ? m_points[1] : m_points[point + 1];
    }

    /// Whether the closed contour, in a point that lies on the segment `other`, goes over to the
    /// other side of the branch that `other` belongs to.
    bool goesOver(std::size_t point, std::size_t other, double share) const {
        const PlanePoint& here = m_points[point];
        const bool atStart = lengthOf(m_points[other] - here) <= m_tolerance || share == 0.0;
        const bool atEnd = lengthOf(m_points[other + 1] - here) <= m_tolerance || share == 1.0;
        const PlanePoint back = (atStart ? before(other) : m_points[other]) - here;
        const PlanePoint on = (atEnd ? after(other + 1) : m_points[other + 1]) - here;
        const int from = sideOf(before(point) - here, back, on);
        const int to = sideOf(after(point) - here, back, on);
        return from * to < 0;
    }

    /// On which side of the way that comes from `back` and goes to `on` a direction lies: -1 or 1;
    /// 0 along the way.
    int sideOf(const PlanePoint& direction, const PlanePoint& back, const PlanePoint& on) const {
        const auto along = [&](const PlanePoint& way) {
            return std::abs(cross(direction, way)) <= m_tolerance * lengthOf(way) &&
                   dot(direction, way) > 0.0;
        };
        if (along(back) || along(on)) {
            return 0;
        }
        const double whole = turnTo(back, on);
        return turnTo(direction, on) < whole ? 1 : -1;
    }

    /// The angle from `to` counter-clockwise to `from`, 0 to 2 pi.
    static double turnTo(const PlanePoint& from, const PlanePoint& to) {
        constexpr double pi = 3.14159265358979323846;
        const double angle = std::atan2(cross(to, from), dot(to, from));
        return angle < 0.0 ? angle + 2.0 * pi : angle;
    }

    std::vector<PlanePoint> m_points;
    bool m_closed;
    double m_nearness;
    std::uint64_t& m_tests;
    /// The length of the contour up to each point.
    std::vector<double> m_reached;
    double m_extent = 0.0;
    /// What counts as exactly there.
    double m_tolerance = 0.0;
    std::optional<PlanePoint> m_place;
};

std::vector<Tangle::Entry> Tangle::entriesOf(const std::vector<PlanePoint>& points) const {
    // An end of an open contour is looked for in the cells around it, too.
    const Grid grid(points, 2.0 * std::max(m_nearness, m_tolerance));
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < segments(); ++i) {
        grid.forCellsOf(points[i], points[i + 1], [&](std::uint64_t cell) {
            entries.emplace_back(cell, static_cast<std::uint32_t>(i));
        });
    }
    return entries;
}

bool Tangle::compareInCells() {
    std::vector<Entry> entries = entriesOf(turned());
    std::sort(entries.begin(), entries.end());
    for (std::size_t begin = 0, end = 0; begin < entries.size(); begin = end) {
        while (end < entries.size() && entries[end].first == entries[begin].first) {
            ++end;
        }
        for (std::size_t i = begin; i < end; ++i) {
            if (m_tests > mostTests) {
                return false;
            }
            for (std::size_t j = i + 1; j < end; ++j) {
                if (compare(entries[i].second, entries[j].second)) {
                    return true;
                }
            }
        }
    }
    return true;
}

} // namespace

std::optional<PlanePoint> Crossings::find(std::vector<PlanePoint> points, bool closed) {
    std::optional<PlanePoint> place;
    if (!Tangle(std::move(points), closed, m_nearness, m_tests).find(place)) {
        ++m_unfinished;
    }
    return place;
}

} // namespace converters
