// lumoscript: the window, or an unattended run when all three switches say so.

#include <cstdio>

#include "cli/command_line.h"
#include "cli/unattended.h"
#include "ui/application.h"

int main(int argc, char** argv) {
    using namespace lumo;
    using namespace lumo::cli;
    const CommandLine line = ParseCommandLine({argv + 1, argv + argc}, Program::Desktop);
    if (line.stop) {
        std::fputs(line.text.c_str(), line.exitCode == 0 ? stdout : stderr);
        return line.exitCode;
    }
    if (line.Unattended()) return RunUnattended(line, Program::Desktop);
    return ui::RunDesktop(argc, argv,
                          {.scriptPath = line.scriptPath,
                           .runAtOnce = line.autoRun,
                           .exitAfterRun = line.autoExit,
                           .noPrompts = line.noPrompts,
                           .forceErrorLog = line.forceErrorLog,
                           .debugLog = line.debugLog});
}
