#include "dxfeditor/detail/walking/Sampling.h"

#include "base/LargePages.h"
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/detail/walking/SplineSamples.h"
#include "dxfeditor/detail/walking/TruncatedCount.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <typeinfo>

namespace dxfeditor {

namespace {

using Point = Run::Point;

constexpr double pointsPerUnit = 10.0;
constexpr double circlePointsPerUnitOfRadius = 62.83185307179586;
constexpr double fullTurn = 6.283185307179586;
constexpr double radiansPerDegree = 0.017453292519943295;
constexpr int minimumCirclePoints = 32;
constexpr int minimumArcSteps = 4;
constexpr double splineStep = 0.1;

/// A number of steps as a factor. No count reaches 2^63, and signed numbers convert faster.
double factor(std::size_t steps) {
    return static_cast<double>(static_cast<std::int64_t>(steps));
}

/// The point of the cloud for a point of the drawing plane.
Point inCloud(double x, double y) {
    return {x, 0.0, y};
}

Point onCircle(const Point& center, double radius, double angle) {
    double sine;
    double cosine;
    ::sincos(angle, &sine, &cosine);
    return inCloud(center.x + radius * cosine, center.y + radius * sine);
}

// One sampling class a kind of entity. Each has size(), and a point for every i below it; none of
// them changes the order of the operations that make up a coordinate, which would change its last
// bits.

/// A circle, once around. The starting point is not repeated at the end.
class CirclePoints {
public:
    explicit CirclePoints(const DXFCircle& circle)
        : m_center(circle.getCenter()), m_radius(circle.getRadius()),
          m_count(std::max(truncatedCount(m_radius * circlePointsPerUnitOfRadius),
                           minimumCirclePoints)),
          m_inverseCount(1.0 / m_count) {}

    std::size_t size() const { return static_cast<std::size_t>(m_count); }
    Point operator()(std::size_t i) const {
        return onCircle(m_center, m_radius, factor(i) * fullTurn * m_inverseCount);
    }

private:
    Point m_center;
    double m_radius;
    int m_count;
    double m_inverseCount;
};

/// An arc counter-clockwise from its start to its end angle, both ends included. Equal angles give
/// five equal points, not a full circle.
class ArcPoints {
public:
    explicit ArcPoints(const DXFArc& arc)
        : m_center(arc.getCenter()), m_radius(arc.getRadius()),
          m_start(arc.getStartAngle() * radiansPerDegree) {
        double end = arc.getEndAngle() * radiansPerDegree;
        if (m_start > end) {
            end = end + fullTurn;
        }
        const double sweep = end - m_start;
        m_steps = std::max(truncatedCount(m_radius * pointsPerUnit * sweep), minimumArcSteps);
        m_step = sweep / m_steps;
    }

    std::size_t size() const { return static_cast<std::size_t>(m_steps) + 1; }
    Point operator()(std::size_t i) const {
        return onCircle(m_center, m_radius, factor(i) * m_step + m_start);
    }

private:
    Point m_center;
    double m_radius;
    double m_start;
    int m_steps;
    double m_step;
};

/// A straight piece, both ends included; only its start when it is shorter than a step.
class LinePoints {
public:
    explicit LinePoints(const Segment& segment)
        : m_startX(segment.startX), m_startY(segment.startY), m_dx(segment.endX - segment.startX),
          m_dy(segment.endY - segment.startY),
          m_steps(truncatedCount(std::hypot(m_dx, m_dy) * pointsPerUnit)),
          m_inverseSteps(1.0 / m_steps) {}

    /// The same without the length, which takes longer than a few points.
    LinePoints(const Segment& segment, std::size_t size)
        : m_startX(segment.startX), m_startY(segment.startY), m_dx(segment.endX - segment.startX),
          m_dy(segment.endY - segment.startY), m_steps(static_cast<int>(size - 1)),
          m_inverseSteps(1.0 / m_steps) {}

    std::size_t size() const { return static_cast<std::size_t>(m_steps) + 1; }
    Point operator()(std::size_t i) const {
        if (m_steps == 0) {
            return inCloud(m_startX, m_startY);
        }
        const double t = factor(i) * m_inverseSteps;
        return inCloud(m_startX + m_dx * t, m_startY + m_dy * t);
    }

private:
    double m_startX;
    double m_startY;
    double m_dx;
    double m_dy;
    int m_steps;
    double m_inverseSteps;
};

/// The straight pieces of a polyline one after the other, each with both its ends: a corner between
/// two of them comes twice.
class PolylinePoints {
public:
    explicit PolylinePoints(const DXFPolyline& polyline) : m_pieces(polyline.pieces()) {}

