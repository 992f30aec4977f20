#include "imaging/codecs/metafile/dib.h"

#include <gtest/gtest.h>

#include "support/metafile_builder.h"

namespace lumo::imaging::codecs::metafile {
namespace {

using test::Dib;

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF;
constexpr std::uint32_t kBlack = 0xFF000000, kWhite = 0xFFFFFFFF;
using Pixels = std::vector<std::uint32_t>;

Pixels Decode(const Bytes& dib, ColourTable table = ColourTable::Rgb,
              std::span<const Rgb> palette = {}) {
    const auto bitmap = DecodePackedDib(dib, table, palette, {});
    return bitmap ? bitmap->pixels : Pixels{};
}

TEST(Dib, RowsOfOneBitRunFromTheBottomAndTheHighBit) {
    const Bytes dib = Dib(3, 2, 1, {0x000000, 0xFF0000}, {0x20, 0, 0, 0, 0xC0, 0, 0, 0});
    EXPECT_EQ(Decode(dib), (Pixels{kRed, kRed, kBlack, kBlack, kBlack, kRed}));
}

TEST(Dib, NegativeHeightMeansRowsFromTheTop) {
    const Bytes dib = Dib(1, -2, 1, {0x000000, 0xFFFFFF}, {0x80, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(Decode(dib), (Pixels{kWhite, kBlack}));
}

TEST(Dib, FourAndEightBitsIndexTheTable) {
    EXPECT_EQ(Decode(Dib(3, 1, 4, {0, 0xFF0000, 0x00FF00}, {0x12, 0x00, 0, 0})),
              (Pixels{kRed, kGreen, kBlack}));
    EXPECT_EQ(Decode(Dib(2, 1, 8, {0x0000FF, 0xFF0000}, {1, 0, 0, 0})), (Pixels{kRed, kBlue}));
}

TEST(Dib, IndexBeyondTheTableIsBlack) {
    EXPECT_EQ(Decode(Dib(2, 1, 8, {0xFFFFFF}, {0, 200, 0, 0})), (Pixels{kWhite, kBlack}));
}

TEST(Dib, SixteenBitsAreFiveEachUnlessMasksSayOtherwise) {
    EXPECT_EQ(Decode(Dib(2, 1, 16, {}, {0x00, 0x7C, 0x1F, 0x00})), (Pixels{kRed, kBlue}));
    Bytes masks = Dib(2, 1, 16, {}, {}, 3);
    const auto rest = test::ByteList().Longs({0xF800, 0x07E0, 0x001F}).Words({0xF800, 0x07E0});
    masks.insert(masks.end(), rest.bytes.begin(), rest.bytes.end());
    EXPECT_EQ(Decode(masks), (Pixels{kRed, kGreen}));
}

TEST(Dib, FiveBitsSpreadOverAByteWithRounding) {
    EXPECT_EQ(Decode(Dib(1, 1, 16, {}, {0x10, 0x42, 0, 0})), (Pixels{0xFF848484}));  // 16 of 31
}

TEST(Dib, TwentyFourAndThirtyTwoBitsStandBlueFirst) {
    EXPECT_EQ(Decode(Dib(1, 1, 24, {}, {1, 2, 3, 0})), (Pixels{0xFF030201}));
    EXPECT_EQ(Decode(Dib(1, 1, 32, {}, {1, 2, 3, 0x80})), (Pixels{0x80030201}));
}

TEST(Dib, OldHeaderHasThreeBytesAnEntry) {
    const auto dib = test::ByteList()
                         .U32(12)
                         .Words({2, 1, 1, 1})
                         .Text(std::string_view("\0\0\0\0\0\xFF\x40\0\0\0", 10));
    EXPECT_EQ(Decode(dib.bytes), (Pixels{kBlack, kRed}));
}

TEST(Dib, TableOfIndicesReadsThePalette) {
    const std::vector<Rgb> palette = {{1, 1, 1}, {255, 0, 0}};
    auto dib = test::ByteList().Longs({40, 2, 1}).Words({1, 8}).Longs({0, 0, 0, 0, 2, 0});
    dib.Words({1, 0}).Text(std::string_view("\0\1\0\0", 4));
    EXPECT_EQ(Decode(dib.bytes, ColourTable::Palette, palette), (Pixels{kRed, 0xFF010101}));
}

TEST(Dib, EightBitRunsShiftAndEnd) {
    // 2 x red; end of row; one right and none up; three single ones, padded; end.
    const Bytes rows = {2, 1, 0, 0, 0, 2, 1, 0, 0, 3, 2, 1, 2, 0, 0, 1};
    const Bytes dib = Dib(4, 2, 8, {0x0000FF, 0xFF0000, 0x00FF00}, rows, 1);
    EXPECT_EQ(Decode(dib), (Pixels{kBlue, kGreen, kRed, kGreen, kRed, kRed, kBlue, kBlue}));
}

TEST(Dib, FourBitRunsAlternateBetweenTwoColours) {
    const Bytes dib = Dib(5, 1, 4, {0, 0xFF0000, 0x00FF00}, {3, 0x12, 2, 0x22, 0, 1}, 2);
    EXPECT_EQ(Decode(dib), (Pixels{kRed, kGreen, kRed, kGreen, kGreen}));
}

TEST(Dib, RunsThatLeaveThePictureAreCut) {
    const Bytes dib = Dib(2, 1, 8, {0, 0xFF0000}, {255, 1, 0, 0, 9, 1, 0, 1}, 1);
    EXPECT_EQ(Decode(dib), (Pixels{kRed, kRed}));
}

TEST(Dib, MissingRowsAreWhiteUntilTooManyMiss) {
    EXPECT_EQ(Decode(Dib(1, 2, 24, {}, {0, 0, 255, 0})), (Pixels{kWhite, kRed}));
    EXPECT_TRUE(Decode(Dib(1, 100, 24, {}, {0, 0, 255, 0})).empty());
}

TEST(Dib, RefusesHeadersOfNoBitmap) {
    const Bytes row(64, 0);
    EXPECT_TRUE(Decode({}).empty());
    EXPECT_TRUE(Decode(Dib(0, 1, 24, {}, row)).empty());
    EXPECT_TRUE(Decode(Dib(-1, 1, 24, {}, row)).empty());
    EXPECT_TRUE(Decode(Dib(1, INT32_MIN, 24, {}, row)).empty());
    EXPECT_TRUE(Decode(Dib(1, 1, 7, {}, row)).empty());
    EXPECT_TRUE(Decode(Dib(1, 1, 24, {}, row, 9)).empty());
    EXPECT_TRUE(Decode(Dib(1, 1, 24, {}, row, 1)).empty()) << "runs of 24 bits";
    EXPECT_TRUE(Decode(Dib(60000, 60000, 8, {0}, row, 1)).empty()) << "a few runs for gigabytes";
    EXPECT_TRUE(Decode(Bytes{40, 0, 0, 0, 1, 0}).empty());
}

TEST(Dib, ObeysTheLimits) {
    const Bytes dib = Dib(2, 2, 8, {0}, Bytes(8, 0));
    EXPECT_TRUE(DecodePackedDib(dib, ColourTable::Rgb, {}, {.limits = {.maxPixels = 4}}));
    EXPECT_FALSE(DecodePackedDib(dib, ColourTable::Rgb, {}, {.limits = {.maxPixels = 3}}));
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile
