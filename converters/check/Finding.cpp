#include "converters/check/Finding.h"

#include <cinttypes>
#include <cstdio>

namespace converters {

namespace {

/// Without the last digits of a double, which sampling blurs, and with enough of them for a place
/// in map coordinates.
std::string numberText(double number) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.12g", number == 0.0 ? 0.0 : number));
    return text;
}

} // namespace

const char* nameOf(FindingKind kind) {
    switch (kind) {
    case FindingKind::nearMiss:
        return "near miss";
    case FindingKind::duplicate:
        return "duplicate";
    case FindingKind::withoutExtent:
        return "without extent";
    case FindingKind::leftOut:
        return "left out";
    case FindingKind::touchesItself:
        return "touches itself";
    case FindingKind::crossesItself:
        return "crosses itself";
    case FindingKind::noUnit:
        return "no unit";
    case FindingKind::walkedStraight:
        return "walked straight";
    case FindingKind::closingEdge:
        return "closing edge";
    case FindingKind::mirrored:
        return "mirrored";
    case FindingKind::hidden:
        return "hidden";
    case FindingKind::paperSpace:
        return "paper space";
    case FindingKind::notWalked:
        return "not walked";
    case FindingKind::tooShort:
        return "too short";
    case FindingKind::cutShort:
        return "cut short";
    }
    return "";
}

std::string handleText(std::uint64_t handle) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%" PRIX64, handle));
    return handle == 0 ? "" : text;
}

std::string shortNameOf(const FoundEntity& entity) {
    return entity.handle == 0 ? entity.kind : entity.kind + ' ' + handleText(entity.handle);
}

std::string placeText(double x, double y) {
    return '(' + numberText(x) + ", " + numberText(y) + ')';
}

std::string lengthText(double length) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.6g", length));
    return text;
}

} // namespace converters
