#include "converters/detail/drawing/dxf/EntityBuilder.h"

#include "converters/detail/drawing/dxf/KindNumbers.h"
#include "converters/detail/drawing/dxf/Numbers.h"
#include "converters/detail/drawing/geometry/Angle.h"
#include "converters/detail/drawing/geometry/EllipticArcs.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace converters::drawing {

namespace {

namespace polylineFlag {
constexpr std::int64_t closed = 1;
/// A spline was fitted to it.
constexpr std::int64_t splineFit = 4;
constexpr std::int64_t inSpace = 8;
constexpr std::int64_t polygonMesh = 16;
constexpr std::int64_t polyfaceMesh = 64;
} // namespace polylineFlag

namespace vertexFlag {
/// Added by fitting a spline.
constexpr std::int64_t ofSpline = 8;
/// A control point of the spline that other vertices follow: not on the curve.
constexpr std::int64_t splineFrame = 16;
} // namespace vertexFlag

Vector extrusionOf(const EntityGroups& groups) {
    return {groups.real(Slot::extrusionX), groups.real(Slot::extrusionY),
            groups.real(Slot::extrusionZ, 1)};
}

/// Whether there is an extrusion other than the usual one. One without length means that one.
bool isExtruded(const EntityGroups& groups) {
    const Vector extrusion = extrusionOf(groups);
    const bool isUpright = extrusion.x == 0 && extrusion.y == 0 && extrusion.z >= 0;
    return !isUpright;
}

/// Whether two vectors have the same or opposite directions, but for rounding.
bool isAlong(const Vector& a, const Vector& b) {
    constexpr double rounding = 1e-9;
    const double lengths = lengthOf(a) * lengthOf(b);
    return lengths > 0 && lengthOf(a.cross(b)) <= rounding * lengths;
}

std::uint16_t colourOf(std::int64_t colour) {
    // Of a layer that is off, or of nothing known.
    if (colour < 0) {
        colour = colour >= -255 ? -colour : std::int64_t{colourByLayer};
    }
    return colour <= 256 ? static_cast<std::uint16_t>(colour) : colourByLayer;
}

std::int32_t trueColourOf(std::int64_t colour) {
    return colour >= 0 ? static_cast<std::int32_t>(colour & 0xFFFFFF) : noTrueColour;
}

/// The z of a point in old files may stand in a group of its own.
double elevationOf(const EntityGroups& groups) {
    return groups.has(Slot::z) ? groups.real(Slot::z) : groups.real(Slot::elevation);
}

bool isFinite(std::initializer_list<double> numbers) {
    return std::all_of(numbers.begin(), numbers.end(),
                       [](double number) { return std::isfinite(number); });
}

} // namespace

void EntityBuilder::beginContents(ContentsOf owner) {
    m_owner = owner;
    m_contents.firstEntity = m_drawing.entities.size();
    m_contents.firstNotDrawn = m_drawing.notDrawn.size();
    m_notDrawnNumbers.clear();
}

Contents EntityBuilder::endContents() {
    m_contents.endEntity = m_drawing.entities.size();
    m_contents.endNotDrawn = m_drawing.notDrawn.size();
    return m_contents;
}

int EntityBuilder::flagsOf(const EntityAttributes& attributes) const {
    const bool isInPaperSpace =
        m_owner == ContentsOf::paperSpace ||
        (attributes.tellsSpace ? attributes.isInPaperSpace : attributes.isOwnedByPaperSpace);
    return (attributes.isInvisible ? entityFlag::invisible : 0) |
           (isInPaperSpace ? entityFlag::paperSpace : 0);
}

void EntityBuilder::add(EntityKind kind, const EntityGroups& groups, std::size_t data, int flags) {
    const EntityAttributes& attributes = groups.attributes;
    m_drawing.entities.push_back({attributes.handle, data, attributes.layer,
                                  trueColourOf(attributes.trueColour), colourOf(attributes.colour),
                                  kind, static_cast<std::uint8_t>(flagsOf(attributes) | flags)});
}

