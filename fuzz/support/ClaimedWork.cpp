#include "fuzz/support/ClaimedWork.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"

#include <cmath>

namespace {

/// Number of steps, as a step count that does not fit 32 bits counts: as none.
double steps(double count) {
    return count >= 0.0 && count < 2147483648.0 ? count : 0.0;
}

double ofArc(const DXFArc& arc) {
    const double radiansPerDegree = std::acos(-1.0) / 180;
    const double sweep = (arc.getEndAngle() - arc.getStartAngle()) * radiansPerDegree;
    const double turn = 360 * radiansPerDegree;
    return steps(10 * arc.getRadius() * sweep) + steps(10 * arc.getRadius() * (sweep + turn)) + 5;
}

double ofPolyline(const DXFPolyline& polyline) {
    const std::vector<DXFVertex>& vertices = polyline.vertices();
    double work = 0.0;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const DXFVertex& next = vertices[(i + 1) % vertices.size()];
        work += steps(10 * std::hypot(next.x() - vertices[i].x(), next.y() - vertices[i].y())) + 1;
    }
    return work;
}

double ofSpline(const DXFSpline& spline) {
    const auto degree = static_cast<double>(static_cast<int>(spline.degree()));
    const bool isEvaluable = degree >= 0 &&
                             degree + 1 <= static_cast<double>(spline.controlPoints().size()) &&
                             spline.knots().size() > spline.controlPoints().size();
    return static_cast<double>(spline.sampleCount(0.1)) *
           (isEvaluable ? 10 + degree * degree / 2 : 1);
}

} // namespace

double claimedWork(const DXFDocument& document) {
    double work = 0.0;
    for (const auto& entity : document.entities()) {
        if (const auto* line = dynamic_cast<const DXFLine*>(entity.get())) {
            const auto start = line->getP1();
            const auto end = line->getP2();
            work += steps(10 * std::hypot(end.x - start.x, end.y - start.y)) + 1;
        } else if (const auto* circle = dynamic_cast<const DXFCircle*>(entity.get())) {
            work += steps(63 * circle->getRadius()) + 32;
        } else if (const auto* arc = dynamic_cast<const DXFArc*>(entity.get())) {
            work += ofArc(*arc);
        } else if (const auto* polyline = dynamic_cast<const DXFPolyline*>(entity.get())) {
            work += ofPolyline(*polyline);
        } else if (const auto* spline = dynamic_cast<const DXFSpline*>(entity.get())) {
            work += ofSpline(*spline);
        } else if (const auto* points = dynamic_cast<const DXFPointVector*>(entity.get())) {
            work += static_cast<double>(points->points().size());
        } else {
            work += 1;
        }
    }
    return work;
}
