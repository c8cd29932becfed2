#pragma once

#include "dxfeditor/text/DxfObjects.h"

#include <dxflib/dl_attributes.h>
#include <dxflib/dl_entities.h>

#include <array>
#include <bitset>
#include <cstddef>
#include <string_view>
#include <vector>

class DL_CreationInterface;

namespace dxfeditor {

/// Decodes points, lines, circles, arcs and polylines in dxflib's place, at many times its speed,
/// as long as their numbers are plain: digits, with a minus sign, a point and an exponent at most,
/// perhaps between blanks, within the range of a double. Anything else is dxflib's business, a plus
/// sign in front included.
///
/// What decode() accepts, report() reports as dxflib does: the same callbacks with the same records
/// and attributes in the same order.
class DxfEntityDecoder {
public:
    /// Whether report() can be called for the object; `following` are the objects behind it. Of a
    /// POLYLINE this looks at the vertices too, up to its SEQEND.
    bool decode(const DxfObject& object, const DxfObjects& following);

    /// Reports the object decoded last; a POLYLINE with its vertices, which are taken from the
    /// `following` objects.
    void report(DL_CreationInterface& reader, DxfObjects& following);

private:
    /// The last value of each group, in the slots of slotOf().
    static constexpr std::size_t slots = 96;
    static std::size_t slotOf(int code);

    bool decodeOne(const DxfObject& object);
    bool decodeSequence(DxfObjects following);
    void reportOne(DL_CreationInterface& reader) const;
    void collect(std::string_view groups);
    bool has(int code) const { return m_has[slotOf(code)]; }
    double real(int code, double fallback = 0.0);
    /// Reads the number at the start of `text`; one that is not plain makes the object not plain.
    double real(std::string_view text);
    int integer(int code, int fallback) const;
    int handle();
    void decodeAttributes(int elevationCode);
    void decodePolyline(int vertexCount);
    void decodeVertices(std::string_view groups);

    std::array<std::string_view, slots> m_values;
    std::bitset<slots> m_has;
    bool m_plain = true;

    DxfObjectKind m_kind = DxfObjectKind::Other;
    DL_Attributes m_attributes;
    /// Extrusion direction and elevation.
    std::array<double, 4> m_extrusion{};
    /// What the entity's record has, in the order of its constructor.
    std::array<double, 6> m_numbers{};
    /// The vertex carries a face of a mesh and no point: dxflib does not report it.
    bool m_isFace = false;
    DL_PolylineData m_polyline{0, 0, 0, 0};
    std::vector<DL_VertexData> m_vertices;
};

} // namespace dxfeditor
