// Whole runs, from a Script in memory to files and logs on disk.

#include "engine/run_batch.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "engine/run_reports.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Run : public RunFixture {};

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

TEST_F(Run, TheSampleKeepsItsMetadataAcrossARun) {
    const MarkerList ofTheSample{{0xFE, {'h', 'i'}}};
    const auto bytes = imaging::codecs::EncodeJpeg(test::FlatImage({8, 8}, {1, 2, 3}).View(),
                                                   {.markers = {{0xFE, {'i', 'n'}}}});
    ASSERT_TRUE(bytes);
    std::filesystem::create_directories(folder / "in");
    ASSERT_TRUE(platform::WriteFile(folder / "in/a.jpg", *bytes));
    AddStart();
    Add(names::kJpgFileHeader, "29,1,1,0,0,0,0,0,,0,,,,,,,,,,,,,,,0,,,,,,");
    AddOutput("jpg,0,0,,,0,0,1,");
    Add(names::kEndImageLoop);
    for (const bool aborted : {false, true}) {
        view.metadata.jpgInput = view.metadata.jpgOutput = ofTheSample;
        ui.atImage = [&](int) {
            // Commands before the loop must not write the sample's header into their outputs.
            EXPECT_THAT(view.metadata.jpgOutput, IsEmpty());
            if (aborted) view.run.keepRunning = 0;
        };
        ASSERT_TRUE(RunHere());
        EXPECT_EQ(view.metadata.jpgInput, ofTheSample);
        EXPECT_EQ(view.metadata.jpgOutput, ofTheSample);
        EXPECT_THAT(view.waitingMetadata.jpgOutput, IsEmpty());
    }
    EXPECT_THAT(test::FileText(folder / "out/a.jpg"), HasSubstr("\xFF\xFE\0\4in"s));
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
