#include "converters/detail/drawing/contours/Tour.h"

#include "converters/detail/drawing/contours/PlaceTree.h"
#include "converters/detail/drawing/contours/TourImprovement.h"
#include "converters/detail/drawing/contours/TourStops.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace converters::drawing {

namespace {

/// Of each closed contour, at least so many places are candidates for the nearest one, and all
/// together at most about as many as that.
constexpr std::size_t leastCandidates = 8;
constexpr std::size_t mostCandidates = 1U << 20;
/// How many nodes of the tree a search looks at, on average and at most.
constexpr std::uint64_t nodesPerSearch = 300;
constexpr std::size_t mostNodes = 3000;
constexpr std::size_t fewNodes = 60;
/// The part of the work that the first order takes.
constexpr double endOfNearestNext = 0.3;

/// How many places there are to start at: of open contours the two ends.
std::size_t startsOf(const ContourShape& contour) {
    if (!contour.closed || contour.size < 2) {
        return contour.size < 2 ? 1 : 2;
    }
    return contour.starts != nullptr && contour.numberOfStarts > 0 ? contour.numberOfStarts
                                                                   : contour.size - 1;
}

/// The index of the point to start at.
std::size_t pointOfStart(const ContourShape& contour, std::size_t start) {
    if (!contour.closed || contour.size < 2) {
        return start == 0 ? 0 : contour.size - 1;
    }
    const bool listed = contour.starts != nullptr && contour.numberOfStarts > 0;
    return listed ? std::min(contour.starts[start], contour.size - 2) : start;
}

class TourBuilder {
public:
    TourBuilder(const TourTask& task, OrderCost& cost) : m_task(task), m_cost(cost) {}

    std::vector<ContourVisit> build() {
        TourStops tour(nearestNext(), m_task.fromStart ? &m_task.start : nullptr);
        improve(tour, m_cost, endOfNearestNext);
        // The second time, the neighbours have settled.
        chooseStarts(tour);
        chooseStarts(tour);
        std::vector<ContourVisit> visits;
        visits.reserve(tour.size());
        for (std::size_t i = 0; i < tour.size(); ++i) {
            const TourStop& stop = tour.stopAt(i);
            const bool closed = shapeOf(stop.member).closed;
            visits.push_back({m_task.members[stop.member], stop.firstPoint,
                              !closed && tour.isTurned(i) != stop.reversed});
        }
        return visits;
    }

private:
    const ContourShape& shapeOf(std::size_t member) const {
        return m_task.contours[m_task.members[member]];
    }
    Place placeOf(std::size_t member, std::size_t point) const {
        return m_task.rounding(shapeOf(member).points[point]);
    }

    std::vector<PlaceTree::Entry> candidates() const {
        const std::size_t members = m_task.members.size();
        const std::size_t most = std::max(leastCandidates, mostCandidates / members);
        std::vector<PlaceTree::Entry> entries;
        for (std::size_t member = 0; member < members; ++member) {
            const std::size_t starts = startsOf(shapeOf(member));
            const std::size_t number = std::min(starts, most);
            for (std::size_t i = 0; i < number; ++i) {
                const std::size_t point = pointOfStart(shapeOf(member), i * starts / number);
                entries.push_back({placeOf(member, point), static_cast<std::uint32_t>(member),
                                   static_cast<std::uint32_t>(point)});
            }
        }
        return entries;
    }

    TourStop stopAt(std::size_t member, std::size_t point) const {
        const ContourShape& shape = shapeOf(member);
        const Place entry = placeOf(member, point);
        const std::size_t left = shape.closed ? point : shape.size - 1 - point;
        return {{entry, placeOf(member, left)},
                static_cast<std::uint32_t>(member),
                static_cast<std::uint32_t>(shape.closed ? point : 0),
                !shape.closed && point > 0};
    }

    std::vector<TourStop> nearestNext() {
        const std::size_t members = m_task.members.size();
        PlaceTree tree(candidates(), members, m_cost);
        const std::uint64_t enough = m_cost.looks + nodesPerSearch * members;
        std::vector<TourStop> stops;
        stops.reserve(members);
        Place here = m_task.start;
        while (const auto next =
                   tree.nearestTo(here, m_cost.looks < enough ? mostNodes : fewNodes)) {
            tree.remove(next->owner);
            m_cost.report(0, endOfNearestNext, stops.size(), members);
            stops.push_back(stopAt(next->owner, next->mark));
            here = stops.back().ends[1];
        }
        return stops;
    }

    /// Lets each closed contour start where the ways to it and from it are shortest.
    void chooseStarts(TourStops& tour) {
        for (std::size_t i = 0; i < tour.size(); ++i) {
            TourStop& stop = tour.stopAt(i);
            const ContourShape& shape = shapeOf(stop.member);
            if (!shape.closed || shape.size < 2) {
                continue;
            }
            const auto wayOver = [&](const Place& place) {
                return tour.wayFromBefore(i, place) + tour.wayTo(i + 1, place);
            };
            double least = wayOver(stop.ends[0]);
            const std::size_t starts = startsOf(shape);
            m_cost.looks += starts;
            for (std::size_t start = 0; start < starts; ++start) {
                const std::size_t point = pointOfStart(shape, start);
                const Place place = placeOf(stop.member, point);
                const double way = wayOver(place);
                if (way < least) {
                    least = way;
                    stop.ends[0] = stop.ends[1] = place;
                    stop.firstPoint = static_cast<std::uint32_t>(point);
                }
            }
        }
    }

    const TourTask& m_task;
    OrderCost& m_cost;
};

} // namespace

std::vector<ContourVisit> shortTour(const TourTask& task, OrderCost& cost) {
    if (task.members.empty()) {
        return {};
    }
    return TourBuilder(task, cost).build();
}

std::size_t nearestStart(const ContourShape& contour, const PlaceRounding& rounding,
                         const Place& place, OrderCost& cost) {
    std::size_t nearest = pointOfStart(contour, 0);
    double least = squareBetween(place, rounding(contour.points[nearest]));
    const std::size_t starts = startsOf(contour);
    cost.looks += starts;
    for (std::size_t start = 1; start < starts; ++start) {
        const std::size_t point = pointOfStart(contour, start);
        const double square = squareBetween(place, rounding(contour.points[point]));
        if (square < least) {
            least = square;
            nearest = point;
        }
    }
    return nearest;
}

} // namespace converters::drawing
