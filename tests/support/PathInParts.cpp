#include "tests/support/PathInParts.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

/// Whether no contour follows when there are points enough.
bool endsInTime(const PathContours& part, std::size_t points) {
    return part.contours.size() == 1 || part.contours.back().firstPoint < points;
}

/// Why the points that were counted are not those that came; empty when they are.
std::string miscounted(std::uint64_t counted, std::size_t came) {
    return counted == came ? ""
                           : std::to_string(counted) + " points were counted, " +
                                 std::to_string(came) + " came";
}

} // namespace

ReadResult readInParts(converters::PathReader reader, std::size_t points, DrawingPath& path,
                       bool counts) {
    DrawingPath whole;
    PathContours part;
    // The points to come after those that came, each time.
    std::vector<std::pair<std::size_t, std::uint64_t>> counted;
    bool isShort = false;
    ReadResult result = reader.open();
    while (result) {
        std::uint64_t left = 0;
        if (counts && !(result = reader.countPoints(left))) {
            return result;
        }
        counted.emplace_back(whole.points.size(), left);
        if (!(result = reader.read(part, points)) || part.contours.empty()) {
            break;
        }
        if (isShort || !endsInTime(part, points)) {
            return {false, "a part has too few points, or too many", 0};
        }
        isShort = part.points.size() < points;
        append(part, whole);
    }
    if (!result) {
        return result;
    }
    for (const auto& [before, left] : counted) {
        const std::string reason = miscounted(left, whole.points.size() - before);
        if (counts && !reason.empty()) {
            return {false, reason, 0};
        }
    }
    static_cast<converters::PathReport&>(whole) = reader.report();
    path = std::move(whole);
    return result;
}
