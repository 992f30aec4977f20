#include "ops/geometry/skew.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using engine::Outcome;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;

constexpr Rgb kCanvas{1, 2, 3};

// Pixel by pixel, as the rules of the two forms read.
Image SkewedPlainly(const Image& source, int horizontal, int vertical) {
    const int W = source.Width(), H = source.Height();
    const bool columns = horizontal == 0;
    const int degrees = columns ? vertical : horizontal;
    const double angle = degrees * 3.1415926535 / 180.0;
    int off = std::abs(static_cast<int>(std::tan(angle) * (columns ? W : H)));
    const int last = (columns ? W : H) - 1;
    if (last == 0) off = 0;
    const int w = columns ? W : W + off, h = columns ? H + off : H;
    Image target = test::FlatImage({w, h}, kCanvas);
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            const int d = last == 0 ? 0 : off * (columns ? x : y) / last;
            int toX = x, toY = y;
            if (columns) toY = degrees < 0 ? y + d : (h - H) + y - d;
            if (!columns) toX = degrees < 0 ? x + d : (w - W) + x - d;
            target.View().SetPixel(toX, toY, source.View().Pixel(x, y));
        }
    return target;
}

Image Skewed(Size size, int horizontal, int vertical, std::uint32_t seed) {
    test::CommandRunner runner(test::RandomImage(size, seed));
    EXPECT_TRUE(runner.Run(kSkewCommand, "5," + std::to_string(horizontal) + "," +
                                             std::to_string(vertical) + ",1,2,3,"));
    return std::move(runner.Main());
}

TEST(SkewCommand, GivesThePixelsOfThePlainLoops) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const unsigned side = round < 100 ? 8 : 600;
        const Size size{1 + static_cast<int>(random() % side), 1 + round % 40};
        const Size shape = round % 2 == 0 ? size : Size{size.height, size.width};
        const int degrees = static_cast<int>(random() % 179) - 89;
        const int horizontal = random() % 2 == 0 ? degrees : 0;
        const auto seed = static_cast<std::uint32_t>(round);
        ASSERT_TRUE(
            test::SamePixels(Skewed(shape, horizontal, degrees, seed),
                             SkewedPlainly(test::RandomImage(shape, seed), horizontal, degrees)))
            << shape.width << " x " << shape.height << ", " << horizontal << ", " << degrees;
    }
}

TEST(SkewCommand, VerticalExample) {
    test::CommandRunner runner(test::FlatImage({640, 480}, {9, 9, 9}));
    ASSERT_TRUE(runner.Run(kSkewCommand, "5,0,10,255,255,255,"));
    ASSERT_EQ(runner.Main().Extent(), (Size{640, 592}));
    const auto view = runner.Main().View();
    const Rgb picture{9, 9, 9}, canvas{255, 255, 255};
    EXPECT_EQ(view.Pixel(0, 111), canvas);
    EXPECT_EQ(view.Pixel(0, 112), picture);
    EXPECT_EQ(view.Pixel(0, 591), picture);
    EXPECT_EQ(view.Pixel(639, 0), picture);
    EXPECT_EQ(view.Pixel(639, 479), picture);
    EXPECT_EQ(view.Pixel(639, 480), canvas);
}

TEST(SkewCommand, HorizontalExample) {
    test::CommandRunner runner(test::FlatImage({640, 480}, {9, 9, 9}));
    ASSERT_TRUE(runner.Run(kSkewCommand, "5,-10,0,255,255,255,"));
    ASSERT_EQ(runner.Main().Extent(), (Size{724, 480}));
    const auto view = runner.Main().View();
    const Rgb picture{9, 9, 9}, canvas{255, 255, 255};
    EXPECT_EQ(view.Pixel(0, 0), picture);
    EXPECT_EQ(view.Pixel(640, 0), canvas);
    EXPECT_EQ(view.Pixel(83, 479), canvas);
    EXPECT_EQ(view.Pixel(84, 479), picture);
    EXPECT_EQ(view.Pixel(723, 479), picture);
}

TEST(SkewCommand, FortyFiveDegreesAreAShadeUnderOne) {
    EXPECT_EQ(SkewOf({100, 50}, 0, 45).most, 99);
    EXPECT_EQ(SkewOf({50, 100}, 45, 0).most, 99);
    EXPECT_EQ(SkewOf({100, 50}, 0, -45).most, 99);
}

TEST(SkewCommand, TheVerticalAngleCountsOnlyWithoutAHorizontalOne) {
    EXPECT_TRUE(test::SamePixels(Skewed({40, 30}, 20, 10, 1), Skewed({40, 30}, 20, 0, 1)));
    EXPECT_EQ(Skewed({40, 30}, 0, 10, 1).Height(), 37);
}

TEST(SkewCommand, NoAngleKeepsThePixels) {
    EXPECT_TRUE(test::SamePixels(Skewed({41, 33}, 0, 0, 7), test::RandomImage({41, 33}, 7)));
}

TEST(SkewCommand, OneColumnOrRowIsNotDisplaced) {
    EXPECT_TRUE(test::SamePixels(Skewed({1, 33}, 0, 40, 7), test::RandomImage({1, 33}, 7)));
    EXPECT_TRUE(test::SamePixels(Skewed({33, 1}, -40, 0, 7), test::RandomImage({33, 1}, 7)));
}

TEST(SkewCommand, OppositeAnglesAreMirrorImages) {
    for (const int degrees : {1, 17, 44}) {
        Image up = Skewed({60, 20}, 0, degrees, 3);
        const Image down = Skewed({60, 20}, 0, -degrees, 3);
        for (int x = 0; x < 60; ++x) {  // both columns hold the same 20 pixels
            int top = 0;
            while (up.View().Pixel(x, top) == kCanvas) ++top;
            int lower = 0;
            while (down.View().Pixel(x, lower) == kCanvas) ++lower;
            EXPECT_EQ(top + lower, up.Height() - 20);
        }
    }
}

TEST(SkewCommand, AQuarterTurnIsBeyondEveryMemory) {
    for (const char* params : {"5,90,0,0,0,0,", "5,0,-90,0,0,0,", "5,0,270,0,0,0,"}) {
        test::CommandRunner runner(test::RandomImage({100, 100}, 1));
        EXPECT_EQ(runner.Execute(kSkewCommand, params), Outcome::Failed);
        ASSERT_EQ(runner.messages.size(), 1U);
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({100, 100}, 1)));
    }
}

TEST(SkewCommand, PanelTellsTheAngleThatCounts) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kSkewCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("5,10,20,1,2,3,"), "Horizontal degrees: 10\nCanvas color(RGB):1: 2: 3\n");
    EXPECT_EQ(panel("5,0,20,1,2,3,"), "Vertical degrees: 20\nCanvas color(RGB):1: 2: 3\n");
}

}  // namespace
}  // namespace lumo::ops::geometry
