#include "ops/geometry/crop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using engine::Outcome;
using imaging::Size;
using testing::ElementsAre;
using testing::StartsWith;

constexpr CropParams Evenly(int inset, bool percent, bool fromCentre) {
    return {inset, inset, inset, inset, percent, fromCentre};
}

TEST(CropRect, PixelsFromTheEdges) {
    EXPECT_EQ(CropRect({100, 100}, Evenly(10, false, false)), (CropFrame{10, 10, 90, 90}));
    EXPECT_EQ(CropRect({100, 50}, {1, 2, 30, 4}), (CropFrame{30, 1, 96, 48}));
}

TEST(CropRect, PercentFromTheEdgesIsOfTheSideThatIsCut) {
    EXPECT_EQ(CropRect({640, 480}, {25, 25, 0, 0, true, false}), (CropFrame{0, 120, 640, 360}));
    EXPECT_EQ(CropRect({640, 480}, {0, 0, 25, 10, true, false}), (CropFrame{160, 0, 576, 480}));
    // 33 percent of 101 are 33.33: truncated.
    EXPECT_EQ(CropRect({101, 101}, Evenly(33, true, false)), (CropFrame{33, 33, 68, 68}));
}

TEST(CropRect, PercentFromTheCentreStatesWhatStays) {
    EXPECT_EQ(CropRect({640, 480}, Evenly(50, true, true)), (CropFrame{160, 120, 480, 360}));
    EXPECT_EQ(CropRect({641, 481}, Evenly(50, true, true)), (CropFrame{161, 121, 481, 361}));
    EXPECT_EQ(CropRect({640, 480}, Evenly(100, true, true)), (CropFrame{0, 0, 640, 480}));
}

TEST(CropRect, FromTheCentreTheOddPixelBelongsToTheTopAndTheLeft) {
    EXPECT_EQ(CropRect({21, 31}, Evenly(5, false, true)), (CropFrame{6, 11, 16, 21}));
    EXPECT_EQ(CropRect({20, 30}, Evenly(5, false, true)), (CropFrame{5, 10, 15, 20}));
}

TEST(CropRect, FromTheCentreMoreThanThereIsKeepsThatSideWhole) {
    const auto keep = CropRect({640, 480}, {1000, 100, 320, 320, false, true});
    EXPECT_EQ(keep, (CropFrame{0, 0, 640, 340}));
}

TEST(CropRect, KeepsFiveRowsAndRefusesFour) {
    EXPECT_EQ(CropRect({100, 25}, Evenly(10, false, false)), (CropFrame{10, 10, 90, 15}));
    EXPECT_EQ(CropRect({100, 24}, Evenly(10, false, false)), std::nullopt);
    EXPECT_EQ(CropRect({25, 100}, Evenly(10, false, false)), (CropFrame{10, 10, 15, 90}));
    EXPECT_EQ(CropRect({24, 100}, Evenly(10, false, false)), std::nullopt);
    EXPECT_EQ(CropRect({4, 4}, Evenly(0, false, false)), std::nullopt);
}

TEST(CropRect, PercentIsReckonedIn32Bits) {
    // 65536 * 65536 is 0 in 32 bits; in more it would be far too much.
    EXPECT_EQ(CropRect({65536, 10}, {0, 0, 65536, 0, true, false}), (CropFrame{0, 0, 65536, 10}));
    EXPECT_EQ(CropRect({100, 100}, {-1, 0, 0, 0, true, false}), std::nullopt);
}

TEST(CropRect, ExtremeInsetsStayDefined) {
    constexpr int kLow = -2147483647 - 1, kHigh = 2147483647;
    EXPECT_EQ(CropRect({100, 100}, {kHigh, kHigh, kHigh, kHigh}), std::nullopt);
    EXPECT_EQ(CropRect({100, 100}, {kLow, 0, 0, kLow}),
              (CropFrame{0, -2147483648LL, 100 + 2147483648LL, 100}));
    EXPECT_EQ(CropRect({100, 100}, {kLow, kLow, kLow, kLow, false, true}), std::nullopt);
}

TEST(CropCommand, KeepsThePixelsInsideByteForByte) {
    test::CommandRunner runner(test::CoordinateImage({200, 150}));  // pixel (x, y) is x, y, 7
    ASSERT_TRUE(runner.Run(kCropCommand, "6,1,2,30,4,0,0,"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({166, 147}, {30, 1})));
}

