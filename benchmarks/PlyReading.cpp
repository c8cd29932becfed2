// fromPly beside the readers of the Point Cloud Library and of VTK. VTK has no place for the
// intensity: it passes over it.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"

#include <pcl/io/ply_io.h>
#include <vtkPLYReader.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include <cstdio>

namespace {

using File = const std::vector<unsigned char>& (*)(std::size_t size);

void ours(benchmark::State& state, File fileOf) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::vector<unsigned char>& file = fileOf(size);
    for (auto _ : state) {
        pcl::PointCloud<pcl::PointXYZI> cloud;
        if (!converters::fromPly(file, cloud).success || cloud.size() != size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(cloud.data());
    }
}

void pclReader(benchmark::State& state, File fileOf) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::string path = memoryFile("read.ply");
    writeFile(path, fileOf(size));
    for (auto _ : state) {
        pcl::PointCloud<pcl::PointXYZI> cloud;
        if (pcl::PLYReader().read(path, cloud) != 0 || cloud.size() != size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(cloud.data());
    }
    std::remove(path.c_str());
}

void vtkReader(benchmark::State& state, File fileOf) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::string path = memoryFile("read.ply");
    writeFile(path, fileOf(size));
    for (auto _ : state) {
        const auto reader = vtkSmartPointer<vtkPLYReader>::New();
        reader->SetFileName(path.c_str());
        reader->Update();
        if (reader->GetOutput()->GetNumberOfPoints() != static_cast<vtkIdType>(size)) {
            state.SkipWithError("not read");
        }
    }
    std::remove(path.c_str());
}

BENCHMARK_CAPTURE(ours, binary, binaryPlyOf)->Name("fromPlyBinary")->Apply(allSizes);
BENCHMARK_CAPTURE(pclReader, binary, binaryPlyOf)->Name("fromPlyBinary-PCL")->Apply(allSizes);
BENCHMARK_CAPTURE(vtkReader, binary, binaryPlyOf)->Name("fromPlyBinary-VTK")->Apply(allSizes);
BENCHMARK_CAPTURE(ours, ascii, asciiPlyOf)->Name("fromPlyAscii")->Apply(allSizes);
BENCHMARK_CAPTURE(pclReader, ascii, asciiPlyOf)->Name("fromPlyAscii-PCL")->Apply(allSizes);
BENCHMARK_CAPTURE(vtkReader, ascii, asciiPlyOf)->Name("fromPlyAscii-VTK")->Apply(allSizes);

} // namespace
