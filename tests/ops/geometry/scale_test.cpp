#include "ops/geometry/scale.h"

#include <gmock/gmock.h>

#include "engine/command_table.h"
#include "imaging/resample.h"
#include "ops/geometry/sizing_algorithm.h"
#include "script/catalogue.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using imaging::ResampleFilter, imaging::Size;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr Size kWide{640, 480};
constexpr Size kTall{480, 640};

TEST(ScaledSize, WidthGiven) {
    EXPECT_EQ(ScaledSize(kWide, {.width = 128, .height = 96}), (Size{128, 96}));
    EXPECT_EQ(ScaledSize(kTall, {.width = 128, .height = 96}), (Size{128, 170}));
}

TEST(ScaledSize, HeightGiven) {
    const ScaleParams params{.width = 1, .height = 100, .given = GivenSide::Height};
    EXPECT_EQ(ScaledSize(kWide, params), (Size{133, 100}));
    EXPECT_EQ(ScaledSize(kTall, params), (Size{75, 100}));
}

TEST(ScaledSize, BestFitTouchesOneSideAndFitsTheOther) {
    const auto fit = [](Size size, int a, int b) {
        return ScaledSize(size, {.width = a, .height = b, .given = GivenSide::Both});
    };
    EXPECT_EQ(fit(kWide, 100, 50), (Size{66, 50}));
    EXPECT_EQ(fit(kWide, 100, 75), (Size{100, 75}));
    EXPECT_EQ(fit(kWide, 100, 90), (Size{100, 75}));
}

TEST(ScaledSize, Relative) {
    const auto relative = [](bool keep, int a, int b, GivenSide given = GivenSide::Width) {
        return ScaledSize(kWide, {keep, ScaleMethod::Relative, a, b, given});
    };
    EXPECT_EQ(relative(true, -100, 7), (Size{540, 405}));
    EXPECT_EQ(relative(true, 7, 30, GivenSide::Height), (Size{680, 510}));
    EXPECT_EQ(relative(true, -100, 7, GivenSide::Both), (Size{540, 405}));
    EXPECT_EQ(relative(false, -100, 7), (Size{540, 487}));
    EXPECT_EQ(relative(false, -700, 0), (Size{-60, 480}));
}

TEST(ScaledSize, Percentage) {
    const auto percent = [](bool keep, int a, int b, GivenSide given = GivenSide::Width) {
        return ScaledSize({641, 479}, {keep, ScaleMethod::Percentage, a, b, given});
    };
    EXPECT_EQ(percent(true, 50, 10), (Size{320, 239}));
    EXPECT_EQ(percent(true, 10, 50, GivenSide::Height), (Size{320, 239}));
    EXPECT_EQ(percent(true, 50, 10, GivenSide::Both), (Size{320, 239}));
    EXPECT_EQ(percent(false, 50, 10), (Size{320, 47}));
}

TEST(ScaledSize, NothingIsLeftAtNegativePercent) {
    EXPECT_EQ(ScaledSize({10, 8}, {false, ScaleMethod::Percentage, -50, 100}), (Size{0, 8}));
    EXPECT_EQ(ScaledSize({10, 8}, {true, ScaleMethod::Percentage, INT32_MIN, 0}), (Size{0, 0}));
}

