// Whole runs, from a Script in memory to files and logs on disk.

#include "engine/run_batch.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "engine/run_loop.h"
#include "engine/run_reports.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kFilters =
    "1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";

/// A view with folders of its own, an input folder with pictures, and a Script to be filled.
class Run : public testing::Test {
  protected:
    Run() : view(ui) {
        fs::create_directories(folder / "in");
        fs::create_directories(folder / "install");
        settings::Settings& settings = view.settings;
        settings.installFolder = folder / "install";
        settings.folders.logs = folder / "logs";
        settings.folders.temp = folder / "temp";
        settings.folders.scripts = folder / "scripts";
        settings.folders.subroutines = folder / "subroutines";
    }

    void AddPicture(const std::string& name, imaging::Size size = {40, 30}) {
        const imaging::Image image = test::CoordinateImage(size);
        const auto bytes = imaging::codecs::EncodePng(image.View(), {});
        ASSERT_TRUE(bytes);
        ASSERT_TRUE(platform::WriteFile(folder / ("in/" + name), *bytes));
    }
    void Add(std::string_view name, std::string_view params = "0") {
        view.script.commands.Add(name, params);
    }
    void AddStart() {
        Add(names::kStartImageLoop, "32,2,,\"" + (folder / "in") + "\"," + kFilters);
    }
    void AddOutput(std::string_view rest = "png,0,0,,,0,0,1,") {
        Add(names::kOutputSetup, "11,0,\"" + (folder / "out") + "\",0," + std::string(rest));
    }
    /// START, the given commands, output and END.
    void MakeScript(std::initializer_list<std::string_view> loopCommands = {}) {
        AddStart();
        for (const auto name : loopCommands) Add(name);
        AddOutput();
        Add(names::kEndImageLoop);
    }
    /// Runs on this thread; false if the run was refused.
    bool RunHere() {
        if (!PrepareBatch(view)) return false;
        RunThreadEntry(view);
        return true;
    }
    std::string BatchLog() { return test::FileText(folder / "logs/Batch.log"); }
    std::string ErrorLog() { return test::FileText(folder / "logs/Error.log"); }
    std::vector<std::string> Out() { return test::NamesIn(folder / "out"); }

    test::TempFolder folder;
    test::RecordingInterface ui;
    CLumoscriptView view;
};

TEST_F(Run, ThreePicturesGoFromFolderToFolder) {
    for (const char* name : {"b.png", "A.png", "c.png"}) AddPicture(name);
    MakeScript();
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("A.png", "b.png", "c.png"));
    EXPECT_EQ(view.run.statFiles, 3);
    EXPECT_EQ(view.run.statOutputs, 3);
    EXPECT_EQ(view.run.errorCount, 0);
    EXPECT_THAT(ui.titles, ElementsAre("0% Done", "33% Done", "66% Done", ""));
    EXPECT_THAT(ui.statuses, ElementsAre("Processing...", "Done!"));
    EXPECT_EQ(ui.sounds, 1);
    EXPECT_EQ(ui.runsEnded, 1);
    EXPECT_THAT(BatchLog(), HasSubstr("---- done ----\r\n0 :  errors\r\n0 :  warnings\r\n"));
    EXPECT_THAT(ErrorLog(), HasSubstr("0 errors\r\n"));
}

TEST_F(Run, CommandsOutsideOfTheLoopRunOnceWithAnEmptyInputToo) {
    Add(names::kCounter, "3,1,1,0,");
    AddStart();
    Add(names::kCounter, "3,1,1,1,");
    Add(names::kEndImageLoop);
    Add(names::kIfCondition, "5,4,2,1,0,0,");  // counter A is 1
    Add(names::kFlipVertical);                 // fails for want of a picture, once
    Add(names::kIfEnd);
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.statFiles, 0);
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(view.counters, testing::Each(0));  // zeroed at the end
}

