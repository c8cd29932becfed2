#include "converters/detail/drawing/PathWriter.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/EntityCurves.h"
#include "converters/detail/drawing/dxf/Saturating.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace converters::drawing {

namespace {

/// Follows contours; a sink gets what they are made of, in order:
///
///     begin(start)         a contour begins
///     entity(drawn)        an entity of it, whose curves follow
///     curve(curve)         a curve with extent, from the end of the one before
///     end(closed, start)   the contour ends, at its start where it is closed
template <typename Sink>
class ContourWalk {
public:
    ContourWalk(const JoinedDrawing& joined, double tolerance, Sink& sink)
        : m_joined(joined), m_tolerance(tolerance), m_sink(sink) {}

    void follow(const ChainLink& link);

private:
    void follow(Curve&& curve);
    void bridge(const Point& to);

    const JoinedDrawing& m_joined;
    double m_tolerance;
    Sink& m_sink;
    bool m_isInContour = false;
    Point m_start;
    Point m_last;
};

template <typename Sink>
void ContourWalk<Sink>::follow(const ChainLink& link) {
    const DrawnEntity& drawn = m_joined.expansion.drawn[link.drawn];
    const Entity& entity = m_joined.drawing.entities[drawn.entity];
    const Placement& placement = m_joined.expansion.placements[drawn.placement];
    const EntityCurves curves(m_joined.drawing, entity, placement.map);
    if (!m_isInContour) {
        m_start = link.reversed ? curves.end() : curves.start();
        m_last = m_start;
        m_isInContour = true;
        m_sink.begin(m_start);
    }
    m_sink.entity(entity, placement);
    const std::size_t size = curves.size();
    for (std::size_t i = 0; i < size; ++i) {
        follow(link.reversed ? reversed(curves[size - 1 - i]) : curves[i]);
    }
    if (link.endsChain) {
        if (link.closesChain) {
            bridge(m_start);
        }
        m_sink.end(link.closesChain, m_start);
        m_isInContour = false;
    }
}

template <typename Sink>
void ContourWalk<Sink>::follow(Curve&& curve) {
    if (isDot(curve)) {
        return;
    }
    bridge(startOf(curve));
    m_last = endOf(curve);
    m_sink.curve(std::move(curve));
}

/// Leads to where the next curve starts, if that is not here.
template <typename Sink>
void ContourWalk<Sink>::bridge(const Point& to) {
    if (m_last != to && distance(m_last, to) > m_tolerance) {
        m_sink.curve(Line{m_last, to});
    }
}

/// The points of curves that have to be sampled to be counted, until they are written.
class KeptPoints {
public:
    /// How many points a curve gives; keeps them where they are few.
    std::size_t count(const Curve& curve, const SamplingLimits& limits);

    /// Appends the points of the curve that was counted after the one before.
    void append(const Curve& curve, const SamplingLimits& limits, std::vector<Point>& points);

private:
    /// More are sampled a second time: memory for each would be half of what the path takes.
    static constexpr std::size_t most = 1 << 20;

    std::vector<Point> m_points;
    /// Of each curve that was kept; 0 for those that were not.
    std::vector<std::uint32_t> m_numbers;
    std::size_t m_nextNumber = 0;
    std::size_t m_nextPoint = 0;
};

std::size_t KeptPoints::count(const Curve& curve, const SamplingLimits& limits) {
    if (isCountedPlainly(curve)) {
        return countPoints(curve, limits);
    }
    if (m_points.size() >= most) {
        m_numbers.push_back(0);
        return countPoints(curve, limits);
    }
    SamplingLimits few = limits;
    few.maximumPoints = std::min(limits.maximumPoints, most);
    const std::size_t before = m_points.size();
    const bool isKept = appendPoints(curve, few, m_points);
    m_numbers.push_back(static_cast<std::uint32_t>(m_points.size() - before));
    return isKept ? m_numbers.back() : countPoints(curve, limits);
}

void KeptPoints::append(const Curve& curve, const SamplingLimits& limits,
                        std::vector<Point>& points) {
    const std::size_t number = isCountedPlainly(curve) ? 0 : m_numbers[m_nextNumber++];
    if (number == 0) {
        appendPoints(curve, limits, points);
        return;
    }
    const auto first = m_points.begin() + static_cast<std::ptrdiff_t>(m_nextPoint);
    m_nextPoint += number;
    points.insert(points.end(), first, first + static_cast<std::ptrdiff_t>(number));
}

/// Counts what contours will take.
class Counter {
public:
    Counter(const SamplingLimits& limits, KeptPoints& kept) : m_limits(limits), m_kept(kept) {}

    void begin(const Point&) { addPoints(1); }
    void entity(const Entity&, const Placement&) { ++entities; }
    void curve(const Curve& curve) {
        addPoints(m_kept.count(curve, m_limits));
        ++pieces;
        ++m_piecesOfContour;
        if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
            ++(isCircular(*arc) ? arcs : ellipticArcs);
        } else if (std::holds_alternative<BSpline>(curve)) {
            ++splines;
        }
    }
    void end(bool, const Point&) {
        ++contours;
        pieces += m_piecesOfContour == 0 ? 1 : 0;
        m_piecesOfContour = 0;
    }

    std::uint64_t points = 0;
    std::size_t contours = 0;
    std::size_t pieces = 0;
    std::size_t entities = 0;
    std::size_t arcs = 0;
    std::size_t ellipticArcs = 0;
    std::size_t splines = 0;

private:
    void addPoints(std::size_t number) {
        points = saturatingSum(points, number);
        if (points > m_limits.maximumPoints) {
            throw Refusal{"more than " + std::to_string(m_limits.maximumPoints) + " points"};
        }
    }

