#include "benchmarks/Inputs.h"

#include "converters/Converters.h"
#include "tests/support/SampleClouds.h"
#include "tests/support/SampleDrawings.h"

#include <unistd.h>

#include <fstream>
#include <map>

namespace {

/// The value that `make` gives for `size`, made once.
template <typename Make>
auto& kept(std::size_t size, Make make) {
    static std::map<std::size_t, decltype(make(size))> values;
    auto found = values.find(size);
    if (found == values.end()) {
        found = values.emplace(size, make(size)).first;
    }
    return found->second;
}

} // namespace

const pcl::PointCloud<pcl::PointXYZI>& cloudOf(std::size_t size) {
    return kept(size, sampleCloud);
}

const std::vector<cv::Point3_<double>>& pointsOf(std::size_t size) {
    return kept(size, samplePoints);
}

const std::vector<unsigned char>& binaryPlyOf(std::size_t size) {
    return kept(size, [](std::size_t points) {
        std::vector<unsigned char> file;
        converters::toPlyBinary(cloudOf(points), file);
        return file;
    });
}

const std::vector<unsigned char>& asciiPlyOf(std::size_t size) {
    return kept(size, [](std::size_t points) {
        std::vector<unsigned char> file;
        converters::toPlyAscii(cloudOf(points), file);
        return file;
    });
}

const std::vector<char>& pointDrawingOf(std::size_t size) {
    return kept(size, [](std::size_t points) {
        std::vector<unsigned char> file;
        converters::toDxf(pointsOf(points), file);
        return std::vector<char>(file.begin(), file.end());
    });
}

const std::vector<char>& lineDrawingOf(std::size_t size) {
    return kept(size, [](std::size_t lines) {
        const std::string text = lineDrawing(lines, 1.0);
        return std::vector<char>(text.begin(), text.end());
    });
}

std::string memoryFile(const std::string& name) {
    return "/dev/shm/converters-" + std::to_string(getpid()) + '-' + name;
}

void writeFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

void allSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)
        ->Arg(1000)
        ->Arg(10000)
        ->Arg(100000)
        ->Arg(1000000)
        ->Arg(5000000);
}
