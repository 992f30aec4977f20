// "Rotate (90 - 180 - 270)" and "Rotate (specify)". What the turning itself does is tested with
// imaging.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/quick_rotate.h"
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

TEST(RotateQuarterCommand, NinetyAnd270ExchangeTheSides) {
    for (const auto& [params, size] :
         {std::pair("1,90,", Size{480, 640}), std::pair("1,270,", Size{480, 640}),
          std::pair("1,180,", Size{640, 480})}) {
        test::CommandRunner runner(test::RandomImage({640, 480}, 1));
        runner.view.working.imageBits = 8;
        EXPECT_EQ(runner.Execute(kRotateQuarterCommand, params), Outcome::Succeeded);
        EXPECT_EQ(runner.Main().Extent(), size);
        EXPECT_EQ(runner.view.working.imageBits, 8);
    }
}

TEST(RotateQuarterCommand, NinetyIsClockwiseAnd270UndoesIt) {
    test::CommandRunner runner(test::RandomImage({64, 48}, 1));
    ASSERT_TRUE(runner.Run(kRotateQuarterCommand, "1,90,"));
    const Rgb upperLeft = test::RandomImage({64, 48}, 1).View().Pixel(0, 0);
    EXPECT_EQ(runner.Main().View().Pixel(47, 0), upperLeft);
    ASSERT_TRUE(runner.Run(kRotateQuarterCommand, "1,270,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({64, 48}, 1)));
}

TEST(RotateQuarterCommand, FourTimesNinetyIsTheFirstPicture) {
    for (const Size size : {Size{1, 1}, Size{5, 1}, Size{33, 70}}) {
        test::CommandRunner runner(test::RandomImage(size, 1));
        for (int turn = 0; turn < 4; ++turn)
            ASSERT_TRUE(runner.Run(kRotateQuarterCommand, "1,90,"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage(size, 1)));
    }
}

TEST(RotateQuarterCommand, AnyOtherTextFailsAndLeavesThePictureAlone) {
    for (const char* params : {"1,0,", "1,45,", "1,090,", "1,,", "1,360,", "0", ""}) {
        test::CommandRunner runner(test::RandomImage({64, 48}, 1));
        EXPECT_EQ(runner.Execute(kRotateQuarterCommand, params), Outcome::Failed);
        EXPECT_THAT(runner.messages, ElementsAre("Cmd_67 Rotate 90 L18159:   IS_error the angle is "
                                                 "none of 90, 180 and 270"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({64, 48}, 1)));
    }
}

TEST(RotateQuarterCommand, TurnsWithoutMemoryForASecondBuffer) {
    for (const char* params : {"1,90,", "1,180,", "1,270,"}) {
        test::CommandRunner usual(test::RandomImage({64, 48}, 1));
        ASSERT_TRUE(usual.Run(kRotateQuarterCommand, params));
        test::CommandRunner tight(test::RandomImage({64, 48}, 1));
        const test::ScopedMemoryBudget budget(1000);
        EXPECT_EQ(tight.Execute(kRotateQuarterCommand, params), Outcome::Succeeded);
        EXPECT_TRUE(test::SamePixels(tight.Main(), usual.Main()));
    }
}

TEST(RotateQuarterCommand, PanelTellsTheAngleAndTheSwap) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kRotateQuarterCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("1,90,"), "Rotate: 90\nwidth and height\nare swapped.\n");
    EXPECT_EQ(panel("1,180,"), "Rotate: 180\n");
    EXPECT_EQ(panel("1,270,"), "Rotate: 270\nwidth and height\nare swapped.\n");
}

TEST(RotateSpecifyCommand, GrowsToHoldThePictureOnTheCanvas) {
    test::CommandRunner runner(test::FlatImage({640, 480}, {9, 9, 9}));
    EXPECT_EQ(runner.Execute(kRotateSpecifyCommand, "4,10,20,30,20,"), Outcome::Succeeded);
    EXPECT_EQ(runner.Main().Extent(), (Size{766, 670}));  // 765.57 by 669.94
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), (Rgb{10, 20, 30}));
    EXPECT_EQ(runner.Main().View().Pixel(383, 335), (Rgb{9, 9, 9}));
    EXPECT_EQ(runner.ui.sizeTexts.back(), "766x670");
}

TEST(RotateSpecifyCommand, TurnsClockwise) {
    // Red at the top: by 80 degrees it comes to lie at the right.
    Image picture = test::FlatImage({100, 100}, {0, 0, 255});
    for (int x = 0; x < 100; ++x)
        for (int y = 0; y < 50; ++y) picture.View().SetPixel(x, y, {255, 0, 0});
    test::CommandRunner runner(std::move(picture));
    ASSERT_TRUE(runner.Run(kRotateSpecifyCommand, "4,0,0,0,80,"));
    const auto view = runner.Main().View();
    EXPECT_EQ(view.Pixel(view.Width() * 3 / 4, view.Height() / 2), (Rgb{255, 0, 0}));
    EXPECT_EQ(view.Pixel(view.Width() / 4, view.Height() / 2), (Rgb{0, 0, 255}));
}

TEST(RotateSpecifyCommand, RightAnglesAreThoseOfTheOtherCommand) {
    for (const char* angle : {"90", "180", "270"}) {
        test::CommandRunner free(test::RandomImage({37, 20}, 1));
        test::CommandRunner quarter(test::RandomImage({37, 20}, 1));
        ASSERT_TRUE(free.Run(kRotateSpecifyCommand, std::string("4,0,0,0,") + angle + ","));
        ASSERT_TRUE(quarter.Run(kRotateQuarterCommand, std::string("1,") + angle + ","));
        EXPECT_TRUE(test::SamePixels(free.Main(), quarter.Main()));
    }
}

TEST(RotateSpecifyCommand, ARunTakesAnyAngle) {
    const auto turned = [](std::string_view angle) {
        test::CommandRunner runner(test::RandomImage({37, 20}, 1));
        EXPECT_TRUE(runner.Run(kRotateSpecifyCommand, std::string("4,0,0,0,").append(angle) + ","));
        return std::move(runner.Main());
    };
    EXPECT_TRUE(test::SamePixels(turned("0"), test::RandomImage({37, 20}, 1)));
    EXPECT_TRUE(test::SamePixels(turned("360"), test::RandomImage({37, 20}, 1)));
    EXPECT_EQ(turned("-20").Extent(), turned("340").Extent());
    EXPECT_FALSE(turned("2147483647").IsEmpty());
}

TEST(RotateSpecifyCommand, ASideBeyondAllMeasureIsReported) {
    // More than 2^26 pixels in a row, also when turned by a degree: 192 MiB, and the only ones.
    auto line = Image::TryCreate({(1 << 26) + 20000, 1});
    ASSERT_TRUE(line);
    test::CommandRunner runner(std::move(*line));
    EXPECT_EQ(runner.Execute(kRotateSpecifyCommand, "4,0,0,0,1,"), Outcome::Failed);
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_68RotFree L14335:   IS_error "),
                                             StartsWith("Cmd_68 Rot Free: memory failure")));
}

TEST(RotateSpecifyCommand, PanelShowsTheDegreesInTheLineOfBlue) {
    EXPECT_EQ(script::PanelText(kRotateSpecifyCommand.spec, script::ParseParams("4,1,2,3,20,")),
              "Color of canvas:\nR: 1\nG: 2\nB: 20\nDegrees to rotate:20\n");
}

}  // namespace
}  // namespace lumo::ops::geometry
