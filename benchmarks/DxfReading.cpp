// fromDxf beside dxflib's parser that reports to nobody: dxflib only parses. An ordinary drawing is
// little to parse and much to sample, so there our reader is measured, with the document that it
// fills, without the sampling.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/SampleDrawings.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include <istream>
#include <streambuf>

namespace {

const std::vector<char>& ordinary() {
    static const std::string text = ordinaryDrawing();
    static const std::vector<char> bytes(text.begin(), text.end());
    return bytes;
}

/// Reads bytes in place.
class BytesBuffer : public std::streambuf {
public:
    explicit BytesBuffer(std::vector<char>& bytes) {
        setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
    }
};

void parseWithDxflib(benchmark::State& state, std::vector<char> drawing) {
    for (auto _ : state) {
        BytesBuffer buffer(drawing);
        std::istream stream(&buffer);
        DL_CreationAdapter nobody;
        if (!DL_Dxf().in(stream, &nobody)) {
            state.SkipWithError("not read");
        }
    }
}

void points(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::vector<char>& drawing = pointDrawingOf(size);
    for (auto _ : state) {
        std::vector<cv::Point3_<double>> walk;
        if (!converters::fromDxf(drawing, walk) || walk.size() != size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(walk.data());
    }
}

void pointsWithDxflib(benchmark::State& state) {
    parseWithDxflib(state, pointDrawingOf(static_cast<std::size_t>(state.range(0))));
}

void ordinaryToDocument(benchmark::State& state) {
    for (auto _ : state) {
        DXFDocument document;
        if (!DXFReader(document).load(ordinary().data(), ordinary().size())) {
            state.SkipWithError("not read");
        }
    }
}

void ordinaryWithDxflib(benchmark::State& state) {
    parseWithDxflib(state, ordinary());
}

BENCHMARK(points)->Name("fromDxf")->Apply(allSizes);
BENCHMARK(pointsWithDxflib)->Name("fromDxf-dxflib")->Apply(allSizes);
BENCHMARK(ordinaryToDocument)->Name("readOrdinary")->Unit(benchmark::kMillisecond);
BENCHMARK(ordinaryWithDxflib)->Name("readOrdinary-dxflib")->Unit(benchmark::kMillisecond);

} // namespace
