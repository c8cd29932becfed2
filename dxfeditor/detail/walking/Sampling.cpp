// Every kind of entity is a sequence: a size, and a point for every index below it that is computed
// from the entity's shape alone. So the points of a run need no memory of their own. A run is first
// asked for its size and its two ends, which is all that the stitching wants; when the order is
// known, its points are computed once, in the direction of the walk, where they are to stay.
//
// Not done: sampling every entity into points, to copy and reverse those while runs are joined. The
// points would be in memory twice.
//
// No class here changes the order of the operations that make up a coordinate, which would change
// its last bits.

#include "dxfeditor/detail/walking/Sampling.h"

#include "base/LargePages.h"
#include "dxfeditor/VisitEntity.h"
#include "dxfeditor/WalkNumbers.h"
#include "dxfeditor/detail/walking/SplineSamples.h"
#include "dxfeditor/detail/walking/TruncatedCount.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <type_traits>
#include <typeinfo>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// A number of steps as a factor. No count reaches 2^63, and signed numbers convert faster.
double factor(std::size_t steps) {
    return static_cast<double>(static_cast<std::int64_t>(steps));
}

/// A circle in the drawing plane.
struct Circle {
    PlanePoint center;
    double radius;

    Point at(Angle angle) const {
        double sine;
        double cosine;
        ::sincos(angle.radians(), &sine, &cosine);
        return inCloud({center.x + radius * cosine, center.y + radius * sine});
    }
};

/// The circle of a DXFCircle or a DXFArc. The height of its centre is not used.
template <typename Entity>
Circle circleOf(const Entity& entity) {
    const cv::Point3_<double> center = entity.getCenter();
    return {{center.x, center.y}, entity.getRadius()};
}

/// A circle, once around. The starting point is not repeated at the end.
class CirclePoints {
public:
    explicit CirclePoints(const DXFCircle& circle)
        : m_circle(circleOf(circle)),
          m_count(std::max(truncatedCount(m_circle.radius * circlePointsPerUnitOfRadius),
                           minimumCirclePoints)),
          m_inverseCount(1.0 / m_count) {}

    std::size_t size() const { return static_cast<std::size_t>(m_count); }
    Point operator()(std::size_t i) const {
        return m_circle.at(Angle::inRadians(factor(i) * fullTurn * m_inverseCount));
    }

private:
    Circle m_circle;
    int m_count;
    double m_inverseCount;
};

/// An arc counter-clockwise from its start to its end angle, both ends included. Equal angles give
/// five equal points, not a full circle.
class ArcPoints {
public:
    explicit ArcPoints(const DXFArc& arc)
        : m_circle(circleOf(arc)), m_start(Angle::inDegrees(arc.getStartAngle()).radians()) {
        double end = Angle::inDegrees(arc.getEndAngle()).radians();
        if (m_start > end) {
            end = end + fullTurn;
        }
        const double sweep = end - m_start;
        m_steps =
            std::max(truncatedCount(m_circle.radius * pointsPerUnit * sweep), minimumArcSteps);
        m_step = sweep / m_steps;
    }

    std::size_t size() const { return static_cast<std::size_t>(m_steps) + 1; }
    Point operator()(std::size_t i) const {
        return m_circle.at(Angle::inRadians(factor(i) * m_step + m_start));
    }

private:
    Circle m_circle;
    double m_start;
    int m_steps;
    double m_step;
};

/// A straight segment, both ends included; only its start when it is shorter than a step.
class LinePoints {
public:
    explicit LinePoints(const Segment& segment)
        : LinePoints(segment, truncatedCount(std::hypot(segment.endX - segment.startX,
                                                        segment.endY - segment.startY) *
                                             pointsPerUnit)) {}

    /// The same without the length, which takes longer than a few points.
    LinePoints(const Segment& segment, std::size_t size)
        : LinePoints(segment, static_cast<int>(size - 1)) {}

    std::size_t size() const { return static_cast<std::size_t>(m_steps) + 1; }
    Point operator()(std::size_t i) const {
        if (m_steps == 0) {
            return inCloud(m_start);
        }
        const double t = factor(i) * m_inverseSteps;
        return inCloud({m_start.x + m_dx * t, m_start.y + m_dy * t});
    }

private:
    LinePoints(const Segment& segment, int steps)
        : m_start{segment.startX, segment.startY}, m_dx(segment.endX - segment.startX),
          m_dy(segment.endY - segment.startY), m_steps(steps), m_inverseSteps(1.0 / m_steps) {}

    PlanePoint m_start;
    double m_dx;
    double m_dy;
    int m_steps;
    double m_inverseSteps;
};

/// The segments of a polyline one after the other, each with both its ends: a corner between
/// two of them comes twice.
class PolylinePoints {
public:
    explicit PolylinePoints(const DXFPolyline& polyline)
        : m_polyline(polyline), m_segments(polyline.segmentCount()) {}

    std::size_t size() const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < m_segments; ++i) {
            count += segment(i).size();
        }
        return count;
    }
    std::size_t segments() const { return m_segments; }
    LinePoints segment(std::size_t i) const { return LinePoints(m_polyline.segment(i)); }

private:
    const DXFPolyline& m_polyline;
    std::size_t m_segments;
};

/// A spline in equal steps of its parameter.
class SplinePoints {
public:
    explicit SplinePoints(const DXFSpline& spline) : m_samples(spline, samplingStep) {}

    std::size_t size() const { return m_samples.size(); }
    Point operator()(std::size_t i) {
        const cv::Point_<double> point = m_samples(i);
        return inCloud({point.x, point.y});
    }

private:
    SplineSamples m_samples;
};

