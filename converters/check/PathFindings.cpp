#include "converters/check/PathFindings.h"

#include "converters/check/Crossings.h"
#include "converters/check/Duplicates.h"
#include "converters/check/NearMisses.h"
#include "converters/check/SearchProgress.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace converters {

namespace {

using Point = cv::Point3_<double>;

/// How far apart ends are joined, in units of the path.
double joiningIn(const DrawingPath& path, const PathOptions& options) {
    const double own = metresPer(path.drawingUnit);
    const double result = metresPer(path.unit);
    const double converted = own > 0.0 && result > 0.0 ? own / result : 1.0;
    const double asked =
        options.joinDistance.value_or(defaultJoinDistance * converted * options.scale);
    // What is exactly there may be blurred by the last digits.
    constexpr double exactness = 1e-12;
    double extent = 1e-100;
    for (const Point& corner : {path.lowest, path.highest}) {
        extent = std::max({extent, std::abs(corner.x), std::abs(corner.y), std::abs(corner.z)});
    }
    return std::max(asked, path.points.empty() ? asked : exactness * extent);
}

class Search {
public:
    Search(const DrawingPath& path, const PathOptions& options, double distance,
           SearchProgress progress)
        : m_path(path), m_isPlain(options.axes == PathAxes::plain), m_distance(distance),
          m_joining(joiningIn(path, options)), m_entities(piecesOfEntities(path)),
          m_progress(std::move(progress)) {}

    PathFindings run() {
        findNearMisses();
        findDuplicates();
        findWithoutExtent();
        findLeftOut();
        findCrossings();
        findUnit();
        if (m_path.contours.empty()) {
            m_found.notes.emplace_back("there is nothing to follow");
        }
        m_found.notes.insert(m_found.notes.end(), m_path.notes.begin(), m_path.notes.end());
        return std::move(m_found);
    }

private:
    FoundEntity entityAt(std::uint32_t index) const {
        const PathEntity& entity = m_path.entities[index];
        return {nameOf(entity.kind), entity.handle, m_path.layers[entity.layer].name,
                entity.insert};
    }

    /// A point as it is seen from above.
    PlanePoint flat(const Point& point) const {
        return m_isPlain ? PlanePoint{point.x, point.z, point.y}
                         : PlanePoint{point.x, point.y, point.z};
    }

    std::string placeOf(const Point& point) const {
        const PlanePoint place = flat(point);
        return placeText(place.u, place.v);
    }

    /// "LINE 2F on layer OUTLINE at (0, 7)", with the INSERT that draws it.
    std::string described(std::uint32_t index, const Point& place) const {
        const FoundEntity entity = entityAt(index);
        return shortNameOf(entity) +
               (entity.insert == 0 ? "" : " of INSERT " + handleText(entity.insert)) +
               " on layer " + entity.layer + " at " + placeOf(place);
    }

    void add(FindingKind kind, std::string text, std::vector<Point> places,
             std::vector<FoundEntity> entities = {}) {
        m_found.findings.push_back({kind, std::move(text), std::move(places), std::move(entities)});
    }

    void findNearMisses();
    void findDuplicates();
    void findWithoutExtent();
    void findLeftOut();
    void findCrossings();
    void findCrossingsOf(const PathContour& contour, Crossings& crossings);
    void findUnit();