void EntityBuilder::addNotDrawn(const EntityAttributes& attributes, std::string_view kind,
                                LeftOutReason reason) {
    const std::uint32_t number = m_drawing.kindNames.numberOf(withoutBlanks(kind));
    const auto flags = static_cast<std::uint8_t>(flagsOf(attributes));
    const auto [known, isNew] = m_notDrawnNumbers.emplace(
        std::tuple(number, attributes.layer, reason, flags), m_drawing.notDrawn.size());
    if (isNew) {
        m_drawing.notDrawn.push_back(
            {number, attributes.layer, 0, reason, flags, m_drawing.entities.size()});
    }
    ++m_drawing.notDrawn[known->second].number;
}

void EntityBuilder::addBroken(EntityKind kind, const EntityGroups& groups) {
    addNotDrawn(groups.attributes, nameOf(kind), LeftOutReason::broken);
}

/// Adds an entity of these numbers.
bool EntityBuilder::appendNumbers(EntityKind kind, const EntityGroups& groups,
                                  std::initializer_list<double> numbers) {
    const bool extruded =
        kind != EntityKind::point && kind != EntityKind::line && isExtruded(groups);
    const Vector extrusion = extrusionOf(groups);
    if (!isFinite(numbers) || (extruded && !isFinite({extrusion.x, extrusion.y, extrusion.z}))) {
        addBroken(kind, groups);
        return false;
    }
    const std::size_t data = m_drawing.numbers.size();
    if (extruded) {
        m_drawing.numbers.insert(m_drawing.numbers.end(), {extrusion.x, extrusion.y, extrusion.z});
    }
    m_drawing.numbers.insert(m_drawing.numbers.end(), numbers);
    add(kind, groups, data, extruded ? entityFlag::extruded : 0);
    return true;
}

void EntityBuilder::addPoint(const EntityGroups& groups) {
    if (!groups.hasAny(slotSet(Slot::x, Slot::y))) {
        return addBroken(EntityKind::point, groups);
    }
    appendNumbers(EntityKind::point, groups,
                  {groups.real(Slot::x), groups.real(Slot::y), elevationOf(groups)});
}

void EntityBuilder::addLine(const EntityGroups& groups) {
    if (!groups.hasAny(slotSet(Slot::x, Slot::y)) ||
        !groups.hasAny(slotSet(Slot::endX, Slot::endY))) {
        return addBroken(EntityKind::line, groups);
    }
    const double endZ =
        groups.has(Slot::endZ) ? groups.real(Slot::endZ) : groups.real(Slot::elevation);
    appendNumbers(EntityKind::line, groups,
                  {groups.real(Slot::x), groups.real(Slot::y), elevationOf(groups),
                   groups.real(Slot::endX), groups.real(Slot::endY), endZ});
}

namespace {

/// Circles and arcs smaller than this have no extent.
constexpr double leastRadius = 1e-12;

bool hasRadius(const EntityGroups& groups) {
    return groups.hasAny(slotSet(Slot::x, Slot::y)) &&
           std::abs(groups.real(Slot::number40)) > leastRadius;
}

} // namespace

void EntityBuilder::addCircle(const EntityGroups& groups) {
    if (!hasRadius(groups)) {
        return addBroken(EntityKind::circle, groups);
    }
    appendNumbers(EntityKind::circle, groups,
                  {groups.real(Slot::x), groups.real(Slot::y), elevationOf(groups),
                   groups.real(Slot::number40)});
}

void EntityBuilder::addArc(const EntityGroups& groups) {
    constexpr double fullTurnInDegrees = 360;
    const Point centre(groups.real(Slot::x), groups.real(Slot::y), elevationOf(groups));
    const double radius = groups.real(Slot::number40);
    const double start = groups.real(Slot::angle50);
    const double end = groups.real(Slot::angle51, fullTurnInDegrees);
    if (!hasRadius(groups) || !circularArc(centre, radius, start, end)) {
        return addBroken(EntityKind::arc, groups);
    }
    appendNumbers(EntityKind::arc, groups, {centre.x, centre.y, centre.z, radius, start, end});
}

