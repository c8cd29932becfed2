#include "converters/detail/drawing/ContourCounter.h"

#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/Saturating.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <string>
#include <variant>

namespace converters::drawing {

void ContourCounter::begin(const Point&) {
    addPoints(1);
}

void ContourCounter::entity(const Entity&, const Placement&) {
    ++m_sizes.entities;
}

void ContourCounter::curve(const Curve& curve, const ChainLink* link) {
    const BlockSamples::Samples* const samples = m_samples.find(link);
    addPoints(samples != nullptr ? samples->points.size() : countPoints(curve, m_limits));
    ++m_sizes.pieces;
    ++m_piecesOfContour;
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        ++(isCircular(*arc) ? m_sizes.arcs : m_sizes.ellipticArcs);
    } else if (std::holds_alternative<BSpline>(curve)) {
        ++m_sizes.splines;
    }
}

void ContourCounter::end(bool, const Point&) {
    ++m_sizes.contours;
    m_sizes.pieces += m_piecesOfContour == 0 ? 1 : 0;
    m_piecesOfContour = 0;
}

void ContourCounter::addPoints(std::size_t number) {
    m_sizes.points = saturatingSum(m_sizes.points, number);
    if (m_sizes.points > m_mostPoints) {
        throw Refusal{"more than " + std::to_string(m_limits.maximumPoints) + " points"};
    }
}

} // namespace converters::drawing
