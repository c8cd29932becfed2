#include "tools/cloudconv/preview/DrawingScene.h"

#include "tools/cloudconv/NearMisses.h"

namespace {

using Point = cv::Point3_<double>;

/// The place of a walk's point in the plane of its drawing.
Place placeOf(const Point& point, bool isOfPoints) {
    return {point.x, isOfPoints ? point.y : point.z};
}

DrawnContour drawn(const DxfContents& drawing, const Contour& contour, double distance) {
    DrawnContour result = {contour.kind, contour.length, 0.0, {}};
    result.places.reserve(contour.end - contour.begin);
    for (std::size_t i = contour.begin; i < contour.end; ++i) {
        result.places.push_back(placeOf(drawing.points[i], contour.isOfPoints));
    }
    const double apart = distanceOf(result.places.front(), result.places.back());
    const bool isGap = apart >= joiningDistance && apart <= distance;
    result.gap = contour.kind == ContourKind::Open && isGap ? apart : 0.0;
    return result;
}

} // namespace

DrawingScene sceneOf(const DxfContents& drawing, double distance) {
    DrawingScene scene;
    const std::vector<Contour> contours = contoursOf(drawing);
    for (const Contour& contour : contours) {
        scene.contours.push_back(drawn(drawing, contour, distance));
        scene.hasLines = scene.hasLines || !contour.isOfPoints;
        scene.points += contour.end - contour.begin;
        for (const Place& place : scene.contours.back().places) {
            if (canBeShown(place)) {
                scene.bounds.add(place);
            } else {
                ++scene.pointsWithoutPlace;
            }
        }
    }
    for (const NearMiss& miss : nearMissesOf(drawing, contours, distance)) {
        scene.gaps.push_back(
            {placeOf(miss.first, false), placeOf(miss.second, false), miss.distance});
    }
    return scene;
}
