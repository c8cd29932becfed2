#include "dxfeditor/text/DxfObjects.h"

#include <array>
#include <cstddef>
#include <utility>

namespace dxfeditor {

namespace {

constexpr std::array<std::pair<std::string_view, DxfObjectKind>, 13> kindsByName = {{
    {"POINT", DxfObjectKind::Point},
    {"LINE", DxfObjectKind::Line},
    {"VERTEX", DxfObjectKind::Vertex},
    {"CIRCLE", DxfObjectKind::Circle},
    {"ARC", DxfObjectKind::Arc},
    {"LWPOLYLINE", DxfObjectKind::LwPolyline},
    {"POLYLINE", DxfObjectKind::Polyline},
    {"SEQEND", DxfObjectKind::SequenceEnd},
    {"SPLINE", DxfObjectKind::Spline},
    {"BLOCK", DxfObjectKind::Block},
    {"ENDBLK", DxfObjectKind::BlockEnd},
    {"LAYER", DxfObjectKind::Layer},
    {"LTYPE", DxfObjectKind::LineType},
}};

/// As dxflib compares names: to the byte, blanks included.
DxfObjectKind kindOf(std::string_view name) {
    for (const auto& [knownName, kind] : kindsByName) {
        if (name == knownName) {
            return kind;
        }
    }
    return DxfObjectKind::Other;
}

} // namespace

DxfObjects::DxfObjects(std::string_view text) : m_groups(text) {
    skipToObject();
}

bool DxfObjects::next(DxfObject& object) {
    if (!m_found) {
        return false;
    }
    object.kind = kindOf(m_begin.value);
    object.name = m_begin.value;
    object.groups = skipToObject();
    object.complete = m_found;
    return true;
}

std::string_view DxfObjects::skipToObject() {
    const std::string_view text = m_groups.rest();
    std::size_t passed = 0;
    m_found = false;
    while (!m_found && m_groups.next(m_begin)) {
        m_found = m_begin.beginsObject();
        if (!m_found) {
            passed = text.size() - m_groups.rest().size();
        }
    }
    return text.substr(0, passed);
}

} // namespace dxfeditor
