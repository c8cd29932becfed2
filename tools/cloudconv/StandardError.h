#pragma once

#include <string>

/// Writes "cloudconv: TEXT" to standard error, as exactly one line.
///
/// File names and what files hold come up in the text: control characters are written as \xHH, and
/// what goes beyond a few hundred characters is cut.
void printToStandardError(const std::string& text);
