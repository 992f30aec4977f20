#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/decoder_checks.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using test::WmfBuilder;
using testing::HasSubstr;

constexpr Rgb kRed{255, 0, 0}, kWhite{255, 255, 255};

Size SizeOf(const Bytes& file, const DecodeOptions& options = {}) {
    const auto decoded = DecodeWmf(file, options);
    EXPECT_TRUE(decoded) << decoded.Message();
    return decoded ? decoded->image.Extent() : Size{};
}

std::string ReasonOf(const Bytes& file, const DecodeOptions& options = {}) {
    const auto decoded = DecodeWmf(file, options);
    return decoded ? "no reason" : decoded.Message();
}

TEST(WmfSize, BoxOverUnitsPerInchTimes96) {
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(0, 0, 100, 50, 96).File()), (Size{100, 50}));
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(-100, 20, 1340, 740, 1440).File()), (Size{96, 48}));
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(0, 0, 1, 1, 1000).File()), (Size{1, 1}));
}

TEST(WmfSize, MirroredBoxHasTheSameSize) {
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(0, 50, 100, 0, 96).File()), (Size{100, 50}));
}

TEST(WmfSize, WithoutBoxTheWindowFitsTheHint) {
    const Bytes wide = WmfBuilder().Window(7, 9, 2000, 500).File();
    EXPECT_EQ(SizeOf(wide), (Size{400, 100}));
    EXPECT_EQ(SizeOf(wide, {.metafileHint = {100, 100}}), (Size{100, 25}));
    EXPECT_EQ(SizeOf(WmfBuilder().Window(0, 0, 30, -60).File()), (Size{200, 400}));
    EXPECT_EQ(SizeOf(WmfBuilder().Window(0, 0, 30000, 1).File()), (Size{400, 1}));
}

TEST(WmfSize, TheFirstWindowCounts) {
    const Bytes file = WmfBuilder().Window(0, 0, 100, 50).Window(0, 0, 50, 100).File();
    EXPECT_EQ(SizeOf(file), (Size{400, 200}));
}

TEST(WmfSize, ABoxWithoutUnitsOrExtentIsNone) {
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(0, 0, 100, 50, 0).Window(0, 0, 1, 1).File()),
              (Size{400, 400}));
    EXPECT_EQ(SizeOf(WmfBuilder().Placeable(5, 0, 5, 50, 96).Window(0, 0, 2, 1).File()),
              (Size{400, 200}));
}

TEST(WmfSize, WithoutBoxAndWindowTheDrawingFillsTheHint) {
    const Bytes file = WmfBuilder().Brush(0, 0x0000FF).Fill(-50, 10, 50, 60).File();
    const auto decoded = DecodeWmf(file, {});
    ASSERT_TRUE(decoded) << decoded.Message();
    EXPECT_TRUE(test::SamePixels(decoded->image, test::FlatImage({400, 200}, kRed)));
}

TEST(WmfSize, NothingToDrawAndNoSizeIsRefused) {
    EXPECT_EQ(ReasonOf(WmfBuilder().File()), "the metafile states no size and draws nothing");
}

