#include <gtest/gtest.h>

#include <numbers>

#include "imaging/codecs/decoders.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using test::CountOf;
using test::InkOf;
using test::WmfBuilder;

constexpr Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0},
    kWhite{255, 255, 255};
constexpr std::uint32_t kRedRef = 0x0000FF, kGreenRef = 0x00FF00, kBlueRef = 0xFF0000;
constexpr int kNoPen = 5;

Image Draw(const WmfBuilder& builder) {
    auto decoded = DecodeWmf(builder.File(), {});
    EXPECT_TRUE(decoded) << decoded.Message();
    return decoded ? std::move(decoded->image) : test::FlatImage({1, 1}, {1, 2, 3});
}

// A canvas of one pixel a unit, without a pen and with a red brush: objects 0 and 1.
WmfBuilder Canvas(int width, int height) {
    return WmfBuilder().Placeable(0, 0, width, height).Pen(0, 0, kNoPen).Brush(1, kRedRef);
}

TEST(WmfShapes, RectangleFillsWholePixels) {
    const Image image = Draw(Canvas(20, 10).Rectangle(3, 2, 9, 7));
    EXPECT_EQ(InkOf(image.View()), (Rect{3, 2, 9, 7}));
    EXPECT_EQ(CountOf(image.View(), kRed), 30);
}

TEST(WmfShapes, ThinOutlineIsOnePixelInsideTheBox) {
    const Image image = Draw(
        WmfBuilder().Placeable(0, 0, 20, 10).Pen(0, kBlueRef).Brush(1, 0, 1).Rectangle(3, 2, 9, 7));
    EXPECT_EQ(InkOf(image.View()), (Rect{3, 2, 9, 7}));
    EXPECT_EQ(CountOf(image.View(), kBlue), 2 * 6 + 2 * 3);
    EXPECT_EQ(image.View().Pixel(4, 3), kWhite);
}

TEST(WmfShapes, ThinLinesAreCrisp) {
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 20, 10)
                                 .Pen(0, kBlueRef)
                                 .Record(0x0214, {4, 2})
                                 .Record(0x0213, {4, 12})
                                 .Record(0x0213, {8, 12}));
    EXPECT_EQ(InkOf(image.View()), (Rect{2, 4, 13, 9}));
    EXPECT_EQ(CountOf(image.View(), kBlue), 11 + 4);
}

TEST(WmfShapes, WidePensScaleWithTheDrawing) {
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 200, 100, 192)
                                 .Pen(0, kBlueRef, 0x0200, 20)  // flat ends
                                 .Record(0x0214, {50, 40})
                                 .Record(0x0213, {50, 160}));
    EXPECT_EQ(image.Extent(), (Size{100, 50}));
    EXPECT_EQ(InkOf(image.View()), (Rect{20, 20, 80, 30}));
}

TEST(WmfShapes, DashedPensLeaveGapsUnlessTheGroundIsOpaque) {
    const auto lines = [](int backMode) {
        return Draw(WmfBuilder()
                        .Placeable(0, 0, 60, 5)
                        .Record(0x0102, {backMode})
                        .Record(0x0201, test::ByteList().U32(kGreenRef))
                        .Pen(0, kBlueRef, 1)
                        .Record(0x0214, {2, 0})
                        .Record(0x0213, {2, 47}));
    };
    const Image seen = lines(1), opaque = lines(2);
    EXPECT_EQ(CountOf(seen.View(), kBlue), 36);  // two of 18
    EXPECT_EQ(CountOf(seen.View(), kWhite), 60 * 5 - 36);
    EXPECT_EQ(CountOf(opaque.View(), kBlue), 36);
    EXPECT_EQ(CountOf(opaque.View(), kGreen), 12);
}

TEST(WmfShapes, PolygonFillModesDifferInTheMiddleOfAStar) {
    const std::initializer_list<int> star = {5, 50, 0, 80, 95, 2, 36, 98, 36, 20, 95};
    const Image holes = Draw(Canvas(100, 100).Record(0x0324, star));
    const Image full = Draw(Canvas(100, 100).Record(0x0106, {2}).Record(0x0324, star));
    EXPECT_EQ(holes.View().Pixel(50, 55), kWhite);
    EXPECT_EQ(full.View().Pixel(50, 55), kRed);
    EXPECT_EQ(holes.View().Pixel(50, 20), kRed);
}

