// lumoscript: runs a Script unattended when all three switches say so.

#include <cstdio>

#include "cli/command_line.h"
#include "cli/unattended.h"

int main(int argc, char** argv) {
    using namespace lumo::cli;
    const CommandLine line = ParseCommandLine({argv + 1, argv + argc}, Program::Desktop);
    if (line.stop) {
        std::fputs(line.text.c_str(), line.exitCode == 0 ? stdout : stderr);
        return line.exitCode;
    }
    if (line.Unattended()) return RunUnattended(line, Program::Desktop);
    std::fputs(
        "lumoscript: this build has no window; run a Script with: lumoscript SCRIPT /r /x /s\n",
        stderr);
    return kWrongUse;
}
