// Black and white, colour counting, Median cut.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "imaging/measures.h"
#include "imaging/tone.h"
#include "ops/colour/bw_dither.h"
#include "ops/colour/bw_threshold.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/count_colours.h"
#include "reference/colour_reference.h"
#include "support/command_runner.h"
#include "support/each_pixel.h"

namespace lumo::ops::colour {
namespace {

namespace reference = test::reference;
using imaging::Image, imaging::ImageView, imaging::Rgb, imaging::Size;
using testing::ElementsAre, testing::StartsWith;

constexpr Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255};

Image GreyImage(Size size, std::uint8_t level) {
    return test::FlatImage(size, {level, level, level});
}

Rgb After(const engine::Command& command, std::string_view params, Rgb pixel) {
    test::CommandRunner runner(test::FlatImage({3, 2}, pixel));
    EXPECT_TRUE(runner.Run(command, params));
    return runner.Main().View().Pixel(2, 1);
}

TEST(BwThreshold, TheEndsOfTheAbsoluteRange) {
    EXPECT_EQ(After(kConvertBwThresholdCommand, "3,0,0,0,", kBlack), kWhite);
    EXPECT_EQ(After(kConvertBwThresholdCommand, "3,255,0,0,", {254, 254, 254}), kBlack);
    EXPECT_EQ(After(kConvertBwThresholdCommand, "3,255,0,0,", kWhite), kWhite);
}

TEST(BwThreshold, RelativeToTheMean) {
    EXPECT_EQ(RelativeThreshold(100, 0), 100);
    EXPECT_EQ(RelativeThreshold(100, 100), 255);
    EXPECT_EQ(RelativeThreshold(100, -50), 50);
    EXPECT_EQ(RelativeThreshold(100, -100), 0);
    EXPECT_EQ(RelativeThreshold(101, -50), 51);  // the division truncates toward zero
    EXPECT_EQ(RelativeThreshold(100, 33), 151);
    for (const int absurd : {INT_MIN, INT_MAX}) (void)RelativeThreshold(255, absurd);
}

TEST(BwThreshold, AtTheMeanAFlatPictureIsWhite) {
    EXPECT_EQ(After(kConvertBwThresholdCommand, "3,0,0,1,", {100, 100, 100}), kWhite);
    EXPECT_EQ(After(kConvertBwThresholdCommand, "3,0,1,1,", {100, 100, 100}), kBlack);
}

TEST(BwThreshold, AnyModeButZeroIsRelative) {
    for (const char* params : {"3,0,1,1,", "3,0,1,7,", "3,0,1,,", "3,0,1,x,"})
        EXPECT_EQ(After(kConvertBwThresholdCommand, params, {100, 100, 100}), kBlack) << params;
}

TEST(BwThreshold, AgreesWithThePlainFormula) {
    for (const int threshold : {INT_MIN, -1, 0, 1, 77, 128, 255, 256, INT_MAX})
        test::CheckOnOddSizes([&](ImageView v) { ThresholdImage(v, threshold); },
                              [&](Rgb p) { return reference::Thresholded(p, threshold); });
    for (const int threshold : {1, 120, 255})
        test::CheckOnAllColours([&](ImageView v) { ThresholdImage(v, threshold); },
                                [&](Rgb p) { return reference::Thresholded(p, threshold); });
}

int PlainMean(imaging::ConstImageView image) {
    double sum = 0;
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x) sum += reference::MeanLuma(image.Pixel(x, y));
    return static_cast<int>(sum / (image.Width() * image.Height()));
}

TEST(ThresholdMean, HasItsOwnGreenWeight) {
    EXPECT_EQ(ThresholdMean(test::FlatImage({2, 2}, {0, 255, 0}).View()), 149);  // ComputeLuma: 150
    EXPECT_EQ(ThresholdMean(GreyImage({2, 2}, 100).View()), 100);
    EXPECT_EQ(ThresholdMean({}), 0);
}

TEST(ThresholdMean, AgreesWithThePlainSum) {
    test::ForEachSimdTarget([](const std::string& target) {
        for (const Size size : test::kOddSizes) {
            const Image image = test::RandomImage(size, 3);
            ASSERT_EQ(ThresholdMean(image.View()), PlainMean(image.View())) << target;
        }
        // One row of each colour pair, so that every rounding of the formula is met somewhere.
        const Image all = test::AllColoursImage();
        std::uint64_t wrong = 0;
        for (int y = 0; y < all.Height(); y += 5) {
            const imaging::ConstImageView row(all.View().Row(y), {all.Width(), 1});
            wrong += ThresholdMean(row) != PlainMean(row);
        }
        EXPECT_EQ(wrong, 0U) << target;
    });
}

