// What crosses from the worker of a run to the window.

#include "ui/qt_interface.h"

#include <gmock/gmock.h>

#include <QTest>
#include <atomic>
#include <thread>

#include "support/test_images.h"
#include "ui/qt_application.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::ElementsAre;

/// Notes what is shown and checks the thread.
class NotingScreen : public Screen {
  public:
    void ShowMessageBox(const QString& text, const QString&, engine::MessageIcon) override {
        Note("message " + FromQt(text));
    }
    bool AskYesNo(const QString& question) override {
        Note("question " + FromQt(question));
        return answer;
    }
    void ShowNotice(const QString& text) override { Note("notice " + FromQt(text)); }
    void ShowReport(const QString& title, std::string_view text) override {
        Note(FromQt(title) + ": " + std::string(text));
    }
    bool EditParameters(std::string_view, std::string&, bool&) override { return false; }
    bool EditCommandAt(int) override { return false; }
    void ShowTitle(const QString& text) override { Note("title " + FromQt(text)); }
    void ShowStatus(const QString& text) override { Note("status " + FromQt(text)); }
    void ShowRunButton(const QString&) override {}
    void ShowSizeText(const QString&) override {}
    void ShowCounts(const engine::RunCounts& counts) override {
        Note("counts " + std::to_string(counts.current));
    }
    void CloseControls(engine::Controls) override {}
    void ScriptHasChanged() override {}
    void ShowSelection(int index) override { Note("selection " + std::to_string(index)); }
    void EmptyPanel() override { Note("no panel"); }
    void RebuildLeft() override {}
    void RebuildRight() override { Note("rebuild"); }
    void ShowRight(const DisplayPicture& picture) override {
        Note("picture " + std::to_string(picture.pixels.width()));
    }
    void PlayAsterisk() override { Note("sound"); }
    void StartTimer2(int) override {}
    void RunHasEnded() override { Note("ended"); }
    void QuitProgram() override {}

    void Note(std::string text) {
        EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
        notes.push_back(std::move(text));
    }
    std::vector<std::string> notes;
    bool answer = true;
};

class QtInterfaceTest : public testing::Test {
  protected:
    QtInterfaceTest() { test::TestApplication(); }

    NotingScreen screen_;
    QtInterface ui_{screen_};
};

TEST_F(QtInterfaceTest, GoesStraightThroughOnTheWindowsThread) {
    ui_.SetStatus("a");
    ui_.SetStatus("b");
    ui_.SelectCommand(4);
    ui_.ClearPanel();
    EXPECT_THAT(screen_.notes, ElementsAre("status a", "status b", "selection 4", "no panel"));
}

TEST_F(QtInterfaceTest, AWorkerHandsOverTheNewestOfEachKind) {
    std::thread worker([&] {
        for (int i = 0; i <= 1000; ++i) {
            ui_.ShowCounts({1000, i, i, 0});
            ui_.SetTitle(std::to_string(i));
        }
        ui_.ClearPanel();
        ui_.SelectCommand(0);
        ui_.RunEnded();
    });
    worker.join();
    EXPECT_TRUE(screen_.notes.empty());  // nothing is shown but by the window's thread
    QCoreApplication::sendPostedEvents();
    EXPECT_THAT(screen_.notes, ElementsAre("title 1000", "counts 1000", "selection 0", "ended"));
}

TEST_F(QtInterfaceTest, AWorkersQuestionWaitsForItsAnswerBehindWhatWasSaidBefore) {
    std::atomic<int> answered = -1;
    std::thread worker([&] {
        ui_.SetStatus("busy");
        answered = ui_.Ask("Really?") ? 1 : 0;
    });
    EXPECT_TRUE(test::WaitUntil([&] { return answered >= 0; }));
    worker.join();
    EXPECT_EQ(answered, 1);
    EXPECT_THAT(screen_.notes, ElementsAre("status busy", "question Really?"));
}

TEST_F(QtInterfaceTest, AbandonAnswersNoToAWorkerThatWaits) {
    std::atomic<bool> asking = false;
    bool answer = true;
    std::thread worker([&] {
        asking = true;
        answer = ui_.Ask("Really?");
        ui_.ShowMessage("never shown");
    });
    while (!asking) std::this_thread::yield();
    ui_.Abandon();
    worker.join();  // without the event loop: nobody can answer
    EXPECT_FALSE(answer);
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(screen_.notes.empty());
}

TEST_F(QtInterfaceTest, AWorkerMakesThePictureForTheFrameItself) {
    for (const bool soon : {true, false}) {
        QtInterface ui(screen_, soon ? std::chrono::hours(1) : std::chrono::hours(0));
        engine::CLumoscriptView view(ui);
        ui.SetView(view);
        ui.SetRightFrame({54, 54});
        view.working.main = test::FlatImage({500, 250}, {1, 2, 3});
        std::thread worker([&] {
            ui.RebuildRightDisplay();
            view.working.main = test::FlatImage({250, 500}, {1, 2, 3});
            ui.RebuildRightDisplay();  // too soon after the first, or not
        });
        worker.join();
        screen_.notes.clear();
        QCoreApplication::sendPostedEvents();
        EXPECT_THAT(screen_.notes, ElementsAre(soon ? "picture 50" : "picture 25"));
    }
}

TEST_F(QtInterfaceTest, WithoutPromptsNobodyIsAsked) {
    engine::CLumoscriptView view(ui_);
    ui_.SetView(view);
    view.run.noPrompts = true;
    testing::internal::CaptureStderr();
    ui_.ShowMessage("words");
    EXPECT_FALSE(ui_.Ask("question"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "words\nquestion\n");
    EXPECT_THAT(screen_.notes, ElementsAre("notice words", "notice question"));
}

}  // namespace
}  // namespace lumo::ui
