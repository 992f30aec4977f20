// The toners, the conversion to grey, the negative and the swaps.

#include <gtest/gtest.h>

#include <climits>

#include "imaging/colour.h"
#include "ops/colour/channels.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/toners.h"
#include "reference/colour_reference.h"
#include "support/command_runner.h"
#include "support/each_pixel.h"

namespace lumo::ops::colour {
namespace {

namespace reference = test::reference;
using imaging::Image, imaging::ImageView, imaging::Rgb;

Rgb After(const engine::Command& command, std::string_view params, Rgb pixel) {
    test::CommandRunner runner(test::FlatImage({3, 2}, pixel));
    EXPECT_TRUE(runner.Run(command, params));
    return runner.Main().View().Pixel(2, 1);
}

Rgb Toned(Rgb p, int hue, int saturation) {
    return reference::ToRgb({hue, saturation, reference::ToHsl(p).lightness});
}

Rgb GreyOf(Rgb p) {
    const auto y = static_cast<std::uint8_t>(reference::Luma(p));
    return {y, y, y};
}

Rgb Sepia(Rgb p) {
    return reference::Added(p, 24, -10, -10);
}

TEST(OneColourTone, WithoutSaturationItIsTheLightness) {
    EXPECT_EQ(After(kConvertOneColourToneCommand, "2,0,0,", {200, 200, 200}), (Rgb{198, 198, 198}));
    test::CommandRunner runner(test::FlatImage({1, 1}, {128, 128, 128}));
    runner.view.working.imageBits = 8;
    ASSERT_TRUE(runner.Run(kConvertOneColourToneCommand, "2,0,0,"));
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), (Rgb{127, 127, 127}));
    EXPECT_EQ(runner.view.working.imageBits, 24);
}

TEST(OneColourTone, AgreesWithThePlainFormulas) {
    const int cases[][2] = {{0, 50}, {360, 100}, {237, 33}, {1000, 250}, {-90, -40}};
    for (const auto& [hue, saturation] : cases) {
        const int h = hue, s = saturation;
        test::CheckOnOddSizes(
            [&](ImageView v) { EXPECT_TRUE(ToneImage(v, ToneSource::Colour, h, s)); },
            [&](Rgb p) { return Toned(GreyOf(p), h, s); });
        test::CheckOnOddSizes(
            [&](ImageView v) { EXPECT_TRUE(ToneImage(v, ToneSource::Grey, h, s)); },
            [&](Rgb p) { return Toned(p, h, s); });
    }
    test::CheckOnAllColours(
        [](ImageView v) { EXPECT_TRUE(ToneImage(v, ToneSource::Colour, 30, 50)); },
        [](Rgb p) { return Toned(GreyOf(p), 30, 50); });
    test::CheckOnAllColours(
        [](ImageView v) { EXPECT_TRUE(ToneImage(v, ToneSource::Grey, 200, 80)); },
        [](Rgb p) { return Toned(p, 200, 80); });
}

TEST(OneColourTone, AbsurdFieldsAreDefined) {
    for (const int absurd : {INT_MIN, INT_MAX}) {
        Image image = test::RandomImage({9, 5}, 1);
        EXPECT_TRUE(ToneImage(image.View(), ToneSource::Colour, absurd, absurd));
        EXPECT_TRUE(ToneImage(image.View(), ToneSource::Grey, absurd, absurd));
    }
}

TEST(SepiaTone, ShiftsWhiteAndBlack) {
    EXPECT_EQ(After(kConvertSepiaToneCommand, "0", {255, 255, 255}), (Rgb{255, 245, 245}));
    EXPECT_EQ(After(kConvertSepiaToneCommand, "0", {0, 0, 0}), (Rgb{24, 0, 0}));
}

TEST(SepiaTone, AgreesWithThePlainFormulas) {
    const auto colour = [](ImageView v) { EXPECT_TRUE(SepiaImage(v, ToneSource::Colour)); };
    const auto grey = [](ImageView v) { EXPECT_TRUE(SepiaImage(v, ToneSource::Grey)); };
    test::CheckOnOddSizes(colour, [](Rgb p) { return Sepia(GreyOf(p)); });
    test::CheckOnOddSizes(grey, [](Rgb p) { return Sepia(p); });
    test::CheckOnAllColours(colour, [](Rgb p) { return Sepia(GreyOf(p)); });
}

