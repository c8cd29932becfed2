#include "tools/cloudconv/PathArguments.h"

#include "tools/cloudconv/Command.h"

#include <array>
#include <limits>
#include <string>

namespace {

using converters::LengthUnit;
using converters::PathAxes;
using converters::PathOrder;

constexpr char group[] = "Path of a drawing";

constexpr std::array<const char*, 12> pathOptions = {
    "--tolerance",    "--step",   "--join",        "--unit", "--scale", "--layer",
    "--except-layer", "--hidden", "--paper-space", "--axes", "--order", "--max-points"};

void addLengths(CLI::App& command, converters::PathOptions& options) {
    constexpr double mostPoints = 1e15;
    constexpr double least = std::numeric_limits<double>::min();
    constexpr double most = std::numeric_limits<double>::max();
    command
        .add_option("--tolerance", options.tolerance,
                    "the most that a chord may leave its curve [0.01 mm, or 0.01 without a unit]")
        ->check(numberBetween(least, most))
        ->group(group);
    command
        .add_option("--step", options.step,
                    "the most between neighbouring points, of straight lines, too [none]")
        ->check(numberBetween(least, most))
        ->group(group);
    command
        .add_option("--join", options.joinDistance,
                    "ends nearer than this are joined [0.001 drawing units]")
        ->check(numberBetween(0.0, most))
        ->group(group);
    command.add_option("--scale", options.scale, "multiplies coordinates, after --unit")
        ->check(numberBetween(least, most))
        ->group(group);
    command
        .add_option("--max-points", options.maximumPoints,
                    "more points are refused, before memory is asked for")
        ->check(numberBetween(1, mostPoints))
        ->capture_default_str()
        ->group(group);
}

void addChoices(CLI::App& command, converters::PathOptions& options) {
    command
        .add_option("--unit", options.unit,
                    "unit of the output: mm, cm, m, in or ft [the drawing's]")
        ->type_name("UNIT")
        ->transform(oneOf<LengthUnit>({{"mm", LengthUnit::millimetre},
                                       {"cm", LengthUnit::centimetre},
                                       {"m", LengthUnit::metre},
                                       {"in", LengthUnit::inch},
                                       {"ft", LengthUnit::foot}}))
        ->group(group);
    command.add_option("--axes", options.axes, "drawing: (x, y, z), the default; plain: (x, 0, y)")
        ->type_name("AXES")
        ->transform(oneOf<PathAxes>({{"drawing", PathAxes::drawing}, {"plain", PathAxes::plain}}))
        ->group(group);
    command
        .add_option("--order", options.order,
                    "of contours: drawn, the default; nearest: short ways between them; "
                    "inside-first: as cutters need it")
        ->type_name("ORDER")
        ->transform(oneOf<PathOrder>({{"drawn", PathOrder::drawn},
                                      {"nearest", PathOrder::nearest},
                                      {"inside-first", PathOrder::insideFirst}}))
        ->group(group);
}

void addSelection(CLI::App& command, converters::PathOptions& options) {
    constexpr int onePerOption = 1;
    command
        .add_option("--layer", options.layers,
                    "take this layer only; * and ? stand for others; repeatable")
        ->type_name("NAME")
        ->expected(onePerOption)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->group(group);
    command.add_option("--except-layer", options.exceptLayers, "leave this layer out; repeatable")
        ->type_name("NAME")
        ->expected(onePerOption)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->group(group);
    command
        .add_flag("--hidden", options.hidden,
                  "take what is invisible, and layers that are off or frozen")
        ->disable_flag_override()
        ->group(group);
    command.add_flag("--paper-space", options.paperSpace, "take paper space, too")
        ->disable_flag_override()
        ->group(group);
}

} // namespace

void addPathOptions(CLI::App& command, converters::PathOptions& options) {
    addLengths(command, options);
    addChoices(command, options);
    addSelection(command, options);
}

void addPlainFlag(CLI::App& command, bool& plain) {
    command
        .add_flag("--plain", plain,
                  "by the fixed rules that programs on the library's fromPly and fromDxf rely on")
        ->disable_flag_override();
}

std::string givenPathOption(const CLI::App& command) {
    for (const char* name : pathOptions) {
        if (command.count(name) > 0) {
            return name;
        }
    }
    return {};
}
