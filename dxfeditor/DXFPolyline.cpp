#include "dxfeditor/DXFPolyline.h"

#include <utility>

DXFPolyline::DXFPolyline(unsigned mVertices, unsigned nVertices, unsigned flags)
    : m_mVertices(mVertices), m_nVertices(nVertices), m_flags(flags) {}

int DXFPolyline::type() const {
    return DXFEntityType::Polyline;
}

void DXFPolyline::setup() {
    if (m_setupPending) {
        std::vector<Segment>().swap(m_givenSegments);
        m_setUpVertices = m_vertices.size();
        m_setupPending = false;
    }
}

DXFEntity* DXFPolyline::clone() const {
    return new DXFPolyline(*this);
}

std::vector<Segment> DXFPolyline::segments() const {
    std::vector<Segment> all;
    const std::size_t count = segmentCount();
    all.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        all.push_back(segment(i));
    }
    return all;
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
    m_givenSegments = std::move(newSegments);
    m_vertices = std::move(newVertices);
    m_setUpVertices = 0;
    m_mVertices = 0;
    m_nVertices = 0;
    m_setupPending = true;
}
