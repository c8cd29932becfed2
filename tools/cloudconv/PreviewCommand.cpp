#include "tools/cloudconv/PreviewCommand.h"

#include "tools/cloudconv/Preview.h"

#include <cstdlib>
#include <memory>

namespace {

constexpr int smallest = 400;
constexpr int largest = 5000;

constexpr char footer[] =
    R"(Of a drawing: its walk, contour by contour in colours, with the start of each,
arrows in the direction of the walk and a box on each open end. Ends that are
near and not joined have a ring with the width of the gap.

Of a scan: its points from above, coloured by intensity, or by z where it has
none.

One unit is as long in x as in y. Points without a place (nan) are left out, and
counted in the picture.

Examples:
  cloudconv preview drawing.dxf drawing.svg
  cloudconv preview scan.ply scan.png --size 1600x1200)";

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

} // namespace

void addPreviewCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<PreviewOptions>();
    CLI::App& command = *app.add_subcommand("preview", "Draw a picture of a file");
    command.footer(footer);
    command.add_option("FILE", options->input, "file to draw; - is standard input")->required();
    command
        .add_option("PICTURE", options->output,
                    "file to write: .png, .svg or .pdf; - is standard output")
        ->required();
    command
        .add_option_function<std::string>(
            "--size", [options](const std::string& text) { options->size = sizeOf(text); },
            "width and height in pixels, in PDF in points")
        ->type_name("WIDTHxHEIGHT")
        ->default_str("1000x700");
    addDistanceOption(command, options->distance);
    addInputFormatOption(command, options->from);
    CLI::CheckedTransformer known(pictureFormatNames(), CLI::ignore_case);
    known.description("");
    command.add_option("--to", options->to, "format of PICTURE: png, svg or pdf")
        ->type_name("FORMAT")
        ->transform(known);
    addQuietFlag(command, options->quiet);
    command.callback([options, &chosen] {
        chosen.input = options->input;
        chosen.run = [options] {
            preview(*options);
            return succeeded;
        };
    });
}
