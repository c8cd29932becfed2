// Sampling circles beside a bare loop of the same arithmetic, one sincos a point.

#include "benchmarks/Inputs.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "tests/support/SampleDrawings.h"

#include <benchmark/benchmark.h>
#include <math.h>

#include <memory>
#include <vector>

namespace {

constexpr int pointsInCircle = 1000;

void ours(benchmark::State& state) {
    DXFDocument document;
    addCircles(document, static_cast<std::size_t>(state.range(0) / pointsInCircle));
    for (auto _ : state) {
        const std::vector<cv::Point3_<double>> points = document.getPoints();
        if (points.size() != static_cast<std::size_t>(state.range(0))) {
            state.SkipWithError("other points");
        }
        benchmark::DoNotOptimize(points.data());
    }
}

struct Circle {
    double x;
    double y;
    double radius;
};

std::vector<Circle> circlesOf(const DXFDocument& document) {
    std::vector<Circle> circles;
    for (const std::shared_ptr<DXFEntity>& entity : document.entities()) {
        const auto circle = std::dynamic_pointer_cast<DXFCircle>(entity);
        circles.push_back({circle->getCenter().x, circle->getCenter().y, circle->getRadius()});
    }
    return circles;
}

void bareLoop(benchmark::State& state) {
    DXFDocument document;
    addCircles(document, static_cast<std::size_t>(state.range(0) / pointsInCircle));
    const std::vector<Circle> circles = circlesOf(document);
    for (auto _ : state) {
        std::vector<cv::Point3_<double>> points;
        points.reserve(static_cast<std::size_t>(state.range(0)));
        for (const Circle& circle : circles) {
            for (int i = 0; i < pointsInCircle; ++i) {
                double sine;
                double cosine;
                ::sincos(i * 6.283185307179586 * (1.0 / pointsInCircle), &sine, &cosine);
                points.emplace_back(circle.x + circle.radius * cosine, 0.0,
                                    circle.y + circle.radius * sine);
            }
        }
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
}

BENCHMARK(ours)->Name("sampling")->Apply(allSizes);
BENCHMARK(bareLoop)->Name("sampling-loop")->Apply(allSizes);

} // namespace
