// Batch runs from the window: start, questions, abort, and closing while one lasts.

#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <filesystem>

#include "engine/editing.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/program.h"
#include "support/test_images.h"
#include "ui/command_tree.h"
#include "ui/image_frame.h"
#include "ui/progress_panel.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::HasSubstr, testing::IsEmpty, testing::StartsWith;

class RunWindow : public test::WindowTest {
  protected:
    /// `count` small BMP files in the folder "in".
    void PutPictures(int count, imaging::Size size = {64, 48}) {
        for (int i = 0; i < count; ++i) {
            const imaging::Image picture = test::RandomImage(size, static_cast<unsigned>(i) + 1);
            const auto bytes = imaging::codecs::EncodeBmp(picture.View());
            ASSERT_TRUE(bytes);
            ASSERT_TRUE(platform::MakeFolders(*this / "in"));
            ASSERT_TRUE(
                platform::WriteFile(*this / ("in/" + std::to_string(1000 + i) + ".bmp"), *bytes));
        }
    }

    std::string StartParams() const {
        return "32,2,\"\",\"" + (*this / "in") +
               "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";
    }
    std::string OutputParams() const {
        return "11,0,\"" + (*this / "out") + "\",0,png,1,0,\"\",\"\",0,0,1,";
    }
    /// START, the commands between, "Output setup" and END.
    void SetRun(const std::vector<std::string>& between) {
        std::vector<std::string> lines{"START image loop (setup)", StartParams()};
        lines.insert(lines.end(), between.begin(), between.end());
        lines.insert(lines.end(), {"Output setup", OutputParams(), "END image loop", "0"});
        SetScript(lines);
    }
    /// Writes the first of three pictures, then goes on with it until it is ended.
    void SetEndlessRun() {
        PutPictures(3, {300, 200});
        SetScript({"START image loop (setup)", StartParams(), "Output setup", OutputParams(),
                   "Loop Start (by number)", kEndless, "Negative - inverted rgb", "0",
                   "Loop End (by number)", "0", "END image loop", "0"});
    }
    static constexpr const char* kEndless = "1,2000000000,";

    std::vector<std::string> Outputs() const { return test::NamesIn(*this / "out"); }
    std::string Log(const char* name) {
        return test::FileText(View().settings.folders.logs + "/" + name);
    }
    QString RunText() { return VisibleText(Form().run->text()); }
};

TEST_F(RunWindow, RunsOverAFolderAndShowsCounts) {
    Start();
    PutPictures(3);
    SetRun({"Negative - inverted rgb", "0"});
    const QImage before = Form().rightFrame->Picture().pixels;
    Click(Form().run);
    EXPECT_TRUE(Window().IsRunning());
    EXPECT_EQ(RunText(), QStringLiteral("Abort processing"));
    EXPECT_FALSE(Form().scriptList->isEnabled());
    EXPECT_FALSE(Action(Act::OpenScript)->isEnabled());
    EXPECT_THAT(FromQt(Action(Act::OpenScript)->statusTip()), HasSubstr("(while a batch run"));
    EXPECT_FALSE(Form().testOne->isEnabled());
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Status(), "Done!");
    EXPECT_EQ(RunText(), QStringLiteral("Run Batch script..."));
    EXPECT_EQ(Outputs().size(), 3U);
    EXPECT_TRUE(Form().scriptList->isEnabled());
    EXPECT_EQ(Form().scriptList->SelectedRow(), 0);
    EXPECT_EQ(Form().rightFrame->Picture().pixels, before);  // the sample is back
    EXPECT_THAT(Log("Batch.log"), HasSubstr("---- done ----"));
    EXPECT_THAT(FromQt(Window().windowTitle()), testing::EndsWith("Lumoscript"));
    const engine::RunState& run = View().run;
    EXPECT_EQ(run.statFiles, 3);
    EXPECT_EQ(run.statOutputs, 3);
    EXPECT_EQ(run.errorCount, 0);
}

TEST_F(RunWindow, GivesTheKeyboardBackToTheListUnlessTheUserTookIt) {
    Start();
    PutPictures(2);
    SetRun({});
    Form().scriptList->setFocus();
    Press(Form().scriptList, Qt::Key_F5);
    EXPECT_FALSE(Form().scriptList->hasFocus());
    ASSERT_TRUE(WaitForEnd());
    EXPECT_TRUE(Form().scriptList->hasFocus());
    Press(Form().scriptList, Qt::Key_F5);
    Form().tree->setFocus();
    ASSERT_TRUE(WaitForEnd());
    EXPECT_TRUE(Form().tree->hasFocus());
}