TEST(WmfShapes, PolyPolygonCutsHoles) {
    const Image image = Draw(Canvas(30, 30).Record(
        0x0538, {2, 4, 4, 0, 0, 30, 0, 30, 30, 0, 30, 10, 10, 20, 10, 20, 20, 10, 20}));
    EXPECT_EQ(CountOf(image.View(), kWhite), 100);
    EXPECT_EQ(image.View().Pixel(15, 15), kWhite);
}

TEST(WmfShapes, CountsBeyondTheRecordAreCut) {
    const Image image = Draw(Canvas(30, 30)
                                 .Record(0x0324, {30000, 0, 0, 30, 0, 30, 30})
                                 .Record(0x0538, {30000, 4, 4})
                                 .Record(0x0325, {2}));
    EXPECT_EQ(image.View().Pixel(25, 5), kRed);
}

TEST(WmfShapes, EllipseFillsItsBox) {
    const Image image = Draw(Canvas(100, 60).Record(0x0418, {50, 90, 10, 10}));
    EXPECT_EQ(InkOf(image.View()), (Rect{10, 10, 90, 50}));
    EXPECT_NEAR(CountOf(image.View(), kRed), std::numbers::pi * 40 * 20, 150);
    EXPECT_EQ(image.View().Pixel(12, 12), kWhite);
}

TEST(WmfShapes, RoundRectangleLosesItsCorners) {
    const Image image = Draw(Canvas(100, 60).Record(0x061C, {20, 20, 60, 100, 0, 0}));
    EXPECT_EQ(image.View().Pixel(1, 1), kWhite);
    EXPECT_EQ(image.View().Pixel(50, 0), kRed);
    EXPECT_EQ(image.View().Pixel(0, 30), kRed);
    EXPECT_EQ(image.View().Pixel(99, 59), kWhite);
}

// From the right of the centre to its top, the short way round: the upper right quarter.
TEST(WmfShapes, ArcsRunCounterClockwise) {
    const std::initializer_list<int> quarter = {0, 50, 50, 100, 100, 100, 0, 0};
    const Image pie = Draw(Canvas(100, 100).Record(0x081A, quarter));
    EXPECT_EQ(pie.View().Pixel(70, 30), kRed);
    EXPECT_EQ(pie.View().Pixel(30, 30), kWhite);
    EXPECT_EQ(pie.View().Pixel(70, 70), kWhite);
    const Image chord = Draw(Canvas(100, 100).Record(0x0830, quarter));
    EXPECT_EQ(chord.View().Pixel(60, 40), kWhite) << "a chord leaves the centre out";
    EXPECT_EQ(chord.View().Pixel(80, 25), kRed);
    const Image arc =
        Draw(WmfBuilder().Placeable(0, 0, 100, 100).Pen(0, 0).Record(0x0817, quarter));
    const Rect ink = InkOf(arc.View());
    EXPECT_GE(ink.left, 49);
    EXPECT_LE(ink.bottom, 52);
    EXPECT_EQ(arc.View().Pixel(70, 30), kWhite);
}

TEST(WmfShapes, ArcsRunTheSameWayWhenThePageIsMirrored) {
    const Image pie = Draw(WmfBuilder()
                               .Placeable(0, 100, 100, 0)
                               .Pen(0, 0, kNoPen)
                               .Brush(1, kRedRef)
                               .Record(0x081A, {100, 50, 50, 100, 100, 100, 0, 0}));
    EXPECT_EQ(pie.View().Pixel(70, 30), kRed);
    EXPECT_EQ(pie.View().Pixel(30, 70), kWhite);
}

TEST(WmfShapes, PixelsAndFloods) {
    const Image image = Draw(Canvas(20, 10)
                                 .Record(0x041F, test::ByteList().U32(kBlueRef).Words({1, 2}))
                                 .Fill(10, 0, 11, 10)
                                 .Record(0x0548, test::ByteList().U16(1).U32(0).Words({5, 15})));
    EXPECT_EQ(image.View().Pixel(2, 1), kBlue);
    EXPECT_EQ(CountOf(image.View(), kRed), 100) << "the flood stops at the line";
    const Image border = Draw(Canvas(20, 10)
                                  .Brush(2, kGreenRef)
                                  .Fill(10, 0, 11, 10)
                                  .Select(1)
                                  .Record(0x0419, test::ByteList().U32(kGreenRef).Words({5, 5})));
    EXPECT_EQ(CountOf(border.View(), kRed), 100);
    EXPECT_EQ(border.View().Pixel(19, 0), kWhite);
}

