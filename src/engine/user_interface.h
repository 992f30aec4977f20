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

enum class Sound { Asterisk, Recycle };

/// The picture in a message box.
enum class MessageIcon { None, Warning, Stop };

/// What the engine asks of whoever shows it. During a run every call comes from the worker thread;
/// a form with widgets hands over to its own thread and waits for the answer where there is one.
/// Nothing here ever waits where nobody is there (unattended runs).
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    /// A message box with one button.
    virtual void ShowMessage(std::string_view text) = 0;
    /// One with a caption and an icon of its own.
    virtual void ShowMessageBox(std::string_view text, [[maybe_unused]] std::string_view caption,
                                MessageIcon) {
        ShowMessage(text);
    }
    /// A window with a text of many lines, as they stand.
    virtual void ShowReport([[maybe_unused]] std::string_view title,
                            [[maybe_unused]] std::string_view text) {}
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
    /// Commands of the Script came, went, moved or changed: the list is to be shown anew. A call of
    /// SelectCommand follows.
    virtual void ScriptChanged() {}
    /// Opens the dialog of the command of that name on these parameters. True on OK: `params` is
    /// what it holds now, and `makeDefault` says whether new commands are to begin with it. False
    /// on Cancel or where there is no dialog; `params` is as it was.
    virtual bool EditParameters([[maybe_unused]] std::string_view name, std::string&,
                                [[maybe_unused]] bool& makeDefault) {
        return false;
    }
    virtual void SetClipboardText(std::string_view) {}
    virtual std::string ClipboardText() { return {}; }
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

/// Shows the wait cursor while it lives, on every way out.
class WaitCursor {
  public:
    explicit WaitCursor(UserInterface& ui) : ui_(ui) { ui_.ShowWaitCursor(true); }
    ~WaitCursor() { ui_.ShowWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    UserInterface& ui_;
};

}  // namespace lumo::engine
