#include "ops/overlays/drop_shadow.h"

#include <gmock/gmock.h>

#include "imaging/blur_gaussian.h"
#include "imaging/compose.h"
#include "imaging/transparent_rect.h"
#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Rect;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

TEST(LayOutShadow, TheFourCornersWithTheBlurMargin) {
    const Size image{300, 200};
    const auto expect = [&](int corner, bool blurred, Size canvas, Rect shadow, int x, int y) {
        const auto layout = LayOutShadow(image, 31, blurred, corner);
        ASSERT_TRUE(layout);
        EXPECT_EQ(layout->canvas, canvas) << corner;
        EXPECT_EQ(layout->shadow, shadow) << corner;
        EXPECT_EQ(layout->imageX, x) << corner;
        EXPECT_EQ(layout->imageY, y) << corner;
    };
    expect(kBottomRight, true, {346, 246}, {31, 31, 331, 231}, 0, 0);
    expect(kBottomLeft, true, {346, 246}, {15, 31, 315, 231}, 46, 0);
    expect(kTopLeft, true, {346, 246}, {15, 15, 315, 215}, 46, 46);
    expect(kTopRight, true, {346, 246}, {31, 15, 331, 215}, 0, 46);
    expect(kBottomRight, false, {331, 231}, {31, 31, 331, 231}, 0, 0);
    expect(kBottomLeft, false, {331, 231}, {0, 31, 300, 231}, 31, 0);
    expect(kTopLeft, false, {331, 231}, {0, 0, 300, 200}, 31, 31);
    expect(kTopRight, false, {331, 231}, {31, 0, 331, 200}, 0, 31);
}

TEST(LayOutShadow, RefusesSizesOfNoPicture) {
    EXPECT_FALSE(LayOutShadow({10, 10}, -1, true, 0));
    EXPECT_FALSE(LayOutShadow({10, 10}, 2147483647, true, 0));
    EXPECT_FALSE(LayOutShadow({10, 10}, 2147483640, false, 0));
}

TEST(ShadowDeviation, IsNearlyHalfOfTheSizeAtFullBlur) {
    EXPECT_DOUBLE_EQ(ShadowDeviation(100, 100), 48.0);
    EXPECT_EQ(ShadowDeviation(10, 50), (10 * 0.24 + 10 * 0.24) * 50 / 100.0);
}

TEST(FillTransparentRectOnImage, RoundsAndIsCutAtTheEdges) {
    Image image = test::FlatImage({4, 3}, {100, 101, 255});
    ASSERT_TRUE(imaging::FillTransparentRectOnImage(image.View(), {-5, 1, 2, 90}, {0, 0, 0}, 0.5));
    EXPECT_EQ(image.View().Pixel(0, 0), (Rgb{100, 101, 255}));
    EXPECT_EQ(image.View().Pixel(1, 1), (Rgb{50, 51, 128}));
    EXPECT_EQ(image.View().Pixel(1, 2), (Rgb{50, 51, 128}));
    EXPECT_EQ(image.View().Pixel(2, 1), (Rgb{100, 101, 255}));
    ASSERT_TRUE(imaging::FillTransparentRectOnImage(image.View(), {0, 0, 4, 3}, {9, 8, 7}, 1.0));
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({4, 3}, {9, 8, 7})));
    ASSERT_TRUE(imaging::FillTransparentRectOnImage(image.View(), {0, 0, 4, 3}, {0, 0, 0}, 0.0));
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({4, 3}, {9, 8, 7})));
    EXPECT_FALSE(imaging::FillTransparentRectOnImage({}, {0, 0, 4, 3}, {0, 0, 0}, 0.0));
}

// Step by step with the routines of the imaging folder.
Image Expected(const Image& image, const ShadowLayout& layout, double opacity, double deviation) {
    Image canvas = test::FlatImage(layout.canvas, {192, 180, 170});
    EXPECT_TRUE(imaging::FillTransparentRectOnImage(canvas.View(), layout.shadow, {}, opacity));
    if (deviation > 0) {
        Image blurred = test::FlatImage(layout.canvas, {});
        EXPECT_TRUE(imaging::BlurGaussian(canvas.View(), blurred.View(), deviation));
        canvas = std::move(blurred);
    }
    EXPECT_TRUE(imaging::OverlayImage(canvas.View(), image.View(), layout.imageX, layout.imageY));
    return canvas;
}

class DropShadow : public testing::Test {
  protected:
    const Image before = test::RandomImage({40, 30}, 1);
    test::CommandRunner runner{test::RandomImage({40, 30}, 1)};
};

