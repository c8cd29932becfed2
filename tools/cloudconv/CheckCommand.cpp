#include "tools/cloudconv/CheckCommand.h"

#include "tools/cloudconv/Check.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/NearMisses.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/StandardError.h"
#include "tools/cloudconv/StandardOutput.h"

#include <memory>

namespace {

struct CheckOptions {
    std::string input;
    double distance = defaultNearness;
    bool quiet = false;
};

constexpr char footer[] =
    R"(Lists what one must know of a drawing before a robot follows its walk:
near misses (ends that lie more than 0.001 and at most the given distance apart),
duplicate entities, entities too short to sample, arcs without length.

Exit status: 0 nothing found, 1 could not be checked, 2 wrong usage, 3 something
was found.

Example:
  cloudconv check drawing.dxf --distance 0.05)";

ExitStatus check(const CheckOptions& options) {
    Progress progress(options.quiet);
    const std::string name = inputName(options.input);
    const std::vector<unsigned char> bytes = readInputFile(options.input, progress);
    const DxfContents drawing = readDxf(name, bytes, progress);
    progress.begin("checking " + name);
    const std::vector<std::string> findings = findingsOf(drawing, options.distance);
    progress.end();
    std::string text;
    for (const std::string& finding : findings) {
        std::string line = name;
        line += ": ";
        line += finding;
        text += printable(line);
        text += '\n';
    }
    if (findings.empty() && !options.quiet) {
        text = printable(name) + ": nothing found\n";
    }
    printToStandardOutput(text);
    return findings.empty() ? succeeded : foundSomething;
}

} // namespace

void addCheckCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& command = *app.add_subcommand("check", "List what a robot would stumble over");
    command.footer(footer);
    command.add_option("DRAWING", options->input, "DXF file to check; - is standard input")
        ->required();
    addDistanceOption(command, options->distance);
    addQuietFlag(command, options->quiet);
    command.callback([options, &chosen] {
        chosen.input = options->input;
        chosen.run = [options] { return check(*options); };
    });
}
