#pragma once

#include "tools/cloudconv/Command.h"

/// Adds the subcommand "check".
void addCheckCommand(CLI::App& app, Command& chosen);