TEST_F(RunWindow, ShowsBothLogsAfterwards) {
    Start();
    PutPictures(2);
    SetRun({});
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    const auto shownBy = [this](Act act) {
        Trigger(act);
        return FromQt(Window().findChildren<QPlainTextEdit*>().back()->toPlainText());
    };
    EXPECT_THAT(shownBy(Act::BatchLog), HasSubstr("---- done ----"));
    EXPECT_THAT(shownBy(Act::ErrorLog), HasSubstr("0 errors"));
}

TEST_F(RunWindow, CountsAndStatusAreSpokenWithTheirCaptions) {
    Start();
    PutPictures(3);
    SetRun({});
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    std::vector<std::string> spoken;
    for (const QLabel* label : Form().progress->findChildren<QLabel*>())
        spoken.push_back(FromQt(label->accessibleName()));
    EXPECT_THAT(spoken, testing::IsSupersetOf({"Total input: 3", "Current: 3", "Saved: 3",
                                               "Errors: 0", "Status: Done!"}));
}

TEST_F(RunWindow, EveryClosedItemTellsWhyDuringARun) {
    Start();
    View().settings.recentScripts[0] = *this / "some.whs";
    View().settings.recentPictures[0] = *this / "some.bmp";
    SetEndlessRun();
    const std::function<void(const QMenu*, std::vector<QAction*>&)> walk =
        [&](const QMenu* menu, std::vector<QAction*>& leaves) {
            for (QAction* action : menu->actions()) {
                if (action->menu())
                    walk(action->menu(), leaves);
                else if (!action->isSeparator() && action->isVisible())
                    leaves.push_back(action);
            }
        };
    std::vector<QAction*> leaves;
    for (const QAction* action : Window().menuBar()->actions()) walk(action->menu(), leaves);
    const auto closedForTheRun = [&] {
        int count = 0;
        for (const QAction* action : leaves) {
            const std::string hint = FromQt(action->statusTip());
            if (!action->isEnabled()) {
                EXPECT_THAT(hint, testing::ContainsRegex("\\(.+\\)$")) << FromQt(action->text());
            }
            count += hint.find("(while a batch run lasts)") != std::string::npos ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(closedForTheRun(), 0);
    Click(Form().run);
    ASSERT_TRUE(Window().IsRunning());
    EXPECT_GT(closedForTheRun(), 180);  // the items that add commands among them
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(closedForTheRun(), 0);
}

TEST_F(RunWindow, ASecondPressAborts) {
    Start();
    SetEndlessRun();
    Click(Form().run);
    bool alive = false;  // the window, while the run lasts
    ASSERT_TRUE(test::WaitUntil([&] { return !Outputs().empty(); }));
    QTimer::singleShot(0, &Window(), [&] { alive = Window().IsRunning(); });
    ASSERT_TRUE(test::WaitUntil([&] { return alive; }));
    EXPECT_TRUE(
        test::WaitUntil([&] { return Window().windowTitle() == QStringLiteral("0% Done"); }));
    Click(Form().run);
    Click(Form().run);  // as good as one
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Status(), "User aborted!");
    EXPECT_EQ(Outputs().size(), 1U);
    EXPECT_THAT(Log("Batch.log"), HasSubstr("User aborted."));
    EXPECT_TRUE(Form().scriptList->isEnabled());
    // And the next one runs to its end.
    SetRun({});
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Status(), "Done!");
    EXPECT_EQ(Outputs().size(), 3U);
}

TEST_F(RunWindow, AsksBeforeARunOfNothing) {
    Start();
    PutPictures(1);
    SetScript({"START image loop (setup)", StartParams(), "END image loop", "0"});
    answers.Expect(
        "No commands except 'Start (Image loop)' and 'End (Image loop)' in script! "
        "Continue anyway?",
        QMessageBox::No);
    Click(Form().run);
    EXPECT_FALSE(Window().IsRunning());
    answers.Expect("Continue anyway?", QMessageBox::Yes);
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(View().run.statInputs, 1);
}

TEST_F(RunWindow, TellsOfAScriptWithoutStart) {
    Start();
    SetScript({"Despeckle", "0", "Despeckle", "0", "Despeckle", "0"});
    answers.Expect("No 'START Image loop (setup)'. Not a batch script. No batching.",
                   QMessageBox::Ok);
    Click(Form().run);
    EXPECT_FALSE(Window().IsRunning());
    EXPECT_TRUE(Form().scriptList->isEnabled());
}

