#include "dxfeditor/detail/Sampling.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/detail/SplineSamples.h"
#include "dxfeditor/detail/TruncatedCount.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

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
    const Point start = line.getP1();
    const Point end = line.getP2();
    return LinePoints({start.x, start.y, end.x, end.y});
}

SplinePoints pointsOf(const DXFSpline& spline) {
    return SplinePoints(spline);
}

template <typename Sequence>
std::pair<Point, Point> endsOf(Sequence sequence) {
    const Point first = sequence(0);
    return {first, sequence(sequence.size() - 1)};
}

std::pair<Point, Point> endsOf(const PolylinePoints& polyline) {
    return {endsOf(LinePoints(polyline.pieces().front())).first,
            endsOf(LinePoints(polyline.pieces().back())).second};
}

template <typename Sequence>
void append(Sequence sequence, Direction direction, std::vector<Point>& points) {
    // By coordinates, which stay in registers: a point as a whole would go through memory, written
    // in parts and read at once, for which processors wait.
    const auto append = [&](const Point& point) { points.emplace_back(point.x, point.y, point.z); };
    const std::size_t size = sequence.size();
    if (direction == Direction::Forwards) {
        for (std::size_t i = 0; i < size; ++i) {
            append(sequence(i));
        }
    } else {
        for (std::size_t i = size; i > 0; --i) {
            append(sequence(i - 1));
        }
    }
}

void append(const PolylinePoints& polyline, Direction direction, std::vector<Point>& points) {
    const std::vector<Segment>& pieces = polyline.pieces();
    if (direction == Direction::Forwards) {
        for (auto piece = pieces.begin(); piece != pieces.end(); ++piece) {
            append(LinePoints(*piece), direction, points);
        }
    } else {
        for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
            append(LinePoints(*piece), direction, points);
        }
    }
}

/// The entity as the class that its type code names, if it is of that class.
template <typename Kind>
std::optional<Run> runOf(const DXFEntity& entity) {
    const auto* const shape = dynamic_cast<const Kind*>(&entity);
    return shape != nullptr ? std::optional<Run>(shape) : std::nullopt;
}

std::optional<Run> runOf(const DXFEntity& entity) {
    switch (entity.type()) {
    case DXFEntityType::Polyline:
        return runOf<DXFPolyline>(entity);
    case DXFEntityType::Point:
        return runOf<DXFPoint>(entity);
    case DXFEntityType::PointVector:
        return runOf<DXFPointVector>(entity);
    case DXFEntityType::Circle:
        return runOf<DXFCircle>(entity);
    case DXFEntityType::Arc:
        return runOf<DXFArc>(entity);
    case DXFEntityType::Line:
        return runOf<DXFLine>(entity);
    case DXFEntityType::Spline:
        return runOf<DXFSpline>(entity);
    default:
        return std::nullopt;
    }
}

} // namespace

Run::Run(Shape shape)
    : m_shape(shape),
      m_size(std::visit([](const auto* entity) { return pointsOf(*entity).size(); }, shape)) {}

std::pair<Point, Point> Run::ends() const {
    return std::visit([](const auto* entity) { return endsOf(pointsOf(*entity)); }, m_shape);
}

void Run::prefetch() const {
    std::visit(
        [](const auto* entity) {
            const char* const begin = reinterpret_cast<const char*>(entity);
            __builtin_prefetch(begin);
            __builtin_prefetch(begin + sizeof *entity - 1);
        },
        m_shape);
}

void Run::appendTo(std::vector<Point>& points, Direction direction) const {
    std::visit([&](const auto* entity) { append(pointsOf(*entity), direction, points); }, m_shape);
}

std::vector<Run> runsOf(const std::list<std::shared_ptr<DXFEntity>>& entities) {
    std::vector<Run> runs;
    runs.reserve(entities.size());
    for (const std::shared_ptr<DXFEntity>& entity : entities) {
        if (entity == nullptr) {
            continue;
        }
        const std::optional<Run> run = runOf(*entity);
        if (run.has_value() && run->size() > 0) {
            runs.push_back(*run);
        }
    }
    return runs;
}

} // namespace dxfeditor
