#include "ops/geometry/shift.h"

#include <gtest/gtest.h>

#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using engine::Outcome;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;

constexpr Rgb kFill{1, 2, 3};

// Pixel by pixel: what leaves one side comes in at the other, or is lost.
Image ShiftedPlainly(const Image& source, char direction, int n, bool wrap) {
    const int W = source.Width(), H = source.Height();
    Image target = test::FlatImage({W, H}, kFill);
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            int toX = x, toY = y;
            if (direction == '3') toX -= n;
            if (direction == '2') toX += n;
            if (direction == '0') toY -= n;
            if (direction == '1') toY += n;
            const bool inside = toX >= 0 && toX < W && toY >= 0 && toY < H;
            if (inside || wrap)
                target.View().SetPixel((toX + W) % W, (toY + H) % H, source.View().Pixel(x, y));
        }
    return target;
}

std::string Params(char direction, std::string_view units, std::string_view amount, bool wrap) {
    std::string text = "7,";
    text += direction;
    text.append(",").append(units).append(",").append(amount).append(wrap ? ",1," : ",0,");
    return text + "1,2,3,";
}

TEST(ShiftCommand, GivesThePixelsOfThePlainLoop) {
    for (const Size size : {Size{1, 1}, Size{1, 5}, Size{7, 1}, Size{13, 9}, Size{300, 40}})
        for (const char direction : {'0', '1', '2', '3'})
            for (const bool wrap : {false, true}) {
                const int side = direction < '2' ? size.height : size.width;
                for (int n = 0; n <= side; n += side > 20 ? 7 : 1) {
                    test::CommandRunner runner(test::RandomImage(size, 3));
                    ASSERT_EQ(runner.Execute(kShiftImageCommand,
                                             Params(direction, "0", std::to_string(n), wrap)),
                              Outcome::Succeeded);
                    ASSERT_TRUE(test::SamePixels(
                        runner.Main(),
                        ShiftedPlainly(test::RandomImage(size, 3), direction, n, wrap)))
                        << size.width << " x " << size.height << " to " << direction << " by " << n;
                }
            }
}

TEST(ShiftCommand, WrappedThereAndBackIsTheFirstPicture) {
    for (const auto& [there, back] : {std::pair('0', '1'), std::pair('2', '3')})
        for (const char* amount : {"0", "1", "17", "30"}) {
            test::CommandRunner runner(test::RandomImage({40, 30}, 3));
            ASSERT_TRUE(runner.Run(kShiftImageCommand, Params(there, "0", amount, true)));
            ASSERT_TRUE(runner.Run(kShiftImageCommand, Params(back, "0", amount, true)));
            EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({40, 30}, 3)));
        }
}

TEST(ShiftCommand, LeftByTenOpensTheLastTenColumns) {
    test::CommandRunner runner(test::FlatImage({100, 20}, {9, 9, 9}));
    ASSERT_TRUE(runner.Run(kShiftImageCommand, Params('3', "0", "10", false)));
    EXPECT_EQ(runner.Main().View().Pixel(89, 5), (Rgb{9, 9, 9}));
    EXPECT_EQ(runner.Main().View().Pixel(90, 5), kFill);
    EXPECT_EQ(runner.Main().View().Pixel(99, 19), kFill);
}

TEST(ShiftCommand, ByTheWholeSideWrapsToItselfOrFillsAll) {
    for (const char direction : {'0', '1', '2', '3'}) {
        test::CommandRunner wrapped(test::RandomImage({30, 30}, 3));
        ASSERT_TRUE(wrapped.Run(kShiftImageCommand, Params(direction, "0", "30", true)));
        EXPECT_TRUE(test::SamePixels(wrapped.Main(), test::RandomImage({30, 30}, 3)));
        test::CommandRunner filled(test::RandomImage({30, 30}, 3));
        ASSERT_TRUE(filled.Run(kShiftImageCommand, Params(direction, "0", "30", false)));
        EXPECT_TRUE(test::SamePixels(filled.Main(), test::FlatImage({30, 30}, kFill)));
    }
}

