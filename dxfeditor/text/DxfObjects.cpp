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

} // namespace

DxfObjects::DxfObjects(std::string_view text) : m_groups(text), m_found(true) {
    DxfObject beforeTheFirst;
    next(beforeTheFirst);
}

DxfObjectKind DxfObjects::kindOf(std::string_view name) {
    for (const auto& [knownName, kind] : kindsByName) {
        if (name == knownName) {
            return kind;
        }
    }
    return DxfObjectKind::Other;
}

} // namespace dxfeditor
