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
    bool isInContour() const { return m_state.isInContour; }

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
    SamplesOfBlocks(const JoinedDrawing& joined, BlockSamples& samples)
        : m_joined(joined), m_samples(samples) {}

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
    BlockSamples& m_samples;
};

/// Counts what contours will take.
class Counter {
public:
    /// @param mostPoints  more are refused
    /// @param written     is counted as well
    Counter(const SamplingLimits& limits, std::size_t mostPoints, SamplesOfBlocks& samples,
            const PathContours& written)
        : points(written.points.size()), contours(written.contours.size()),
          pieces(written.pieces.size()), entities(written.entities.size()),
          arcs(written.arcs.size()), ellipticArcs(written.ellipticArcs.size()),
          splines(written.splines.size()), m_limits(limits), m_mostPoints(mostPoints),
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

    void reserveIn(PathContours& written) const {
        base::reserveLarge(written.points, points);
        base::reserveLarge(written.contours, contours);
        base::reserveLarge(written.pieces, pieces);
        base::reserveLarge(written.entities, entities);
        base::reserveLarge(written.arcs, arcs);
        base::reserveLarge(written.ellipticArcs, ellipticArcs);
        base::reserveLarge(written.splines, splines);
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
        if (points > m_mostPoints) {
            throw Refusal{"more than " + std::to_string(m_limits.maximumPoints) + " points"};
        }
    }

    const SamplingLimits& m_limits;
    std::size_t m_mostPoints;
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

/// The box around all points so far.
class Bounds {
public:
    /// @param hasPoints  whether there is a box yet
    Bounds(PathReport& report, bool& hasPoints) : m_report(report), m_hasPoints(hasPoints) {}

