#include "engine/sample_tests.h"

#include <gmock/gmock.h>

#include "engine/open_sample.h"
#include "engine/sample.h"
#include "imaging/codecs/codec.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using testing::ElementsAre, testing::StartsWith;

class SampleTests : public testing::Test {
  protected:
    SampleTests() : view(ui) { view.working.main = test::RandomImage({20, 10}, 1); }

    void Add(std::string_view name, std::string_view params = "0") {
        view.script.commands.Add(name, params);
    }
    /// The walk to its end; false if it has none.
    bool Walk() {
        if (!BeginTestAll(view)) return false;
        for (int i = 0; i < 1000; ++i)
            if (!StepTestAll(view)) return true;
        return false;
    }

    test::RecordingInterface ui;
    CLumoscriptView view;
};

TEST_F(SampleTests, AWalkVisitsTheLoopAlone) {
    Add(names::kFlipVertical);
    Add(names::kStartImageLoop);
    Add(names::kFlipHorizontal);
    Add(names::kFlipVertical);
    Add(names::kEndImageLoop);
    Add(names::kFlipVertical);
    ASSERT_TRUE(Walk());
    EXPECT_THAT(ui.selected, ElementsAre(2, 3, 3));
    EXPECT_THAT(ui.statuses, ElementsAre("Press A key to abort"));
    EXPECT_EQ(ui.sounds, 1);
    EXPECT_FALSE(IsTestAllActive(view));
}

TEST_F(SampleTests, WithoutMarkersTheWholeSubroutineIsWalked) {
    Add(names::kFlipHorizontal);
    Add(names::kFlipVertical);
    ASSERT_TRUE(Walk());
    EXPECT_THAT(ui.selected, ElementsAre(0, 1, 1));
}

TEST_F(SampleTests, ACalledSubroutineIsFollowedAndAMetOneIsSteppedOver) {
    Add(names::kStartImageLoop);
    Add(names::kSubroutineExecute, "1,sub,");
    Add(names::kFlipHorizontal);
    Add(names::kSubroutineStart, "1,sub,");
    Add(names::kNegative);
    Add(names::kSubroutineEnd);
    Add(names::kEndImageLoop);
    const imaging::Image before = test::Copy(view.working.main.View());
    ASSERT_TRUE(Walk());
    // The call, its body to the end, back to where the walk was, and over the body once more.
    EXPECT_THAT(ui.selected, ElementsAre(1, 4, 5, 2, 3, 4, 5, 5));
    EXPECT_EQ(view.working.main.View().Pixel(0, 0).red, 255 - before.View().Pixel(19, 0).red);
}

TEST_F(SampleTests, ABodyIsPassedOnceWhateverItsLoopSays) {
    Add(names::kStartImageLoop);
    Add(names::kLoopStart, "1,5,");
    Add(names::kNegative);
    Add(names::kLoopEnd);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(Walk());
    EXPECT_THAT(ui.selected, ElementsAre(1, 2, 3, 3));
}

TEST_F(SampleTests, AbortEndsTheWalkBetweenSteps) {
    Add(names::kStartImageLoop);
    Add(names::kNegative);
    Add(names::kNegative);
    Add(names::kEndImageLoop);
    ASSERT_TRUE(BeginTestAll(view));
    EXPECT_TRUE(StepTestAll(view));
    AbortTestAll(view);
    EXPECT_FALSE(IsTestAllActive(view));
    EXPECT_EQ(ui.sounds, 1);
    AbortTestAll(view);
    EXPECT_EQ(ui.sounds, 1);
}

TEST_F(SampleTests, AnOpenBlockIsRefusedBeforeTheFirstStep) {
    Add(names::kStartImageLoop);
    Add(names::kIfEnd);
    Add(names::kEndImageLoop);
    EXPECT_FALSE(BeginTestAll(view));
    EXPECT_THAT(ui.messages, ElementsAre(StartsWith("IF_END cmd without IF_START cmd. ")));
    EXPECT_EQ(view.run.mode, RunMode::Idle);
}

TEST_F(SampleTests, CountersAreZeroedByAWalkAndNotByOneCommand) {
    Add(names::kStartImageLoop);
    Add(names::kEndImageLoop);
    view.counters[3] = 7;
    TestOne(view);
    EXPECT_EQ(view.counters[3], 7);
    ASSERT_TRUE(BeginTestAll(view));
    EXPECT_EQ(view.counters[3], 0);
}

TEST_F(SampleTests, OneCommandSelectsTheNextAndBehindTheLastTheSecond) {
    Add(names::kStartImageLoop);
    Add(names::kNegative);
    Add(names::kEndImageLoop);
    view.script.selected = 1;
    TestOne(view);
    EXPECT_EQ(view.script.selected, 2);
    TestOne(view);
    EXPECT_EQ(view.script.selected, 1);
    view.working.main.Reset();
    TestOne(view);
    EXPECT_THAT(ui.messages, ElementsAre("You must have an image...?"));
    EXPECT_EQ(view.script.selected, 1);
}

TEST_F(SampleTests, OpeningFillsBothFramesAndTheStores) {
    const test::TempFolder folder;
    imaging::codecs::JpegWriteOptions options;
    options.markers = {{0xFE, {'h', 'i'}}};
    const imaging::Image picture = test::PhotoLikeImage({32, 16});
    const auto bytes = imaging::codecs::EncodeJpeg(picture.View(), options);
    ASSERT_TRUE(bytes);
    test::PutFile(folder / "a.jpg", {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    ASSERT_TRUE(OpenSample(view, folder / "a.jpg"));
    EXPECT_EQ(view.sample.path, folder / "a.jpg");
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.working.main));
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.sample.held));
    EXPECT_EQ(view.sample.leftDepthLabel, view.sample.rightDepthLabel);
    EXPECT_FALSE(view.metadata.jpgInput.empty());
    EXPECT_EQ(view.metadata.jpgInput, view.metadata.jpgOutput);
    EXPECT_THAT(ui.sizeTexts, ElementsAre("32x16"));

    // What cannot be opened leaves the held picture on the left and the right one as it was.
    test::PutFile(folder / "bad.jpg", "words");
    view.working.main = test::FlatImage({5, 5}, {1, 2, 3});
    EXPECT_FALSE(OpenSample(view, folder / "bad.jpg"));
    EXPECT_FALSE(OpenSample(view, folder / "none.jpg"));
    EXPECT_THAT(ui.messages, ElementsAre(StartsWith("Open image failure 1341: "),
                                         StartsWith("Open image failure 1341: ")));
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.sample.held));
    EXPECT_EQ(view.sample.path, folder / "a.jpg");
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 5}));

    EXPECT_TRUE(CopyRightToLeft(view));
    EXPECT_EQ(view.sample.left.Extent(), (imaging::Size{5, 5}));
    EXPECT_TRUE(ReloadLeft(view));
    EXPECT_EQ(view.sample.left.Extent(), (imaging::Size{32, 16}));
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 5}));
}

TEST_F(SampleTests, NothingToCopyIsNoCopy) {
    view.working.main.Reset();
    EXPECT_FALSE(CopyRightToLeft(view));
    EXPECT_FALSE(ReloadLeft(view));
    EXPECT_FALSE(CopyLeftToMain(view, Force::No));
}

}  // namespace
}  // namespace lumo::engine
