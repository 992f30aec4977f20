#include "ops/overlays/tile_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::ImageView;
using imaging::Rgb;
using imaging::Size;

// Tile by tile and ring by ring, as one would draw it by hand.
void PlainTileGrid(ImageView image, const TileGridParams& p) {
    const auto add = [&](int x, int y, int amount) {
        if (x >= image.Width() || y >= image.Height()) return;
        for (int c = 0; c < 3; ++c) {
            std::uint8_t& value = image.At(x, y)[c];
            value = static_cast<std::uint8_t>(std::clamp(value + amount, 0, 255));
        }
    };
    for (int X = 0; X < image.Width(); X += p.width)
        for (int Y = 0; Y < image.Height(); Y += p.height)
            for (int k = 1; k <= p.edge; ++k) {
                for (int y = Y + p.space - 1 + k; y <= Y + p.height - p.space - k; ++y) {
                    add(X + p.space - 1 + k, y, p.increment);
                    add(X + p.width - p.space - k, y, -p.increment);
                }
                for (int x = X + p.space - 1 + k; x <= X + p.width - p.space - k; ++x) {
                    add(x, Y + p.space - 1 + k, p.increment);
                    add(x, Y + p.height - p.space - k, -p.increment);
                }
            }
}

TEST(DrawTileGrid, DrawsAsThePlainLoop) {
    std::mt19937 random(5);
    const auto upTo = [&](int most) { return static_cast<int>(random() % (most + 1)); };
    int drawn = 0;
    for (int i = 0; i < 2000; ++i) {
        const TileGridParams params{upTo(24), upTo(24), upTo(4), upTo(3), upTo(510) - 255};
        if (!FitsTile(params)) continue;
        ++drawn;
        const Size size{1 + upTo(50), 1 + upTo(50)};
        Image actual = test::RandomImage(size, 1), expected = test::RandomImage(size, 1);
        DrawTileGrid(actual.View(), params);
        PlainTileGrid(expected.View(), params);
        ASSERT_TRUE(test::SamePixels(actual, expected))
            << params.width << " " << params.height << " " << params.edge << " " << params.space;
    }
    EXPECT_GT(drawn, 500);
}

TEST(DrawTileGrid, ChangesCornersTwice) {
    Image image = test::FlatImage({8, 8}, {100, 100, 100});
    DrawTileGrid(image.View(), {8, 8, 1, 0, 20});
    const auto red = [&](int x, int y) { return int{image.View().Pixel(x, y).red}; };
    EXPECT_EQ(red(0, 0), 140);
    EXPECT_EQ(red(3, 0), 120);
    EXPECT_EQ(red(7, 0), 100);
    EXPECT_EQ(red(7, 3), 80);
    EXPECT_EQ(red(0, 7), 100);
    EXPECT_EQ(red(7, 7), 60);
    EXPECT_EQ(red(4, 4), 100);
}

TEST(DrawTileGrid, LimitsEveryStepAtOnce) {
    Image image = test::FlatImage({8, 8}, {10, 10, 10});
    DrawTileGrid(image.View(), {8, 8, 1, 0, 20});
    EXPECT_EQ(image.View().Pixel(7, 0), (Rgb{20, 20, 20}));  // down to 0 first, then up
}

TEST(TileGridCommand, TilesByNumberRoundDownAndTheLastIsCut) {
    test::CommandRunner runner(test::FlatImage({100, 60}, {100, 100, 100}));
    ASSERT_TRUE(runner.Run(kTileGridCommand, "7,6,6,1,0,1,0,50,"));
    Image expected = test::FlatImage({100, 60}, {100, 100, 100});
    PlainTileGrid(expected.View(), {16, 10, 1, 0, 50});
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
    EXPECT_EQ(runner.Main().View().Pixel(96, 5).red, 150);  // the seventh tile across
    EXPECT_EQ(runner.Main().View().Pixel(99, 5).red, 100);
}

