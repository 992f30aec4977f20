#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using test::ByteList;
using test::CountOf;
using test::Dib;
using test::InkOf;
using test::WmfBuilder;

constexpr Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0},
    kWhite{255, 255, 255};
constexpr std::uint32_t kCopy = 0x00CC0020, kAnd = 0x008800C6, kPaint = 0x00EE0086,
                        kInvert = 0x00660046;

// Rows from the top: red, green / blue, black; stored from the bottom.
Bytes FourColours() {
    return Dib(2, 2, 24, {}, {255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0});
}

Image Draw(const WmfBuilder& builder) {
    auto decoded = DecodeWmf(builder.File(), {});
    EXPECT_TRUE(decoded) << decoded.Message();
    return decoded ? std::move(decoded->image) : test::FlatImage({1, 1}, {1, 2, 3});
}

// Corners of a picture of four equal colours, row by row.
std::vector<Rgb> Corners(const Image& image, Rect box) {
    const int right = box.right - 1, bottom = box.bottom - 1;
    return {image.View().Pixel(box.left, box.top), image.View().Pixel(right, box.top),
            image.View().Pixel(box.left, bottom), image.View().Pixel(right, bottom)};
}

TEST(WmfBitmaps, AtTheirOwnSizeEveryPixelIsKept) {
    const Image image =
        Draw(WmfBuilder().Placeable(0, 0, 9, 9).StretchDib(3, 4, 2, 2, 2, 2, FourColours()));
    EXPECT_EQ(InkOf(image.View()), (Rect{3, 4, 5, 6}));
    EXPECT_EQ(Corners(image, {3, 4, 5, 6}), (std::vector<Rgb>{kRed, kGreen, kBlue, kBlack}));
}

TEST(WmfBitmaps, NegativeSizesMirror) {
    const Image image =
        Draw(WmfBuilder().Placeable(0, 0, 9, 9).StretchDib(5, 6, -2, -2, 2, 2, FourColours()));
    EXPECT_EQ(Corners(image, {3, 4, 5, 6}), (std::vector<Rgb>{kBlack, kBlue, kGreen, kRed}));
    const Image source = Draw(
        WmfBuilder()
            .Placeable(0, 0, 9, 9)
            .Record(0x0B41,
                    ByteList().U32(kCopy).Words({2, -2, 0, 2, 2, 2, 4, 3}).Append(FourColours())));
    EXPECT_EQ(Corners(source, {3, 4, 5, 6}), (std::vector<Rgb>{kGreen, kRed, kBlack, kBlue}));
}

TEST(WmfBitmaps, EnlargedEdgesAreWholePixels) {
    const Image image =
        Draw(WmfBuilder().Placeable(0, 0, 40, 40).StretchDib(4, 4, 32, 32, 2, 2, FourColours()));
    EXPECT_EQ(InkOf(image.View()), (Rect{4, 4, 36, 36}));
    EXPECT_EQ(Corners(image, {4, 4, 36, 36}), (std::vector<Rgb>{kRed, kGreen, kBlue, kBlack}));
}

TEST(WmfBitmaps, ShrunkOnesAreAveraged) {
    Bytes rows;
    for (int i = 0; i < 64 * 64; ++i)
        for (int c = 0; c < 3; ++c) rows.push_back((i / 64 + i % 64) % 2 == 0 ? 0 : 255);
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 8, 8)
                                 .StretchDib(0, 0, 8, 8, 64, 64, Dib(64, 64, 24, {}, rows)));
    EXPECT_TRUE(
        test::NearPixels(image.View(), test::FlatImage({8, 8}, {128, 128, 128}).View(), 16));
}

TEST(WmfBitmaps, PartsCountFromTheBottomInStretchDib) {
    const Image image = Draw(
        WmfBuilder()
            .Placeable(0, 0, 1, 1)
            .Record(
                0x0F43,
                ByteList().U32(kCopy).Words({0, 1, 1, 0, 0, 1, 1, 0, 0}).Append(FourColours())));
    EXPECT_EQ(image.View().Pixel(0, 0), kBlue);
}

TEST(WmfBitmaps, PartsCountFromTheTopInBlits) {
    const Image image = Draw(
        WmfBuilder()
            .Placeable(0, 0, 1, 1)
            .Record(0x0940, ByteList().U32(kCopy).Words({0, 1, 1, 1, 0, 0}).Append(FourColours())));
    EXPECT_EQ(image.View().Pixel(0, 0), kGreen);
}

TEST(WmfBitmaps, ASourceFarLargerThanItsBitmapMeansAllOfIt) {
    const Image image =
        Draw(WmfBuilder()
                 .Placeable(0, 0, 40, 40)
                 .Record(0x0940,
                         ByteList().U32(kCopy).Words({0, 0, 40, 40, 0, 0}).Append(FourColours())));
    EXPECT_EQ(Corners(image, {0, 0, 40, 40}), (std::vector<Rgb>{kRed, kGreen, kBlue, kBlack}));
}

TEST(WmfBitmaps, WithoutABitmapTheBlitIsAPattern) {
    const auto blit = ByteList().U32(0x00F00021).Words({0, 0, 0, 2, 3, 1, 1});
    const Image image =
        Draw(WmfBuilder().Placeable(0, 0, 9, 9).Brush(0, 0x0000FF).Record(0x0940, blit));
    EXPECT_EQ(InkOf(image.View()), (Rect{1, 1, 4, 3}));
    EXPECT_EQ(CountOf(image.View(), kRed), 6);
}

