#include "dxfeditor/detail/reading/DxfIntake.h"

#include "dxfeditor/detail/reading/DxfRecordGroups.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace dxfeditor {

namespace {

/// An object that dxflib does not know.
constexpr std::string_view unknownObject = "DROPPED";

/// A vertex that carries a face of a mesh and no point.
constexpr std::string_view faceRecordFlags = "128";

bool isReal(int code) {
    return (code >= 10 && code <= 59) || (code >= 210 && code <= 239);
}

bool isBlank(std::string_view value) {
    return value.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos;
}

} // namespace

DxfIntake::DxfIntake(std::string_view text)
    : m_textEnd(text.data() + text.size()), m_padding(text.size() / 4) {}

void DxfIntake::append(const DxfObject& object) {
    if (!object.complete && object.kind != DxfObjectKind::Vertex) {
        m_dropped = true;
        return;
    }
    switch (object.kind) {
    case DxfObjectKind::Other:
        m_dropped = true;
        return;
    case DxfObjectKind::SequenceEnd:
        endPolyline();
        m_dropped = true;
        return;
    case DxfObjectKind::Vertex:
        return appendVertex(object);
    case DxfObjectKind::Polyline:
        write(object, polylineGroups);
        m_polyline = Polyline::WithoutVertices;
        m_polylineGroups = object.groups;
        return;
    case DxfObjectKind::LwPolyline:
        return write(object, lwPolylineGroups, {DxfCountedList(lwPolylineVertices, object.groups)});
    case DxfObjectKind::Spline:
        return write(object, splineGroups,
                     {DxfCountedList(splineKnots, object.groups),
                      DxfCountedList(splineControlPoints, object.groups),
                      DxfCountedList(splineFitPoints, object.groups)});
    case DxfObjectKind::Layer:
        return write(object, layerGroups);
    case DxfObjectKind::LineType:
        return write(object, lineTypeGroups);
    case DxfObjectKind::Block:
        return write(object, blockGroups);
    case DxfObjectKind::BlockEnd:
        return write(object, commonGroups);
    case DxfObjectKind::Point:
        return write(object, pointGroups);
    case DxfObjectKind::Line:
        return write(object, lineGroups);
    case DxfObjectKind::Circle:
        return write(object, circleGroups);
    case DxfObjectKind::Arc:
        return write(object, arcGroups);
    }
}

void DxfIntake::close() {
    if (m_polyline == Polyline::CutShort) {
        // The vertex before is reported, the polyline does not end.
        writeGroup(0, "VERTEX");
        return;
    }
    endPolyline();
    writeGroup(0, unknownObject);
    m_dropped = false;
}

void DxfIntake::appendVertex(const DxfObject& vertex) {
    if (m_polyline == Polyline::None) {
        m_dropped = true;
    } else if (vertex.complete) {
        // Whatever was dropped between vertices stays dropped without a trace: it would end the
        // polyline here and once more behind the vertices that follow.
        writeGroup(0, vertex.name);
        writeGroups(vertex.groups, vertexGroups);
        m_polyline = Polyline::WithVertices;
    } else if (!m_dropped) {
        m_polyline = Polyline::CutShort;
    }
}

void DxfIntake::endPolyline() {
    if (m_polyline == Polyline::WithoutVertices) {
        writeGroup(0, "VERTEX");
        writeGroup(70, faceRecordFlags);
        writeGroups(m_polylineGroups, attributeGroups);
    }
    m_polyline = Polyline::None;
}

void DxfIntake::begin(std::string_view name) {
    endPolyline();
    if (m_dropped) {
        writeGroup(0, unknownObject);
        m_dropped = false;
    }
    writeGroup(0, name);
}

void DxfIntake::write(const DxfObject& object, const DxfGroupSet& taken) {
    begin(object.name);
    writeGroups(object.groups, taken);
}

void DxfIntake::write(const DxfObject& entity, const DxfGroupSet& taken,
                      std::initializer_list<DxfCountedList> lists) {
    begin(entity.name);
    for (const DxfCountedList& list : lists) {
        writeGroup(list.countCode(), std::to_string(list.count(m_textEnd, m_padding)));
    }
    DxfGroups groups(entity.groups);
    for (DxfGroup group; groups.next(group);) {
        const auto takes = [&](const DxfCountedList& list) { return list.takes(group); };
        if (taken.contains(group.code) && std::all_of(lists.begin(), lists.end(), takes)) {
            writeGroup(group.code, group.value);
        }
    }
}

void DxfIntake::writeGroups(std::string_view groups, const DxfGroupSet& taken) {
    DxfGroups walk(groups);
    for (DxfGroup group; walk.next(group);) {
        if (taken.contains(group.code)) {
            writeGroup(group.code, group.value);
        }
    }
}

void DxfIntake::writeGroup(int code, std::string_view value) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), code).ptr;
    m_output.append(digits.data(), end);
    m_output += '\n';
    m_output += isReal(code) && isBlank(value) ? std::string_view("0") : value;
    m_output += '\n';
}

} // namespace dxfeditor
