#include "tests/support/PathInParts.h"

#include <cstdint>
#include <string>
#include <utility>

using converters::DrawingPath;
using converters::PathContours;
using converters::PathCurveKind;
using converters::ReadResult;

namespace {

std::uint32_t curvesOf(const DrawingPath& path, PathCurveKind kind) {
    switch (kind) {
    case PathCurveKind::arc:
        return static_cast<std::uint32_t>(path.arcs.size());
    case PathCurveKind::ellipticArc:
        return static_cast<std::uint32_t>(path.ellipticArcs.size());
    case PathCurveKind::spline:
        return static_cast<std::uint32_t>(path.splines.size());
    case PathCurveKind::point:
    case PathCurveKind::line:
        break;
    }
    return 0;
}

template <typename Element>
void append(const std::vector<Element>& elements, std::vector<Element>& to) {
    to.insert(to.end(), elements.begin(), elements.end());
}

void append(const PathContours& part, DrawingPath& path) {
    for (converters::PathContour contour : part.contours) {
        contour.firstPoint += path.points.size();
        contour.endPoint += path.points.size();
        contour.firstPiece += path.pieces.size();
        contour.endPiece += path.pieces.size();
        contour.firstEntity += path.entities.size();
        contour.endEntity += path.entities.size();
        path.contours.push_back(contour);
    }
    for (converters::PathPiece piece : part.pieces) {
        piece.firstPoint += path.points.size();
        piece.lastPoint += path.points.size();
        piece.curve += curvesOf(path, piece.kind);
        piece.entity += static_cast<std::uint32_t>(path.entities.size());
        path.pieces.push_back(piece);
    }
    append(part.points, path.points);
    append(part.arcs, path.arcs);
    append(part.ellipticArcs, path.ellipticArcs);
    append(part.splines, path.splines);
    append(part.entities, path.entities);
}

/// Whether no contour follows when there are points enough, and one does while there are not.
bool hasLength(const PathContours& part, std::size_t points, std::uint64_t left) {
    const bool isLast = part.points.size() == left;
    return part.contours.size() == 1 ||
           (part.contours.back().firstPoint < points && (isLast || part.points.size() >= points));
}

} // namespace

ReadResult readInParts(converters::PathReader reader, std::size_t points, DrawingPath& path) {
    DrawingPath whole;
    PathContours part;
    std::uint64_t left = 0;
    ReadResult result = reader.open();
    if (!result || !(result = reader.countPoints(left))) {
        return result;
    }
    while ((result = reader.read(part, points)) && !part.contours.empty()) {
        if (!hasLength(part, points, left)) {
            return {false, "a part of " + std::to_string(part.points.size()) + " points", 0};
        }
        append(part, whole);
        left -= part.points.size();
        std::uint64_t counted = 0;
        if (!(result = reader.countPoints(counted)) || counted != left) {
            return {false,
                    std::to_string(counted) + " points are counted where " + std::to_string(left) +
                        " are left",
                    0};
        }
    }
    if (result) {
        static_cast<converters::PathReport&>(whole) = reader.report();
        path = std::move(whole);
    }
    return result;
}
