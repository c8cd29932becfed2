#include "tools/cloudconv/Check.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tools/cloudconv/Contours.h"
#include "tools/cloudconv/NearMisses.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

namespace {

using Point = cv::Point3_<double>;
using Numbers = std::vector<double>;

/// A straight piece shorter than this is walked as its start alone.
constexpr double samplingStep = 0.1;

/// Without the last digits of a double, which sampling blurs, and with enough of them for a place
/// in map coordinates.
std::string numberText(double number) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.12g", number));
    return text;
}

/// A length, which is no more exact than the places that it lies between.
std::string lengthText(double length) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.6g", length));
    return text;
}

/// A place in the plane of the drawing.
std::string placeText(double x, double y) {
    return '(' + numberText(x) + ", " + numberText(y) + ')';
}

/// What is looked at of an entity, whatever its kind.
struct Shape {
    const char* name = "entity";
    /// Where it begins, in the plane of the drawing.
    double x = 0.0;
    double y = 0.0;
    /// What makes it what it is: equal for equal entities, in either direction.
    Numbers numbers;
    /// What is wrong with it by itself; empty when nothing is.
    std::string fault;
};

double rounded(double value) {
    constexpr double decimals = 1e6;
    const double number = std::round(value * decimals) / decimals;
    return number == 0.0 ? 0.0 : number; // no negative zero
}

/// The corners, of the two directions the one that comes first.
Numbers inOneDirection(const std::vector<std::pair<double, double>>& corners) {
    Numbers forwards;
    Numbers backwards;
    for (const auto& [x, y] : corners) {
        forwards.insert(forwards.end(), {rounded(x), rounded(y)});
    }
    for (auto corner = corners.rbegin(); corner != corners.rend(); ++corner) {
        backwards.insert(backwards.end(), {rounded(corner->first), rounded(corner->second)});
    }
    return std::min(forwards, backwards);
}

std::string tooShort(double length) {
    return "is too short to sample (length " + lengthText(length) +
           "): its start is the only point";
}

Shape shapeOf(const DXFLine& line) {
    const Point start = line.getP1();
    const Point end = line.getP2();
    const double length = std::hypot(end.x - start.x, end.y - start.y);
    return {"LINE", start.x, start.y, inOneDirection({{start.x, start.y}, {end.x, end.y}}),
            length < samplingStep ? tooShort(length) : ""};
}

Shape shapeOf(const DXFArc& arc) {
    const Point center = arc.getCenter();
    const bool empty = arc.getStartAngle() == arc.getEndAngle() || arc.getRadius() == 0.0;
    return {"ARC",
            center.x,
            center.y,
            {rounded(center.x), rounded(center.y), rounded(arc.getRadius()),
             rounded(arc.getStartAngle()), rounded(arc.getEndAngle())},
            empty ? "has no length: five equal points" : ""};
}

Shape shapeOf(const DXFCircle& circle) {
    const Point center = circle.getCenter();
    return {"CIRCLE",
            center.x,
            center.y,
            {rounded(center.x), rounded(center.y), rounded(circle.getRadius())},
            circle.getRadius() == 0.0 ? "has no length: equal points" : ""};
}

std::string faultOf(const DXFPolyline& polyline) {
    if (polyline.segmentCount() == 0) {
        return "has fewer than two vertices: no points";
    }
    const Segment last = polyline.segment(polyline.segmentCount() - 1);
    const double length = std::hypot(last.endX - last.startX, last.endY - last.startY);
    return length < samplingStep
               ? "has a last edge too short to sample (length " + lengthText(length) +
                     "): it stops at " + placeText(last.startX, last.startY)
               : "";
}

Shape shapeOf(const DXFPolyline& polyline) {
    std::vector<std::pair<double, double>> corners;
    for (const DXFVertex& vertex : polyline.vertices()) {
        corners.emplace_back(vertex.x(), vertex.y());
    }
    Shape shape = {"POLYLINE", 0.0, 0.0, inOneDirection(corners), faultOf(polyline)};
    shape.numbers.push_back(polyline.isClosed() ? 1.0 : 0.0);
    if (!corners.empty()) {
        std::tie(shape.x, shape.y) = corners.front();
    }
    return shape;
}

