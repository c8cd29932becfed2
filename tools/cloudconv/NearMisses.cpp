#include "tools/cloudconv/NearMisses.h"

#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

namespace {

namespace geometry = boost::geometry;

using Point = cv::Point3_<double>;
using Place = geometry::model::point<double, 3, geometry::cs::cartesian>;
using End = std::pair<Place, std::size_t>;
using Tree = geometry::index::rtree<End, geometry::index::rstar<16>>;

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// A cell so small that all in it are within the joining distance: of the ends in it, one stands
/// for all. Without that, a thousand lines from one place would be compared each with each.
std::tuple<double, double, double> cellOf(const Point& point) {
    constexpr double side = joiningDistance / 2;
    return {std::floor(point.x / side), std::floor(point.y / side), std::floor(point.z / side)};
}

/// Collects ends, those that are joined to an earlier one but once.
class Ends {
public:
    void add(const Point& end) {
        if (hasPlace(end) && m_seen.insert(cellOf(end)).second) {
            m_ends.push_back(end);
        }
    }
    const std::vector<Point>& all() const { return m_ends; }

private:
    std::vector<Point> m_ends;
    std::set<std::tuple<double, double, double>> m_seen;
};

Tree treeOf(const std::vector<Point>& ends) {
    std::vector<End> entries;
    entries.reserve(ends.size());
    for (const Point& end : ends) {
        entries.emplace_back(Place(end.x, end.y, end.z), entries.size());
    }
    return Tree(entries);
}

/// The end nearest to end `i` that is not joined to it; none when it is too far.
///
/// Few others are joined to it, at most one for each cell around: asking for ever more of the
/// nearest ends soon finds the one behind them.
std::size_t nearestOf(const std::vector<Point>& ends, const Tree& tree, std::size_t i,
                      double distance) {
    constexpr unsigned few = 4;
    constexpr unsigned growth = 8;
    const Place place(ends[i].x, ends[i].y, ends[i].z);
    std::vector<End> nearest;
    for (unsigned count = few; nearest.size() < ends.size(); count *= growth) {
        nearest.clear();
        tree.query(geometry::index::nearest(place, count), std::back_inserter(nearest));
        std::size_t best = none;
        double bestDistance = distance;
        double farthest = 0.0;
        for (const auto& [unused, other] : nearest) {
            const double found = distanceOf(ends[i], ends[other]);
            farthest = std::max(farthest, found);
            if (found >= joiningDistance && found <= bestDistance) {
                best = other;
                bestDistance = found;
            }
        }
        if (best != none || farthest > distance) {
            return best;
        }
    }
    return none;
}

std::vector<NearMiss> nearMissesAmong(const std::vector<Point>& ends, double distance) {
    const Tree tree = treeOf(ends);
    std::set<std::pair<std::size_t, std::size_t>> pairs;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const std::size_t other = nearestOf(ends, tree, i, distance);
        if (other != none) {
            pairs.insert(std::minmax(i, other));
        }
    }
    std::vector<NearMiss> misses;
    misses.reserve(pairs.size());
    for (const auto& [first, second] : pairs) {
        misses.push_back({ends[first], ends[second], distanceOf(ends[first], ends[second])});
    }
    return misses;
}

} // namespace

std::vector<NearMiss> nearMissesOf(const DxfContents& drawing, const std::vector<Contour>& contours,
                                   double distance) {
    Ends ends;
    for (const Contour& contour : contours) {
        if (contour.kind == ContourKind::Open) {
            ends.add(drawing.points[contour.begin]);
            ends.add(drawing.points[contour.end - 1]);
        }
    }
    return nearMissesAmong(ends.all(), distance);
}

std::vector<NearMiss> nearMissesOf(const converters::DrawingPath& path, double distance) {
    Ends ends;
    for (const converters::PathContour& contour : path.contours) {
        if (kindOf(path, contour) == ContourKind::Open) {
            ends.add(path.points[contour.firstPoint]);
            ends.add(path.points[contour.endPoint - 1]);
        }
    }
    return nearMissesAmong(ends.all(), distance);
}
