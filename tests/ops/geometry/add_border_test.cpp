#include "ops/geometry/add_border.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(BandsOf, PercentAreOfTheHeightOnAllSides) {
    EXPECT_EQ(BandsOf({1000, 100}, {10, 10, 10, 10, true}), (Bands{10, 10, 10, 10}));
    EXPECT_EQ(BandsOf({7, 99}, {1, 50, 101, 400, true}), (Bands{0, 49, 99, 396}));
    EXPECT_EQ(BandsOf({1000, 100}, {1, 2, 3, 4}), (Bands{1, 2, 3, 4}));
}

TEST(BandsOf, PercentAreReckonedIn32Bits) {
    // 65536 * 65537 leaves 65536 in 32 bits.
    EXPECT_EQ(BandsOf({1, 65536}, {65537, 0, 0, 0, true}), (Bands{655, 0, 0, 0}));
}

TEST(BandsOf, NegativeBandsAreNone) {
    for (const bool percent : {false, true}) {
        EXPECT_EQ(BandsOf({10, 10}, {-1, 0, 0, 0, percent}), std::nullopt);
        EXPECT_EQ(BandsOf({10, 10}, {0, -1, 0, 0, percent}), std::nullopt);
        EXPECT_EQ(BandsOf({10, 10}, {0, 0, -1, 0, percent}), std::nullopt);
        EXPECT_EQ(BandsOf({10, 10}, {0, 0, 0, -2147483647 - 1, percent}), std::nullopt);
    }
}

TEST(AddBorderCommand, PutsThePictureInsideOfTheBand) {
    for (const Size size : {Size{1, 1}, Size{1, 7}, Size{9, 1}, Size{13, 11}}) {
        test::CommandRunner runner(test::RandomImage(size, 4));
        ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,3,1,2,5,10,20,30,0,"));
        Image expected = test::FlatImage({size.width + 7, size.height + 4}, {10, 20, 30});
        const Image inside = test::RandomImage(size, 4);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                expected.View().SetPixel(x + 2, y + 3, inside.View().Pixel(x, y));
        EXPECT_TRUE(test::SamePixels(runner.Main(), expected));
    }
}

TEST(AddBorderCommand, PercentExample) {
    test::CommandRunner runner(test::CoordinateImage({1000, 100}));
    ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,10,10,10,10,255,255,255,1,"));
    EXPECT_EQ(runner.Main().Extent(), (Size{1020, 120}));
    EXPECT_EQ(runner.Main().View().Pixel(9, 10), (Rgb{255, 255, 255}));
    EXPECT_EQ(runner.Main().View().Pixel(10, 10), (Rgb{0, 0, 7}));
}

TEST(AddBorderCommand, UnitsOtherThanNoughtArePercent) {
    for (const char* params :
         {"8,10,10,10,10,0,0,0,1,", "8,10,10,10,10,0,0,0,x,", "7,10,10,10,10,0,0,0,"}) {
        test::CommandRunner runner(test::CoordinateImage({50, 100}));
        ASSERT_TRUE(runner.Run(kAddBorderCommand, params));
        EXPECT_EQ(runner.Main().Extent(), (Size{70, 120})) << params;
    }
}

TEST(AddBorderCommand, NoBandLeavesThePixelsButClearsTheTag) {
    test::CommandRunner runner(test::RandomImage({13, 11}, 4));
    runner.view.working.grey = true;
    ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,0,0,0,0,1,2,3,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({13, 11}, 4)));
    EXPECT_FALSE(runner.view.working.grey);
}

TEST(AddBorderCommand, ColoursKeepTheirLowEightBits) {
    test::CommandRunner runner(test::RandomImage({3, 3}, 4));
    ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,1,1,1,1,256,-1,511,0,"));
    EXPECT_EQ(runner.Main().View().Pixel(0, 0), (Rgb{0, 255, 255}));
}

TEST(AddBorderCommand, BandsWithoutEndAreAMemoryFailure) {
    for (const char* params :
         {"8,2147483647,2147483647,0,0,0,0,0,0,", "8,40000,40000,40000,40000,0,0,0,0,"}) {
        test::CommandRunner runner(test::RandomImage({30, 30}, 4));
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (std::size_t{1} << 30));
        EXPECT_EQ(runner.Execute(kAddBorderCommand, params), Outcome::Failed);
        EXPECT_THAT(runner.messages,
                    ElementsAre(StartsWith("Cmd_01 Border: memory failure!:  IS_error ")));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({30, 30}, 4)));
    }
}

TEST(AddBorderCommand, CropUndoesIt) {
    for (const Size size : {Size{5, 5}, Size{6, 31}, Size{40, 9}}) {
        test::CommandRunner runner(test::RandomImage(size, 9));
        ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,3,1,2,50,10,20,30,0,"));
        ASSERT_TRUE(runner.Run(kCropCommand, "6,3,1,2,50,0,0,"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage(size, 9)));
    }
}

TEST(AddBorderCommand, TheBorderIsFoundAgain) {
    test::CommandRunner runner(test::RandomImage({40, 30}, 9));
    ASSERT_TRUE(runner.Run(kAddBorderCommand, "8,3,1,2,50,10,20,30,0,"));
    ASSERT_TRUE(runner.Run(kBorderFindAndCropCommand, "5,0,0,0,0,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::RandomImage({40, 30}, 9)));
}

TEST(AddBorderCommand, PanelTellsUnitsBandsAndColour) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kAddBorderCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("8,1,2,3,4,5,6,7,0,"),
              "values in pixels:\nTop = 1\nBottom = 2\nLeft = 3\nRight= 4\n"
              "Color(RGB) = 5: 6: 7\n");
    EXPECT_EQ(panel("8,1,2,3,4,5,6,7,1,"),
              "values as percentage:\nTop = 1\nBottom = 2\nLeft = 3\nRight= 4\n"
              "Color(RGB) = 5: 6: 7\n");
}

TEST(AddBorderCommand, PreviewScalesPixelsButNotPercent) {
    const Image before = test::FlatImage({40, 20}, {100, 100, 100});
    const auto sizeShown = [&](std::string_view params) {
        return kAddBorderCommand.preview(before.View(), {400, 200}, script::ParseParams(params))
            .Extent();
    };
    EXPECT_EQ(sizeShown("8,10,20,30,40,0,0,0,0,"), (Size{47, 23}));
    EXPECT_EQ(sizeShown("8,10,20,30,40,0,0,0,1,"), (Size{54, 26}));
}

}  // namespace
}  // namespace lumo::ops::geometry
