#include "fuzz/support/PathVerification.h"

#include "fuzz/support/Verify.h"
#include "tests/support/PathBytes.h"
#include "tests/support/PathInParts.h"
#include "tests/support/Pieces.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathCurveKind;
using converters::PathOptions;
using converters::PathPiece;
using converters::ReadResult;
using Point = cv::Point3_<double>;

constexpr double pi = 3.14159265358979323846;
constexpr std::size_t mostPoints = 20'000;
constexpr std::size_t mostOfPiece = 300;

std::uint32_t hashOf(const std::uint8_t* bytes, std::size_t size) {
    std::uint32_t hash = 2166136261U;
    for (std::size_t i = 0; i < size; ++i) {
        hash = (hash ^ bytes[i]) * 16777619U;
    }
    return hash;
}

bool isFinite(const Point& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

void verifyArc(const converters::PathArc& arc) {
    FUZZ_VERIFY(isFinite(arc.centre) && isFinite(arc.normal));
    FUZZ_VERIFY(std::isfinite(arc.radius) && arc.radius > 0);
    FUZZ_VERIFY(arc.sweep > 0 && arc.sweep <= 2 * pi);
}

void verifyEllipticArc(const converters::PathEllipticArc& arc) {
    FUZZ_VERIFY(isFinite(arc.centre) && isFinite(arc.major) && isFinite(arc.minor));
    FUZZ_VERIFY(std::isfinite(arc.start) && arc.sweep > 0 && arc.sweep <= 2 * pi);
}

void verifySpline(const converters::PathSpline& spline) {
    const std::size_t points = spline.controlPoints.size();
    FUZZ_VERIFY(spline.degree >= 1 && points > spline.degree);
    FUZZ_VERIFY(spline.knots.size() == points + spline.degree + 1);
    FUZZ_VERIFY(std::is_sorted(spline.knots.begin(), spline.knots.end()));
    FUZZ_VERIFY(std::isfinite(spline.knots.front()) && std::isfinite(spline.knots.back()));
    FUZZ_VERIFY(std::all_of(spline.controlPoints.begin(), spline.controlPoints.end(), isFinite));
    FUZZ_VERIFY(spline.weights.empty() || spline.weights.size() == points);
    for (const double weight : spline.weights) {
        FUZZ_VERIFY(std::isfinite(weight) && weight > 0);
    }
}

std::size_t curvesOf(const DrawingPath& path, PathCurveKind kind) {
    switch (kind) {
    case PathCurveKind::arc:
        return path.arcs.size();
    case PathCurveKind::ellipticArc:
        return path.ellipticArcs.size();
    case PathCurveKind::spline:
        return path.splines.size();
    default:
        return 1;
    }
}

void verifyPieces(const DrawingPath& path, const PathContour& contour) {
    std::size_t point = contour.firstPoint;
    for (std::size_t i = contour.firstPiece; i < contour.endPiece; ++i) {
        const PathPiece& piece = path.pieces[i];
        FUZZ_VERIFY(piece.firstPoint == point && piece.lastPoint < contour.endPoint);
        // What has no extent is a contour of one point.
        FUZZ_VERIFY(
            piece.lastPoint > piece.firstPoint ||
            (piece.lastPoint == piece.firstPoint && contour.endPoint == contour.firstPoint + 1));
        FUZZ_VERIFY(piece.curve < curvesOf(path, piece.kind));
        FUZZ_VERIFY(piece.entity >= contour.firstEntity && piece.entity < contour.endEntity);
        point = piece.lastPoint;
    }
    FUZZ_VERIFY(point + 1 == contour.endPoint);
}

void verifyContours(const DrawingPath& path) {
    std::size_t point = 0;
    std::size_t piece = 0;
    std::size_t entity = 0;
    for (const PathContour& contour : path.contours) {
        FUZZ_VERIFY(contour.firstPoint == point && contour.endPoint > point);
        FUZZ_VERIFY(contour.firstPiece == piece && contour.endPiece > piece);
        FUZZ_VERIFY(contour.firstEntity == entity && contour.endEntity > entity);
        FUZZ_VERIFY(contour.endPoint <= path.points.size());
        FUZZ_VERIFY(contour.endPiece <= path.pieces.size());
        FUZZ_VERIFY(contour.endEntity <= path.entities.size());
        FUZZ_VERIFY(contour.layer < path.layers.size());
        FUZZ_VERIFY(contour.length >= 0);
        FUZZ_VERIFY(!contour.closed ||
                    path.points[contour.firstPoint] == path.points[contour.endPoint - 1]);
        verifyPieces(path, contour);
        point = contour.endPoint;
        piece = contour.endPiece;
        entity = contour.endEntity;
    }
    FUZZ_VERIFY(point == path.points.size() && piece == path.pieces.size());
    FUZZ_VERIFY(entity == path.entities.size());
}

void verifyPath(const DrawingPath& path) {
    for (const Point& point : path.points) {
        FUZZ_VERIFY(isFinite(point));
        FUZZ_VERIFY(point.x >= path.lowest.x && point.x <= path.highest.x);
        FUZZ_VERIFY(point.y >= path.lowest.y && point.y <= path.highest.y);
        FUZZ_VERIFY(point.z >= path.lowest.z && point.z <= path.highest.z);
    }
    verifyContours(path);
    std::for_each(path.arcs.begin(), path.arcs.end(), verifyArc);
    std::for_each(path.ellipticArcs.begin(), path.ellipticArcs.end(), verifyEllipticArc);
    std::for_each(path.splines.begin(), path.splines.end(), verifySpline);
    for (const converters::PathEntity& entity : path.entities) {
        FUZZ_VERIFY(entity.layer < path.layers.size());
    }
    for (const converters::LeftOut& leftOut : path.leftOut) {
        FUZZ_VERIFY(leftOut.number > 0 && std::strlen(converters::nameOf(leftOut.reason)) > 0);
    }
    FUZZ_VERIFY(path.length >= 0 && path.wayLength >= 0);
}

/// In another order than the drawing's, all contours are one part.
std::size_t pointsOfPart(const PathOptions& options, std::size_t points) {
    return options.order == converters::PathOrder::drawn ? points : options.maximumPoints;
}

} // namespace

