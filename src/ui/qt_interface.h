#pragma once

#include <QObject>
#include <QStringList>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

#include "engine/view.h"
#include "ui/screen.h"

namespace lumo::ui {

/// What the engine says, shown by a window. On the window's own thread each call goes straight
/// through. From the worker of a run, what is to be shown is gathered, the newest of each kind, and
/// handed over in one queued call, so that a fast run cannot flood the window; questions and
/// messages wait for the user's answer, or for Abandon.
class QtInterface : public QObject, public engine::UserInterface {
    Q_OBJECT

  public:
    /// Of the pictures that a run makes, none sooner after another than `pictureInterval`: faster
    /// than the eye follows would be wasted.
    explicit QtInterface(Screen& screen, std::chrono::steady_clock::duration pictureInterval =
                                             std::chrono::milliseconds(60))
        : screen_(screen), pictureInterval_(pictureInterval) {}

    /// Where the pictures come from that a run shows; before the first run.
    void SetView(const engine::CLumoscriptView& view) { view_ = &view; }
    /// Size of the right frame in pixels of the screen: a run makes its pictures for it.
    void SetRightFrame(imaging::Size size);
    /// The window goes away: nobody will answer any more. Every question, also one that waits, is
    /// answered with No, and nothing is shown.
    void Abandon();

    void ShowMessage(std::string_view text) override;
    void ShowMessageBox(std::string_view text, std::string_view caption,
                        engine::MessageIcon icon) override;
    bool Ask(std::string_view question) override;
    void ShowReport(std::string_view title, std::string_view text) override;
    void Notice(std::string_view text) override;
    void Quit() override;
    void SetTitle(std::string_view text) override;
    void SetStatus(std::string_view text) override;
    void SetRunButton(std::string_view text) override;
    void SetSizeText(std::string_view text) override;
    void ShowCounts(const engine::RunCounts& counts) override;
    void SetControls(engine::Controls controls) override;
    void SelectCommand(int index) override;
    void ClearPanel() override;
    void ScriptChanged() override;
    bool EditParameters(std::string_view name, std::string& params, bool& makeDefault) override;
    void SetClipboardText(std::string_view text) override;
    std::string ClipboardText() override;
    bool EditCommand(int index) override;
    bool PromptStart(int index) override;
    void RebuildLeftDisplay() override;
    void RebuildRightDisplay() override;
    void ShowWaitCursor(bool on) override;
    void Play(engine::Sound sound) override;
    void StartTimer2(int milliseconds) override;
    void RunEnded() override;

  private:
    /// What a worker has said and the window has not shown yet.
    struct Waiting {
        std::optional<QString> title, status, runButton, sizeText;
        std::optional<engine::RunCounts> counts;
        std::optional<engine::Controls> controls;
        std::optional<int> selected, timer2;
        std::optional<DisplayPicture> right;
        QStringList notices;
        bool clearPanel = false, rebuildLeft = false;
        bool asterisk = false, ended = false, quit = false;
    };

    bool OnWindowThread() const;
    /// Runs `change` on what waits, and sees to it that it is shown.
    void Later(const std::function<void(Waiting&)>& change);
    void ShowWaiting();
    /// Runs the question on the window's thread and waits for its answer.
    bool AskAndWait(const std::function<bool()>& question);

    Screen& screen_;
    const engine::CLumoscriptView* view_ = nullptr;
    std::mutex mutex_;  // of all below
    std::condition_variable answered_;
    Waiting waiting_;
    bool posted_ = false;
    bool abandoned_ = false;
    imaging::Size rightFrame_;
    const std::chrono::steady_clock::duration pictureInterval_;
    std::optional<std::chrono::steady_clock::time_point> lastPicture_;
};

}  // namespace lumo::ui
