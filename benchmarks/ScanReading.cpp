// readScan beside the readers of VTK and Open3D, all of a file in memory's file system, and beside
// a loop that only picks the numbers from bytes in memory. VTK and Open3D take other properties,
// too: what they find.

#include "benchmarks/Inputs.h"
#include "benchmarks/ScanFiles.h"
#include "converters/Converters.h"
#include "converters/Scan.h"

#include <fcntl.h>
#include <open3d/geometry/PointCloud.h>
#include <open3d/io/FileFormatIO.h>
#include <open3d/io/PointCloudIO.h>
#include <unistd.h>
#include <vtkPLYReader.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t points = 1000000;

/// A scan as a file in memory's file system, removed at the end.
class ScanOnDisk {
public:
    ScanOnDisk(const std::string& name, const ScanKind& kind) : m_path(memoryFile(name + ".ply")) {
        writeFile(m_path, scanFileOf(kind, points));
    }
    ~ScanOnDisk() { std::remove(m_path.c_str()); }
    ScanOnDisk(const ScanOnDisk&) = delete;
    ScanOnDisk& operator=(const ScanOnDisk&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

std::string nameOf(const ScanKind& kind) {
    return std::string(kind.isRich ? "double-colours-normals-" : "float-intensity-") +
           (kind.hasFaces ? "faces-" : "") + kind.format;
}

/// The path of a scan, which is made on first need.
const std::string& pathOf(const ScanKind& kind) {
    static std::map<std::string, ScanOnDisk> files;
    const std::string name = nameOf(kind);
    return files.try_emplace(name, name, kind).first->second.path();
}

void ours(benchmark::State& state, ScanKind kind) {
    const std::string& path = pathOf(kind);
    for (auto _ : state) {
        pcl::PointCloud<pcl::PointXYZI> cloud;
        if (!converters::readScan(std::filesystem::path(path), cloud) || cloud.size() != points) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(cloud.data());
    }
}

void oursInMemory(benchmark::State& state, ScanKind kind) {
    const std::vector<unsigned char> file = scanFileOf(kind, points);
    for (auto _ : state) {
        pcl::PointCloud<pcl::PointXYZI> cloud;
        if (!converters::readScan(file.data(), file.size(), cloud) || cloud.size() != points) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(cloud.data());
    }
}

void vtkReader(benchmark::State& state, ScanKind kind) {
    const std::string& path = pathOf(kind);
    for (auto _ : state) {
        const auto reader = vtkSmartPointer<vtkPLYReader>::New();
        reader->SetFileName(path.c_str());
        reader->Update();
        if (reader->GetOutput()->GetNumberOfPoints() != static_cast<vtkIdType>(points)) {
            state.SkipWithError("not read");
        }
    }
}

void open3dReader(benchmark::State& state, ScanKind kind) {
    const std::string& path = pathOf(kind);
    for (auto _ : state) {
        open3d::geometry::PointCloud cloud;
        if (!open3d::io::ReadPointCloudFromPLY(path, cloud, {}) || cloud.points_.size() != points) {
            state.SkipWithError("not read");
        }
    }
}

template <typename Number>
float numberAt(const unsigned char* bytes, bool isSwapped) {
    unsigned char turned[sizeof(Number)];
    std::memcpy(turned, bytes, sizeof turned);
    if (isSwapped) {
        std::reverse(turned, turned + sizeof turned);
    }
    Number number;
    std::memcpy(&number, turned, sizeof number);
    return static_cast<float>(number);
}

template <typename Number>
void pick(const unsigned char* record, std::size_t size, bool isSwapped, bool hasIntensity,
          pcl::PointCloud<pcl::PointXYZI>& cloud) {
    for (pcl::PointXYZI& point : cloud.points) {
        point.x = numberAt<Number>(record, isSwapped);
        point.y = numberAt<Number>(record + sizeof(Number), isSwapped);
        point.z = numberAt<Number>(record + 2 * sizeof(Number), isSwapped);
        point.intensity =
            hasIntensity ? numberAt<Number>(record + 3 * sizeof(Number), isSwapped) : 0;
        record += size;
    }
}

void loop(benchmark::State& state, ScanKind kind) {
    const std::vector<unsigned char> file = scanFileOf(kind, points);
    const unsigned char* const body = file.data() + headerSizeOf(file);
    const bool isSwapped = std::string_view(kind.format) == "binary_big_endian";
    for (auto _ : state) {
        pcl::PointCloud<pcl::PointXYZI> cloud;
        cloud.points.resize(points);
        if (kind.isRich) {
            pick<double>(body, 39, isSwapped, false, cloud);
        } else {
            pick<float>(body, 16, isSwapped, true, cloud);
        }
        benchmark::DoNotOptimize(cloud.data());
    }
}

void fromFile(benchmark::State& state) {
    const std::string& path = pathOf({true, false, "binary_little_endian"});
    for (auto _ : state) {
        std::vector<unsigned char> bytes;
        if (!converters::from_file(path, bytes)) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(bytes.data());
    }
}

void freshBuffer(benchmark::State& state) {
    const std::string& path = pathOf({true, false, "binary_little_endian"});
    const std::size_t size = std::filesystem::file_size(path);
    for (auto _ : state) {
        const std::unique_ptr<unsigned char[]> bytes(new unsigned char[size]);
        const int file = open(path.c_str(), O_RDONLY);
        if (read(file, bytes.get(), size) != static_cast<ssize_t>(size)) {
            state.SkipWithError("not read");
        }
        close(file);
        benchmark::DoNotOptimize(bytes.get());
    }
}

void registerKind(const ScanKind& kind) {
    const auto add = [&](const std::string& reader, void (*run)(benchmark::State&, ScanKind)) {
        benchmark::RegisterBenchmark(("readScan-" + nameOf(kind) + reader).c_str(), run, kind)
            ->Unit(benchmark::kMillisecond);
    };
    add("", ours);
    add("-VTK", vtkReader);
    add("-Open3D", open3dReader);
    if (std::string_view(kind.format) != "ascii" && !kind.hasFaces) {
        add("-memory", oursInMemory);
        add("-loop", loop);
    }
}

[[maybe_unused]] const bool isRegistered = [] {
    for (const bool isRich : {false, true}) {
        for (const bool hasFaces : {false, true}) {
            for (const char* format : {"ascii", "binary_little_endian", "binary_big_endian"}) {
                registerKind({isRich, hasFaces, format});
            }
        }
    }
    return true;
}();

BENCHMARK(fromFile)->Name("from_file")->Unit(benchmark::kMillisecond);
BENCHMARK(freshBuffer)->Name("from_file-buffer")->Unit(benchmark::kMillisecond);

} // namespace