// The mark, not the pixels, tells the toners that a picture is grey already.
TEST(Toners, DoNotConvertAPictureThatIsMarkedGrey) {
    for (const bool grey : {false, true}) {
        test::CommandRunner runner(test::FlatImage({2, 2}, {200, 0, 0}));
        runner.view.working.grey = grey;
        ASSERT_TRUE(runner.Run(kConvertSepiaToneCommand, "0"));
        const Rgb expected = grey ? Sepia({200, 0, 0}) : Sepia(GreyOf({200, 0, 0}));
        EXPECT_EQ(runner.Main().View().Pixel(1, 1), expected);
    }
    for (const bool grey : {false, true}) {
        test::CommandRunner runner(test::FlatImage({2, 2}, {200, 0, 0}));
        runner.view.working.grey = grey;
        ASSERT_TRUE(runner.Run(kConvertOneColourToneCommand, "2,100,50,"));
        const Rgb expected =
            grey ? Toned({200, 0, 0}, 100, 50) : Toned(GreyOf({200, 0, 0}), 100, 50);
        EXPECT_EQ(runner.Main().View().Pixel(1, 1), expected);
    }
}

TEST(SepiaTone, AfterAOneBitConversionItTintsBlackAndWhite) {
    test::CommandRunner runner(test::FlatImage({1, 2}, {250, 200, 10}));
    runner.Main().View().SetPixel(0, 1, {10, 20, 30});
    ASSERT_TRUE(runner.Run(kConvertBwThresholdCommand, "3,120,0,0,"));
    ASSERT_TRUE(runner.Run(kConvertSepiaToneCommand, "0"));
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), (Rgb{255, 245, 245}));
    EXPECT_EQ(runner.Main().View().Pixel(0, 1), (Rgb{24, 0, 0}));
}

TEST(Greyscale, ConvertsEvenWhatIsMarkedGrey) {
    test::CommandRunner runner(test::FlatImage({2, 2}, {200, 0, 0}));
    runner.view.working.grey = true;
    ASSERT_TRUE(runner.Run(kConvertGreyscaleCommand, "0"));
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), (Rgb{60, 60, 60}));
}

TEST(Greyscale, MarksThePictureEvenIfItFails) {
    test::CommandRunner runner({});
    EXPECT_EQ(kConvertGreyscaleCommand.run(runner.view, {}), engine::Outcome::Failed);
    EXPECT_TRUE(runner.view.working.grey);
    EXPECT_EQ(runner.view.working.imageBits, 8);
}

TEST(Negative, IsTheDistanceFromWhite) {
    const auto expected = [](Rgb p) {
        return Rgb{static_cast<std::uint8_t>(255 - p.red), static_cast<std::uint8_t>(255 - p.green),
                   static_cast<std::uint8_t>(255 - p.blue)};
    };
    test::CheckOnOddSizes(InvertImage, expected);
    test::CheckOnAllColours(InvertImage, expected);
}

TEST(Swaps, ExchangeTwoChannels) {
    test::CheckOnOddSizes(SwapRedGreen, [](Rgb p) { return Rgb{p.green, p.red, p.blue}; });
    test::CheckOnOddSizes(SwapGreenBlue, [](Rgb p) { return Rgb{p.red, p.blue, p.green}; });
    EXPECT_EQ(After(kSwapRedGreenCommand, "0", {1, 2, 3}), (Rgb{2, 1, 3}));
    EXPECT_EQ(After(kSwapGreenBlueCommand, "0", {1, 2, 3}), (Rgb{1, 3, 2}));
    EXPECT_EQ(After(kSwapRedBlueCommand, "0", {1, 2, 3}), (Rgb{3, 2, 1}));
}

TEST(Swaps, TwiceIsThePictureAgain) {
    const Image before = test::RandomImage({37, 11}, 5);
    for (const engine::Command* command :
         {&kNegativeCommand, &kSwapRedBlueCommand, &kSwapRedGreenCommand, &kSwapGreenBlueCommand}) {
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(*command, "0"));
        EXPECT_FALSE(test::SamePixels(runner.Main(), before));
        ASSERT_TRUE(runner.Run(*command, "0"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    }
}

}  // namespace
}  // namespace lumo::ops::colour
