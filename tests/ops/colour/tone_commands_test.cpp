// Solarize, the curves, highlight - midtone - shadow, and the adjustments that the imaging folder
// does for the commands.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/colour_curve.h"
#include "ops/colour/highlight_midtone_shadow.h"
#include "ops/colour/solarize.h"
#include "reference/colour_reference.h"
#include "support/command_runner.h"
#include "support/each_pixel.h"

namespace lumo::ops::colour {
namespace {

namespace reference = test::reference;
using imaging::IdentityLut, imaging::Image, imaging::ImageView, imaging::Lut, imaging::Rgb;
using testing::ElementsAre;

Rgb After(const engine::Command& command, std::string_view params, Rgb pixel) {
    test::CommandRunner runner(test::FlatImage({3, 2}, pixel));
    EXPECT_TRUE(runner.Run(command, params));
    return runner.Main().View().Pixel(2, 1);
}

TEST(ContrastBrightness, ContrastStandsFirstInTheString) {
    EXPECT_EQ(After(kAdjustContrastBrightnessCommand, "2,0,40,", {100, 0, 200}),
              (Rgb{202, 102, 255}));
    EXPECT_EQ(After(kAdjustContrastBrightnessCommand, "2,50,0,", {100, 0, 200}), (Rgb{73, 0, 255}));
}

TEST(ContrastBrightness, FieldsBeyondTheDialogFollowTheFormula) {
    EXPECT_EQ(After(kAdjustContrastBrightnessCommand, "2,0,300,", {0, 1, 2}), (Rgb{255, 255, 255}));
    EXPECT_EQ(After(kAdjustContrastBrightnessCommand, "2,-200,0,", {0, 100, 255}),
              (Rgb{255, 155, 0}));
}

TEST(GammaAdjust, ReadsADecimalField) {
    EXPECT_EQ(After(kGammaAdjustCommand, "1,2.0,", {64, 128, 255}), (Rgb{128, 181, 255}));
    EXPECT_EQ(After(kGammaAdjustCommand, "1,1.0,", {64, 128, 255}), (Rgb{64, 128, 255}));
}

TEST(GammaAdjust, RefusesZeroAndWhatIsNoNumber) {
    for (const char* params : {"1,0,", "1,-1.5,", "1,abc,", "1,,", "0"}) {
        test::CommandRunner runner(test::FlatImage({2, 1}, {64, 128, 255}));
        EXPECT_FALSE(runner.Run(kGammaAdjustCommand, params));
        EXPECT_THAT(runner.messages,
                    ElementsAre("Cmd_40 Gamma L9436:   IS_error gamma is not above 0"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({2, 1}, {64, 128, 255})));
    }
}

TEST(HistogramLuminance, AnyModeButZeroEqualizes) {
    const Image before = test::PhotoLikeImage({41, 23});
    const auto result = [&](std::string_view params) {
        test::CommandRunner runner(test::Copy(before.View()));
        EXPECT_TRUE(runner.Run(kAdjustHistogramLuminanceCommand, params));
        return test::Copy(runner.Main().View());
    };
    const auto direct = [&](imaging::HistogramMode mode) {
        Image image = test::Copy(before.View());
        EXPECT_TRUE(imaging::AutoBrightnessRGB(image.View(), 60, 200, mode));
        return image;
    };
    EXPECT_TRUE(test::SamePixels(result("3,60,200,0,"), direct(imaging::HistogramMode::Stretch)));
    EXPECT_TRUE(test::SamePixels(result("3,60,200,1,"), direct(imaging::HistogramMode::Equalize)));
    EXPECT_TRUE(test::SamePixels(result("3,60,200,5,"), direct(imaging::HistogramMode::Equalize)));
}

TEST(HistogramCommands, WorkOverTheEntireRange) {
    const Image before = test::PhotoLikeImage({41, 23});
    const std::pair<const engine::Command*, const char*> same[] = {
        {&kHistogramStretchCommand, "3,0,255,0,"}, {&kHistogramEqualizeCommand, "3,0,255,1,"}};
    for (const auto& [command, params] : same) {
        test::CommandRunner plain(test::Copy(before.View())), full(test::Copy(before.View()));
        ASSERT_TRUE(plain.Run(*command, "0"));
        ASSERT_TRUE(full.Run(kAdjustHistogramLuminanceCommand, params));
        EXPECT_TRUE(test::SamePixels(plain.Main(), full.Main()));
        EXPECT_FALSE(test::SamePixels(plain.Main(), before));
    }
}

TEST(HistogramLuminance, CrossedThresholdsAreRefused) {
    test::CommandRunner runner(test::PhotoLikeImage({5, 5}));
    EXPECT_FALSE(runner.Run(kAdjustHistogramLuminanceCommand, "3,200,100,1,"));
    EXPECT_THAT(runner.messages, ElementsAre("Cmd_05 Histogram(adjust) L19680:   IS_error the low "
                                             "threshold is above the high one"));
}

TEST(Solarize, TheTestIsStrict) {
    const Image before = test::RandomImage({21, 7}, 1);
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kSolarizeCommand, "1,255,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    EXPECT_EQ(After(kSolarizeCommand, "1,100,", {100, 100, 100}), (Rgb{100, 100, 100}));
    EXPECT_EQ(After(kSolarizeCommand, "1,100,", {101, 101, 101}), (Rgb{154, 154, 154}));
}

TEST(Solarize, ThresholdZeroInvertsAllButBlack) {
    EXPECT_EQ(After(kSolarizeCommand, "1,0,", {0, 0, 0}), (Rgb{0, 0, 0}));
    EXPECT_EQ(After(kSolarizeCommand, "1,0,", {255, 255, 255}), (Rgb{0, 0, 0}));
    EXPECT_EQ(After(kSolarizeCommand, "1,0,", {0, 1, 0}), (Rgb{255, 254, 255}));
}

TEST(Solarize, AgreesWithThePlainFormula) {
    for (const int threshold : {INT_MIN, -1, 0, 1, 77, 128, 254, 255, 256, INT_MAX})
        test::CheckOnOddSizes([&](ImageView v) { Solarize(v, threshold); },
                              [&](Rgb p) { return reference::Solarized(p, threshold); });
    for (const int threshold : {0, 13, 128, 254})
        test::CheckOnAllColours([&](ImageView v) { Solarize(v, threshold); },
                                [&](Rgb p) { return reference::Solarized(p, threshold); });
}

Lut Hms(int highlight, int midtone, int shadow) {
    const auto lut = HmsLut({highlight, midtone, shadow});
    EXPECT_TRUE(lut.has_value());
    return lut.value_or(Lut{});
}

TEST(HighlightMidtoneShadow, TheDefaultsChangeNothing) {
    EXPECT_EQ(Hms(100, 50, 0), IdentityLut());
}

TEST(HighlightMidtoneShadow, HalfTheHighlightWhitensTheUpperHalf) {
    const Lut lut = Hms(50, 50, 0);
    EXPECT_EQ(lut[64], 128);
    for (std::size_t i = 127; i < 256; ++i) EXPECT_EQ(lut[i], 255);
}

TEST(HighlightMidtoneShadow, NoHighlightLeavesBlackOnly) {
    const Lut lut = Hms(0, 50, 0);
    EXPECT_EQ(lut[0], 0);
    for (std::size_t i = 1; i < 256; ++i) EXPECT_EQ(lut[i], 255);
}

TEST(HighlightMidtoneShadow, FullShadowLeavesWhiteOnly) {
    const Lut lut = Hms(100, 50, 100);
    for (std::size_t i = 0; i < 255; ++i) EXPECT_EQ(lut[i], 0);
    EXPECT_EQ(lut[255], 255);
}

TEST(HighlightMidtoneShadow, TheEndsOfTheMidtones) {
    const Lut bright = Hms(100, 100, 0);
    EXPECT_EQ(bright[95], 127);
    EXPECT_EQ(bright[96], 128);
    EXPECT_EQ(bright[159], 191);
    EXPECT_EQ(bright[160], 192);
    EXPECT_EQ(bright[255], 255);
    const Lut dark = Hms(100, 0, 0);
    EXPECT_EQ(dark[95], 63);
    EXPECT_EQ(dark[96], 64);
    EXPECT_EQ(dark[160], 128);
}

TEST(HighlightMidtoneShadow, AgreesWithThePlainTables) {
    for (int h = 0; h <= 100; h += 3)
        for (int m = 0; m <= 100; ++m)
            for (int s = 0; s <= 100; s += 7)
                ASSERT_EQ(HmsLut({h, m, s}), reference::HmsTable(h, m, s))
                    << h << " " << m << " " << s;
}

TEST(HighlightMidtoneShadow, RefusesExactlyWhatLeavesTheTables) {
    for (int value = -400; value <= 400; ++value) {
        ASSERT_EQ(HmsLut({value, 50, 0}), reference::HmsTable(value, 50, 0)) << value;
        ASSERT_EQ(HmsLut({100, value, 0}), reference::HmsTable(100, value, 0)) << value;
        ASSERT_EQ(HmsLut({100, 50, value}), reference::HmsTable(100, 50, value)) << value;
    }
}

TEST(HighlightMidtoneShadow, ARefusalLeavesThePictureAndItsTag) {
    for (const char* params :
         {"3,101,50,0,", "3,100,200,0,", "3,100,50,-1,", "3,2147483647,50,0,"}) {
        test::CommandRunner runner(test::FlatImage({2, 2}, {1, 2, 3}));
        runner.view.working.grey = true;
        EXPECT_FALSE(runner.Run(kHighlightMidtoneShadowCommand, params)) << params;
        EXPECT_THAT(runner.messages,
                    ElementsAre("Cmd_42 HMS L7458:   IS_error highlight, midtone or shadow is "
                                "outside of the levels"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({2, 2}, {1, 2, 3})));
        EXPECT_TRUE(runner.view.working.grey);
    }
}

TEST(HighlightMidtoneShadow, AppliesOneTableToAllChannels) {
    EXPECT_EQ(After(kHighlightMidtoneShadowCommand, "3,50,50,0,", {0, 64, 200}),
              (Rgb{0, 128, 255}));
}

constexpr std::array<int, 17> kStraight{0,   16,  32,  48,  64,  80,  96,  112, 128,
                                        144, 160, 176, 192, 208, 224, 240, 255};

CurvePoints Points(const std::array<int, 17>& values) {
    CurvePoints points{};
    std::transform(values.begin(), values.end(), points.begin(),
                   [](int v) { return static_cast<std::uint8_t>(v); });
    return points;
}

std::string CurveParams(std::string_view mode, const std::array<int, 17>& points) {
    std::string params = "18," + std::string(mode) + ",";
    for (const int point : points) params += std::to_string(point) + ",";
    return params;
}

TEST(CurveLut, TheStraightCurveIsTheIdentity) {
    EXPECT_EQ(CurveLut(Points(kStraight)), IdentityLut());
}

TEST(CurveLut, DescendsWithTruncationTowardZero) {
    std::array<int, 17> points = kStraight;
    points[0] = 255;
    points[1] = 0;
    EXPECT_EQ(CurveLut(Points(points))[1], 240);
}

TEST(CurveLut, AgreesWithThePlainTable) {
    std::uint32_t state = 1;
    for (int round = 0; round < 500; ++round) {
        std::array<int, 17> points{};
        for (int& point : points) {
            state = state * 1664525U + 1013904223U;
            point = static_cast<int>(state >> 24);
        }
        const Lut lut = CurveLut(Points(points));
        ASSERT_EQ(lut, reference::CurveTable(points));
        EXPECT_EQ(lut[255], points[16]);
    }
}

TEST(ColourCurve, ModesChooseTheChannels) {
    std::array<int, 17> points{};
    points.fill(9);
    const Rgb p{100, 150, 200};
    EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams("1", points), p), (Rgb{9, 9, 9}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams("2", points), p), (Rgb{9, 150, 200}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams("3", points), p), (Rgb{100, 9, 200}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams("4", points), p), (Rgb{100, 150, 9}));
}

