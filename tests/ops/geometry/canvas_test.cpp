// "Canvas size" and "New (canvas)".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/resample.h"
#include "ops/geometry/canvas_size.h"
#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using engine::Outcome;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

// The picture at (x, y) of a canvas.
Image Placed(const Image& picture, Size canvas, int x, int y, Rgb colour) {
    Image image = test::FlatImage(canvas, colour);
    for (int row = 0; row < picture.Height(); ++row)
        for (int column = 0; column < picture.Width(); ++column)
            image.View().SetPixel(x + column, y + row, picture.View().Pixel(column, row));
    return image;
}

TEST(ShrunkToFit, KeepsTheProportionsAndTruncates) {
    EXPECT_EQ(ShrunkToFit({100, 600}, {640, 480}), std::pair(100L, 75L));
    EXPECT_EQ(ShrunkToFit({100, 50}, {640, 480}), std::pair(66L, 50L));  // too tall at full width
    EXPECT_EQ(ShrunkToFit({700, 100}, {640, 480}), std::pair(133L, 100L));
    EXPECT_EQ(ShrunkToFit({100, 100}, {1000, 3}), std::pair(100L, 0L));
}

TEST(ShrunkToFit, ExtremeCanvasesStayDefined) {
    EXPECT_EQ(ShrunkToFit({-2147483647 - 1, 10}, {1, 100000}),
              std::pair(-2147483648L, -214748364800000L));
}

TEST(CanvasSizeCommand, CentresThePicture) {
    test::CommandRunner runner(test::RandomImage({640, 480}, 1));
    ASSERT_TRUE(runner.Run(kCanvasSizeCommand, "7,800,600,0,1,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(
        runner.Main(), Placed(test::RandomImage({640, 480}, 1), {800, 600}, 80, 60, {1, 2, 3})));
}

TEST(CanvasSizeCommand, TheOddPixelIsLeftAtTheRightAndBottom) {
    test::CommandRunner runner(test::RandomImage({10, 10}, 1));
    ASSERT_TRUE(runner.Run(kCanvasSizeCommand, "7,13,15,0,7,1,2,3,"));  // any number but 0 centres
    EXPECT_TRUE(test::SamePixels(
        runner.Main(), Placed(test::RandomImage({10, 10}, 1), {13, 15}, 1, 2, {1, 2, 3})));
}

TEST(CanvasSizeCommand, NotCentredItLiesAtTheUpperLeft) {
    test::CommandRunner runner(test::RandomImage({10, 10}, 1));
    ASSERT_TRUE(runner.Run(kCanvasSizeCommand, "7,13,15,0,0,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(
        runner.Main(), Placed(test::RandomImage({10, 10}, 1), {13, 15}, 0, 0, {1, 2, 3})));
}

TEST(CanvasSizeCommand, ACanvasThatIsTooSmallIsNotApplied) {
    for (const char* params : {"7,100,600,0,1,0,0,0,", "7,800,100,0,1,0,0,0,",
                               "7,639,480,0,1,0,0,0,", "7,-5,-5,0,1,0,0,0,"}) {
        test::CommandRunner runner(test::RandomImage({640, 480}, 1));
        runner.view.working.imageBits = 8;
        EXPECT_EQ(runner.Execute(kCanvasSizeCommand, params), Outcome::Succeeded);
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({640, 480}, 1)));
        EXPECT_EQ(runner.view.working.imageBits, 8);
        EXPECT_TRUE(runner.ui.sizeTexts.empty());
    }
}

TEST(CanvasSizeCommand, ShrinksByAveragingWhereAskedTo) {
    test::CommandRunner runner(test::PhotoLikeImage({640, 480}, 1));
    ASSERT_TRUE(runner.Run(kCanvasSizeCommand, "7,100,600,1,1,1,2,3,"));
    const Image source = test::PhotoLikeImage({640, 480}, 1);
    Image shrunk = test::FlatImage({100, 75}, {});
    ASSERT_TRUE(imaging::ResizeImage(source.View(), shrunk.View(), imaging::ResampleFilter::Box));
    EXPECT_TRUE(test::SamePixels(runner.Main(), Placed(shrunk, {100, 600}, 0, 262, {1, 2, 3})));
}

TEST(CanvasSizeCommand, ShrinkIsANumberWhichCountsUnlessItIsNought) {
    test::CommandRunner runner(test::PhotoLikeImage({640, 480}, 1));
    ASSERT_TRUE(runner.Run(kCanvasSizeCommand, "7,64,48,-3,1,1,2,3,"));
    EXPECT_EQ(runner.Main().Extent(), (Size{64, 48}));
}

