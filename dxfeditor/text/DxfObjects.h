#pragma once

#include "dxfeditor/text/DxfGroups.h"

#include <string_view>

namespace dxfeditor {

/// The kinds of objects that the intake tells apart.
enum class DxfObjectKind {
    /// Nothing that the drawing model takes: texts, hatches, header variables, section marks...
    Other,
    Layer,
    LineType,
    Block,
    BlockEnd,
    Point,
    Line,
    Circle,
    Arc,
    Polyline,
    Vertex,
    SequenceEnd,
    LwPolyline,
    Spline,
};

/// One object of a DXF text: an entity, a table entry, a mark or a header variable.
struct DxfObject {
    DxfObjectKind kind = DxfObjectKind::Other;
    std::string_view name;
    /// The object's groups, without the one that begins it.
    std::string_view groups;
    /// Whether another object follows. dxflib reports an object when the next one begins: the last
    /// one of a text it never reports.
    bool complete = false;
};

/// Cuts a DXF text into its objects. Groups before the first object are passed over.
class DxfObjects {
public:
    /// @param text  must live as long as the objects are used
    explicit DxfObjects(std::string_view text);

    /// Reads the next object.
    /// @return false at the end of the text; `object` is then as it was
    bool next(DxfObject& object) {
        return next(object, [](const DxfGroup&) {});
    }

    /// The same, and hands each group of the object to `take`: what finds the object's end has all
    /// of them in its hands.
    template <typename Take>
    bool next(DxfObject& object, Take take);

    /// The kind of the next object; Other at the end of the text.
    DxfObjectKind nextKind() const { return m_found ? m_kind : DxfObjectKind::Other; }

private:
    /// As dxflib compares names: to the byte, blanks included.
    static DxfObjectKind kindOf(std::string_view name);

    DxfGroups m_groups;
    DxfCodeLines m_lines;
    /// The next object; meaningful while m_found.
    std::string_view m_name;
    DxfObjectKind m_kind = DxfObjectKind::Other;
    bool m_found = false;
};

template <typename Take>
bool DxfObjects::next(DxfObject& object, Take take) {
    if (!m_found) {
        return false;
    }
    object.kind = m_kind;
    object.name = m_name;
    m_found = false;
    // Of its own, so that it stays in registers.
    DxfGroups groups = m_groups;
    const char* const begin = groups.rest().data();
    const char* end = begin;
    for (DxfGroup group; groups.next(group, m_lines);) {
        if (group.beginsObject()) {
            m_found = true;
            m_name = group.value;
            m_kind = kindOf(group.value);
            break;
        }
        take(group);
        end = groups.rest().data();
    }
    m_groups = groups;
    object.groups = {begin, static_cast<std::size_t>(end - begin)};
    object.complete = m_found;
    return true;
}

} // namespace dxfeditor
