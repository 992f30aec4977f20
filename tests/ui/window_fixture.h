#pragma once

// The real window, drawn into memory, in a home folder of its own; and somebody who answers its
// dialogs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/temp_folder.h"
#include "ui/main_form.h"
#include "ui/main_window.h"

class QWidget;

namespace lumo::test {

/// Answers modal dialogs in the order told beforehand. One that nobody expected is noted and
/// dismissed, so that no test ever waits for a user.
class Answers : public QObject {
  public:
    Answers();

    /// The next message box: its text must hold `text`; the button is pressed.
    void Expect(std::string_view text, int button);
    /// The next file dialog: picks this path.
    void Pick(const std::string& path);
    void Cancel();
    /// The next dialog, whatever it is.
    void Do(std::function<void(QWidget* dialog)> deed);
    /// Every dialog from now on, as long as nothing is told beforehand.
    void Always(std::function<void(QWidget* dialog)> deed) { always_ = std::move(deed); }

    /// All texts shown so far, those of file dialogs by their titles.
    std::vector<std::string> shown;
    std::vector<std::string> unexpected;
    bool AllGiven() const { return waiting_.empty(); }

  private:
    void Look();
    void LookAgain();

    QWidget* answered_ = nullptr;  // the one that is being answered right now
    std::deque<std::function<void(QWidget*)>> waiting_;
    std::function<void(QWidget*)> always_;
};

/// Runs the event loop until the condition holds; false after so many seconds.
bool WaitUntil(const std::function<bool()>& condition, double seconds = 120);

class WindowTest : public testing::Test {
  protected:
    WindowTest();
    ~WindowTest() override;

    /// For tests that may change what is shipped; all others share one copy. Before Start.
    void UseShippedFilesOfItsOwn();
    /// Opens the window with this command line.
    void Start(const ui::StartRequest& request = {});
    /// Closes it as a user would, and throws away what was not saved.
    void CloseWindow();

    void DestroyWindow() { window_.reset(); }

    ui::MainWindow& Window() { return *window_; }
    ui::MainForm& Form() { return window_->Form(); }
    engine::CLumoscriptView& View() { return window_->View(); }
    QAction* Action(ui::Act act) { return window_->ActionOf(act); }
    void Trigger(ui::Act act) { Action(act)->trigger(); }

    /// A key while the window is the active one, so that the keys of its actions count.
    void Press(QWidget* control, Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    static void Click(QWidget* button);
    /// Clicks on the row of the Script list.
    void ClickRow(int row);
    /// Types the name into the filter box, picks it in the tree by keys and adds it.
    void AddByKeys(const std::string& name);
    /// Names of the Script, as the list shows them.
    std::vector<std::string> Rows();
    std::string PanelText();
    std::string Status();
    /// Waits for the end of the run.
    bool WaitForEnd() {
        return WaitUntil([&] { return !Window().IsRunning(); });
    }

    /// Replaces the Script, unmodified, with names and parameters in turn.
    void SetScript(const std::vector<std::string>& lines);

    std::string home() const { return home_.Path(); }
    std::string operator/(std::string_view name) const { return home_ / name; }

    Answers answers;

  private:
    TempFolder home_;
    std::vector<std::unique_ptr<ScopedVariable>> variables_;
    std::unique_ptr<ui::MainWindow> window_;
};

}  // namespace lumo::test