TEST(WmfBrushes, HatchesDrawLinesOverTheGround) {
    const auto hatched = [](int hatch, int backMode) {
        return Draw(WmfBuilder()
                        .Placeable(0, 0, 16, 16)
                        .Record(0x0102, {backMode})
                        .Record(0x0201, test::ByteList().U32(kGreenRef))
                        .Brush(0, kRedRef, 2, hatch)
                        .Fill(0, 0, 16, 16));
    };
    const int expected[6] = {32, 32, 32, 32, 60, 64};  // pixels of two by two tiles
    for (int hatch = 0; hatch < 6; ++hatch) {
        EXPECT_EQ(CountOf(hatched(hatch, 1).View(), kRed), expected[hatch]) << hatch;
        EXPECT_EQ(CountOf(hatched(hatch, 2).View(), kGreen), 256 - expected[hatch]) << hatch;
    }
    const Image falling = hatched(2, 1);
    EXPECT_EQ(falling.View().Pixel(9, 1), kRed);
    EXPECT_EQ(falling.View().Pixel(1, 9), kRed);
}

TEST(WmfBrushes, PatternsRepeat) {
    const Bytes dib = test::Dib(2, -2, 24, {},
                                {0, 0, 255, 255, 0, 0, 0, 0,  // red, blue
                                 0, 255, 0, 0, 0, 0, 0, 0});  // green, black
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 6, 4)
                                 .Record(0x0142, test::ByteList().Words({5, 0}).Append(dib))
                                 .Select(0)
                                 .Fill(0, 0, 6, 4));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 6; ++x) {
            const Rgb expected[] = {kRed, kBlue, kGreen, kBlack};
            EXPECT_EQ(image.View().Pixel(x, y), expected[y % 2 * 2 + x % 2]) << x << ' ' << y;
        }
}

TEST(WmfBrushes, PatternsOfOneBitTakeTheTextColours) {
    const Bytes dib = test::Dib(2, 1, 1, {0, 0xFFFFFF}, {0x40, 0, 0, 0});
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 2, 1)
                                 .Record(0x0209, test::ByteList().U32(kBlueRef))
                                 .Record(0x0201, test::ByteList().U32(kGreenRef))
                                 .Record(0x0142, test::ByteList().Words({3, 0}).Append(dib))
                                 .Select(0)
                                 .Fill(0, 0, 2, 1));
    EXPECT_EQ(image.View().Pixel(0, 0), kBlue);
    EXPECT_EQ(image.View().Pixel(1, 0), kGreen);
}

TEST(WmfState, DeletedNumbersAreUsedAgain) {
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 4, 1)
                                 .Pen(0, 0, kNoPen)
                                 .Brush(1, kRedRef)
                                 .Brush(2, kGreenRef)
                                 .Record(0x01F0, {1})
                                 .Brush(1, kBlueRef)
                                 .Fill(0, 0, 1, 1)
                                 .Select(2)
                                 .Fill(1, 0, 2, 1));
    EXPECT_EQ(image.View().Pixel(0, 0), kBlue);
    EXPECT_EQ(image.View().Pixel(1, 0), kGreen);
}

TEST(WmfState, RestoreCountsFromEitherEnd) {
    const auto colourAfter = [](int which) {
        WmfBuilder builder;
        builder.Placeable(0, 0, 1, 1).Brush(0, kRedRef).Record(0x001E, {});
        builder.Brush(1, kGreenRef).Record(0x001E, {}).Brush(2, kBlueRef);
        return Draw(builder.Record(0x0127, {which}).Fill(0, 0, 1, 1)).View().Pixel(0, 0);
    };
    EXPECT_EQ(colourAfter(-1), kGreen);
    EXPECT_EQ(colourAfter(-2), kRed);
    EXPECT_EQ(colourAfter(1), kRed);
    EXPECT_EQ(colourAfter(2), kGreen);
    for (const int nowhere : {0, 3, -3, 32767}) EXPECT_EQ(colourAfter(nowhere), kBlue) << nowhere;
}

