#include "ops/overlays/grid.h"

#include <gtest/gtest.h>

#include <random>

#include "ops/overlays/overlay_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

using imaging::Image;
using imaging::ImageView;
using imaging::Rgb;
using imaging::Size;

void PlainGrid(ImageView image, int columns, int rows, int thickness, Rgb colour) {
    const int cw = image.Width() / columns, ch = image.Height() / rows;
    if (cw < 3 || ch < 3) return;
    if (thickness > cw - 4) thickness = 1;
    if (thickness > ch - 4) thickness = 1;
    for (int c = 1; c < columns; ++c)
        for (int y = 0; y < image.Height(); ++y) {
            const int x = c * image.Width() / columns;
            image.SetPixel(x, y, colour);
            for (int more = 1; more < 4; ++more)
                if (thickness > more) image.SetPixel(x + more, y, colour);
        }
    for (int r = 1; r < rows; ++r)
        for (int x = 0; x < image.Width(); ++x) {
            const int y = r * image.Height() / rows;
            image.SetPixel(x, y, colour);
            for (int more = 1; more < 4; ++more)
                if (thickness > more) image.SetPixel(x, y + more, colour);
        }
}

TEST(DrawGrid, DrawsAsThePlainLoop) {
    std::mt19937 random(5);
    const auto upTo = [&](int most) { return static_cast<int>(random() % (most + 1)); };
    for (int i = 0; i < 500; ++i) {
        const Size size{1 + upTo(60), 1 + upTo(60)};
        const GridParams params{1 + upTo(12), 1 + upTo(12), upTo(8) - 1, {1, 2, 3}};
        Image actual = test::RandomImage(size, 1), expected = test::RandomImage(size, 1);
        DrawGrid(actual.View(), params);
        PlainGrid(expected.View(), params.columns, params.rows, params.thickness, {1, 2, 3});
        ASSERT_TRUE(test::SamePixels(actual, expected))
            << params.columns << " " << params.rows << " " << params.thickness;
    }
}

TEST(GridCommand, DrawsLinesBetweenCells) {
    test::CommandRunner runner(test::FlatImage({30, 20}, {9, 9, 9}));
    ASSERT_TRUE(runner.Run(kGridCommand, "6,3,2,2,257,2,3,"));  // of 257 the low 8 bits
    const auto pixel = [&](int x, int y) { return runner.Main().View().Pixel(x, y); };
    EXPECT_EQ(pixel(9, 0), (Rgb{9, 9, 9}));
    EXPECT_EQ(pixel(10, 0), (Rgb{1, 2, 3}));
    EXPECT_EQ(pixel(11, 0), (Rgb{1, 2, 3}));
    EXPECT_EQ(pixel(12, 0), (Rgb{9, 9, 9}));
    EXPECT_EQ(pixel(20, 19), (Rgb{1, 2, 3}));
    EXPECT_EQ(pixel(0, 10), (Rgb{1, 2, 3}));
    EXPECT_EQ(pixel(0, 11), (Rgb{1, 2, 3}));
    EXPECT_EQ(pixel(0, 12), (Rgb{9, 9, 9}));
    EXPECT_EQ(pixel(0, 0), (Rgb{9, 9, 9}));
    EXPECT_EQ(pixel(29, 19), (Rgb{9, 9, 9}));
}

TEST(GridCommand, OneCellDrawsNothingButMakesThePictureFullColour) {
    test::CommandRunner runner(test::CoordinateImage({30, 20}));
    runner.view.working.imageBits = 8;
    runner.view.working.imageBitsForced = 1;
    runner.view.working.grey = true;
    ASSERT_TRUE(runner.Run(kGridCommand, "6,1,1,1,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({30, 20})));
    EXPECT_EQ(runner.view.working.imageBits, 24);
    EXPECT_EQ(runner.view.working.imageBitsForced, 0);
    EXPECT_FALSE(runner.view.working.grey);
}

TEST(GridCommand, APictureTooSmallForItsCellsStaysAsItIs) {
    test::CommandRunner runner(test::CoordinateImage({29, 40}));
    runner.view.working.imageBits = 8;
    EXPECT_TRUE(runner.Run(kGridCommand, "6,10,10,1,1,2,3,"));
    EXPECT_TRUE(runner.Run(kGridCommand, "6,2,14,1,1,2,3,"));
    EXPECT_TRUE(runner.Run(kGridCommand, "6,-2,2,1,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({29, 40})));
    EXPECT_EQ(runner.view.working.imageBits, 8);
}

TEST(GridCommand, RefusesZeroCells) {
    test::CommandRunner runner(test::CoordinateImage({29, 40}));
    EXPECT_FALSE(runner.Run(kGridCommand, "6,0,10,1,1,2,3,"));
    EXPECT_FALSE(runner.Run(kGridCommand, "6,10,0,1,1,2,3,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({29, 40})));
}

TEST(GridCommand, AsksTheSkipTestInARunToo) {
    test::CommandRunner runner(test::CoordinateImage({30, 30}));
    runner.view.test.ifFlag = 0;
    EXPECT_EQ(runner.ExecuteInRun(kGridCommand, "6,3,3,1,1,2,3,"), engine::Outcome::Succeeded);
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({30, 30})));
    EXPECT_EQ(runner.view.run.pc, 1);
    // Its neighbours do not.
    EXPECT_EQ(runner.ExecuteInRun(kMosaicCommand, "3,30,30,0,"), engine::Outcome::Succeeded);
    EXPECT_FALSE(test::SamePixels(runner.Main(), test::CoordinateImage({30, 30})));
}

TEST(GridCommand, PanelTellsEveryField) {
    EXPECT_EQ(script::PanelText(kGridCommand.spec, script::ParseParams("6,10,11,1,2,3,4,")),
              "Columns in grid: 10\nRows in grid: 11\nLink thickness (pixels): 1\n"
              "Grid color: 2: 3: 4\n");
}

}  // namespace
}  // namespace lumo::ops::overlays
