#include "dxfeditor/detail/reading/DxfEntityDecoder.h"

#include "dxfeditor/detail/reading/DxfCountedList.h"

#include <dxflib/dl_creationinterface.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>
#include <utility>

namespace dxfeditor {

namespace {

constexpr DxfGroupSet styleGroups = {6, 8, 39, 48, 62, 67, 210, 220, 230, 370, 420};
constexpr std::uint64_t styleSlots = dxfSlots.bitsOf(styleGroups);

constexpr double defaultWeight = 1.0;

bool isDigitOrPoint(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

/// Reads a plain number, which may stand between blanks.
bool readPlainReal(std::string_view text, double& number) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    while (begin != end && *begin == ' ') {
        ++begin;
    }
    while (begin != end && end[-1] == ' ') {
        --end;
    }
    const char* const first = begin != end && *begin == '-' ? begin + 1 : begin;
    // Neither "inf" nor "nan" nor a plus sign, on which dxflib and from_chars differ.
    if (first == end || !isDigitOrPoint(*first)) {
        return false;
    }
    const auto [behind, error] = std::from_chars(begin, end, number);
    return error == std::errc() && behind == end;
}

} // namespace

DxfEntityDecoder::DxfEntityDecoder(bool setsAlone) : m_setsAlone(setsAlone) {
    decodeStyle();
}

bool DxfEntityDecoder::next(DxfObjects& objects, DxfObject& object) {
    m_hasDecoded = false;
    switch (objects.nextKind()) {
    case DxfObjectKind::Other:
    case DxfObjectKind::LineType:
    case DxfObjectKind::Vertex: // Belongs to a POLYLINE that is not decoded, or to none.
    case DxfObjectKind::SequenceEnd:
        return objects.next(object);
    default:
        break;
    }
    if (!read(objects, object)) {
        return false;
    }
    // The POLYLINE itself first: its vertices overwrite the values that were noted of it.
    m_hasDecoded =
        decode(object) && (object.kind != DxfObjectKind::Polyline || decodeSequence(objects));
    return true;
}

/// Reads an object and notes its values.
bool DxfEntityDecoder::read(DxfObjects& objects, DxfObject& object) {
    m_values.clear();
    m_isPlain = true;
    switch (objects.nextKind()) {
    case DxfObjectKind::LwPolyline:
        m_vertices.clear();
        return objects.next(object, [this](const DxfGroup& group) { takeOfLwPolyline(group); });
    case DxfObjectKind::Spline:
        m_knots.clear();
        m_controlPoints.clear();
        m_weights.clear();
        m_fitPoints.clear();
        return objects.next(object, [this](const DxfGroup& group) { takeOfSpline(group); });
    default:
        return objects.next(object, [this](const DxfGroup& group) { m_values.set(group); });
    }
}

// Values beyond the count go into the last element of their list; those before the first element
// go nowhere.

void DxfEntityDecoder::takeOfLwPolyline(const DxfGroup& group) {
    switch (group.code) {
    case lwPolylineVertices.count:
        return m_vertices.begin(group.value);
    case 10:
        m_vertices.add({});
        return m_vertices.set(&DL_VertexData::x, real(group.value));
    case 20:
        return m_vertices.set(&DL_VertexData::y, real(group.value));
    case 30:
        return m_vertices.set(&DL_VertexData::z, real(group.value));
    case 42:
        return m_vertices.set(&DL_VertexData::bulge, real(group.value));
    default:
        return m_values.set(group);
    }
}

void DxfEntityDecoder::takeOfSpline(const DxfGroup& group) {
    switch (group.code) {
    case splineKnots.count:
        return m_knots.begin(group.value);
    case splineControlPoints.count:
        m_weights.clear();
        return m_controlPoints.begin(group.value);
    case splineFitPoints.count:
        return m_fitPoints.begin(group.value);
    case 40:
        if (m_knots.add({0.0})) {
            m_knots.set(&DL_KnotData::k, real(group.value));
        }
        return;
    case 10:
        m_controlPoints.add({0.0, 0.0, 0.0, defaultWeight});
        return m_controlPoints.set(&DL_ControlPointData::x, real(group.value));
    case 20:
        return m_controlPoints.set(&DL_ControlPointData::y, real(group.value));
    case 30:
        m_values.set(group); // The last one is the elevation, too.
        return m_controlPoints.set(&DL_ControlPointData::z, real(group.value));
    case 41:
        return m_weights.push_back(real(group.value));
    case 11:
        m_fitPoints.add({0.0, 0.0, 0.0});
        return m_fitPoints.set(&DL_FitPointData::x, real(group.value));
    case 21:
        return m_fitPoints.set(&DL_FitPointData::y, real(group.value));
    case 31:
        return m_fitPoints.set(&DL_FitPointData::z, real(group.value));
    default:
        return m_values.set(group);
    }
}

/// Makes the record of the object whose values are noted.
/// @return whether it is one that dxflib would give
bool DxfEntityDecoder::decode(const DxfObject& object) {
    if (!object.complete) {
        return false;
    }
    if (!m_values.agreeWith(m_styleValues, styleSlots)) {
        decodeStyle();
    }
    m_isPlain = m_isPlain && m_isStylePlain;
    m_kind = object.kind;
    m_handle = handle();
    m_elevation = m_kind == DxfObjectKind::LwPolyline ? real<38>() : real<30>();
    m_numbers = {real<10>(), real<20>(), m_elevation};
    switch (m_kind) {
    case DxfObjectKind::Line:
        m_numbers = {m_numbers[0], m_numbers[1], m_numbers[2], real<11>(), real<21>(), real<31>()};
        break;
    case DxfObjectKind::Circle:
        m_numbers[3] = real<40>();
        break;
    case DxfObjectKind::Arc:
        m_numbers = {m_numbers[0], m_numbers[1], m_numbers[2], real<40>(), real<50>(), real<51>()};
        break;
    case DxfObjectKind::Vertex:
        m_numbers[3] = real<42>();
        break;
    case DxfObjectKind::Polyline:
        m_polyline = polyline(0);
        break;
    case DxfObjectKind::LwPolyline:
        m_polyline = polyline(m_vertices.count());
        break;
    case DxfObjectKind::Spline:
        decodeSpline();
        break;
    default: // Points, layers, blocks and their ends
        break;
    }
    return m_isPlain;
}

/// Decodes the vertices behind a POLYLINE, up to its SEQEND. With anything else between or behind,
/// the order in which things end is not plain.
bool DxfEntityDecoder::decodeSequence(DxfObjects& objects) {
    const int handle = m_handle;
    const double elevation = m_elevation;
    m_sequenceStyles.assign(1, m_style);
    m_sequence.clear();
    DxfObjects ahead = objects;
    for (DxfObject vertex; ahead.nextKind() == DxfObjectKind::Vertex;) {
        const std::uint64_t style = m_styleNumber;
        if (!read(ahead, vertex) || !decode(vertex)) {
            return false;
        }
        if (m_styleNumber != style) {
            m_sequenceStyles.push_back(m_style);
        }
        const bool isFace = (integer<70>(0) & 192) == 128;
        m_sequence.push_back({{m_numbers[0], m_numbers[1], m_numbers[2], m_numbers[3]},
                              m_handle,
                              static_cast<std::uint32_t>(m_sequenceStyles.size() - 1),
                              isFace});
    }
    if (m_sequence.empty() || ahead.nextKind() != DxfObjectKind::SequenceEnd) {
        return false;
    }
    objects = ahead;
    m_kind = DxfObjectKind::Polyline;
    m_handle = handle;
    m_elevation = elevation;
    return true;
}

void DxfEntityDecoder::decodeStyle() {
    const bool isObjectPlain = std::exchange(m_isPlain, true);
    // The thickness is what old programs wrote in place of a line width.
    const int width = integer<370>(integer<39>(-1));
    DL_Attributes& attributes = m_style.attributes;
    attributes =
        DL_Attributes(text<8>("0"), integer<62>(256), integer<420>(-1), width, text<6>("BYLAYER"));
    attributes.setInPaperSpace(integer<67>(0) != 0);
    attributes.setLinetypeScale(real<48>(1.0));
    m_style.direction = {real<210>(), real<220>(), real<230>(1.0)};
    m_styleValues = m_values;
    ++m_styleNumber;
    m_isStylePlain = std::exchange(m_isPlain, isObjectPlain);
}

void DxfEntityDecoder::decodeSpline() {
    m_isPlain = m_isPlain && m_knots.isFull() && m_controlPoints.isFull() && m_fitPoints.isFull();
    setWeights();
    m_spline = DL_SplineData(integer<71>(3), m_knots.count(), m_controlPoints.count(),
                             m_fitPoints.count(), integer<70>(4));
    m_spline.tangentStartX = real<12>();
    m_spline.tangentStartY = real<22>();
    m_spline.tangentStartZ = real<32>();
    m_spline.tangentEndX = real<13>();
    m_spline.tangentEndY = real<23>();
    m_spline.tangentEndZ = real<33>();
}

/// Gives the weights to the control points in their own order, wherever they stood; those beyond
/// the last point go to the last point.
void DxfEntityDecoder::setWeights() {
    std::vector<DL_ControlPointData>& points = m_controlPoints.elements();
    for (std::size_t i = 0; i < m_weights.size() && !points.empty(); ++i) {
        points[std::min(i, points.size() - 1)].w = m_weights[i];
    }
}

DL_PolylineData DxfEntityDecoder::polyline(int vertexCount) {
    return {vertexCount, integer<71>(0), integer<72>(0), integer<70>(0), real<38>()};
}

void DxfEntityDecoder::report(DL_CreationInterface& reader) {
    if (m_kind == DxfObjectKind::Polyline) {
        return reportSequence(reader);
    }
    reportStyle(reader);
    const auto& n = m_numbers;
    switch (m_kind) {
    case DxfObjectKind::Point:
        reader.addPoint({n[0], n[1], n[2]});
        break;
    case DxfObjectKind::Line:
        reader.addLine({n[0], n[1], n[2], n[3], n[4], n[5]});
        break;
    case DxfObjectKind::Circle:
        reader.addCircle({n[0], n[1], n[2], n[3]});
        break;
    case DxfObjectKind::Arc:
        reader.addArc({n[0], n[1], n[2], n[3], n[4], n[5]});
        break;
    case DxfObjectKind::LwPolyline:
        reportLwPolyline(reader);
        break;
    case DxfObjectKind::Spline:
        reportSpline(reader);
        break;
    case DxfObjectKind::Layer:
        if (const std::string name = text<2>(""); !name.empty()) {
            reader.addLayer({name, integer<70>(0)});
        }
        break;
    case DxfObjectKind::Block:
        if (const std::string name = text<2>(""); !name.empty()) {
            reader.addBlock({name, integer<70>(0), n[0], n[1], n[2]});
        }
        break;
    case DxfObjectKind::BlockEnd:
        reader.endBlock();
        break;
    case DxfObjectKind::Polyline: // Reported above.
    case DxfObjectKind::Other:    // These are not decoded by themselves.
    case DxfObjectKind::LineType:
    case DxfObjectKind::Vertex:
    case DxfObjectKind::SequenceEnd:
        break;
    }
    reader.endSection();
}

/// Attributes and extrusion, which come before the record.
void DxfEntityDecoder::reportStyle(DL_CreationInterface& reader) {
    if (m_setsAlone && m_styleNumber == m_reportedStyle && m_handle == m_reportedHandle) {
        const auto& direction = m_style.direction;
        reader.setExtrusion(direction[0], direction[1], direction[2], m_elevation);
        return;
    }
    reportStyle(reader, m_style, m_handle, m_elevation);
    m_reportedStyle = m_styleNumber;
    m_reportedHandle = m_handle;
}

void DxfEntityDecoder::reportStyle(DL_CreationInterface& reader, Style& style, int handle,
                                   double elevation) {
    style.attributes.setHandle(handle);
    reader.setAttributes(style.attributes);
    const auto& direction = style.direction;
    reader.setExtrusion(direction[0], direction[1], direction[2], elevation);
}

void DxfEntityDecoder::reportSequence(DL_CreationInterface& reader) {
    reportStyle(reader, m_sequenceStyles[0], m_handle, m_elevation);
    reader.addPolyline(m_polyline);
    reader.endSection();
    for (const SequenceVertex& vertex : m_sequence) {
        reportStyle(reader, m_sequenceStyles[vertex.style], vertex.handle, vertex.data.z);
        if (!vertex.isFace) {
            reader.addVertex(vertex.data);
        }
        reader.endSection();
    }
    reader.endEntity();
    attributesWereSet();
}

void DxfEntityDecoder::reportLwPolyline(DL_CreationInterface& reader) const {
    reader.addPolyline(m_polyline);
    for (const DL_VertexData& vertex : m_vertices.elements()) {
        reader.addVertex(vertex);
    }
    reader.endEntity();
}

void DxfEntityDecoder::reportSpline(DL_CreationInterface& reader) const {
    reader.addSpline(m_spline);
    for (const DL_ControlPointData& point : m_controlPoints.elements()) {
        reader.addControlPoint(point);
    }
    for (const DL_FitPointData& point : m_fitPoints.elements()) {
        reader.addFitPoint(point);
    }
    for (const DL_KnotData& knot : m_knots.elements()) {
        reader.addKnot(knot);
    }
    reader.endEntity();
}

double DxfEntityDecoder::real(std::string_view text) {
    double number = 0.0;
    m_isPlain = readPlainReal(text, number) && m_isPlain;
    return number;
}

int DxfEntityDecoder::handle() {
    if (!m_values.has<5>()) {
        return -1;
    }
    const std::string_view digits = m_values.get<5>();
    std::uint64_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    // Sixteen digits may not fit dxflib's signed number.
    if (error != std::errc() || end != digits.data() + digits.size() || digits.size() > 15) {
        m_isPlain = false;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

} // namespace dxfeditor