TEST(Dither, OfAnEvenGreyTurnsHalfOfItWhite) {
    test::CommandRunner runner(GreyImage({64, 64}, 128));
    ASSERT_TRUE(runner.Run(kConvertBwDitherCommand, "1,0,"));
    int white = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) white += runner.Main().View().Pixel(x, y) == kWhite;
    EXPECT_NEAR(white, 64 * 64 / 2, 64);
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), kBlack);
    // 128 + 7 / 16 * 128 = 184 is below 255, and 128 + 7 / 16 * 184 = 208.5 too; then 219.2 ...
    EXPECT_EQ(runner.Main().View().Pixel(1, 0), kBlack);
    EXPECT_EQ(runner.Main().View().Pixel(2, 0), kBlack);
}

TEST(Dither, WhiteStaysWhiteAndBlackBlack) {
    for (const Rgb colour : {kBlack, kWhite}) {
        Image image = test::FlatImage({33, 9}, colour);
        ASSERT_TRUE(DitherImage(image.View()));
        EXPECT_TRUE(test::SamePixels(image, test::FlatImage({33, 9}, colour)));
    }
}

TEST(Dither, AgreesWithThePlainLoop) {
    test::ForEachSimdTarget([](const std::string& target) {
        std::uint32_t seed = 1;
        for (int width = 1; width <= 40; width += width < 8 ? 1 : 5)
            for (int height = 1; height <= 36; height += height < 20 ? 1 : 5) {
                const Image before = test::RandomImage({width, height}, seed++);
                Image after = test::Copy(before.View());
                ASSERT_TRUE(DitherImage(after.View()));
                ASSERT_TRUE(test::SamePixels(after, reference::Dithered(before.View())))
                    << target << " " << width << "x" << height;
            }
        for (const Size size : {Size{1031, 67}, Size{67, 259}, Size{3, 1000}, Size{2049, 17}}) {
            const Image before = test::PhotoLikeImage(size);
            Image after = test::Copy(before.View());
            ASSERT_TRUE(DitherImage(after.View()));
            ASSERT_TRUE(test::SamePixels(after, reference::Dithered(before.View()))) << target;
        }
    });
}

TEST(Dither, AgreesWithThePlainLoopOnEveryColour) {
    const Image before = test::AllColoursImage();
    const Image expected = reference::Dithered(before.View());
    test::ForEachSimdTarget([&](const std::string& target) {
        Image after = test::Copy(before.View());
        ASSERT_TRUE(DitherImage(after.View()));
        EXPECT_TRUE(test::SamePixels(after, expected)) << target;
    });
}

TEST(Dither, RaisesTheContrastFirst) {
    const Image before = test::PhotoLikeImage({41, 33});
    Image expected = test::Copy(before.View());
    ASSERT_TRUE(imaging::AdjustBrightnessContrast(expected.View(), 0, 0.6));
    expected = reference::Dithered(expected.View());
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kConvertBwDitherCommand, "1,60,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST(Dither, MemoryFailureIsReportedAndLeavesThePictureAlone) {
    test::CommandRunner runner(test::PhotoLikeImage({300, 5}));
    {
        const test::ScopedMemoryBudget budget(100);
        EXPECT_FALSE(runner.Run(kConvertBwDitherCommand, "1,60,"));  // its contrast stays, too
    }
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_16 Dither: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::PhotoLikeImage({300, 5})));
    EXPECT_FALSE(runner.view.working.grey);
}

TEST(CountColours, MemoryFailureIsReportedAndStoresNothing) {
    test::CommandRunner runner(test::PhotoLikeImage({300, 5}));
    runner.view.counters.fill(-7);
    {
        const test::ScopedMemoryBudget budget(100);
        EXPECT_FALSE(runner.Run(kCountColoursCommand, "2,0,1,"));
    }
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_22 Count colors: memory failure  IS_error ")));
    EXPECT_EQ(runner.view.counters[0], -7);
    EXPECT_EQ(runner.view.counters[1], -7);
}

/// Counters A and B after the command.
std::pair<int, int> Counted(Image image, std::string_view params = "2,0,1,") {
    test::CommandRunner runner(std::move(image));
    runner.view.counters.fill(-7);
    EXPECT_TRUE(runner.Run(kCountColoursCommand, params));
    return {runner.view.counters[0], runner.view.counters[1]};
}

using Pair = std::pair<int, int>;

TEST(CountColours, TellsTheDepthsApart) {
    Image twoTone = test::FlatImage({9, 4}, kWhite);
    twoTone.View().SetPixel(4, 2, kBlack);
    EXPECT_EQ(Counted(test::Copy(twoTone.View())), Pair(0, 2));
    EXPECT_EQ(Counted(test::FlatImage({9, 4}, kBlack)), Pair(0, 1));
    EXPECT_EQ(Counted(GreyImage({9, 4}, 100)), Pair(1, 1));
    EXPECT_EQ(Counted(test::FlatImage({9, 4}, {255, 0, 0})), Pair(2, 1));
}

