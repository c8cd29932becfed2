#include "tools/cloudconv/preview/WalkPath.h"

#include "tools/cloudconv/Contours.h"

namespace {

using Point = cv::Point3_<double>;
using converters::PathCurveKind;

/// The place in the drawing of a walk's point.
Point inDrawing(const Point& point, bool isOfPoints) {
    return isOfPoints ? Point(point.x, point.y, -point.z) : Point(point.x, point.z, 0.0);
}

/// Half of a circle's points lie on each side of its centre.
converters::PathArc circleThrough(const Point* begin, const Point* end) {
    constexpr double fullTurn = 6.283185307179586;
    const Point& opposite = begin[(end - begin) / 2];
    const Point centre = (*begin + opposite) / 2.0;
    return {centre, {0.0, 0.0, 1.0}, distanceOf(*begin, centre), fullTurn};
}

/// Makes the last piece an arc, unless it has no size that could be drawn.
void addCircle(converters::DrawingPath& path) {
    converters::PathPiece& piece = path.pieces.back();
    const converters::PathArc circle =
        circleThrough(&path.points[piece.firstPoint], path.points.data() + path.points.size());
    if (circle.radius > 0.0 && std::isfinite(circle.radius)) {
        piece.kind = PathCurveKind::arc;
        piece.curve = static_cast<std::uint32_t>(path.arcs.size());
        path.arcs.push_back(circle);
    }
}

/// Points without a place, which are shown nowhere, bound nothing.
void addBounds(converters::DrawingPath& path) {
    bool isFirst = true;
    for (const Point& point : path.points) {
        if (!hasPlace(point)) {
            continue;
        }
        const auto least = [&](double a, double b) { return isFirst ? b : std::min(a, b); };
        const auto most = [&](double a, double b) { return isFirst ? b : std::max(a, b); };
        path.lowest = {least(path.lowest.x, point.x), least(path.lowest.y, point.y),
                       least(path.lowest.z, point.z)};
        path.highest = {most(path.highest.x, point.x), most(path.highest.y, point.y),
                        most(path.highest.z, point.z)};
        isFirst = false;
    }
}

} // namespace

converters::DrawingPath pathOfWalk(const DxfContents& drawing, converters::LengthUnit unit) {
    converters::DrawingPath path;
    path.drawingUnit = path.unit = unit;
    path.points.reserve(drawing.points.size());
    for (const Contour& contour : contoursOf(drawing)) {
        converters::PathContour added = {};
        added.firstPoint = path.points.size();
        for (std::size_t i = contour.begin; i < contour.end; ++i) {
            path.points.push_back(inDrawing(drawing.points[i], contour.isOfPoints));
        }
        added.endPoint = path.points.size();
        added.firstPiece = path.pieces.size();
        added.endPiece = added.firstPiece + 1;
        path.pieces.push_back(
            {added.firstPoint, added.endPoint - 1, 0, 0,
             contour.kind == ContourKind::Points ? PathCurveKind::point : PathCurveKind::line});
        if (contour.kind == ContourKind::Circle) {
            addCircle(path);
        }
        added.length = std::isfinite(contour.length) ? contour.length : 0.0;
        added.trueColour = -1;
        constexpr std::uint16_t blackOrWhite = 7;
        added.colour = blackOrWhite;
        // A circle has no ends, though its walk has.
        added.closed = contour.kind == ContourKind::Closed || contour.kind == ContourKind::Circle;
        if (!path.contours.empty()) {
            const double way =
                distanceOf(path.points[added.firstPoint - 1], path.points[added.firstPoint]);
            path.wayLength += std::isfinite(way) ? way : 0.0;
        }
        path.length += added.length;
        path.contours.push_back(added);
    }
    addBounds(path);
    return path;
}
