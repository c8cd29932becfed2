#include "tests/converters/drawing/support/PathReading.h"

#include "tests/support/PathBytes.h"
#include "tests/support/PathInParts.h"
#include "tests/support/Pieces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

using converters::DrawingPath;
using converters::PathContour;
using converters::PathCurveKind;
using converters::PathPiece;
using Point = cv::Point3_<double>;

namespace {

/// Reads a file that comes in pieces, and its path in parts, as both are to give the same; of small
/// files, a piece ends at every byte, and every contour is a part.
void expectSameInPieces(const std::string& file, converters::PathOptions options,
                        const converters::ReadResult& result, const DrawingPath& path) {
    constexpr std::size_t smallFile = 2000;
    constexpr std::size_t mostPoints = 100'000;
    if (path.points.size() > mostPoints) {
        return;
    }
    options.progress = nullptr;
    const bool isReordered = options.order != converters::PathOrder::drawn;
    struct Parts {
        std::size_t points;
        /// Counting what is left costs as much as reading it, for each part again.
        bool areCounted;
        std::size_t mostPoints;
    };
    const std::size_t few = std::max<std::size_t>(path.points.size() / 4, 1);
    for (const Parts& parts : {Parts{0, false, smallFile}, Parts{2, true, smallFile / 20},
                               Parts{few, true, mostPoints}}) {
        if (path.points.size() <= parts.mostPoints) {
            SCOPED_TRACE("in parts of " + std::to_string(parts.points) + " points");
            DrawingPath again;
            const converters::ReadResult resultAgain = readInParts(
                {file.data(), file.size(), options},
                isReordered ? path.points.size() : parts.points, again, parts.areCounted);
            EXPECT_EQ(resultAgain.reason, result.reason);
            EXPECT_EQ(resultAgain.line, result.line);
            EXPECT_TRUE(!result || bytesOf(again) == bytesOf(path));
        }
    }
    for (const std::size_t piece : {1, 37, 5000}) {
        if (piece == 5000 || file.size() < smallFile) {
            DrawingPath again;
            const converters::ReadResult resultAgain =
                converters::readPath(piecesOf(file, piece), again, options, file.size());
            EXPECT_EQ(resultAgain.reason, result.reason) << "in pieces of " << piece << " bytes";
            EXPECT_TRUE(!result || bytesOf(again) == bytesOf(path))
                << "in pieces of " << piece << " bytes";
        }
    }
}

} // namespace

DrawingPath pathOf(const std::string& file, const converters::PathOptions& options) {
    DrawingPath path;
    const converters::ReadResult result =
        converters::readPath(file.data(), file.size(), path, options);
    EXPECT_TRUE(result) << result.reason;
    EXPECT_EQ(result.reason, "");
    EXPECT_EQ(faultOf(path), "");
    expectSameInPieces(file, options, result, path);
    return path;
}

std::string refusalOf(const std::string& file, const converters::PathOptions& options) {
    DrawingPath path;
    path.notes = {"as it was"};
    const converters::ReadResult result =
        converters::readPath(file.data(), file.size(), path, options);
    EXPECT_EQ(result.success, result.reason.empty());
    EXPECT_TRUE(result.success || path.notes.size() == 1) << "the path is touched";
    if (!options.progress) {
        expectSameInPieces(file, options, result, path);
    }
    return result.reason;
}

std::vector<Point> pointsOf(const DrawingPath& path, std::size_t contour) {
    const PathContour& range = path.contours.at(contour);
    return {path.points.begin() + static_cast<std::ptrdiff_t>(range.firstPoint),
            path.points.begin() + static_cast<std::ptrdiff_t>(range.endPoint)};
}

std::string describe(const DrawingPath& path, std::size_t contour) {
    constexpr int digits = 12;
    std::ostringstream text;
    text.precision(digits);
    if (path.contours.at(contour).closed) {
        text << "closed ";
    }
    const char* between = "";
    for (const Point& point : pointsOf(path, contour)) {
        // No -0, and no last bits of a rotation.
        const auto plain = [](double number) { return std::round(number * 1e9) / 1e9 + 0.0; };
        text << between << '(' << plain(point.x) << ", " << plain(point.y);
        if (plain(point.z) != 0) {
            text << ", " << plain(point.z);
        }
        text << ')';
        between = " ";
    }
    return text.str();
}

std::string describe(const DrawingPath& path) {
    std::string text;
    for (std::size_t contour = 0; contour < path.contours.size(); ++contour) {
        text += describe(path, contour) + "\n";
    }
    return text;
}