TEST_F(Run, AnUnreadableFileIsAnErrorAndTheNextIsTaken) {
    AddPicture("1.png");
    test::PutFile(folder / "in/2.png", "no picture at all");
    AddPicture("3.png");
    MakeScript();
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png", "3.png"));
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(ErrorLog(), HasSubstr("2Error:1073 - Unable to open image file: "));
    EXPECT_THAT(BatchLog(), HasSubstr("2 : Error:1073 - Unable to open image file: "));
}

TEST_F(Run, AFailedCommandIsOneErrorAndTheImageGoesOn) {
    AddPicture("1.png");
    AddStart();
    Add("No such command", "0");
    AddOutput();
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png"));
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(ErrorLog(), HasSubstr("Image number: 1   Command number: 2 No such command\r\n"));
    EXPECT_THAT(ErrorLog(), HasSubstr("Error:1003 - Command execution failure\r\n"));
}

TEST_F(Run, AnAbortStopsBeforeTheNextCommand) {
    for (const char* name : {"1.png", "2.png", "3.png"}) AddPicture(name);
    MakeScript();
    ASSERT_TRUE(PrepareBatch(view));
    RunBatch(view);  // a second press is the abort
    RunBatch(view);  // and two are the same as one
    EXPECT_EQ(RunThreadEntry(view), 1);
    EXPECT_THAT(Out(), IsEmpty());
    EXPECT_TRUE(view.run.aborted);
    EXPECT_EQ(view.run.keepRunning, 1);  // ready for the next run
    EXPECT_THAT(ErrorLog(), HasSubstr("User aborted."));
    EXPECT_THAT(BatchLog(), HasSubstr("No output from numbered command: Abort\r\nUser aborted."));
    EXPECT_THAT(BatchLog(), HasSubstr("Elapsed processing time - hours: 00, mins: 00, secs: 0"));
    EXPECT_THAT(ui.statuses, Contains("User aborted!"));
}

TEST_F(Run, TheWorkerThreadDoesTheSame) {
    AddPicture("1.png");
    MakeScript();
    RunBatch(view);
    JoinWorker(view);
    EXPECT_THAT(Out(), ElementsAre("1.png"));
    EXPECT_FALSE(view.run.batchRunning);
}

TEST_F(Run, AutoNumericGoesOnFromRunToRun) {
    AddPicture("1.png");
    AddStart();
    AddOutput("png,0,1,,,0,0,1,");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("0001.png", "0002.png"));
}

TEST_F(Run, ASampleRunWritesNothing) {
    view.run.onLeftImage = true;
    view.sample.left = test::CoordinateImage({20, 10});
    view.sample.path = folder / "sample.png";
    MakeScript();
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.imageCount, 1);
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_TRUE(test::SamePixels(view.working.main, test::CoordinateImage({20, 10})));
}

TEST_F(Run, TheSampleComesBackAfterARun) {
    view.sample.left = test::CoordinateImage({20, 10});
    AddPicture("1.png");
    MakeScript();
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{20, 10}));
}

// ---- Refusals ---------------------------------------------------------------------------------

class Refusal : public Run {
  protected:
    void Unattended() { view.run.noPrompts = view.run.autoExit = true; }
};

TEST_F(Refusal, NoStartMarker) {
    Add(names::kOutputSetup, "0");
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages,
                ElementsAre("No 'START Image loop (setup)'. Not a batch script. No batching."));
    ui.messages.clear();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages, IsEmpty());
    EXPECT_THAT(ui.notices,
                Contains("No 'START Image loop (setup)'. Not a batch script. No batching."));
    EXPECT_THAT(ErrorLog(), HasSubstr("No 'START Image loop (setup)'. Not a batch script."));
    EXPECT_THAT(BatchLog(), HasSubstr("No 'START Image loop (setup)'. Not a batch script."));
    EXPECT_THAT(ui.timers, ElementsAre(1000));
    EXPECT_TRUE(view.run.refused);
}