    void extend(const Point* first, const Point* end);

private:
    PathReport& m_report;
    bool& m_hasPoints;
};

void Bounds::extend(const Point* first, const Point* end) {
    if (first == end) {
        return;
    }
    Point lowest = m_hasPoints ? m_report.lowest : *first;
    Point highest = m_hasPoints ? m_report.highest : *first;
    for (const Point* point = first; point != end; ++point) {
        lowest.x = std::min(lowest.x, point->x);
        lowest.y = std::min(lowest.y, point->y);
        lowest.z = std::min(lowest.z, point->z);
        highest.x = std::max(highest.x, point->x);
        highest.y = std::max(highest.y, point->y);
        highest.z = std::max(highest.z, point->z);
    }
    m_report.lowest = lowest;
    m_report.highest = highest;
    m_hasPoints = true;
}

/// Writes contours.
class Writer {
public:
    /// @param mostPoints  how many points there is room for
    Writer(const LayerTable& layers, const SamplingLimits& limits, std::size_t mostPoints,
           SamplesOfBlocks& samples, PathContours& written, Bounds bounds)
        : m_layers(layers), m_limits(limits), m_samples(samples), m_written(written),
          m_bounds(bounds) {
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

    const LayerTable& m_layers;
    /// For all points together.
    SamplingLimits m_limits;
    SamplesOfBlocks& m_samples;
    PathContours& m_written;
    Bounds m_bounds;
    PathContour m_contour{};
    bool m_isFull = false;
};

Writer::Mark::Mark(const Writer& writer)
    : m_points(writer.m_written.points.size()), m_contours(writer.m_written.contours.size()),
      m_pieces(writer.m_written.pieces.size()), m_entities(writer.m_written.entities.size()),
      m_arcs(writer.m_written.arcs.size()), m_ellipticArcs(writer.m_written.ellipticArcs.size()),
      m_splines(writer.m_written.splines.size()), m_contour(writer.m_contour) {}

void Writer::Mark::takeBack(Writer& writer) const {
    PathContours& written = writer.m_written;
    written.points.resize(m_points);
    written.contours.resize(m_contours);
    written.pieces.resize(m_pieces);
    written.entities.resize(m_entities);
    written.arcs.resize(m_arcs);
    written.ellipticArcs.resize(m_ellipticArcs);
    written.splines.resize(m_splines);
    writer.m_contour = m_contour;
}

void Writer::begin(const Point& start) {
    m_contour = {};
    m_contour.firstPoint = m_written.points.size();
    m_contour.firstPiece = m_written.pieces.size();
    m_contour.firstEntity = m_written.entities.size();
    m_isFull = m_isFull || m_written.points.size() >= m_limits.maximumPoints;
    if (!m_isFull) {
        m_written.points.push_back(start);
    }
}

void Writer::entity(const Entity& entity, const Placement& placement) {
    const std::uint32_t layer = layerOf(entity.layer, placement, m_layers);
    if (m_contour.firstEntity == m_written.entities.size()) {
        const Colour colour = colourOf(entity, placement, m_layers);
        m_contour.layer = layer;
        m_contour.colour = colour.index;
        m_contour.trueColour = colour.trueColour;
    }
    m_written.entities.push_back({entity.handle, placement.insert, layer, pathKindOf(entity.kind)});
}

/// Keeps the exact curve of a piece.
/// @return its index among those of its kind
std::uint32_t Writer::keep(Curve&& curve, PathCurveKind& kind) {
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
bool Writer::append(const Curve& curve) {
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
bool Writer::append(const BlockSamples::Samples& samples, const Affine& map, const Point& end) {
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

void Writer::curve(Curve&& curve, const ChainLink* link) {
    PathPiece piece{};
    piece.firstPoint = m_written.points.size() - 1;
    const BlockSamples::Samples* const samples = m_samples.find(link);
    m_contour.length += samples != nullptr ? samples->length : lengthOf(curve);
    m_isFull = m_isFull || !(samples != nullptr
                                 ? append(*samples, m_samples.placementOf(*link).map, endOf(curve))
                                 : append(curve));
    piece.lastPoint = m_written.points.size() - 1;
    piece.entity = static_cast<std::uint32_t>(m_written.entities.size() - 1);
    piece.curve = keep(std::move(curve), piece.kind);
    m_written.pieces.push_back(piece);
}

void Writer::end(bool closed, const Point& start) {
    if (m_contour.firstPiece == m_written.pieces.size()) {
        const auto entity = static_cast<std::uint32_t>(m_written.entities.size() - 1);
        m_written.pieces.push_back(
            {m_contour.firstPoint, m_contour.firstPoint, 0, entity, PathCurveKind::point});
    } else if (closed) {
        m_written.points.back() = start;
    }
    m_contour.closed = closed;
    m_contour.endPoint = m_written.points.size();
    // While they are in the processor's cache.
    m_bounds.extend(m_written.points.data() + m_contour.firstPoint,
                    m_written.points.data() + m_contour.endPoint);
    m_contour.endPiece = m_written.pieces.size();
    m_contour.endEntity = m_written.entities.size();
    m_written.contours.push_back(m_contour);
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
                std::size_t mostPoints, PathContours& contours) {
    const std::size_t entities = links.size();
    const std::size_t pointsOfOne = std::isinf(limits.step) ? 64 : 192;
    constexpr std::size_t piecesOfOne = 4;
    constexpr std::size_t arcsOfOne = 2;
    const auto ends = static_cast<std::size_t>(std::count_if(
        links.begin(), links.end(), [](const ChainLink& link) { return link.endsChain; }));
    base::reserveLarge(contours.points, std::min(entities * pointsOfOne, mostPoints));
    base::reserveLarge(contours.pieces, std::min(entities * piecesOfOne, mostPoints));
    base::reserveLarge(contours.arcs, std::min(entities * arcsOfOne, mostPoints));
    base::reserveLarge(contours.entities, std::min(entities, mostPoints));
    base::reserveLarge(contours.contours, std::min(ends, mostPoints));
}

} // namespace

// Up to some number of points, what is written needs no counting first.
void PathWriter::write(PathContours& contours, std::size_t enough, PathReport& report,
                       const Progress& progress) {
    constexpr std::size_t freely = 1 << 21;
    const std::vector<ChainLink>& links = m_joined.links;
    const std::size_t allowed = m_limits.maximumPoints - m_points;
    const std::size_t room = std::min(allowed, freely);
    if (enough == all) {
        reserveFor(links, m_limits, room, contours);
    }
    const auto isEnough = [enough](bool isInContour, std::uint64_t points) {
        return !isInContour && points >= enough && points > 0;
    };
    SamplesOfBlocks samples(m_joined, m_samples);
    Writer writer(m_joined.layers, m_limits, room, samples, contours, {report, m_hasBounds});
    ContourWalk<Writer> walk(m_joined, m_limits.tolerance, writer);
    m_next = followLinks(links, m_next, progress, [&](const ChainLink& link) {
        if (isEnough(walk.isInContour(), contours.points.size())) {
            return false;
        }
        const Writer::Mark mark(writer);
        const ContourState state = walk.state();
        walk.follow(link);
        if (writer.isFull()) {
            mark.takeBack(writer);
            walk.state() = state;
        }
        return !writer.isFull();
    });
    if (writer.isFull()) {
        Counter counter(m_limits, allowed, samples, contours);
        ContourWalk<Counter> counting(m_joined, m_limits.tolerance, counter);
        counting.state() = walk.state();
        followLinks(links, m_next, progressHere(progress), [&](const ChainLink& link) {
            if (isEnough(counting.isInContour(), counter.points)) {
                return false;
            }
            counting.follow(link);
            return true;
        });
        counter.reserveIn(contours);
        writer.goOn(allowed);
        m_next = followLinks(links, m_next, progress, [&](const ChainLink& link) {
            if (isEnough(walk.isInContour(), contours.points.size())) {
                return false;
            }
            walk.follow(link);
            return true;
        });
    }
    m_points += contours.points.size();
}

std::uint64_t PathWriter::countPoints(const Progress& progress) {
    SamplesOfBlocks samples(m_joined, m_samples);
    Counter counter(m_limits, m_limits.maximumPoints - m_points, samples, {});
    ContourWalk<Counter> counting(m_joined, m_limits.tolerance, counter);
    followLinks(m_joined.links, m_next, progressHere(progress), [&](const ChainLink& link) {
        counting.follow(link);
        return true;
    });
    return counter.points;
}

/// Counting gets no farther, but can be stopped.
Progress PathWriter::progressHere(const Progress& progress) const {
    const std::size_t links = std::max<std::size_t>(m_joined.links.size(), 1);
    const double here = static_cast<double>(m_next) / static_cast<double>(links);
    return progress.part(here, here);
}

} // namespace converters::drawing
