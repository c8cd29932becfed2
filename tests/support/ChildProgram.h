#pragma once

#include <functional>
#include <string>
#include <vector>

/// How a program ended and what it wrote.
struct ProgramResult {
    /// The exit status, or -1 when the child did not exit by itself.
    int status;
    std::string output;
    std::string errors;
};

/// Runs a program to its end, with no standard input.
///
/// @param command  the program's path and its arguments
/// @param prepare  called in the child before the program starts: limits, rights, working folder
ProgramResult runProgram(const std::vector<std::string>& command,
                         const std::function<void()>& prepare = {});