TEST(TileGridCommand, EdgeAndSpaceArePercentOfTheTilesWidth) {
    test::CommandRunner runner(test::FlatImage({200, 100}, {100, 100, 100}));
    ASSERT_TRUE(runner.Run(kTileGridCommand, "7,2,2,4,9,1,1,50,"));  // 100 wide, depressed
    Image expected = test::FlatImage({200, 100}, {100, 100, 100});
    PlainTileGrid(expected.View(), {100, 50, 4, 9, -50});
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST(TileGridCommand, PixelFieldsStandAsTheyAre) {
    test::CommandRunner runner(test::RandomImage({50, 40}, 2));
    ASSERT_TRUE(runner.Run(kTileGridCommand, "7,12,9,2,1,0,0,30,"));
    Image expected = test::RandomImage({50, 40}, 2);
    PlainTileGrid(expected.View(), {12, 9, 2, 1, 30});
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST(TileGridCommand, FailsSilentlyWhereEdgesFindNoRoom) {
    EXPECT_TRUE(FitsTile({7, 7, 2, 1, 50}));
    EXPECT_FALSE(FitsTile({6, 7, 2, 1, 50}));
    EXPECT_FALSE(FitsTile({7, 6, 2, 1, 50}));
    test::CommandRunner runner(test::CoordinateImage({60, 60}));
    for (const char* params :
         {"7,6,6,1,60,1,0,50,", "7,6,6,1,10,0,0,50,", "7,0,6,1,0,1,0,50,", "7,6,0,1,0,1,0,50,",
          "7,0,0,0,0,0,0,50,", "7,8,8,1,-9,0,0,50,", "7,8,8,2147483647,-2147483648,0,0,50,",
          "7,-6,6,1,0,1,0,50,", "7,1,1,2147483647,2147483647,1,0,50,"})
        EXPECT_FALSE(runner.Run(kTileGridCommand, params)) << params;
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({60, 60})));
    EXPECT_TRUE(runner.messages.empty());
}

TEST(TileGridCommand, AnyIncrementIsLimited) {
    test::CommandRunner runner(test::FlatImage({20, 20}, {1, 2, 3}));
    ASSERT_TRUE(runner.Run(kTileGridCommand, "7,20,20,1,0,0,0,-2147483648,"));
    EXPECT_EQ(runner.Main().View().Pixel(0, 9), (Rgb{0, 0, 0}));
    EXPECT_EQ(runner.Main().View().Pixel(19, 9), (Rgb{255, 255, 255}));
}

TEST(TileGridCommand, PanelFollowsTheUnit) {
    const auto panel = [](const char* params) {
        return script::PanelText(kTileGridCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("7,6,5,1,2,1,0,50,"),
              "Tile blocks by number:\nAcross: 6\nDown: 5\nEdge(% width): 1\nSpace(%width): 2\n"
              "Tile blocks raised\nEdge luminance increment: 50\n");
    EXPECT_EQ(panel("7,6,5,1,2,0,1,50,"),
              "Tile block in pixels:\nWidth: 6\nHeight: 5\nEdge: 1\nSpace: 2\n"
              "Tile blocks depressed\nEdge luminance increment: 50\n");
}

TEST(TileGridCommand, PreviewShowsTilesInProportion) {
    const Image before = test::RandomImage({50, 50}, 1);
    const auto preview = [&](const char* params) {
        return kTileGridCommand.preview(before.View(), {500, 500}, script::ParseParams(params));
    };
    Image expected = test::RandomImage({50, 50}, 1);
    PlainTileGrid(expected.View(), {10, 10, 2, 1, 50});
    EXPECT_TRUE(test::SamePixels(preview("7,100,100,20,10,0,0,50,"), expected));
    EXPECT_TRUE(test::SamePixels(preview("7,0,0,1,0,1,0,50,"), before));
}

}  // namespace
}  // namespace lumo::ops::overlays
