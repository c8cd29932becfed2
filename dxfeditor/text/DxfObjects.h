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
    bool next(DxfObject& object);

private:
    /// Passes over groups up to the next one that begins an object, which goes to m_begin.
    /// @return the text passed over
    std::string_view skipToObject();

    DxfGroups m_groups;
    /// The group that begins the next object; meaningful while m_found.
    DxfGroup m_begin;
    bool m_found = false;
};

} // namespace dxfeditor
