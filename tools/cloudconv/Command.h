#pragma once

#include "tools/cloudconv/FileFormat.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>

/// How the program ends.
enum ExitStatus : int {
    succeeded = 0,
    couldNotConvert = 1,
    wrongUsage = 2,
    foundSomething = 3,
};

/// What the command line asks for.
struct Command {
    /// The file that it is about, for messages.
    std::string input;
    /// Does it.
    /// @throws FileError, UsageError and those of the library
    std::function<ExitStatus()> run;
};

/// Adds --from: the format of the input.
void addInputFormatOption(CLI::App& command, std::optional<FileFormat>& format);

/// Adds --to: the format of the output.
void addOutputFormatOption(CLI::App& command, std::optional<FileFormat>& format);

/// Takes numbers in a range only: no text, no nan, no infinity.
CLI::Validator numberBetween(double least, double most);

/// What is wrong with a value that is none of these names.
template <typename Value>
std::string noneOf(const std::map<std::string, Value>& names, const std::string& text) {
    std::string message = '"' + text + "\" is none of";
    const char* separator = " ";
    for (const auto& named : names) {
        message += separator + named.first;
        separator = ", ";
    }
    return message;
}

/// Takes these names only, in whatever case, for the values that they stand for. The parser's own
/// check would tell the numbers of the values, too, as characters.
template <typename Value>
CLI::Validator oneOf(const std::map<std::string, Value>& names) {
    const CLI::CheckedTransformer known(names, CLI::ignore_case);
    const auto transform = [known, names](std::string& text) -> std::string {
        const std::string given = text;
        return known(text).empty() ? std::string() : noneOf(names, given);
    };
    return {transform, ""};
}

/// Adds --distance: which ends are near misses.
void addDistanceOption(CLI::App& command, double& distance);

/// Adds --force: that the output may be the input.
void addForceFlag(CLI::App& command, bool& force);

/// Adds --quiet.
void addQuietFlag(CLI::App& command, bool& quiet);
