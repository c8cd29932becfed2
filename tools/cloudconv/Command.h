#pragma once

#include "tools/cloudconv/FileFormat.h"

#include <CLI/CLI.hpp>

#include <functional>
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

/// Adds --distance: which ends are near misses.
void addDistanceOption(CLI::App& command, double& distance);

/// Adds --force: that the output may be the input.
void addForceFlag(CLI::App& command, bool& force);

/// Adds --quiet.
void addQuietFlag(CLI::App& command, bool& quiet);
