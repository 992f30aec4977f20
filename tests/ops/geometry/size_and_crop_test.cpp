#include "ops/geometry/size_and_crop.h"

#include <gmock/gmock.h>

#include "imaging/crop.h"
#include "imaging/resample.h"
#include "script/catalogue.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using imaging::Rect, imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

TEST(CutToProportions, CutsTheSidesOfAPictureThatIsTooWide) {
    const auto cut = CutToProportions({640, 480}, {128, 128});
    ASSERT_TRUE(cut);
    EXPECT_TRUE(cut->cutSides);
    EXPECT_EQ(cut->keep, (Rect{80, 0, 560, 480}));
}

TEST(CutToProportions, EqualProportionsKeepAllByTheOtherBranch) {
    const auto cut = CutToProportions({640, 480}, {320, 240});
    ASSERT_TRUE(cut);
    EXPECT_FALSE(cut->cutSides);
    EXPECT_EQ(cut->keep, (Rect{0, 0, 640, 480}));
}

TEST(CutToProportions, AnOddPixelFallsToTheRightOrTheBottom) {
    EXPECT_EQ(CutToProportions({11, 8}, {40, 40})->keep, (Rect{1, 0, 9, 8}));
    EXPECT_EQ(CutToProportions({8, 11}, {40, 40})->keep, (Rect{0, 1, 8, 9}));
}

TEST(CutToProportions, RefusesWhatLeavesNothing) {
    EXPECT_FALSE(CutToProportions({640, 480}, {0, 10}));
    EXPECT_FALSE(CutToProportions({640, 480}, {10, -1}));
    EXPECT_FALSE(CutToProportions({1, 60000}, {1, 65500}));
    EXPECT_FALSE(CutToProportions({5, 60000}, {65500, 1}));
}

TEST(SizeAndCropCommand, CutsThenResamples) {
    const imaging::Image source = test::RandomImage({64, 48}, 2);
    test::CommandRunner runner(test::Copy(source.View()));
    ASSERT_TRUE(runner.Run(kSizeAndCropCommand, "3,24,24,3,"));
    auto cut = imaging::Image::TryCreate({48, 48});
    ASSERT_TRUE(imaging::CropImage(source.View(), {8, 0, 56, 48}, cut->View()));
    auto expected = imaging::Image::TryCreate({24, 24});
    ASSERT_TRUE(
        imaging::ResizeImage(cut->View(), expected->View(), imaging::ResampleFilter::Bicubic));
    EXPECT_TRUE(test::SamePixels(runner.Main(), *expected));
}

TEST(SizeAndCropCommand, ACutToTheTargetIsNotResampled) {
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    ASSERT_TRUE(runner.Run(kSizeAndCropCommand, "3,48,48,3,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({48, 48}, {8, 0})));
}

TEST(SizeAndCropCommand, TheSameSizeChangesNothing) {
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    const auto* before = runner.Main().View().Row(0);
    EXPECT_TRUE(runner.Run(kSizeAndCropCommand, "3,64,48,3,"));
    EXPECT_EQ(runner.Main().View().Row(0), before);
}

TEST(SizeAndCropCommand, AnEmptySizingIsBilinearAndDecimationOnlyShrinks) {
    const imaging::Image source = test::RandomImage({30, 30}, 3);
    const auto run = [&](const std::string& params) {
        test::CommandRunner runner(test::Copy(source.View()));
        EXPECT_TRUE(runner.Run(kSizeAndCropCommand, params));
        return test::Copy(runner.Main().View());
    };
    EXPECT_TRUE(test::SamePixels(run("3,20,20,,"), run("3,20,20,0,")));
    EXPECT_TRUE(test::SamePixels(run("3,40,40,4,"), run("3,40,40,0,")));
    // One side grows: the comparison is made before the cut.
    EXPECT_TRUE(test::SamePixels(run("3,10,31,4,"), run("3,10,31,0,")));
    EXPECT_FALSE(test::SamePixels(run("3,20,20,4,"), run("3,20,20,0,")));
}

TEST(SizeAndCropCommand, TargetsWithoutAreaAreRefused) {
    for (const char* params : {"3,0,20,3,", "3,20,-20,3,", "3,,,,", ""}) {
        test::CommandRunner runner(test::CoordinateImage({64, 48}));
        EXPECT_FALSE(runner.Run(kSizeAndCropCommand, params)) << params;
        EXPECT_EQ(runner.Main().Extent(), (Size{64, 48}));
    }
}

TEST(SizeAndCropCommand, MemoryFailureOfTheCutLeavesTheImage) {
    test::CommandRunner runner(test::CoordinateImage({400, 300}));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 100);
    EXPECT_FALSE(runner.Run(kSizeAndCropCommand, "3,200,200,3,"));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_73 Resize: memory failure  IS_error ")));
    EXPECT_EQ(runner.Main().Extent(), (Size{400, 300}));
}

TEST(SizeAndCropCommand, MemoryFailureOfTheResamplingLeavesTheImageCut) {
    const auto run = [](Size size, const char* text, Size cut) {
        test::CommandRunner runner(test::CoordinateImage(size));
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 2'000'000);
        EXPECT_FALSE(runner.Run(kSizeAndCropCommand, "3,5000,5000,3,"));
        EXPECT_THAT(runner.messages, ElementsAre(StartsWith(text)));
        EXPECT_EQ(runner.Main().Extent(), cut);
    };
    run({400, 300}, "Cmd_73 Resize: memory failure", {300, 300});
    run({300, 400}, "Cmd_73 Resize L13997: memory failure", {300, 300});
}