/// A ratio of 0 is taken as one that is nearly 0, as other readers have it. One above 1 is what it
/// says: the axis called major is the shorter one.
void EntityBuilder::addEllipse(const EntityGroups& groups) {
    constexpr double leastRatio = 1e-6;
    const Point centre(groups.real(Slot::x), groups.real(Slot::y), groups.real(Slot::z));
    const Vector major(groups.real(Slot::endX), groups.real(Slot::endY), groups.real(Slot::endZ));
    const double given = groups.real(Slot::number40, 1);
    const double ratio = std::copysign(std::max(std::abs(given), leastRatio), given);
    const double start = groups.real(Slot::number41);
    const double end = groups.real(Slot::number42, fullTurn);
    if (!groups.hasAny(slotSet(Slot::x, Slot::y)) || !(lengthOf(major) > leastRadius) ||
        std::isnan(given) || isAlong(extrusionOf(groups), major) ||
        !ellipse(centre, major, ratio, extrusionOf(groups), start, end)) {
        return addBroken(EntityKind::ellipse, groups);
    }
    appendNumbers(EntityKind::ellipse, groups,
                  {centre.x, centre.y, centre.z, major.x, major.y, major.z, ratio, start, end});
}

void EntityBuilder::addLwPolyline(const EntityGroups& groups,
                                  const std::vector<PolylineVertex>& vertices) {
    addPlanePolyline(EntityKind::lwpolyline, groups, vertices, groups.real(Slot::elevation));
}

void EntityBuilder::addPolyline(const EntityGroups& groups,
                                const std::vector<PolylineVertex>& vertices) {
    if ((groups.flags & (polylineFlag::polygonMesh | polylineFlag::polyfaceMesh)) != 0) {
        return addNotDrawn(groups.attributes, nameOf(EntityKind::polyline), LeftOutReason::mesh);
    }
    const auto isOfSpline = [](const PolylineVertex& vertex) {
        return (vertex.flags & vertexFlag::ofSpline) != 0;
    };
    const bool isFitted = (groups.flags & polylineFlag::splineFit) != 0 ||
                          std::any_of(vertices.begin(), vertices.end(), isOfSpline);
    m_curveVertices.clear();
    std::copy_if(vertices.begin(), vertices.end(), std::back_inserter(m_curveVertices),
                 [isFitted](const PolylineVertex& vertex) {
                     return !isFitted || (vertex.flags & vertexFlag::splineFrame) == 0;
                 });
    // A frame that nothing was fitted to is all there is.
    const std::vector<PolylineVertex>& drawn = m_curveVertices.empty() ? vertices : m_curveVertices;
    if ((groups.flags & polylineFlag::inSpace) != 0) {
        return addSpacePolyline(groups, drawn);
    }
    const bool hasElevation = groups.has(Slot::z) || groups.has(Slot::elevation) || drawn.empty();
    addPlanePolyline(EntityKind::polyline, groups, drawn,
                     hasElevation ? elevationOf(groups) : drawn.front().z);
}

void EntityBuilder::addPlanePolyline(EntityKind kind, const EntityGroups& groups,
                                     const std::vector<PolylineVertex>& vertices,
                                     double elevation) {
    const bool isWhole =
        std::all_of(vertices.begin(), vertices.end(), [](const PolylineVertex& vertex) {
            return isFinite({vertex.x, vertex.y, vertex.bulge});
        });
    if (vertices.empty() || !isWhole) {
        return addBroken(kind, groups);
    }
    if (!appendNumbers(kind, groups, {static_cast<double>(vertices.size()), elevation})) {
        return;
    }
    std::vector<double>& numbers = m_drawing.numbers;
    for (const PolylineVertex& vertex : vertices) {
        numbers.push_back(vertex.x);
        numbers.push_back(vertex.y);
    }
    const bool isBulged =
        std::any_of(vertices.begin(), vertices.end(),
                    [](const PolylineVertex& vertex) { return vertex.bulge != 0; });
    if (isBulged) {
        for (const PolylineVertex& vertex : vertices) {
            numbers.push_back(vertex.bulge);
        }
    }
    const bool isClosed = (groups.flags & polylineFlag::closed) != 0;
    m_drawing.entities.back().flags |= static_cast<std::uint8_t>(
        (isClosed ? entityFlag::closed : 0) | (isBulged ? entityFlag::bulged : 0));
}