TEST(ScaledSize, PercentOfUnsigned32Bits) {
    // 65500 * 50000 lies between 2^31 and 2^32, 65500 * 70000 beyond.
    EXPECT_EQ(ScaledSize({65500, 4}, {true, ScaleMethod::Percentage, 50'000}).width, 32'750'000);
    EXPECT_EQ(ScaledSize({65500, 4}, {true, ScaleMethod::Percentage, 70'000}).width, 2'900'327);
}

TEST(ScaledSize, IsDefinedForAnyNumber) {
    for (const int a : {INT32_MIN, -1, 0, 1, INT32_MAX})
        for (const int b : {INT32_MIN, -1, 0, 1, INT32_MAX})
            for (const auto method :
                 {ScaleMethod::Absolute, ScaleMethod::Relative, ScaleMethod::Percentage})
                for (const auto given : {GivenSide::Width, GivenSide::Height, GivenSide::Both})
                    for (const bool keep : {false, true})
                        (void)ScaledSize({65500, 1}, {keep, method, a, b, given});
}

TEST(SizingCode, TheTwoCommandsHaveTheirOwnNumbers) {
    struct Row {
        std::string_view text;
        int scale, sizeAndCrop;
    };
    for (const Row& row : {Row{"0", 16, 0}, Row{"1", 18, 1}, Row{"2", 16, 0}, Row{"3", 17, 3},
                           Row{"4", 14, 4}, Row{"13", 8, 8}, Row{"16", 11, 11}, Row{"18", 13, 13},
                           Row{"", 16, 0}, Row{"99", 16, 0}, Row{"3.0", 16, 0}}) {
        EXPECT_EQ(SizingCode(SizingTable::Scale, row.text, {9, 9}, {9, 9}), row.scale) << row.text;
        EXPECT_EQ(SizingCode(SizingTable::SizeAndCrop, row.text, {9, 9}, {9, 9}), row.sizeAndCrop);
    }
}

TEST(SizingCode, DecimationFallsBackWhereASideGrows) {
    EXPECT_EQ(SizingCode(SizingTable::Scale, "4", {10, 10}, {11, 5}), 16);
    EXPECT_EQ(SizingCode(SizingTable::Scale, "4", {10, 10}, {5, 11}), 16);
    EXPECT_EQ(SizingCode(SizingTable::Scale, "4", {10, 10}, {10, 10}), 14);
    EXPECT_EQ(SizingCode(SizingTable::SizeAndCrop, "4", {10, 10}, {11, 5}), 0);
    EXPECT_EQ(SizingCode(SizingTable::Scale, "13", {10, 10}, {11, 11}), 8);
}

imaging::Image Resized(const imaging::Image& source, Size size, ResampleFilter filter) {
    auto target = imaging::Image::TryCreate(size);
    EXPECT_TRUE(imaging::ResizeImage(source.View(), target->View(), filter));
    return std::move(*target);
}

TEST(ScaleCommand, ResamplesWithTheChosenFilter) {
    const imaging::Image source = test::RandomImage({64, 48}, 1);
    const std::pair<const char*, ResampleFilter> filters[] = {
        {"0", ResampleFilter::Bilinear}, {"1", ResampleFilter::Nearest},
        {"2", ResampleFilter::Bilinear}, {"3", ResampleFilter::Bicubic},
        {"4", ResampleFilter::Box},      {"13", ResampleFilter::Lanczos3},
        {"16", ResampleFilter::Hermite}, {"18", ResampleFilter::CatmullRom}};
    for (const auto& [code, filter] : filters) {
        test::CommandRunner runner(test::Copy(source.View()));
        runner.view.working.imageBits = 8;
        ASSERT_TRUE(runner.Run(kScaleCommand, "6,1,0,32,0," + std::string(code) + ",0,"));
        EXPECT_TRUE(test::SamePixels(runner.Main(), Resized(source, {32, 24}, filter))) << code;
        EXPECT_EQ(runner.view.working.imageBits, 8);  // the tag stays
        EXPECT_THAT(runner.ui.sizeTexts, ElementsAre("32x24"));
    }
}

TEST(ScaleCommand, TheSameSizeKeepsTheVeryBlock) {
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    const auto* before = runner.Main().View().Row(0);
    EXPECT_TRUE(runner.Run(kScaleCommand, "6,0,0,64,48,3,0,"));
    EXPECT_EQ(runner.Main().View().Row(0), before);
}

TEST(ScaleCommand, RefusesSidesBelowFourInSilence) {
    for (const char* params : {"6,0,0,3,40,3,0,", "6,0,0,40,3,3,0,", "6,0,1,-100,0,3,0,",
                               "6,0,0,-5,40,3,0,", "6,0,0,,,3,0,", ""}) {
        test::CommandRunner runner(test::CoordinateImage({64, 48}));
        EXPECT_FALSE(runner.Run(kScaleCommand, params)) << params;
        EXPECT_THAT(runner.messages, IsEmpty());
        EXPECT_EQ(runner.Main().Extent(), (Size{64, 48}));
    }
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    EXPECT_TRUE(runner.Run(kScaleCommand, "6,0,0,4,4,3,0,"));
}

TEST(ScaleCommand, MemoryFailureLeavesTheImage) {
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + 100'000);
    EXPECT_FALSE(runner.Run(kScaleCommand, "6,0,0,6000,4800,3,0,"));
    EXPECT_THAT(runner.messages,
                ElementsAre(StartsWith("Cmd_69 Scale L15265: memory failure  IS_error ")));
    EXPECT_EQ(runner.Main().Extent(), (Size{64, 48}));
}

// Room for the new picture, but for nothing else.
TEST(ScaleCommand, FailureOfTheResamplingLeavesTheImage) {
    test::CommandRunner runner(test::CoordinateImage({64, 48}));
    constexpr std::size_t kTarget = 128 * 96 * 3;  // whole pages
    static_assert(kTarget % 4096 == 0);
    const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + kTarget);
    EXPECT_FALSE(runner.Run(kScaleCommand, "6,1,0,128,96,3,0,"));
    EXPECT_THAT(runner.messages, ElementsAre(StartsWith("Cmd_69 Scale L15278:   IS_error ")));
    EXPECT_TRUE(test::SamePixels(runner.Main(), test::CoordinateImage({64, 48})));
}

TEST(ScaleCommand, PreviewShowsTheNewSizeBesideTheSample) {
    EXPECT_EQ(ShownSize({320, 240}, kWide, {200, 150}), (Size{100, 75}));
    EXPECT_EQ(ShownSize({1280, 960}, kWide, {200, 150}), (Size{200, 150}));
    EXPECT_EQ(ShownSize({1280, 480}, kWide, {200, 150}), (Size{200, 75}));
    EXPECT_EQ(ShownSize({4, 2000}, kWide, {200, 150}), (Size{1, 150}));
    const imaging::Image before = test::FlatImage({200, 150}, {9, 8, 7});
    const auto preview = [&](std::string_view params) {
        return kScaleCommand.preview(before.View(), kWide, script::ParseParams(params)).Extent();
    };
    EXPECT_EQ(preview("6,1,0,320,0,3,0,"), (Size{100, 75}));
    EXPECT_EQ(preview("6,1,0,1,1,3,0,"), (Size{200, 150}));  // refused: as before
}

TEST(ScaleCommand, PanelTellsTheFields) {
    const auto panel = [](std::string_view params) {
        return script::PanelText(kScaleCommand.spec, script::ParseParams(params));
    };
    EXPECT_EQ(panel("6,1,0,128,96,3,0,"),
              "Aspect ratio maintained\nMethod: Best fit\nWidth: 128\nHeight: auto set\n"
              "Sizing algorithm: Bicubic resample\n");
    EXPECT_EQ(panel("6,0,0,128,96,13,0,"),
              "Size not constrained\nMethod: Absolute size\nWidth: 128\nHeight: 96\n"
              "Sizing algorithm: Lanczos3\n");
    EXPECT_EQ(panel("6,1,1,-10,20,4,1,"),
              "Aspect ratio maintained\nMethod: Relative adjustment\nWidth: auto set\n"
              "Height: +20\nSizing algorithm: Decimate\n");
    EXPECT_EQ(panel("6,0,1,-10,20,2,1,"),
              "Size not constrained\nMethod: Relative adjustment\nWidth: -10\n"
              "Height: +20\nSizing algorithm: Auto select\n");
    EXPECT_EQ(panel("5,1,2,50,20,18,"),  // before there was a sixth field
              "Aspect ratio maintained\nMethod: Percentage\nWidth: 50\nHeight: auto set\n"
              "Sizing algorithm: Catrom\n");
    EXPECT_EQ(panel("6,1,2,50,20,18,2,"),
              "Aspect ratio maintained\nMethod: Percentage\nWidth: 50\nHeight: 20\n"
              "Sizing algorithm: Catrom\n");
}

TEST(ScaleCommand, FactoryStringComesFromTheSchema) {
    EXPECT_EQ(script::FactoryString(kScaleCommand.spec.fields), "6,1,0,128,96,3,0,");
    EXPECT_EQ(script::FactoryString(kScaleCommand.spec.fields),
              script::FactoryParams(kScaleCommand.spec.name));
}

}  // namespace
}  // namespace lumo::ops::geometry
