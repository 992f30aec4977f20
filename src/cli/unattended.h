#pragma once

#include "cli/command_line.h"

namespace lumo::cli {

/// Exit status of an unattended run.
enum ExitStatus : int {
    kAllDone = 0,
    kSomeFailed = 1,
    kWrongUse = 2,
    kRefused = 3,
    kFatal = 4,
    kInterrupted = 130,
    kTerminated = 143,
};

/// Loads the settings and the Script, runs it over its input, prints a one-line summary, and gives
/// the exit status. The first SIGINT or SIGTERM stops the run before its next command, a second
/// one ends the program at once.
int RunUnattended(const CommandLine& line, Program program);

}  // namespace lumo::cli
