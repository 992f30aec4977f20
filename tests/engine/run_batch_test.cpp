// Whole runs, from a Script in memory to files and logs on disk.

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>

#include "engine/run_reports.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

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

TEST_F(Run, CountersGoOnFromImageToImage) {
    for (const char* name : {"1.png", "2.png", "3.png"}) AddPicture(name);
    view.counters.fill(5);  // of a run before
    AddStart();
    Add(names::kCounter, "3,1,1,0,");
    Add(names::kIfCondition, "5,4,2,2,0,0,");  // counter A is 2: of the second image
    AddOutput();
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("2.png"));
}

TEST_F(Run, ExitWritesNothingForThisImage) {
    AddPicture("1.png", {40, 30});
    AddPicture("2.png", {100, 30});
    AddPicture("3.png", {40, 30});
    AddStart();
    Add(names::kIfCondition, "5,1,0,50,0,0,");  // wider than 50
    Add(names::kExit);
    Add(names::kIfEnd);
    AddOutput();
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png", "3.png"));
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(Run, ExitBehindTheLoopEndsTheRun) {
    AddPicture("1.png");
    AddStart();
    Add(names::kEndImageLoop);
    Add(names::kExit);
    AddOutput();
    ASSERT_TRUE(RunHere());
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_EQ(view.run.fatalCode, 0);
}

TEST_F(Run, ExitInASubroutineTakesTheNextImageFromBeforeTheLoopToo) {
    AddPicture("1.png");
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kCounter, "3,1,1,0,");  // never reached
    AddStart();
    Add(names::kIfCondition, "5,4,2,0,0,0,");
    AddOutput();
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    Add(names::kSubroutineStart, "1,\"S\",");
    Add(names::kExit);
    Add(names::kSubroutineEnd);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png"));
}

TEST_F(Run, FileIfsHoldForTheFirstAndTheLastImage) {
    for (const char* name : {"1.png", "2.png", "3.png"}) AddPicture(name);
    AddStart();
    Add(names::kIfFirstFile);
    AddOutput("png,0,3,,first,0,0,1,");
    Add(names::kIfEnd);
    Add(names::kIfLastFile);
    AddOutput("png,0,3,,last,0,0,1,");
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("first.png", "last.png"));
    EXPECT_EQ(view.run.statOutputs, 2);
}

TEST_F(Run, AScriptInfoOfASubroutineIsPassedOver) {
    AddPicture("1.png");
    test::PutFile(folder / "subroutines/S.sbr",
                  SubroutineFile("Script info\r\n7,a,b,c,d,e,f,g,\r\nOutput setup\r\n11,0,\"" +
                                 (folder / "out") + "\",0,png,0,0,,,0,0,1,\r\n"));
    AddStart();
    Add(names::kScriptInfo, "7,not,even,in,the,run,list,,");
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere()) << ErrorLog();
    EXPECT_THAT(Out(), ElementsAre("1.png"));
    EXPECT_EQ(view.run.errorCount, 0);
}

/// Presses Abort while something happens for the so-manieth time.
class AbortingInterface : public test::RecordingInterface {
  public:
    void SetTitle(std::string_view text) override {
        RecordingInterface::SetTitle(text);
        if (atTitle > 0 && --atTitle == 0) *keepRunning = 0;
    }
    void ShowWaitCursor(bool on) override {
        if (!on) return;
        ++commands;
        if (atCommand > 0 && --atCommand == 0) *keepRunning = 0;
    }
    std::atomic<int>* keepRunning = nullptr;
    int atTitle = 0, atCommand = 0, commands = 0;
};

class AbortedRun : public Run {
  protected:
    /// Runs the Script of `view` under an interface that aborts.
    void RunUnder(AbortingInterface& interface) {
        CLumoscriptView aborted(interface);
        aborted.settings = view.settings;
        aborted.script.commands = view.script.commands;
        aborted.sample.left = test::CoordinateImage({20, 10});
        interface.keepRunning = &aborted.run.keepRunning;
        ASSERT_TRUE(PrepareBatch(aborted));
        EXPECT_EQ(RunThreadEntry(aborted), 1);
        EXPECT_EQ(aborted.working.main.Extent(), (imaging::Size{20, 10}));
    }
};

TEST_F(AbortedRun, InTheFifthImageIsLoggedAtItsLineAndTheSampleIsBack) {
    for (int i = 1; i <= 9; ++i) AddPicture(std::to_string(i) + ".png");
    MakeScript();
    AbortingInterface interface;
    interface.atTitle = 5;
    RunUnder(interface);
    EXPECT_THAT(Out(), ElementsAre("1.png", "2.png", "3.png", "4.png"));
    EXPECT_THAT(ErrorLog(), HasSubstr("Image number: 5"));
    EXPECT_THAT(ErrorLog(), HasSubstr("User aborted.\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr("User aborted.\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr("Elapsed processing time - hours: 00, mins: 00, secs: "));
}

TEST_F(AbortedRun, EndsWithTheCommandInHand) {
    Add(names::kDoWhile, "5,4,2,0,0,0,");  // counter A stays 0
    Add(names::kCounter, "3,1,1,1,");
    Add(names::kDoEnd);
    MakeScript();
    AbortingInterface interface;
    interface.atCommand = 1000;
    RunUnder(interface);
    EXPECT_EQ(interface.commands, 1000);
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
