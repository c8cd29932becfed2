#include "tests/converters/drawing/support/RandomCurves.h"

#include "converters/detail/drawing/geometry/Angle.h"

#include <algorithm>
#include <cmath>

using namespace converters::drawing;

Affine RandomCurves::affine() {
    if (oneIn(8)) {
        return {};
    }
    const auto axis = [&] { return 0.2 * point(); };
    return {axis(), axis(), axis(), point()};
}

EllipticArc RandomCurves::arc() {
    EllipticArc arc{point(), point(), point(), within(-7, 7), within(-fullTurn, fullTurn), {}, {}};
    const std::size_t kind = below(6);
    if (kind == 0) {
        arc.sweep = oneIn(2) ? fullTurn : -fullTurn;
    } else if (kind == 1) {
        arc.second = {-arc.first.y, arc.first.x, 0};
        arc.first.z = 0;
    } else if (kind == 2) {
        arc.second *= std::pow(10, within(-9, 0));
    }
    const auto at = [&](double t) {
        return arc.centre + std::cos(t) * arc.first + std::sin(t) * arc.second;
    };
    arc.start = at(arc.from);
    arc.end = std::fabs(arc.sweep) == fullTurn ? arc.start : at(arc.from + arc.sweep);
    return arc;
}

std::vector<double> RandomCurves::knots(std::size_t number, std::size_t degree) {
    std::vector<double> knots(number);
    const bool repeats = oneIn(3);
    double knot = within(-5, 5);
    std::size_t equal = 1;
    for (double& each : knots) {
        const bool again = repeats && equal < degree && oneIn(2);
        equal = again ? equal + 1 : 1;
        knot += again ? 0 : within(0.01, 2);
        each = knot;
    }
    const bool reaches = knots[degree + 1] > knots[degree] &&
                         knots[number - degree - 1] > knots[number - degree - 2];
    if (!reaches) {
        return this->knots(number, degree);
    }
    if (!oneIn(3)) {
        std::fill_n(knots.begin(), degree, knots[degree]);
        std::fill_n(knots.rbegin(), degree, knots[number - degree - 1]);
    }
    return knots;
}

BSpline RandomCurves::spline() {
    BSpline spline;
    spline.degree = oneIn(2) ? 3 : 1 + below(7);
    const std::size_t points = spline.degree + 1 + below(12);
    spline.knots = knots(points + spline.degree + 1, spline.degree);
    const bool repeats = oneIn(3);
    for (std::size_t i = 0; i < points; ++i) {
        const bool again = repeats && i > 0 && oneIn(2);
        spline.controlPoints.push_back(again ? Point(spline.controlPoints.back()) : point());
    }
    if (oneIn(2)) {
        for (std::size_t i = 0; i < points; ++i) {
            spline.weights.push_back(std::pow(10, within(-2, 2)));
        }
    }
    return spline;
}

Curve RandomCurves::curve() {
    switch (below(4)) {
    case 0:
        return line();
    case 1:
        return arc();
    default:
        return spline();
    }
}
