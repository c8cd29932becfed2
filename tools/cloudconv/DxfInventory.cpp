#include "tools/cloudconv/DxfInventory.h"

#include "dxfeditor/text/DxfGroups.h"
#include "dxfeditor/text/DxfObjects.h"
#include "tools/cloudconv/DxfText.h"

#include <array>

namespace {

using dxfeditor::DxfObject;
using dxfeditor::DxfObjectKind;

/// The value of the object's first group of this code; empty when there is none.
std::string_view valueOf(const DxfObject& object, int code) {
    dxfeditor::DxfGroups groups(object.groups);
    dxfeditor::DxfGroup group;
    while (groups.next(group)) {
        if (group.code == code) {
            return trimmed(group.value);
        }
    }
    return {};
}

std::string unitName(int number) {
    constexpr std::array<const char*, 8> names = {"", "in", "ft", "mi", "mm", "cm", "m", "km"};
    return number > 0 && number < static_cast<int>(names.size())
               ? names[static_cast<std::size_t>(number)]
               : "";
}

bool isRead(DxfObjectKind kind) {
    switch (kind) {
    case DxfObjectKind::Point:
    case DxfObjectKind::Line:
    case DxfObjectKind::Circle:
    case DxfObjectKind::Arc:
    case DxfObjectKind::Polyline:
    case DxfObjectKind::LwPolyline:
    case DxfObjectKind::Spline:
        return true;
    default:
        return false;
    }
}

/// A part of an entity, or a mark, that is not counted by itself.
bool isPart(const DxfObject& object) {
    return object.kind == DxfObjectKind::Vertex || object.kind == DxfObjectKind::SequenceEnd ||
           object.name == "ENDSEC" || object.name == "EOF" || object.name == "ATTRIB";
}

class StockTaking {
public:
    void take(const DxfObject& object) {
        if (object.name == "SECTION") {
            m_section = valueOf(object, 2);
        } else if (object.name == "$ACADVER") {
            m_found.version = valueOf(object, 1);
        } else if (object.name == "$INSUNITS") {
            m_found.unit = unitName(dxfeditor::dxfInteger(valueOf(object, 70)));
        } else if (object.kind == DxfObjectKind::Block) {
            m_inBlock = true;
        } else if (object.kind == DxfObjectKind::BlockEnd) {
            m_inBlock = false;
        } else if (!isPart(object)) {
            count(object);
        }
    }

    DxfInventory result() const { return m_found; }

private:
    void count(const DxfObject& object) {
        const std::string name(trimmed(object.name));
        if (m_inBlock) {
            ++m_found.inBlocks[name];
        } else if (isRead(object.kind)) {
            ++m_found.read[name];
        } else if (m_section == "ENTITIES") {
            ++m_found.ignored[name];
        }
    }

    DxfInventory m_found;
    std::string m_section;
    bool m_inBlock = false;
};

} // namespace

DxfInventory inventoryOf(std::string_view text) {
    StockTaking taking;
    dxfeditor::DxfObjects objects(text.substr(0, text.find('\0')));
    DxfObject object;
    while (objects.next(object)) {
        if (object.complete) {
            taking.take(object);
        }
    }
    return taking.result();
}