TEST_F(RunWindow, AStructureFaultRefusesTheRunAndGivesTheSampleBack) {
    Start();
    PutPictures(1);
    SetRun({"IF_END", "0"});
    Click(Form().run);
    EXPECT_FALSE(Window().IsRunning());
    EXPECT_THAT(Log("Error.log"), HasSubstr("IF_END before IF_START in Image loop"));
    EXPECT_FALSE(View().working.main.IsEmpty());
    EXPECT_FALSE(Form().rightFrame->Picture().pixels.isNull());
    EXPECT_TRUE(Form().run->isEnabled());
}

TEST_F(RunWindow, SkippedOutputIsAskedAbout) {
    Start();
    PutPictures(1);
    SetScript({"START image loop (setup)", StartParams(), "Output setup",
               "11,0,\"" + (*this / "out") + "\",0,png,1,0,\"\",\"\",0,1,1,", "END image loop",
               "0"});
    answers.Expect("Selected Output setup command is set to be skipped.", QMessageBox::No);
    Click(Form().run);
    EXPECT_EQ(Form().scriptList->SelectedRow(), 1);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(Outputs(), IsEmpty());
}

TEST_F(RunWindow, TheWorkerAsksThroughTheWindow) {
    Start();
    PutPictures(2);
    SetRun({});
    View().settings.warnBeforeMakingFolder = true;
    answers.Expect("", QMessageBox::Yes);
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Outputs().size(), 2U);
}

TEST_F(RunWindow, ClosingDuringARunAsksAbortsAndEnds) {
    Start();
    SetEndlessRun();
    Click(Form().run);
    ASSERT_TRUE(test::WaitUntil([&] { return !Outputs().empty(); }));
    answers.Expect("A batch run is active.", QMessageBox::No);
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    EXPECT_TRUE(Window().IsRunning());
    answers.Expect("A batch run is active.", QMessageBox::Yes);
    Window().close();
    ASSERT_TRUE(test::WaitUntil([&] { return !Window().isVisible(); }));
    EXPECT_FALSE(Window().IsRunning());
    EXPECT_THAT(Log("Batch.log"), HasSubstr("User aborted."));
    EXPECT_EQ(Outputs().size(), 1U);
}

TEST_F(RunWindow, DestroyingTheWindowDuringARunEndsTheRun) {
    Start();
    SetEndlessRun();
    Click(Form().run);
    ASSERT_TRUE(test::WaitUntil([&] { return !Outputs().empty(); }));
    DestroyWindow();  // waits for the worker, which nothing else would end
    EXPECT_EQ(Outputs().size(), 1U);
}

TEST_F(RunWindow, RunOnSampleWritesNothing) {
    Start();
    SetRun({"Negative - inverted rgb", "0"});
    Click(Form().runOnSample);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Status(), "Done!");
    EXPECT_THAT(Outputs(), IsEmpty());
    EXPECT_FALSE(View().run.onLeftImage);
    const auto left = View().sample.left.View().Pixel(3, 3);
    const auto right = View().working.main.View().Pixel(3, 3);
    EXPECT_EQ(left.red + right.red, 255);  // the right frame keeps what the Script made of it
    // A refused one leaves nothing behind for the next run.
    SetRun({"IF_END", "0"});
    Click(Form().runOnSample);
    EXPECT_FALSE(View().run.onLeftImage);
    EXPECT_EQ(View().run.mode, engine::RunMode::Idle);
}

TEST_F(RunWindow, ShowsEachImageIfAskedTo) {
    Start();
    SetEndlessRun();
    Trigger(Act::ShowEachImage);
    const QImage sample = Form().rightFrame->Picture().pixels;
    Click(Form().run);
    EXPECT_TRUE(test::WaitUntil(
        [&] { return Form().rightFrame->Picture().source == imaging::Size{300, 200}; }));
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Form().rightFrame->Picture().pixels, sample);
}

// ---- The command line ---------------------------------------------------------------------------

class CommandLineWindow : public RunWindow {
  protected:
    std::string WriteScript(const std::string& middle) {
        const std::string path = *this / "run.whs";
        test::PutFile(path, "BEGIN\r\nSTART image loop (setup)\r\n" + StartParams() + "\r\n" +
                                middle + "Output setup\r\n" + OutputParams() +
                                "\r\nEND image loop\r\n0\r\nEND\r\n");
        return path;
    }
};

