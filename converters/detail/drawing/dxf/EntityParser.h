#pragma once

#include "converters/detail/drawing/dxf/EntityBuilder.h"
#include "converters/detail/drawing/dxf/EntityGroups.h"
#include "converters/detail/drawing/dxf/EntityNames.h"
#include "converters/detail/drawing/dxf/Numbers.h"
#include "converters/detail/drawing/dxf/ObjectReader.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace converters::drawing {

/// Reads entities, each kind by a function of its own.
template <typename Groups>
class EntityParser {
public:
    EntityParser(ObjectReader<Groups>& objects, Drawing& drawing)
        : m_objects(objects), m_groups(objects.groups()), m_drawing(drawing), m_builder(drawing) {}

    EntityBuilder& builder() { return m_builder; }

    /// What owns an entity by this handle is paper space.
    void addPaperSpace(std::uint64_t handle) { m_paperSpaces.push_back(handle); }

    /// Reads entities up to the end of the block or the section.
    void readEntities();

    /// Counts an entity that stands where none of its kind belongs.
    void listStray();

    /// The groups of a BLOCK, which are like those of an entity.
    const EntityGroups& readBlockHead();

private:
    void readEntity();
    void readOther();
    void readPolyline();
    void readLwPolyline();
    void readVertex();
    void readSpline();
    bool readSplineNumber(SplineDefinition& definition);
    void readGroups(Slots wanted);
    bool readAttribute();
    bool isPaperSpace(std::uint64_t owner) const;
    bool skipRest();
    bool skipApplicationData();

    static constexpr int subclassMarker = 100;
    static constexpr int embeddedObject = 101;
    static constexpr int applicationData = 102;
    static constexpr int hardOwner = 360;
    /// The first group of what programs add to an entity.
    static constexpr int applicationName = 1001;

    static constexpr Slots planePoint = slotSet(Slot::x, Slot::y, Slot::z, Slot::elevation);
    static constexpr Slots extrusion =
        slotSet(Slot::extrusionX, Slot::extrusionY, Slot::extrusionZ);
    static constexpr Slots lineSlots = planePoint | slotSet(Slot::endX, Slot::endY, Slot::endZ);
    static constexpr Slots arcSlots =
        planePoint | extrusion | slotSet(Slot::number40, Slot::angle50, Slot::angle51);
    static constexpr Slots ellipseSlots =
        lineSlots | extrusion | slotSet(Slot::number40, Slot::number41, Slot::number42);
    static constexpr Slots tangentSlots =
        slotSet(Slot::startTangentX, Slot::startTangentY, Slot::startTangentZ, Slot::endTangentX,
                Slot::endTangentY, Slot::endTangentZ);
    static constexpr Slots insertSlots = planePoint | extrusion |
                                         slotSet(Slot::number41, Slot::number42, Slot::number43,
                                                 Slot::number44, Slot::number45, Slot::angle50);

    ObjectReader<Groups>& m_objects;
    Groups& m_groups;
    Drawing& m_drawing;
    EntityBuilder m_builder;
    EntityGroups m_entity;
    std::vector<PolylineVertex> m_vertices;
    std::vector<std::uint64_t> m_paperSpaces;
};

template <typename Groups>
void EntityParser<Groups>::readEntities() {
    while (m_objects.isInSection() && m_objects.kind() != ObjectKind::block &&
           m_objects.kind() != ObjectKind::endOfBlock) {
        readEntity();
    }
}

template <typename Groups>
void EntityParser<Groups>::listStray() {
    const std::string kind = m_objects.name();
    m_entity.clear();
    readGroups(0);
    m_builder.addNotDrawn(m_entity.attributes, kind, LeftOutReason::broken);
}

template <typename Groups>
const EntityGroups& EntityParser<Groups>::readBlockHead() {
    m_entity.clear();
    readGroups(planePoint);
    return m_entity;
}

