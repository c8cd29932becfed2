#pragma once

#include "tools/cloudconv/Command.h"

/// Adds the subcommand "convert".
void addConvertCommand(CLI::App& app, Command& chosen);
