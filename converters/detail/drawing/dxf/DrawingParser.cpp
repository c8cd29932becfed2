#include "converters/detail/drawing/dxf/DrawingParser.h"

#include "base/LargePages.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/BinaryGroups.h"
#include "converters/detail/drawing/dxf/EntityNames.h"
#include "converters/detail/drawing/dxf/EntityParser.h"
#include "converters/detail/drawing/dxf/Numbers.h"
#include "converters/detail/drawing/dxf/ObjectReader.h"
#include "converters/detail/drawing/dxf/SpaceNames.h"
#include "converters/detail/drawing/dxf/TextGroups.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

namespace converters::drawing {

namespace {

/// Whether an object is an entity that draws something to follow.
bool isDrawn(ObjectKind kind) {
    return kind >= ObjectKind::point && kind <= ObjectKind::insert;
}

/// Reads the sections of a text or of a binary file.
template <typename Groups>
class DrawingParser {
public:
    DrawingParser(input::ByteWindow file, Drawing& drawing, const Progress& progress)
        : m_objects(std::move(file), progress), m_groups(m_objects.groups()), m_drawing(drawing),
          m_entities(m_objects, drawing) {}

    void parse();
    bool hasSections() const { return m_hasSections; }
    bool hasEnd() const { return m_hasEnd; }
    const Groups& groups() const { return m_groups; }

private:
    void readSection();
    void readHeader();
    void readTables();
    void readLayer();
    void readBlockRecord();
    void readBlocks();
    void readBlock();
    void listStray();
    void readObjects();
    void readDictionary();
    void readSpatialFilter();
    void findClippingDictionaries();

