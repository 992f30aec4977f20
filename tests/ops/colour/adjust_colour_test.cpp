// Adjust: Color(RGB), Adjust: Color(HSL), Replace (1) color.

#include <gtest/gtest.h>

#include <climits>

#include "imaging/colour.h"
#include "imaging/parallel.h"
#include "ops/colour/adjust_hsl.h"
#include "ops/colour/adjust_rgb.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/replace_colour.h"
#include "reference/colour_reference.h"
#include "support/command_runner.h"
#include "support/each_pixel.h"

namespace lumo::ops::colour {
namespace {

namespace reference = test::reference;
using imaging::Hsl, imaging::Image, imaging::ImageView, imaging::Rgb;

Rgb After(const engine::Command& command, std::string_view params, Rgb pixel) {
    test::CommandRunner runner(test::FlatImage({3, 2}, pixel));
    EXPECT_TRUE(runner.Run(command, params));
    const Rgb result = runner.Main().View().Pixel(0, 0);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({3, 2}, result)));
    return result;
}

TEST(AdjustRgb, AddsLevelsAndHoldsTheSums) {
    EXPECT_EQ(After(kAdjustColourRgbCommand, "3,100,0,-100,", {200, 100, 50}), (Rgb{255, 100, 0}));
    EXPECT_EQ(After(kAdjustColourRgbCommand, "3,55,155,205,", {200, 100, 50}),
              (Rgb{255, 255, 255}));
}

TEST(AdjustRgb, AgreesWithThePlainSums) {
    const int cases[][3] = {
        {0, 0, 0}, {1, -1, 100}, {-100, 100, -1}, {255, -255, 37}, {-256, 300, 0}};
    for (const auto& [r, g, b] : cases)
        test::CheckOnOddSizes(
            [&, r = r, g = g, b = b](ImageView v) { AddToChannels(v, r, g, b); },
            [&, r = r, g = g, b = b](Rgb p) { return reference::Added(p, r, g, b); });
    test::CheckOnAllColours([](ImageView v) { AddToChannels(v, 100, -17, -100); },
                            [](Rgb p) { return reference::Added(p, 100, -17, -100); });
}

TEST(AdjustRgb, AbsurdAmountsAreBlackOrWhite) {
    Image image = test::RandomImage({7, 3}, 1);
    AddToChannels(image.View(), INT_MAX, INT_MIN, INT_MAX);
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({7, 3}, {255, 0, 255})));
}

TEST(AdjustHsl, NoChangeDarkensUntilTheValueIsStable) {
    EXPECT_EQ(After(kAdjustColourHslCommand, "3,0,0,0,", {200, 200, 200}), (Rgb{198, 198, 198}));
    EXPECT_EQ(After(kAdjustColourHslCommand, "3,0,0,0,", {128, 128, 128}), (Rgb{127, 127, 127}));
    test::CommandRunner runner(test::FlatImage({1, 1}, {200, 200, 200}));
    int before = 201, rounds = 0;
    for (int now = 200; now != before; ++rounds) {
        before = now;
        ASSERT_TRUE(runner.Run(kAdjustColourHslCommand, "3,0,0,0,"));
        now = runner.Main().View().Pixel(0, 0).red;
        EXPECT_LE(now, before);
    }
    EXPECT_GT(rounds, 2);
}

TEST(AdjustHsl, HalfATurnMakesRedCyan) {
    // Green is 0.99999... of 255, truncated.
    EXPECT_EQ(After(kAdjustColourHslCommand, "3,180,0,0,", {255, 0, 0}), (Rgb{0, 254, 255}));
    EXPECT_EQ(reference::ToRgb({180, 100, 50}), (Rgb{0, 254, 255}));
}

TEST(AdjustHsl, GreyKeepsItsSaturationAndBlackItsLightness) {
    EXPECT_EQ(After(kAdjustColourHslCommand, "3,90,100,0,", {127, 127, 127}), (Rgb{124, 124, 124}));
    EXPECT_EQ(After(kAdjustColourHslCommand, "3,0,0,100,", {0, 0, 0}), (Rgb{0, 0, 0}));
}

TEST(AdjustHsl, AgreesWithThePlainFormulasOnEveryColour) {
    const int cases[][3] = {{-180, 30, -20}, {0, 0, 0}, {77, -100, 50}, {1, 100, 100}};
    auto colours = test::Colours::All;
    for (const auto& [h, s, l] : cases) {
        test::CheckOnAllColours(
            [&, h = h, s = s, l = l](ImageView v) { AdjustHslOfImage(v, h, s, l); },
            [&, h = h, s = s, l = l](Rgb p) {
                return reference::ToRgb(reference::Adjusted(reference::ToHsl(p), h, s, l));
            },
            colours);
        colours = test::Colours::Some;
    }
}

TEST(AdjustHsl, AgreesWithThePlainFormulasOnOddSizes) {
    for (const int h : {-1000, -361, -180, -1, 0, 59, 180, 360, 720, 5000})
        for (const int s : {-300, -50, 0, 33, 400})
            test::CheckOnOddSizes(
                [&](ImageView v) { AdjustHslOfImage(v, h, s, -s); },
                [&](Rgb p) {
                    return reference::ToRgb(reference::Adjusted(reference::ToHsl(p), h, s, -s));
                });
}

