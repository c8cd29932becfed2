// Joining the runs of a drawing beside the plain scan of all runs after every join. Both begin with
// a document and end with its points; a run is a line of 11 points.

#include "dxfeditor/DXFDocument.h"
#include "tests/support/PlainExtraction.h"
#include "tests/support/SampleDrawings.h"

#include <benchmark/benchmark.h>

namespace {

void ours(benchmark::State& state) {
    DXFDocument document;
    addShuffledContours(document, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(document.getPoints().data());
    }
}

void plainScan(benchmark::State& state) {
    DXFDocument document;
    addShuffledContours(document, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(plainPoints(document).data());
    }
}

BENCHMARK(ours)
    ->Name("stitching")
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(20000)
    ->Arg(100000)
    ->Arg(1000000);
BENCHMARK(plainScan)
    ->Name("stitching-scan")
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(20000);
// Quadratic: half a minute, once.
BENCHMARK(plainScan)
    ->Name("stitching-scan")
    ->Unit(benchmark::kMillisecond)
    ->Arg(100000)
    ->Iterations(1)
    ->Repetitions(1);

} // namespace