TEST_F(Refusal, FewCommandsAreAskedAbout) {
    AddStart();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.questions,
                ElementsAre("No commands except 'Start (Image loop)' and 'End (Image loop)' in "
                            "script! Continue anyway?"));
    ui.answers = {true};
    EXPECT_TRUE(RunHere());
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("No commands except 'Start (Image loop)' and 'End (Image "
                                      "loop)' in script\r\n"));
}

TEST_F(Refusal, AnInputLeftToRunTimeIsPromptedFor) {
    Add(names::kStartImageLoop, "32,0,,," + kFilters);
    AddOutput();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.prompted, ElementsAre(0));
    EXPECT_THAT(ui.messages, IsEmpty());
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(),
                HasSubstr("In 'START Image loop setup' command you must uncheck 'Set at runtime' "
                          "and set input folder. Then run again."));
}

TEST_F(Refusal, AnOutputFolderLeftOpen) {
    AddStart();
    Add(names::kOutputSetup, "11,0,,0,jpg,0,0,,,0,0,0,");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages,
                ElementsAre("In 'Output setup' command(s) you must uncheck 'Set at runtime' and "
                            "set the output folder. Then run again"));
    EXPECT_THAT(ui.edited, ElementsAre(1));
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("In 'Output setup' command(s) you must uncheck 'Set at "
                                      "runtime' and set output folder. Then run again\r\n"));
}

TEST_F(Refusal, ASkippedOutputIsAskedAbout) {
    AddPicture("1.png");
    AddStart();
    AddOutput("png,0,0,,,0,1,0,");
    Add(names::kEndImageLoop);
    ui.answers = {true};
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.questions,
                ElementsAre("Selected Output setup command is set to be skipped. Do you wish to "
                            "change this? If 'Yes' you will have to run again after making "
                            "changes."));
    EXPECT_THAT(ui.edited, ElementsAre(1));
    EXPECT_TRUE(RunHere());  // No: it runs, and writes nothing
    EXPECT_FALSE(fs::exists(folder / "out/1.png"));
}

TEST_F(Refusal, BlockFaultsStopTheRunBeforeItsFirstImage) {
    AddPicture("1.png");
    AddStart();
    Add(names::kIfCondition, "5,0,0,1.0,2.0,0,");
    AddOutput();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(
        ErrorLog(),
        HasSubstr("Preprocessing error: IF_START  IF_END count mismatch in Image loop\r\n"));
    EXPECT_THAT(ErrorLog(), HasSubstr("0 errors\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr("---- done ----"));
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(Refusal, AFaultWithoutALineIsSaidOnStandardError) {
    Add(names::kIfLastFile);
    MakeScript();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), Not(HasSubstr("Preprocessing")));
    ASSERT_THAT(ui.notices, Contains(HasSubstr("first-file or last-file IF")));
}

TEST_F(Refusal, MarkersTwiceOrReversed) {
    MakeScript();
    AddStart();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("more than one 'START image loop (setup)'"));
    view.script.commands.Clear();
    Add(names::kEndImageLoop);
    AddOutput();
    AddStart();
    Unattended();
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("'END image loop' before 'START image loop (setup)'"));
}

TEST_F(Refusal, MoreThan2000Commands) {
    AddStart();
    for (int i = 0; i < 2000; ++i) Add(names::kCounter, "3,1,1,0,");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(), HasSubstr("more than 2000 commands"));
}

// ---- Subroutines ------------------------------------------------------------------------------

std::string SubroutineFile(std::string_view commands) {
    return "SUBRT\r\n" + std::string(commands) + "END\r\n";
}

