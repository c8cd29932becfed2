#include "converters/detail/drawing/ContourCounter.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/Saturating.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <string>
#include <variant>

namespace converters::drawing {

ContourCounter::ContourCounter(const SamplingLimits& limits, std::size_t mostPoints,
                               BlockSamples& samples, const PathContours& written)
    : m_limits(limits), m_mostPoints(mostPoints), m_samples(samples),
      m_points(written.points.size()), m_contours(written.contours.size()),
      m_pieces(written.pieces.size()), m_entities(written.entities.size()),
      m_arcs(written.arcs.size()), m_ellipticArcs(written.ellipticArcs.size()),
      m_splines(written.splines.size()) {}

void ContourCounter::begin(const Point&) {
    addPoints(1);
}

void ContourCounter::entity(const Entity&, const Placement&) {
    ++m_entities;
}

void ContourCounter::curve(const Curve& curve, const ChainLink* link) {
    const BlockSamples::Samples* const samples = m_samples.find(link);
    addPoints(samples != nullptr ? samples->points.size() : countPoints(curve, m_limits));
    ++m_pieces;
    ++m_piecesOfContour;
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        ++(isCircular(*arc) ? m_arcs : m_ellipticArcs);
    } else if (std::holds_alternative<BSpline>(curve)) {
        ++m_splines;
    }
}

void ContourCounter::end(bool, const Point&) {
    ++m_contours;
    m_pieces += m_piecesOfContour == 0 ? 1 : 0;
    m_piecesOfContour = 0;
}

void ContourCounter::reserveIn(PathContours& contours) const {
    base::reserveLarge(contours.points, m_points);
    base::reserveLarge(contours.contours, m_contours);
    base::reserveLarge(contours.pieces, m_pieces);
    base::reserveLarge(contours.entities, m_entities);
    base::reserveLarge(contours.arcs, m_arcs);
    base::reserveLarge(contours.ellipticArcs, m_ellipticArcs);
    base::reserveLarge(contours.splines, m_splines);
}

void ContourCounter::addPoints(std::size_t number) {
    m_points = saturatingSum(m_points, number);
    if (m_points > m_mostPoints) {
        throw Refusal{"more than " + std::to_string(m_limits.maximumPoints) + " points"};
    }
}

} // namespace converters::drawing
