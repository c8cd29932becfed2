#include "converters/check/Duplicates.h"

#include "converters/check/PlaceNumbers.h"
#include "converters/check/SearchProgress.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace converters {

namespace {

using Point = cv::Point3_<double>;

constexpr double pi = 3.14159265358979323846;

/// What a piece is, as numbers that are equal for equal pieces in either direction.
using Key = std::vector<std::uint64_t>;

/// A straight or curved part of an entity, in which pieces that continue each other are one.
struct Part {
    PathCurveKind kind;
    std::uint32_t curve;
    Point start;
    Point end;
    /// Of arcs: radians.
    double sweep;
};

double lengthOf(const Point& vector) {
    return std::sqrt(vector.dot(vector));
}

/// The point of an arc a part of the sweep behind its start.
Point pointOf(const PathArc& arc, const Point& start, double angle) {
    const Point out = start - arc.centre;
    const Point across = arc.normal.cross(out);
    return arc.centre + out * std::cos(angle) + across * std::sin(angle);
}

Point pointOf(const PathEllipticArc& arc, double angle) {
    return arc.centre + arc.major * std::cos(angle) + arc.minor * std::sin(angle);
}

bool isWhole(double sweep) {
    constexpr double nearly = 1e-9;
    return sweep > 2.0 * pi - nearly;
}

/// Two 64-bit sums of hashes: equal for equal sets of keys in any order, and as good as never
/// otherwise.
struct Sum {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    static std::uint64_t mixed(std::uint64_t value) {
        value = (value ^ value >> 30U) * 0xBF58476D1CE4E5B9U;
        value = (value ^ value >> 27U) * 0x94D049BB133111EBU;
        return value ^ value >> 31U;
    }
    void add(const Key& key) {
        std::uint64_t one = key.size();
        std::uint64_t other = ~one;
        for (const std::uint64_t part : key) {
            one = mixed(one + part * 0x9E3779B97F4A7C15U);
            other = mixed((other ^ part) + 0xD1B54A32D192ED03U);
        }
        first += one;
        second += other;
    }
    bool operator==(const Sum& other) const {
        return first == other.first && second == other.second;
    }
};

struct SumHash {
    std::size_t operator()(const Sum& sum) const { return sum.first; }
};

class Comparison {
public:
    Comparison(const DrawingPath& path, double distance)
        : m_path(path), m_distance(distance), m_places(distance) {}

    Sum sumOf(const EntityPieces& entity) {
        collect(entity);
        Sum sum;
        for (const Part& part : m_parts) {
            sum.add(keyOf(part));
        }
        return sum;
    }

private:
    void collect(const EntityPieces& entity);
    bool continues(const Part& part, const Part& next) const;
    static void join(Part& part, const Part& next);

    Key keyOf(const Part& part);
    Key keyOf(const PathArc& arc, const Part& part);
    Key keyOf(const PathEllipticArc& arc, const Part& part);
    Key keyOf(const PathSpline& spline);
    std::uint64_t number(const Point& place) { return m_places.of(place); }

    /// The numbers of two places in ascending order.
    void addPair(Key& key, const Point& a, const Point& b) {
        const auto [low, high] = std::minmax({number(a), number(b)});
        key.push_back(low);
        key.push_back(high);
    }