TEST(WmfSize, LimitsAreObeyed) {
    const Bytes large = WmfBuilder().Placeable(0, 0, 30000, 30000, 1).File();
    EXPECT_THAT(ReasonOf(large), HasSubstr("larger than allowed"));
    const Bytes small = WmfBuilder().Placeable(0, 0, 100, 100, 96).File();
    EXPECT_THAT(ReasonOf(small, {.limits = {.maxSide = 99}}), HasSubstr("larger than allowed"));
    EXPECT_THAT(ReasonOf(small, {.limits = {.maxMemory = 50'000}}), HasSubstr("more memory"));
    EXPECT_THAT(ReasonOf(WmfBuilder().Placeable(0, 0, 32767, 1, 95).File()),
                HasSubstr("larger than 32767"));
}

TEST(WmfSize, AMemoryBudgetThatIsSpentIsAReason) {
    const Bytes file = WmfBuilder().Placeable(0, 0, 100, 100).File();
    const test::ScopedMemoryBudget budget(10'000);
    EXPECT_EQ(ReasonOf(file), "not enough memory");
}

TEST(WmfSize, TheGroundIsWhite) {
    const auto decoded = DecodeWmf(WmfBuilder().Placeable(0, 0, 9, 5).File(), {});
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(test::SamePixels(decoded->image, test::FlatImage({9, 5}, kWhite)));
    EXPECT_EQ(decoded->warning, "");
}

TEST(WmfHeader, TellsTheFormsApart) {
    EXPECT_EQ(DecodeWmf(WmfBuilder().Placeable(0, 0, 9, 5).File(), {})->format, Format::Apm);
    EXPECT_EQ(DecodeWmf(WmfBuilder().Window(0, 0, 9, 5).File(), {})->format, Format::Wmf);
}

TEST(WmfHeader, OtherFilesAreRefused) {
    for (const Bytes& file : {Bytes{}, Bytes{1, 0, 9, 0}, Bytes(100, 0xFF)})
        EXPECT_EQ(ReasonOf(file), "not a Windows metafile");
    Bytes wrong = WmfBuilder().Placeable(0, 0, 9, 5).File();
    wrong[22] = 3;
    EXPECT_EQ(ReasonOf(wrong), "not a Windows metafile");
}

TEST(WmfRecords, WhatFollowsTheLastOneIsIgnored) {
    Bytes file = WmfBuilder().Placeable(0, 0, 9, 5).File();
    const Bytes more =
        test::ByteList().U32(7).U16(0x041B).Words({5, 9, 0, 0}).bytes;  // a rectangle
    file.insert(file.end(), more.begin(), more.end());
    EXPECT_EQ(test::CountOf(DecodeWmf(file, {})->image.View(), kWhite), 45);
}

TEST(WmfRecords, ACutFileGivesItsPictureAndAWarning) {
    const Bytes file =
        WmfBuilder().Placeable(0, 0, 9, 5).Brush(0, 0x0000FF).Fill(0, 0, 9, 5).File(true);
    const auto decoded = DecodeWmf(file, {});
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->warning, "the metafile is cut short");
    EXPECT_EQ(test::CountOf(decoded->image.View(), kRed), 45);
}

TEST(WmfRecords, ALengthThatMakesNoSenseEndsTheFile) {
    for (const std::uint32_t words : {0U, 2U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Bytes file = WmfBuilder().Placeable(0, 0, 9, 5).File(true);
        const Bytes bad = test::ByteList().U32(words).U16(0x041B).Longs({0, 0}).bytes;
        file.insert(file.end(), bad.begin(), bad.end());
        const auto decoded = DecodeWmf(file, {});
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->warning, "the metafile is cut short");
    }
}

TEST(WmfRecords, UnknownOnesAreSkipped) {
    const Bytes file = WmfBuilder()
                           .Placeable(0, 0, 9, 5)
                           .Record(0x0FFF, {1, 2, 3})
                           .Record(0x0626, {15, 4, 1, 2})
                           .Brush(0, 0x0000FF)
                           .Fill(0, 0, 9, 5)
                           .File();
    EXPECT_EQ(test::CountOf(DecodeWmf(file, {})->image.View(), kRed), 45);
}

TEST(WmfRecords, TooMuchDrawingStopsWithAWarning) {
    WmfBuilder builder;
    builder.Placeable(0, 0, 300, 300).Font(0, -150);
    for (int i = 0; i < 100; ++i) builder.TextOut(0, 0, std::string(15'000, 'x'));
    builder.Brush(1, 0x0000FF).Fill(0, 0, 300, 300);
    const auto decoded = DecodeWmf(builder.File(), {});
    ASSERT_TRUE(decoded);
    EXPECT_THAT(decoded->warning, HasSubstr("too much drawing"));
    EXPECT_EQ(test::CountOf(decoded->image.View(), kRed), 0);
}

}  // namespace
}  // namespace lumo::imaging::codecs
