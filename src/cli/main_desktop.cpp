// lumoscript: the window, or an unattended run when all three switches say so.

#include <cstdio>
#include <cstdlib>

#include "cli/command_line.h"
#include "cli/unattended.h"
#include "ui/application.h"

namespace {

/// False where the window system would end the program with words of its own, as on a server.
bool HasDisplay() {
#if defined(__unix__) && !defined(__APPLE__)
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0') return true;
    return false;
#else
    return true;
#endif
}

}  // namespace

int main(int argc, char** argv) {
    using namespace lumo;
    using namespace lumo::cli;
    const CommandLine line = ParseCommandLine({argv + 1, argv + argc}, Program::Desktop);
    if (line.stop) {
        std::fputs(line.text.c_str(), line.exitCode == 0 ? stdout : stderr);
        return line.exitCode;
    }
    if (line.Unattended()) return RunUnattended(line, Program::Desktop);
    if (!HasDisplay()) {
        std::fputs(
            "lumoscript: no display for the window. A run needs none: "
            "lumoscript SCRIPT /r /x /s, or lumoscript-batch SCRIPT.\n",
            stderr);
        return kWrongUse;
    }
    return ui::RunDesktop(argv[0], {.scriptPath = line.scriptPath,
                                    .runAtOnce = line.autoRun,
                                    .exitAfterRun = line.autoExit,
                                    .noPrompts = line.noPrompts,
                                    .forceErrorLog = line.forceErrorLog,
                                    .debugLog = line.debugLog});
}
