#pragma once

#include <string>
#include <string_view>

#include "imaging/geometry.h"

namespace lumo::engine {

/// The numbers of the progress group.
struct RunCounts {
    int totalInput = 0;  // files of the input list
    int current = 0;     // images taken up
    int saved = 0;
    int errors = 0;
};

/// Parts of the window that a run closes to the user.
enum class Controls { Open, Closed };

enum class Sound { Asterisk };

/// What the engine asks of whoever shows it. During a run every call comes from the worker thread;
/// a form with widgets hands over to its own thread and waits for the answer where there is one.
/// Nothing here ever waits where nobody is there (unattended runs).
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    /// A message box with one button.
    virtual void ShowMessage(std::string_view text) = 0;
    /// A window with a text of many lines, as they stand.
    virtual void ShowReport(std::string_view title, std::string_view text) {
        static_cast<void>(title), static_cast<void>(text);
    }
    /// A question with Yes and No; false is No.
    virtual bool Ask(std::string_view question) = 0;

    /// A line for whoever started the program from a terminal: standard error.
    virtual void Notice(std::string_view text) = 0;
    /// The program is to end (unattended runs).
    virtual void Quit() {}

    virtual void SetTitle(std::string_view) {}   // of the main window: "33% Done", "" the usual one
    virtual void SetStatus(std::string_view) {}  // "Processing...", "Done!"
    virtual void SetRunButton(std::string_view) {}
    virtual void SetSizeText(std::string_view) {}  // of the right frame: "640x480"
    virtual void ShowCounts(const RunCounts&) {}
    virtual void SetControls(Controls) {}
    virtual void SelectCommand(int) {}  // index in the Script; its panel is shown
    virtual void ClearPanel() {}
    /// Opens the dialog of the command at this index of the Script; false on Cancel.
    virtual bool EditCommand(int) { return false; }
    /// The dialog of the START command in its run-time form; false on Cancel.
    virtual bool PromptStart(int) { return false; }
    virtual void RebuildLeftDisplay() {}
    virtual void RebuildRightDisplay() {}
    virtual void Redraw() {}
    virtual void ShowWaitCursor(bool) {}
    virtual void Play(Sound) {}
    /// Asks for a call of OnTimer2 after so many milliseconds.
    virtual void StartTimer2(int) {}
    /// The run is over and its worker about to end.
    virtual void RunEnded() {}
};

}  // namespace lumo::engine