TEST(CanvasSizeCommand, APictureThatWouldShrinkToNothingFails) {
    test::CommandRunner runner(test::RandomImage({1000, 3}, 1));
    EXPECT_EQ(runner.Execute(kCanvasSizeCommand, "7,100,100,1,1,0,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_13 Canvas: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({1000, 3}, 1)));
}

TEST(CanvasSizeCommand, NegativeCanvasesWithShrinkFail) {
    test::CommandRunner runner(test::RandomImage({10, 10}, 1));
    EXPECT_EQ(runner.Execute(kCanvasSizeCommand, "7,-100,-100,1,1,0,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_13 Canvas: memory failure")));
}

TEST(CanvasSizeCommand, WithoutMemoryForTheCanvasThePictureStaysShrunk) {
    test::CommandRunner runner(test::FlatImage({4000, 10}, {5, 6, 7}));
    // Room for the 2000 x 5 picture (and what the resampling needs), not for a canvas of 2000 x
    // 2000.
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 1000000);
    EXPECT_EQ(runner.Execute(kCanvasSizeCommand, "7,2000,2000,1,1,0,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Canvas: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({2000, 5}, {5, 6, 7})));
    EXPECT_EQ(runner.ui.sizeTexts.back(), "2000x5");
}

TEST(CanvasSizeCommand, TheLargestCanvasStaysWithinTheBudget) {
    test::CommandRunner runner(test::RandomImage({10, 10}, 1));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (std::size_t{1} << 30));
    EXPECT_EQ(runner.Execute(kCanvasSizeCommand, "7,32767,32767,0,1,0,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages,
                ElementsAre("Canvas: memory failure  IS_error not enough memory: 3221028867 bytes "
                            "wanted"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({10, 10}, 1)));
}

TEST(CanvasSizeCommand, PanelTellsSizeFitAndPlace) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kCanvasSizeCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("7,10,20,0,1,1,2,3,"),
              "Width = 10\nHeight = 20\nNo resize image\nImage is centered\n"
              "Color(RGB) = 1: 2: 3\n");
    EXPECT_EQ(panel("7,10,20,1,0,1,2,3,"),
              "Width = 10\nHeight = 20\nResize image to fit\nImage in upper left\n"
              "Color(RGB) = 1: 2: 3\n");
}

TEST(CanvasSizeCommand, PreviewIsScaledAndNeverHuge) {
    const Image before = test::FlatImage({40, 20}, {100, 100, 100});
    const auto sizeShown = [&](std::string_view params) {
        return kCanvasSizeCommand.preview(before.View(), {400, 200}, script::ParseParams(params))
            .Extent();
    };
    EXPECT_EQ(sizeShown("7,500,300,0,1,0,0,0,"), (Size{50, 30}));
    EXPECT_EQ(sizeShown("7,100,300,0,1,0,0,0,"), (Size{40, 20}));  // not applied
    EXPECT_EQ(sizeShown("7,100,300,1,1,0,0,0,"), (Size{10, 30}));
    EXPECT_EQ(sizeShown("7,32767,32767,0,1,0,0,0,"), (Size{40, 40}));
}

TEST(NewCanvasCommand, ReplacesThePicture) {
    test::CommandRunner runner(test::RandomImage({10, 10}, 1));
    EXPECT_EQ(runner.Execute(kNewCanvasCommand, "6,640,480,0,1,2,3,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({640, 480}, {1, 2, 3})));
}

TEST(NewCanvasCommand, NeedsNoPicture) {
    test::CommandRunner runner{Image()};
    EXPECT_EQ(runner.Execute(kNewCanvasCommand, "6,20,30,2,1,2,3,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({20, 30}, {1, 2, 3})));
    EXPECT_EQ(runner.ui.sizeTexts.back(), "20x30");
}

TEST(NewCanvasCommand, TakesTheSizeOfThePicture) {
    test::CommandRunner runner(test::RandomImage({10, 7}, 1));
    EXPECT_EQ(runner.Execute(kNewCanvasCommand, "6,640,480,1,1,2,3,"), Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({10, 7}, {1, 2, 3})));
}

TEST(NewCanvasCommand, SizesThatNoPictureHasAreMemoryFailures) {
    for (const char* params : {"6,640,480,1,0,0,0,", "6,0,480,0,0,0,0,", "6,-640,-480,0,0,0,0,",
                               "6,32767,32767,0,0,0,0,", "6,2147483647,2147483647,0,0,0,0,"}) {
        test::CommandRunner runner{Image()};
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (std::size_t{1} << 30));
        EXPECT_EQ(runner.Execute(kNewCanvasCommand, params), Outcome::Failed);
        EXPECT_THAT(runner.messages,
                    ElementsAre(StartsWith("Cmd_61 NewCanvas: memory failure  IS_error ")));
        EXPECT_TRUE(runner.Main().IsEmpty());
    }
}

TEST(NewCanvasCommand, PanelTellsTheSizeOrWhereItComesFrom) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kNewCanvasCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("6,640,480,0,1,2,3,"),
              "Fixed canvas size\nWidth = 640\nHeight = 480\nColor(RGB) = 1: 2: 3\n");
    EXPECT_EQ(panel("6,640,480,1,1,2,3,"),
              "Set canvas to current\nimage size\nColor(RGB) = 1: 2: 3\n");
}

}  // namespace
}  // namespace lumo::ops::geometry
