#include "tools/cloudconv/ContourKind.h"

#include <algorithm>

namespace {

bool isFullCircle(const converters::DrawingPath& path, const converters::PathPiece& piece) {
    constexpr double nearlyFullTurn = 6.2831853;
    return piece.kind == converters::PathCurveKind::arc &&
           path.arcs[piece.curve].sweep >= nearlyFullTurn;
}

} // namespace

const char* nameOf(ContourKind kind) {
    switch (kind) {
    case ContourKind::Open:
        return "open";
    case ContourKind::Closed:
        return "closed";
    case ContourKind::Circle:
        return "circle";
    case ContourKind::Points:
        break;
    }
    return "points";
}

ContourKind kindOf(const converters::DrawingPath& path, const converters::PathContour& contour) {
    const auto begin = path.pieces.begin() + static_cast<std::ptrdiff_t>(contour.firstPiece);
    const auto end = path.pieces.begin() + static_cast<std::ptrdiff_t>(contour.endPiece);
    const auto isPoint = [](const converters::PathPiece& piece) {
        return piece.kind == converters::PathCurveKind::point;
    };
    if (std::all_of(begin, end, isPoint)) {
        return ContourKind::Points;
    }
    if (end - begin == 1 && isFullCircle(path, *begin)) {
        return ContourKind::Circle;
    }
    return contour.closed ? ContourKind::Closed : ContourKind::Open;
}
