#include "tools/cloudconv/ConvertCommand.h"

#include "tools/cloudconv/Convert.h"

#include <limits>
#include <memory>

namespace {

constexpr char footer[] =
    R"(A drawing becomes one walk of points: its lines, circles, arcs, polylines and
splines, about ten points per drawing unit, joined end to end where ends lie
within 0.001. A drawing's (x, y) is a cloud's (x, 0, y). The walk is a PLY file
of one row, whose intensity counts from 1 the runs that are joined. A cloud
becomes a drawing of POINTs, one at the x, y and z of each point; POINTs that
follow one another are read back with the sign of z turned.

The format follows from the extension, .ply or .dxf; all other names, and "-",
which is standard input or output, need --from or --to. The output appears whole
or not at all. What it does not show is said on standard error.

Examples:
  cloudconv convert drawing.dxf walk.ply
  cloudconv convert scan.ply scan_text.ply --ascii
  zcat scan.ply.gz | cloudconv convert - scan.dxf --from ply)";

} // namespace

void addConvertCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<ConvertOptions>();
    CLI::App& command = *app.add_subcommand("convert", "Convert between PLY and DXF");
    command.footer(footer);
    command.add_option("INPUT", options->input, "file to read; - is standard input")->required();
    command
        .add_option("OUTPUT", options->output,
                    "file to write, replaced when it exists; - is standard output")
        ->required();
    command.add_flag("--ascii", options->ascii, "write PLY as text of six significant digits")
        ->disable_flag_override();
    command.add_option("--intensity", options->intensity, "give every point this intensity")
        ->check(
            numberBetween(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max()));
    addFormatOption(command, "--from", options->from, "format of INPUT: ply or dxf");
    addFormatOption(command, "--to", options->to, "format of OUTPUT: ply or dxf");
    addQuietFlag(command, options->quiet);
    command.callback([options, &chosen] {
        chosen.input = options->input;
        chosen.run = [options] {
            convert(*options);
            return succeeded;
        };
    });
}
