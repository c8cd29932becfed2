#include "converters/detail/drawing/contours/ContourOrder.h"

#include "converters/detail/drawing/contours/Nesting.h"
#include "converters/detail/drawing/contours/PlaceRounding.h"
#include "converters/detail/drawing/contours/Tour.h"

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

namespace converters::drawing {

namespace {

/// Walks a nesting from the inside out: a tour over the contours that lie in the same one, and
/// before each of them a tour over what lies in it.
class PartsOrder {
public:
    PartsOrder(const std::vector<ContourShape>& contours, const PlaceRounding& rounding,
               OrderCost& cost)
        : m_contours(contours), m_rounding(rounding), m_nesting(contours, rounding, cost),
          m_cost(cost) {}

    std::vector<ContourVisit> order() {
        m_open.emplace_back(m_nesting.outermost());
        while (!m_open.empty()) {
            Level& level = m_open.back();
            if (level.next == level.tour.size()) {
                if (level.rest.empty()) {
                    m_open.pop_back();
                } else {
                    beginTour(level);
                }
                continue;
            }
            const Nesting::Range inside = m_nesting.inside(level.tour[level.next].contour);
            if (!level.insideDone && !inside.empty()) {
                level.insideDone = true;
                m_open.emplace_back(inside);
                continue;
            }
            walk(level);
            level.insideDone = false;
            ++level.next;
        }
        return std::move(m_order);
    }

private:
    /// The contours in one contour, and how far the walk has come.
    struct Level {
        explicit Level(const Nesting::Range& range) : rest(range) {}

        Nesting::Range rest;
        std::vector<ContourVisit> tour;
        std::size_t next = 0;
        /// Whether what lies in the next contour is walked.
        bool insideDone = false;
    };

    /// A tour over the contours that come first among the rest.
    void beginTour(Level& level) {
        std::vector<std::uint32_t> members;
        const std::uint64_t turn = level.rest.first->turn;
        while (!level.rest.empty() && level.rest.first->turn == turn) {
            members.push_back(level.rest.first->contour);
            ++level.rest.first;
        }
        const bool isFirst = m_order.empty();
        level.tour = tourOver(members, !isFirst);
        level.next = 0;
    }

    /// A tour, which tells of its part of the whole work what is done.
    std::vector<ContourVisit> tourOver(const std::vector<std::uint32_t>& members, bool fromHere) {
        const auto partBehind = [this](std::size_t toured) {
            constexpr double nesting = 0.2;
            return nesting + (1 - nesting) * static_cast<double>(toured) /
                                 static_cast<double>(m_contours.size());
        };
        OrderCost cost;
        const double begin = partBehind(m_toured);
        m_toured += members.size();
        if (m_cost.progress) {
            const double end = partBehind(m_toured);
            cost.progress = [this, begin, end](double done) {
                m_cost.progress(begin + (end - begin) * done);
            };
        }
        std::vector<ContourVisit> tour =
            shortTour({m_contours, m_rounding, members, m_here, fromHere}, cost);
        m_cost.looks += cost.looks;
        return tour;
    }

    /// Walks the next contour of a level.
    void walk(const Level& level) {
        ContourVisit visit = level.tour[level.next];
        const ContourShape& shape = m_contours[visit.contour];
        if (level.insideDone) {
            // The walk comes from what is inside, which the tour did not know.
            visit.firstPoint = nearestStart(shape, m_rounding, m_here, m_cost);
        }
        const std::size_t last = visit.reversed ? 0 : shape.size - 1;
        m_here = m_rounding(shape.points[shape.closed ? visit.firstPoint : last]);
        m_order.push_back(visit);
    }

    const std::vector<ContourShape>& m_contours;
    const PlaceRounding& m_rounding;
    const Nesting m_nesting;
    OrderCost& m_cost;
    /// How many contours have a place in a tour.
    std::size_t m_toured = 0;
    std::vector<Level> m_open;
    std::vector<ContourVisit> m_order;
    Place m_here{0, 0, 0};
};

} // namespace

std::vector<ContourVisit> nearestOrder(const std::vector<ContourShape>& contours, OrderCost* cost) {
    OrderCost unasked;
    const PlaceRounding rounding(contours);
    std::vector<std::uint32_t> members(contours.size());
    std::iota(members.begin(), members.end(), 0U);
    return shortTour({contours, rounding, members, {0, 0, 0}, false},
                     cost != nullptr ? *cost : unasked);
}

std::vector<ContourVisit> insideFirstOrder(const std::vector<ContourShape>& contours,
                                           OrderCost* cost) {
    OrderCost unasked;
    const PlaceRounding rounding(contours);
    return PartsOrder(contours, rounding, cost != nullptr ? *cost : unasked).order();
}

} // namespace converters::drawing
