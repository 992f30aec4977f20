#include "io/run_logs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "io/input.h"
#include "platform/environment.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// The second of three images, with the third command of the run entered.
struct RunLogsTest : testing::Test {
    RunLogsTest() {
        view.run.imageCount = 3;
        view.run.imageIndex = 1;
        view.run.prevPc = 2;
        view.input.path = "/In/Cat.JPG";
    }
    test::RunBench bench;
    CLumoscriptView& view = bench.view;
    std::vector<std::string>& batch = bench.BatchLines();
    std::vector<std::string>& error = bench.ErrorLines();
};

TEST_F(RunLogsTest, LinesOfAnImage) {
    LogInput(view, 2, "/In/Cat.JPG");
    LogInputSize(view, 2, {640, 480});
    LogOutput(view, 2, "/Out/Cat.png");
    LogOutputSize(view, 2, {320, 240});
    LogBatchLine(view, 2, "Filtered: image size too small");
    LogBatchLine(view, kNoNumber, "just the text");
    LogErrorLine(view, 2, " Error:1093 - File not found?");
    LogErrorLine(view, kNoNumber, "just the text");
    EXPECT_THAT(batch, ElementsAre("\r\n2 Input: /In/Cat.JPG", "2 Input size: 640 x 480",
                                   "2 Output: /Out/Cat.png", "2 Output size: 320 x 240",
                                   "2 : Filtered: image size too small", "just the text"));
    EXPECT_THAT(error, ElementsAre("2 Error:1093 - File not found?", "just the text"));
}

TEST_F(RunLogsTest, BlocksNameImageCommandAndFile) {
    LogBatchError(view, 2, "Output setup", "/Out/Cat.png", "Error:1004 Cmd_63 - Save file failure");
    EXPECT_THAT(batch, ElementsAre("", "Image number: 2   Command number: 3 Output setup",
                                   "Input image: /In/Cat.JPG",
                                   "No output from numbered command: /Out/Cat.png",
                                   "Error:1004 Cmd_63 - Save file failure", ""));
    LogErrorBlock(view, 2, "Output setup", "/Out/Cat.png", "Error:1004 Cmd_63 - Save file failure");
    EXPECT_THAT(
        error, ElementsAre("Image number: 2   Command number: 3 Output setup",
                           "Input image: /In/Cat.JPG", "No output from command named: /Out/Cat.png",
                           "Error:1004 Cmd_63 - Save file failure", ""));
}

TEST_F(RunLogsTest, TheInputLineAboveSavesTheOneInTheBlockOfBatchLogOnly) {
    view.settings.logs.inputName = true;
    LogBlock(view, "Crop", "Crop", "text");
    EXPECT_THAT(batch, ElementsAre("", "Image number: 2   Command number: 3 Crop",
                                   "No output from numbered command: Crop", "text", ""));
    EXPECT_THAT(error, testing::Contains("Input image: /In/Cat.JPG"));
}

TEST_F(RunLogsTest, NumbersOfImagesThatAreNotInHandAreLeftOut) {
    EXPECT_EQ(ImageInHand(view), 2);
    view.run.imageIndex = 2;  // the last one still counts
    EXPECT_EQ(ImageInHand(view), 3);
    LogBlock(view, "Crop", "Crop", "text");
    EXPECT_EQ(batch[1], "Image number: 3   Command number: 3 Crop");

    SplitInputPath(view, kPathAfterImages);
    EXPECT_EQ(ImageInHand(view), kNoNumber);
    LogBlock(view, "Crop", "Crop", "text");
    EXPECT_EQ(batch[7], "Command number: 3 Crop");
    EXPECT_EQ(batch[8], "Input image: Post_image_loop.");

    view.run.imageIndex = -1;
    SplitInputPath(view, kPathBeforeImages);
    EXPECT_EQ(ImageInHand(view), kNoNumber);
}

