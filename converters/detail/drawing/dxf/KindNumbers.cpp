#include "converters/detail/drawing/dxf/KindNumbers.h"

namespace converters::drawing {

KindNumbers::KindNumbers(NameTable& names) {
    for (std::size_t kind = 0; kind < m_numbers.size(); ++kind) {
        m_numbers[kind] = names.numberOf(nameOf(static_cast<EntityKind>(kind)));
    }
}

const char* nameOf(EntityKind kind) {
    switch (kind) {
    case EntityKind::point:
        return "POINT";
    case EntityKind::line:
        return "LINE";
    case EntityKind::arc:
        return "ARC";
    case EntityKind::circle:
        return "CIRCLE";
    case EntityKind::ellipse:
        return "ELLIPSE";
    case EntityKind::lwpolyline:
        return "LWPOLYLINE";
    case EntityKind::polyline:
    case EntityKind::polyline3d:
        return "POLYLINE";
    case EntityKind::spline:
        return "SPLINE";
    case EntityKind::insert:
        return "INSERT";
    }
    return "";
}

} // namespace converters::drawing
