#pragma once

#include <string>

namespace lumo::ui {

/// What the command line says to the window.
struct StartRequest {
    std::string scriptPath;      // empty: none
    bool runAtOnce = false;      // /r
    bool exitAfterRun = false;   // /x
    bool noPrompts = false;      // /s, while the Script is opened and for the first run
    bool forceErrorLog = false;  // /e, for the first run
    bool debugLog = false;       // --debug-log, until the program ends
};

/// Opens the window and runs until it is closed. Returns the exit status of the program: that of
/// the run, if there was one that ends the program. `program` is its name as it was started.
int RunDesktop(char* program, const StartRequest& request);

}  // namespace lumo::ui
