// toDxf beside a loop over dxflib's writer, which writes a file of its own in the same directory.
//
// The limit is what the file alone costs: writing the same bytes to it, reading them back, removing
// it, by plain calls of the system and into a plain vector.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>
#include <fcntl.h>
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

void fileAlone(benchmark::State& state) {
    const std::vector<char>& bytes = pointDrawingOf(static_cast<std::size_t>(state.range(0)));
    const std::string path = converters::tmpDxfPath / ("file" + std::to_string(getpid()) + ".dxf");
    const auto size = static_cast<ssize_t>(bytes.size());
    for (auto _ : state) {
        int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        const ssize_t written = write(file, bytes.data(), bytes.size());
        close(file);
        file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        std::vector<unsigned char> back(bytes.size());
        if (written != size || read(file, back.data(), back.size()) != size) {
            state.SkipWithError("not written");
        }
        close(file);
        benchmark::DoNotOptimize(back.data());
        std::filesystem::remove(path);
    }
}

BENCHMARK(ours)->Name("toDxf")->Apply(allSizes);
BENCHMARK(fileAlone)->Name("toDxf-file")->Apply(allSizes);
BENCHMARK(bareDxflib)->Name("toDxf-dxflib")->Apply(allSizes);

} // namespace
