// cloudconv: converts point cloud files.

#include "tools/cloudconv/Convert.h"
#include "tools/cloudconv/StandardError.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <new>
#include <stdexcept>

namespace {

enum ExitStatus : int {
    converted = 0,
    couldNotConvert = 1,
    wrongUsage = 2,
};

constexpr char description[] =
    "Reads a PLY point cloud (ASCII or binary little-endian) and writes it as PLY.";

constexpr char footer[] =
    R"(The output appears whole or not at all: when the conversion fails, an existing
file stays as it was. A scan without points gives a PLY file without points.

Exit status: 0 converted, 1 could not convert (one line on standard error says
why), 2 wrong usage.

Example:
  cloudconv scan.ply scan_text.ply --ascii)";

int convertAndReport(const ConvertOptions& options) {
    try {
        convert(options);
        return converted;
    } catch (const std::bad_alloc&) {
        printToStandardError(options.input + ": not enough memory");
    } catch (const std::length_error&) {
        printToStandardError(options.input + ": not enough memory");
    } catch (const std::exception& error) {
        printToStandardError(error.what());
    }
    return couldNotConvert;
}

} // namespace

int main(int argc, char** argv) {
    // A file that outgrows its limit is then a write that fails, with a reason to report.
    std::signal(SIGXFSZ, SIG_IGN);

    ConvertOptions options;
    CLI::App app(description, "cloudconv");
    app.footer(footer);
    app.set_version_flag("--version", "cloudconv " CLOUDCONV_VERSION);
    app.add_option("INPUT", options.input, "file to read")->required();
    app.add_option("OUTPUT", options.output, "file to write, replaced when it exists")->required();
    app.add_flag("--ascii", options.ascii, "write text of six significant digits, not binary")
        ->disable_flag_override();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? converted : wrongUsage;
    }
    return convertAndReport(options);
}
