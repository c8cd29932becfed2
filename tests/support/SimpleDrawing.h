#pragma once

#include "tests/support/DrawingText.h"

#include <string>
#include <vector>

/// Group codes and values, in turn.
using Groups = std::vector<std::string>;

inline Groups operator+(Groups left, const Groups& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline std::string number(double value) {
    return std::to_string(value);
}

/// A LINE, a POINT and an ARC on layer "0".
inline Groups line(double x1, double y1, double x2, double y2) {
    return {"0",  "LINE",     "8",  "0",        "10", number(x1),
            "20", number(y1), "11", number(x2), "21", number(y2)};
}

inline Groups pointAt(double x, double y, double z) {
    return {"0", "POINT", "8", "0", "10", number(x), "20", number(y), "30", number(z)};
}

inline Groups arc(double x, double y, double radius, double start, double end) {
    return {"0",  "ARC",          "8",  "0",           "10", number(x),  "20", number(y),
            "40", number(radius), "50", number(start), "51", number(end)};
}

/// The text of a drawing of these entities.
inline std::string drawing(const Groups& entities) {
    return dxf(Groups{"0", "SECTION", "2", "ENTITIES"} + entities + Groups{"0", "ENDSEC"} +
               Groups{"0", "EOF"});
}

/// The same of a drawing that says that its unit is a millimetre.
inline std::string inMillimetres(const Groups& entities) {
    return dxf({"0", "SECTION", "2", "HEADER", "9", "$INSUNITS", "70", "4", "0", "ENDSEC"}) +
           drawing(entities);
}