TEST_F(Run, SubroutinesAreLoadedFromTheThreeFoldersInOrder) {
    AddPicture("1.png");
    const std::string write = "Output setup\r\n11,0,\"" + (folder / "out") + "\",0,png,0,3,,";
    test::PutFile(folder / "subroutines/S.sbr", SubroutineFile(write + "one,0,0,1,\r\n"));
    test::PutFile(folder / "scripts/S.sbr", SubroutineFile(write + "two,0,0,1,\r\n"));
    test::PutFile(folder / "scripts/T.sbr", SubroutineFile(write + "three,0,0,1,\r\n"));
    test::PutFile(folder / "install/Subroutines/U.sbr", SubroutineFile(write + "four,0,0,1,\r\n"));
    AddStart();
    for (const char* name : {"S", "T", "U", "S"})
        Add(names::kSubroutineExecute, "1,\"" + std::string(name) + "\",");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere()) << ErrorLog();
    EXPECT_THAT(Out(), ElementsAre("four.png", "one.png", "three.png"));
}

TEST_F(Run, SubroutinesCalledFromSubroutinesAreFoundToo) {
    AddPicture("1.png");
    test::PutFile(folder / "subroutines/Outer.sbr",
                  SubroutineFile("SUBROUTINE Execute\r\n1,\"Inner\",\r\n"));
    test::PutFile(
        folder / "subroutines/Inner.sbr",
        SubroutineFile("Counter (reset or increment)\r\n3,1,1,5,\r\nOutput setup\r\n11,0,\"" +
                       (folder / "out") + "\",0,png,0,3,,in$(F),0,0,1,\r\n"));
    AddStart();
    Add(names::kSubroutineExecute, "1,\"Outer\",");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere()) << ErrorLog();
    EXPECT_EQ(view.run.statOutputs, 1);
}

TEST_F(Run, AMissingSubroutineIsNamedAndNothingRuns) {
    AddStart();
    Add(names::kSubroutineExecute, "1,\"Nowhere\",");
    Add(names::kSubroutineExecute, "1,\"Neither\",");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ErrorLog(),
                HasSubstr("Preprocessing error: Unable to load called subroutine; Nowhere\r\n"
                          "Preprocessing error: Unable to load called subroutine; Neither\r\n"));
}

TEST_F(Run, ASubroutineThatWritesNowhereIsRefused) {
    test::PutFile(folder / "subroutines/S.sbr",
                  SubroutineFile("Output setup\r\n11,0,,0,jpg,0,0,,,0,0,0,\r\n"));
    AddStart();
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_THAT(ui.messages,
                ElementsAre("In subroutine 'Output setup' command(s) you must uncheck 'Set at "
                            "runtime' and set the output folder. Then run again"));
}

TEST_F(Run, EndlessRecursionIsAFatalError) {
    AddPicture("1.png");
    AddStart();
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    Add(names::kSubroutineStart, "1,\"S\",");
    Add(names::kLoopStart, "1,1000,");
    Add(names::kSubroutineExecute, "1,\"T\",");
    Add(names::kLoopEnd);
    Add(names::kSubroutineEnd);
    Add(names::kSubroutineStart, "1,\"T\",");
    Add(names::kExit);  // leaves without a return: frames pile up over the images
    Add(names::kSubroutineEnd);
    for (int i = 0; i < 300; ++i)
        fs::copy_file(folder / "in/1.png", folder / ("in/x" + std::to_string(i) + ".png"));
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.fatalCode, 8080);
    EXPECT_THAT(ErrorLog(), HasSubstr("Fatal error:8080 Subroutine stack overlow"));
}

using Structure = std::vector<std::string_view>;