    const SamplingLimits& m_limits;
    KeptPoints& m_kept;
    std::size_t m_piecesOfContour = 0;
};

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
    default:
        return PathEntityKind::polyline;
    }
}

/// Writes contours into a path that has room for them.
class Writer {
public:
    /// @param kept  what counting the same contours kept
    Writer(const LayerTable& layers, const SamplingLimits& limits, KeptPoints& kept,
           DrawingPath& path)
        : m_layers(layers), m_limits(limits), m_kept(kept), m_path(path) {}

    void begin(const Point& start);
    void entity(const Entity& entity, const Placement& placement);
    void curve(Curve&& curve);
    void end(bool closed, const Point& start);

private:
    std::uint32_t keep(Curve&& curve, PathCurveKind& kind);

    const LayerTable& m_layers;
    const SamplingLimits& m_limits;
    KeptPoints& m_kept;
    DrawingPath& m_path;
    PathContour m_contour{};
};

void Writer::begin(const Point& start) {
    m_contour = {};
    m_contour.firstPoint = m_path.points.size();
    m_contour.firstPiece = m_path.pieces.size();
    m_contour.firstEntity = m_path.entities.size();
    m_path.points.push_back(start);
}

void Writer::entity(const Entity& entity, const Placement& placement) {
    const std::uint32_t layer = layerOf(entity.layer, placement, m_layers);
    if (m_contour.firstEntity == m_path.entities.size()) {
        const Colour colour = colourOf(entity, placement, m_layers);
        m_contour.layer = layer;
        m_contour.colour = colour.index;
        m_contour.trueColour = colour.trueColour;
    }
    m_path.entities.push_back({entity.handle, placement.insert, layer, pathKindOf(entity.kind)});
}

/// Keeps the exact curve of a piece.
/// @return its index among those of its kind
std::uint32_t Writer::keep(Curve&& curve, PathCurveKind& kind) {
    if (const auto* const arc = std::get_if<EllipticArc>(&curve)) {
        if (isCircular(*arc)) {
            kind = PathCurveKind::arc;
            m_path.arcs.push_back(pathArc(*arc));
            return static_cast<std::uint32_t>(m_path.arcs.size() - 1);
        }
        kind = PathCurveKind::ellipticArc;
        m_path.ellipticArcs.push_back(pathEllipticArc(*arc));
        return static_cast<std::uint32_t>(m_path.ellipticArcs.size() - 1);
    }
    if (auto* const spline = std::get_if<BSpline>(&curve)) {
        kind = PathCurveKind::spline;
        m_path.splines.push_back({spline->degree, std::move(spline->knots),
                                  std::move(spline->controlPoints), std::move(spline->weights)});
        return static_cast<std::uint32_t>(m_path.splines.size() - 1);
    }
    kind = PathCurveKind::line;
    return 0;
}

void Writer::curve(Curve&& curve) {
    PathPiece piece{};
    piece.firstPoint = m_path.points.size() - 1;
    m_contour.length += lengthOf(curve);
    if (const auto* const line = std::get_if<Line>(&curve);
        line != nullptr && std::isinf(m_limits.step)) {
        m_path.points.push_back(line->end);
    } else {
        m_kept.append(curve, m_limits, m_path.points);
    }
    piece.lastPoint = m_path.points.size() - 1;
    piece.entity = static_cast<std::uint32_t>(m_path.entities.size() - 1);
    piece.curve = keep(std::move(curve), piece.kind);
    m_path.pieces.push_back(piece);
}

void Writer::end(bool closed, const Point& start) {
    if (m_contour.firstPiece == m_path.pieces.size()) {
        const auto entity = static_cast<std::uint32_t>(m_path.entities.size() - 1);
        m_path.pieces.push_back(
            {m_contour.firstPoint, m_contour.firstPoint, 0, entity, PathCurveKind::point});
    } else if (closed) {
        m_path.points.back() = start;
    }
    m_contour.closed = closed;
    m_contour.endPoint = m_path.points.size();
    m_contour.endPiece = m_path.pieces.size();
    m_contour.endEntity = m_path.entities.size();
    m_path.contours.push_back(m_contour);
}

template <typename Sink>
void followAll(const JoinedDrawing& joined, double tolerance, Sink& sink,
               const Progress& progress) {
    constexpr std::size_t linksPerReport = 1 << 12;
    ContourWalk<Sink> walk(joined, tolerance, sink);
    for (std::size_t i = 0; i < joined.links.size(); ++i) {
        walk.follow(joined.links[i]);
        if (i % linksPerReport == linksPerReport - 1) {
            progress.report(static_cast<double>(i) / static_cast<double>(joined.links.size()));
        }
    }
}

} // namespace

void writeContours(const JoinedDrawing& joined, const PathSettings& settings, DrawingPath& path,
                   const Progress& progress) {
    KeptPoints kept;
    Counter counter(settings.limits, kept);
    constexpr double endOfCounting = 0.4;
    followAll(joined, settings.limits.tolerance, counter, progress.part(0, endOfCounting));
    base::reserveLarge(path.points, counter.points);
    base::reserveLarge(path.contours, counter.contours);
    base::reserveLarge(path.pieces, counter.pieces);
    base::reserveLarge(path.entities, counter.entities);
    base::reserveLarge(path.arcs, counter.arcs);
    base::reserveLarge(path.ellipticArcs, counter.ellipticArcs);
    base::reserveLarge(path.splines, counter.splines);
    Writer writer(joined.layers, settings.limits, kept, path);
    followAll(joined, settings.limits.tolerance, writer, progress.part(endOfCounting, 1));
}

} // namespace converters::drawing
