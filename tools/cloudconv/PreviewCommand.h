#pragma once

#include "tools/cloudconv/Command.h"

/// Adds the command "preview".
void addPreviewCommand(CLI::App& app, Command& chosen);