TEST_F(DropShadow, EveryCornerBlurredAndHard) {
    for (const int corner : {0, 1, 2, 3})
        for (const int blur : {0, 50, 100}) {
            runner.view.working.main = test::Copy(before.View());
            runner.view.working.imageBits = 8;
            ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,192,180,170,11," + std::to_string(blur) +
                                                           "," + std::to_string(corner) +
                                                           ",1,60,"));
            const auto layout = LayOutShadow({40, 30}, 11, blur != 0, corner);
            EXPECT_TRUE(test::SamePixels(runner.Main(),
                                         Expected(before, *layout, 0.6, ShadowDeviation(11, blur))))
                << corner << " " << blur;
            EXPECT_EQ(runner.view.working.imageBits, 24);
        }
}

TEST_F(DropShadow, PercentOfTheWidth) {
    runner.view.working.main = test::FlatImage({300, 10}, {1, 2, 3});
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,192,192,192,10,50,0,0,50,"));
    EXPECT_EQ(runner.Main().Extent(), (Size{345, 55}));
    EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("345x55"));
}

TEST_F(DropShadow, SizeZeroGivesTheInput) {
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,192,192,192,0,50,0,1,50,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_F(DropShadow, OpacityZeroIsThePictureOnTheBackground) {
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,10,20,30,6,50,2,1,0,"));
    Image expected = test::FlatImage({49, 39}, {10, 20, 30});
    ASSERT_TRUE(imaging::OverlayImage(expected.View(), before.View(), 9, 9));
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST_F(DropShadow, PercentagesAreLimited) {
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,192,180,170,10,250,0,1,900,"));
    EXPECT_TRUE(test::SamePixels(
        runner.Main(),
        Expected(before, *LayOutShadow({40, 30}, 10, true, 0), 1.0, ShadowDeviation(10, 100))));
    runner.view.working.main = test::Copy(before.View());
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,192,180,170,10,-5,0,1,-9,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(),
                                 Expected(before, *LayOutShadow({40, 30}, 10, false, 0), 0, 0)));
}

TEST_F(DropShadow, AnotherPositionLeavesTheBackgroundAlone) {
    ASSERT_TRUE(runner.Run(kDropShadowCommand, "8,10,20,30,10,50,4,1,50,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({55, 45}, {10, 20, 30})));
}

TEST_F(DropShadow, MemoryFailuresLeaveThePictureAlone) {
    EXPECT_FALSE(runner.Run(kDropShadowCommand, "8,1,2,3,2147483647,50,0,1,50,"));
    {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 1000);
        EXPECT_FALSE(runner.Run(kDropShadowCommand, "8,1,2,3,100,50,0,1,50,"));
    }
    {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 190 * 180 * 3 + 30000);
        EXPECT_FALSE(runner.Run(kDropShadowCommand, "8,1,2,3,100,50,0,1,50,"));
    }
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_29 Drop Shadow: memory failure  IS_error "),
                            StartsWith("Cmd_29 Drop Shadow: memory failure  IS_error "),
                            StartsWith("Cmd_29 Drop: memory failure  IS_error ")));
    EXPECT_FALSE(runner.Run(kDropShadowCommand, "8,1,2,3,-5,50,0,1,50,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
}

TEST_F(DropShadow, PreviewIsInProportion) {
    const Image after = kDropShadowCommand.preview(
        before.View(), {400, 300}, script::ParseParams("8,192,180,170,110,50,3,1,60,"));
    EXPECT_TRUE(test::SamePixels(after, Expected(before, *LayOutShadow({40, 30}, 11, true, 3), 0.6,
                                                 ShadowDeviation(11, 50))));
}

TEST_F(DropShadow, PanelTellsCornerAndSizing) {
    const auto panel = [](const char* params) {
        return script::PanelText(kDropShadowCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("8,1,2,3,10,50,2,0,40,"),
              "Background color: 1: 2: 3\nSizing shadow: % of width\nSize of shadow: 10\n"
              "Blur shadow %: 50\nPosition: top left\nShadow opacity %: 40\n");
    EXPECT_EQ(panel("8,1,2,3,10,0,0,1,40,"),
              "Background color: 1: 2: 3\nSizing shadow: absolute pixels\nSize of shadow: 10\n"
              "No blur of shadow.\nPosition: bottom right\nShadow opacity %: 40\n");
}

}  // namespace
}  // namespace lumo::ops::overlays
