#include "converters/detail/drawing/Reordering.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/contours/ContourOrder.h"
#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace converters::drawing {

namespace {

/// Whether a closed contour may start at any of its points.
bool startsAnywhere(const PathContours& path, const PathContour& contour) {
    const PathPiece& piece = path.pieces[contour.firstPiece];
    if (contour.endPiece - contour.firstPiece != 1) {
        return false;
    }
    return piece.kind == PathCurveKind::arc ||
           (piece.kind == PathCurveKind::ellipticArc &&
            path.ellipticArcs[piece.curve].minor != Vector(0, 0, 0));
}

std::vector<ContourVisit> visitsOf(const PathContours& path, PathOrder order,
                                   const Progress& progress) {
    // Where pieces start, counted from the start of their contour.
    std::vector<std::size_t> starts;
    base::reserveLarge(starts, path.pieces.size());
    for (const PathContour& contour : path.contours) {
        for (std::size_t piece = contour.firstPiece; piece != contour.endPiece; ++piece) {
            starts.push_back(path.pieces[piece].firstPoint - contour.firstPoint);
        }
    }
    std::vector<ContourShape> shapes;
    base::reserveLarge(shapes, path.contours.size());
    for (const PathContour& contour : path.contours) {
        ContourShape shape{&path.points[contour.firstPoint], contour.endPoint - contour.firstPoint,
                           contour.closed};
        if (contour.closed && !startsAnywhere(path, contour)) {
            shape.starts = &starts[contour.firstPiece];
            shape.numberOfStarts = contour.endPiece - contour.firstPiece;
        }
        shapes.push_back(shape);
    }
    OrderCost cost;
    cost.progress = [&progress](double done) { progress.report(done); };
    return order == PathOrder::nearest ? nearestOrder(shapes, &cost)
                                       : insideFirstOrder(shapes, &cost);
}

void reverse(PathSpline& spline) {
    const double sum = spline.knots.front() + spline.knots.back();
    std::reverse(spline.knots.begin(), spline.knots.end());
    for (double& knot : spline.knots) {
        knot = sum - knot;
    }
    std::reverse(spline.controlPoints.begin(), spline.controlPoints.end());
    std::reverse(spline.weights.begin(), spline.weights.end());
}

/// Moves contours from one path into another.
class Mover {
public:
    Mover(PathContours& from, PathContours& to) : m_from(from), m_to(to) {}

    void move(const ContourVisit& visit);

private:
    void movePoints(const PathContour& contour, const ContourVisit& visit);
    void movePieces(const PathContour& contour, const ContourVisit& visit);
    void addPiece(const PathContour& contour, const ContourVisit& visit, PathPiece piece);
    void reverseCurve(const PathPiece& piece);
    void startElsewhere(const PathPiece& piece, const Point& start);