    std::size_t size() const {
        std::size_t count = 0;
        for (const Segment& piece : m_pieces) {
            count += LinePoints(piece).size();
        }
        return count;
    }
    const std::vector<Segment>& pieces() const { return m_pieces; }

private:
    const std::vector<Segment>& m_pieces;
};

/// A spline in equal steps of its parameter.
class SplinePoints {
public:
    explicit SplinePoints(const DXFSpline& spline) : m_samples(spline, splineStep) {}

    std::size_t size() const { return m_samples.size(); }
    Point operator()(std::size_t i) {
        const cv::Point_<double> point = m_samples(i);
        return inCloud(point.x, point.y);
    }

private:
    SplineSamples m_samples;
};

/// A single point. Its height above the drawing plane is not used.
class SinglePoint {
public:
    explicit SinglePoint(const DXFPoint& point) : m_point(inCloud(point.mX(), point.mY())) {}

    std::size_t size() const { return 1; }
    Point operator()(std::size_t) const { return m_point; }

private:
    Point m_point;
};

/// The points of a point vector. They are in the coordinates of the cloud already, not in the
/// drawing plane; only the sign of their z is turned.
class VectorPoints {
public:
    explicit VectorPoints(const DXFPointVector& vector) : m_points(vector.points()) {}

    std::size_t size() const { return m_points.size(); }
    Point operator()(std::size_t i) const {
        const Point& point = m_points[i];
        return {point.x, point.y, -point.z};
    }

private:
    const std::vector<Point>& m_points;
};

// The points of an entity, by its class, and of one whose number of points is known.

PolylinePoints pointsOf(const DXFPolyline& polyline) {
    return PolylinePoints(polyline);
}

SinglePoint pointsOf(const DXFPoint& point) {
    return SinglePoint(point);
}

VectorPoints pointsOf(const DXFPointVector& vector) {
    return VectorPoints(vector);
}

CirclePoints pointsOf(const DXFCircle& circle) {
    return CirclePoints(circle);
}

ArcPoints pointsOf(const DXFArc& arc) {
    return ArcPoints(arc);
}

Segment segmentOf(const DXFLine& line) {
    const Point start = line.getP1();
    const Point end = line.getP2();
    return {start.x, start.y, end.x, end.y};
}

LinePoints pointsOf(const DXFLine& line) {
    return LinePoints(segmentOf(line));
}

SplinePoints pointsOf(const DXFSpline& spline) {
    return SplinePoints(spline);
}

template <typename Entity>
auto pointsOf(const Entity& entity, std::size_t) {
    return pointsOf(entity);
}

LinePoints pointsOf(const Segment& line, std::size_t size) {
    return LinePoints(line, size);
}

template <typename Sequence>
Point firstOf(Sequence& sequence, std::size_t) {
    return sequence(0);
}
template <typename Sequence>
Point lastOf(Sequence& sequence, std::size_t size) {
    return sequence(size - 1);
}

Point firstOf(PolylinePoints& polyline, std::size_t) {
    return LinePoints(polyline.pieces().front())(0);
}
Point lastOf(PolylinePoints& polyline, std::size_t) {
    const LinePoints piece(polyline.pieces().back());
    return piece(piece.size() - 1);
}

/// What of a run of points is wanted, in its own direction.
struct Part {
    Direction direction;
    bool withoutFront;
    bool withoutBack;
};

template <typename Sequence>
void append(Sequence sequence, std::size_t size, const Part& part, std::vector<Point>& points) {
    // By coordinates, which stay in registers: a point as a whole would go through memory, written
    // in parts and read at once, for which processors wait.
    const auto append = [&](const Point& point) { points.emplace_back(point.x, point.y, point.z); };
    const std::size_t begin = part.withoutFront ? 1 : 0;
    const std::size_t end = part.withoutBack ? size - 1 : size;
    if (part.direction == Direction::Forwards) {
        for (std::size_t i = begin; i < end; ++i) {
            append(sequence(i));
        }
    } else {
        for (std::size_t i = end; i > begin; --i) {
            append(sequence(i - 1));
        }
    }
}

void append(const PolylinePoints& polyline, std::size_t, const Part& part,
            std::vector<Point>& points) {
    const std::vector<Segment>& pieces = polyline.pieces();
    const auto appendPiece = [&](const Segment& piece) {
        const LinePoints line(piece);
        append(line, line.size(),
               {part.direction, part.withoutFront && &piece == &pieces.front(),
                part.withoutBack && &piece == &pieces.back()},
               points);
    };
    if (part.direction == Direction::Forwards) {
        std::for_each(pieces.begin(), pieces.end(), appendPiece);
    } else {
        std::for_each(pieces.rbegin(), pieces.rend(), appendPiece);
    }
}

/// Hands an empty pointer to the class that the code names to the visitor.
template <typename Visitor>
auto visitKind(int kind, Visitor visitor) {
    switch (kind) {
    case DXFEntityType::Polyline:
        return visitor(static_cast<const DXFPolyline*>(nullptr));
    case DXFEntityType::Point:
        return visitor(static_cast<const DXFPoint*>(nullptr));
    case DXFEntityType::PointVector:
        return visitor(static_cast<const DXFPointVector*>(nullptr));
    case DXFEntityType::Circle:
        return visitor(static_cast<const DXFCircle*>(nullptr));
    case DXFEntityType::Arc:
        return visitor(static_cast<const DXFArc*>(nullptr));
    case DXFEntityType::Line:
        return visitor(static_cast<const DXFLine*>(nullptr));
    default:
        return visitor(static_cast<const DXFSpline*>(nullptr));
    }
}

/// Hands a shape to the visitor as the class that the code names, which it is of.
template <typename Visitor>
auto visit(const void* shape, int kind, Visitor visitor) {
    return visitKind(kind,
                     [&](auto named) { return visitor(*static_cast<decltype(named)>(shape)); });
}

/// The entity as the class that it says it is of; null when it is of another one.
const void* shapeOf(const DXFEntity& entity, int kind) {
    if (kind < DXFEntityType::Polyline || kind > DXFEntityType::Spline) {
        return nullptr;
    }
    return visitKind(kind, [&](auto named) -> const void* {
        using Named = std::remove_pointer_t<decltype(named)>;
        // Nearly all entities are of the very class, which is told much faster. Others may derive
        // from several: only the cast knows where in them the wanted one lies.
        return typeid(entity) == typeid(Named) ? &static_cast<const Named&>(entity)
                                               : dynamic_cast<const Named*>(&entity);
    });
}

template <typename Entity>
void addRun(const Entity& entity, int kind, std::size_t size, Runs& runs) {
    runs.runs.emplace_back(&entity, kind, size);
}

/// Whether a run has a copy of its shape. A copy for a single point would be larger than the point.
bool hasSegment(int kind, std::size_t size) {
    return kind == DXFEntityType::Line && size > 1;
}

void addRun(const DXFLine& line, int kind, std::size_t size, Runs& runs) {
    if (hasSegment(kind, size)) {
        runs.lines.push_back(segmentOf(line));
        runs.runs.emplace_back(runs.lines.back(), size);
    } else {
        runs.runs.emplace_back(&line, kind, size);
    }
}

/// Hands the shape of a run to the visitor.
template <typename Visitor>
void visitShape(const void* shape, int kind, std::size_t size, Visitor visitor) {
    if (hasSegment(kind, size)) {
        visitor(*static_cast<const Segment*>(shape));
    } else {
        visit(shape, kind, visitor);
    }
}

void append(const DXFEntity& entity, Runs& runs) {
    const int kind = entity.type();
    const void* const named = shapeOf(entity, kind);
    if (named == nullptr) {
        return;
    }
    visit(named, kind, [&](const auto& shape) {
        auto points = pointsOf(shape);
        if (const std::size_t size = points.size(); size > 0) {
            addRun(shape, kind, size, runs);
            runs.ends.push_back(firstOf(points, size));
            runs.ends.push_back(lastOf(points, size));
        }
    });
}

} // namespace

Run::Run(const Segment& line, std::size_t size)
    : m_shape(&line), m_kind(DXFEntityType::Line), m_size(size & mostPoints) {}

void Run::prefetch() const {
    visitShape(m_shape, m_kind, m_size, [](const auto& shape) {
        const char* const begin = reinterpret_cast<const char*>(&shape);
        __builtin_prefetch(begin);
        __builtin_prefetch(begin + sizeof shape - 1);
    });
}

void Run::appendTo(std::vector<Point>& points, Direction direction, Dropped dropped) const {
    const bool isReversed = direction == Direction::Backwards;
    const Part part = {direction, dropped == (isReversed ? Dropped::Last : Dropped::First),
                       dropped == (isReversed ? Dropped::First : Dropped::Last)};
    visitShape(m_shape, m_kind, m_size,
               [&](const auto& shape) { append(pointsOf(shape, m_size), m_size, part, points); });
}

Runs runsOf(const std::list<std::shared_ptr<DXFEntity>>& entities) {
    Runs runs;
    base::reserveLarge(runs.runs, entities.size());
    base::reserveLarge(runs.ends, 2 * entities.size());
    base::reserveLarge(runs.lines, entities.size());
    for (const std::shared_ptr<DXFEntity>& entity : entities) {
        if (entity != nullptr) {
            append(*entity, runs);
        }
    }
    return runs;
}

} // namespace dxfeditor
