// Runs from START to END in which files come and go under the Script's feet.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "engine/run_batch.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::ops::files {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FilesRun : public testing::Test {
  protected:
    FilesRun() {
        view.settings.folders.logs = folder / "logs";
        view.settings.folders.temp = folder / "temp";
        view.run.noPrompts = true;
        for (int i = 1; i <= 3; ++i) {
            const auto bytes =
                imaging::codecs::EncodePng(test::CoordinateImage({10 * i, 5}).View(), {});
            EXPECT_TRUE(platform::WriteFile(folder / ("in/" + std::to_string(i) + ".png"), *bytes));
        }
    }
    void Add(std::string_view name, std::string_view params = "0") {
        view.script.commands.Add(name, params);
    }
    void AddStart() {
        Add(names::kStartImageLoop, "32,2,,\"" + (folder / "in") +
                                        "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,"
                                        "960,0,0,0,0,0,0,0.0,4.0,0,");
    }
    void AddOutput(const std::string& suffix) {
        Add(names::kOutputSetup,
            "11,0,\"" + (folder / "out") + "\",0,png,1,0," + suffix + ",,0,0,1,");
    }
    void RunToEnd() {
        Add(names::kEndImageLoop);
        view.run.noPrompts = true;
        ASSERT_TRUE(engine::PrepareBatch(view));
        engine::RunThreadEntry(view);
        view.script.commands.Clear();
    }
    imaging::Size SizeOf(const std::string& name) {
        const auto bytes = platform::ReadFile(folder / ("out/" + name));
        if (!bytes) return {};
        const auto decoded = imaging::codecs::Decode(*bytes, imaging::codecs::Format::Png, {});
        return decoded ? decoded->image.Extent() : imaging::Size{};
    }
    std::vector<std::string> In() const { return test::NamesIn(folder / "in"); }
    std::vector<std::string> Out() const { return test::NamesIn(folder / "out"); }
    std::string ErrorLog() const { return test::FileText(folder / "logs/Error.log"); }

    test::TempFolder folder;
    test::RecordingInterface ui;
    engine::CLumoscriptView view{ui};
    const bool made = fs::create_directories(folder / "in");
};

TEST_F(FilesRun, TwoBranchesFromOneStage) {
    AddStart();
    Add(names::kOutputTemporary, "2,0,,");
    Add(names::kRotate90, "1,90,");
    AddOutput("a");
    Add(names::kInputTemporary, "2,0,,");
    AddOutput("b");
    RunToEnd();
    EXPECT_THAT(Out(), ElementsAre("1a.png", "1b.png", "2a.png", "2b.png", "3a.png", "3b.png"));
    EXPECT_EQ(SizeOf("3a.png"), (imaging::Size{5, 30}));
    EXPECT_EQ(SizeOf("3b.png"), (imaging::Size{30, 5}));
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(FilesRun, ASlotOfTheLastRunServesInTheNext) {
    AddStart();
    Add(names::kOutputTemporary, "2,7,last,");
    RunToEnd();
    AddStart();
    Add(names::kInputTemporary, "2,7,last,");
    AddOutput("");
    RunToEnd();
    EXPECT_EQ(SizeOf("1.png"), (imaging::Size{30, 5})) << "the last image of the first run";
    EXPECT_EQ(view.run.errorCount, 0);
}

TEST_F(FilesRun, AReloadAfterADeleteFailsAndTheRunGoesOn) {
    AddStart();
    Add(names::kDeleteInputFile, "2,0,0,");
    Add(names::kReloadImageFile);
    AddOutput("");
    RunToEnd();
    EXPECT_THAT(In(), IsEmpty());
    EXPECT_FALSE(fs::exists(folder / "out")) << "there was no picture left to write";
    EXPECT_EQ(view.run.statInputs, 3);
    EXPECT_EQ(view.run.errorCount, 6) << "the reload and the output of each image";
    EXPECT_THAT(ErrorLog(), HasSubstr("Image number: 3   Command number: 3 Cmd_65 Reload\r\n"
                                      "Input image: " +
                                      (folder / "in/3.png") +
                                      "\r\nNo output from command named: Reload failed\r\n"
                                      "Image not found?\r\n"));
    EXPECT_THAT(ui.questions, IsEmpty()) << "an unattended run never asks";
}

TEST_F(FilesRun, AMoveWithoutOverwritingCountsAWarningAndACommandError) {
    test::PutFile(folder / "done/2.png", "older");
    AddStart();
    Add(names::kCopyMove, "6,0,\"" + (folder / "done") + "\",0,,,0,");
    Add(names::kCopyMove, "6,0,\"" + (folder / "done") + "\",0,,,0,");
    RunToEnd();
    EXPECT_THAT(In(), ElementsAre("2.png"));
    EXPECT_THAT(test::NamesIn(folder / "done"), ElementsAre("1.png", "2.png", "3.png"));
    EXPECT_EQ(test::FileText(folder / "done/2.png"), "older");
    EXPECT_EQ(view.run.warningCount, 4);  // 1.png and 3.png gone, 2.png in the way twice
    EXPECT_EQ(view.run.errorCount, 4);
    EXPECT_THAT(ErrorLog(), HasSubstr("Image number: 1   Command number: 3 Copy/Move\r\n"));
    EXPECT_THAT(
        ErrorLog(),
        HasSubstr("Warning:1125 Cmd_20 - Original file no longer exists (Delete/Move?)\r\n"));
    EXPECT_THAT(ErrorLog(),
                HasSubstr("Warning:1123 Cmd_20 - Copy/move to file exists, no overwrite\r\n"));
}

TEST_F(FilesRun, TheFixedImageGoesOutUnderTheNamesOfTheInput) {
    fs::copy(folder / "in/3.png", folder / "fixed.png");
    AddStart();
    Add(names::kInputFixedImage, "1,\"" + (folder / "fixed.png") + "\",");
    AddOutput("");
    RunToEnd();
    EXPECT_THAT(Out(), ElementsAre("1.png", "2.png", "3.png"));
    EXPECT_EQ(SizeOf("1.png"), (imaging::Size{30, 5}));
}

TEST_F(FilesRun, BeforeAndBehindTheImageLoopThereIsNoInputFile) {
    Add(names::kNewCanvas, "6,20,20,0,0,0,0,");
    Add(names::kCopyMove, "6,0,\"" + (folder / "done") + "\",0,,,1,");
    Add(names::kDeleteInputFile, "2,1,0,");
    AddStart();
    Add(names::kEndImageLoop);
    Add(names::kDeleteInputFile, "2,1,0,");
    ASSERT_TRUE(engine::PrepareBatch(view));
    engine::RunThreadEntry(view);
    EXPECT_THAT(In(), ElementsAre("1.png", "2.png", "3.png"));
    EXPECT_EQ(view.run.errorCount, 3);
    EXPECT_FALSE(fs::exists(folder / "done"));
}

}  // namespace
}  // namespace lumo::ops::files
