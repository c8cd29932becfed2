#include "dxfeditor/DXFPolyline.h"

#include <utility>

DXFPolyline::DXFPolyline(unsigned mVertices, unsigned nVertices, unsigned flags)
    : m_mVertices(mVertices), m_nVertices(nVertices), m_flags(flags) {}

int DXFPolyline::type() const {
    return DXFEntityType::Polyline;
}

void DXFPolyline::setup() {
    if (!m_setupPending) {
        return;
    }
    m_segments.clear();
    m_segments.reserve(m_vertices.size());
    for (std::size_t i = 1; i < m_vertices.size(); ++i) {
        const DXFVertex& start = m_vertices[i - 1];
        const DXFVertex& end = m_vertices[i];
        m_segments.push_back({start.x(), start.y(), end.x(), end.y()});
    }
    if (isClosed() && m_segments.size() > 1) {
        const Segment& first = m_segments.front();
        const Segment& last = m_segments.back();
        m_segments.push_back({first.startX, first.startY, last.endX, last.endY});
    }
    m_setupPending = false;
}

DXFEntity* DXFPolyline::clone() const {
    return new DXFPolyline(*this);
}

void DXFPolyline::setSegments(const std::vector<Segment>& segments) {
    // Builds both before it changes anything: when memory runs out, the polyline stays as it was.
    std::vector<Segment> newSegments = segments;
    std::vector<DXFVertex> newVertices;
    if (!newSegments.empty()) {
        newVertices.reserve(newSegments.size() + 1);
        const Segment& first = newSegments.front();
        newVertices.emplace_back(first.startX, first.startY, 0.0, true, 0.0);
        for (const Segment& segment : newSegments) {
            newVertices.emplace_back(segment.endX, segment.endY, 0.0, true, 0.0);
        }
    }
    m_segments = std::move(newSegments);
    m_vertices = std::move(newVertices);
    m_mVertices = 0;
    m_nVertices = 0;
    m_setupPending = true;
}
