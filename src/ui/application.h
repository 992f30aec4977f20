#pragma once

#include <string>

namespace lumo::ui {

/// What the command line says to the window.
struct StartRequest {
    std::string scriptPath;      // empty: none
    bool runAtOnce = false;      // /r
    bool exitAfterRun = false;   // /x
    bool noPrompts = false;      // /s, until that run has ended
    bool forceErrorLog = false;  // /e, for that run
    bool debugLog = false;
};

/// Opens the window and runs until it is closed. Returns the exit status of the program: that of
/// the run, if there was one that ends the program.
int RunDesktop(int& argc, char** argv, const StartRequest& request);

}  // namespace lumo::ui
