#include "converters/detail/drawing/PathWriter.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/BlockSamples.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/EntityCurves.h"
#include "converters/detail/drawing/dxf/Saturating.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace converters::drawing {

namespace {

/// How far a contour is followed.
struct ContourState {
    bool isInContour = false;
    Point start;
    Point last;
};

/// Follows contours; a sink gets what they are made of, in order:
///
///     begin(start)         a contour begins
///     entity(drawn)        an entity of it, whose curves follow
///     curve(curve, link)   a curve with extent, from the end of the one before; that of a link,
///                          or null
///     end(closed, start)   the contour ends, at its start where it is closed
template <typename Sink>
class ContourWalk {
public:
    ContourWalk(const JoinedDrawing& joined, double tolerance, Sink& sink)
        : m_joined(joined), m_tolerance(tolerance), m_sink(sink) {}

    void follow(const ChainLink& link);

    ContourState& state() { return m_state; }

private:
    void begin(const Point& start);
    void follow(Curve&& curve, const ChainLink& link);
    void bridge(const Point& to);

    const JoinedDrawing& m_joined;
    double m_tolerance;
    Sink& m_sink;
    ContourState m_state;
};

template <typename Sink>
void ContourWalk<Sink>::begin(const Point& start) {
    if (!m_state.isInContour) {
        m_state.start = start;
        m_state.last = start;
        m_state.isInContour = true;
        m_sink.begin(start);
    }
}

template <typename Sink>
void ContourWalk<Sink>::follow(const ChainLink& link) {
    const DrawnEntity& drawn = m_joined.expansion.drawn[link.drawn];
    const Entity& entity = m_joined.drawing.entities[drawn.entity];
    const Placement& placement = m_joined.expansion.placements[drawn.placement];
    const EntityCurves curves(m_joined.drawing, entity, placement.map);
    const std::size_t size = curves.size();
    for (std::size_t i = 0; i < std::max<std::size_t>(size, 1); ++i) {
        std::optional<Curve> curve;
        if (size > 0) {
            curve = link.reversed ? reversed(curves[size - 1 - i]) : curves[i];
        }
        if (i == 0) {
            begin(curve ? startOf(*curve) : curves.start());
            m_sink.entity(entity, placement);
        }
        if (curve) {
            follow(std::move(*curve), link);
        }
    }
    if (link.endsChain) {
        if (link.closesChain) {
            bridge(m_state.start);
        }
        m_sink.end(link.closesChain, m_state.start);
        m_state.isInContour = false;
    }
}

template <typename Sink>
void ContourWalk<Sink>::follow(Curve&& curve, const ChainLink& link) {
    if (isDot(curve)) {
        return;
    }
    bridge(startOf(curve));
    m_state.last = endOf(curve);
    m_sink.curve(std::move(curve), &link);
}

/// Leads to where the next curve starts, if that is not here.
template <typename Sink>
void ContourWalk<Sink>::bridge(const Point& to) {
    if (m_state.last != to && distance(m_state.last, to) > m_tolerance) {
        m_sink.curve(Line{m_state.last, to}, nullptr);
    }
}

/// The points of curves that blocks draw again and again.
class SamplesOfBlocks {
public:
    SamplesOfBlocks(const JoinedDrawing& joined, const SamplingLimits& limits)
        : m_joined(joined), m_samples(joined.drawing, limits) {}

    /// @param link  null for what is of no entity
    /// @return null for most curves
    const BlockSamples::Samples* find(const ChainLink* link) {
        if (link == nullptr || link->reversed || !placementOf(*link).isBlock) {
            return nullptr;
        }
        return m_samples.find(m_joined.expansion.drawn[link->drawn].entity, placementOf(*link).map);
    }

    const Placement& placementOf(const ChainLink& link) const {
        return m_joined.expansion.placements[m_joined.expansion.drawn[link.drawn].placement];
    }

private:
    const JoinedDrawing& m_joined;
    BlockSamples m_samples;
};

/// Counts what contours will take.
class Counter {
public:
    /// @param path  what is written already
    Counter(const SamplingLimits& limits, SamplesOfBlocks& samples, const DrawingPath& path)
        : points(path.points.size()), contours(path.contours.size()), pieces(path.pieces.size()),
          entities(path.entities.size()), arcs(path.arcs.size()),
          ellipticArcs(path.ellipticArcs.size()), splines(path.splines.size()), m_limits(limits),
          m_samples(samples) {}