TEST_F(CommandLineWindow, OpensAScript) {
    const std::string path = WriteScript("Despeckle\r\n0\r\n");
    Start({.scriptPath = path});
    EXPECT_THAT(Rows(), testing::ElementsAre("START image loop (setup)", "Despeckle",
                                             "Output setup", "END image loop"));
    EXPECT_EQ(View().settings.recentScripts[0], path);
    EXPECT_FALSE(Window().IsRunning());
    EXPECT_THAT(FromQt(Window().windowTitle()), StartsWith("run"));
}

TEST_F(CommandLineWindow, RunsAtOnceAndStays) {
    PutPictures(2);
    Start({.scriptPath = WriteScript(""), .runAtOnce = true});
    ASSERT_TRUE(test::WaitUntil([&] { return Status() == "Done!" && !Window().IsRunning(); }));
    EXPECT_EQ(Outputs().size(), 2U);
    EXPECT_TRUE(Window().isVisible());
    EXPECT_FALSE(View().run.autoExit);  // which alone starts the timer that ends the program
}

TEST_F(CommandLineWindow, RunsAtOnceAndEnds) {
    PutPictures(2);
    test::PutFile(*this / "in/broken.png", "no picture");
    Start({.scriptPath = WriteScript(""), .runAtOnce = true, .exitAfterRun = true});
    ASSERT_TRUE(test::WaitUntil([&] { return !Window().isVisible(); }));
    EXPECT_EQ(Outputs().size(), 2U);
    EXPECT_EQ(Window().ExitStatus(), 1);
}

TEST_F(CommandLineWindow, AScriptThatIsNotThereEndsWithItsStatus) {
    answers.Expect("Unable to find or open named Lumoscript script file (.whs), check file path?",
                   QMessageBox::Ok);
    Start({.scriptPath = *this / "no.whs", .runAtOnce = true, .exitAfterRun = true});
    ASSERT_TRUE(test::WaitUntil([&] { return !Window().isVisible(); }));
    EXPECT_EQ(Window().ExitStatus(), 3);
}

TEST_F(CommandLineWindow, APathIsKeptWholeHoweverItIsStated) {
    const std::string path = WriteScript("");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::create_directory(*this / "below");
    std::filesystem::current_path(*this / "below");
    for (const char* stated : {"../run.whs", "..\\run.whs", "./.././run.whs"}) {
        Start({.scriptPath = stated});
        EXPECT_EQ(View().script.path, path) << stated;
        EXPECT_EQ(View().settings.recentScripts[0], path) << stated;
        EXPECT_EQ(View().settings.recentScripts[1], "") << stated;
        CloseWindow();
    }
    std::filesystem::current_path(before);
}

TEST_F(CommandLineWindow, ErrorLogIsForcedForTheFirstRunAlone) {
    PutPictures(1);
    test::PutFile(*this / "in/broken.png", "no picture");
    Start({.scriptPath = WriteScript(""), .forceErrorLog = true});
    View().settings.logs.errorLog = false;
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(Log("Error.log"), HasSubstr("Error:1073"));
    ASSERT_TRUE(platform::RemoveFile(View().settings.folders.logs + "/Error.log"));
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(View().run.errorCount, 1);
    EXPECT_THAT(Log("Error.log"), testing::Not(HasSubstr("Error:1073")));
}

TEST_F(CommandLineWindow, NothingIsAskedInTheFirstRunAlone) {
    PutPictures(1);
    Start({.noPrompts = true});
    SetScript({"START image loop (setup)", StartParams(), "END image loop", "0"});
    Click(Form().run);  // a question elsewhere; here it is answered with No
    EXPECT_FALSE(Window().IsRunning());
    EXPECT_TRUE(answers.shown.empty());
    answers.Expect("Continue anyway?", QMessageBox::No);
    Click(Form().run);
    EXPECT_FALSE(Window().IsRunning());
}

TEST_F(CommandLineWindow, MessagesOfEditingAreShownWithoutPromptsToo) {
    Start({.noPrompts = true});
    View().working.main.Reset();
    answers.Expect("To edit commands, a 'Single image' file must be opened.", QMessageBox::Ok);
    AddByKeys("Despeckle");
}

TEST_F(CommandLineWindow, DebugLogIsTickedInTheMenu) {
    PutPictures(1);
    Start({.scriptPath = WriteScript("Despeckle\r\n0\r\n"), .debugLog = true});
    EXPECT_TRUE(Action(Act::KeepDebugLog)->isChecked());
    Click(Form().run);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(Log("Debug.log"), HasSubstr("Despeckle"));
    Trigger(Act::KeepDebugLog);
    EXPECT_FALSE(View().logs.debugOn);
    CloseWindow();
    Start();
    EXPECT_FALSE(Action(Act::KeepDebugLog)->isChecked());
}