TEST(WmfState, PaletteColoursAreIndices) {
    const auto palette = test::ByteList().Words({0x300, 2}).Longs({0x00000000, 0x0000FF00});
    const Image image = Draw(WmfBuilder()
                                 .Placeable(0, 0, 2, 1)
                                 .Record(0x00F7, palette)
                                 .Record(0x0234, {0})
                                 .Brush(1, 0x01000001)
                                 .Fill(0, 0, 1, 1)
                                 .Record(0x0037, test::ByteList().Words({1, 1}).Longs({0x0000FF}))
                                 .Fill(1, 0, 2, 1));
    EXPECT_EQ(image.View().Pixel(0, 0), kGreen);
    EXPECT_EQ(image.View().Pixel(1, 0), kRed) << "the entry was changed";
}

TEST(WmfMapping, WindowsMoveScaleAndMirror) {
    const Image moved = Draw(Canvas(20, 10).Window(100, 200, 40, 20).Fill(110, 204, 120, 210));
    EXPECT_EQ(InkOf(moved.View()), (Rect{5, 2, 10, 5}));
    const Image mirrored = Draw(Canvas(20, 10).Window(20, 10, -20, -10).Fill(1, 2, 4, 3));
    EXPECT_EQ(InkOf(mirrored.View()), (Rect{16, 7, 19, 8}));
    const Image offset = Draw(Canvas(20, 10).Record(0x020F, {3, 2}).Fill(3, 4, 6, 9));
    EXPECT_EQ(InkOf(offset.View()), (Rect{1, 1, 4, 6}));
    const Image scaled = Draw(Canvas(20, 10).Record(0x0410, {1, 2, 1, 2}).Fill(4, 4, 8, 8));
    EXPECT_EQ(InkOf(scaled.View()), (Rect{2, 2, 4, 4}));
}

TEST(WmfMapping, TheFirstViewportIsTheWholePicture) {
    const Image image = Draw(Canvas(20, 10)
                                 .Window(0, 0, 100, 100)
                                 .Record(0x020D, {0, 0})
                                 .Record(0x020E, {1000, 2000})
                                 .Fill(0, 0, 50, 50)
                                 .Record(0x020D, {500, 1000})
                                 .Fill(0, 0, 50, 50));
    EXPECT_EQ(image.View().Pixel(9, 4), kRed);
    EXPECT_EQ(image.View().Pixel(10, 4), kWhite);
    EXPECT_EQ(image.View().Pixel(10, 5), kRed);
    EXPECT_EQ(CountOf(image.View(), kRed), 100);
}

TEST(WmfMapping, IsotropicTakesTheSmallerScaleForBoth) {
    const Image image =
        Draw(Canvas(20, 10).Record(0x0103, {7}).Window(0, 0, 10, 10).Fill(0, 0, 10, 10));
    EXPECT_EQ(InkOf(image.View()), (Rect{0, 0, 10, 10}));
}

TEST(WmfMapping, MetricModesLookUp) {
    // A tenth of a millimetre: 254 are an inch, 96 pixels.
    const Image image = Draw(Canvas(100, 100).Record(0x0103, {2}).Fill(0, 0, 127, -254));
    EXPECT_EQ(InkOf(image.View()), (Rect{0, 0, 48, 96}));
}

TEST(WmfMapping, ExtentsOfZeroChangeNothing) {
    const Image image = Draw(Canvas(20, 10)
                                 .Record(0x020C, {0, 20})
                                 .Record(0x0410, {0, 1, 1, 1})
                                 .Record(0x0410, {1, 0, 1, 1})
                                 .Fill(0, 0, 5, 5));
    EXPECT_EQ(InkOf(image.View()), (Rect{0, 0, 5, 5}));
}

