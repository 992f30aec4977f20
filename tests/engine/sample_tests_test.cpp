#include "engine/sample_tests.h"

#include <gmock/gmock.h>

#include "engine/editing.h"
#include "engine/open_sample.h"
#include "engine/sample.h"
#include "imaging/codecs/codec.h"
#include "imaging/last_error.h"
#include "script/names.h"
#include "support/codec_files.h"
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
    EXPECT_EQ(ui.panelsCleared, 1);
    EXPECT_EQ(ui.rightDisplays, 2);  // after each step
    EXPECT_THAT(ui.played, ElementsAre(Sound::Asterisk));
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
    EXPECT_EQ(ui.panelsCleared, 2);  // at the beginning and now
    EXPECT_EQ(ui.redraws, 1);
    EXPECT_EQ(ui.sounds, 1);
    EXPECT_THAT(ui.selected, ElementsAre(1));  // where the walk stopped
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

TEST_F(SampleTests, AMissingSubroutineIsLoadedAndStays) {
    const test::TempFolder folder;
    view.settings.folders.subroutines = folder.Path();
    test::PutFile(folder / "neg.sbr", "SUBRT\r\nNegative - inverted rgb\r\n0\r\nEND\r\n");
    Add(names::kStartImageLoop);
    Add(names::kSubroutineExecute, "1,neg,");
    Add(names::kFlipVertical);
    Add(names::kEndImageLoop);
    const script::Script before = view.script.commands;
    const auto red = view.working.main.View().Pixel(0, 9).red;
    ASSERT_TRUE(Walk());
    EXPECT_EQ(view.script.commands.Count(), 7);
    EXPECT_EQ(ui.scriptChanges, 1);  // before the walk selects what was loaded
    EXPECT_THAT(ui.selected, ElementsAre(0, 1, 5, 6, 2, 2));
    EXPECT_EQ(view.working.main.View().Pixel(0, 0).red, 255 - red);
    EXPECT_TRUE(view.script.modified);
    RestoreUndoCopy(view);
    EXPECT_EQ(view.script.commands, before);
}

TEST_F(SampleTests, WhatWasLoadedBeforeARefusalIsShownToo) {
    const test::TempFolder folder;
    view.settings.folders.subroutines = folder.Path();
    test::PutFile(folder / "neg.sbr", "SUBRT\r\nEND\r\n");
    Add(names::kSubroutineExecute, "1,neg,");
    Add(names::kSubroutineExecute, "1,gone,");
    EXPECT_FALSE(BeginTestAll(view));
    EXPECT_THAT(ui.messages, ElementsAre("gone SUBROUTINE not present. Unable to find to load."));
    EXPECT_EQ(view.script.commands.Count(), 4);
    EXPECT_EQ(ui.scriptChanges, 1);
    EXPECT_TRUE(view.script.modified);
}

TEST_F(SampleTests, AStepThatSucceedsWithoutAPictureTellsOfIt) {
    Add(names::kStartImageLoop);
    Add(names::kNegative);  // fails, and no more
    Add(names::kLoopStart, "1,2,");
    Add(names::kLoopEnd);
    Add(names::kEndImageLoop);
    view.working.main.Reset();
    ASSERT_TRUE(Walk());
    EXPECT_THAT(ui.messages, ElementsAre("rgbBuf2=NULL 1", "rgbBuf2=NULL 1"));
}

TEST_F(SampleTests, NothingIsTestedWhileABatchRuns) {
    Add(names::kStartImageLoop);
    Add(names::kNegative);
    Add(names::kEndImageLoop);
    const imaging::Image before = test::Copy(view.working.main.View());
    view.script.selected = 1;
    view.run.batchRunning = true;
    TestOne(view);
    EXPECT_FALSE(BeginTestAll(view));
    RunOnSample(view);
    EXPECT_FALSE(view.run.onLeftImage);
    EXPECT_EQ(view.run.mode, RunMode::Idle);
    EXPECT_TRUE(test::SamePixels(view.working.main, before));
    view.run.batchRunning = false;
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

class OpenSampleTest : public SampleTests {
  protected:
    OpenSampleTest() {
        imaging::codecs::JpegWriteOptions options;
        options.markers = {{0xFE, {'h', 'i'}}};
        jpg = *imaging::codecs::EncodeJpeg(test::PhotoLikeImage({32, 16}).View(), options);
        Put("a.jpg", jpg);
    }

    void Put(std::string_view name, const imaging::codecs::Bytes& bytes) {
        test::PutFile(folder / name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    test::TempFolder folder;
    imaging::codecs::Bytes jpg;
};

TEST_F(OpenSampleTest, FillsBothFramesAndTheStores) {
    ASSERT_TRUE(OpenSample(view, folder / "a.jpg"));
    EXPECT_EQ(view.sample.path, folder / "a.jpg");
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.working.main));
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.sample.held));
    EXPECT_EQ(view.sample.leftDepthLabel, "24 bit");
    EXPECT_EQ(view.sample.rightDepthLabel, "24 bit");
    EXPECT_FALSE(view.metadata.jpgInput.empty());
    EXPECT_EQ(view.metadata.jpgInput, view.metadata.jpgOutput);
    EXPECT_THAT(ui.sizeTexts, ElementsAre("32x16"));
    EXPECT_EQ(ui.leftDisplays, 1);
    EXPECT_EQ(ui.rightDisplays, 1);
    EXPECT_GE(ui.waits, 1);
    EXPECT_EQ(ui.waiting, 0);
}

