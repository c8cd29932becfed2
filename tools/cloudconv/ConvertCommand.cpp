#include "tools/cloudconv/ConvertCommand.h"

#include "tools/cloudconv/Convert.h"
#include "tools/cloudconv/PathArguments.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

namespace {

constexpr char footer[] =
    R"(A drawing becomes its path: the contours of its points, lines, circles, arcs,
ellipses, polylines and splines, blocks included, as points that leave the curves
by no more than --tolerance. PLY gets one row of points, whose intensity counts
the contours from 1; .csv and .xyz the same with all digits. What a path cannot
hold (text, hatches, hidden layers) is said on standard error.

A scan keeps every number of its vertices under its name and type, with --xyzi
the position and the intensity alone. To .dxf it becomes a drawing of POINTs.
Scans of any size are converted in constant memory, pipes included.

With --plain both are read by the fixed rules of the library's fromDxf and
fromPly: a drawing becomes one walk with about ten points per drawing unit, in
which (x, y) of the drawing is (x, 0, y).

The format follows from the extension; all other names, and "-", which is
standard input or output, need --from or --to. The output appears whole or not at
all.

Examples:
  cloudconv convert drawing.dxf path.ply
  cloudconv convert drawing.dxf path.csv --unit mm --step 0.5 --order nearest
  cloudconv convert scan.ply scan_text.ply --ascii
  zcat scan.ply.gz | cloudconv convert - scan.dxf --from ply)";

/// Adds --shift: a vector, or "auto".
void addShiftOption(CLI::App& command, converters::ScanOptions& scan) {
    const auto take = [&scan](const std::string& text) {
        if (text == "auto") {
            scan.automaticShift = true;
            return;
        }
        cv::Point3_<double> shift;
        const char* next = text.c_str();
        for (double* const part : {&shift.x, &shift.y, &shift.z}) {
            char* end = nullptr;
            *part = std::strtod(next, &end);
            const bool isLast = part == &shift.z;
            if (end == next || *end != (isLast ? '\0' : ',') || !std::isfinite(*part)) {
                throw CLI::ValidationError("--shift", '"' + text + "\" is not X,Y,Z or auto");
            }
            next = end + 1;
        }
        scan.shift = shift;
    };
    command
        .add_option_function<std::string>("--shift", take,
                                          "taken off the coordinates before they become floats")
        ->type_name("X,Y,Z|auto");
}

void addScanOptions(CLI::App& command, ConvertOptions& options) {
    command
        .add_option("--intensity-from", options.scan.intensity,
                    "the property that becomes the intensity")
        ->type_name("NAME");
    addShiftOption(command, options.scan);
    command.add_flag("--xyzi", options.xyzi, "write x, y, z and intensity alone")
        ->disable_flag_override();
}

void addOutputOptions(CLI::App& command, ConvertOptions& options) {
    constexpr int mostDigits = 17;
    command.add_flag("--ascii", options.ascii, "write PLY as text")->disable_flag_override();
    command
        .add_option("--digits", options.digits,
                    "significant digits in texts [as many as it takes to read back the same]")
        ->check(CLI::Range(1, mostDigits));
    command.add_option("--intensity", options.intensity, "give every point this intensity")
        ->check(
            numberBetween(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max()));
    addForceFlag(command, options.force);
}

/// The first option of scans that was given; empty when none was.
std::string givenScanOption(const CLI::App& command) {
    for (const char* name : {"--intensity-from", "--shift", "--xyzi"}) {
        if (command.count(name) > 0) {
            return name;
        }
    }
    return {};
}

} // namespace

void addConvertCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<ConvertOptions>();
    CLI::App& command = *app.add_subcommand("convert", "Convert scans and drawings");
    command.footer(footer);
    command.add_option("INPUT", options->input, "file to read; - is standard input")->required();
    command
        .add_option("OUTPUT", options->output,
                    "file to write, replaced when it exists; - is standard output")
        ->required();
    addOutputOptions(command, *options);
    addScanOptions(command, *options);
    addPathOptions(command, options->path);
    addPlainFlag(command, options->plain);
    addInputFormatOption(command, options->from);
    addOutputFormatOption(command, options->to);
    addQuietFlag(command, options->quiet);
    command.callback([options, &command, &chosen] {
        options->drawingOption = givenPathOption(command);
        options->scanOption = givenScanOption(command);
        chosen.input = options->input;
        chosen.run = [options] {
            convert(*options);
            return succeeded;
        };
    });
}