TEST(CountColours, MoreThan256AreFullColour) {
    Image ramp = test::FlatImage({257, 1}, kBlack);
    for (int x = 0; x < 257; ++x)
        ramp.View().SetPixel(x, 0,
                             {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(x / 256), 0});
    EXPECT_EQ(Counted(test::Copy(ramp.View())), Pair(3, 257));
    ramp.View().SetPixel(256, 0, kBlack);
    EXPECT_EQ(Counted(test::Copy(ramp.View())), Pair(2, 256));
}

TEST(CountColours, LooksAtEveryThirdOfARow) {
    Image image = GreyImage({9, 2}, 50);
    image.View().SetPixel(4, 0, {255, 0, 0});  // between the sampled columns 0, 3 and 6
    EXPECT_EQ(Counted(test::Copy(image.View())), Pair(1, 2));
    image.View().SetPixel(6, 1, {255, 0, 0});
    EXPECT_EQ(Counted(test::Copy(image.View())), Pair(2, 2));
}

TEST(CountColours, ANarrowPictureIsLookedAtPixelByPixel) {
    for (const int width : {1, 2}) {
        Image image = GreyImage({width, 5}, 50);
        EXPECT_EQ(Counted(test::Copy(image.View())), Pair(1, 1));
        image.View().SetPixel(width - 1, 3, {255, 0, 0});
        EXPECT_EQ(Counted(test::Copy(image.View())), Pair(2, 2));
    }
}

TEST(CountColours, BothBwCommandsLeaveCodeZero) {
    for (const auto& [command, params] : {std::pair(&kConvertBwDitherCommand, "1,0,"),
                                          std::pair(&kConvertBwThresholdCommand, "3,120,0,0,")}) {
        test::CommandRunner runner(test::PhotoLikeImage({40, 30}));
        ASSERT_TRUE(runner.Run(*command, params));
        EXPECT_EQ(Counted(test::Copy(runner.Main().View())), Pair(0, 2));
    }
}

TEST(CountColours, OneCounterForBothHoldsTheCode) {
    EXPECT_EQ(Counted(test::FlatImage({9, 4}, {255, 0, 0}), "2,0,0,"), Pair(2, -7));
}

TEST(CountColours, NoneAndAnyOtherTextStoreNothing) {
    for (const char* params : {"2,10,10,", "2,,,", "2,A,-1,", "0"})
        EXPECT_EQ(Counted(test::FlatImage({9, 4}, {255, 0, 0}), params), Pair(-7, -7)) << params;
    EXPECT_EQ(Counted(test::FlatImage({9, 4}, {255, 0, 0}), "2,10,1,"), Pair(-7, 1));
    EXPECT_EQ(Counted(test::FlatImage({9, 4}, {255, 0, 0}), "2,0,10,"), Pair(2, -7));
}

TEST(CountColours, ShowsNoWaitCursorAndChangesNothing) {
    struct CursorInterface : test::RecordingInterface {
        void ShowWaitCursor(bool) override { ++calls; }
        int calls = 0;
    } ui;
    engine::CLumoscriptView view(ui);
    view.working.main = test::PhotoLikeImage({9, 9});
    EXPECT_EQ(engine::ExecuteCommand(view, "Count colors", "2,0,1,"), engine::Outcome::Succeeded);
    EXPECT_EQ(ui.calls, 0);
    EXPECT_TRUE(test::SamePixels(view.working.main, test::PhotoLikeImage({9, 9})));
    EXPECT_EQ(engine::ExecuteCommand(view, "Solarize", "1,255,"), engine::Outcome::Succeeded);
    EXPECT_EQ(ui.calls, 2);
}

TEST(CountImageColors, AgreesWithASet) {
    for (const Size size : test::kOddSizes) {
        const Image image = test::RandomImage(size, 1);
        EXPECT_EQ(imaging::CountImageColors(image.View()), reference::CountColours(image.View()));
        const Image photo = test::PhotoLikeImage({size.width + 50, size.height + 20});
        EXPECT_EQ(imaging::CountImageColors(photo.View()), reference::CountColours(photo.View()));
    }
    const Image all = test::AllColoursImage();
    EXPECT_EQ(imaging::CountImageColors(all.View()), static_cast<int>(all.Extent().Area()));
}

TEST(MedianCut, IsTheMedianOfNineAndKeepsTheSize) {
    const Image before = test::PhotoLikeImage({31, 17});
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kMedianCutCommand, "0"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), reference::Median3x3(before.View())));
    EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("31x17"));
}

TEST(MedianCut, MemoryFailureIsReportedAndLeavesThePictureAlone) {
    test::CommandRunner runner(test::PhotoLikeImage({31, 17}));
    {
        const test::ScopedMemoryBudget budget(100);
        EXPECT_FALSE(runner.Run(kMedianCutCommand, "0"));
    }
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_57 L3169 Median cut: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::PhotoLikeImage({31, 17})));
}

}  // namespace
}  // namespace lumo::ops::colour