    ObjectReader<Groups> m_objects;
    Groups& m_groups;
    Drawing& m_drawing;
    EntityParser<Groups> m_entities;
    bool m_hasSections = false;
    bool m_hasEnd = false;
    /// Dictionaries and their owners.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_dictionaries;
    /// The owners of clipping boundaries.
    std::vector<std::uint64_t> m_filterOwners;
};

template <typename Groups>
void DrawingParser<Groups>::parse() {
    // The number of the layer of entities that name none.
    m_drawing.layerNames.numberOf("0");
    m_objects.skipObject();
    while (m_objects.hasObject() && !m_hasEnd) {
        if (m_objects.kind() == ObjectKind::section) {
            m_hasSections = true;
            readSection();
        } else if (m_objects.kind() == ObjectKind::endOfFile) {
            m_hasEnd = true;
        } else {
            listStray();
        }
    }
    findClippingDictionaries();
}

template <typename Groups>
void DrawingParser<Groups>::readSection() {
    // A comment may come before the name.
    std::string name;
    while (name.empty() && m_objects.nextGroup()) {
        if (m_groups.code() == 2) {
            name = m_objects.trimmedText();
        }
    }
    if (beginsWith(name, "HEADER") && m_objects.hasObject()) {
        return readHeader();
    }
    if (m_objects.hasObject() && m_groups.code() == 0) {
        return m_objects.beginObject();
    }
    m_objects.skipObject();
    if (beginsWith(name, "TABLES")) {
        readTables();
    } else if (beginsWith(name, "BLOCKS")) {
        readBlocks();
    } else if (beginsWith(name, "ENTITIES")) {
        m_entities.builder().beginContents(ContentsOf::drawing);
        m_entities.readEntities();
        m_drawing.stretches.push_back(m_entities.builder().endContents());
    } else if (beginsWith(name, "OBJECTS")) {
        readObjects();
    }
}

template <typename Groups>
void DrawingParser<Groups>::readHeader() {
    Header& header = m_drawing.header;
    std::string variable;
    while (m_objects.nextGroup()) {
        const int code = m_groups.code();
        if (code == 9) {
            variable = m_objects.trimmedText();
        } else if (code == 1 && variable == "$ACADVER") {
            header.release = m_objects.trimmedText();
        } else if (code == 3 && variable == "$DWGCODEPAGE") {
            header.codePage = m_objects.trimmedText();
        } else if (code == 70 && variable == "$INSUNITS") {
            header.units = m_groups.integer();
        } else if (code == 70 && variable == "$MEASUREMENT") {
            header.isImperial = m_groups.integer() == 0;
        }
    }
    m_objects.beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readTables() {
    while (m_objects.isInSection()) {
        if (m_objects.kind() == ObjectKind::layer) {
            readLayer();
        } else if (m_objects.kind() == ObjectKind::blockRecord) {
            readBlockRecord();
        } else {
            m_objects.skipObject();
        }
    }
}

template <typename Groups>
void DrawingParser<Groups>::readLayer() {
    std::string name;
    std::int64_t colour = 7;
    std::int64_t flags = 0;
    std::int32_t trueColour = noTrueColour;
    while (m_objects.nextGroup()) {
        switch (m_groups.code()) {
        case 2:
            name = m_objects.trimmedText();
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
    m_objects.beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readBlockRecord() {
    std::uint64_t handle = 0;
    std::string name;
    while (m_objects.nextGroup()) {
        if (m_groups.code() == 5) {
            handle = handleOf(m_groups.text());
        } else if (m_groups.code() == 2) {
            name = m_objects.trimmedText();
        }
    }
    if (isPaperSpace(name) && handle != 0) {
        m_entities.addPaperSpace(handle);
    }
    m_objects.beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readBlocks() {
    while (m_objects.isInSection()) {
        if (m_objects.kind() == ObjectKind::block) {
            readBlock();
        } else {
            listStray();
        }
    }
}

/// Passes over an object, or entities, that stand where none belong: in no section that is known,
/// or in no block.
template <typename Groups>
void DrawingParser<Groups>::listStray() {
    if (!isDrawn(m_objects.kind())) {
        return m_objects.skipObject();
    }
    m_entities.builder().beginContents(ContentsOf::drawing);
    while (m_objects.hasObject() && isDrawn(m_objects.kind())) {
        m_entities.listStray();
    }
    m_drawing.stretches.push_back(m_entities.builder().endContents());
}

template <typename Groups>
void DrawingParser<Groups>::readBlock() {
    constexpr std::int64_t externalReference = 4 | 8;
    const EntityGroups& head = m_entities.readBlockHead();
    const std::string name(withoutBlanks(head.name));
    Block block{};
    block.base = {head.real(Slot::x), head.real(Slot::y), head.real(Slot::z)};
    block.isExternal = (head.flags & externalReference) != 0;
    const ContentsOf owner = isPaperSpace(name)   ? ContentsOf::paperSpace
                             : isModelSpace(name) ? ContentsOf::drawing
                                                  : ContentsOf::block;
    m_entities.builder().beginContents(owner);
    m_entities.readEntities();
    block.contents = m_entities.builder().endContents();
    if (owner != ContentsOf::block) {
        m_drawing.stretches.push_back(block.contents);
        return;
    }
    block.name = m_drawing.blockNames.numberOf(name);
    m_drawing.blocks.push_back(block);
}

template <typename Groups>
void DrawingParser<Groups>::readObjects() {
    while (m_objects.isInSection()) {
        if (m_objects.kind() == ObjectKind::dictionary) {
            readDictionary();
        } else if (m_objects.kind() == ObjectKind::spatialFilter) {
            readSpatialFilter();
        } else {
            m_objects.skipObject();
        }
    }
}

template <typename Groups>
void DrawingParser<Groups>::readDictionary() {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    while (m_objects.nextGroup()) {
        if (m_groups.code() == 5) {
            handle = handleOf(m_groups.text());
        } else if (m_groups.code() == 330) {
            // The last one: those of reactors come before.
            owner = handleOf(m_groups.text());
        }
    }
    m_dictionaries.emplace_back(handle, owner);
    m_objects.beginObject();
}

template <typename Groups>
void DrawingParser<Groups>::readSpatialFilter() {
    std::uint64_t owner = 0;
    bool isShown = true;
    while (m_objects.nextGroup()) {
        if (m_groups.code() == 330) {
            owner = handleOf(m_groups.text());
        } else if (m_groups.code() == 71) {
            isShown = m_groups.integer() != 0;
        }
    }
    if (isShown) {
        m_filterOwners.push_back(owner);
    }
    m_objects.beginObject();
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
    if (groups.decimalCommas() == 1) {
        drawing.notes.emplace_back("1 number has a decimal comma; it is read as a point");
    } else if (groups.decimalCommas() > 1) {
        drawing.notes.push_back(std::to_string(groups.decimalCommas()) +
                                " numbers have a decimal comma; it is read as a point");
    }
}

/// Asks for as much memory as files of short numbers need, so that most need no more. What is not
/// used is not touched.
void reserveFor(std::uint64_t size, Drawing& drawing) {
    constexpr std::uint64_t bytesPerEntity = 64;
    constexpr std::uint64_t bytesPerNumber = 20;
    // Whoever gives the file piece by piece may be wrong about its size.
    constexpr std::uint64_t mostBelieved = std::uint64_t{1} << 30;
    size = std::min(size, mostBelieved);
    base::reserveLarge(drawing.entities, size / bytesPerEntity);
    base::reserveLarge(drawing.numbers, size / bytesPerNumber);
}

template <typename Groups>
Drawing parseGroups(input::ByteWindow file, const Progress& progress) {
    Drawing drawing;
    reserveFor(file.size(), drawing);
    DrawingParser<Groups> parser(std::move(file), drawing, progress);
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

Drawing parseDrawing(input::ByteWindow file, const Progress& progress) {
    if (!file.need(1)) {
        throw Refusal{"the file is empty"};
    }
    if (BinaryGroups::isBinary(file)) {
        return parseGroups<BinaryGroups>(std::move(file), progress);
    }
    constexpr std::string_view binaryDrawing = "AC10";
    if (file.need(binaryDrawing.size()) &&
        std::string_view(file.begin(), binaryDrawing.size()) == binaryDrawing) {
        throw Refusal{"no DXF file: it begins as a DWG file does"};
    }
    return parseGroups<TextGroups>(std::move(file), progress);
}

} // namespace converters::drawing
