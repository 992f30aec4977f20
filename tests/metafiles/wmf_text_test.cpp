#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using test::ByteList;
using test::CountOf;
using test::InkOf;
using test::WmfBuilder;

constexpr Rgb kGreen{0, 255, 0}, kWhite{255, 255, 255};
constexpr int kUnderline = 2, kStrikeOut = 4;

Image Draw(const WmfBuilder& builder) {
    auto decoded = DecodeWmf(builder.File(), {});
    EXPECT_TRUE(decoded) << decoded.Message();
    return decoded ? std::move(decoded->image) : test::FlatImage({1, 1}, {1, 2, 3});
}

// 200 x 100 pixels, no ground behind letters, a font of the given height as object 0.
WmfBuilder Page(int height = -40, int escapement = 0, int flags = 0) {
    return WmfBuilder()
        .Placeable(0, 0, 200, 100)
        .Record(0x0102, {1})
        .Font(0, height, escapement, "Arial", flags);
}

Rect InkOf(const WmfBuilder& builder) {
    return InkOf(Draw(builder).View());
}

TEST(WmfText, HangsFromItsPoint) {
    const Rect ink = InkOf(Page().TextOut(50, 20, "HH"));
    EXPECT_NEAR(ink.left, 54, 3);
    EXPECT_NEAR(ink.top, 28, 3);     // the cell begins at 20, the letter some way below
    EXPECT_NEAR(ink.bottom, 56, 3);  // the base line
    EXPECT_NEAR(ink.bottom - ink.top, 29, 2);
}

TEST(WmfText, PositiveHeightsAreThoseOfTheCell) {
    const Rect letters = InkOf(Page(-40).TextOut(50, 20, "H"));
    const Rect cell = InkOf(Page(40).TextOut(50, 20, "H"));
    const double ratio =
        static_cast<double>(cell.bottom - cell.top) / (letters.bottom - letters.top);
    EXPECT_NEAR(ratio, 1 / 1.15, 0.05);
}

TEST(WmfText, AlignsToBothSidesAndTheBaseLine) {
    const auto aligned = [](int align) {
        return InkOf(Page().Record(0x012E, {align}).TextOut(100, 50, "HHH"));
    };
    const Rect left = aligned(0), centre = aligned(6), right = aligned(2);
    const int width = left.right - left.left;
    EXPECT_NEAR(right.right, 100, 5);
    EXPECT_NEAR(centre.left, 100 - width / 2, 4);
    EXPECT_EQ(aligned(24).bottom, 50);
    EXPECT_LT(aligned(8).bottom, 45);
    EXPECT_GT(left.top, 50);
}

TEST(WmfText, TurnsCounterClockwise) {
    const Rect up = InkOf(Page(-40, 900).TextOut(50, 90, "HHH"));
    EXPECT_GT(up.bottom - up.top, up.right - up.left);
    EXPECT_LE(up.bottom, 91);
    const Rect turned = InkOf(Page(-40, 1800).Record(0x012E, {24}).TextOut(150, 50, "HHH"));
    EXPECT_LT(turned.right, 152);
    EXPECT_GE(turned.top, 49);
}

TEST(WmfText, UnderlineAndStrikeOutAddLines) {
    const Rect plain = InkOf(Page().TextOut(50, 20, "i i"));
    const Image underlined = Draw(Page(-40, 0, kUnderline).TextOut(50, 20, "i i"));
    EXPECT_GT(InkOf(underlined.View()).bottom, plain.bottom + 1);
    const Image struck = Draw(Page(-40, 0, kStrikeOut).TextOut(50, 20, "i i"));
    EXPECT_GT(CountOf(Draw(Page().TextOut(50, 20, "i i")).View(), kWhite),
              CountOf(struck.View(), kWhite) + 20);
}

TEST(WmfText, AdvancesOfTheRecordPlaceEachLetter) {
    const auto text = ByteList().Words({20, 10, 3, 0}).Text("HHH").U8(0).Words({60, 60, 60});
    const Rect ink = InkOf(Page().Record(0x0A32, text));
    EXPECT_NEAR(ink.left, 14, 3);
    EXPECT_NEAR(ink.right, 10 + 120 + 26, 4);
}

