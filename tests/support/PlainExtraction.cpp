#include "tests/support/PlainExtraction.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"

#include <math.h>

#include <algorithm>
#include <cmath>

namespace {

using Point = cv::Point3_<double>;

int truncated(double value) {
    if (std::isnan(value) || std::trunc(value) < -2147483648.0 ||
        std::trunc(value) > 2147483647.0) {
        return 0;
    }
    return static_cast<int>(value);
}

PlainRun plainCircle(const DXFCircle& circle) {
    const Point center = circle.getCenter();
    const double radius = circle.getRadius();
    int count = truncated(radius * 62.83185307179586);
    if (count < 32) {
        count = 32;
    }
    PlainRun run;
    for (int i = 0; i < count; ++i) {
        double sine = 0.0;
        double cosine = 1.0;
        if (i != 0) {
            ::sincos((i * 6.283185307179586) * (1.0 / count), &sine, &cosine);
        }
        run.emplace_back(center.x + radius * cosine, 0.0, center.y + radius * sine);
    }
    return run;
}

PlainRun plainArc(const DXFArc& arc) {
    const Point center = arc.getCenter();
    const double radius = arc.getRadius();
    const double a = arc.getStartAngle() * 0.017453292519943295;
    double b = arc.getEndAngle() * 0.017453292519943295;
    if (a > b) {
        b = b + 6.283185307179586;
    }
    const double sweep = b - a;
    int count = truncated(radius * 10 * sweep);
    if (count < 4) {
        count = 4;
    }
    const double step = sweep / count;
    PlainRun run;
    for (int i = 0; i <= count; ++i) {
        double sine;
        double cosine;
        ::sincos(i * step + a, &sine, &cosine);
        run.emplace_back(center.x + radius * cosine, 0.0, center.y + radius * sine);
    }
    return run;
}

void appendPlainLine(double x1, double y1, double x2, double y2, PlainRun& run) {
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const int count = truncated(std::hypot(dx, dy) * 10);
    if (count == 0) {
        run.emplace_back(x1, 0.0, y1);
        return;
    }
    for (int i = 0; i <= count; ++i) {
        const double t = i * (1.0 / count);
        run.emplace_back(x1 + dx * t, 0.0, y1 + dy * t);
    }
}

PlainRun plainRun(const DXFEntity& entity) {
    PlainRun run;
    const int code = entity.type();
    if (const auto* circle = dynamic_cast<const DXFCircle*>(&entity); circle && code == 3) {
        run = plainCircle(*circle);
    } else if (const auto* arc = dynamic_cast<const DXFArc*>(&entity); arc && code == 4) {
        run = plainArc(*arc);
    } else if (const auto* line = dynamic_cast<const DXFLine*>(&entity); line && code == 5) {
        const Point p1 = line->getP1();
        const Point p2 = line->getP2();
        appendPlainLine(p1.x, p1.y, p2.x, p2.y, run);
    } else if (const auto* poly = dynamic_cast<const DXFPolyline*>(&entity); poly && code == 0) {
        for (const Segment& piece : poly->segments()) {
            appendPlainLine(piece.startX, piece.startY, piece.endX, piece.endY, run);
        }
    } else if (const auto* spline = dynamic_cast<const DXFSpline*>(&entity); spline && code == 6) {
        for (const cv::Point_<double>& point : spline->sample(0.1)) {
            run.emplace_back(point.x, 0.0, point.y);
        }
    } else if (const auto* point = dynamic_cast<const DXFPoint*>(&entity); point && code == 1) {
        run.emplace_back(point->mX(), 0.0, point->mY());
    } else if (const auto* v = dynamic_cast<const DXFPointVector*>(&entity); v && code == 2) {
        run = v->mV();
        for (Point& p : run) {
            p.z = -p.z;
        }
    }
    return run;
}

double squaredDistance(const Point& p, const Point& q) {
    const double dx = p.x - q.x;
    const double dy = p.y - q.y;
    const double dz = p.z - q.z;
    return dx * dx + dy * dy + dz * dz;
}

/// Joins `other` to `chain` if it fits.
bool join(PlainRun& chain, PlainRun& other) {
    if (squaredDistance(chain.back(), other.front()) < 1e-06) {
        chain.insert(chain.end(), other.begin() + 1, other.end());
        return true;
    }
    if (squaredDistance(chain.back(), other.back()) < 1e-06) {
        std::reverse(other.begin(), other.end());
        chain.insert(chain.end(), other.begin() + 1, other.end());
        return true;
    }
    if (squaredDistance(chain.front(), other.back()) < 1e-06) {
        chain.insert(chain.begin(), other.begin(), other.end() - 1);
        return true;
    }
    if (squaredDistance(chain.front(), other.front()) < 1e-06) {
        std::reverse(other.begin(), other.end());
        chain.insert(chain.begin(), other.begin(), other.end() - 1);
        return true;
    }
    return false;
}

} // namespace

std::vector<PlainRun> plainRuns(const DXFDocument& document) {
    std::vector<PlainRun> runs;
    for (const auto& entity : document.entities()) {
        if (entity == nullptr) {
            continue;
        }
        PlainRun run = plainRun(*entity);
        if (!run.empty()) {
            runs.push_back(run);
        }
    }
    return runs;
}

std::vector<PlainRun> plainStitching(std::vector<PlainRun> pool) {
    std::vector<PlainRun> result;
    while (!pool.empty()) {
        PlainRun chain = pool.back();
        pool.pop_back();
        for (std::size_t i = 0; i < pool.size();) {
            if (join(chain, pool[i])) {
                pool.erase(pool.begin() + static_cast<std::ptrdiff_t>(i));
                i = 0;
            } else {
                ++i;
            }
        }
        if (squaredDistance(chain.front(), chain.back()) < 1e-06) {
            chain.back() = chain.front();
        }
        result.push_back(chain);
    }
    return result;
}

PlainRun plainPoints(const DXFDocument& document) {
    PlainRun points;
    for (const PlainRun& contour : plainStitching(plainRuns(document))) {
        points.insert(points.end(), contour.begin(), contour.end());
    }
    return points;
}
