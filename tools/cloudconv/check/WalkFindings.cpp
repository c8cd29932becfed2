#include "tools/cloudconv/check/WalkFindings.h"

#include "converters/check/SearchProgress.h"
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/VisitEntity.h"
#include "dxfeditor/WalkNumbers.h"
#include "tools/cloudconv/Contours.h"
#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/check/FileEntities.h"
#include "tools/cloudconv/check/WalkNearMisses.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

namespace {

using converters::Finding;
using converters::FindingKind;
using converters::FoundEntity;
using converters::lengthText;
using converters::placeText;
using converters::shortNameOf;
using dxfeditor::samplingStep;
using Point = cv::Point3_<double>;
using Numbers = std::vector<double>;

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
    FindingKind faultKind = FindingKind::withoutExtent;
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
    return {"LINE",
            start.x,
            start.y,
            inOneDirection({{start.x, start.y}, {end.x, end.y}}),
            length < samplingStep ? tooShort(length) : "",
            FindingKind::tooShort};
}

Shape shapeOf(const DXFArc& arc) {
    const Point center = arc.getCenter();
    const bool empty = arc.getStartAngle() == arc.getEndAngle() || arc.getRadius() == 0.0;
    return {"ARC",
            center.x,
            center.y,
            {rounded(center.x), rounded(center.y), rounded(arc.getRadius()),
             rounded(arc.getStartAngle()), rounded(arc.getEndAngle())},
            empty ? "has no length: five equal points" : "",
            FindingKind::withoutExtent};
}

Shape shapeOf(const DXFCircle& circle) {
    const Point center = circle.getCenter();
    return {"CIRCLE",
            center.x,
            center.y,
            {rounded(center.x), rounded(center.y), rounded(circle.getRadius())},
            circle.getRadius() == 0.0 ? "has no length: equal points" : "",
            FindingKind::withoutExtent};
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
    Shape shape = {"POLYLINE",
                   0.0,
                   0.0,
                   inOneDirection(corners),
                   faultOf(polyline),
                   polyline.segmentCount() == 0 ? FindingKind::withoutExtent
                                                : FindingKind::tooShort};
    shape.numbers.push_back(polyline.isClosed() ? 1.0 : 0.0);
    if (!corners.empty()) {
        std::tie(shape.x, shape.y) = corners.front();
    }
    return shape;
}

Shape shapeOf(const DXFSpline& spline) {
    Shape shape = {
        "SPLINE", 0.0, 0.0, {static_cast<double>(spline.degree())}, "", FindingKind::withoutExtent};
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
    return {"POINT",    point.mX(),
            point.mY(), {rounded(point.mX()), rounded(point.mY())},
            "",         FindingKind::withoutExtent};
}

Shape shapeOf(const DXFPointVector& vector) {
    Shape shape = {"POINTs", vector.points().front().x, vector.points().front().y, {},
                   "",       FindingKind::withoutExtent};
    for (const Point& point : vector.points()) {
        shape.numbers.insert(shape.numbers.end(),
                             {rounded(point.x), rounded(point.y), rounded(point.z)});
    }
    return shape;
}

Shape shapeOf(const DXFEntity& entity) {
    Shape shape;
    dxfeditor::visitEntity(entity, [&](const auto& kind) { shape = shapeOf(kind); });
    return shape;
}

bool isNumber(double value) {
    return !std::isnan(value);
}

/// "LINE 2F on layer OUTLINE at (0, 7)".
std::string described(const FoundEntity& entity, double x, double y) {
    return shortNameOf(entity) + " on layer " + entity.layer + " at " + placeText(x, y);
}

/// A place in the plane of the drawing, in the coordinates of the walk.
Point walkedAt(double x, double y) {
    return {x, 0.0, y};
}

class Search {
public:
    Search(const DxfContents& drawing, std::string_view text, converters::SearchProgress progress)
        : m_drawing(drawing), m_file(fileEntitiesOf(text)), m_progress(std::move(progress)) {}

    std::vector<Finding> run(double distance) {
        findNearMisses(distance);
        findInEntities();
        for (const FileEntity& entity : m_file.walked) {
            findInFile(entity);
        }
        for (const FileEntity& entity : m_file.passedOver) {
            add(FindingKind::notWalked, entity,
                entity.named.kind == "INSERT" ? "draws a block, which is not walked"
                                              : "is not walked");
        }
        if (!m_drawing.cutOff.empty()) {
            m_findings.push_back({FindingKind::cutShort, m_drawing.cutOff, {}, {}});
        }
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const Finding& a, const Finding& b) { return a.kind < b.kind; });
        return std::move(m_findings);
    }