TEST(ColourCurve, AnyOtherModeDoesNothingAndSucceeds) {
    std::array<int, 17> points{};
    for (const char* mode : {"0", "6", "", "x", "05"})
        EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams(mode, points), {1, 2, 3}),
                  (Rgb{1, 2, 3}));
}

TEST(ColourCurve, APointBeyondAByteKeepsItsLowByte) {
    std::array<int, 17> points{};
    points.fill(300);
    points[1] = -1;
    EXPECT_EQ(After(kColourCurveAdjustCommand, CurveParams("1", points), {0, 16, 255}),
              (Rgb{44, 255, 44}));
}

TEST(ColourCurve, BrightnessLosesALittleUnderAStraightCurve) {
    const std::string params = CurveParams("5", kStraight);
    EXPECT_EQ(After(kColourCurveAdjustCommand, params, {255, 255, 255}), (Rgb{254, 254, 254}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, params, {255, 0, 0}), (Rgb{252, 0, 0}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, params, {0, 0, 0}), (Rgb{0, 0, 0}));
}

TEST(ColourCurve, BlackStaysBlackWhateverTheCurveSays) {
    std::array<int, 17> points{};
    points.fill(255);
    const std::string params = CurveParams("5", points);
    EXPECT_EQ(After(kColourCurveAdjustCommand, params, {0, 0, 0}), (Rgb{0, 0, 0}));
    EXPECT_EQ(After(kColourCurveAdjustCommand, params, {1, 1, 1}), (Rgb{255, 255, 255}));
}

TEST(ColourCurve, BrightnessAgreesWithThePlainFormula) {
    const std::array<int, 17> bent{10,  200, 32,  250, 0,   80,  99, 112, 255,
                                   144, 7,   176, 192, 255, 224, 3,  77};
    for (const auto& points : {kStraight, bent}) {
        const Lut lut = CurveLut(Points(points));
        test::CheckOnOddSizes([&](ImageView v) { ApplyCurveToBrightness(v, lut); },
                              [&](Rgb p) { return reference::CurvedBrightness(p, lut); });
        test::CheckOnAllColours([&](ImageView v) { ApplyCurveToBrightness(v, lut); },
                                [&](Rgb p) { return reference::CurvedBrightness(p, lut); });
    }
}

}  // namespace
}  // namespace lumo::ops::colour