TEST_F(OpenSampleTest, TellsWhetherTheDimensionsOrThePictureCouldNotBeRead) {
    test::PutFile(folder / "words.jpg", "words");
    test::PutFile(folder / "signature.png", "\x89PNG\r\n\x1a\nbroken");
    Put("head.png", test::HeadOfPng(test::PhotoLikeImage({32, 16}).View()));
    for (const char* name : {"none.jpg", "words.jpg", "signature.png"}) {
        EXPECT_FALSE(OpenSample(view, folder / name));
        EXPECT_THAT(ui.messages.back(), StartsWith("Open image failure 1341: ")) << name;
        EXPECT_FALSE(OpenSample(view, folder / name, SampleFrom::Drop));
        EXPECT_THAT(ui.messages.back(), StartsWith("Open image failure 1341: ")) << name;
    }
    EXPECT_FALSE(OpenSample(view, folder / "head.png"));
    EXPECT_EQ(ui.messages.back(), "Open image failure 1342: " + imaging::LastError());
    EXPECT_FALSE(OpenSample(view, folder / "head.png", SampleFrom::Drop));
    EXPECT_EQ(ui.messages.back(), "Open image failure 1341: " + imaging::LastError());
    EXPECT_EQ(ui.messages.size(), 8U);
    EXPECT_EQ(ui.waiting, 0);
}

TEST_F(OpenSampleTest, AFailureLeavesTheHeldPictureAndItsMetadata) {
    ASSERT_TRUE(OpenSample(view, folder / "a.jpg"));
    const auto markers = view.metadata.jpgInput;
    view.working.main = test::FlatImage({5, 5}, {1, 2, 3});
    ASSERT_TRUE(CopyRightToLeft(view));
    EXPECT_FALSE(OpenSample(view, folder / "none.jpg"));
    EXPECT_TRUE(test::SamePixels(view.sample.left, view.sample.held));
    EXPECT_EQ(view.sample.path, folder / "a.jpg");
    EXPECT_EQ(view.metadata.jpgInput, markers);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 5}));
}

TEST_F(OpenSampleTest, AFailureKeepsALeftPictureOfWhichNoCopyIsHeld) {
    ASSERT_TRUE(OpenSample(view, folder / "a.jpg"));
    view.sample.held.Reset();  // as where its memory could not be had
    EXPECT_FALSE(OpenSample(view, folder / "none.jpg"));
    EXPECT_EQ(view.sample.left.Extent(), (imaging::Size{32, 16}));
}

TEST_F(OpenSampleTest, CopiesGoFromFrameToFrame) {
    ASSERT_TRUE(OpenSample(view, folder / "a.jpg"));
    view.working.main = test::FlatImage({5, 5}, {1, 2, 3});
    view.sample.rightDepthLabel = "8 bit";
    const int left = ui.leftDisplays, redraws = ui.redraws;
    EXPECT_TRUE(CopyRightToLeft(view));
    EXPECT_EQ(view.sample.left.Extent(), (imaging::Size{5, 5}));
    EXPECT_EQ(view.sample.leftDepthLabel, "8 bit");
    EXPECT_EQ(ui.leftDisplays, left + 1);
    EXPECT_EQ(ui.redraws, redraws + 1);
    EXPECT_TRUE(ReloadLeft(view));
    EXPECT_EQ(view.sample.left.Extent(), (imaging::Size{32, 16}));
    EXPECT_EQ(ui.leftDisplays, left + 2);
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{5, 5}));
    EXPECT_TRUE(CopyLeftToMain(view, Force::No));
    EXPECT_EQ(view.working.main.Extent(), (imaging::Size{32, 16}));
}

TEST_F(SampleTests, NothingToCopyIsNoCopy) {
    view.working.main.Reset();
    EXPECT_FALSE(CopyRightToLeft(view));
    EXPECT_FALSE(ReloadLeft(view));
    EXPECT_FALSE(CopyLeftToMain(view, Force::No));
}

}  // namespace
}  // namespace lumo::engine