/// Pairs of block commands at random places inside of the image loop, two subroutines behind it,
/// and then, in two of three cases, a few commands lost, moved or doubled.
Structure RandomStructure(std::mt19937& random) {
    const auto roll = [&](std::size_t sides) { return static_cast<long>(random() % sides); };
    const std::pair<std::string_view, std::string_view> pairs[] = {
        {names::kIfCondition, names::kIfEnd}, {names::kIfFirstFile, names::kIfEnd},
        {names::kIfLastFile, names::kIfEnd},  {names::kDoWhile, names::kDoEnd},
        {names::kLoopStart, names::kLoopEnd}, {names::kElseStart, names::kElseEnd}};
    Structure body;
    for (long i = roll(5); i >= 0; --i) {
        const auto& [starter, ender] = pairs[roll(std::size(pairs))];
        const long from = roll(body.size() + 1);
        body.insert(body.begin() + from, starter);
        const long to = from + 1 + roll(body.size() - static_cast<std::size_t>(from));
        body.insert(body.begin() + to, ender);
    }
    for (const auto name : {names::kCounter, names::kSubroutineExecute, names::kExit})
        if (roll(2) == 0) body.insert(body.begin() + roll(body.size() + 1), name);
    Structure all{names::kStartImageLoop};
    all.insert(all.end(), body.begin(), body.end());
    all.push_back(names::kEndImageLoop);
    for (const auto inner : {names::kSubroutineExecute, names::kCounter}) {
        all.push_back(names::kSubroutineStart);
        all.push_back(inner);
        all.push_back(names::kSubroutineEnd);
    }
    for (long i = roll(3); i > 0; --i) {
        const long at = roll(all.size()), other = roll(all.size());
        switch (roll(3)) {
            case 0:
                all.erase(all.begin() + at);
                break;
            case 1:
                std::swap(all[static_cast<std::size_t>(at)], all[static_cast<std::size_t>(other)]);
                break;
            default:
                all.insert(all.begin() + at, all[static_cast<std::size_t>(other)]);
                break;
        }
    }
    return all;
}

TEST_F(Run, RandomStructuresAreRefusedOrEnd) {
    AddPicture("1.png", {1, 1});
    view.settings.logs.batchLog = view.settings.logs.errorLog = false;
    std::mt19937 random(7);
    int ran = 0, refused = 0, subroutines = 0;
    for (int round = 0; round < 10'000; ++round) {
        view.script.commands.Clear();
        for (const auto name : RandomStructure(random)) {
            if (name == names::kStartImageLoop)
                AddStart();
            else if (name == names::kSubroutineStart)
                Add(name, subroutines++ % 2 == 0 ? "1,S," : "1,T,");
            else if (name == names::kSubroutineExecute)
                Add(name, random() % 2 != 0 ? "1,S," : "1,T,");
            else
                Add(name, name == names::kCounter ? "3,1,1,0," : "5,4,1,3,2,0,");
        }
        if (!PrepareBatch(view)) {
            ++refused;
            continue;
        }
        ++ran;
        // Some of them never end, which is their right.
        std::jthread stopper([&] {
            std::this_thread::sleep_for(std::chrono::microseconds(300));
            view.run.keepRunning = 0;
        });
        RunLoop(view);
        stopper.join();
        view.run.batchRunning = false;
        view.run.mode = RunMode::Idle;
    }
    EXPECT_GT(ran, 1000);
    EXPECT_GT(refused, 1000);
}

TEST(FatalWords, AreFixed) {
    EXPECT_EQ(FatalText(8010), "Fatal error:8010 Unable to find ELSE_END location");
    EXPECT_EQ(FatalText(8020), "Fatal error:8020 Unable to find Subroutine_END location");
    EXPECT_EQ(FatalText(8030), "Fatal error:8030 Unable to find IF_END location");
    EXPECT_EQ(FatalText(8040), "Fatal error:8040 Unable to find Loop End location");
    EXPECT_EQ(FatalText(8050), "Fatal error:8050 Unable to find Loop Start location");
    EXPECT_EQ(FatalText(8060), "Fatal error:8060 Unable to find DO_END location");
    EXPECT_EQ(FatalText(8070), "Fatal error:8070 Unable to find DO_WHILE location");
    EXPECT_EQ(FatalText(8080), "Fatal error:8080 Subroutine stack overlow");
    EXPECT_EQ(FatalText(8011), "Fatal error: 8011 Unknown cause");
    EXPECT_EQ(FatalText(12), "Fatal error: 12");
}

}  // namespace
}  // namespace lumo::engine