std::string leftOut(const DrawingPath& path) {
    std::string text;
    for (const converters::LeftOut& entry : path.leftOut) {
        text += std::to_string(entry.number) + " " + entry.kind + " on " + entry.layer + ": " +
                converters::nameOf(entry.reason) + "\n";
    }
    return text;
}

namespace {

double distance(const Point& a, const Point& b) {
    const Point way = b - a;
    return std::sqrt(way.dot(way));
}

/// Whether an arc leads from the first point of its piece to the last.
bool leadsAlong(const converters::PathArc& arc, const Point& first, const Point& last) {
    const double slack = 1e-6 * arc.radius + 1e-9;
    const Point from = first - arc.centre;
    const Point end =
        arc.centre + std::cos(arc.sweep) * from + std::sin(arc.sweep) * arc.normal.cross(from);
    return std::abs(distance(first, arc.centre) - arc.radius) < slack &&
           distance(end, last) < slack;
}

bool leadsAlong(const converters::PathEllipticArc& arc, const Point& first, const Point& last) {
    const double slack = 1e-6 * std::sqrt(arc.major.dot(arc.major)) + 1e-9;
    const auto at = [&](double t) {
        return arc.centre + std::cos(t) * arc.major + std::sin(t) * arc.minor;
    };
    return distance(at(arc.start), first) < slack &&
           distance(at(arc.start + arc.sweep), last) < slack;
}

bool leadsAlong(const DrawingPath& path, const PathPiece& piece) {
    const Point& first = path.points[piece.firstPoint];
    const Point& last = path.points[piece.lastPoint];
    switch (piece.kind) {
    case PathCurveKind::arc:
        return leadsAlong(path.arcs.at(piece.curve), first, last);
    case PathCurveKind::ellipticArc:
        return leadsAlong(path.ellipticArcs.at(piece.curve), first, last);
    case PathCurveKind::spline: {
        const converters::PathSpline& spline = path.splines.at(piece.curve);
        return spline.knots.size() == spline.controlPoints.size() + spline.degree + 1;
    }
    default:
        return piece.curve == 0;
    }
}

std::string faultOf(const DrawingPath& path, const PathContour& contour) {
    if (contour.firstPoint >= contour.endPoint || contour.firstPiece >= contour.endPiece ||
        contour.firstEntity >= contour.endEntity || contour.endPoint > path.points.size() ||
        contour.endPiece > path.pieces.size() || contour.endEntity > path.entities.size()) {
        return "an empty range, or one beyond the end";
    }
    if (contour.layer >= path.layers.size() || contour.colour < 1 || contour.colour > 255) {
        return "no layer or no colour";
    }
    if (contour.closed && path.points[contour.firstPoint] != path.points[contour.endPoint - 1]) {
        return "a closed contour that does not end at its start";
    }
    std::size_t point = contour.firstPoint;
    for (std::size_t i = contour.firstPiece; i != contour.endPiece; ++i) {
        const PathPiece& piece = path.pieces[i];
        if (piece.firstPoint != point || piece.lastPoint < piece.firstPoint) {
            return "a piece that does not begin where the one before ends";
        }
        if (piece.entity < contour.firstEntity || piece.entity >= contour.endEntity) {
            return "a piece of an entity of another contour";
        }
        if (!leadsAlong(path, piece)) {
            return "a curve that does not lead along its piece";
        }
        point = piece.lastPoint;
    }
    return point + 1 == contour.endPoint ? "" : "points behind the last piece";
}

} // namespace

std::string faultOf(const DrawingPath& path) {
    std::size_t point = 0;
    std::size_t piece = 0;
    std::size_t entity = 0;
    double length = 0;
    for (std::size_t i = 0; i < path.contours.size(); ++i) {
        const PathContour& contour = path.contours[i];
        if (contour.firstPoint != point || contour.firstPiece != piece ||
            contour.firstEntity != entity) {
            return "contour " + std::to_string(i) + ": a gap before it";
        }
        const std::string fault = faultOf(path, contour);
        if (!fault.empty()) {
            return "contour " + std::to_string(i) + ": " + fault;
        }
        point = contour.endPoint;
        piece = contour.endPiece;
        entity = contour.endEntity;
        length += contour.length;
    }
    if (point != path.points.size() || piece != path.pieces.size() ||
        entity != path.entities.size()) {
        return "points, pieces or entities of no contour";
    }
    return std::abs(length - path.length) <= 1e-9 * length ? "" : "a length that does not add up";
}