private:
    /// The entity of the model with this number, by what the file says of it.
    FoundEntity namedAt(std::size_t index, const Shape& shape, const DXFEntity& entity) const {
        if (m_file.walked.size() == m_drawing.document->entities().size()) {
            return m_file.walked[index].named;
        }
        return {shape.name, 0, entity.attributes()->layerName()};
    }

    void add(FindingKind kind, const FileEntity& entity, const std::string& what) {
        m_findings.push_back({kind,
                              described(entity.named, entity.x, entity.y) + ' ' + what,
                              {walkedAt(entity.x, entity.y)},
                              {entity.named}});
    }

    void findNearMisses(double distance);
    void findInEntities();
    void findInFile(const FileEntity& entity);
    void findInShape(const FileEntity& entity);

    const DxfContents& m_drawing;
    FileEntities m_file;
    converters::SearchProgress m_progress;
    std::vector<Finding> m_findings;
};

void Search::findNearMisses(double distance) {
    constexpr double end = 0.5;
    const std::vector<Contour> contours = contoursOf(m_drawing);
    m_progress.begin(end, 4 * contours.size());
    for (const converters::NearMiss& miss :
         nearMissesOf(m_drawing, contours, distance, m_progress)) {
        m_findings.push_back({FindingKind::nearMiss,
                              "the ends at " + placeText(miss.first.x, miss.first.z) + " and " +
                                  placeText(miss.second.x, miss.second.z) + " lie " +
                                  lengthText(miss.distance) + " apart and are not joined",
                              {miss.first, miss.second},
                              {}});
    }
}

void Search::findInEntities() {
    std::map<std::pair<std::string, Numbers>, std::size_t> seen;
    m_progress.begin(1.0, m_drawing.entityCount);
    std::size_t number = 0;
    for (const std::shared_ptr<DXFEntity>& entity : m_drawing.document->entities()) {
        m_progress.reached(number);
        const std::size_t i = number++;
        const Shape shape = shapeOf(*entity);
        const FoundEntity named = namedAt(i, shape, *entity);
        const std::string what = described(named, shape.x, shape.y);
        const std::vector<Point> places = {walkedAt(shape.x, shape.y)};
        if (!shape.fault.empty()) {
            m_findings.push_back({shape.faultKind, what + ' ' + shape.fault, places, {named}});
        }
        // What holds nan equals nothing, and would upset the order of the map.
        if (std::all_of(shape.numbers.begin(), shape.numbers.end(), isNumber)) {
            const auto [first, isNew] = seen.emplace(std::pair(shape.name, shape.numbers), i);
            if (!isNew) {
                const FoundEntity earlier = namedAt(first->second, shape, *entity);
                m_findings.push_back({FindingKind::duplicate,
                                      what + " repeats " + shortNameOf(earlier),
                                      places,
                                      {named, earlier}});
            }
        }
    }
}

void Search::findInFile(const FileEntity& entity) {
    findInShape(entity);
    if (entity.invisible || entity.onHiddenLayer) {
        add(FindingKind::hidden, entity,
            entity.invisible ? "is invisible, and walked"
                             : "is on a layer that is off or frozen, and walked");
    }
    if (entity.inPaperSpace) {
        add(FindingKind::paperSpace, entity, "is in paper space, and walked");
    }
}

void Search::findInShape(const FileEntity& entity) {
    constexpr std::size_t leastClosed = 3;
    constexpr int threeDimensional = 8;
    const std::string& kind = entity.named.kind;
    const bool isPolyline = kind == "LWPOLYLINE" || kind == "POLYLINE";
    if (isPolyline && entity.bulges > 0) {
        add(FindingKind::walkedStraight, entity,
            "has " + counted(entity.bulges, "arc") + " walked as " +
                (entity.bulges == 1 ? "its chord" : "their chords"));
    }
    if (kind == "SPLINE" && entity.controlPoints == 0 && entity.fitPoints > 0) {
        add(FindingKind::walkedStraight, entity, "has fit points alone: its curve is not walked");
    }
    if (isPolyline && entity.flags % 2 != 0 && entity.vertices >= leastClosed) {
        add(FindingKind::closingEdge, entity,
            "has a closing edge that is walked backwards, after a jump");
    }
    const bool isInPlane = kind == "ARC" || kind == "CIRCLE" || kind == "LWPOLYLINE" ||
                           (kind == "POLYLINE" && (entity.flags & threeDimensional) == 0);
    const auto& [x, y, z] = entity.extrusion;
    if (isInPlane && !(x == 0.0 && y == 0.0 && z > 0.0)) {
        add(FindingKind::mirrored, entity,
            x == 0.0 && y == 0.0 ? "is mirrored by its extrusion, and walked as if it were not"
                                 : "is tilted by its extrusion, and walked as if it were not");
    }
}

} // namespace

std::vector<Finding> findingsOf(const DxfContents& drawing, std::string_view text, double distance,
                                std::function<bool(double)> progress) {
    try {
        return Search(drawing, text, converters::SearchProgress(std::move(progress))).run(distance);
    } catch (const converters::SearchProgress::Stopped&) {
        return {};
    }
}
