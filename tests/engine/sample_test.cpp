#include "engine/sample.h"

#include <gmock/gmock.h>

#include "support/recording_ui.h"
#include "support/test_images.h"

namespace lumo::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CopyLeft : public testing::Test {
  protected:
    CopyLeft() {
        view.sample.left = test::CoordinateImage({20, 10});
        view.working.main = test::CoordinateImage({7, 5});
    }
    bool MainIs(imaging::Size size) {
        return static_cast<bool>(test::SamePixels(view.working.main, test::CoordinateImage(size)));
    }

    test::RecordingInterface ui;
    CLumoscriptView view{ui};
};

TEST_F(CopyLeft, TakesPixelsLabelAndSizeAndShowsThem) {
    view.sample.leftDepthLabel = "8 bit";
    EXPECT_TRUE(CopyLeftToMain(view, Force::No));
    EXPECT_TRUE(MainIs({20, 10}));
    EXPECT_EQ(view.sample.rightDepthLabel, "8 bit");
    EXPECT_THAT(ui.sizeTexts, ElementsAre("20x10"));
    EXPECT_EQ(ui.rightDisplays, 1);
    EXPECT_EQ(ui.redraws, 1);
    EXPECT_TRUE(test::SamePixels(view.sample.left, test::CoordinateImage({20, 10})));
}

TEST_F(CopyLeft, IsACopyOfItsOwn) {
    ASSERT_TRUE(CopyLeftToMain(view, Force::No));
    view.working.main.View().SetPixel(0, 0, {1, 2, 3});
    EXPECT_TRUE(test::SamePixels(view.sample.left, test::CoordinateImage({20, 10})));
}

TEST_F(CopyLeft, IsFullColourAgain) {
    view.working.imageBits = 1;
    view.working.imageBitsForced = 1;
    view.working.grey = true;
    ASSERT_TRUE(CopyLeftToMain(view, Force::No));
    EXPECT_EQ(view.working.imageBits, 24);
    EXPECT_EQ(view.working.imageBitsForced, 0);
    EXPECT_FALSE(view.working.grey);
}

TEST_F(CopyLeft, ChangesNothingWithoutASample) {
    view.sample.left.Reset();
    EXPECT_FALSE(CopyLeftToMain(view, Force::Yes));
    EXPECT_TRUE(MainIs({7, 5}));
    EXPECT_THAT(ui.sizeTexts, IsEmpty());
    EXPECT_EQ(ui.rightDisplays + ui.redraws, 0);
}

TEST_F(CopyLeft, ChangesNothingWhileABatchRunsUnlessForced) {
    view.run.batchRunning = true;
    EXPECT_FALSE(CopyLeftToMain(view, Force::No));
    EXPECT_TRUE(MainIs({7, 5}));
    EXPECT_TRUE(CopyLeftToMain(view, Force::Yes));
    EXPECT_TRUE(MainIs({20, 10}));
}

TEST_F(CopyLeft, FitsWhereThePictureOfBeforeDid) {
    view.working.main = test::CoordinateImage({20, 10});
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse());
    EXPECT_TRUE(CopyLeftToMain(view, Force::No));
    EXPECT_TRUE(MainIs({20, 10}));
}

TEST_F(CopyLeft, WithoutMemoryThereIsNoWorkingImage) {
    const test::ScopedMemoryBudget budget(1);
    EXPECT_FALSE(CopyLeftToMain(view, Force::No));
    EXPECT_TRUE(view.working.main.IsEmpty());
    EXPECT_FALSE(view.sample.left.IsEmpty());
}

}  // namespace
}  // namespace lumo::engine