Shape shapeOf(const DXFSpline& spline) {
    Shape shape = {"SPLINE", 0.0, 0.0, {static_cast<double>(spline.degree())}, ""};
    for (const double knot : spline.knots()) {
        shape.numbers.push_back(rounded(knot));
    }
    for (const DXFControlPoint& point : spline.controlPoints()) {
        shape.numbers.insert(shape.numbers.end(),
                             {rounded(point.x), rounded(point.y), rounded(point.w)});
    }
    for (const Point& point : spline.fitPoints()) {
        shape.numbers.insert(shape.numbers.end(), {rounded(point.x), rounded(point.y)});
    }
    const std::vector<cv::Point_<double>> samples = spline.sample(samplingStep);
    if (samples.empty()) {
        shape.fault = "cannot be evaluated: no points";
    } else {
        shape.x = samples.front().x;
        shape.y = samples.front().y;
    }
    return shape;
}

Shape shapeOf(const DXFPoint& point) {
    return {"POINT", point.mX(), point.mY(), {rounded(point.mX()), rounded(point.mY())}, ""};
}

Shape shapeOf(const DXFPointVector& vector) {
    Shape shape = {"POINTs", vector.points().front().x, vector.points().front().y, {}, ""};
    for (const Point& point : vector.points()) {
        shape.numbers.insert(shape.numbers.end(),
                             {rounded(point.x), rounded(point.y), rounded(point.z)});
    }
    return shape;
}

template <typename Kind>
bool take(const DXFEntity& entity, Shape& shape) {
    const auto* const known = dynamic_cast<const Kind*>(&entity);
    if (known != nullptr) {
        shape = shapeOf(*known);
    }
    return known != nullptr;
}

Shape shapeOf(const DXFEntity& entity) {
    Shape shape;
    static_cast<void>(take<DXFLine>(entity, shape) || take<DXFArc>(entity, shape) ||
                      take<DXFCircle>(entity, shape) || take<DXFPolyline>(entity, shape) ||
                      take<DXFSpline>(entity, shape) || take<DXFPoint>(entity, shape) ||
                      take<DXFPointVector>(entity, shape));
    return shape;
}

/// "LINE 3 on layer OUTLINE at (0, 7)": the third entity of the drawing.
std::string described(const Shape& shape, const DXFEntity& entity, std::size_t number) {
    return std::string(shape.name) + ' ' + std::to_string(number) + " on layer " +
           entity.attributes()->layerName() + " at " + placeText(shape.x, shape.y);
}

bool isNumber(double value) {
    return !std::isnan(value);
}

void findInEntities(const DXFDocument& document, std::vector<std::string>& findings) {
    std::map<std::pair<std::string, Numbers>, std::size_t> seen;
    std::size_t number = 0;
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        const Shape shape = shapeOf(*entity);
        const std::string what = described(shape, *entity, ++number);
        if (!shape.fault.empty()) {
            findings.push_back(what + ' ' + shape.fault);
        }
        // What holds nan equals nothing, and would upset the order of the map.
        if (std::all_of(shape.numbers.begin(), shape.numbers.end(), isNumber)) {
            const auto [first, isNew] = seen.emplace(std::pair(shape.name, shape.numbers), number);
            if (!isNew) {
                findings.push_back(what + " repeats " + shape.name + ' ' +
                                   std::to_string(first->second));
            }
        }
    }
}

/// A place of the walk, in the plane of the drawing.
std::string placeText(const Point& point) {
    return placeText(point.x, point.z);
}

} // namespace

std::vector<std::string> findingsOf(const DxfContents& drawing, double distance) {
    std::vector<std::string> findings;
    for (const NearMiss& miss : nearMissesOf(drawing, contoursOf(drawing), distance)) {
        findings.push_back("near miss: the ends at " + placeText(miss.first) + " and " +
                           placeText(miss.second) + " lie " + lengthText(miss.distance) +
                           " apart and are not joined");
    }
    findInEntities(*drawing.document, findings);
    return findings;
}
