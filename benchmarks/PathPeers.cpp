// path_benchmark ROUNDS MOST EZDXF CLOUDCONV [DRAWING...]: what readPath and PathReader take beside
// GDAL and ezdxf, and the command CLOUDCONV beside ogr2ogr, in CPU time and memory, as JSON. The
// drawings are those named and made ones of 1,000 to MOST entities; EZDXF is the script that has
// ezdxf do the same.
//
// Every measurement is a process of its own, so that each has its own peak of memory. All begin
// with a file and end with points in memory, but cloudconv, which writes them to a file. PathReader
// and GDAL keep none of them; readPath and ezdxf keep all.

#include "converters/Converters.h"
#include "converters/PathReader.h"
#include "tests/support/PathDrawings.h"

#include <fcntl.h>
#include <gdal_priv.h>
#include <malloc.h>
#include <ogrsf_frmts.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr double tolerance = 0.01;
/// What an ordinary step of the walk is, for the comparison with it.
constexpr double walkStep = 0.1;

struct Cost {
    double seconds = -1;
    double kibibytes = 0;
    double points = 0;
};

double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double statusOf(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, name.size() + 1, name + ':') == 0) {
            return std::stod(line.substr(name.size() + 1));
        }
    }
    return 0;
}

/// What some work costs in a child process; `work` returns the number of points.
Cost costOf(const std::function<std::size_t()>& work) {
    Cost cost;
    int ends[2];
    if (pipe(ends) != 0) {
        return cost;
    }
    const pid_t child = fork();
    if (child == 0) {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << 5;
        const double memory = statusOf("VmRSS");
        const double start = cpuSeconds();
        cost.points = static_cast<double>(work());
        cost.seconds = cpuSeconds() - start;
        cost.kibibytes = statusOf("VmHWM") - memory;
        _exit(write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
    }
    close(ends[1]);
    Cost told;
    const bool isTold = read(ends[0], &told, sizeof told) == sizeof told;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return isTold ? told : cost;
}

/// Work of a kind, what it costs each time, and the least.
struct Measured {
    const char* name;
    std::function<Cost()> cost;
    Cost least{};
};

/// One round of each after the other: a machine that is slow for a second is so for all.
void measureInTurns(int rounds, std::vector<Measured>& all) {
    for (int round = 0; round < rounds; ++round) {
        for (Measured& each : all) {
            const Cost cost = each.cost();
            if (cost.seconds >= 0 &&
                (each.least.seconds < 0 || cost.seconds < each.least.seconds)) {
                each.least = cost;
            }
        }
    }
}

std::size_t readPath(const std::string& file, const converters::PathOptions& options) {
    converters::DrawingPath path;
    const converters::ReadResult result =
        converters::readPath(std::filesystem::path(file), path, options);
    if (!result) {
        std::fprintf(stderr, "%s: %s\n", file.c_str(), result.reason.c_str());
        std::abort();
    }
    return path.points.size();
}

/// A few contours at a time, and nothing kept.
std::size_t readInParts(const std::string& file, const converters::PathOptions& options) {
    converters::PathReader reader(std::filesystem::path(file), options);
    converters::PathContours contours;
    std::size_t points = 0;
    converters::ReadResult result = reader.open();
    while ((result = result ? reader.read(contours) : result) && !contours.contours.empty()) {
        points += contours.points.size();
    }
    if (!result) {
        std::fprintf(stderr, "%s: %s\n", file.c_str(), result.reason.c_str());
        std::abort();
    }
    return points;
}

std::size_t walk(const std::string& file) {
    std::vector<unsigned char> bytes;
    converters::from_file(file, bytes);
    std::vector<cv::Point3_<double>> points;
    converters::fromDxf({bytes.begin(), bytes.end()}, points);
    return points.size();
}

std::size_t pointsOf(const OGRGeometry& geometry) {
    if (const auto* const collection = dynamic_cast<const OGRGeometryCollection*>(&geometry)) {
        std::size_t points = 0;
        for (const OGRGeometry* const part : *collection) {
            points += pointsOf(*part);
        }
        return points;
    }
    if (const auto* const curve = dynamic_cast<const OGRSimpleCurve*>(&geometry)) {
        return static_cast<std::size_t>(curve->getNumPoints());
    }
    return 1;
}

/// Every feature with its geometry, and nothing kept.
std::size_t readWithGdal(const std::string& file) {
    const auto dataset = GDALDatasetUniquePtr(GDALDataset::Open(file.c_str(), GDAL_OF_VECTOR));
    std::size_t points = 0;
    for (const auto& feature : dataset->GetLayer(0)) {
        if (const OGRGeometry* const geometry = feature->GetGeometryRef()) {
            points += pointsOf(*geometry);
        }
    }
    return points;
}

/// The last line that a program prints; nothing when it fails.
std::string lastLineOf(const std::string& command) {
    FILE* const output = popen(command.c_str(), "r");
    if (output == nullptr) {
        return {};
    }
    std::string last;
    char line[500] = "";
    while (std::fgets(line, sizeof line, output) != nullptr) {
        last = line;
    }
    return pclose(output) == 0 ? last : std::string();
}

/// A program and its arguments.
using Command = std::vector<std::string>;

/// The CPU time of a command as a whole, with its start; what it prints is dropped.
Cost costOfCommand(const Command& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
    }
    Cost cost;
    pid_t child = 0;
    int status = -1;
    rusage usage{};
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0 &&
        wait4(child, &status, 0, &usage) == child && status == 0) {
        cost.seconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                       1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    }
    posix_spawn_file_actions_destroy(&actions);
    return cost;
}

