// toPlyBinary and toPlyAscii beside the Point Cloud Library's writer and, for what no writer can
// avoid, a plain copy of the coordinates.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"

#include <pcl/io/ply_io.h>

#include <cstdio>
#include <cstring>

namespace {

void pack(benchmark::State& state) {
    const auto& cloud = cloudOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<unsigned char> bytes(cloud.size() * 16);
        unsigned char* record = bytes.data();
        for (const pcl::PointXYZI& point : cloud) {
            std::memcpy(record, &point.x, 4);
            std::memcpy(record + 4, &point.y, 4);
            std::memcpy(record + 8, &point.z, 4);
            std::memcpy(record + 12, &point.intensity, 4);
            record += 16;
        }
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
}

using Writer = bool (*)(const pcl::PointCloud<pcl::PointXYZI>&, std::vector<unsigned char>&);

void ours(benchmark::State& state, Writer write) {
    const auto& cloud = cloudOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<unsigned char> file;
        if (!write(cloud, file)) {
            state.SkipWithError("not written");
        }
        benchmark::DoNotOptimize(file.data());
    }
}

void pclWriter(benchmark::State& state, bool binary) {
    const auto& cloud = cloudOf(static_cast<std::size_t>(state.range(0)));
    const std::string path = memoryFile("written.ply");
    for (auto _ : state) {
        if (pcl::PLYWriter().write(path, cloud, binary) != 0) {
            state.SkipWithError("not written");
        }
    }
    std::remove(path.c_str());
}

BENCHMARK(pack)->Name("pack")->Apply(allSizes);
BENCHMARK_CAPTURE(ours, binary, converters::toPlyBinary)->Name("toPlyBinary")->Apply(allSizes);
BENCHMARK_CAPTURE(pclWriter, binary, true)->Name("toPlyBinary-PCL")->Apply(allSizes);
BENCHMARK_CAPTURE(ours, ascii, converters::toPlyAscii)->Name("toPlyAscii")->Apply(allSizes);
BENCHMARK_CAPTURE(pclWriter, ascii, false)->Name("toPlyAscii-PCL")->Apply(allSizes);

} // namespace