    const DrawingPath& m_path;
    bool m_isPlain;
    double m_distance;
    double m_joining;
    std::vector<EntityPieces> m_entities;
    SearchProgress m_progress;
    PathFindings m_found;
};

void Search::findNearMisses() {
    constexpr double end = 0.6;
    m_progress.begin(end, 4 * m_path.contours.size());
    for (const NearMiss& miss : nearMissesOf(m_path, m_distance, m_joining, m_progress)) {
        add(FindingKind::nearMiss,
            "the ends at " + placeOf(miss.first) + " and " + placeOf(miss.second) + " lie " +
                lengthText(miss.distance) + " apart and are not joined",
            {miss.first, miss.second});
    }
}

void Search::findDuplicates() {
    constexpr double end = 0.8;
    m_progress.begin(end, m_entities.size());
    for (const Duplicate& duplicate : duplicatesOf(m_path, m_entities, m_joining, m_progress)) {
        const auto pieces = std::lower_bound(
            m_entities.begin(), m_entities.end(), duplicate.entity,
            [](const EntityPieces& entity, std::uint32_t index) { return entity.entity < index; });
        const Point& place = m_path.points[m_path.pieces[pieces->first].firstPoint];
        add(FindingKind::duplicate,
            described(duplicate.entity, place) + " repeats " +
                shortNameOf(entityAt(duplicate.earlier)),
            {place}, {entityAt(duplicate.entity), entityAt(duplicate.earlier)});
    }
}

/// Entities whose one piece is a dot, and those inside a contour that have none.
void Search::findWithoutExtent() {
    auto next = m_entities.begin();
    for (const PathContour& contour : m_path.contours) {
        Point place = m_path.points[contour.firstPoint];
        for (std::size_t i = contour.firstEntity; i < contour.endEntity; ++i) {
            const bool hasPieces = next != m_entities.end() && next->entity == i;
            if (!hasPieces || isDot(m_path, *next)) {
                const auto index = static_cast<std::uint32_t>(i);
                add(FindingKind::withoutExtent, described(index, place) + " has no extent", {place},
                    {entityAt(index)});
            }
            if (hasPieces) {
                place = m_path.points[m_path.pieces[next->end - 1].lastPoint];
                ++next;
            }
        }
    }
}

/// Whether a kind is one that a path is made of.
bool isGeometry(const std::string& kind) {
    constexpr std::array<PathEntityKind, 8> kinds = {
        PathEntityKind::point,    PathEntityKind::line,    PathEntityKind::arc,
        PathEntityKind::circle,   PathEntityKind::ellipse, PathEntityKind::lwpolyline,
        PathEntityKind::polyline, PathEntityKind::spline};
    return kind == "INSERT" || std::any_of(kinds.begin(), kinds.end(), [&](PathEntityKind known) {
               return kind == nameOf(known);
           });
}

/// Whether what was left out is missed: what a drawing hides is, where it could be followed.
bool isMissed(const LeftOut& part) {
    switch (part.reason) {
    case LeftOutReason::annotation:
    case LeftOutReason::layerNotAsked:
        return false;
    case LeftOutReason::layerOff:
    case LeftOutReason::layerFrozen:
    case LeftOutReason::invisible:
    case LeftOutReason::paperSpace:
        return isGeometry(part.kind);
    default:
        return true;
    }
}

void Search::findLeftOut() {
    std::map<std::pair<LeftOutReason, std::string>, std::uint64_t> others;
    for (const LeftOut& part : m_path.leftOut) {
        if (isMissed(part)) {
            add(FindingKind::leftOut,
                std::to_string(part.number) + ' ' + part.kind + " on layer " + part.layer + " (" +
                    nameOf(part.reason) + ')',
                {}, {{part.kind, 0, part.layer}});
        } else {
            others[{part.reason, part.kind}] += part.number;
        }
    }
    std::map<LeftOutReason, std::string> notes;
    for (const auto& [what, number] : others) {
        std::string& note = notes[what.first];
        note += (note.empty() ? "left out: " : ", ") + std::to_string(number) + ' ' + what.second;
    }
    for (const auto& [reason, note] : notes) {
        m_found.notes.push_back(note + " (" + nameOf(reason) + ')');
    }
}

void Search::findCrossingsOf(const PathContour& contour, Crossings& crossings) {
    std::vector<PlanePoint> points;
    points.reserve(contour.endPoint - contour.firstPoint);
    for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
        points.push_back(flat(m_path.points[i]));
    }
    const std::optional<PlanePoint> place = crossings.find(std::move(points), contour.closed);
    if (!place.has_value()) {
        return;
    }
    const Point found = m_isPlain ? Point(place->u, place->height, place->v)
                                  : Point(place->u, place->v, place->height);
    const auto first = static_cast<std::uint32_t>(contour.firstEntity);
    add(contour.closed ? FindingKind::crossesItself : FindingKind::touchesItself,
        std::string(contour.closed ? "the closed" : "the open") + " contour of " +
            described(first, m_path.points[contour.firstPoint]) + " meets itself at " +
            placeOf(found),
        {found}, {entityAt(first)});
}

void Search::findCrossings() {
    m_progress.begin(1.0, m_path.points.size());
    std::size_t done = 0;
    Crossings crossings(m_joining);
    for (const bool closed : {false, true}) {
        for (const PathContour& contour : m_path.contours) {
            if (contour.closed == closed) {
                m_progress.reached(done);
                findCrossingsOf(contour, crossings);
                done += contour.endPoint - contour.firstPoint;
            }
        }
    }
    if (crossings.unfinished() > 0) {
        m_found.notes.push_back(std::to_string(crossings.unfinished()) +
                                (crossings.unfinished() == 1 ? " contour is" : " contours are") +
                                " too tangled to look for all places where they cross");
    }
}

void Search::findUnit() {
    if (m_path.drawingUnit == LengthUnit::none && !m_path.contours.empty()) {
        add(FindingKind::noUnit, "the drawing does not say what its unit is", {});
    }
}

} // namespace

PathOptions optionsForChecking(PathOptions options) {
    options.order = PathOrder::drawn;
    options.step.reset();
    return options;
}

PathFindings findingsOf(const DrawingPath& path, const PathOptions& options, double distance,
                        std::function<bool(double)> progress) {
    try {
        return Search(path, options, distance, SearchProgress(std::move(progress))).run();
    } catch (const SearchProgress::Stopped&) {
        return {};
    }
}

} // namespace converters