TEST(AdjustHsl, AbsurdAmountsAgreeWithTheSinglePixelRoutines) {
    for (const int absurd : {INT_MIN, -30000000, 30000000, INT_MAX})
        test::CheckOnOddSizes([&](ImageView v) { AdjustHslOfImage(v, absurd, absurd, absurd); },
                              [&](Rgb p) {
                                  return imaging::HslToRgb(imaging::AdjustHsl(
                                      imaging::RgbToHsl(p), absurd, absurd, absurd));
                              });
}

TEST(AdjustHsl, GivesTheSameWithoutMemoryForItsTables) {
    const Image before = test::PhotoLikeImage({67, 41});
    Image with = test::Copy(before.View()), without = test::Copy(before.View());
    AdjustHslOfImage(with.View(), -77, 40, -12);
    {
        const test::ScopedMemoryBudget budget(100);
        AdjustHslOfImage(without.View(), -77, 40, -12);
    }
    EXPECT_TRUE(test::SamePixels(with, without));
}

TEST(ColourKernels, SeveralThreadsGiveTheSameBytes) {
    const Image before = test::PhotoLikeImage({1500, 1200});
    const auto after = [&](int threads) {
        imaging::SetKernelThreads(threads);
        Image image = test::Copy(before.View());
        AdjustHslOfImage(image.View(), 50, 20, 5);
        AddToChannels(image.View(), 10, -20, 30);
        ReplaceColour(image.View(), {{128, 128, 128}, {1, 2, 3}, 30});
        imaging::SetKernelThreads(1);
        return image;
    };
    EXPECT_TRUE(test::SamePixels(after(4), after(1)));
}

TEST(ReplaceColour, ToleranceIsAShareOf255) {
    EXPECT_EQ(ToleranceLevels(0), 0);
    EXPECT_EQ(ToleranceLevels(1), 2);
    EXPECT_EQ(ToleranceLevels(50), 127);
    EXPECT_EQ(ToleranceLevels(100), 255);
    EXPECT_EQ(ToleranceLevels(-1), -2);
}

TEST(ReplaceColour, ZeroToleranceIsAnExactMatch) {
    EXPECT_EQ(After(kReplaceColourCommand, "7,10,20,30,1,2,3,0,", {10, 20, 30}), (Rgb{1, 2, 3}));
    EXPECT_EQ(After(kReplaceColourCommand, "7,10,20,30,1,2,3,0,", {10, 21, 30}), (Rgb{10, 21, 30}));
}

TEST(ReplaceColour, OnePercentIsTwoLevelsInEachChannelByItself) {
    EXPECT_EQ(After(kReplaceColourCommand, "7,10,20,30,1,2,3,1,", {12, 18, 32}), (Rgb{1, 2, 3}));
    EXPECT_EQ(After(kReplaceColourCommand, "7,10,20,30,1,2,3,1,", {10, 20, 33}), (Rgb{10, 20, 33}));
}

TEST(ReplaceColour, FullToleranceReplacesEverything) {
    test::CommandRunner runner(test::RandomImage({31, 7}, 1));
    ASSERT_TRUE(runner.Run(kReplaceColourCommand, "7,255,255,255,1,2,3,100,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({31, 7}, {1, 2, 3})));
}

TEST(ReplaceColour, OfTheInsertedColourTheLowByteCounts) {
    EXPECT_EQ(After(kReplaceColourCommand, "7,0,0,0,257,-1,512,0,", {0, 0, 0}), (Rgb{1, 255, 0}));
}

TEST(ReplaceColour, AgreesWithThePlainTest) {
    const ReplaceColourParams cases[] = {
        {{128, 128, 128}, {1, 2, 3}, 100}, {{255, 0, 77}, {9, 8, 7}, 127},
        {{300, -40, 90}, {5, 5, 5}, 90},   {{10, 10, 10}, {0, 0, 0}, -1},
        {{-5, 260, 0}, {4, 3, 2}, 600},    {{500, 0, 0}, {4, 3, 2}, 100}};
    for (const ReplaceColourParams& params : cases)
        test::CheckOnOddSizes([&](ImageView v) { ReplaceColour(v, params); },
                              [&](Rgb p) {
                                  return reference::Replaced(p, params.wanted, params.inserted,
                                                             params.tolerance);
                              });
    test::CheckOnAllColours(
        [&](ImageView v) { ReplaceColour(v, cases[0]); },
        [&](Rgb p) { return reference::Replaced(p, cases[0].wanted, cases[0].inserted, 100); });
}

TEST(ReplaceColour, AbsurdFieldsAreDefined) {
    Image image = test::FlatImage({5, 1}, {9, 9, 9});
    ReplaceColour(image.View(), {{INT_MAX, INT_MIN, 0}, {1, 1, 1}, INT_MIN});
    ReplaceColour(image.View(), {{INT_MIN, INT_MAX, 0}, {1, 1, 1}, 255});
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({5, 1}, {9, 9, 9})));
    ReplaceColour(image.View(), {{9, 9, 9}, {1, 1, 1}, INT_MAX});
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({5, 1}, {1, 1, 1})));
}

}  // namespace
}  // namespace lumo::ops::colour
