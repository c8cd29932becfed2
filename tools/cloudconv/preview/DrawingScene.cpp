#include "tools/cloudconv/preview/DrawingScene.h"

#include "converters/check/NearMisses.h"
#include "converters/check/SearchProgress.h"
#include "tools/cloudconv/Contours.h"
#include "tools/cloudconv/Wording.h"

#include <map>

namespace {

Place placeOf(const cv::Point3_<double>& point) {
    return {point.x, point.y};
}

/// Numbers the layers that come up.
class UsedLayers {
public:
    explicit UsedLayers(const converters::DrawingPath& path) : m_path(path) {}

    std::size_t numberOf(std::uint32_t layer) {
        const auto [found, isNew] = m_numbers.emplace(layer, m_names.size());
        if (isNew) {
            m_names.push_back(
                layer < m_path.layers.size() ? asPrintableUtf8(m_path.layers[layer].name) : "");
        }
        return found->second;
    }

    const std::vector<std::string>& names() const { return m_names; }

private:
    const converters::DrawingPath& m_path;
    std::map<std::uint32_t, std::size_t> m_numbers;
    std::vector<std::string> m_names;
};

DrawnContour drawn(const converters::DrawingPath& path, const converters::PathContour& contour,
                   double distance) {
    DrawnContour result = {kindOf(path, contour), contour.length, 0.0, 0, {}};
    result.places.reserve(contour.endPoint - contour.firstPoint);
    for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
        result.places.push_back(placeOf(path.points[i]));
    }
    const double apart =
        distanceOf(path.points[contour.firstPoint], path.points[contour.endPoint - 1]);
    const bool isGap = apart >= converters::defaultJoinDistance && apart <= distance;
    result.gap = result.kind == ContourKind::Open && isGap ? apart : 0.0;
    return result;
}

} // namespace

DrawingScene sceneOf(const converters::DrawingPath& path, double distance,
                     std::function<bool(double)> progress) {
    converters::SearchProgress search(std::move(progress));
    constexpr double drawnAll = 0.1;
    search.begin(drawnAll, path.contours.size());
    DrawingScene scene;
    UsedLayers layers(path);
    scene.contours.reserve(path.contours.size());
    for (const converters::PathContour& contour : path.contours) {
        search.reached(scene.contours.size());
        scene.contours.push_back(drawn(path, contour, distance));
        scene.contours.back().layer = layers.numberOf(contour.layer);
        scene.points += contour.endPoint - contour.firstPoint;
        for (const Place& place : scene.contours.back().places) {
            if (canBeShown(place)) {
                scene.bounds.add(place);
            } else {
                ++scene.pointsWithoutPlace;
            }
        }
    }
    scene.layers = layers.names();
    search.begin(1.0, 4 * path.contours.size());
    for (const converters::NearMiss& miss :
         converters::nearMissesOf(path, distance, converters::defaultJoinDistance, search)) {
        scene.gaps.push_back({placeOf(miss.first), placeOf(miss.second), miss.distance});
    }
    return scene;
}
