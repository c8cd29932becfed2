#include "converters/detail/drawing/dxf/EntityNames.h"

#include "converters/detail/drawing/dxf/Numbers.h"

#include <algorithm>
#include <array>

namespace converters::drawing {

namespace {

struct NamedKind {
    std::string_view name;
    ObjectKind kind;
};

/// Frequent ones first.
constexpr std::array<NamedKind, 24> kinds = {{{"LINE", ObjectKind::line},
                                              {"LWPOLYLINE", ObjectKind::lwpolyline},
                                              {"VERTEX", ObjectKind::vertex},
                                              {"ARC", ObjectKind::arc},
                                              {"INSERT", ObjectKind::insert},
                                              {"POINT", ObjectKind::point},
                                              {"CIRCLE", ObjectKind::circle},
                                              {"POLYLINE", ObjectKind::polyline},
                                              {"SEQEND", ObjectKind::nothing},
                                              {"SPLINE", ObjectKind::spline},
                                              {"ELLIPSE", ObjectKind::ellipse},
                                              {"3DLINE", ObjectKind::line},
                                              {"HELIX", ObjectKind::helix},
                                              {"VIEWPORT", ObjectKind::nothing},
                                              {"BLOCK", ObjectKind::block},
                                              {"ENDBLK", ObjectKind::endOfBlock},
                                              {"DICTIONARY", ObjectKind::dictionary},
                                              {"SPATIAL_FILTER", ObjectKind::spatialFilter},
                                              {"ATTDEF", ObjectKind::attributeDefinition},
                                              {"LAYER", ObjectKind::layer},
                                              {"BLOCK_RECORD", ObjectKind::blockRecord},
                                              {"SECTION", ObjectKind::section},
                                              {"ENDSEC", ObjectKind::endOfSection},
                                              {"EOF", ObjectKind::endOfFile}}};

constexpr std::array<std::string_view, 27> annotations = {"TEXT",
                                                          "MTEXT",
                                                          "ATTRIB",
                                                          "ATTDEF",
                                                          "DIMENSION",
                                                          "LEADER",
                                                          "MULTILEADER",
                                                          "MLEADER",
                                                          "TOLERANCE",
                                                          "HATCH",
                                                          "MPOLYGON",
                                                          "IMAGE",
                                                          "WIPEOUT",
                                                          "OLEFRAME",
                                                          "OLE2FRAME",
                                                          "RTEXT",
                                                          "DGNUNDERLAY",
                                                          "DWFUNDERLAY",
                                                          "PDFUNDERLAY",
                                                          "ARCALIGNEDTEXT",
                                                          "LIGHT",
                                                          "CAMERA",
                                                          "SECTIONOBJECT",
                                                          "ARC_DIMENSION",
                                                          "LARGE_RADIAL_DIMENSION",
                                                          "GEOPOSITIONMARKER",
                                                          "ACAD_TABLE"};

constexpr std::array<std::string_view, 14> meshes = {"3DFACE",          "SOLID",
                                                     "TRACE",           "MESH",
                                                     "3DSOLID",         "BODY",
                                                     "REGION",          "SURFACE",
                                                     "PLANESURFACE",    "EXTRUDEDSURFACE",
                                                     "REVOLVEDSURFACE", "SWEPTSURFACE",
                                                     "LOFTEDSURFACE",   "NURBSURFACE"};

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view upperCase) {
    return text.size() == upperCase.size() &&
           std::equal(text.begin(), text.end(), upperCase.begin(),
                      [](char a, char b) { return upper(a) == b; });
}

template <typename Names>
bool contains(const Names& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(), [&](std::string_view candidate) {
        return equalsIgnoringCase(name, candidate);
    });
}

} // namespace

ObjectKind objectKindOf(std::string_view name) {
    for (const NamedKind& candidate : kinds) {
        if (name == candidate.name) {
            return candidate.kind;
        }
    }
    name = withoutBlanks(name);
    for (const NamedKind& candidate : kinds) {
        if (equalsIgnoringCase(name, candidate.name)) {
            return candidate.kind;
        }
    }
    return ObjectKind::other;
}

bool beginsWith(std::string_view name, std::string_view start) {
    return equalsIgnoringCase(name.substr(0, start.size()), start);
}

LeftOutReason reasonOf(std::string_view name) {
    name = withoutBlanks(name);
    if (contains(annotations, name)) {
        return LeftOutReason::annotation;
    }
    if (contains(meshes, name)) {
        return LeftOutReason::mesh;
    }
    return equalsIgnoringCase(name, "RAY") || equalsIgnoringCase(name, "XLINE")
               ? LeftOutReason::infinite
               : LeftOutReason::unknownKind;
}

} // namespace converters::drawing
