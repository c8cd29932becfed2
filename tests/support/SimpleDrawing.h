#pragma once

#include "tests/support/Dxf.h"

#include <string>

inline std::string number(double value) {
    return std::to_string(value);
}

/// A LINE, a POINT and an ARC on layer "0".
inline std::string line(double x1, double y1, double x2, double y2) {
    return dxf("0 LINE  8 0  10 " + number(x1) + "  20 " + number(y1) + "  11 " + number(x2) +
               "  21 " + number(y2));
}

inline std::string pointAt(double x, double y, double z) {
    return dxf("0 POINT  8 0  10 " + number(x) + "  20 " + number(y) + "  30 " + number(z));
}

inline std::string arc(double x, double y, double radius, double start, double end) {
    return dxf("0 ARC  8 0  10 " + number(x) + "  20 " + number(y) + "  40 " + number(radius) +
               "  50 " + number(start) + "  51 " + number(end));
}

/// An entity of layer "0" on another one.
inline std::string onLayer(const std::string& layer, std::string entity) {
    const std::string zero = dxf("8 0");
    return entity.replace(entity.find(zero), zero.size(), dxf("8 " + layer));
}

/// The text of a drawing of these entities.
inline std::string drawing(const std::string& entities) {
    return dxf("0 SECTION  2 ENTITIES") + entities + dxf("0 ENDSEC  0 EOF");
}

/// The same of a drawing that says that its unit is a millimetre.
inline std::string inMillimetres(const std::string& entities) {
    return dxf("0 SECTION  2 HEADER  9 $INSUNITS  70 4  0 ENDSEC") + drawing(entities);
}