/// A single point. Its height above the drawing plane is not used.
class SinglePoint {
public:
    explicit SinglePoint(const DXFPoint& point) : m_point(inCloud({point.mX(), point.mY()})) {}

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

Segment segmentOf(const DXFLine& line) {
    const cv::Point3_<double> start = line.getP1();
    const cv::Point3_<double> end = line.getP2();
    return {start.x, start.y, end.x, end.y};
}

// The sequence of each kind of shape.

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

LinePoints pointsOf(const DXFLine& line) {
    return LinePoints(segmentOf(line));
}

SplinePoints pointsOf(const DXFSpline& spline) {
    return SplinePoints(spline);
}

template <typename Sequence>
Point firstOf(Sequence& sequence) {
    return sequence(0);
}
template <typename Sequence>
Point lastOf(Sequence& sequence) {
    return sequence(sequence.size() - 1);
}

Point firstOf(PolylinePoints& polyline) {
    return polyline.segment(0)(0);
}
Point lastOf(PolylinePoints& polyline) {
    const LinePoints last = polyline.segment(polyline.segments() - 1);
    return last(last.size() - 1);
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

void append(const PolylinePoints& polyline, const Part& part, std::vector<Point>& points) {
    const std::size_t count = polyline.segments();
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t index = part.direction == Direction::Forwards ? i : count - 1 - i;
        const LinePoints segment = polyline.segment(index);
        append(segment, segment.size(),
               {part.direction, part.withoutFront && index == 0,
                part.withoutBack && index == count - 1},
               points);
    }
}

// A part of a shape whose number of points is known.

template <typename Shape>
void appendPart(const Shape& shape, std::size_t size, const Part& part,
                std::vector<Point>& points) {
    append(pointsOf(shape), size, part, points);
}

/// The length of a line need not be computed again.
void appendPart(const DXFLine& line, std::size_t size, const Part& part,
                std::vector<Point>& points) {
    append(LinePoints(segmentOf(line), size), size, part, points);
}

void appendPart(const DXFPolyline& polyline, std::size_t /*size*/, const Part& part,
                std::vector<Point>& points) {
    append(pointsOf(polyline), part, points);
}

/// An entity of exactly this class.
template <typename Shape>
const Shape& as(const DXFEntity& entity) {
    return static_cast<const Shape&>(entity);
}

} // namespace

template <typename Shape>
Run::Kind Run::kindOf(const Shape& shape) {
    if (typeid(shape) != typeid(Shape)) {
        return Kind::Derived;
    }
    return std::is_same_v<Shape, DXFPolyline>      ? Kind::Polyline
           : std::is_same_v<Shape, DXFPoint>       ? Kind::Point
           : std::is_same_v<Shape, DXFPointVector> ? Kind::PointVector
           : std::is_same_v<Shape, DXFCircle>      ? Kind::Circle
           : std::is_same_v<Shape, DXFArc>         ? Kind::Arc
           : std::is_same_v<Shape, DXFLine>        ? Kind::Line
           : std::is_same_v<Shape, DXFSpline>      ? Kind::Spline
                                                   : Kind::Derived;
}

template <typename Visitor>
void Run::visitShape(const Entities& entities, Visitor visitor) const {
    const DXFEntity& entity = *entities[m_entity];
    switch (m_kind) {
    case Kind::Polyline:
        return visitor(as<DXFPolyline>(entity));
    case Kind::Point:
        return visitor(as<DXFPoint>(entity));
    case Kind::PointVector:
        return visitor(as<DXFPointVector>(entity));
    case Kind::Circle:
        return visitor(as<DXFCircle>(entity));
    case Kind::Arc:
        return visitor(as<DXFArc>(entity));
    case Kind::Line:
        return visitor(as<DXFLine>(entity));
    case Kind::Spline:
        return visitor(as<DXFSpline>(entity));
    case Kind::Derived:
        visitEntity(entity, visitor);
    }
}

std::size_t Run::countPoints(const Entities& entities) const {
    std::size_t count = 0;
    visitShape(entities, [&](const auto& shape) { count = pointsOf(shape).size(); });
    return count;
}

void Run::prefetchEntity(const Entities& entities) const {
    const char* const begin = reinterpret_cast<const char*>(entities[m_entity].get());
    base::prefetch(begin);
    // The last byte of a line.
    base::prefetch(begin + sizeof(DXFLine) - 1);
}

void Run::appendTo(std::vector<Point>& points, const Entities& entities, Direction direction,
                   Dropped dropped) const {
    const bool isReversed = direction == Direction::Backwards;
    const Part part = {direction, dropped == (isReversed ? Dropped::Last : Dropped::First),
                       dropped == (isReversed ? Dropped::First : Dropped::Last)};
    const std::size_t count = size(entities);
    visitShape(entities, [&](const auto& shape) { appendPart(shape, count, part, points); });
}

Runs runsOf(const Entities& entities, base::StageProgress progress) {
    if (entities.size() > base::maximumRuns) {
        throw std::bad_alloc();
    }
    Runs runs;
    base::reserveLarge(runs.runs, entities.size());
    runs.ends.reserve(entities.size());
    progress.begin(entities.size());
    for (std::size_t i = 0; i < entities.size(); ++i) {
        progress.reached(i);
        const auto add = [&](const auto& entity) {
            auto points = pointsOf(entity);
            const std::size_t size = points.size();
            if (size == 0) {
                return;
            }
            runs.runs.emplace_back(entity, i, size);
            if (size == 1) {
                runs.ends.add(firstOf(points));
            } else {
                runs.ends.add(firstOf(points), lastOf(points));
            }
        };
        if (entities[i] != nullptr) {
            visitEntity(static_cast<const DXFEntity&>(*entities[i]), add);
        }
    }
    return runs;
}

} // namespace dxfeditor
