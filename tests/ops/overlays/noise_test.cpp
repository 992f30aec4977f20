#include "ops/overlays/noise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using engine::Random;
using imaging::Image;
using imaging::Rgb;

// A generator written out again, which also counts its calls.
struct PlainRandom {
    unsigned state = 2;
    int calls = 0;
    int InRange(int low, int high) {
        ++calls;
        state = state * 214013U + 2531011U;
        return static_cast<int>((state >> 16) & 0x7fff) * (high - low) / 32767 + low;
    }
};

void PlainNoise(Image& image, const std::string& mode, int a, PlainRandom& random) {
    const auto bytes = image.View().Bytes();
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        int l = static_cast<int>(0.299 * bytes[i] + 0.587 * bytes[i + 1] + 0.114 * bytes[i + 2]);
        if (l == 0) l = 1;
        int n = l;
        if (mode == "0,1" && random.InRange(0, 100) <= a) n = random.InRange(0, 255);
        if (mode == "1,1") n = std::max(1, std::min(255, l + random.InRange(-a, a)));
        for (std::size_t c = 0; c < 3; ++c) {
            int value = bytes[i + c];
            if (mode == "0,0" && random.InRange(0, 100) <= a) value = random.InRange(0, 255);
            if (mode == "1,0") value += random.InRange(-a, a);
            if (mode == "0,1" || mode == "1,1") value = value * n / l;
            bytes[i + c] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        }
    }
}

TEST(RandomInRange, ReachesItsUpperEndOnlyWithTheGreatestNumber) {
    Random random;
    PlainRandom plain;
    int tops = 0;
    for (int i = 0; i < 200000; ++i) {
        Random before = random;
        const int value = RandomInRange(random, 0, 100);
        ASSERT_EQ(value, plain.InRange(0, 100));
        ASSERT_LE(value, 100);
        if (value == 100) {
            ++tops;
            EXPECT_EQ(before.Next(), 32767);
        }
    }
    EXPECT_GT(tops, 0);
}

TEST(RandomInRange, TruncatesTowardZero) {
    // A generator's first numbers for seed 2.
    Random random;
    EXPECT_EQ(random.Next(), 45);
    random.Seed(2);
    EXPECT_EQ(RandomInRange(random, -100, 100), 45 * 200 / 32767 - 100);
}

TEST(RandomInRange, AbsurdRangesAreDefined) {
    Random random;
    for (int i = 0; i < 100; ++i) {
        RandomInRange(random, INT32_MIN, INT32_MAX);
        RandomInRange(random, INT32_MAX, INT32_MIN);
    }
}

TEST(NoiseCommand, EveryModeCallsTheGeneratorInItsOrder) {
    for (const char* mode : {"0,0", "0,1", "1,0", "1,1"})
        for (const int amount : {1, 10, 100, 255}) {
            test::CommandRunner runner(test::RandomImage({37, 23}, 4));
            Image expected = test::RandomImage({37, 23}, 4);
            PlainRandom plain;
            PlainNoise(expected, mode, amount, plain);
            const std::string params =
                "3," + std::string(mode) + "," + std::to_string(amount) + ",";
            ASSERT_TRUE(runner.Run(kNoiseAddCommand, params));
            EXPECT_TRUE(test::SamePixels(runner.Main(), expected)) << params;
            // The generators stand at the same place, so neither took a number more.
            EXPECT_EQ(RandomInRange(runner.view.random, 0, 30000), plain.InRange(0, 30000));
        }
}

TEST(NoiseCommand, EveryChannelChangesAtHundredPercent) {
    test::CommandRunner runner(test::FlatImage({100, 100}, {0, 0, 0}));
    ASSERT_TRUE(runner.Run(kNoiseAddCommand, "3,0,0,100,"));
    const auto bytes = runner.Main().View().Bytes();
    EXPECT_LT(std::count(bytes.begin(), bytes.end(), 0), 300);  // a 255th by chance
}

TEST(NoiseCommand, BlackStaysBlackInTheBrightnessModes) {
    for (const char* params : {"3,0,1,100,", "3,1,1,255,"}) {
        test::CommandRunner runner(test::FlatImage({30, 30}, {0, 0, 0}));
        ASSERT_TRUE(runner.Run(kNoiseAddCommand, params));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({30, 30}, {0, 0, 0})));
    }
}

TEST(NoiseCommand, GoesOnFromRunToRunAndStartsAnewWithTheProgram) {
    test::CommandRunner runner(test::FlatImage({20, 20}, {90, 90, 90}));
    ASSERT_TRUE(runner.Run(kNoiseAddCommand, "3,1,0,50,"));
    const Image first = test::Copy(runner.Main().View());
    runner.view.working.main = test::FlatImage({20, 20}, {90, 90, 90});
    ASSERT_TRUE(runner.Run(kNoiseAddCommand, "3,1,0,50,"));
    EXPECT_FALSE(test::SamePixels(runner.Main(), first));
    test::CommandRunner again(test::FlatImage({20, 20}, {90, 90, 90}));
    ASSERT_TRUE(again.Run(kNoiseAddCommand, "3,1,0,50,"));
    EXPECT_TRUE(test::SamePixels(again.Main(), first));
}

TEST(NoiseCommand, OtherTextsOnlyMakeThePictureFullColour) {
    for (const char* params : {"3,2,0,10,", "3,0,2,10,", "3,1,,10,", "3,,1,10,"}) {
        test::CommandRunner runner(test::CoordinateImage({20, 20}));
        runner.view.working.imageBits = 8;
        runner.view.working.grey = true;
        ASSERT_TRUE(runner.Run(kNoiseAddCommand, params));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({20, 20})));
        EXPECT_EQ(runner.view.working.imageBits, 24);
        EXPECT_FALSE(runner.view.working.grey);
        EXPECT_EQ(runner.view.random.Next(), Random().Next());  // none was taken
    }
}

TEST(NoiseCommand, AbsurdAmountsAreDefined) {
    for (const char* mode : {"0,0", "0,1", "1,0", "1,1"})
        for (const char* amount : {"-5", "2147483647", "-2147483648"}) {
            test::CommandRunner runner(test::RandomImage({9, 9}, 4));
            EXPECT_TRUE(
                runner.Run(kNoiseAddCommand, "3," + std::string(mode) + "," + amount + ","));
        }
}

TEST(NoiseCommand, PreviewTakesNothingFromTheRunsGenerator) {
    test::CommandRunner runner(test::CoordinateImage({20, 20}));
    const Image after = kNoiseAddCommand.preview(runner.Main().View(), {200, 200},
                                                 script::ParseParams("3,1,0,50,"));
    EXPECT_FALSE(test::SamePixels(after, runner.Main()));
    EXPECT_EQ(runner.view.random.Next(), Random().Next());
}

TEST(NoiseCommand, PanelFollowsTheKind) {
    const auto panel = [](const char* params) {
        return script::PanelText(kNoiseAddCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("3,0,0,10,"), "Random noise\nAll color values\n% pixels changed: 10\n");
    EXPECT_EQ(panel("3,1,1,20,"), "Uniform noise\nBrightness only\nPixel vary + or - : 20\n");
}

}  // namespace
}  // namespace lumo::ops::overlays
