#include "tools/cloudconv/Command.h"

#include "converters/check/NearMisses.h"
#include "tools/cloudconv/Wording.h"

#include <cstdlib>
#include <limits>

void addInputFormatOption(CLI::App& command, std::optional<FileFormat>& format) {
    command.add_option("--from", format, "format of the input: ply or dxf")
        ->type_name("FORMAT")
        ->transform(oneOf(inputFormatNames()));
}

void addOutputFormatOption(CLI::App& command, std::optional<FileFormat>& format) {
    command.add_option("--to", format, "format of the output: ply, dxf, csv or xyz")
        ->type_name("FORMAT")
        ->transform(oneOf(outputFormatNames()));
}

CLI::Validator numberBetween(double least, double most) {
    const auto whyNot = [least, most](const std::string& text) -> std::string {
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        if (!text.empty() && *end == '\0' && number >= least && number <= most) {
            return {};
        }
        constexpr int digits = 6;
        return '"' + text + "\" is not a number from " + numberText(least, digits) + " to " +
               numberText(most, digits);
    };
    return {whyNot, ""};
}

void addDistanceOption(CLI::App& command, double& distance) {
    command
        .add_option("--distance", distance,
                    "ends that are this near and not joined are near misses")
        ->capture_default_str()
        ->check(numberBetween(converters::defaultJoinDistance, std::numeric_limits<double>::max()));
}

void addForceFlag(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "replace the input itself")->disable_flag_override();
}

void addQuietFlag(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "say nothing but failures")->disable_flag_override();
}