TEST(WmfBitmaps, OldBitmapsDependOnTheDevice) {
    const auto blit = ByteList()
                          .U32(kCopy)
                          .Words({0, 0, 2, 2, 0, 0})
                          .Words({0, 2, 2, 2})
                          .U8(1)
                          .U8(1)
                          .Text(std::string_view("\x80\0\x40\0", 4));
    const Image image = Draw(WmfBuilder().Placeable(0, 0, 2, 2).Record(0x0922, blit));
    EXPECT_EQ(Corners(image, {0, 0, 2, 2}), (std::vector<Rgb>{kWhite, kBlack, kBlack, kWhite}));
}

TEST(WmfBitmaps, SetToDeviceKeepsTheWayUp) {
    const Image image = Draw(
        WmfBuilder()
            .Placeable(0, 0, 4, 4)
            .Record(0x0D33, ByteList().Words({0, 2, 0, 0, 0, 2, 2, 1, 1}).Append(FourColours())));
    EXPECT_EQ(Corners(image, {1, 1, 3, 3}), (std::vector<Rgb>{kRed, kGreen, kBlue, kBlack}));
}

TEST(WmfBitmaps, OperationsCombineWithThePicture) {
    const auto combined = [](std::uint32_t rop) {
        return Draw(WmfBuilder()
                        .Placeable(0, 0, 2, 2)
                        .Brush(0, 0x00FF00)
                        .Fill(0, 0, 2, 2)
                        .StretchDib(0, 0, 2, 2, 2, 2, FourColours(), rop));
    };
    EXPECT_EQ(Corners(combined(kAnd), {0, 0, 2, 2}),
              (std::vector<Rgb>{kBlack, kGreen, kBlack, kBlack}));
    EXPECT_EQ(Corners(combined(kPaint), {0, 0, 2, 2}),
              (std::vector<Rgb>{{255, 255, 0}, kGreen, {0, 255, 255}, kGreen}));
    EXPECT_EQ(Corners(combined(kInvert), {0, 0, 2, 2}),
              (std::vector<Rgb>{{255, 255, 0}, kBlack, {0, 255, 255}, kGreen}));
    // Merge copy: the bitmap where the brush is set.
    EXPECT_EQ(Corners(combined(0x00C000CA), {0, 0, 2, 2}),
              (std::vector<Rgb>{kBlack, kGreen, kBlack, kBlack}));
}

TEST(WmfBitmaps, MaskAndPictureLeaveTheGroundAround) {
    // A mask of black dots on white, then the dots on black: what clip art is made of.
    const Bytes mask = Dib(2, 1, 1, {0, 0xFFFFFF}, {0x40, 0, 0, 0});
    const Bytes picture = Dib(2, 1, 1, {0, 0xFF0000}, {0x80, 0, 0, 0});
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 20, 10)
                                 .Brush(0, 0x00FF00)
                                 .Fill(0, 0, 20, 10)
                                 .StretchDib(0, 0, 20, 10, 2, 1, mask, kAnd)
                                 .StretchDib(0, 0, 20, 10, 2, 1, picture, kPaint));
    EXPECT_EQ(image.View().Pixel(1, 5), kRed);
    EXPECT_EQ(image.View().Pixel(18, 5), kGreen);
    const Rgb between = image.View().Pixel(10, 5);
    EXPECT_NEAR(between.red + between.green, 255, 3) << "the smooth edge mixes the two";
    EXPECT_EQ(between.blue, 0);
}

TEST(WmfBitmaps, BrokenOnesAreLeftOut) {
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 4, 4)
                                 .StretchDib(0, 0, 4, 4, 2, 2, Bytes(10, 7))
                                 .StretchDib(0, 0, 4, 4, 2, 2, Dib(2, 2, 24, {}, {1}))
                                 .StretchDib(0, 0, 0, 4, 2, 2, FourColours())
                                 .StretchDib(0, 0, 4, 4, 0, 0, FourColours()));
    EXPECT_EQ(CountOf(image.View(), kWhite), 16);
}

TEST(WmfBitmaps, OneBitmapOverAScaledBoxIsDrawnAtTheBoxesSize) {
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 2540, 2540, 2540)
                                 .Window(0, 0, 2, 2)
                                 .StretchDib(0, 0, 2, 2, 2, 2, FourColours()));
    EXPECT_EQ(image.Extent(), (Size{96, 96}));
    EXPECT_EQ(Corners(image, {0, 0, 96, 96}), (std::vector<Rgb>{kRed, kGreen, kBlue, kBlack}));
}

TEST(WmfSingleBitmap, AWindowOfOneUnitAPixelIsASizeOfItsOwn) {
    const Bytes dib = FourColours();
    const Image own = Draw(WmfBuilder().Window(0, 0, 2, 2).StretchDib(0, 0, 2, 2, 2, 2, dib));
    EXPECT_EQ(own.Extent(), (Size{2, 2}));
    const Image scaled = Draw(WmfBuilder().Window(0, 0, 4, 4).StretchDib(0, 0, 4, 4, 2, 2, dib));
    EXPECT_EQ(scaled.Extent(), (Size{400, 400})) << "else the hint decides";
    const Image more = Draw(WmfBuilder()
                                .Window(0, 0, 2, 2)
                                .StretchDib(0, 0, 2, 2, 2, 2, dib)
                                .Brush(0, 0)
                                .Fill(0, 0, 1, 1));
    EXPECT_EQ(more.Extent(), (Size{400, 400})) << "as soon as there is more to draw";
}

}  // namespace
}  // namespace lumo::imaging::codecs
