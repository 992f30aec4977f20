#pragma once

// What a user may write behind the program's name.

#include <string>
#include <string_view>
#include <vector>

namespace lumo::cli {

enum class Program { Desktop, Batch };

struct CommandLine {
    std::string scriptPath;      // empty: none stated
    std::string inputPath;       // --input: in place of what START names
    bool autoRun = false;        // /r
    bool autoExit = false;       // /x, only together with /r
    bool noPrompts = false;      // /s
    bool forceErrorLog = false;  // /e
    bool debugLog = false;       // --debug-log
    bool quiet = false;          // --quiet

    /// The program is to print `text` and end with `exitCode` (help, version, list of commands,
    /// wrong use).
    bool stop = false;
    int exitCode = 0;
    std::string text;

    /// A run without any window: no display is needed.
    bool Unattended() const { return autoRun && autoExit && noPrompts; }
};

/// Reads the arguments behind the program's name. A switch is a whole argument, "/r" or "-r", in
/// any case; what begins with "--" is an option, as are "-h", "-?" and "/?"; everything else is the
/// Script, and so is what follows "--". One Script at most. The batch program is unattended in any
/// case.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments, Program program);

/// Name and version, one line.
std::string VersionText(Program program);

}  // namespace lumo::cli
