#include "converters/detail/drawing/ContourWriter.h"

#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace converters::drawing {

namespace {

PathEntityKind pathKindOf(EntityKind kind) {
    switch (kind) {
    case EntityKind::point:
        return PathEntityKind::point;
    case EntityKind::line:
        return PathEntityKind::line;
    case EntityKind::arc:
        return PathEntityKind::arc;
    case EntityKind::circle:
        return PathEntityKind::circle;
    case EntityKind::ellipse:
        return PathEntityKind::ellipse;
    case EntityKind::lwpolyline:
        return PathEntityKind::lwpolyline;
    case EntityKind::spline:
        return PathEntityKind::spline;
    case EntityKind::polyline:
    case EntityKind::polyline3d:
    case EntityKind::insert: // No curve is of one.
        break;
    }
    return PathEntityKind::polyline;
}

} // namespace

ContourWriter::ContourWriter(const JoinedDrawing& joined, const SamplingLimits& limits,
                             std::size_t mostPoints, BlockSamples& samples, PathContours& written,
                             PathBounds& bounds)
    : m_joined(joined), m_limits(limits), m_samples(samples), m_written(written), m_bounds(bounds) {
    m_limits.maximumPoints = mostPoints;
}

void ContourWriter::takeBackTo(const Mark& mark) {
    cutTo(mark.sizes, m_written);
    m_contour = mark.contour;
}

void ContourWriter::begin(const Point& start) {
    m_contour = {};
    m_contour.firstPoint = m_written.points.size();
    m_contour.firstPiece = m_written.pieces.size();
    m_contour.firstEntity = m_written.entities.size();
    m_isFull = m_isFull || m_written.points.size() >= m_limits.maximumPoints;
    if (!m_isFull) {
        m_written.points.push_back(start);
    }
}

void ContourWriter::entity(const Entity& entity, const Placement& placement) {
    const std::uint32_t layer = layerOf(entity.layer, placement, m_joined.layers);
    if (m_contour.firstEntity == m_written.entities.size()) {
        const Colour colour = colourOf(entity, placement, m_joined.layers);
        m_contour.layer = layer;
        m_contour.colour = colour.index;
        m_contour.trueColour = colour.trueColour;
    }
    m_written.entities.push_back({entity.handle, placement.insert, layer, pathKindOf(entity.kind)});
}

/// Keeps the exact curve of a piece.
/// @return its index among those of its kind
std::uint32_t ContourWriter::keep(Curve&& curve, PathCurveKind& kind) {
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        if (isCircular(*arc)) {
            kind = PathCurveKind::arc;
            m_written.arcs.push_back(pathArc(*arc));
            return static_cast<std::uint32_t>(m_written.arcs.size() - 1);
        }
        kind = PathCurveKind::ellipticArc;
        m_written.ellipticArcs.push_back(pathEllipticArc(*arc));
        return static_cast<std::uint32_t>(m_written.ellipticArcs.size() - 1);
    }
    if (auto* const spline = std::get_if<BSpline>(&curve)) {
        kind = PathCurveKind::spline;
        m_written.splines.push_back({spline->degree, std::move(spline->knots),
                                     std::move(spline->controlPoints), std::move(spline->weights)});
        return static_cast<std::uint32_t>(m_written.splines.size() - 1);
    }
    kind = PathCurveKind::line;
    return 0;
}

/// @return false where there is no room
bool ContourWriter::append(const Curve& curve) {
    if (m_written.points.size() >= m_limits.maximumPoints) {
        return false;
    }
    if (const auto* const line = std::get_if<Line>(&curve);
        line != nullptr && std::isinf(m_limits.step)) {
        m_written.points.push_back(line->end);
        return true;
    }
    SamplingLimits limits = m_limits;
    limits.maximumPoints -= m_written.points.size();
    return appendPoints(curve, limits, m_written.points);
}

/// Appends the points that a curve of a block has where that was drawn before.
/// @return false where there is no room
bool ContourWriter::append(const BlockSamples::Samples& samples, const Affine& map,
                           const Point& end) {
    const std::size_t first = m_written.points.size();
    if (samples.points.size() > m_limits.maximumPoints - first) {
        return false;
    }
    m_written.points.resize(first + samples.points.size());
    std::transform(samples.points.begin(), samples.points.end(),
                   m_written.points.begin() + static_cast<std::ptrdiff_t>(first),
                   [map](const Point& point) { return map(point); });
    m_written.points.back() = end;
    return true;
}

void ContourWriter::curve(Curve&& curve, const ChainLink* link) {
    PathPiece piece{};
    piece.firstPoint = m_written.points.size() - 1;
    const BlockSamples::Samples* const samples = m_samples.find(link);
    m_contour.length += samples != nullptr ? samples->length : lengthOf(curve);
    m_isFull = m_isFull || !(samples != nullptr
                                 ? append(*samples, m_joined.placementOf(*link).map, endOf(curve))
                                 : append(curve));
    piece.lastPoint = m_written.points.size() - 1;
    piece.entity = static_cast<std::uint32_t>(m_written.entities.size() - 1);
    piece.curve = keep(std::move(curve), piece.kind);
    m_written.pieces.push_back(piece);
}

/// By the points of the contour, which are in the processor's cache still.
void ContourWriter::extendBounds() {
    const Point* const first = m_written.points.data() + m_contour.firstPoint;
    const Point* const end = m_written.points.data() + m_contour.endPoint;
    Point lowest = m_bounds.hasPoints ? m_bounds.lowest : *first;
    Point highest = m_bounds.hasPoints ? m_bounds.highest : *first;
    for (const Point* point = first; point != end; ++point) {
        lowest.x = std::min(lowest.x, point->x);
        lowest.y = std::min(lowest.y, point->y);
        lowest.z = std::min(lowest.z, point->z);
        highest.x = std::max(highest.x, point->x);
        highest.y = std::max(highest.y, point->y);
        highest.z = std::max(highest.z, point->z);
    }
    m_bounds = {lowest, highest, true};
}

void ContourWriter::end(bool closed, const Point& start) {
    if (m_isFull) {
        // The last point is of what came before.
        return;
    }
    if (m_contour.firstPiece == m_written.pieces.size()) {
        const auto entity = static_cast<std::uint32_t>(m_written.entities.size() - 1);
        m_written.pieces.push_back(
            {m_contour.firstPoint, m_contour.firstPoint, 0, entity, PathCurveKind::point});
    } else if (closed) {
        m_written.points.back() = start;
    }
    m_contour.closed = closed;
    m_contour.endPoint = m_written.points.size();
    extendBounds();
    m_contour.endPiece = m_written.pieces.size();
    m_contour.endEntity = m_written.entities.size();
    m_written.contours.push_back(m_contour);
}

} // namespace converters::drawing
