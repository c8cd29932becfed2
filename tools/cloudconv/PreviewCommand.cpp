#include "tools/cloudconv/PreviewCommand.h"

#include "tools/cloudconv/PathArguments.h"
#include "tools/cloudconv/Preview.h"

#include <cstdlib>
#include <map>
#include <memory>

namespace {

constexpr int smallest = 400;
constexpr int largest = 5000;
/// Browsers give up beyond.
constexpr std::size_t mostPointsAsked = 50'000'000;

constexpr char footer[] =
    R"(Of a drawing: its path, contour by contour in colours, with the start of each,
arrows in its direction and a box on each open end. Ends that are near and not
joined have a ring with the width of the gap. With more than twenty contours the
colours are those of layers, and signs get fewer and smaller. --plain draws the
walk of fromDxf.

Of a scan: its points, coloured by intensity, by the file's colours or by z, what
it has first.

A page (.html) opens in any browser and asks no network for anything: a drawing
whose layers and contours are listed and whose path is played, or a scan that
turns.

One unit is as long in x as in y. What is left out is said.

Examples:
  cloudconv preview drawing.dxf drawing.svg
  cloudconv preview drawing.dxf drawing.html
  cloudconv preview scan.ply scan.png --size 1600x1200 --view iso)";

/// A number of pixels; 0 when the text is none, or one out of range.
int sideOf(const std::string& text) {
    constexpr std::size_t mostDigits = 4;
    const bool isNumber = !text.empty() && text.size() <= mostDigits &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    const int side = isNumber ? std::stoi(text) : 0;
    return side >= smallest && side <= largest ? side : 0;
}

PictureSize sizeOf(const std::string& text) {
    const std::size_t sign = text.find('x');
    const PictureSize size = {sideOf(text.substr(0, sign)),
                              sign == std::string::npos ? 0 : sideOf(text.substr(sign + 1))};
    if (size.width == 0 || size.height == 0) {
        throw CLI::ValidationError("--size", "\"" + text + "\" is not WIDTHxHEIGHT, each from " +
                                                 std::to_string(smallest) + " to " +
                                                 std::to_string(largest));
    }
    return size;
}

/// Adds an option whose values have names.
template <typename Value>
void addNamedOption(CLI::App& command, const std::string& name, std::optional<Value>& value,
                    const std::string& description, const std::string& typeName,
                    const std::map<std::string, Value>& names) {
    command.add_option(name, value, description)->type_name(typeName)->transform(oneOf(names));
}

void addDrawingOptions(CLI::App& command, PreviewOptions& options) {
    addDistanceOption(command, options.distance);
    command
        .add_flag_callback(
            "--no-marks", [&options] { options.marks.marks = false; },
            "draw the lines of a drawing without starts, arrows, ends and ways")
        ->disable_flag_override();
    command.add_flag("--ways", options.marks.ways, "draw the ways between contours, however many")
        ->disable_flag_override();
}

void addScanOptions(CLI::App& command, PreviewOptions& options) {
    command
        .add_option("--intensity-from", options.intensity,
                    "the property of a scan that is the intensity")
        ->type_name("NAME");
    addNamedOption<CloudView>(command, "--view", options.view,
                              "from where to see a scan: top, front, side or iso", "SIDE",
                              {{"top", CloudView::Top},
                               {"front", CloudView::Front},
                               {"side", CloudView::Side},
                               {"iso", CloudView::Iso}});
    addNamedOption<CloudColour>(command, "--colour", options.colour,
                                "what colours a scan: intensity, height or rgb", "WHAT",
                                {{"intensity", CloudColour::Intensity},
                                 {"height", CloudColour::Height},
                                 {"rgb", CloudColour::Rgb}});
    command
        .add_option("--points", options.pagePoints,
                    "points of a scan that a page shows at most, evenly picked")
        ->type_name("NUMBER")
        ->check(CLI::Range(std::size_t(1), mostPointsAsked))
        ->default_str("5000000");
}

} // namespace

void addPreviewCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<PreviewOptions>();
    CLI::App& command =
        *app.add_subcommand("preview", "Draw a picture of a file, or make a page of it");
    command.footer(footer);
    command.add_option("FILE", options->input, "file to draw; - is standard input")->required();
    command
        .add_option("PICTURE", options->output,
                    "file to write: .png, .svg, .pdf or .html; - is standard output")
        ->required();
    command
        .add_option_function<std::string>(
            "--size", [options](const std::string& text) { options->size = sizeOf(text); },
            "width and height in pixels, in PDF in points")
        ->type_name("WIDTHxHEIGHT")
        ->default_str("1000x700");
    addDrawingOptions(command, *options);
    addScanOptions(command, *options);
    addPathOptions(command, options->path);
    addPlainFlag(command, options->plain);
    addInputFormatOption(command, options->from);
    command.add_option("--to", options->to, "format of PICTURE: png, svg, pdf or html")
        ->type_name("FORMAT")
        ->transform(oneOf(pictureFormatNames()));
    addForceFlag(command, options->force);
    addQuietFlag(command, options->quiet);
    command.callback([options, &command, &chosen] {
        options->pathOption = givenPathOption(command);
        chosen.input = options->input;
        chosen.run = [options] {
            preview(*options);
            return succeeded;
        };
    });
}
