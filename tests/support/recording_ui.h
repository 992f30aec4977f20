#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "engine/user_interface.h"

namespace lumo::test {

/// An interface that writes down what it is told and answers as told beforehand (No by default).
class RecordingInterface : public engine::UserInterface {
  public:
    void ShowMessage(std::string_view text) override { messages.emplace_back(text); }
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
    void StartTimer2(int milliseconds) override { timers.push_back(milliseconds); }
    void Play(engine::Sound) override { ++sounds; }
    void RunEnded() override { ++runsEnded; }
    void Quit() override { ++quits; }

    std::deque<bool> answers;
    std::vector<std::string> messages, questions, notices, titles, statuses, sizeTexts;
    std::vector<std::pair<std::string, std::string>> reports;  // title, text
    std::vector<int> selected, edited, prompted, timers;
    engine::RunCounts lastCounts;
    int sounds = 0, runsEnded = 0, quits = 0;

  private:
    bool NextAnswer() {
        if (answers.empty()) return false;
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

}  // namespace lumo::test
