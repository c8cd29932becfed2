#include "dxfeditor/detail/reading/DxfEntityDecoder.h"

#include "dxfeditor/detail/reading/DxfCountedList.h"

#include <dxflib/dl_creationinterface.h>

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>

namespace dxfeditor {

namespace {

constexpr std::size_t noSlot = 95;

bool isDigitOrPoint(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

bool DxfEntityDecoder::decode(const DxfObject& object, const DxfObjects& following) {
    switch (object.kind) {
    case DxfObjectKind::Point:
    case DxfObjectKind::Line:
    case DxfObjectKind::Circle:
    case DxfObjectKind::Arc:
    case DxfObjectKind::LwPolyline:
        return decodeOne(object);
    case DxfObjectKind::Polyline:
        return decodeSequence(following) && decodeOne(object);
    default:
        return false;
    }
}

/// Whether there are vertices and then a SEQEND. With anything else between or behind, the order in
/// which things end is not plain.
bool DxfEntityDecoder::decodeSequence(DxfObjects following) {
    DxfObject object;
    bool hasVertices = false;
    while (following.next(object) && object.kind == DxfObjectKind::Vertex) {
        if (!decodeOne(object)) {
            return false;
        }
        hasVertices = true;
    }
    return hasVertices && object.kind == DxfObjectKind::SequenceEnd;
}

void DxfEntityDecoder::report(DL_CreationInterface& reader, DxfObjects& following) {
    reportOne(reader);
    if (m_kind != DxfObjectKind::Polyline) {
        return;
    }
    DxfObjects ahead = following;
    for (DxfObject vertex; ahead.next(vertex) && vertex.kind == DxfObjectKind::Vertex;) {
        decodeOne(vertex);
        reportOne(reader);
        following = ahead;
    }
    reader.endEntity();
}

bool DxfEntityDecoder::decodeOne(const DxfObject& object) {
    if (!object.complete) {
        return false;
    }
    m_kind = object.kind;
    m_plain = true;
    collect(object.groups);
    decodeAttributes(m_kind == DxfObjectKind::LwPolyline ? 38 : 30);
    switch (m_kind) {
    case DxfObjectKind::Point:
        m_numbers = {real(10), real(20), real(30)};
        break;
    case DxfObjectKind::Line:
        m_numbers = {real(10), real(20), real(30), real(11), real(21), real(31)};
        break;
    case DxfObjectKind::Circle:
        m_numbers = {real(10), real(20), real(30), real(40)};
        break;
    case DxfObjectKind::Arc:
        m_numbers = {real(10), real(20), real(30), real(40), real(50), real(51)};
        break;
    case DxfObjectKind::Vertex:
        m_numbers = {real(10), real(20), real(30), real(42)};
        m_isFace = (integer(70, 0) & 192) == 128;
        break;
    case DxfObjectKind::Polyline:
        decodePolyline(0);
        break;
    default:
        decodeVertices(object.groups);
        break;
    }
    return m_plain;
}

void DxfEntityDecoder::reportOne(DL_CreationInterface& reader) const {
    reader.setAttributes(m_attributes);
    reader.setExtrusion(m_extrusion[0], m_extrusion[1], m_extrusion[2], m_extrusion[3]);
    const auto& n = m_numbers;
    switch (m_kind) {
    case DxfObjectKind::Point:
        reader.addPoint(DL_PointData(n[0], n[1], n[2]));
        break;
    case DxfObjectKind::Line:
        reader.addLine(DL_LineData(n[0], n[1], n[2], n[3], n[4], n[5]));
        break;
    case DxfObjectKind::Circle:
        reader.addCircle(DL_CircleData(n[0], n[1], n[2], n[3]));
        break;
    case DxfObjectKind::Arc:
        reader.addArc(DL_ArcData(n[0], n[1], n[2], n[3], n[4], n[5]));
        break;
    case DxfObjectKind::Vertex:
        if (!m_isFace) {
            reader.addVertex(DL_VertexData(n[0], n[1], n[2], n[3]));
        }
        break;
    case DxfObjectKind::Polyline:
        reader.addPolyline(m_polyline);
        break;
    default:
        reader.addPolyline(m_polyline);
        for (const DL_VertexData& vertex : m_vertices) {
            reader.addVertex(vertex);
        }
        reader.endEntity();
        break;
    }
    reader.endSection();
}

std::size_t DxfEntityDecoder::slotOf(int code) {
    switch (code) {
    case 210:
        return 90;
    case 220:
        return 91;
    case 230:
        return 92;
    case 370:
        return 93;
    case 420:
        return 94;
    default:
        return code >= 0 && code < 90 ? static_cast<std::size_t>(code) : noSlot;
    }
}

void DxfEntityDecoder::collect(std::string_view groups) {
    m_has.reset();
    DxfGroups walk(groups);
    for (DxfGroup group; walk.next(group);) {
        const std::size_t slot = slotOf(group.code);
        m_values[slot] = group.value;
        m_has.set(slot);
    }
}

double DxfEntityDecoder::real(int code, double fallback) {
    return has(code) ? real(m_values[slotOf(code)]) : fallback;
}

double DxfEntityDecoder::real(std::string_view text) {
    text = withoutBlanks(text);
    const std::size_t first = !text.empty() && text.front() == '-' ? 1 : 0;
    double number = 0.0;
    // Neither "inf" nor "nan" nor a plus sign, on which dxflib and from_chars differ.
    if (text.size() > first && isDigitOrPoint(text[first])) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error == std::errc() && end == text.data() + text.size()) {
            return number;
        }
    }
    m_plain = false;
    return 0.0;
}

int DxfEntityDecoder::integer(int code, int fallback) const {
    return has(code) ? dxfInteger(m_values[slotOf(code)]) : fallback;
}

int DxfEntityDecoder::handle() {
    if (!has(5)) {
        return -1;
    }
    const std::string_view digits = m_values[5];
    std::uint64_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    // Sixteen digits may not fit dxflib's signed number.
    if (error != std::errc() || end != digits.data() + digits.size() || digits.size() > 15) {
        m_plain = false;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

void DxfEntityDecoder::decodeAttributes(int elevationCode) {
    const auto text = [&](int code, std::string_view fallback) {
        return std::string(has(code) ? m_values[slotOf(code)] : fallback);
    };
    // The thickness is what old programs wrote in place of a line width.
    const int width = integer(370, integer(39, -1));
    m_attributes = DL_Attributes(text(8, "0"), integer(62, 256), integer(420, -1), width,
                                 text(6, "BYLAYER"), handle());
    m_attributes.setInPaperSpace(integer(67, 0) != 0);
    m_attributes.setLinetypeScale(real(48, 1.0));
    m_extrusion = {real(210), real(220), real(230, 1.0), real(elevationCode)};
}

void DxfEntityDecoder::decodePolyline(int vertexCount) {
    m_polyline =
        DL_PolylineData(vertexCount, integer(71, 0), integer(72, 0), integer(70, 0), real(38));
}

void DxfEntityDecoder::decodeVertices(std::string_view groups) {
    const DxfCountedList list(lwPolylineVertices, groups);
    const int count = list.count();
    decodePolyline(count);
    m_vertices.clear();
    DxfGroups walk(groups);
    for (DxfGroup group; walk.next(group);) {
        if (!lwPolylineVertices.members.contains(group.code) || !list.takes(group)) {
            continue;
        }
        // Values beyond the count go into the last vertex; those before the first go nowhere.
        if (group.code == 10 && static_cast<int>(m_vertices.size()) < count) {
            m_vertices.emplace_back();
        }
        const double number = real(group.value);
        if (m_vertices.empty()) {
            continue;
        }
        DL_VertexData& vertex = m_vertices.back();
        (group.code == 10   ? vertex.x
         : group.code == 20 ? vertex.y
         : group.code == 30 ? vertex.z
                            : vertex.bulge) = number;
    }
}

} // namespace dxfeditor
