// peak_memory [SIZE]: the most memory that each conversion has beside its input, and what the
// drawing model holds, as JSON.
//
// Every conversion runs in a process of its own. The kernel's mark of the most resident memory is
// reset when the input is ready.

#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/SampleClouds.h"
#include "tests/support/SampleDrawings.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// The line "name: <n> kB" of this process, in bytes.
std::size_t statusOf(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, name.size() + 1, name + ':') == 0) {
            return std::stoull(line.substr(name.size() + 1)) * 1024;
        }
    }
    throw std::runtime_error("no " + name);
}

void require(bool condition) {
    if (!condition) {
        throw std::runtime_error("conversion failed");
    }
}

/// Runs `body` in a child process, which reports by itself.
void inProcess(const std::function<void()>& body) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        body();
        std::fflush(stdout);
        _exit(0);
    }
    int status = 1;
    waitpid(child, &status, 0);
    require(status == 0);
}

/// Prints what `convert` adds to the memory at its peak.
/// @param input    bytes of the input, which is there already
/// @param model    bytes that the drawing model holds meanwhile
/// @param convert  returns the bytes of the output
void report(const char* name, std::size_t input, std::size_t model,
            const std::function<std::size_t()>& convert) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
    const std::size_t before = statusOf("VmRSS");
    const std::size_t output = convert();
    const std::size_t most = statusOf("VmHWM");
    std::printf("  {\"conversion\": \"%s\", \"input\": %zu, \"output\": %zu, \"model\": %zu, "
                "\"added\": %zu},\n",
                name, input, output, model, most - before);
}

template <typename Byte>
std::size_t bytesOf(const std::vector<Byte>& buffer) {
    return buffer.size() * sizeof(Byte);
}

std::size_t bytesOf(const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    return cloud.size() * sizeof(pcl::PointXYZI);
}

std::size_t bytesOf(const pcl::PointCloud<pcl::PointXYZ>& cloud) {
    return cloud.size() * sizeof(pcl::PointXYZ);
}

using PlyWriter = bool (*)(const pcl::PointCloud<pcl::PointXYZI>&, std::vector<unsigned char>&);

void measurePly(const char* writerName, PlyWriter write, const char* readerName, std::size_t size) {
    inProcess([&] {
        const auto cloud = sampleCloud(size);
        report(writerName, bytesOf(cloud), 0, [&] {
            std::vector<unsigned char> file;
            require(write(cloud, file));
            return file.size();
        });
    });
    inProcess([&] {
        std::vector<unsigned char> file;
        require(write(sampleCloud(size), file));
        file.shrink_to_fit();
        report(readerName, file.size(), 0, [&] {
            pcl::PointCloud<pcl::PointXYZI> cloud;
            require(converters::fromPly(file, cloud).success);
            return bytesOf(cloud);
        });
    });
}

/// A drawing of `count` entities; `entity` gives the groups of each.
std::vector<char> drawingOf(std::size_t count, const std::function<std::string(int)>& entity) {
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    for (std::size_t i = 0; i < count; ++i) {
        text += entity(static_cast<int>(i));
    }
    text += "0\nENDSEC\n0\nEOF\n";
    return {text.begin(), text.end()};
}

std::string pointGroups(int code, double x, double y) {
    char groups[96];
    std::snprintf(groups, sizeof groups, "%d\n%.12f\n%d\n%.12f\n%d\n0.0\n", code, x, code + 10, y,
                  code + 20);
    return groups;
}

std::string circleOf(int i) {
    return "0\nCIRCLE\n8\n0\n" + pointGroups(10, i, i) + "40\n1.5\n";
}

std::string arcOf(int i) {
    return "0\nARC\n8\n0\n" + pointGroups(10, i, i) + "40\n1.5\n50\n10.0\n51\n80.0\n";
}

std::string polylineOf(int i, int vertices) {
    std::string text = "0\nLWPOLYLINE\n8\n0\n90\n" + std::to_string(vertices) + "\n70\n0\n";
    for (int j = 0; j < vertices; ++j) {
        text += "10\n" + std::to_string(i) + ".5\n20\n" + std::to_string(j) + ".5\n";
    }
    return text;
}

std::string splineOf(int i, int points) {
    std::string text = "0\nSPLINE\n8\n0\n70\n8\n71\n3\n72\n" + std::to_string(points + 4) +
                       "\n73\n" + std::to_string(points) + "\n74\n0\n";
    for (int j = 0; j < points + 4; ++j) {
        text += "40\n" + std::to_string(j) + ".0\n";
    }
    for (int j = 0; j < points; ++j) {
        text += pointGroups(10, i, j);
    }
    return text;
}