    const DrawingPath& m_path;
    double m_distance;
    PlaceNumbers m_places;
    std::vector<Part> m_parts;
};

/// The parts of an entity. Of a closed one the last may continue in the first.
void Comparison::collect(const EntityPieces& entity) {
    m_parts.clear();
    for (std::size_t i = entity.first; i < entity.end; ++i) {
        const PathPiece& piece = m_path.pieces[i];
        const double sweep =
            piece.kind == PathCurveKind::arc ? m_path.arcs[piece.curve].sweep : 0.0;
        const Part part = {piece.kind, piece.curve, m_path.points[piece.firstPoint],
                           m_path.points[piece.lastPoint], sweep};
        const bool isGap =
            part.kind == PathCurveKind::line && lengthOf(part.end - part.start) < m_distance;
        if (isGap && entity.end - entity.first > 1) {
            continue;
        }
        if (!m_parts.empty() && continues(m_parts.back(), part)) {
            join(m_parts.back(), part);
        } else {
            m_parts.push_back(part);
        }
    }
    if (m_parts.size() > 1 && continues(m_parts.back(), m_parts.front())) {
        join(m_parts.back(), m_parts.front());
        m_parts.erase(m_parts.begin());
    }
    if (m_parts.empty()) {
        const Point& start = m_path.points[m_path.pieces[entity.first].firstPoint];
        m_parts.push_back({PathCurveKind::point, 0, start, start, 0.0});
    }
}

/// Whether the next part goes on straight, or on the same circle.
bool Comparison::continues(const Part& part, const Part& next) const {
    if (part.kind != next.kind || lengthOf(next.start - part.end) > m_distance) {
        return false;
    }
    if (part.kind == PathCurveKind::line) {
        const Point way = next.end - part.start;
        const double length = lengthOf(way);
        const Point inside = part.end - part.start;
        const double along = inside.dot(way) / length;
        return length > m_distance && along > 0.0 && along < length &&
               lengthOf(inside - way * (along / length)) <= m_distance;
    }
    if (part.kind != PathCurveKind::arc) {
        return false;
    }
    const PathArc& first = m_path.arcs[part.curve];
    const PathArc& second = m_path.arcs[next.curve];
    constexpr double parallel = 0.999999;
    return lengthOf(first.centre - second.centre) <= m_distance &&
           std::abs(first.radius - second.radius) <= m_distance &&
           first.normal.dot(second.normal) > parallel && part.sweep + next.sweep < 2.0 * pi + 1e-6;
}

void Comparison::join(Part& part, const Part& next) {
    part.end = next.end;
    part.sweep += next.sweep;
}

Key Comparison::keyOf(const Part& part) {
    Key key = {static_cast<std::uint64_t>(part.kind)};
    switch (part.kind) {
    case PathCurveKind::point:
        key.push_back(number(part.start));
        return key;
    case PathCurveKind::line:
        addPair(key, part.start, part.end);
        return key;
    case PathCurveKind::arc:
        return keyOf(m_path.arcs[part.curve], part);
    case PathCurveKind::ellipticArc:
        return keyOf(m_path.ellipticArcs[part.curve], part);
    case PathCurveKind::spline:
        return keyOf(m_path.splines[part.curve]);
    }
    return key;
}

Key Comparison::keyOf(const PathArc& arc, const Part& part) {
    Key key = {static_cast<std::uint64_t>(PathCurveKind::arc)};
    if (isWhole(part.sweep)) {
        // The same in every direction and from every start: the centre, and the poles of a sphere.
        key.push_back(number(arc.centre));
        addPair(key, arc.centre + arc.normal * arc.radius, arc.centre - arc.normal * arc.radius);
        return key;
    }
    addPair(key, part.start, part.end);
    key.push_back(number(pointOf(arc, part.start, part.sweep / 2.0)));
    return key;
}

Key Comparison::keyOf(const PathEllipticArc& arc, const Part& part) {
    Key key = {static_cast<std::uint64_t>(PathCurveKind::ellipticArc)};
    addPair(key, arc.centre + arc.major, arc.centre - arc.major);
    addPair(key, arc.centre + arc.minor, arc.centre - arc.minor);
    if (!isWhole(arc.sweep)) {
        addPair(key, part.start, part.end);
        key.push_back(number(pointOf(arc, arc.start + arc.sweep / 2.0)));
    }
    return key;
}

Key Comparison::keyOf(const PathSpline& spline) {
    constexpr double parts = 1e9;
    const std::size_t last = spline.controlPoints.size();
    const double begin = spline.knots[spline.degree];
    const double range = spline.knots[last] - begin;
    const auto share = [&](double knot) {
        const double value = range > 0.0 ? (knot - begin) / range : 0.0;
        return static_cast<std::uint64_t>(std::llround(std::clamp(value, -1.0, 2.0) * parts));
    };
    Key forwards = {static_cast<std::uint64_t>(PathCurveKind::spline), spline.degree};
    Key backwards = forwards;
    for (std::size_t i = 0; i < last; ++i) {
        forwards.push_back(number(spline.controlPoints[i]));
        backwards.push_back(number(spline.controlPoints[last - 1 - i]));
    }
    for (std::size_t i = 0; i < spline.knots.size(); ++i) {
        forwards.push_back(share(spline.knots[i]));
        backwards.push_back(static_cast<std::uint64_t>(parts) -
                            share(spline.knots[spline.knots.size() - 1 - i]));
    }
    const auto weight = [&](double value, double first) {
        return static_cast<std::uint64_t>(std::llround(std::min(value / first, parts) * 1e6));
    };
    for (std::size_t i = 0; i < spline.weights.size(); ++i) {
        const double opposite = spline.weights[spline.weights.size() - 1 - i];
        forwards.push_back(weight(spline.weights[i], spline.weights.front()));
        backwards.push_back(weight(opposite, spline.weights.back()));
    }
    return std::min(forwards, backwards);
}

} // namespace

bool isDot(const DrawingPath& path, const EntityPieces& entity) {
    return path.pieces[entity.first].kind == PathCurveKind::point &&
           path.entities[entity.entity].kind != PathEntityKind::point;
}

std::vector<EntityPieces> piecesOfEntities(const DrawingPath& path) {
    std::vector<EntityPieces> entities;
    for (std::size_t i = 0; i < path.pieces.size(); ++i) {
        if (entities.empty() || entities.back().entity != path.pieces[i].entity) {
            entities.push_back({path.pieces[i].entity, i, i});
        }
        entities.back().end = i + 1;
    }
    return entities;
}

std::vector<Duplicate> duplicatesOf(const DrawingPath& path,
                                    const std::vector<EntityPieces>& entities, double distance,
                                    SearchProgress& progress) {
    Comparison comparison(path, distance);
    std::unordered_map<Sum, std::uint32_t, SumHash> seen;
    std::vector<Duplicate> duplicates;
    std::size_t done = 0;
    for (const EntityPieces& entity : entities) {
        progress.reached(done++);
        if (isDot(path, entity)) {
            continue;
        }
        const auto [earlier, isNew] = seen.emplace(comparison.sumOf(entity), entity.entity);
        if (!isNew) {
            duplicates.push_back({entity.entity, earlier->second});
        }
    }
    return duplicates;
}

} // namespace converters
