#pragma once

#include "dxfeditor/DXFEntity.h"

#include <cstddef>
#include <vector>

/// A corner of a polyline, in drawing units.
class DXFEDITOR_EXPORT DXFVertex {
public:
    /// A corner; nothing is checked.
    ///
    /// @param x, y, z  coordinates, in drawing units
    /// @param flag     stored only; every creator passes true
    /// @param bulge    tangent of a quarter of the arc angle to the next vertex; 0 for a straight
    ///                 edge
    DXFVertex(double x, double y, double z, bool flag, double bulge)
        : m_x(x), m_y(y), m_z(z), m_flag(flag), m_bulge(bulge) {}

    /// Coordinate x, as given.
    double x() const { return m_x; }
    /// Coordinate y, as given.
    double y() const { return m_y; }
    /// Coordinate z, as given.
    double z() const { return m_z; }
    /// The flag given by the creator.
    bool flag() const { return m_flag; }
    /// The bulge of the edge to the next vertex.
    double bulge() const { return m_bulge; }

private:
    double m_x;
    double m_y;
    double m_z;
    bool m_flag;
    double m_bulge;
};

/// A straight line in the drawing plane.
struct Segment {
    double startX; ///< Where it starts, x.
    double startY; ///< Where it starts, y.
    double endX;   ///< Where it ends, x.
    double endY;   ///< Where it ends, y.
};

/// A polyline or lightweight polyline: its vertices, and the straight segments that setup()
/// derives from them. The segments take no memory of their own.
class DXFEDITOR_EXPORT DXFPolyline : public DXFEntity {
public:
    /// @param mVertices, nVertices  counts given by the creator; stored and returned only
    /// @param flags                 polyline flags; bit 0 means closed
    DXFPolyline(unsigned mVertices, unsigned nVertices, unsigned flags);

    int type() const override;

    /// Derives the segments from the vertices, once until setSegments() is called.
    ///
    /// Neighbouring vertices give one segment each. Bulges are ignored: a bulged edge becomes its
    /// chord. A closed polyline of three or more vertices gets one more segment, which runs from
    /// the first vertex to the last and not back: point extraction walks it in that direction.
    void setup() override;
    DXFEntity* clone() const override;

    /// The vertices, in drawing order; valid while the polyline lives and is not changed.
    const std::vector<DXFVertex>& vertices() const { return m_vertices; }
    /// Number of vertices.
    int vertexNumber() const { return static_cast<int>(m_vertices.size()); }
    /// True when bit 0 of the flags is set.
    bool isClosed() const { return (m_flags & 1U) != 0; }
    /// First count given by the creator, not the number of vertices.
    unsigned mVertices() const { return m_mVertices; }
    /// Second count given by the creator, not the number of vertices.
    unsigned nVertices() const { return m_nVertices; }
    /// Polyline flags, as given.
    unsigned flags() const { return m_flags; }
    /// The segments that the last setup() or setSegments() left.
    std::vector<Segment> segments() const;

    /// Number of those segments.
    std::size_t segmentCount() const;

    /// One of those segments; `i` is below segmentCount().
    Segment segment(std::size_t i) const;

    /// Appends a vertex. Segments that setup() has already derived stay as they are.
    void appendPoint(const DXFVertex& vertex) { m_vertices.push_back(vertex); }

    /// Replaces vertices and segments by a chain of segments: the first one's start, then every
    /// segment's end. Starts are not compared with the ends before them. Sets mVertices() and
    /// nVertices() to 0; the next setup() derives the segments anew.
    void setSegments(const std::vector<Segment>& segments);

    /// Gives back the memory that is there for vertices to come.
    void shrinkToFit() { m_vertices.shrink_to_fit(); }

private:
    std::vector<DXFVertex> m_vertices;
    /// What setSegments() was given, until the next setup().
    std::vector<Segment> m_givenSegments;
    /// The vertices that the segments derive from, at the front.
    std::size_t m_setUpVertices = 0;
    unsigned m_mVertices;
    unsigned m_nVertices;
    unsigned m_flags;
    bool m_setupPending = true;
};

inline std::size_t DXFPolyline::segmentCount() const {
    if (m_setUpVertices < 2) {
        return m_givenSegments.size();
    }
    return m_setUpVertices - 1 + (isClosed() && m_setUpVertices > 2 ? 1 : 0);
}

inline Segment DXFPolyline::segment(std::size_t i) const {
    if (m_setUpVertices == 0) {
        return m_givenSegments[i];
    }
    const bool isClosing = i + 1 == m_setUpVertices;
    const DXFVertex& start = m_vertices[isClosing ? 0 : i];
    const DXFVertex& end = m_vertices[isClosing ? i : i + 1];
    return {start.x(), start.y(), end.x(), end.y()};
}