/// Bytes on the heap that the document of a drawing holds, ready to give its points.
std::size_t heldFor(const std::vector<char>& drawing) {
    const auto used = [] {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    const std::size_t before = used();
    DXFDocument document;
    require(DXFReader(document).load(drawing.data(), drawing.size()));
    document.setup();
    return used() - before;
}

void measureToDxf(std::size_t size) {
    inProcess([&] {
        const auto points = samplePoints(size);
        report("toDxf", bytesOf(points), bytesOf(points), [&] {
            std::vector<unsigned char> file;
            require(converters::toDxf(points, file));
            return file.size();
        });
    });
    inProcess([&] {
        pcl::PointCloud<pcl::PointXYZ> cloud;
        for (const auto& point : samplePoints(size)) {
            cloud.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y),
                               static_cast<float>(point.z));
        }
        report("toDxf, cloud", bytesOf(cloud), size * sizeof(cv::Point3_<double>), [&] {
            std::vector<unsigned char> file;
            require(converters::toDxf(cloud, file));
            return file.size();
        });
    });
}

template <typename Points>
void measureFromDxf(const char* name, const std::vector<char>& drawing) {
    std::size_t model = 0;
    int ends[2];
    require(pipe(ends) == 0);
    inProcess([&] {
        const std::size_t held = heldFor(drawing);
        require(write(ends[1], &held, sizeof held) == sizeof held);
    });
    require(read(ends[0], &model, sizeof model) == sizeof model);
    close(ends[0]);
    close(ends[1]);
    inProcess([&] {
        report(name, drawing.size(), model, [&] {
            Points points;
            require(converters::fromDxf(drawing, points));
            return bytesOf(points);
        });
    });
}

std::vector<char> pointDrawing(std::size_t size) {
    std::vector<unsigned char> file;
    require(converters::toDxf(samplePoints(size), file));
    return {file.begin(), file.end()};
}

void measureLines(std::size_t lines, const char* shape, double length) {
    const std::string text = lineDrawing(lines, length);
    const std::string name = "fromDxf, " + std::to_string(lines) + " LINEs of " + shape;
    measureFromDxf<std::vector<cv::Point3_<double>>>(name.c_str(), {text.begin(), text.end()});
}

/// Prints the bytes that one entity of a kind takes in the model.
/// @param most  the goal, or 0 where there is none
void reportHeld(const char* kind, std::size_t most,
                const std::function<std::vector<char>(std::size_t)>& drawing) {
    constexpr std::size_t count = 10000;
    inProcess([&] {
        const std::size_t held = heldFor(drawing(2 * count)) - heldFor(drawing(count));
        std::printf("  {\"held\": \"%s\", \"bytes\": %zu, \"most\": %zu},\n", kind, held / count,
                    most);
    });
}

using DrawingOf = std::function<std::vector<char>(std::size_t)>;

DrawingOf drawingOf(std::string (*entity)(int)) {
    return [=](std::size_t count) { return drawingOf(count, entity); };
}

DrawingOf drawingOf(std::string (*entity)(int, int), int parts) {
    return [=](std::size_t count) {
        return drawingOf(count, [=](int i) { return entity(i, parts); });
    };
}

void reportAllHeld() {
    reportHeld("LINE", 170, [](std::size_t count) {
        const std::string text = lineDrawing(count, 1.0);
        return std::vector<char>(text.begin(), text.end());
    });
    reportHeld("CIRCLE", 160, drawingOf(circleOf));
    reportHeld("ARC", 170, drawingOf(arcOf));
    reportHeld("LWPOLYLINE, 4 vertices", 420, drawingOf(polylineOf, 4));
    reportHeld("LWPOLYLINE, 12 vertices", 0, drawingOf(polylineOf, 12));
    reportHeld("SPLINE, 8 control points", 560, drawingOf(splineOf, 8));
    reportHeld("SPLINE, 24 control points", 0, drawingOf(splineOf, 24));
}

} // namespace

int main(int argc, char** argv) {
    using Points = std::vector<cv::Point3_<double>>;
    const std::size_t size = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1000000;
    constexpr std::size_t mostLines = 5000000;
    std::printf("[\n");
    measurePly("toPlyBinary", converters::toPlyBinary, "fromPly, binary", size);
    measurePly("toPlyAscii", converters::toPlyAscii, "fromPly, ASCII", size);
    measureToDxf(size);
    measureFromDxf<Points>("fromDxf, POINTs", pointDrawing(size));
    measureFromDxf<pcl::PointCloud<pcl::PointXYZ>>("fromDxf, POINTs, cloud", pointDrawing(size));
    for (const std::size_t lines : std::set<std::size_t>{size, mostLines}) {
        measureLines(lines, "11 points", 1.0);
        measureLines(lines, "one point", 0.05);
    }
    reportAllHeld();
    std::printf("  {\"size\": %zu}\n]\n", size);
    return 0;
}
