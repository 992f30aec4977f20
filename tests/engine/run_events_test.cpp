// What happens in the middle of a run and around it: aborts, files that vanish or do not count,
// failures, the flags that outlive an image, unattended starts.

#include <gmock/gmock.h>

#include <filesystem>

#include "io/input.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class RunEvents : public RunFixture {
  protected:
    void AddPictures(int count) {
        for (int i = 1; i <= count; ++i) AddPicture(std::to_string(i) + ".png");
    }
    imaging::Image Written(const std::string& name) {
        auto decoded = io::OpenImageFile(view, folder / ("out/" + name));
        return decoded ? std::move(decoded->image) : imaging::Image();
    }
};

TEST_F(RunEvents, AnAbortDuringTheFifthImageIsLoggedThere) {
    AddPictures(7);
    MakeScript();
    view.sample.left = test::CoordinateImage({20, 10});
    view.run.autoExit = true;
    ui.atImage = [&](int number) {
        if (number == 5) RunBatch(view);  // a second press
    };
    ASSERT_TRUE(PrepareBatch(view));
    EXPECT_EQ(RunThreadEntry(view), 1);
    EXPECT_THAT(Out(), ElementsAre("1.png", "2.png", "3.png", "4.png"));
    EXPECT_THAT(ErrorLog(), HasSubstr("Image number: 5   Command number: 1 \r\nInput image: " +
                                      (folder / "in/5.png") +
                                      "\r\nNo output from command named: Abort\r\nUser aborted."));
    EXPECT_THAT(BatchLog(), HasSubstr("Image number: 5 "));
    EXPECT_THAT(BatchLog(), HasSubstr("Elapsed processing time - hours: 00, mins: 00, secs: 0"));
    EXPECT_TRUE(test::SamePixels(view.working.main, view.sample.left));
    EXPECT_EQ(ui.statuses.back(), "User aborted!");
    EXPECT_THAT(ui.timers, IsEmpty());  // whoever aborts goes on working
    EXPECT_FALSE(view.run.autoExit);
    EXPECT_THAT(view.run.inputList, IsEmpty());
}

TEST_F(RunEvents, AnAbortBeforeTheLoopHasNoNumber) {
    Add(names::kCounter, "3,1,1,0,");
    MakeScript();
    ASSERT_TRUE(PrepareBatch(view));
    RunBatch(view);
    EXPECT_EQ(RunThreadEntry(view), 1);
    EXPECT_THAT(ErrorLog(), HasSubstr("\r\nCommand number: 0 \r\n"));
    EXPECT_THAT(ErrorLog(), Not(HasSubstr("Image number")));
}

TEST_F(RunEvents, AFileThatGoesAfterTheScanIsAnErrorAndTheNextIsTaken) {
    AddPictures(3);
    MakeScript();
    ui.atImage = [&](int number) {
        if (number == 1) fs::remove(folder / "in/2.png");
    };
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png", "3.png"));
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_EQ(view.run.statInputs, 3);
    EXPECT_THAT(ErrorLog(), HasSubstr("\r\n2 Error:1093 - File not found?\r\n"));
    EXPECT_THAT(BatchLog(), HasSubstr("\r\n2 :  Error:1093 - File not found?\r\n"));
}

TEST_F(RunEvents, AFilteredFileIsNoError) {
    AddPicture("1.png", {40, 30});  // below 64 x 48
    AddPicture("2.png", {100, 80});
    AddStart("1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,1,0,0,0,0.0,4.0,0,");
    AddOutput();
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("2.png"));
    EXPECT_EQ(view.run.errorCount, 0);
    EXPECT_THAT(ErrorLog(), HasSubstr("0 errors\r\n"));
}

TEST_F(RunEvents, CommandsOfTheLoopDoNotRunForAnUnreadableFile) {
    AddPicture("1.png");
    test::PutFile(folder / "in/2.png", "no picture");
    AddStart();
    Add(names::kCounter, "3,1,1,1,");  // A becomes 1 for each image
    Add("No such command");
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.errorCount, 2);  // the file, and one failed command of the other
}

TEST_F(RunEvents, AnEmptyImageIsALineAndOneError) {
    AddStart();
    AddOutput();
    Add(names::kEndImageLoop);
    Add(names::kFlipVertical);
    Add(names::kCounter, "3,1,1,0,");
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.run.errorCount, 1);
    EXPECT_THAT(ErrorLog(), HasSubstr("No output from command named: Null buffer\r\n"
                                      "Error: empty main image buffer\r\n"));
    EXPECT_THAT(ErrorLog(), HasSubstr("Error:1003 - Command execution failure\r\n"));
}

TEST_F(RunEvents, AFalseIfIsRememberedByTheHorizontalFlipAlone) {
    AddPictures(2);
    for (const auto flip : {names::kFlipHorizontal, names::kFlipVertical}) {
        view.script.commands.Clear();
        AddStart();
        Add(names::kIfCondition, "5,4,2,99,0,0,");  // counter A is 99: never
        Add(names::kIfEnd);
        Add(flip);
        AddOutput();
        Add(names::kEndImageLoop);
        ASSERT_TRUE(RunHere());
        for (const char* name : {"1.png", "2.png"})
            EXPECT_EQ(
                static_cast<bool>(test::SamePixels(Written(name), test::CoordinateImage({40, 30}))),
                flip == names::kFlipHorizontal)
                << flip;
    }
    EXPECT_EQ(view.test.ifFlag, 1);  // set again at the end
}

