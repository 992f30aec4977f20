#include "ops/overlays/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "imaging/parallel.h"
#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::ImageView;
using imaging::Rgb;
using imaging::Size;

void PlainMosaic(ImageView image, Size block) {
    for (int top = 0; top < image.Height(); top += block.height)
        for (int left = 0; left < image.Width(); left += block.width) {
            const int bottom = std::min(top + block.height, image.Height());
            const int right = std::min(left + block.width, image.Width());
            for (int c = 0; c < 3; ++c) {
                long long sum = 0;
                for (int y = top; y < bottom; ++y)
                    for (int x = left; x < right; ++x) sum += image.At(x, y)[c];
                const long long average = sum / ((right - left) * (bottom - top));
                for (int y = top; y < bottom; ++y)
                    for (int x = left; x < right; ++x)
                        image.At(x, y)[c] = static_cast<std::uint8_t>(average);
            }
        }
}

void ExpectAsPlain(Size size, Size block) {
    Image actual = test::RandomImage(size, 7), expected = test::RandomImage(size, 7);
    MosaicImage(actual.View(), block);
    PlainMosaic(expected.View(), block);
    EXPECT_TRUE(test::SamePixels(actual, expected))
        << size.width << "x" << size.height << " by " << block.width << "x" << block.height;
}

TEST(MosaicImage, AveragesAsThePlainLoop) {
    std::mt19937 random(1);
    const auto upTo = [&](int most) { return 1 + static_cast<int>(random() % most); };
    for (int i = 0; i < 300; ++i) ExpectAsPlain({upTo(40), upTo(40)}, {upTo(20), upTo(20)});
    for (const int width : {1023, 1024, 1025, 2049, 3000})
        for (const int block : {1, 2, 3, 4, 5, 6, 7, 341, 1023, 1024, 1025, 1500, 5000})
            ExpectAsPlain({width, 5}, {block, 2});
    for (const int height : {600, 1024, 2048, 5000})  // narrow, but too large for floats in the end
        for (const int block : {2, 4, 5}) ExpectAsPlain({40, height + 3}, {block, height});
}

TEST(MosaicImage, SmallBlocksOfEveryShapeAverageAsThePlainLoop) {
    for (int across = 1; across <= 6; ++across)
        for (int down = 1; down <= 18; ++down)
            for (const Size size : {Size{1, 1},
                                    {across, down},
                                    {across + 1, 2 * down + 1},
                                    {1024, down},
                                    {2051, down + 1}})
                ExpectAsPlain(size, {across, down});
}

TEST(MosaicImage, EveryAverageOfSmallBlocksIsCutNotRounded) {
    // Every sum that blocks of up to sixteen pixels can have.
    for (const Size block :
         {Size{2, 1}, {3, 1}, {2, 2}, {3, 3}, {1, 7}, {2, 7}, {1, 13}, {3, 5}, {4, 4}}) {
        const int area = block.width * block.height;
        Image picture = test::FlatImage({block.width * (255 * area + 1), block.height}, {0, 0, 0});
        for (int sum = 0; sum <= 255 * area; ++sum)
            for (int pixel = 0, left = sum; pixel < area; ++pixel) {
                const auto value = static_cast<std::uint8_t>(std::min(left, 255));
                left -= value;
                picture.View().SetPixel(sum * block.width + pixel % block.width,
                                        pixel / block.width, {value, value, value});
            }
        MosaicImage(picture.View(), block);
        for (int sum = 0; sum <= 255 * area; ++sum)
            ASSERT_EQ(picture.View().Pixel(sum * block.width, 0).green, sum / area) << sum;
    }
}

TEST(MosaicImage, ThreadsGiveTheSameBytes) {
    imaging::SetKernelThreads(3);
    ExpectAsPlain({2000, 1203}, {17, 100});
    imaging::SetKernelThreads(1);
}

TEST(MosaicCommand, BlocksLargerThanThePictureGiveOneFlatBlock) {
    test::CommandRunner runner(test::CoordinateImage({4, 4}));
    ASSERT_TRUE(runner.Run(kMosaicCommand, "3,400,400,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({4, 4}, {1, 1, 7})));  // 1.5 cut
}

TEST(MosaicCommand, BlocksByNumberAreNeverSmallerThanTwoPixels) {
    test::CommandRunner runner(test::CoordinateImage({5, 2}));
    ASSERT_TRUE(runner.Run(kMosaicCommand, "3,100,100,1,"));
    const auto row = [&](int x) { return runner.Main().View().Pixel(x, 1); };
    EXPECT_EQ(row(0), (Rgb{0, 0, 7}));
    EXPECT_EQ(row(1), (Rgb{0, 0, 7}));
    EXPECT_EQ(row(2), (Rgb{2, 0, 7}));
    EXPECT_EQ(row(4), (Rgb{4, 0, 7}));  // the last block is one pixel wide
}

TEST(MosaicCommand, BlocksByNumberDivideThePicture) {
    test::CommandRunner runner(test::CoordinateImage({30, 12}));
    ASSERT_TRUE(runner.Run(kMosaicCommand, "3,3,2,1,"));
    Image expected = test::CoordinateImage({30, 12});
    PlainMosaic(expected.View(), {10, 6});
    EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
}

TEST(MosaicCommand, RefusesBlocksWithoutPixels) {
    test::CommandRunner runner(test::CoordinateImage({9, 9}));
    for (const char* params : {"3,0,8,0,", "3,8,0,0,", "3,0,8,1,", "3,8,0,1,", "3,-1,8,0,"})
        EXPECT_FALSE(runner.Run(kMosaicCommand, params)) << params;
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({9, 9})));
    EXPECT_TRUE(runner.messages.empty());
}

TEST(MosaicCommand, KeepsTheColourDepth) {
    test::CommandRunner runner(test::CoordinateImage({9, 9}));
    runner.view.working.imageBits = 8;
    runner.view.working.grey = true;
    ASSERT_TRUE(runner.Run(kMosaicCommand, "3,2,2,0,"));
    EXPECT_EQ(runner.view.working.imageBits, 8);
    EXPECT_TRUE(runner.view.working.grey);
}

TEST(MosaicCommand, PanelNamesTheUnit) {
    const auto panel = [](const char* params) {
        return script::PanelText(kMosaicCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("3,8,9,0,"), "Pixel size of mosaic blocks\nWidth: 8\nHeight: 9\n");
    EXPECT_EQ(panel("3,8,9,1,"), "Number of mosaic blocks\nAcross: 8\nDown: 9\n");
}

TEST(MosaicCommand, PreviewShowsBlocksInProportion) {
    const Image before = test::RandomImage({50, 25}, 1);
    const Image after =
        kMosaicCommand.preview(before.View(), {200, 100}, script::ParseParams("3,40,20,0,"));
    Image expected = test::RandomImage({50, 25}, 1);
    PlainMosaic(expected.View(), {10, 5});
    EXPECT_TRUE(test::SamePixels(after, expected));
}

}  // namespace
}  // namespace lumo::ops::overlays
