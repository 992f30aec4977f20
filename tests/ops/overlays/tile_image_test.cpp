#include "ops/overlays/tile_image.h"

#include <gmock/gmock.h>

#include <utility>

#include "imaging/parallel.h"
#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

void ExpectTiled(const Image& actual, const Image& picture, Size size) {
    ASSERT_EQ(actual.Extent(), size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            ASSERT_EQ(actual.View().Pixel(x, y),
                      picture.View().Pixel(x % picture.Width(), y % picture.Height()))
                << x << "," << y;
}

TEST(TileImage, RepeatsThePictureFromTheTopLeft) {
    for (const int threads : {1, 3}) {
        imaging::SetKernelThreads(threads);
        for (const Size source : {Size{1, 1}, Size{3, 5}, Size{17, 2}, Size{100, 90}})
            for (const Size size : {Size{1, 1}, Size{16, 9}, Size{51, 33}, Size{1500, 1100}}) {
                const Image picture = test::RandomImage(source, 3);
                auto canvas = Image::TryCreate(size);
                ASSERT_TRUE(TileImage(canvas->View(), picture.View()));
                ExpectTiled(*canvas, picture, size);
            }
    }
    imaging::SetKernelThreads(1);
}

TEST(TileImage, RefusesPicturesWithoutPixels) {
    Image image = test::RandomImage({3, 2}, 1);
    EXPECT_FALSE(TileImage(image.View(), {}));
    EXPECT_FALSE(TileImage({}, std::as_const(image).View()));
}

TEST(TileImageCommand, ASmallerCanvasKeepsTheTopLeft) {
    test::CommandRunner runner(test::CoordinateImage({60, 50}));
    ASSERT_TRUE(runner.Run(kTileImageCommand, "2,20,30,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({20, 30})));
}

TEST(TileImageCommand, ExactlyTwiceTheSizeSucceeds) {
    test::CommandRunner runner(test::CoordinateImage({30, 20}));
    ASSERT_TRUE(runner.Run(kTileImageCommand, "2,60,40,"));
    ExpectTiled(runner.Main(), test::CoordinateImage({30, 20}), {60, 40});
    EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("60x40"));
}

TEST(TileImageCommand, KeepsTheColourDepth) {
    test::CommandRunner runner(test::CoordinateImage({30, 20}));
    runner.view.working.imageBits = 1;
    ASSERT_TRUE(runner.Run(kTileImageCommand, "2,60,40,"));
    EXPECT_EQ(runner.view.working.imageBits, 1);
}

TEST(TileImageCommand, MemoryFailureLeavesThePictureAlone) {
    test::CommandRunner runner(test::CoordinateImage({30, 20}));
    const test::ScopedMemoryBudget budget(10000);
    EXPECT_FALSE(runner.Run(kTileImageCommand, "2,20000,20000,"));
    EXPECT_FALSE(runner.Run(kTileImageCommand, "2,0,-5,"));
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Tile: memory failure  IS_error "),
                                             StartsWith("Tile: memory failure  IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({30, 20})));
}

TEST(TileImageCommand, PreviewFitsIntoThePlaceOfTheSample) {
    const Image before = test::RandomImage({40, 30}, 1);
    const auto preview = [&](const char* params) {
        return kTileImageCommand.preview(before.View(), {400, 300}, script::ParseParams(params));
    };
    ExpectTiled(preview("2,200,100,"), before, {20, 10});  // as reduced as the sample
    EXPECT_EQ(preview("2,8000,3000,").Extent(), (Size{40, 15}));
    EXPECT_TRUE(preview("2,0,3000,").IsEmpty());
}

}  // namespace
}  // namespace lumo::ops::overlays
