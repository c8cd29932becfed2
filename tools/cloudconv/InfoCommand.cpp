#include "tools/cloudconv/InfoCommand.h"

#include "tools/cloudconv/Info.h"
#include "tools/cloudconv/StandardOutput.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace {

struct InfoOptions {
    std::string input;
    std::optional<FileFormat> from;
    bool json = false;
    bool quiet = false;
};

constexpr char footer[] =
    R"(Of a scan: its encoding, size, fields and what becomes of each, whether it is
organised, bounds, points without a place (nan), and why it is refused if it is.

Of a drawing: layers, entities by kind, those too that are passed over, the
contours of its walk with their lengths, its points, and its bounds in the
drawing and in the cloud.

Examples:
  cloudconv info scan.ply
  cloudconv info drawing.dxf --json | jq .contours.open)";

ExitStatus info(const InfoOptions& options) {
    constexpr int indent = 2;
    const nlohmann::ordered_json description =
        describeFile(options.input, options.from, options.quiet);
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
    addQuietFlag(command, options->quiet);
    command.callback([options, &chosen] {
        chosen.input = options->input;
        chosen.run = [options] { return info(*options); };
    });
}
