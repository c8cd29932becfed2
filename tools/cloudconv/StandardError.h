#pragma once

#include <cstddef>
#include <string>

/// The text with control characters written as \xHH: what files hold must not steer a terminal.
std::string printable(const std::string& text);

/// How much of a text goes to standard error.
constexpr std::size_t longestErrorText = 1000;

/// Writes "cloudconv: TEXT" to standard error, as exactly one line.
///
/// File names and what files hold come up in the text: it is made printable, and what goes beyond
/// longestErrorText bytes is cut.
void printToStandardError(const std::string& text);