TEST(WmfText, ExtraSpaceStandsBehindEachLetterAndBlank) {
    const int plain = InkOf(Page().TextOut(10, 20, "H H")).right;
    const int spaced = InkOf(Page().Record(0x0108, {10}).TextOut(10, 20, "H H")).right;
    EXPECT_NEAR(spaced - plain, 20, 2);
    const int justified = InkOf(Page().Record(0x020A, {2, 30}).TextOut(10, 20, "H H")).right;
    EXPECT_NEAR(justified - plain, 15, 2);
}

TEST(WmfText, OpaqueGroundFillsTheCell) {
    const Image image = Draw(
        Page().Record(0x0102, {2}).Record(0x0201, ByteList().U32(0x00FF00)).TextOut(50, 20, "i"));
    EXPECT_EQ(image.View().Pixel(51, 22), kGreen);
    EXPECT_EQ(image.View().Pixel(51, 64), kGreen);
    EXPECT_EQ(image.View().Pixel(51, 18), kWhite);
}

TEST(WmfText, TheBoxFillsAndClips) {
    const auto text = [](int options) {
        return ByteList().Words({0, 0, 4, options, 20, 10, 60, 30}).Text("HHHH");
    };
    const Image filled =
        Draw(Page().Record(0x0201, ByteList().U32(0x00FF00)).Record(0x0A32, text(2)));
    EXPECT_EQ(filled.View().Pixel(20, 10), kGreen);
    EXPECT_EQ(filled.View().Pixel(59, 29), kGreen);
    EXPECT_EQ(filled.View().Pixel(60, 10), kWhite);
    const Rect clipped = InkOf(Page().Record(0x0A32, text(4)));
    EXPECT_GE(clipped.left, 20);
    EXPECT_LE(clipped.right, 60);
    EXPECT_GE(clipped.top, 10);
    EXPECT_LE(clipped.bottom, 30);
}

TEST(WmfText, ThePositionMovesOn) {
    const Rect one = InkOf(Page().TextOut(10, 20, "HH"));
    const Rect two = InkOf(
        Page().Record(0x012E, {1}).Record(0x0214, {20, 10}).TextOut(0, 0, "H").TextOut(0, 0, "H"));
    EXPECT_NEAR(two.right, one.right, 1);
    EXPECT_EQ(two.left, one.left);
}

TEST(WmfText, StaysUprightOnAMirroredPage) {
    const WmfBuilder page = Page().Window(0, 100, 200, -100);
    const Rect ink = InkOf(WmfBuilder(page).TextOut(50, 80, "HH"));  // 20 from the top
    const Rect plain = InkOf(Page().TextOut(50, 20, "HH"));
    EXPECT_EQ(ink, plain);
}

TEST(WmfText, CharacterSetsAndSymbolFonts) {
    const auto shape = [](int charset, std::string_view face, std::string_view text) {
        return Draw(WmfBuilder()
                        .Placeable(0, 0, 60, 60)
                        .Record(0x0102, {1})
                        .Font(0, -40, 0, face, 0, charset)
                        .TextOut(5, 5, text));
    };
    const Image cyrillic = shape(204, "Arial", "\xC4");  // De
    const Image western = shape(0, "Arial", "\xC4");     // A with dots
    EXPECT_FALSE(test::SamePixels(cyrillic, western));
    EXPECT_TRUE(test::SamePixels(shape(2, "Symbol", "a"), shape(161, "Times New Roman", "\xE1")))
        << "both are alpha";
    EXPECT_TRUE(test::SamePixels(shape(128, "Arial", "\x41"), shape(0, "Arial", "A")));
}

TEST(WmfText, OddBytesAndHugeSizesDoNoHarm) {
    for (const int height : {0, 1, -1, 32767, -32768})
        Draw(Page(height).TextOut(10, 20, std::string_view("\0\x01\n\x7F\xFF", 5)));
    Draw(Page().Record(0x0A32, ByteList().Words({0, 0, 30000, 0}).Text("H")));
    Draw(Page().Record(0x0521, {30000}));
    Draw(Page().Record(0x02FB, {1, 2}).Select(1).TextOut(1, 1, "x"));
}

}  // namespace
}  // namespace lumo::imaging::codecs