TEST_F(CommandLineWindow, WithoutPromptsNothingWaits) {
    Start({.scriptPath = *this / "no.whs", .runAtOnce = true, .noPrompts = true});
    EXPECT_TRUE(Window().isVisible());
    EXPECT_FALSE(View().run.noPrompts);  // it held for that start alone
}

// ---- The program itself: every switch reaches the window ----------------------------------------

class DesktopProgram : public CommandLineWindow {
  protected:
    DesktopProgram() {
        PutPictures(2);
        Start();  // makes the folders and the settings
        logs_ = View().settings.folders.logs;
        View().settings.logs.errorLog = false;
        CloseWindow();
    }

    std::string LogOf(const char* name) const { return test::FileText(logs_ + "/" + name); }
    static test::ProgramResult Run(
        std::vector<std::string> arguments,
        const std::function<void(int)>& meanwhile = [](int) {}) {
        arguments.insert(arguments.begin(), LUMO_DESKTOP_PROGRAM);
        return test::RunProgram(arguments, meanwhile);
    }

    test::ScopedVariable offscreen_{"QT_QPA_PLATFORM", "offscreen"};
    std::string logs_;
};

TEST_F(DesktopProgram, EndsWithTheStatusOfItsRun) {
    const std::string path = WriteScript("");
    EXPECT_EQ(Run({path, "/r", "-X"}).exitStatus, 0);
    EXPECT_EQ(Outputs().size(), 2U);
    test::PutFile(*this / "in/broken.png", "no picture");
    EXPECT_EQ(Run({path, "/r", "/x"}).exitStatus, 1);
}

TEST_F(DesktopProgram, ASignalClosesTheLogsAndEndsTheProgram) {
    const std::string path = *this / "endless.whs";
    test::PutFile(path, "BEGIN\r\nSTART image loop (setup)\r\n" + StartParams() +
                            "\r\nOutput setup\r\n" + OutputParams() +
                            "\r\nLoop Start (by number)\r\n" + kEndless +
                            "\r\nNegative - inverted rgb\r\n0\r\nLoop End (by number)\r\n0\r\n"
                            "END image loop\r\n0\r\nEND\r\n");
    for (const int number : {SIGTERM, SIGINT}) {
        const auto result = Run({path, "/r"}, [&](int process) {
            EXPECT_TRUE(test::WaitUntil([&] { return !Outputs().empty(); }));
            kill(process, number);
        });
        EXPECT_EQ(result.exitStatus, 128 + number);
        EXPECT_THAT(LogOf("Batch.log"), HasSubstr("User aborted."));
        EXPECT_EQ(Outputs().size(), 1U);
        std::filesystem::remove_all(*this / "out");
    }
}

TEST_F(DesktopProgram, ForcesErrorLogAndKeepsDebugLogIfToldTo) {
    test::PutFile(*this / "in/0.png", "no picture");
    const std::string path = WriteScript("Despeckle\r\n0\r\n");
    EXPECT_EQ(Run({path, "/r", "/x"}).exitStatus, 1);
    EXPECT_THAT(LogOf("Error.log"), testing::Not(HasSubstr("Error:1073")));
    EXPECT_THAT(LogOf("Debug.log"), testing::Not(HasSubstr("Despeckle")));
    EXPECT_EQ(Run({"-E", "--debug-log", path, "/R", "-x"}).exitStatus, 1);
    EXPECT_THAT(LogOf("Error.log"), HasSubstr("Error:1073"));
    EXPECT_THAT(LogOf("Debug.log"), HasSubstr("Despeckle"));
}

TEST_F(DesktopProgram, WithoutPromptsARefusedRunIsLoggedAndTheWindowStays) {
    const std::string path = *this / "none.whs";
    test::PutFile(path, "BEGIN\r\nSTART image loop (setup)\r\n" + StartParams() +
                            "\r\nEND image loop\r\n0\r\nEND\r\n");
    const auto result = Run({path, "/r", "/s"}, [&](int process) {
        EXPECT_TRUE(test::WaitUntil(
            [&] { return LogOf("Batch.log").find("No commands except") != std::string::npos; }));
        kill(process, SIGTERM);
    });
    EXPECT_EQ(result.exitStatus, 143);
    EXPECT_THAT(result.err, HasSubstr("No commands except"));
}

}  // namespace
}  // namespace lumo::ui