    void begin(const Point&) { addPoints(1); }
    void entity(const Entity&, const Placement&) { ++entities; }
    void curve(const Curve& curve, const ChainLink* link) {
        const BlockSamples::Samples* const samples = m_samples.find(link);
        addPoints(samples != nullptr ? samples->points.size() : countPoints(curve, m_limits));
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

    void reserveIn(DrawingPath& path) const {
        base::reserveLarge(path.points, points);
        base::reserveLarge(path.contours, contours);
        base::reserveLarge(path.pieces, pieces);
        base::reserveLarge(path.entities, entities);
        base::reserveLarge(path.arcs, arcs);
        base::reserveLarge(path.ellipticArcs, ellipticArcs);
        base::reserveLarge(path.splines, splines);
    }

    std::uint64_t points;
    std::size_t contours;
    std::size_t pieces;
    std::size_t entities;
    std::size_t arcs;
    std::size_t ellipticArcs;
    std::size_t splines;

private:
    void addPoints(std::size_t number) {
        points = saturatingSum(points, number);
        if (points > m_limits.maximumPoints) {
            throw Refusal{"more than " + std::to_string(m_limits.maximumPoints) + " points"};
        }
    }

    const SamplingLimits& m_limits;
    SamplesOfBlocks& m_samples;
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
    case EntityKind::polyline:
    case EntityKind::polyline3d:
    case EntityKind::insert: // No curve is of one.
        break;
    }
    return PathEntityKind::polyline;
}

/// Writes contours into a path.
class Writer {
public:
    /// @param mostPoints  how many points there is room for
    Writer(const LayerTable& layers, const SamplingLimits& limits, std::size_t mostPoints,
           SamplesOfBlocks& samples, DrawingPath& path)
        : m_layers(layers), m_limits(limits), m_samples(samples), m_path(path) {
        m_limits.maximumPoints = mostPoints;
    }

    void begin(const Point& start);
    void entity(const Entity& entity, const Placement& placement);
    void curve(Curve&& curve, const ChainLink* link);
    void end(bool closed, const Point& start);

    /// Whether there was no room for a curve. What came since is to be taken back.
    bool isFull() const { return m_isFull; }

    /// What was written before.
    class Mark {
    public:
        explicit Mark(const Writer& writer);
        void takeBack(Writer& writer) const;

    private:
        std::size_t m_points;
        std::size_t m_contours;
        std::size_t m_pieces;
        std::size_t m_entities;
        std::size_t m_arcs;
        std::size_t m_ellipticArcs;
        std::size_t m_splines;
        PathContour m_contour;
    };

    /// There is room for so many points now.
    void goOn(std::size_t mostPoints) {
        m_limits.maximumPoints = mostPoints;
        m_isFull = false;
    }

private:
    std::uint32_t keep(Curve&& curve, PathCurveKind& kind);

    bool append(const Curve& curve);
    bool append(const BlockSamples::Samples& samples, const Affine& map, const Point& end);

    void extendBounds();

