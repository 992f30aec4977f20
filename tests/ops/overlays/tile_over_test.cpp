#include "ops/overlays/tile_over.h"

#include <gmock/gmock.h>

#include <random>

#include "imaging/parallel.h"
#include "ops/overlays/overlay_commands.h"
#include "second_picture_fixture.h"

namespace lumo::ops::overlays {
namespace {

using imaging::ColourKey;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

// Two counters that step before the tile is read.
void PlainTiles(Image& image, const Image& tile, int p, const ColourKey* key) {
    int ty = 0;
    for (int y = 0; y < image.Height(); ++y) {
        if (++ty == tile.Height()) ty = 0;
        int tx = 0;
        for (int x = 0; x < image.Width(); ++x) {
            if (++tx == tile.Width()) tx = 0;
            const std::uint8_t* over = tile.View().At(tx, ty);
            if (key != nullptr && key->Matches(over)) continue;
            for (int c = 0; c < 3; ++c) {
                std::uint8_t& value = image.View().At(x, y)[c];
                value = static_cast<std::uint8_t>((p * over[c] + (100 - p) * value) / 100);
            }
        }
    }
}

TEST(TileOver, MixesAsThePlainWalk) {
    std::mt19937 random(3);
    const auto upTo = [&](int most) { return static_cast<int>(random() % (most + 1)); };
    for (int i = 0; i < 400; ++i) {
        const Image tile = test::RandomImage({1 + upTo(20), 1 + upTo(20)}, 10 + i);
        const Size size{1 + upTo(i % 8 == 0 ? 1500 : 40), 1 + upTo(30)};
        const int opacity = upTo(100);
        const ColourKey key = imaging::KeyWithin(tile.View().Pixel(0, 0), upTo(60));
        const ColourKey* used = i % 2 == 0 ? &key : nullptr;
        Image actual = test::RandomImage(size, 5), expected = test::RandomImage(size, 5);
        TileOver(actual.View(), tile.View(), opacity, used);
        PlainTiles(expected, tile, opacity, used);
        ASSERT_TRUE(test::SamePixels(actual, expected)) << i;
    }
}

TEST(TileOver, ThreadsGiveTheSameBytes) {
    const Image tile = test::RandomImage({37, 29}, 1);
    Image actual = test::RandomImage({1300, 900}, 5), expected = test::RandomImage({1300, 900}, 5);
    imaging::SetKernelThreads(3);
    TileOver(actual.View(), tile.View(), 30, nullptr);
    imaging::SetKernelThreads(1);
    PlainTiles(expected, tile, 30, nullptr);
    EXPECT_TRUE(test::SamePixels(actual, expected));
}

TEST(TileOver, BeginsWithTheSecondRowAndColumn) {
    const Image tile = test::CoordinateImage({5, 4});
    Image image = test::FlatImage({12, 9}, {});
    TileOver(image.View(), tile.View(), 100, nullptr);
    EXPECT_EQ(image.View().Pixel(0, 0), (Rgb{1, 1, 7}));
    EXPECT_EQ(image.View().Pixel(4, 3), (Rgb{0, 0, 7}));  // column 0 first at width - 1
    EXPECT_EQ(image.View().Pixel(3, 2), (Rgb{4, 3, 7}));
}

class TileOverCommand : public test::SecondPictureTest {
  protected:
    const Image before = test::RandomImage({50, 30}, 1);
    const Image tile = test::RandomImage({7, 6}, 2);
};

TEST_F(TileOverCommand, KeepsTheColourDepthAndEmptiesTheSecondImage) {
    test::CommandRunner runner(test::Copy(before.View()));
    runner.view.working.imageBits = 8;
    runner.view.working.grey = true;
    runner.view.sample.blendSource = test::FlatImage({2, 2}, {});
    ASSERT_TRUE(runner.Run(kTileOverAbsoluteCommand,
                           "7,40,0,10,\"" + Put("a.bmp", tile.View()) + "\",0,255,255,"));
    Image expected = test::Copy(before.View());
    PlainTiles(expected, tile, 40, nullptr);
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
    EXPECT_EQ(runner.view.working.imageBits, 8);
    EXPECT_TRUE(runner.view.working.grey);
    EXPECT_TRUE(runner.view.sample.blendSource.IsEmpty());
}

TEST_F(TileOverCommand, ATileOneWideRepeatsItsColumn) {
    const Image narrow = test::RandomImage({1, 3}, 4);
    test::CommandRunner runner(test::FlatImage({4, 3}, {}));
    ASSERT_TRUE(runner.Run(kTileOverAbsoluteCommand,
                           "7,100,0,10,\"" + Put("a.bmp", narrow.View()) + "\",0,255,255,"));
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(runner.Main().View().Pixel(x, 2), narrow.View().Pixel(0, 0));
}

TEST_F(TileOverCommand, FullToleranceDrawsNothing) {
    const std::string path = Put("a.bmp", tile.View());
    for (const char* tolerance : {"100", "5000"}) {  // clamped
        test::CommandRunner runner(test::Copy(before.View()));
        ASSERT_TRUE(runner.Run(kTileOverAbsoluteCommand, "7,100,1," + std::string(tolerance) +
                                                             ",\"" + path + "\",0,255,255,"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), before));
    }
}

TEST_F(TileOverCommand, OpacityIsClampedAndAnyFlagButZeroIsOn) {
    const std::string path = Put("a.bmp", tile.View());
    const Rgb first = tile.View().Pixel(1, 1);
    const std::string colour = std::to_string(first.red + 256) + "," + std::to_string(first.green) +
                               "," + std::to_string(first.blue) + ",";
    test::CommandRunner runner(test::Copy(before.View()));
    ASSERT_TRUE(runner.Run(kTileOverAbsoluteCommand, "7,250,yes,-3,\"" + path + "\"," + colour));
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), before.View().Pixel(0, 0));  // low 8 bits: the key
    EXPECT_EQ(runner.Main().View().Pixel(1, 0), tile.View().Pixel(2, 1));
}

TEST_F(TileOverCommand, AMissingFileIsReportedWithItsPath) {
    test::CommandRunner runner(test::Copy(before.View()));
    EXPECT_FALSE(
        runner.Run(kTileOverAbsoluteCommand, "7,50,1,10,\"" + Missing() + "\",0,255,255,"));
    EXPECT_THAT(
        runner.messages,
        ElementsAre(StartsWith("Cmd_87 Unable to find or open:" + Missing() + "  IS_error ")));
}

}  // namespace
}  // namespace lumo::ops::overlays
