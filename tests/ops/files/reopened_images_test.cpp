#include <gmock/gmock.h>

#include <filesystem>

#include "files_fixture.h"
#include "ops/files/files_commands.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

namespace fs = std::filesystem;
using engine::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ReopenedImages : public test::FilesTest {
  protected:
    ReopenedImages() {
        view.metadata.jpgInput = {{0xFE, {'x'}}};
        view.working.imageBits = 1;
        view.working.imageBitsForced = 1;
        view.working.grey = true;
    }
    Outcome Fixed(const std::string& path) {
        return Run(kInputFixedImageCommand, "1,\"" + path + "\",");
    }
    Outcome Reload() { return Run(kReloadImageFileCommand, "0"); }
    void ExpectFullColour() {
        EXPECT_EQ(view.working.imageBits, 24);
        EXPECT_EQ(view.working.imageBitsForced, 0);
        EXPECT_FALSE(view.working.grey);
        EXPECT_EQ(view.metadata.jpgInput.size(), 1u) << "what was read of the input stays";
    }
};

TEST_F(ReopenedImages, TheFixedImageComesAndTheInputStaysInHand) {
    bench.PutPicture(bench.folder / "Fixed/canvas.png", {20, 10});
    EXPECT_EQ(Fixed(bench.folder / "Fixed/canvas.png"), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{20, 10}));
    EXPECT_EQ(view.input.path, input);
    EXPECT_EQ(view.input.title, "Cat");
    ExpectFullColour();
}

TEST_F(ReopenedImages, TheFixedImageMayBeStatedWithTokens) {
    bench.PutPicture(bench.folder / "Install/Photos/sky.png", {20, 10});
    EXPECT_EQ(Fixed("<INSTALL_FOLDER>\\Photos\\sky.png"), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{20, 10}));
}

TEST_F(ReopenedImages, TheFixedImageNeedsNoPictureBeforeIt) {
    view.working.main.Reset();
    EXPECT_EQ(Fixed(input), Outcome::Succeeded);
}

TEST_F(ReopenedImages, AMissingFixedImageFails) {
    for (const std::string& path : {bench.In("none.png"), std::string()}) {
        bench.BatchLines().clear();
        EXPECT_EQ(Fixed(path), Outcome::Failed);
        EXPECT_THAT(bench.BatchLines(),
                    ElementsAre(StartsWith("Cmd_51 Input fixed image: open file failure L15359: "
                                           "  IS_error ")));
        EXPECT_TRUE(view.working.main.IsEmpty());
    }
    EXPECT_EQ(view.run.failureReports, 2);
}

TEST_F(ReopenedImages, AMissingFixedImageIsAMessageInATest) {
    LeaveRun();
    EXPECT_EQ(Fixed(bench.In("none.png")), Outcome::Failed);
    EXPECT_THAT(bench.ui.messages,
                ElementsAre(StartsWith("Cmd_51 Input fixed image: open file failure L15359: ")));
}

TEST_F(ReopenedImages, ThePanelNamesTheFixedImage) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kInputFixedImageCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("1,\"a.png\","), "Image file to open:\na.png\n");
    EXPECT_EQ(panel("1,,"), "Image file to open:\nNo image selected\n");
}

TEST_F(ReopenedImages, ReloadReadsTheInputAgain) {
    view.working.main = test::CoordinateImage({99, 1});
    EXPECT_EQ(Reload(), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{8, 6}));
    EXPECT_EQ(bench.ui.lastCounts.totalInput, 1);
    EXPECT_THAT(bench.BatchLines(), IsEmpty());
    ExpectFullColour();
}

TEST_F(ReopenedImages, ReloadOfAFileThatIsGoneFailsAndIsToldAtOnce) {
    fs::remove(input);
    EXPECT_EQ(Reload(), Outcome::Failed);
    ExpectBlock("Cmd_65 Reload", "Reload failed", "Image not found?");
    EXPECT_THAT(bench.LogFile("Batch.log"), HasSubstr("Image not found?"));
    EXPECT_THAT(bench.LogFile("Error.log"), HasSubstr("Image not found?"));
    EXPECT_TRUE(view.working.main.IsEmpty());
    ExpectFullColour();
}

TEST_F(ReopenedImages, ReloadAfterADeleteFails) {
    ASSERT_EQ(Run(kDeleteInputFileCommand, "2,1,0,"), Outcome::Succeeded);
    EXPECT_EQ(Reload(), Outcome::Failed);
    ExpectBlock("Cmd_65 Reload", "Reload failed", "Image not found?");
}

TEST_F(ReopenedImages, ReloadOutsideOfTheImageLoopReadsNoFile) {
    view.input.path = "Pre_image_loop.";
    EXPECT_EQ(Reload(), Outcome::Failed);
}

TEST_F(ReopenedImages, ReloadOnTheSampleTakesTheSample) {
    view.run.onLeftImage = true;
    view.run.mode = engine::RunMode::BatchOnSample;
    view.sample.left = test::CoordinateImage({5, 4});
    fs::remove(input);
    EXPECT_EQ(Reload(), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 4}));
}

TEST_F(ReopenedImages, ReloadInATestTakesTheSampleUnlessItIsPassedOver) {
    LeaveRun();
    view.test.exitFlag = 1;
    EXPECT_EQ(Reload(), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{8, 6}));
    view.test.exitFlag = 0;
    EXPECT_EQ(Reload(), Outcome::Succeeded);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 4}));
}

}  // namespace
}  // namespace lumo::ops::files