converters::PathOptions pathOptionsFor(const std::uint8_t* bytes, std::size_t size) {
    const std::uint32_t hash = hashOf(bytes, size);
    const auto oneIn = [&](std::uint32_t shift, std::uint32_t count) {
        return (hash >> shift) % count == 0;
    };
    PathOptions options;
    options.maximumPoints = mostPoints;
    options.maximumEntities = mostPoints / 10;
    options.hidden = oneIn(1, 3);
    options.paperSpace = oneIn(3, 4);
    if (oneIn(5, 4)) {
        options.tolerance = 0.5;
    }
    if (oneIn(7, 4)) {
        options.step = 0.25;
    }
    if (oneIn(9, 4)) {
        options.joinDistance = oneIn(10, 2) ? 0.0 : 0.5;
    }
    if (oneIn(11, 6)) {
        options.unit = converters::LengthUnit::inch;
        options.scale = 2;
    }
    if (oneIn(13, 6)) {
        options.layers = {"*a*", "0"};
        options.exceptLayers = {"w?lls"};
    }
    options.axes = oneIn(15, 5) ? converters::PathAxes::plain : converters::PathAxes::drawing;
    options.order = static_cast<converters::PathOrder>((hash >> 17) % 3);
    return options;
}

void verifyReadPath(const std::uint8_t* bytes, std::size_t size) {
    const PathOptions options = pathOptionsFor(bytes, size);
    DrawingPath path;
    path.wayLength = -1;
    const ReadResult result = converters::readPath(bytes, size, path, options);
    FUZZ_VERIFY(result.success == result.reason.empty());
    DrawingPath again;
    const std::size_t piece = 1 + hashOf(bytes, size) % mostOfPiece;
    const std::string_view file(reinterpret_cast<const char*>(bytes), size);
    const ReadResult resultAgain = converters::readPath(piecesOf(file, piece), again, options);
    FUZZ_VERIFY(resultAgain.reason == result.reason && resultAgain.line == result.line);
    DrawingPath parts;
    const ReadResult resultInParts =
        readInParts({bytes, size, options}, pointsOfPart(options, piece), parts, piece % 2 == 0);
    FUZZ_VERIFY(resultInParts.reason == result.reason && resultInParts.line == result.line);
    if (!result) {
        FUZZ_VERIFY(path.wayLength == -1 && path.points.empty() && path.leftOut.empty());
        return;
    }
    FUZZ_VERIFY(path.points.size() <= options.maximumPoints);
    FUZZ_VERIFY(path.entities.size() <= options.maximumEntities);
    verifyPath(path);
    FUZZ_VERIFY(bytesOf(again) == bytesOf(path) && bytesOf(parts) == bytesOf(path));
}
