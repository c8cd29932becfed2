#include "tools/cloudconv/CheckCommand.h"

#include "converters/check/NearMisses.h"
#include "converters/check/PathFindings.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/PathArguments.h"
#include "tools/cloudconv/PathFile.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/StandardError.h"
#include "tools/cloudconv/StandardOutput.h"
#include "tools/cloudconv/UsageError.h"
#include "tools/cloudconv/check/FindingReport.h"
#include "tools/cloudconv/check/WalkFindings.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <new>
#include <stdexcept>

namespace {

struct CheckOptions {
    std::vector<std::string> inputs;
    double distance = converters::defaultNearness;
    bool all = false;
    bool json = false;
    bool plain = false;
    bool quiet = false;
    converters::PathOptions path;
    /// An option of paths that was given; else empty.
    std::string pathOption;
};

constexpr char footer[] =
    R"(Lists what one must know of a drawing before something follows its path: near
misses (ends that are not joined and at most --distance apart), duplicates in
either direction, entities without extent, geometry that is left out, open
contours that touch themselves, closed ones that cross themselves, and a missing
unit. Of each kind at most 20 are listed. Annotation that is left out is no
finding; a note on standard error tells of it.

With --plain it is about the walk by the fixed rules of the library's fromDxf:
the near misses, duplicates and short entities of that walk, and all that it does
otherwise than drawn: arcs of polylines walked straight, closing edges, mirrored,
hidden and paper-space entities, blocks, ellipses, drawings cut short.

Exit status: 0 nothing found, 1 a file could not be checked, 2 wrong usage,
3 something was found.

Examples:
  cloudconv check drawing.dxf --distance 0.05
  cloudconv check *.dxf --quiet
  cloudconv check drawing.dxf --plain --json)";

FindingReport checkPlainly(const std::string& name, const std::vector<unsigned char>& bytes,
                           const CheckOptions& options, Progress& progress) {
    const DxfContents drawing = readDxf(name, bytes, progress);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return {name,
            findingsOf(drawing, text, options.distance, progress.beginParts("checking " + name)),
            {}};
}

FindingReport checkPath(const std::string& name, const std::vector<unsigned char>& bytes,
                        const CheckOptions& options, Progress& progress) {
    const converters::PathOptions following = optionsForChecking(options.path);
    const converters::DrawingPath path = readPathFile(name, bytes, following, progress);
    converters::PathFindings found =
        findingsOf(path, following, options.distance, progress.beginParts("checking " + name));
    return {name, std::move(found.findings), std::move(found.notes)};
}

FindingReport check(const std::string& input, const CheckOptions& options) {
    Progress progress(options.quiet);
    const std::string name = inputName(input);
    const std::vector<unsigned char> bytes = readInputFile(input, progress);
    return (options.plain ? checkPlainly : checkPath)(name, bytes, options, progress);
}

/// Says what was found in one file. JSON is collected, to be one list.
void report(const FindingReport& found, const CheckOptions& options, nlohmann::ordered_json& list) {
    if (options.json) {
        list.push_back(asJson(found));
        return;
    }
    std::string text = asText(found, options.all);
    if (text.empty() && !options.quiet) {
        text = printable(found.file) + ": nothing found\n";
    }
    printToStandardOutput(text);
    if (!options.quiet) {
        Notes notes(found.file);
        for (const std::string& note : found.notes) {
            notes.add(note);
        }
        notes.print();
    }
}

/// Checks all files, those behind one that cannot be checked, too.
ExitStatus checkAll(const CheckOptions& options) {
    if (options.plain && !options.pathOption.empty()) {
        throw UsageError("--plain has rules of its own: " + options.pathOption +
                         " does not go with it");
    }
    constexpr int indent = 2;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    bool found = false;
    bool failed = false;
    for (const std::string& input : options.inputs) {
        try {
            const FindingReport findings = check(input, options);
            found = found || !findings.findings.empty();
            report(findings, options, list);
        } catch (const std::bad_alloc&) {
            printToStandardError(inputName(input) + ": not enough memory");
            failed = true;
        } catch (const std::length_error&) {
            printToStandardError(inputName(input) + ": not enough memory");
            failed = true;
        } catch (const FileError& error) {
            printToStandardError(error.what());
            failed = true;
        }
    }
    if (options.json && !list.empty()) {
        printToStandardOutput(
            list.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n');
    }
    return failed ? couldNotConvert : found ? foundSomething : succeeded;
}

} // namespace

void addCheckCommand(CLI::App& app, Command& chosen) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& command = *app.add_subcommand("check", "List what a robot would stumble over");
    command.footer(footer);
    command.add_option("DRAWING", options->inputs, "DXF files to check; - is standard input")
        ->required();
    addDistanceOption(command, options->distance);
    command.add_flag("--all", options->all, "list all findings, not only 20 of a kind")
        ->disable_flag_override();
    command.add_flag("--json", options->json, "as JSON, in full")->disable_flag_override();
    addPathOptions(command, options->path);
    addPlainFlag(command, options->plain);
    addQuietFlag(command, options->quiet);
    command.callback([options, &command, &chosen] {
        options->pathOption = givenPathOption(command);
        chosen.input = options->inputs.front();
        chosen.run = [options] { return checkAll(*options); };
    });
}