void EntityBuilder::addSpacePolyline(const EntityGroups& groups,
                                     const std::vector<PolylineVertex>& vertices) {
    const bool isWhole =
        std::all_of(vertices.begin(), vertices.end(), [](const PolylineVertex& vertex) {
            return isFinite({vertex.x, vertex.y, vertex.z});
        });
    if (vertices.empty() || !isWhole) {
        return addBroken(EntityKind::polyline3d, groups);
    }
    std::vector<double>& numbers = m_drawing.numbers;
    const std::size_t data = numbers.size();
    numbers.push_back(static_cast<double>(vertices.size()));
    for (const PolylineVertex& vertex : vertices) {
        numbers.insert(numbers.end(), {vertex.x, vertex.y, vertex.z});
    }
    const bool isClosed = (groups.flags & polylineFlag::closed) != 0;
    add(EntityKind::polyline3d, groups, data, isClosed ? entityFlag::closed : 0);
}

namespace {

/// A direction that is given; one without length is none.
std::optional<Vector> direction(const EntityGroups& groups, Slot x, Slot y, Slot z) {
    const Vector given(groups.real(x), groups.real(y), groups.real(z));
    const bool isGiven = groups.hasAny(slotSet(x, y, z)) && given != Vector(0, 0, 0);
    return isGiven ? std::optional<Vector>(given) : std::nullopt;
}

} // namespace

void EntityBuilder::addSpline(const EntityGroups& groups, std::string_view kind,
                              SplineDefinition definition) {
    constexpr std::int64_t closed = 1;
    constexpr std::int64_t periodic = 2;
    constexpr std::int64_t cubic = 3;
    definition.closed = (groups.flags & closed) != 0;
    definition.periodic = (groups.flags & periodic) != 0;
    definition.degree = static_cast<long>(groups.count.value_or(cubic));
    definition.startTangent =
        direction(groups, Slot::startTangentX, Slot::startTangentY, Slot::startTangentZ);
    definition.endTangent =
        direction(groups, Slot::endTangentX, Slot::endTangentY, Slot::endTangentZ);
    std::optional<BSpline> spline = splineFrom(std::move(definition));
    if (!spline) {
        return addNotDrawn(groups.attributes, kind, LeftOutReason::broken);
    }
    m_drawing.splines.push_back(std::move(*spline));
    add(EntityKind::spline, groups, m_drawing.splines.size() - 1);
}

namespace {

/// How many there are of an array, in a direction where they are so far apart.
std::uint32_t arrayCount(std::int64_t count, double spacing) {
    constexpr std::int64_t most = 0xFFFFFFFF;
    return spacing == 0 ? 1 : static_cast<std::uint32_t>(std::clamp<std::int64_t>(count, 1, most));
}

} // namespace

/// A scale of 0 in z leaves the plan; one in x or y does not.
void EntityBuilder::addInsert(const EntityGroups& groups) {
    Insert insert{};
    InsertPlacement& placement = insert.placement;
    placement.point = {groups.real(Slot::x), groups.real(Slot::y), elevationOf(groups)};
    placement.scale = {groups.real(Slot::number41, 1), groups.real(Slot::number42, 1),
                       groups.real(Slot::number43, 1)};
    placement.rotation = groups.real(Slot::angle50);
    placement.extrusion = isExtruded(groups) ? extrusionOf(groups) : Vector(0, 0, 1);
    insert.block = m_drawing.blockNames.numberOf(withoutBlanks(groups.name));
    insert.columnSpacing = groups.real(Slot::number44);
    insert.rowSpacing = groups.real(Slot::number45);
    insert.columns = arrayCount(groups.flags, insert.columnSpacing);
    insert.rows = arrayCount(groups.count.value_or(1), insert.rowSpacing);
    insert.dictionary = groups.attributes.dictionary;
    const bool isWhole = isFinite({placement.point.x, placement.point.y, placement.point.z,
                                   placement.scale.x, placement.scale.y, placement.scale.z,
                                   placement.rotation, placement.extrusion.x, placement.extrusion.y,
                                   placement.extrusion.z, insert.columnSpacing, insert.rowSpacing});
    if (!isWhole || placement.scale.x == 0 || placement.scale.y == 0) {
        return addBroken(EntityKind::insert, groups);
    }
    m_drawing.inserts.push_back(insert);
    add(EntityKind::insert, groups, m_drawing.inserts.size() - 1);
}

} // namespace converters::drawing
