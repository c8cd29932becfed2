// Hostile drawings and the same ten times as large, counted by callgrind; see growth.py.

#include "converters/Converters.h"
#include "converters/DrawingPath.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/HostileDrawings.h"
#include "tests/support/HostilePathDrawings.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr unsigned growth = 10;
constexpr std::size_t smallDrawing = 4000;
constexpr unsigned lowDegree = 30;

void count(const std::string& name, const std::function<void()>& workload) {
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    workload();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

void read(const std::vector<char>& drawing) {
    std::vector<cv::Point3_<double>> points;
    if (!converters::fromDxf(drawing, points)) {
        std::fputs("a drawing was refused\n", stderr);
        std::exit(1);
    }
}

std::vector<char> bytesOf(const HostileDrawing& drawing, std::size_t size) {
    const std::string text = drawing.text(size);
    return {text.begin(), text.end()};
}

void countDrawing(const HostileDrawing& drawing) {
    const std::vector<char> small = bytesOf(drawing, smallDrawing);
    const std::vector<char> large = bytesOf(drawing, growth * smallDrawing);
    // What happens once, such as binding functions, is not the drawing's.
    read(small);
    count(drawing.name + std::string(":small"), [&] { read(small); });
    count(drawing.name + std::string(":large"), [&] { read(large); });
}

/// Whether it is refused or read: it may hold more than is allowed.
void readPath(const std::string& drawing, converters::PathOrder order) {
    converters::PathOptions options;
    options.order = order;
    options.maximumEntities = mostHostilePathEntities;
    options.maximumPoints = mostHostilePathEntities;
    converters::DrawingPath path;
    converters::readPath(drawing.data(), drawing.size(), path, options);
}

void countPath(const HostileDrawing& drawing) {
    const std::string small = drawing.text(smallDrawing);
    const std::string large = drawing.text(growth * smallDrawing);
    for (const auto order : {converters::PathOrder::drawn, converters::PathOrder::insideFirst}) {
        const std::string name = std::string("path-") + drawing.name +
                                 (order == converters::PathOrder::drawn ? "" : "-inside-first");
        readPath(small, order);
        count(name + ":small", [&] { readPath(small, order); });
        count(name + ":large", [&] { readPath(large, order); });
    }
}

/// A curve of one piece and five points.
DXFSpline splineOfDegree(unsigned degree) {
    DXFSpline spline(degree, 0, 0, 0, 0);
    for (unsigned i = 0; i <= degree; ++i) {
        spline.appendControlPoint(0.25 * (i % 2), 0.0, 0.0, 1.0);
    }
    for (unsigned i = 0; i < 2 * degree + 2; ++i) {
        spline.appendKnot(i);
    }
    return spline;
}

void countDegree() {
    const DXFSpline low = splineOfDegree(lowDegree);
    const DXFSpline high = splineOfDegree(growth * lowDegree);
    low.evaluate(lowDegree + 0.5);
    count("DegreeOfASpline:small", [&] { low.evaluate(lowDegree + 0.5); });
    count("DegreeOfASpline:large", [&] { high.evaluate(growth * lowDegree + 0.5); });
}

} // namespace

int main() {
    for (const HostileDrawing& drawing : hostileDrawings()) {
        countDrawing(drawing);
    }
    for (const HostileDrawing& drawing : hostilePathDrawings()) {
        countPath(drawing);
    }
    countDegree();
    return 0;
}
