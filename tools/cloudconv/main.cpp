// cloudconv: converts, describes, checks and draws point clouds and drawings.

#include "tools/cloudconv/CheckCommand.h"
#include "tools/cloudconv/ConvertCommand.h"
#include "tools/cloudconv/InfoCommand.h"
#include "tools/cloudconv/Interrupt.h"
#include "tools/cloudconv/PreviewCommand.h"
#include "tools/cloudconv/StandardError.h"
#include "tools/cloudconv/StandardOutput.h"
#include "tools/cloudconv/UsageError.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <new>
#include <sstream>
#include <stdexcept>

namespace {

constexpr char description[] =
    "Point clouds in PLY files and drawings in DXF files: one into the other, and back.";

constexpr char footer[] =
    R"("cloudconv INPUT OUTPUT" is short for "cloudconv convert INPUT OUTPUT".
"cloudconv COMMAND --help" says more and shows examples.

Exit status: 0 done, 1 could not be done (one line on standard error says why),
2 wrong usage, 3 check found something.

Examples:
  cloudconv drawing.dxf path.ply
  cloudconv scan.ply scan_text.ply --ascii
  cloudconv info drawing.dxf
  cloudconv check drawing.dxf
  cloudconv preview drawing.dxf drawing.svg)";

ExitStatus runAndReport(const Command& command) {
    try {
        return command.run();
    } catch (const UsageError& error) {
        printToStandardError(error.what());
        return wrongUsage;
    } catch (const std::bad_alloc&) {
        printToStandardError(command.input + ": not enough memory");
    } catch (const std::length_error&) {
        printToStandardError(command.input + ": not enough memory");
    } catch (const std::exception& error) {
        printToStandardError(error.what());
    }
    return couldNotConvert;
}

/// The arguments, last one first, with "convert" in front when they begin with a file.
std::vector<std::string> commandLine(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto isValue = [](const std::string& text) { return text == "-" || text[0] != '-'; };
    const auto first = std::find_if(arguments.begin(), arguments.end(), isValue);
    const auto isFirst = [&](const CLI::App* subcommand) { return subcommand->check_name(*first); };
    if (first != arguments.end() && app.get_subcommands(isFirst).empty()) {
        arguments.insert(arguments.begin(), "convert");
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

/// Prints what the parser has to say in place of a run: the help, or what is wrong.
ExitStatus explain(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
        const std::vector<CLI::App*> chosen = app.get_subcommands();
        const std::string command = chosen.empty() ? "" : ' ' + chosen.front()->get_name();
        printToStandardError(error.what() + (": see \"cloudconv" + command + " --help\""));
        return wrongUsage;
    }
    std::ostringstream help;
    app.exit(error, help);
    printToStandardOutput(help.str());
    return succeeded;
}

} // namespace

// Without the memory for its options the program could not say so either.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    // A file that outgrows its limit is then a write that fails, with a reason to report.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    removeFilesWhenInterrupted();

    Command command;
    CLI::App app(description, "cloudconv");
    app.footer(footer);
    app.set_version_flag("--version", "cloudconv " CLOUDCONV_VERSION);
    app.require_subcommand(1);
    addConvertCommand(app, command);
    addInfoCommand(app, command);
    addCheckCommand(app, command);
    addPreviewCommand(app, command);
    try {
        app.parse(commandLine(app, argc, argv));
    } catch (const CLI::ParseError& error) {
        command.run = [&app, error] { return explain(app, error); };
    }
    return runAndReport(command);
}
