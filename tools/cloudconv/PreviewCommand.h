#pragma once

#include "tools/cloudconv/Command.h"

/// Adds the subcommand "preview".
void addPreviewCommand(CLI::App& app, Command& chosen);
