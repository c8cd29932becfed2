#include "converters/check/NearMisses.h"

#include "converters/check/SearchProgress.h"

#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

namespace converters {

namespace {

namespace geometry = boost::geometry;

using Point = cv::Point3_<double>;
using Place = geometry::model::point<double, 3, geometry::cs::cartesian>;
using End = std::pair<Place, std::size_t>;
using Tree = geometry::index::rtree<End, geometry::index::rstar<16>>;

constexpr std::size_t none = static_cast<std::size_t>(-1);

bool isFinite(const Point& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

double distanceBetween(const Point& a, const Point& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

/// Ends of contours, those that are joined to an earlier one but once.
class Ends {
public:
    explicit Ends(double joining) : m_side(joining / 2) {}

    void add(const ContourEnd& end) {
        if (isFinite(end.place) && m_seen.insert(cellOf(end.place)).second) {
            m_ends.push_back(end);
        }
    }
    const std::vector<ContourEnd>& all() const { return m_ends; }

private:
    /// A cell so small that all in it are within the joining distance: of the ends in it, one
    /// stands for all. Without that, a thousand lines from one place would be compared each with
    /// each.
    std::tuple<double, double, double> cellOf(const Point& point) const {
        return {std::floor(point.x / m_side), std::floor(point.y / m_side),
                std::floor(point.z / m_side)};
    }

    double m_side;
    std::vector<ContourEnd> m_ends;
    std::set<std::tuple<double, double, double>> m_seen;
};

Tree treeOf(const std::vector<ContourEnd>& ends) {
    std::vector<End> entries;
    entries.reserve(ends.size());
    for (const ContourEnd& end : ends) {
        entries.emplace_back(Place(end.place.x, end.place.y, end.place.z), entries.size());
    }
    return Tree(entries);
}

/// Whether two ends are those of a contour that hardly does more than to lead from one to the
/// other: a short line has no gap between its ends.
bool areOfShortContour(const ContourEnd& a, const ContourEnd& b, double distance) {
    return a.contour == b.contour && a.length <= 2.0 * distance;
}

/// The end nearest to end `i` that is not joined to it; none when it is too far.
///
/// Few others are joined to it, at most one for each cell around: asking for ever more of the
/// nearest ends soon finds the one behind them.
std::size_t nearestOf(const std::vector<ContourEnd>& ends, const Tree& tree, std::size_t i,
                      double joining, double distance) {
    constexpr unsigned few = 4;
    constexpr unsigned growth = 8;
    const Place place(ends[i].place.x, ends[i].place.y, ends[i].place.z);
    std::vector<End> nearest;
    for (unsigned count = few; nearest.size() < ends.size(); count *= growth) {
        nearest.clear();
        tree.query(geometry::index::nearest(place, count), std::back_inserter(nearest));
        std::size_t best = none;
        double bestDistance = distance;
        double farthest = 0.0;
        for (const auto& [unused, other] : nearest) {
            const double found = distanceBetween(ends[i].place, ends[other].place);
            farthest = std::max(farthest, found);
            if (found >= joining && found <= bestDistance &&
                !areOfShortContour(ends[i], ends[other], found)) {
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

} // namespace

std::vector<NearMiss> nearMissesAmong(const std::vector<ContourEnd>& all, double distance,
                                      double joining, SearchProgress& progress) {
    Ends distinct(joining);
    std::size_t done = 0;
    for (const ContourEnd& end : all) {
        progress.reached(done++);
        distinct.add(end);
    }
    const std::vector<ContourEnd>& ends = distinct.all();
    const Tree tree = treeOf(ends);
    std::set<std::pair<std::size_t, std::size_t>> pairs;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        progress.reached(done + i);
        const std::size_t other = nearestOf(ends, tree, i, joining, distance);
        if (other != none) {
            pairs.insert(std::minmax(i, other));
        }
    }
    std::vector<NearMiss> misses;
    misses.reserve(pairs.size());
    for (const auto& [first, second] : pairs) {
        const Point& one = ends[first].place;
        const Point& other = ends[second].place;
        misses.push_back({one, other, distanceBetween(one, other)});
    }
    return misses;
}

std::vector<NearMiss> nearMissesOf(const DrawingPath& path, double distance, double joining,
                                   SearchProgress& progress) {
    std::vector<ContourEnd> ends;
    for (const PathContour& contour : path.contours) {
        // A point by itself ends nowhere.
        if (!contour.closed && contour.endPoint - contour.firstPoint > 1) {
            ends.push_back({path.points[contour.firstPoint], contour.firstPoint, contour.length});
            ends.push_back({path.points[contour.endPoint - 1], contour.firstPoint, contour.length});
        }
    }
    return nearMissesAmong(ends, distance, joining, progress);
}

std::vector<NearMiss> nearMissesOf(const DrawingPath& path, double distance, double joining) {
    SearchProgress untold({});
    return nearMissesOf(path, distance, joining, untold);
}

} // namespace converters