    const LayerTable& m_layers;
    /// For all points together.
    SamplingLimits m_limits;
    SamplesOfBlocks& m_samples;
    DrawingPath& m_path;
    PathContour m_contour{};
    bool m_isFull = false;
};

Writer::Mark::Mark(const Writer& writer)
    : m_points(writer.m_path.points.size()), m_contours(writer.m_path.contours.size()),
      m_pieces(writer.m_path.pieces.size()), m_entities(writer.m_path.entities.size()),
      m_arcs(writer.m_path.arcs.size()), m_ellipticArcs(writer.m_path.ellipticArcs.size()),
      m_splines(writer.m_path.splines.size()), m_contour(writer.m_contour) {}

void Writer::Mark::takeBack(Writer& writer) const {
    DrawingPath& path = writer.m_path;
    path.points.resize(m_points);
    path.contours.resize(m_contours);
    path.pieces.resize(m_pieces);
    path.entities.resize(m_entities);
    path.arcs.resize(m_arcs);
    path.ellipticArcs.resize(m_ellipticArcs);
    path.splines.resize(m_splines);
    writer.m_contour = m_contour;
}

void Writer::begin(const Point& start) {
    m_contour = {};
    m_contour.firstPoint = m_path.points.size();
    m_contour.firstPiece = m_path.pieces.size();
    m_contour.firstEntity = m_path.entities.size();
    m_isFull = m_isFull || m_path.points.size() >= m_limits.maximumPoints;
    if (!m_isFull) {
        m_path.points.push_back(start);
    }
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

/// @return false where there is no room
bool Writer::append(const Curve& curve) {
    if (m_path.points.size() >= m_limits.maximumPoints) {
        return false;
    }
    if (const auto* const line = std::get_if<Line>(&curve);
        line != nullptr && std::isinf(m_limits.step)) {
        m_path.points.push_back(line->end);
        return true;
    }
    SamplingLimits limits = m_limits;
    limits.maximumPoints -= m_path.points.size();
    return appendPoints(curve, limits, m_path.points);
}

/// Appends the points that a curve of a block has where that was drawn before.
/// @return false where there is no room
bool Writer::append(const BlockSamples::Samples& samples, const Affine& map, const Point& end) {
    const std::size_t first = m_path.points.size();
    if (samples.points.size() > m_limits.maximumPoints - first) {
        return false;
    }
    m_path.points.resize(first + samples.points.size());
    std::transform(samples.points.begin(), samples.points.end(),
                   m_path.points.begin() + static_cast<std::ptrdiff_t>(first),
                   [map](const Point& point) { return map(point); });
    m_path.points.back() = end;
    return true;
}

void Writer::curve(Curve&& curve, const ChainLink* link) {
    PathPiece piece{};
    piece.firstPoint = m_path.points.size() - 1;
    const BlockSamples::Samples* const samples = m_samples.find(link);
    m_contour.length += samples != nullptr ? samples->length : lengthOf(curve);
    m_isFull = m_isFull || !(samples != nullptr
                                 ? append(*samples, m_samples.placementOf(*link).map, endOf(curve))
                                 : append(curve));
    piece.lastPoint = m_path.points.size() - 1;
    piece.entity = static_cast<std::uint32_t>(m_path.entities.size() - 1);
    piece.curve = keep(std::move(curve), piece.kind);
    m_path.pieces.push_back(piece);
}

/// By the points of the contour, which are in the processor's cache still.
void Writer::extendBounds() {
    const auto points = m_path.points.cbegin();
    const auto first = points + static_cast<std::ptrdiff_t>(m_contour.firstPoint);
    const auto end = points + static_cast<std::ptrdiff_t>(m_contour.endPoint);
    const bool isFirst = m_path.contours.empty() && first != end;
    Point lowest = isFirst ? *first : m_path.lowest;
    Point highest = isFirst ? *first : m_path.highest;
    for (auto point = first; point != end; ++point) {
        lowest.x = std::min(lowest.x, point->x);
        lowest.y = std::min(lowest.y, point->y);
        lowest.z = std::min(lowest.z, point->z);
        highest.x = std::max(highest.x, point->x);
        highest.y = std::max(highest.y, point->y);
        highest.z = std::max(highest.z, point->z);
    }
    m_path.lowest = lowest;
    m_path.highest = highest;
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
    extendBounds();
    m_contour.endPiece = m_path.pieces.size();
    m_contour.endEntity = m_path.entities.size();
    m_path.contours.push_back(m_contour);
}

/// Calls follow(link) from a link on until it returns false.
/// @return the link that it did so for, or the number of links
template <typename Follow>
std::size_t followLinks(const std::vector<ChainLink>& links, std::size_t from,
                        const Progress& progress, const Follow& follow) {
    constexpr std::size_t linksPerReport = 1 << 12;
    for (std::size_t i = from; i < links.size(); ++i) {
        if (!follow(links[i])) {
            return i;
        }
        if (i % linksPerReport == linksPerReport - 1) {
            progress.report(static_cast<double>(i) / static_cast<double>(links.size()));
        }
    }
    return links.size();
}

/// Room for what so many entities mostly become: memory that is not touched costs nothing, moving
/// what has grown does.
void reserveFor(const std::vector<ChainLink>& links, const SamplingLimits& limits,
                std::size_t mostPoints, DrawingPath& path) {
    const std::size_t entities = links.size();
    const std::size_t pointsOfOne = std::isinf(limits.step) ? 64 : 192;
    constexpr std::size_t piecesOfOne = 4;
    constexpr std::size_t arcsOfOne = 2;
    const auto contours = static_cast<std::size_t>(std::count_if(
        links.begin(), links.end(), [](const ChainLink& link) { return link.endsChain; }));
    base::reserveLarge(path.points, std::min(entities * pointsOfOne, mostPoints));
    base::reserveLarge(path.pieces, std::min(entities * piecesOfOne, mostPoints));
    base::reserveLarge(path.arcs, std::min(entities * arcsOfOne, mostPoints));
    base::reserveLarge(path.entities, std::min(entities, mostPoints));
    base::reserveLarge(path.contours, std::min(contours, mostPoints));
}

} // namespace

// Up to some number of points, what is written needs no counting first.
void writeContours(const JoinedDrawing& joined, const PathSettings& settings, DrawingPath& path,
                   const Progress& progress) {
    constexpr std::size_t freely = 1 << 21;
    constexpr double endOfCounting = 0.4;
    const SamplingLimits& limits = settings.limits;
    const std::vector<ChainLink>& links = joined.links;
    const std::size_t room = std::min(limits.maximumPoints, freely);
    reserveFor(links, limits, room, path);
    SamplesOfBlocks samples(joined, limits);
    Writer writer(joined.layers, limits, room, samples, path);
    ContourWalk<Writer> walk(joined, limits.tolerance, writer);
    const Progress first = progress.part(0, endOfCounting);
    const std::size_t written = followLinks(links, 0, first, [&](const ChainLink& link) {
        const Writer::Mark mark(writer);
        const ContourState state = walk.state();
        walk.follow(link);
        if (writer.isFull()) {
            mark.takeBack(writer);
            walk.state() = state;
        }
        return !writer.isFull();
    });
    if (written == links.size()) {
        return;
    }
    Counter counter(limits, samples, path);
    ContourWalk<Counter> counting(joined, limits.tolerance, counter);
    counting.state() = walk.state();
    followLinks(links, written, first, [&](const ChainLink& link) {
        counting.follow(link);
        return true;
    });
    counter.reserveIn(path);
    writer.goOn(limits.maximumPoints);
    followLinks(links, written, progress.part(endOfCounting, 1), [&](const ChainLink& link) {
        walk.follow(link);
        return true;
    });
}

} // namespace converters::drawing