TEST(ShiftCommand, PercentAreOfTheSideMovedAlongAndTruncated) {
    for (const char direction : {'0', '1', '2', '3'}) {
        test::CommandRunner runner(test::RandomImage({97, 31}, 3));
        ASSERT_TRUE(runner.Run(kShiftImageCommand, Params(direction, "1", "10", true)));
        const int n = direction < '2' ? 3 : 9;
        EXPECT_TRUE(test::SamePixels(
            runner.Main(), ShiftedPlainly(test::RandomImage({97, 31}, 3), direction, n, true)));
    }
}

TEST(ShiftCommand, PercentAreReckonedIn32Bits) {
    // 64 * 67108865 is 2^32 + 64: 64 / 100 leaves nothing to move by.
    test::CommandRunner runner(test::RandomImage({64, 8}, 3));
    EXPECT_TRUE(runner.Run(kShiftImageCommand, Params('3', "1", "67108865", false)));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({64, 8}, 3)));
}

TEST(ShiftCommand, WhatDoesNotFitFailsWithoutAWord) {
    const std::string refused[] = {
        Params('3', "0", "31", true), Params('2', "0", "31", false),
        Params('0', "0", "21", true), Params('1', "1", "106", true),
        Params('0', "0", "-1", true), Params('0', "1", "-1", false),
        Params('4', "0", "5", true),  Params('3', "0", "2147483647", true)};
    for (const std::string& params : refused) {
        test::CommandRunner runner(test::RandomImage({30, 20}, 3));
        runner.view.working.imageBits = 1;
        EXPECT_EQ(runner.Execute(kShiftImageCommand, params), Outcome::Failed) << params;
        EXPECT_TRUE(runner.messages.empty());
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({30, 20}, 3)));
        EXPECT_EQ(runner.view.working.imageBits, 1);
    }
}

TEST(ShiftCommand, WrapIsTheTextOneAndUnitsTheTextOne) {
    test::CommandRunner runner(test::RandomImage({30, 20}, 3));
    ASSERT_TRUE(runner.Run(kShiftImageCommand, "7,3,7,10,2,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(),
                                 ShiftedPlainly(test::RandomImage({30, 20}, 3), '3', 10, false)));
}

TEST(ShiftCommand, PanelTellsDirectionAmountAndWrap) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kShiftImageCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("7,0,0,5,1,1,2,3,"), "Shift up\nPixels: 5\nWrap image\n");
    EXPECT_EQ(panel("7,1,1,5,1,1,2,3,"), "Shift down\nPercent: 5\nWrap image\n");
    EXPECT_EQ(panel("7,2,0,5,0,1,2,3,"),
              "Shift right\nPixels: 5\nNo wrap, fill with:\nRGB: 1:2:3\n");
    EXPECT_EQ(panel("7,3,1,5,0,1,2,3,"),
              "Shift left\nPercent: 5\nNo wrap, fill with:\nRGB: 1:2:3\n");
}

TEST(ShiftCommand, PreviewScalesPixelsButNotPercent) {
    const Image before = test::RandomImage({40, 20}, 3);
    const auto shown = [&](std::string_view params) {
        return kShiftImageCommand.preview(before.View(), {400, 200}, script::ParseParams(params));
    };
    EXPECT_TRUE(test::SamePixels(shown("7,3,0,50,1,1,2,3,"), ShiftedPlainly(before, '3', 5, true)));
    EXPECT_TRUE(
        test::SamePixels(shown("7,1,1,50,0,1,2,3,"), ShiftedPlainly(before, '1', 10, false)));
    EXPECT_TRUE(test::SamePixels(shown("7,1,0,500,0,1,2,3,"), before));  // refused
}

}  // namespace
}  // namespace lumo::ops::geometry
