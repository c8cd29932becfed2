#pragma once

#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/JoinedDrawing.h"
#include "converters/detail/drawing/dxf/EntityCurves.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace converters::drawing {

/// How far a contour is followed.
struct ContourState {
    bool isInContour = false;
    Point start;
    Point last;
};

/// Follows contours; a sink gets what they are made of, in order:
///
///     begin(start)         a contour begins
///     entity(entity, placement)
///                          an entity of it, whose curves follow
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
    const Entity& entity = m_joined.drawing.entities[m_joined.expansion.drawn[link.drawn].entity];
    const Placement& placement = m_joined.placementOf(link);
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

} // namespace converters::drawing