/// The most memory that a command has resident, in KiB. A small program starts it, since the memory
/// of what does so counts as its own at first.
double memoryOfCommand(const Command& command) {
    std::string line = "exec /usr/bin/time -f %M";
    for (const std::string& argument : command) {
        line += " '" + argument + "'";
    }
    double kibibytes = 0;
    std::sscanf(lastLineOf(line + " 2>&1 >/dev/null").c_str(), "%lf", &kibibytes);
    return kibibytes;
}

/// What a script says that its work cost.
Cost costToldBy(const std::string& command) {
    Cost cost;
    std::sscanf(lastLineOf(command).c_str(), "%lf %lf %lf", &cost.seconds, &cost.kibibytes,
                &cost.points);
    return cost;
}

void print(const char* name, const Cost& cost) {
    std::printf(", \"%s\": {\"seconds\": %.6f, \"kibibytes\": %.0f, \"points\": %.0f}", name,
                cost.seconds, cost.kibibytes, cost.points);
}

/// The programs that are measured beside the library.
struct Programs {
    std::string ezdxf;
    std::string cloudconv;
};

/// @param hasWalk  whether the walk of fromDxf holds about what the path does
void measure(int rounds, const std::string& name, const std::string& file, const Programs& programs,
             bool hasWalk) {
    converters::PathOptions options;
    options.tolerance = tolerance;
    converters::PathOptions inSteps = options;
    inSteps.step = walkStep;
    const auto ourCost = [&](const converters::PathOptions& chosen) {
        return costOf([&] { return readPath(file, chosen); });
    };
    const std::string output = "/dev/shm/converters-" + std::to_string(getpid()) + ".ply";
    const Command cloudconv = {programs.cloudconv,        "--quiet", "--tolerance",
                               std::to_string(tolerance), file,      output};
    const Command ogr2ogr = {"ogr2ogr", "-f", "Memory", "out", file};
    std::vector<Measured> all = {
        {"readPath", [&] { return ourCost(options); }},
        {"PathReader", [&] { return costOf([&] { return readInParts(file, options); }); }},
        {"GDAL", [&] { return costOf([&] { return readWithGdal(file); }); }},
        {"cloudconv", [&] { return costOfCommand(cloudconv); }},
        {"ogr2ogr", [&] { return costOfCommand(ogr2ogr); }}};
    if (hasWalk) {
        all.push_back({"readPath, step", [&] { return ourCost(inSteps); }});
        all.push_back({"fromDxf", [&] { return costOf([&] { return walk(file); }); }});
    }
    measureInTurns(rounds, all);
    all[3].least.kibibytes = memoryOfCommand(cloudconv);
    all[4].least.kibibytes = memoryOfCommand(ogr2ogr);
    std::remove(output.c_str());
    static bool isFirst = true;
    std::printf("%s\n  {\"drawing\": \"%s\"", isFirst ? "" : ",", name.c_str());
    isFirst = false;
    for (const Measured& each : all) {
        print(each.name, each.least);
    }
    print("ezdxf",
          costToldBy("/usr/bin/python3 '" + programs.ezdxf + "' '" + file + "' 2>/dev/null"));
    std::printf("}");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 5) {
        std::fprintf(stderr, "usage: %s ROUNDS MOST EZDXF CLOUDCONV [DRAWING...]\n", argv[0]);
        return 2;
    }
    GDALAllRegister();
    // Blocks of any number of features, arcs as fine as the tolerance asks for.
    const double degrees =
        2 * std::acos(1 - tolerance / pathDrawingRadius) * 180 / 3.14159265358979;
    setenv("OGR_ARC_STEPSIZE", std::to_string(degrees).c_str(), 1);
    setenv("DXF_FEATURE_LIMIT_PER_BLOCK", "-1", 1);

    const int rounds = std::atoi(argv[1]);
    const std::size_t most = std::strtoull(argv[2], nullptr, 10);
    const Programs programs = {argv[3], argv[4]};
    const std::string made = "/dev/shm/converters-" + std::to_string(getpid()) + ".dxf";
    std::printf("[");
    for (std::size_t entities = 1000; entities <= most; entities *= 10) {
        const auto measureMade = [&](PathDrawingKind kind, const char* name) {
            std::ofstream(made, std::ios::binary) << pathDrawing(entities, kind);
            measure(rounds, std::to_string(entities) + name, made, programs,
                    kind == PathDrawingKind::walkable);
        };
        measureMade(PathDrawingKind::plain, " entities");
        measureMade(PathDrawingKind::inBlocks, " entities in blocks");
        measureMade(PathDrawingKind::walkable, " entities, walkable");
    }
    std::remove(made.c_str());
    for (int i = 5; i < argc; ++i) {
        const std::string file = argv[i];
        measure(rounds, file.substr(file.rfind('/') + 1), file, programs, false);
    }
    std::printf("\n]\n");
    return 0;
}