TEST(WmfClips, IntersectExcludeOffsetAndRestore) {
    const Image image = Draw(Canvas(20, 10)
                                 .Record(0x001E, {})
                                 .Record(0x0416, {8, 18, 2, 2})
                                 .Record(0x0415, {8, 6, 2, 4})
                                 .Record(0x0220, {1, 0})
                                 .Fill(0, 0, 20, 10)
                                 .Record(0x0127, {-1})
                                 .Fill(0, 0, 1, 1));
    EXPECT_EQ(CountOf(image.View(), kRed), 16 * 6 - 2 * 6 + 1);
    EXPECT_EQ(image.View().Pixel(2, 3), kRed);
    EXPECT_EQ(image.View().Pixel(4, 3), kWhite);
    EXPECT_EQ(image.View().Pixel(6, 8), kRed);
}

// Two scans: (1, 1)-(4, 2) and (2, 3)-(3, 4).
test::ByteList RegionRecord() {
    return test::ByteList()
        .Words({0, 6})
        .U32(0)
        .Words({40, 2, 2, 1, 1, 4, 4})
        .Words({2, 1, 2, 1, 4, 2, 2, 3, 4, 2, 3, 2});
}

TEST(WmfClips, RegionsClipAndFill) {
    const Image clipped = Draw(Canvas(6, 6)
                                   .Record(0x06FF, RegionRecord())
                                   .Record(0x012C, {2})
                                   .Fill(0, 0, 6, 6)
                                   .Record(0x012C, {9})
                                   .Fill(5, 5, 6, 6));
    EXPECT_EQ(CountOf(clipped.View(), kRed), 3 + 1 + 1);
    EXPECT_EQ(clipped.View().Pixel(2, 3), kRed);
    const Image filled = Draw(Canvas(6, 6).Record(0x06FF, RegionRecord()).Record(0x0228, {2, 1}));
    EXPECT_EQ(CountOf(filled.View(), kRed), 4);
    const Image inverted = Draw(Canvas(6, 6).Record(0x06FF, RegionRecord()).Record(0x012A, {2}));
    EXPECT_EQ(CountOf(inverted.View(), kBlack), 4);
    const Image painted = Draw(Canvas(6, 6).Record(0x06FF, RegionRecord()).Record(0x012B, {2}));
    EXPECT_EQ(CountOf(painted.View(), kRed), 4);
}

TEST(WmfClips, FrameOfARegion) {
    const auto box = test::ByteList()
                         .Words({0, 6})
                         .U32(0)
                         .Words({30, 1, 2, 0, 0, 6, 5})
                         .Words({2, 0, 5, 0, 6, 2});
    const Image image = Draw(Canvas(6, 6).Record(0x06FF, box).Record(0x0429, {2, 1, 1, 2}));
    EXPECT_EQ(CountOf(image.View(), kRed), 30 - 2 * 3);
}

TEST(WmfRasterOps, EveryDrawingModeCombinesPenAndPicture) {
    for (int mode = 1; mode <= 16; ++mode) {
        const Image image = Draw(WmfBuilder()
                                     .Placeable(0, 0, 3, 3)
                                     .Pen(0, 0, kNoPen)
                                     .Brush(1, 0x00AACC)
                                     .Fill(0, 0, 3, 3)
                                     .Brush(2, 0x0F33F0)
                                     .Record(0x0104, {mode})
                                     .Rectangle(0, 0, 3, 3));
        const auto combined = [mode](int pen, int ground) {
            int result = 0;
            for (int bit = 0; bit < 8; ++bit) {
                const int row = (pen >> bit & 1) * 2 + (ground >> bit & 1);
                result |= ((mode - 1) >> row & 1) << bit;
            }
            return static_cast<std::uint8_t>(result);
        };
        const Rgb expected{combined(0xF0, 0xCC), combined(0x33, 0xAA), combined(0x0F, 0x00)};
        EXPECT_EQ(image.View().Pixel(1, 1), expected) << mode;
    }
}

TEST(WmfRasterOps, DrawnTwiceAnExclusiveOrIsGone) {
    WmfBuilder builder = Canvas(50, 50);
    builder.Pen(2, kGreenRef, 0, 5).Record(0x0104, {7});
    for (int i = 0; i < 2; ++i) builder.Record(0x0418, {40, 45, 3, 7});
    EXPECT_EQ(CountOf(Draw(builder).View(), kWhite), 2500);
}

}  // namespace
}  // namespace lumo::imaging::codecs