TEST_F(RunEvents, CountersGoOnFromImageToImage) {
    AddPictures(3);
    AddStart();
    Add(names::kCounter, "3,1,1,0,");          // A counts the images
    Add(names::kIfCondition, "5,4,2,3,0,0,");  // A is 3
    AddOutput();
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("3.png"));
}

TEST_F(RunEvents, OptionsOfTheLogsComeBackAtTheEnd) {
    AddPictures(1);
    MakeScript();
    const settings::LogSettings before = view.settings.logs;
    ui.atImage = [&](int) { view.settings.logs.errorLog = !before.errorLog; };
    ASSERT_TRUE(RunHere());
    EXPECT_EQ(view.settings.logs, before);
}

// ---- The picture before the first image -------------------------------------------------------

class Ornament : public RunEvents {
  protected:
    Ornament() {
        view.sample.left = test::CoordinateImage({20, 10});
        MakeScript();
    }
    imaging::Size SizeBeforeTheFirstImage() {
        EXPECT_TRUE(PrepareBatch(view));
        const imaging::Size size = view.working.main.Extent();
        view.run.keepRunning = 0;
        RunThreadEntry(view);
        return size;
    }
};

TEST_F(Ornament, IsShownWhileAnybodyLooks) {
    PutPicture("install/Frame2.jpg", {64, 48});
    EXPECT_EQ(SizeBeforeTheFirstImage(), (imaging::Size{64, 48}));
    Unattended();
    EXPECT_EQ(SizeBeforeTheFirstImage(), (imaging::Size{0, 0}));
}

TEST_F(Ornament, IsTheSampleWhereNoneIsInstalled) {
    EXPECT_EQ(SizeBeforeTheFirstImage(), (imaging::Size{20, 10}));
}

TEST_F(Ornament, IsNotForARunOverTheSample) {
    PutPicture("install/Frame2.jpg", {64, 48});
    view.run.onLeftImage = true;
    EXPECT_EQ(SizeBeforeTheFirstImage(), (imaging::Size{0, 0}));
}

// ---- Runs over the sample -----------------------------------------------------------------------

TEST_F(RunEvents, TheSampleComesOutTheSameEachTime) {
    view.sample.left = test::CoordinateImage({20, 10});
    AddStart();
    Add(names::kConvertOneColourTone, "2,0,50,");
    Add(names::kConvertGreyscale);
    Add(names::kEndImageLoop);
    imaging::Image first;
    for (int run = 0; run < 2; ++run) {
        view.run.onLeftImage = true;
        ASSERT_TRUE(RunHere());
        if (run == 0)
            first = test::Copy(view.working.main.View());
        else
            EXPECT_TRUE(test::SamePixels(view.working.main, first));
    }
    EXPECT_FALSE(test::SamePixels(first, view.sample.left));
}

TEST_F(RunEvents, ARefusedRunOverTheSampleLeavesTheNextOneToTheInput) {
    AddPictures(1);
    view.sample.left = test::CoordinateImage({20, 10});
    view.run.onLeftImage = true;
    view.run.mode = RunMode::BatchOnSample;
    AddStart();
    Add(names::kLoopStart, "1,2,");
    AddOutput();
    Add(names::kEndImageLoop);
    EXPECT_FALSE(RunHere());
    EXPECT_FALSE(view.run.onLeftImage);
    EXPECT_EQ(view.run.mode, RunMode::Idle);
    EXPECT_TRUE(test::SamePixels(view.working.main, view.sample.left));
    view.script.commands.Remove(1);
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(Out(), ElementsAre("1.png"));
}

// ---- Unattended runs ----------------------------------------------------------------------------

TEST_F(RunEvents, TimerTwoBeginsAnUnattendedRunAndThenEndsTheProgram) {
    AddPictures(1);
    MakeScript();
    Unattended();
    view.run.autoRun = view.run.forceErrorLog = true;
    OnTimer2(view);
    JoinWorker(view);
    EXPECT_THAT(Out(), ElementsAre("1.png"));
    EXPECT_THAT(ui.timers, ElementsAre(1000));
    EXPECT_EQ(ui.quits, 0);
    const RunState& run = view.run;
    EXPECT_FALSE(run.autoRun || run.autoExit || run.noPrompts || run.forceErrorLog);
    OnTimer2(view);
    EXPECT_EQ(ui.quits, 1);
}

TEST_F(RunEvents, AnUnattendedStartThatIsRefusedEndsTheProgramToo) {
    Add(names::kOutputSetup, "0");
    Unattended();
    view.run.autoRun = true;
    OnTimer2(view);
    EXPECT_THAT(ui.timers, ElementsAre(1000));
    EXPECT_FALSE(view.run.noPrompts);  // whoever goes on by hand is asked again
    OnTimer2(view);
    EXPECT_EQ(ui.quits, 1);
}

TEST_F(RunEvents, ARunStartedByHandStartsNoTimer) {
    AddPictures(1);
    MakeScript();
    ASSERT_TRUE(RunHere());
    EXPECT_THAT(ui.timers, IsEmpty());
}

}  // namespace
}  // namespace lumo::engine
