// toDxf beside a loop over dxflib's writer, which writes a file of its own in the same directory.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

namespace {

void ours(benchmark::State& state) {
    const auto& points = pointsOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<unsigned char> file;
        if (!converters::toDxf(points, file)) {
            state.SkipWithError("not written");
        }
        benchmark::DoNotOptimize(file.data());
    }
}

/// No header and no tables, and the file is not read back: less than toDxf does.
void bareDxflib(benchmark::State& state) {
    const auto& points = pointsOf(static_cast<std::size_t>(state.range(0)));
    std::filesystem::create_directories(converters::tmpDxfPath);
    const std::string path = converters::tmpDxfPath / ("bare" + std::to_string(getpid()) + ".dxf");
    const DL_Attributes attributes("0", 7, 1, 10, "CONTINUOUS", -1);
    for (auto _ : state) {
        DL_Dxf dxflib;
        const std::unique_ptr<DL_WriterA> writer(dxflib.out(path.c_str(), DL_Codes::AC1009));
        writer->sectionEntities();
        for (const cv::Point3_<double>& point : points) {
            dxflib.writePoint(*writer, DL_PointData(point.x, point.y, point.z), attributes);
        }
        writer->sectionEnd();
        writer->dxfEOF();
        writer->close();
        if (writer->openFailed()) {
            state.SkipWithError("not written");
        }
    }
    std::filesystem::remove(path);
}

BENCHMARK(ours)->Name("toDxf")->Apply(allSizes);
BENCHMARK(bareDxflib)->Name("toDxf-dxflib")->Apply(allSizes);

} // namespace
