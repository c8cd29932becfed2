#include "tools/cloudconv/Contours.h"

#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFPointVector.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

namespace {

using Point = cv::Point3_<double>;
using Place = std::tuple<double, double, double>;

Place placeOf(const Point& point) {
    return {point.x, point.y, point.z};
}

/// Where the entities that are contours of their own kind begin, and what tells them there.
struct Beginnings {
    std::multimap<Place, std::shared_ptr<DXFCircle>> circles;
    /// With how many points there are.
    std::set<std::pair<Place, std::size_t>> vectors;
};

Beginnings beginningsOf(const DXFDocument& document) {
    Beginnings found;
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        if (const auto circle = std::dynamic_pointer_cast<DXFCircle>(entity)) {
            const Point center = circle->getCenter();
            const Point start(center.x + circle->getRadius(), 0.0, center.y);
            if (hasPlace(start)) {
                found.circles.emplace(placeOf(start), circle);
            }
        } else if (const auto vector = std::dynamic_pointer_cast<DXFPointVector>(entity)) {
            const std::vector<Point>& points = vector->points();
            const Point start(points.front().x, points.front().y, -points.front().z);
            if (hasPlace(start)) {
                found.vectors.emplace(placeOf(start), points.size());
            }
        }
    }
    return found;
}

/// Whether a stretch of the walk goes once around, up to the last step.
bool goesAround(const DXFCircle& circle, const Point* begin, const Point* end) {
    constexpr double oneAndAHalf = 1.5;
    const Point center(circle.getCenter().x, 0.0, circle.getCenter().y);
    const double radius = std::abs(circle.getRadius());
    const double tolerance = 1e-9 * (radius + std::abs(center.x) + std::abs(center.z));
    return distanceOf(*begin, *(end - 1)) < oneAndAHalf * distanceOf(*begin, *(begin + 1)) &&
           std::all_of(begin, end, [&](const Point& point) {
               return std::abs(distanceOf(point, center) - radius) <= tolerance;
           });
}

class Classification {
public:
    explicit Classification(const DxfContents& drawing)
        : m_points(drawing.points), m_beginnings(beginningsOf(*drawing.document)) {}

    ContourKind kindOf(const DXFContour& contour) const {
        const Point& start = m_points[contour.begin];
        const std::size_t size = contour.end - contour.begin;
        if (size == 1 || isOfPoints(contour)) {
            return ContourKind::Points;
        }
        if (hasPlace(start)) {
            const auto circles = m_beginnings.circles.equal_range(placeOf(start));
            if (!contour.closed && circles.first != circles.second &&
                goesAround(*circles.first->second, &start, &start + size)) {
                return ContourKind::Circle;
            }
        }
        return contour.closed ? ContourKind::Closed : ContourKind::Open;
    }

    bool isOfPoints(const DXFContour& contour) const {
        const Point& start = m_points[contour.begin];
        return hasPlace(start) &&
               m_beginnings.vectors.count({placeOf(start), contour.end - contour.begin}) > 0;
    }

private:
    const std::vector<Point>& m_points;
    Beginnings m_beginnings;
};

} // namespace

bool hasPlace(const cv::Point3_<double>& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

double distanceOf(const cv::Point3_<double>& a, const cv::Point3_<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

std::vector<Contour> contoursOf(const DxfContents& drawing) {
    const Classification classification(drawing);
    std::vector<Contour> contours;
    contours.reserve(drawing.contours.size());
    for (const DXFContour& contour : drawing.contours) {
        const ContourKind kind = classification.kindOf(contour);
        double length = 0.0;
        for (std::size_t i = contour.begin + 1; i < contour.end && kind != ContourKind::Points;
             ++i) {
            length += distanceOf(drawing.points[i - 1], drawing.points[i]);
        }
        contours.push_back(
            {kind, contour.begin, contour.end, length, classification.isOfPoints(contour)});
    }
    return contours;
}