template <typename Groups>
void EntityParser<Groups>::readEntity() {
    m_entity.clear();
    switch (m_objects.kind()) {
    case ObjectKind::point:
        readGroups(planePoint);
        return m_builder.addPoint(m_entity);
    case ObjectKind::line:
        readGroups(lineSlots);
        return m_builder.addLine(m_entity);
    case ObjectKind::circle:
        readGroups(arcSlots);
        return m_builder.addCircle(m_entity);
    case ObjectKind::arc:
        readGroups(arcSlots);
        return m_builder.addArc(m_entity);
    case ObjectKind::ellipse:
        readGroups(ellipseSlots);
        return m_builder.addEllipse(m_entity);
    case ObjectKind::insert:
        readGroups(insertSlots);
        return m_builder.addInsert(m_entity);
    case ObjectKind::lwpolyline:
        return readLwPolyline();
    case ObjectKind::polyline:
        return readPolyline();
    case ObjectKind::spline:
    case ObjectKind::helix:
        return readSpline();
    case ObjectKind::vertex:
        return listStray();
    case ObjectKind::nothing:
        return m_objects.skipObject();
    default:
        return readOther();
    }
}

/// Reads the groups of an entity; of the numbers, those that are wanted.
template <typename Groups>
void EntityParser<Groups>::readGroups(Slots wanted) {
    while (m_objects.nextGroup()) {
        const Slot slot = slotOf(m_groups.code());
        if (slot == Slot::none) {
            if (!readAttribute()) {
                break;
            }
        } else if ((wanted & bitOf(slot)) != 0) {
            m_entity.set(slot, m_groups.real());
        }
    }
    m_objects.beginObject();
}

template <typename Groups>
bool EntityParser<Groups>::isPaperSpace(std::uint64_t owner) const {
    return std::find(m_paperSpaces.begin(), m_paperSpaces.end(), owner) != m_paperSpaces.end();
}

/// Takes a group that holds no number of a shape.
/// @return false when the rest of the entity was skipped
template <typename Groups>
bool EntityParser<Groups>::readAttribute() {
    EntityAttributes& attributes = m_entity.attributes;
    switch (m_groups.code()) {
    case 2:
        m_entity.name = m_groups.text();
        break;
    case 5:
        attributes.handle = handleOf(m_groups.text());
        break;
    case 8:
        attributes.layer = m_drawing.layerNames.numberOf(m_objects.trimmedText());
        attributes.hasLayer = true;
        break;
    case 60:
        attributes.isInvisible = (m_groups.integer() & 1) != 0;
        break;
    case 62:
        attributes.colour = m_groups.integer();
        break;
    case 67:
        attributes.tellsSpace = true;
        attributes.isInPaperSpace = m_groups.integer() != 0;
        break;
    case 70:
        m_entity.flags = m_groups.integer();
        break;
    case 71:
        m_entity.count = m_groups.integer();
        break;
    case 330:
        attributes.isOwnedByPaperSpace = isPaperSpace(handleOf(m_groups.text()));
        break;
    case 420:
        attributes.trueColour = m_groups.integer();
        break;
    case applicationData:
        return skipApplicationData();
    case embeddedObject:
    case applicationName:
        return skipRest();
    default:
        break;
    }
    return true;
}

/// Skips the rest of an entity, where codes mean something else.
/// @return false
template <typename Groups>
bool EntityParser<Groups>::skipRest() {
    while (m_objects.nextGroup()) {
    }
    return false;
}

/// Skips what a program keeps with an entity, from "{NAME" to "}": handles, nearly always. That of
/// the extension dictionary is kept.
/// @return false when the entity ends before that
template <typename Groups>
bool EntityParser<Groups>::skipApplicationData() {
    const std::string_view name = m_objects.trimmedText();
    if (name.empty() || name.front() != '{') {
        return true;
    }
    const bool isDictionary = name == "{ACAD_XDICTIONARY";
    while (m_objects.nextGroup()) {
        if (m_groups.code() == applicationData) {
            return true;
        }
        if (isDictionary && m_groups.code() == hardOwner) {
            m_entity.attributes.dictionary = handleOf(m_groups.text());
        }
    }
    return false;
}

/// Reads an entity of a kind that draws nothing to follow. An ATTDEF in a block is drawn only where
/// it is constant: what an INSERT draws of others are ATTRIBs.
template <typename Groups>
void EntityParser<Groups>::readOther() {
    constexpr std::int64_t constant = 2;
    const std::string kind = m_objects.name();
    const bool isForm = m_objects.kind() == ObjectKind::attributeDefinition;
    bool isCommon = true;
    bool goesOn = true;
    while (goesOn && m_objects.nextGroup()) {
        const int code = m_groups.code();
        if (code == subclassMarker) {
            // What all entities have ends where the data of the kind begin.
            isCommon = m_objects.trimmedText() == "AcDbEntity";
        } else if (isCommon || (code == 8 && !m_entity.attributes.hasLayer) ||
                   (code == 70 && isForm)) {
            goesOn = readAttribute();
        }
    }
    m_objects.beginObject();
    if (!isForm || !m_builder.isInBlock() || (m_entity.flags & constant) != 0) {
        m_builder.addNotDrawn(m_entity.attributes, kind, reasonOf(kind));
    }
}