TEST(CropCommand, TooLittleLeftFailsWithoutAWord) {
    test::CommandRunner runner(test::CoordinateImage({100, 24}));
    EXPECT_EQ(runner.Execute(kCropCommand, "6,10,10,10,10,0,0,"), Outcome::Failed);
    EXPECT_TRUE(runner.messages.empty());
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({100, 24})));
}

TEST(CropCommand, ARectangleBeyondThePictureLeavesABlackOneOfThatSize) {
    test::CommandRunner runner(test::CoordinateImage({100, 100}));
    runner.view.working.imageBits = 8;
    EXPECT_EQ(runner.Execute(kCropCommand, "6,-10,0,0,0,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages,
                ElementsAre("Cmd_23 Crop L14588:   IS_error the rectangle to crop is not inside of "
                            "the picture"));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::FlatImage({100, 110}, {})));
    EXPECT_EQ(runner.view.working.imageBits, 8);
}

TEST(CropCommand, ASideThatNoPictureHasIsAMemoryFailure) {
    for (const char* params : {"6,-2147483648,0,0,0,0,0,", "6,0,0,-2147483648,-2147483648,0,0,",
                               "6,-30000,-30000,-30000,-30000,0,0,"}) {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + (std::size_t{1} << 30));
        test::CommandRunner runner(test::CoordinateImage({100, 100}));
        EXPECT_EQ(runner.Execute(kCropCommand, params), Outcome::Failed);
        EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_23 Crop: memory failure")));
        EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({100, 100})));
    }
}

TEST(CropCommand, InsetsThatCancelBeyondIntAreRefused) {
    test::CommandRunner runner(test::CoordinateImage({100, 100}));
    EXPECT_EQ(runner.Execute(kCropCommand, "6,0,0,2147483647,-2147483648,0,0,"), Outcome::Failed);
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_23 Crop L14588: ")));
    EXPECT_EQ(runner.Main().Extent(), (Size{101, 100}));
}

TEST(CropCommand, PanelTellsOriginUnitsAndSides) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kCropCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("6,1,2,3,4,1,0,"),
              "crop from edges\ncrop by percent\nTop = 1\nBottom = 2\nLeft = 3\nRight = 4\n");
    EXPECT_EQ(panel("6,1,2,3,4,0,1,"),
              "crop from center\ncrop by pixels\nTop = 1\nBottom = 2\nLeft = 3\nRight = 4\n");
    EXPECT_EQ(panel("6,1,2,3,4,7,x,"),
              "crop from edges\ncrop by pixels\nTop = 1\nBottom = 2\nLeft = 3\nRight = 4\n");
}

TEST(CropCommand, DialogNarrowsPercentAndFollowsTheTop) {
    const auto& spec = kCropCommand.spec;
    for (int side = 0; side < 4; ++side) {
        EXPECT_EQ(spec.fields[side].high, 10000);
        EXPECT_EQ(spec.fields[side].whenField, 4);
        EXPECT_EQ(spec.fields[side].whenHigh, 100);
    }
    EXPECT_EQ(spec.dialog->follow.label, "Symmetric");
    EXPECT_EQ(spec.dialog->follow.leader, 0);
    EXPECT_THAT(spec.dialog->follow.followers, ElementsAre(1, 2, 3));
}

TEST(CropCommand, PreviewMarksTheCutAtItsOwnScale) {
    const imaging::Image before = test::FlatImage({40, 20}, {100, 100, 100});
    const auto shown =
        kCropCommand.preview(before.View(), {400, 200}, script::ParseParams("6,50,20,100,40,0,0,"));
    ASSERT_EQ(shown.Extent(), (Size{40, 20}));
    EXPECT_EQ(shown.View().Pixel(0, 0), (imaging::Rgb{50, 50, 50}));       // goes
    EXPECT_EQ(shown.View().Pixel(10, 5), (imaging::Rgb{155, 155, 155}));   // first that stays
    EXPECT_EQ(shown.View().Pixel(35, 17), (imaging::Rgb{155, 155, 155}));  // last that stays
    EXPECT_EQ(shown.View().Pixel(36, 17), (imaging::Rgb{50, 50, 50}));
    EXPECT_EQ(shown.View().Pixel(20, 10), (imaging::Rgb{100, 100, 100}));
}

}  // namespace
}  // namespace lumo::ops::geometry