    PathContours& m_from;
    PathContours& m_to;
};

void Mover::move(const ContourVisit& visit) {
    const PathContour& contour = m_from.contours[visit.contour];
    PathContour moved = contour;
    moved.firstPoint = m_to.points.size();
    moved.firstPiece = m_to.pieces.size();
    moved.firstEntity = m_to.entities.size();
    movePieces(contour, visit);
    movePoints(contour, visit);
    for (std::size_t entity = contour.firstEntity; entity != contour.endEntity; ++entity) {
        m_to.entities.push_back(m_from.entities[entity]);
    }
    moved.endPoint = m_to.points.size();
    moved.endPiece = m_to.pieces.size();
    moved.endEntity = m_to.entities.size();
    m_to.contours.push_back(moved);
}

void Mover::movePoints(const PathContour& contour, const ContourVisit& visit) {
    const auto begin = m_from.points.begin() + static_cast<std::ptrdiff_t>(contour.firstPoint);
    const auto end = m_from.points.begin() + static_cast<std::ptrdiff_t>(contour.endPoint);
    if (visit.reversed) {
        m_to.points.insert(m_to.points.end(), std::reverse_iterator(end),
                           std::reverse_iterator(begin));
        return;
    }
    const auto start = begin + static_cast<std::ptrdiff_t>(visit.firstPoint);
    if (start == begin) {
        m_to.points.insert(m_to.points.end(), begin, end);
        return;
    }
    // The last point is a copy of the first one.
    m_to.points.insert(m_to.points.end(), start, end - 1);
    m_to.points.insert(m_to.points.end(), begin, start + 1);
}

void Mover::movePieces(const PathContour& contour, const ContourVisit& visit) {
    const std::size_t first = contour.firstPoint + visit.firstPoint;
    const std::size_t count = contour.endPiece - contour.firstPiece;
    std::size_t start = contour.firstPiece;
    if (visit.firstPoint != 0 && count == 1) {
        startElsewhere(m_from.pieces[start], m_from.points[first]);
        return addPiece(contour, {}, m_from.pieces[start]);
    }
    while (m_from.pieces[start].firstPoint != first && start + 1 != contour.endPiece) {
        ++start;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t turned = contour.firstPiece + (start - contour.firstPiece + i) % count;
        const std::size_t piece = visit.reversed ? contour.endPiece - 1 - i : turned;
        addPiece(contour, visit, m_from.pieces[piece]);
    }
}

/// Adds a piece with the numbers that its points and its entity have in the moved contour.
void Mover::addPiece(const PathContour& contour, const ContourVisit& visit, PathPiece piece) {
    const std::size_t chords = contour.endPoint - contour.firstPoint - 1;
    const std::size_t length = piece.lastPoint - piece.firstPoint;
    std::size_t first = piece.firstPoint - contour.firstPoint;
    if (visit.reversed) {
        reverseCurve(piece);
        first = chords - (first + length);
    } else if (visit.firstPoint != 0) {
        first = (first + chords - visit.firstPoint) % chords;
    }
    piece.firstPoint = m_to.points.size() + first;
    piece.lastPoint = piece.firstPoint + length;
    piece.entity =
        static_cast<std::uint32_t>(piece.entity - contour.firstEntity + m_to.entities.size());
    m_to.pieces.push_back(piece);
}

/// Every curve is that of one piece only.
void Mover::reverseCurve(const PathPiece& piece) {
    if (piece.kind == PathCurveKind::arc) {
        PathArc& arc = m_from.arcs[piece.curve];
        arc.normal = -arc.normal;
    } else if (piece.kind == PathCurveKind::ellipticArc) {
        PathEllipticArc& arc = m_from.ellipticArcs[piece.curve];
        arc.minor = -arc.minor;
        arc.start = -(arc.start + arc.sweep);
    } else if (piece.kind == PathCurveKind::spline) {
        reverse(m_from.splines[piece.curve]);
    }
}

/// How far a way leads along a half axis, as a part of it.
double partAlong(const Vector& way, const Vector& halfAxis) {
    // Its square may vanish.
    const std::optional<Vector> direction = directionOf(halfAxis);
    return direction ? std::clamp(way.dot(*direction) / lengthOf(halfAxis), -1.0, 1.0) : 0;
}

/// Of a full circle only its points tell where it starts.
void Mover::startElsewhere(const PathPiece& piece, const Point& start) {
    if (piece.kind == PathCurveKind::ellipticArc) {
        PathEllipticArc& arc = m_from.ellipticArcs[piece.curve];
        const Vector way = start - arc.centre;
        arc.start = std::atan2(partAlong(way, arc.minor), partAlong(way, arc.major));
    }
}

} // namespace

void reorder(PathContours& path, PathOrder order, const Progress& progress) {
    if (order == PathOrder::drawn || path.contours.empty()) {
        return;
    }
    const std::vector<ContourVisit> visits = visitsOf(path, order, progress);
    PathContours moved;
    base::reserveLarge(moved.points, path.points.size());
    base::reserveLarge(moved.contours, path.contours.size());
    base::reserveLarge(moved.pieces, path.pieces.size());
    base::reserveLarge(moved.entities, path.entities.size());
    Mover mover(path, moved);
    for (const ContourVisit& visit : visits) {
        mover.move(visit);
    }
    path.points = std::move(moved.points);
    path.contours = std::move(moved.contours);
    path.pieces = std::move(moved.pieces);
    path.entities = std::move(moved.entities);
}

} // namespace converters::drawing