template <typename Groups>
void EntityParser<Groups>::readPolyline() {
    readGroups(planePoint | extrusion);
    m_vertices.clear();
    while (m_objects.hasObject() && m_objects.kind() == ObjectKind::vertex) {
        readVertex();
    }
    m_builder.addPolyline(m_entity, m_vertices);
}

template <typename Groups>
void EntityParser<Groups>::readVertex() {
    PolylineVertex& vertex = m_vertices.emplace_back();
    bool goesOn = true;
    while (goesOn && m_objects.nextGroup()) {
        switch (m_groups.code()) {
        case 10:
            vertex.x = m_groups.real();
            break;
        case 20:
            vertex.y = m_groups.real();
            break;
        case 30:
            vertex.z = m_groups.real();
            break;
        case 42:
            vertex.bulge = m_groups.real();
            break;
        case 70:
            vertex.flags = m_groups.integer();
            break;
        case applicationData:
            goesOn = skipApplicationData();
            break;
        case applicationName:
            goesOn = skipRest();
            break;
        default:
            break;
        }
    }
    m_objects.beginObject();
}

template <typename Groups>
void EntityParser<Groups>::readLwPolyline() {
    m_vertices.clear();
    bool goesOn = true;
    while (goesOn && m_objects.nextGroup()) {
        const int code = m_groups.code();
        if (code == 10) {
            m_vertices.emplace_back().x = m_groups.real();
        } else if (code == 20 && !m_vertices.empty()) {
            m_vertices.back().y = m_groups.real();
        } else if (code == 42 && !m_vertices.empty()) {
            m_vertices.back().bulge = m_groups.real();
        } else if (code == 38 || code == 210 || code == 220 || code == 230) {
            m_entity.set(slotOf(code), m_groups.real());
        } else {
            goesOn = readAttribute();
        }
    }
    m_objects.beginObject();
    m_builder.addLwPolyline(m_entity, m_vertices);
}

/// A SPLINE, or a HELIX, which is one with more data behind it.
template <typename Groups>
void EntityParser<Groups>::readSpline() {
    const std::string kind = m_objects.name();
    SplineDefinition definition;
    bool goesOn = true;
    while (goesOn && m_objects.nextGroup()) {
        if (m_groups.code() == subclassMarker) {
            goesOn = m_objects.trimmedText() != "AcDbHelix" || skipRest();
        } else if (!readSplineNumber(definition)) {
            goesOn = readAttribute();
        }
    }
    m_objects.beginObject();
    m_builder.addSpline(m_entity, kind, std::move(definition));
}

/// Takes a group that holds a number of a spline.
/// @return false for others
template <typename Groups>
bool EntityParser<Groups>::readSplineNumber(SplineDefinition& definition) {
    const int code = m_groups.code();
    const int axis = code / 10;
    if (code == 10 || code == 11) {
        auto& points = code == 10 ? definition.controlPoints : definition.fitPoints;
        points.emplace_back(m_groups.real(), 0, 0);
        return true;
    }
    if ((axis == 2 || axis == 3) && code % 10 < 2) {
        auto& points = code % 10 == 0 ? definition.controlPoints : definition.fitPoints;
        if (!points.empty()) {
            (axis == 2 ? points.back().y : points.back().z) = m_groups.real();
        }
        return true;
    }
    if (code == 72 || code == 73) {
        // A hint only: counts lie.
        constexpr std::int64_t mostBelieved = 256;
        const auto number =
            static_cast<std::size_t>(std::clamp<std::int64_t>(m_groups.integer(), 0, mostBelieved));
        code == 72 ? definition.knots.reserve(number) : definition.controlPoints.reserve(number);
        return true;
    }
    if (code == 40 || code == 41) {
        (code == 40 ? definition.knots : definition.weights).push_back(m_groups.real());
        return true;
    }
    const Slot slot = slotOf(code);
    if (slot == Slot::none || (tangentSlots & bitOf(slot)) == 0) {
        return false;
    }
    m_entity.set(slot, m_groups.real());
    return true;
}

} // namespace converters::drawing
