#pragma once

#include "converters/DrawingPath.h"

#include <CLI/CLI.hpp>

/// Adds the options of a drawing's path: --tolerance, --step, --join, --unit, --scale, --layer,
/// --except-layer, --hidden, --paper-space, --axes, --order and --max-points.
void addPathOptions(CLI::App& command, converters::PathOptions& options);

/// Adds --plain: the fixed rules of fromPly() and fromDxf() in place of the path and the scan.
void addPlainFlag(CLI::App& command, bool& plain);

/// The options of a drawing's path that were given on the command line; empty when none were.
///
/// @return the first one's name, for messages
std::string givenPathOption(const CLI::App& command);
