#include "tools/cloudconv/InfoCommand.h"

#include "tools/cloudconv/PathArguments.h"
#include "tools/cloudconv/StandardOutput.h"
#include "tools/cloudconv/info/Info.h"
#include "tools/cloudconv/info/InfoText.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace {

constexpr char footer[] =
    R"(Of a scan: its encoding, size, elements, properties and what becomes of each,
whether it is organised, bounds, intensities, points without a place (nan), and
why it is refused if it is. Scans of any size are described in constant memory.

Of a drawing: its unit, layers (off or frozen ones, too), what its path holds by
kind of entity and contour by contour, lengths, bounds with heights, and what is
left out and why. Options of the path apply.

With --plain both as the library's fromPly and fromDxf read them.

Examples:
  cloudconv info scan.ply
  cloudconv info drawing.dxf --json | jq .contours.open)";

ExitStatus info(const InfoOptions& options) {
    constexpr int indent = 2;
    const nlohmann::ordered_json description = describeFile(options);
    // Names in old drawings are not UTF-8.
    printToStandardOutput(options.json
                              ? description.dump(indent, ' ', false,
                                                 nlohmann::ordered_json::error_handler_t::replace) +
                                    '\n'
                              : asText(description));
    return succeeded;
}

} // namespace

void addInfoCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App& command = *app.add_subcommand("info", "Describe a file");
    command.footer(footer);
    command.add_option("FILE", options->input, "file to describe; - is standard input")->required();
    command.add_flag("--json", options->json, "as JSON, in full")->disable_flag_override();
    addInputFormatOption(command, options->from);
    addPathOptions(command, options->path);
    addPlainFlag(command, options->plain);
    addQuietFlag(command, options->quiet);
    command.callback([options, &command, &chosen] {
        options->pathOption = givenPathOption(command);
        chosen.input = options->input;
        chosen.run = [options] { return info(*options); };
    });
}