TEST_F(RunLogsTest, InfoAndHeader) {
    view.script.caption = "Batch script: (unsaved)";
    view.script.commands.Add("START image loop (setup)", "32,2,");
    view.script.commands.Add("Text overlay (absolute)", "1,\"two\nlines\",");
    view.run.firstScanCount = 120;
    view.run.startTime = system_clock::from_time_t(1'700'000'000);
    const std::string moment = platform::FormatTime("%c", 1'700'000'000);
    OpenLogs(view);
    EXPECT_THAT(
        batch,
        ElementsAre("-----Info-----", "Batch script: (unsaved)", moment, "Total input images: 120",
                    "-----------", "-----Header begin-----",
                    "Batch script commands:", "1) START image loop (setup)", "32,2,",
                    "2) Text overlay (absolute)", "1,\"two\nlines\",", "-----Header end------"));
    EXPECT_THAT(error, ElementsAre("-----Info-----", "Batch script: (unsaved)", moment,
                                   "Total input images: 120", "-- Errors and Warnings --"));
}

TEST_F(RunLogsTest, SettingsDecideWhichLogIsKept) {
    view.settings.logs.header = false;
    OpenLogs(view);
    EXPECT_THAT(batch, SizeIs(5));

    ClearLogs(view);
    view.settings.logs.batchLog = false;
    view.settings.logs.errorLog = false;
    OpenLogs(view);
    LogBlock(view, "Crop", "Crop", "text");
    LogLine(view, 1, "text");
    EXPECT_THAT(batch, IsEmpty());
    EXPECT_THAT(error, IsEmpty());

    view.run.forceErrorLog = true;  // of unattended runs
    OpenLogs(view);
    LogLine(view, 1, " text");
    EXPECT_THAT(error, SizeIs(6));
    EXPECT_EQ(error.back(), "1 text");
}

TEST_F(RunLogsTest, ErrorLinesOfBatchLogCanBeOffByThemselves) {
    view.settings.logs.errors = false;
    LogBlock(view, "Crop", "Crop", "text");
    LogLine(view, 2, "text");
    LogCommandFailure(view, "Crop");
    EXPECT_THAT(batch, IsEmpty());
    EXPECT_THAT(error, SizeIs(11));
    CloseLogs(view);
    EXPECT_EQ(bench.ui.messages, std::vector<std::string>{"log is empty - nothing to save!"});
}

TEST_F(RunLogsTest, ClosingLines) {
    view.run.errorCount = 3;
    view.run.warningCount = 2;
    const auto end = view.run.startTime + seconds(3 * 3600 + 25 * 60 + 7);
    CloseLogs(view, end);
    EXPECT_EQ(bench.LogFile("Batch.log"),
              "\r\n---- done ----\r\n3 :  errors\r\n2 :  warnings\r\n"
              "Elapsed processing time - hours: 03, mins: 25, secs: 07\r\n");
    EXPECT_EQ(bench.LogFile("Error.log"), "3 errors\r\n");
    EXPECT_THAT(batch, IsEmpty());
    EXPECT_THAT(error, IsEmpty());
}

TEST_F(RunLogsTest, ElapsedTimeKeepsAllHoursAndNeverRunsBackwards) {
    const auto elapsed = [&](int s) { return ElapsedText(view, view.run.startTime + seconds(s)); };
    EXPECT_EQ(elapsed(0), "Elapsed processing time - hours: 00, mins: 00, secs: 00");
    EXPECT_EQ(elapsed(26 * 3600 + 59), "Elapsed processing time - hours: 26, mins: 00, secs: 59");
    EXPECT_EQ(elapsed(-10), "Elapsed processing time - hours: 00, mins: 00, secs: 00");
}

TEST_F(RunLogsTest, AnAbortIsSavedAtOnceAndAgainWithTheClosingLines) {
    view.run.imageCount = 9;
    view.run.imageIndex = 4;
    LogAbort(view);
    const std::string saved = bench.LogFile("Batch.log");
    EXPECT_EQ(saved,
              "\r\nImage number: 5   Command number: 3 \r\nInput image: /In/Cat.JPG\r\n"
              "No output from numbered command: Abort\r\nUser aborted.\r\n\r\n");
    EXPECT_EQ(bench.LogFile("Error.log"),
              "Image number: 5   Command number: 3 \r\nInput image: /In/Cat.JPG\r\n"
              "No output from command named: Abort\r\nUser aborted.\r\n\r\n");
    CloseLogs(view);
    EXPECT_TRUE(bench.LogFile("Batch.log").starts_with(saved + "\r\n---- done ----\r\n"));
    EXPECT_TRUE(bench.LogFile("Error.log").ends_with("User aborted.\r\n\r\n0 errors\r\n"));
}

TEST_F(RunLogsTest, ARefusalGoesToDiskAtOnceAndKnowsNoImageAndNoCommand) {
    LogFatalRefusal(view, "No 'START Image loop (setup)'. Not a batch script. No batching.");
    EXPECT_EQ(bench.LogFile("Batch.log"),
              "\r\nCommand number: 0 \r\nInput image: \r\nNo output from numbered command: \r\n"
              "No 'START Image loop (setup)'. Not a batch script. No batching.\r\n\r\n");
    EXPECT_EQ(bench.LogFile("Error.log"),
              "Command number: 0 \r\nInput image: \r\nNo output from command named: \r\n"
              "No 'START Image loop (setup)'. Not a batch script. No batching.\r\n\r\n");
}

TEST_F(RunLogsTest, EmptyImageNamesTheCommandEnteredLast) {
    view.run.list.Add("Crop", "0");
    view.run.prevPc = 0;
    LogEmptyImage(view);
    EXPECT_THAT(batch, ElementsAre("", "Image number: 2   Command number: 1 Crop",
                                   "Input image: /In/Cat.JPG",
                                   "No output from numbered command: Null buffer",
                                   "Error: empty main image buffer", ""));
}

TEST_F(RunLogsTest, NamesShowTheirControlCharactersAsQuestionMarks) {
    view.input.path = "/In/two\nlines.jpg";
    LogInput(view, 2, view.input.path);
    LogBlock(view, "Crop", "/Out/bell\x07.jpg", "text");
    EXPECT_EQ(batch[0], "\r\n2 Input: /In/two?lines.jpg");
    EXPECT_EQ(batch[3], "Input image: /In/two?lines.jpg");
    EXPECT_EQ(batch[4], "No output from numbered command: /Out/bell?.jpg");
}

TEST_F(RunLogsTest, SavingReplacesTheWholeFile) {
    LogBatchLine(view, kNoNumber, "one");
    LogBatchLine(view, kNoNumber, "two");
    SaveBatchLog(view);
    batch = {"three"};
    SaveBatchLog(view);
    EXPECT_EQ(bench.LogFile("Batch.log"), "three\r\n");
    EXPECT_EQ(test::NamesIn(bench.folder / "Logs"), std::vector<std::string>{"Batch.log"});
}

TEST_F(RunLogsTest, AnEmptyLogLeavesAnEmptyFileAndAMessage) {
    SaveErrorLog(view);
    EXPECT_EQ(bench.LogFile("Error.log"), "");
    EXPECT_THAT(bench.ui.messages, ElementsAre("log is empty - nothing to save!"));
}

TEST_F(RunLogsTest, ALogThatCannotBeWrittenIsPassedOverInSilence) {
    test::PutFile(bench.folder / "file", "in the way");
    view.settings.folders.logs = bench.folder / "file";
    view.logs.debugOn = true;
    LogDebugStart(view, "/In/Cat.JPG");
    LogDebugCommand(view, "Crop", "0");
    LogLine(view, 1, "text");
    CloseLogs(view);
    EXPECT_THAT(bench.ui.messages, IsEmpty());
    EXPECT_EQ(test::FileText(bench.folder / "file"), "in the way");
}

TEST_F(RunLogsTest, AMissingLogFolderIsMade) {
    view.settings.folders.logs = bench.folder / "new/Logs";
    LogBatchLine(view, kNoNumber, "text");
    SaveBatchLog(view);
    EXPECT_EQ(test::FileText(bench.folder / "new/Logs/Batch.log"), "text\r\n");
}

TEST_F(RunLogsTest, DebugLogDescribesTheImageInHandAsItGoes) {
    view.logs.debugOn = true;
    LogDebugStart(view, "/In/first.jpg");
    LogDebugCommand(view, "Crop", "6,10,10,10,10,0,0,");
    EXPECT_THAT(bench.LogFile("Debug.log"), HasSubstr("first.jpg\r\nCrop\r\n6,10,10,10,10,0,0,"));

    LogDebugStart(view, "/In/Cat.JPG");
    const std::string text = bench.LogFile("Debug.log");
    EXPECT_THAT(text.substr(text.find("\r\n")),
                "\r\nCurrent Image File with last command executed:\r\n/In/Cat.JPG\r\n");
    LogDebugCommand(view, "Crop", "6,10,10,10,10,0,0,");
    EXPECT_TRUE(
        bench.LogFile("Debug.log").ends_with("/In/Cat.JPG\r\nCrop\r\n6,10,10,10,10,0,0,\r\n"));
}

TEST_F(RunLogsTest, DebugLogStopsAtTheHundredthCommandOfAnImage) {
    view.logs.debugOn = true;
    LogDebugStart(view, "/In/Cat.JPG");
    const std::string start = bench.LogFile("Debug.log");
    std::string expected = start;
    for (int i = 1; i <= 150; ++i) {
        const std::string params = "1," + std::to_string(i) + ",";
        LogDebugCommand(view, "Blur", params);
        if (i < 100) expected += "Blur\r\n" + params + "\r\n";
        if (i == 100)
            expected += "100 cmd executions - stopped logging, endless loop?\r\n" + params + "\r\n";
    }
    EXPECT_EQ(bench.LogFile("Debug.log"), expected);
    EXPECT_EQ(view.logs.executions, 101);
    LogDebugStart(view, "/In/next.jpg");
    EXPECT_EQ(view.logs.executions, 0);
}

TEST_F(RunLogsTest, DebugLogIsWrittenOnlyWhileItIsOnAndABatchRuns) {
    LogDebugStart(view, "/In/Cat.JPG");
    LogDebugCommand(view, "Blur", "0");
    view.logs.debugOn = true;
    view.run.batchRunning = false;
    LogDebugCommand(view, "Blur", "0");
    EXPECT_EQ(bench.LogFile("Debug.log"), "<missing>");
    EXPECT_EQ(view.logs.executions, 0);
}

}  // namespace
}  // namespace lumo::io
