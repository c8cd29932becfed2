#pragma once

#include "tools/cloudconv/Command.h"

/// Adds the subcommand "info".
void addInfoCommand(CLI::App& app, Command& chosen);
