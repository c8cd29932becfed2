#include "converters/detail/drawing/dxf/DrawingParser.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/BinaryGroups.h"
#include "converters/detail/drawing/dxf/EntityBuilder.h"
#include "converters/detail/drawing/dxf/EntityGroups.h"
#include "converters/detail/drawing/dxf/EntityNames.h"
#include "converters/detail/drawing/dxf/Numbers.h"
#include "converters/detail/drawing/dxf/TextGroups.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

namespace converters::drawing {

namespace {

constexpr int subclassMarker = 100;
constexpr int embeddedObject = 101;
constexpr int applicationData = 102;
constexpr int hardOwner = 360;
/// The first group of what programs add to an entity.
constexpr int applicationName = 1001;

constexpr Slots planePoint = slotSet(Slot::x, Slot::y, Slot::z, Slot::elevation);
constexpr Slots extrusion = slotSet(Slot::extrusionX, Slot::extrusionY, Slot::extrusionZ);
constexpr Slots lineSlots = planePoint | slotSet(Slot::endX, Slot::endY, Slot::endZ);
constexpr Slots arcSlots =
    planePoint | extrusion | slotSet(Slot::number40, Slot::angle50, Slot::angle51);
constexpr Slots ellipseSlots =
    lineSlots | extrusion | slotSet(Slot::number40, Slot::number41, Slot::number42);
constexpr Slots tangentSlots =
    slotSet(Slot::startTangentX, Slot::startTangentY, Slot::startTangentZ, Slot::endTangentX,
            Slot::endTangentY, Slot::endTangentZ);
constexpr Slots insertSlots = planePoint | extrusion |
                              slotSet(Slot::number41, Slot::number42, Slot::number43,
                                      Slot::number44, Slot::number45, Slot::angle50);

/// Whether a name begins like this, which is in lower case.
bool beginsWith(std::string_view name, std::string_view start) {
    return name.size() >= start.size() &&
           std::equal(start.begin(), start.end(), name.begin(), [](char expected, char c) {
               return expected == (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
           });
}

bool isModelSpace(std::string_view block) {
    return beginsWith(block, "*model_space") || beginsWith(block, "$model_space");
}

bool isPaperSpace(std::string_view block) {
    return beginsWith(block, "*paper_space") || beginsWith(block, "$paper_space");
}

/// Reads the groups of a text or of a binary file.
///
/// Each function that reads an object is called on its first group, the one with code 0, and
/// leaves the groups on the first group of the next object.
template <typename Groups>
class DrawingParser {
public:
    DrawingParser(std::string_view file, Drawing& drawing, const Progress& progress)
        : m_groups(file), m_drawing(drawing), m_progress(progress), m_builder(drawing) {}

    void parse();
    bool hasSections() const { return m_hasSections; }
    bool hasEnd() const { return m_hasEnd; }
    const Groups& groups() const { return m_groups; }

private:
    bool nextGroup() {
        m_hasGroup = m_groups.next();
        return m_hasGroup && m_groups.code() != 0;
    }
    void skipObject() {
        while (nextGroup()) {
        }
        beginObject();
    }
    void beginObject();
    bool isInSection() const {
        return m_hasGroup && m_kind != ObjectKind::section && m_kind != ObjectKind::endOfSection &&
               m_kind != ObjectKind::endOfFile;
    }
    std::string_view trimmedText() { return withoutBlanks(m_groups.text()); }

    void readSection();
    void readHeader();
    void readTables();
    void readLayer();
    void readBlockRecord();
    void readBlocks();
    void readBlock();
    void readObjects();
    void readDictionary();
    void readSpatialFilter();
    void findClippingDictionaries();
    void readEntities();
    void readEntity();
    void readOther();
    void readPolyline();
    void readLwPolyline();
    void readVertex();
    void readSpline();
    bool readSplineNumber(SplineDefinition& definition);
    void readGroups(Slots wanted);
    bool readAttribute();
    bool skipRest();
    bool skipApplicationData();

    Groups m_groups;
    Drawing& m_drawing;
    const Progress& m_progress;
    EntityBuilder m_builder;
    EntityGroups m_entity;
    std::vector<PolylineVertex> m_vertices;
    /// The object that the groups are on.
    std::string_view m_name;
    ObjectKind m_kind = ObjectKind::other;
    bool m_hasGroup = true;
    bool m_hasSections = false;
    bool m_hasEnd = false;
    std::uint64_t m_objects = 0;
    /// Handles of block records of paper space.
    std::vector<std::string_view> m_paperSpaces;
    /// Objects and their owners: dictionaries, and spatial filters.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_dictionaries;
    std::vector<std::uint64_t> m_filterOwners;
};

template <typename Groups>
void DrawingParser<Groups>::beginObject() {
    if (!m_hasGroup) {
        return;
    }
    m_name = m_groups.text();
    m_kind = objectKindOf(m_name);
    constexpr std::uint64_t objectsPerReport = 1 << 13;
    if (++m_objects % objectsPerReport == 0) {
        m_progress.report(static_cast<double>(m_groups.position()) /
                          static_cast<double>(m_groups.size()));
    }
}

template <typename Groups>
void DrawingParser<Groups>::parse() {
    // The number of the layer of entities that name none.
    m_drawing.layerNames.numberOf("0");
    skipObject();
    while (m_hasGroup && !m_hasEnd) {
        if (m_kind == ObjectKind::section) {
            m_hasSections = true;
            readSection();
        } else if (m_kind == ObjectKind::endOfFile) {
            m_hasEnd = true;
        } else {
            skipObject();
        }
    }
    findClippingDictionaries();
}

template <typename Groups>
void DrawingParser<Groups>::readSection() {
    std::string_view name;
    if (nextGroup() && m_groups.code() == 2) {
        name = trimmedText();
    }
    if (beginsWith(name, "header") && m_hasGroup) {
        return readHeader();
    }
    if (m_hasGroup && m_groups.code() == 0) {
        return beginObject();
    }
    skipObject();
    if (beginsWith(name, "tables")) {
        readTables();
    } else if (beginsWith(name, "blocks")) {
        readBlocks();
    } else if (beginsWith(name, "entities")) {
        m_builder.beginContents(ContentsOf::drawing);
        readEntities();
        m_drawing.stretches.push_back(m_builder.endContents());
    } else if (beginsWith(name, "objects")) {
        readObjects();
    }
}

template <typename Groups>
void DrawingParser<Groups>::readHeader() {
    Header& header = m_drawing.header;
    std::string_view variable;
    while (nextGroup()) {
        const int code = m_groups.code();
        if (code == 9) {
            variable = trimmedText();
        } else if (code == 1 && variable == "$ACADVER") {
            header.release = trimmedText();
        } else if (code == 3 && variable == "$DWGCODEPAGE") {
            header.codePage = trimmedText();
        } else if (code == 70 && variable == "$INSUNITS") {
            header.units = m_groups.integer();
        } else if (code == 70 && variable == "$MEASUREMENT") {
            header.isImperial = m_groups.integer() == 0;
        }
    }
    beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readTables() {
    while (isInSection()) {
        if (m_kind == ObjectKind::layer) {
            readLayer();
        } else if (m_kind == ObjectKind::blockRecord) {
            readBlockRecord();
        } else {
            skipObject();
        }
    }
}

template <typename Groups>
void DrawingParser<Groups>::readLayer() {
    std::string_view name;
    std::int64_t colour = 7;
    std::int64_t flags = 0;
    std::int32_t trueColour = noTrueColour;
    while (nextGroup()) {
        switch (m_groups.code()) {
        case 2:
            name = trimmedText();
            break;
        case 62:
            colour = m_groups.integer();
            break;
        case 70:
            flags = m_groups.integer();
            break;
        case 420:
            trueColour = static_cast<std::int32_t>(m_groups.integer() & 0xFFFFFF);
            break;
        default:
            break;
        }
    }
    constexpr std::int64_t frozen = 1;
    const std::int64_t index = colour < 0 && colour >= -255 ? -colour : colour;
    m_drawing.layers.push_back({m_drawing.layerNames.numberOf(name),
                                static_cast<std::uint16_t>(index >= 1 && index <= 255 ? index : 7),
                                trueColour, colour < 0, (flags & frozen) != 0});
    beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readBlockRecord() {
    std::string_view handle;
    std::string_view name;
    while (nextGroup()) {
        if (m_groups.code() == 5) {
            handle = trimmedText();
        } else if (m_groups.code() == 2) {
            name = trimmedText();
        }
    }
    if (isPaperSpace(name) && !handle.empty()) {
        m_paperSpaces.push_back(handle);
    }
    beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readBlocks() {
    while (isInSection()) {
        if (m_kind == ObjectKind::block) {
            readBlock();
        } else {
            skipObject();
        }
    }
}

template <typename Groups>
void DrawingParser<Groups>::readBlock() {
    constexpr std::int64_t externalReference = 4 | 8;
    m_entity.clear();
    readGroups(planePoint);
    const std::string_view name = withoutBlanks(m_entity.name);
    Block block{};
    block.base = {m_entity.real(Slot::x), m_entity.real(Slot::y), m_entity.real(Slot::z)};
    block.isExternal = (m_entity.flags & externalReference) != 0;
    const ContentsOf owner = isPaperSpace(name)   ? ContentsOf::paperSpace
                             : isModelSpace(name) ? ContentsOf::drawing
                                                  : ContentsOf::block;
    m_builder.beginContents(owner);
    readEntities();
    block.contents = m_builder.endContents();
    if (owner != ContentsOf::block) {
        m_drawing.stretches.push_back(block.contents);
        return;
    }
    block.name = m_drawing.blockNames.numberOf(name);
    m_drawing.blocks.push_back(block);
}

template <typename Groups>
void DrawingParser<Groups>::readObjects() {
    while (isInSection()) {
        if (m_kind == ObjectKind::dictionary) {
            readDictionary();
        } else if (m_kind == ObjectKind::spatialFilter) {
            readSpatialFilter();
        } else {
            skipObject();
        }
    }
}

template <typename Groups>
void DrawingParser<Groups>::readDictionary() {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    while (nextGroup()) {
        if (m_groups.code() == 5) {
            handle = handleOf(m_groups.text());
        } else if (m_groups.code() == 330) {
            // The last one: those of reactors come before.
            owner = handleOf(m_groups.text());
        }
    }
    m_dictionaries.emplace_back(handle, owner);
    beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readSpatialFilter() {
    std::uint64_t owner = 0;
    bool isShown = true;
    while (nextGroup()) {
        if (m_groups.code() == 330) {
            owner = handleOf(m_groups.text());
        } else if (m_groups.code() == 71) {
            isShown = m_groups.integer() != 0;
        }
    }
    if (isShown) {
        m_filterOwners.push_back(owner);
    }
    beginObject();
}

/// A filter is owned by the dictionary ACAD_FILTER, and that by the extension dictionary of the
/// INSERT that it clips.
template <typename Groups>
void DrawingParser<Groups>::findClippingDictionaries() {
    std::sort(m_dictionaries.begin(), m_dictionaries.end());
    for (const std::uint64_t filterOwner : m_filterOwners) {
        const auto dictionary =
            std::lower_bound(m_dictionaries.begin(), m_dictionaries.end(),
                             std::pair<std::uint64_t, std::uint64_t>(filterOwner, 0));
        if (dictionary != m_dictionaries.end() && dictionary->first == filterOwner) {
            m_drawing.clippingDictionaries.push_back(dictionary->second);
        }
    }
    std::sort(m_drawing.clippingDictionaries.begin(), m_drawing.clippingDictionaries.end());
}

/// Reads entities up to the end of the block or the section.
template <typename Groups>
void DrawingParser<Groups>::readEntities() {
    while (isInSection() && m_kind != ObjectKind::block && m_kind != ObjectKind::endOfBlock) {
        readEntity();
    }
}

template <typename Groups>
void DrawingParser<Groups>::readEntity() {
    m_entity.clear();
    switch (m_kind) {
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
    case ObjectKind::nothing:
        return skipObject();
    default:
        return readOther();
    }
}

/// Reads the groups of an entity; of the numbers, those that are wanted.
template <typename Groups>
void DrawingParser<Groups>::readGroups(Slots wanted) {
    while (nextGroup()) {
        const int code = m_groups.code();
        if (code > 0 && code < slotCodes) {
            const Slot slot = slotTable[static_cast<std::size_t>(code)];
            if (slot != Slot::none) {
                if ((wanted & bitOf(slot)) != 0) {
                    m_entity.set(slot, m_groups.real());
                }
                continue;
            }
        }
        if (!readAttribute()) {
            break;
        }
    }
    beginObject();
}

/// Takes a group that holds no number of a shape.
/// @return false when the rest of the entity was skipped
template <typename Groups>
bool DrawingParser<Groups>::readAttribute() {
    EntityAttributes& attributes = m_entity.attributes;
    switch (m_groups.code()) {
    case 2:
        m_entity.name = m_groups.text();
        break;
    case 5:
        attributes.handle = m_groups.text();
        break;
    case 8:
        attributes.layer = m_drawing.layerNames.numberOf(trimmedText());
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
        attributes.isOwnedByPaperSpace =
            !m_paperSpaces.empty() && std::find(m_paperSpaces.begin(), m_paperSpaces.end(),
                                                trimmedText()) != m_paperSpaces.end();
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
bool DrawingParser<Groups>::skipRest() {
    while (nextGroup()) {
    }
    return false;
}

/// Skips what a program keeps with an entity, from "{NAME" to "}": handles, nearly always. That of
/// the extension dictionary is kept.
/// @return false when the entity ends before that
template <typename Groups>
bool DrawingParser<Groups>::skipApplicationData() {
    const std::string_view name = trimmedText();
    if (name.empty() || name.front() != '{') {
        return true;
    }
    const bool isDictionary = name == "{ACAD_XDICTIONARY";
    while (nextGroup()) {
        if (m_groups.code() == applicationData) {
            return true;
        }
        if (isDictionary && m_groups.code() == hardOwner) {
            m_entity.attributes.dictionary = m_groups.text();
        }
    }
    return false;
}

/// Reads an entity of a kind that draws nothing to follow. An ATTDEF in a block is drawn only where
/// it is constant: what an INSERT draws of others are ATTRIBs.
template <typename Groups>
void DrawingParser<Groups>::readOther() {
    constexpr std::int64_t constant = 2;
    const std::string_view kind = m_name;
    const bool isForm = m_kind == ObjectKind::attributeDefinition;
    bool isCommon = true;
    bool goesOn = true;
    while (goesOn && nextGroup()) {
        const int code = m_groups.code();
        if (code == subclassMarker) {
            // What all entities have ends where the data of the kind begin.
            isCommon = trimmedText() == "AcDbEntity";
        } else if (isCommon || (code == 8 && !m_entity.attributes.hasLayer) ||
                   (code == 70 && isForm)) {
            goesOn = readAttribute();
        }
    }
    beginObject();
    if (!isForm || !m_builder.isInBlock() || (m_entity.flags & constant) != 0) {
        m_builder.addNotDrawn(m_entity.attributes, kind, reasonOf(kind));
    }
}

template <typename Groups>
void DrawingParser<Groups>::readPolyline() {
    readGroups(planePoint | extrusion);
    m_vertices.clear();
    while (m_hasGroup && m_kind == ObjectKind::vertex) {
        readVertex();
    }
    m_builder.addPolyline(m_entity, m_vertices);
}

template <typename Groups>
void DrawingParser<Groups>::readVertex() {
    PolylineVertex& vertex = m_vertices.emplace_back();
    while (nextGroup()) {
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
        default:
            break;
        }
    }
    beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readLwPolyline() {
    m_vertices.clear();
    bool goesOn = true;
    while (goesOn && nextGroup()) {
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
    beginObject();
    m_builder.addLwPolyline(m_entity, m_vertices);
}

/// A SPLINE, or a HELIX, which is one with more data behind it.
template <typename Groups>
void DrawingParser<Groups>::readSpline() {
    const std::string_view kind = m_name;
    SplineDefinition definition;
    bool goesOn = true;
    while (goesOn && nextGroup()) {
        if (m_groups.code() == subclassMarker) {
            goesOn = trimmedText() != "AcDbHelix" || skipRest();
        } else if (!readSplineNumber(definition)) {
            goesOn = readAttribute();
        }
    }
    beginObject();
    m_builder.addSpline(m_entity, kind, std::move(definition));
}

/// Takes a group that holds a number of a spline.
/// @return false for others
template <typename Groups>
bool DrawingParser<Groups>::readSplineNumber(SplineDefinition& definition) {
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
    if (code == 40 || code == 41) {
        (code == 40 ? definition.knots : definition.weights).push_back(m_groups.real());
        return true;
    }
    if (code > 0 && code < slotCodes) {
        const Slot slot = slotTable[static_cast<std::size_t>(code)];
        if (slot != Slot::none && (tangentSlots & bitOf(slot)) != 0) {
            m_entity.set(slot, m_groups.real());
            return true;
        }
    }
    return false;
}

/// What is assumed about a file that is not quite as it should be.
template <typename Groups>
void addNotes(const DrawingParser<Groups>& parser, Drawing& drawing) {
    const Groups& groups = parser.groups();
    if (!parser.hasEnd()) {
        drawing.notes.emplace_back("the file has no end mark; it may be cut short");
    }
    if (groups.skippedLines() == 1) {
        drawing.notes.emplace_back("1 line is no part of any group and was skipped");
    } else if (groups.skippedLines() > 1) {
        drawing.notes.push_back(std::to_string(groups.skippedLines()) +
                                " lines are no part of any group and were skipped");
    }
    if (groups.decimalCommas() > 0) {
        drawing.notes.push_back(std::to_string(groups.decimalCommas()) +
                                " numbers have a decimal comma; it is read as a point");
    }
}

/// Asks for as much memory as files of short numbers need, so that most need no more. What is not
/// used is not touched.
void reserveFor(std::size_t size, Drawing& drawing) {
    constexpr std::size_t bytesPerEntity = 64;
    constexpr std::size_t bytesPerNumber = 20;
    base::reserveLarge(drawing.entities, size / bytesPerEntity);
    base::reserveLarge(drawing.numbers, size / bytesPerNumber);
}

template <typename Groups>
Drawing parseGroups(std::string_view file, const Progress& progress) {
    Drawing drawing;
    reserveFor(file.size(), drawing);
    DrawingParser<Groups> parser(file, drawing, progress);
    parser.parse();
    if (std::is_same_v<Groups, BinaryGroups> && !parser.hasEnd()) {
        throw Refusal{"the file is cut short: the group at byte " +
                      std::to_string(parser.groups().position()) + " is not whole, or is missing"};
    }
    if (!parser.hasSections()) {
        throw Refusal{"no DXF file: no section begins in it"};
    }
    addNotes(parser, drawing);
    return drawing;
}

} // namespace

Drawing parseDrawing(std::string_view file, const Progress& progress) {
    if (file.empty()) {
        throw Refusal{"the file is empty"};
    }
    if (BinaryGroups::isBinary(file)) {
        return parseGroups<BinaryGroups>(file, progress);
    }
    constexpr std::string_view binaryDrawing = "AC10";
    if (file.substr(0, binaryDrawing.size()) == binaryDrawing) {
        throw Refusal{"no DXF file: it begins as a DWG file does"};
    }
    return parseGroups<TextGroups>(file, progress);
}

} // namespace converters::drawing
