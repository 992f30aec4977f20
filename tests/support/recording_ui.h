#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/user_interface.h"

namespace lumo::test {

/// An interface that writes down what it is told and answers as told beforehand (No by default).
class RecordingInterface : public engine::UserInterface {
  public:
    void ShowMessage(std::string_view text) override { messages.emplace_back(text); }
    void ShowMessageBox(std::string_view text, std::string_view caption,
                        engine::MessageIcon icon) override {
        boxes.emplace_back(std::string(caption), icon);
        ShowMessage(text);
    }
    void ShowReport(std::string_view title, std::string_view text) override {
        reports.emplace_back(title, text);
    }
    bool Ask(std::string_view question) override {
        questions.emplace_back(question);
        return NextAnswer();
    }
    void Notice(std::string_view text) override { notices.emplace_back(text); }
    void SetTitle(std::string_view text) override { titles.emplace_back(text); }
    void SetStatus(std::string_view text) override { statuses.emplace_back(text); }
    void SetSizeText(std::string_view text) override { sizeTexts.emplace_back(text); }
    void ShowCounts(const engine::RunCounts& counts) override { lastCounts = counts; }
    void SelectCommand(int index) override { selected.push_back(index); }
    bool EditCommand(int index) override {
        edited.push_back(index);
        return NextAnswer();
    }
    bool PromptStart(int index) override {
        prompted.push_back(index);
        return NextAnswer();
    }
    void ScriptChanged() override { ++scriptChanges; }
    bool EditParameters(std::string_view name, std::string& params, bool& makeDefault) override {
        dialogs.emplace_back(name);
        return onDialog && onDialog(params, makeDefault);
    }
    void SetClipboardText(std::string_view text) override { clipboard = text; }
    std::string ClipboardText() override { return clipboard; }
    void ClearPanel() override { ++panelsCleared; }
    void RebuildLeftDisplay() override { ++leftDisplays; }
    void RebuildRightDisplay() override { ++rightDisplays; }
    void Redraw() override { ++redraws; }
    void ShowWaitCursor(bool on) override {
        waiting += on ? 1 : -1;
        waits += on ? 1 : 0;
    }
    void StartTimer2(int milliseconds) override { timers.push_back(milliseconds); }
    void Play(engine::Sound sound) override {
        ++sounds;
        played.push_back(sound);
    }
    void RunEnded() override { ++runsEnded; }
    void Quit() override { ++quits; }

    std::deque<bool> answers;
    std::vector<std::string> messages, questions, notices, titles, statuses, sizeTexts;
    std::vector<std::pair<std::string, std::string>> reports;  // title, text
    std::vector<int> selected, edited, prompted, timers;
    std::vector<std::pair<std::string, engine::MessageIcon>> boxes;  // caption, icon
    std::vector<std::string> dialogs;                                // names of the commands
    /// What the user does in a dialog; none cancels.
    std::function<bool(std::string& params, bool& makeDefault)> onDialog;
    std::string clipboard;
    engine::RunCounts lastCounts;
    std::vector<engine::Sound> played;
    int leftDisplays = 0, rightDisplays = 0, redraws = 0, panelsCleared = 0;
    int waiting = 0, waits = 0;  // wait cursors that are shown, and that were
    int scriptChanges = 0, sounds = 0, runsEnded = 0, quits = 0;

  private:
    bool NextAnswer() {
        if (answers.empty()) return false;
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

}  // namespace lumo::test