// Room for the cut beside the source and then for the target beside the cut, but for nothing else.
TEST(SizeAndCropCommand, FailureOfTheResamplingItselfLeavesTheImageCut) {
    const auto run = [](Size size, const char* text) {
        test::CommandRunner runner(test::CoordinateImage(size));
        constexpr std::size_t kSquare = 64 * 64 * 3;  // whole pages, as the target's
        static_assert(kSquare % 4096 == 0 && 128 * 128 * 3 % 4096 == 0);
        const std::size_t source = size.Area() * 3;
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() - source + kSquare +
                                              128 * 128 * 3);
        EXPECT_FALSE(runner.Run(kSizeAndCropCommand, "3,128,128,3,"));
        EXPECT_THAT(runner.messages, ElementsAre(StartsWith(text)));
        EXPECT_EQ(runner.Main().Extent(), (Size{64, 64}));
    };
    run({128, 64}, "Cmd_73 Scale L13945:   IS_error ");
    run({64, 128}, "Cmd_73 Scale L14010:   IS_error ");
}

TEST(SizeAndCropCommand, PreviewMarksTheCutAtItsOwnScale) {
    const imaging::Image before = test::FlatImage({40, 20}, {100, 100, 100});
    const auto shown = [&](std::string_view params) {
        return kSizeAndCropCommand.preview(before.View(), {400, 200}, script::ParseParams(params));
    };
    // 200 of 400 columns stay, from 100 on.
    const imaging::Image sides = shown("3,50,50,3,");
    ASSERT_EQ(sides.Extent(), (Size{40, 20}));
    EXPECT_EQ(sides.View().Pixel(9, 5), (imaging::Rgb{50, 50, 50}));
    EXPECT_EQ(sides.View().Pixel(10, 5), (imaging::Rgb{155, 155, 155}));
    EXPECT_EQ(sides.View().Pixel(20, 5), (imaging::Rgb{100, 100, 100}));
    EXPECT_EQ(sides.View().Pixel(29, 5), (imaging::Rgb{155, 155, 155}));
    EXPECT_EQ(sides.View().Pixel(30, 5), (imaging::Rgb{50, 50, 50}));
    // Of the rows the middle half.
    const imaging::Image rows = shown("3,400,100,3,");
    EXPECT_EQ(rows.View().Pixel(20, 4), (imaging::Rgb{50, 50, 50}));
    EXPECT_EQ(rows.View().Pixel(20, 5), (imaging::Rgb{155, 155, 155}));
    EXPECT_EQ(rows.View().Pixel(20, 14), (imaging::Rgb{155, 155, 155}));
    EXPECT_EQ(rows.View().Pixel(20, 15), (imaging::Rgb{50, 50, 50}));
    EXPECT_TRUE(test::SamePixels(shown("3,0,50,3,"), before));  // refused: as before
}

TEST(SizeAndCropCommand, ARunGivesTheSizeThatTheFieldsName) {
    for (const Size source : {Size{1, 1}, Size{5, 3}, Size{3, 5}, Size{41, 40}, Size{640, 7}})
        for (const Size target : {Size{20, 20}, Size{33, 20}, Size{20, 77}, Size{1, 1}}) {
            test::CommandRunner runner(test::RandomImage(source, 3));
            const bool kept = CutToProportions(source, target).has_value();
            const std::string params =
                "3," + std::to_string(target.width) + "," + std::to_string(target.height) + ",3,";
            EXPECT_EQ(runner.Run(kSizeAndCropCommand, params), kept);
            EXPECT_EQ(runner.Main().Extent(), kept ? target : source);
        }
}

TEST(SizeAndCropCommand, PanelAndFactoryString) {
    EXPECT_EQ(script::PanelText(kSizeAndCropCommand.spec, script::ParseParams("3,128,96,3,")),
              "Converted size (pixels)\nWidth: 128\nHeight: 96\nSizing: Bicubic resample\n");
    EXPECT_EQ(script::FactoryString(kSizeAndCropCommand.spec.fields),
              script::FactoryParams(kSizeAndCropCommand.spec.name));
}

}  // namespace
}  // namespace lumo::ops::geometry
