#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/metafile_builder.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using test::ByteList;
using test::CountOf;
using test::EmfBuilder;
using test::InkOf;
using testing::HasSubstr;

constexpr Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kBlack{0, 0, 0},
    kWhite{255, 255, 255};
constexpr std::uint32_t kRedRef = 0x0000FF, kGreenRef = 0x00FF00, kBlueRef = 0xFF0000;

Image Draw(const EmfBuilder& builder) {
    auto decoded = DecodeEmf(builder.File(), {});
    EXPECT_TRUE(decoded) << decoded.Message();
    return decoded ? std::move(decoded->image) : test::FlatImage({1, 1}, {1, 2, 3});
}

// One pixel a unit, without a pen and with a red brush.
EmfBuilder Page(int width, int height) {
    return EmfBuilder(width, height).NoPen().Brush(1, kRedRef);
}

// A bitmap of two by two: red, green / blue, black, with the numbers that lead to it from the
// start of a record whose parameters before the bitmap take `before` bytes.
ByteList BitmapPlace(std::size_t before) {
    const auto at = static_cast<std::int64_t>(8 + before);
    return ByteList().Longs({at, 40, at + 40, 16});
}
Bytes FourColours() {
    return test::Dib(2, 2, 24, {}, {255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0});
}

TEST(EmfSize, FrameAt96DotsPerInch) {
    EXPECT_EQ(Draw(EmfBuilder(123, 45)).Extent(), (Size{123, 45}));
    EXPECT_EQ(Draw(EmfBuilder(9, 9).Frame(0, 0, 2540, 1270).Bounds(0, 0, 95, 47)).Extent(),
              (Size{96, 48}));
}

TEST(EmfSize, WithoutFrameTheBoundsInPixels) {
    EXPECT_EQ(Draw(EmfBuilder(9, 9).Frame(0, 0, 0, 0).Bounds(10, 20, 109, 49)).Extent(),
              (Size{100, 30}));
}

TEST(EmfSize, AFrameThatMissesTheDrawingGivesWayToTheBounds) {
    const Image image = Draw(EmfBuilder(100, 100)
                                 .Bounds(0, -100, 99, -51)
                                 .NoPen()
                                 .Brush(1, kRedRef)
                                 .Rectangle(0, -100, 100, -50));
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({100, 50}, kRed)));
}

TEST(EmfSize, TheFramesCornerIsThePicturesCorner) {
    const Image image = Draw(EmfBuilder(9, 9)
                                 .Frame(265, 529, 529, 1058)
                                 .Bounds(10, 20, 19, 39)
                                 .NoPen()
                                 .Brush(1, kRedRef)
                                 .Rectangle(12, 22, 20, 40));
    EXPECT_EQ(image.Extent(), (Size{10, 20}));
    EXPECT_EQ(InkOf(image.View()), (Rect{2, 2, 10, 20}));
}

TEST(EmfSize, NoSizeAndSizesBeyondTheLimitsAreRefused) {
    const auto reason = [](const EmfBuilder& builder) {
        const auto decoded = DecodeEmf(builder.File(), {});
        return decoded ? "no reason" : decoded.Message();
    };
    EXPECT_EQ(reason(EmfBuilder(1, 1).Frame(9, 9, 0, 0).Bounds(5, 5, 1, 1)),
              "the metafile states no size");
    EXPECT_THAT(reason(EmfBuilder(65000, 65000)), HasSubstr("larger than allowed"));
    EXPECT_THAT(reason(EmfBuilder(40000, 10)), HasSubstr("larger than 32767"));
    EXPECT_THAT(reason(EmfBuilder(1, 1).Frame(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX)),
                HasSubstr("larger than allowed"));
}

TEST(EmfHeader, OtherFilesAreRefused) {
    for (const Bytes& file : {Bytes{}, Bytes{1, 0, 0, 0, 108, 0, 0, 0}, Bytes(200, 1)})
        EXPECT_EQ(DecodeEmf(file, {}).Message(), "not an enhanced metafile");
}

TEST(EmfHeader, AFinerSizeThatDisagreesIsNoSize) {
    Bytes file = EmfBuilder(100, 50).NoPen().Brush(1, kRedRef).Rectangle(0, 0, 100, 50).File();
    for (std::size_t i = 100; i < 108; ++i) file[i] = 'x';  // a description stands there
    const auto decoded = DecodeEmf(file, {});
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(test::SamePixels(decoded->image, test::FlatImage({100, 50}, kRed)));
}

TEST(EmfRecords, CutFilesWarnAndPlusFilesAreNamed) {
    EXPECT_EQ(DecodeEmf(Page(9, 9).File(true), {})->warning, "the metafile is cut short");
    const auto comment = ByteList().U32(12).Text("EMF+").Longs({0, 0});
    EXPECT_EQ(DecodeEmf(EmfBuilder(9, 9).Record(70, comment).File(), {}).Message(),
              "the metafile holds EMF+ records only");
    const Image both = Draw(Page(9, 9).Record(70, comment).Rectangle(0, 0, 9, 9));
    EXPECT_EQ(CountOf(both.View(), kRed), 81);
}

TEST(EmfShapes, PolygonsOfBothWidths) {
    const ByteList wide = ByteList().Longs({0, 0, 0, 0, 3, 0, 0, 20, 0, 0, 20});
    const ByteList narrow = ByteList().Longs({0, 0, 0, 0, 3}).Words({0, 0, 20, 0, 0, 20});
    EXPECT_TRUE(test::SamePixels(Draw(Page(20, 20).Record(3, wide)),
                                 Draw(Page(20, 20).Record(86, narrow))));
    EXPECT_EQ(Draw(Page(20, 20).Record(86, narrow)).View().Pixel(3, 3), kRed);
}

TEST(EmfShapes, PolyPolygonCutsHoles) {
    const auto figures = ByteList()
                             .Longs({0, 0, 0, 0, 2, 8, 4, 4})
                             .Words({0, 0, 30, 0, 30, 30, 0, 30, 10, 10, 20, 10, 20, 20, 10, 20});
    EXPECT_EQ(CountOf(Draw(Page(30, 30).Record(91, figures)).View(), kWhite), 100);
}

TEST(EmfShapes, CountsBeyondTheRecordAreCut) {
    Draw(Page(30, 30)
             .Record(3, {0, 0, 0, 0, 0xFFFFFFFF, 1, 1})
             .Record(8, {0, 0, 0, 0, 0x7FFFFFFF, 0x7FFFFFFF, 4})
             .Record(91, {0, 0, 0, 0, 1, 5, 0xFFFFFFFF, 3})
             .Record(56, {0, 0, 0, 0, 9, 1, 1})
             .Record(118, {0, 0, 0, 0, 0xFFFFFFFF, 0xFFFFFFFF, 2}));
}

TEST(EmfPaths, CollectUntilTheyAreDrawn) {
    const Image image = Draw(Page(40, 40)
                                 .Record(59)
                                 .Record(27, {5, 5})
                                 .Record(54, {25, 5})
                                 .Record(6, {0, 0, 0, 0, 2, 25, 25, 5, 25})
                                 .Record(61)
                                 .Rectangle(10, 10, 20, 20)
                                 .Record(60)
                                 .Record(62, {0, 0, 0, 0}));
    EXPECT_EQ(CountOf(image.View(), kRed), 400 - 100) << "even-odd: the box is a hole";
}

TEST(EmfPaths, CurvesGoOnFromTheCurrentPosition) {
    const Image image =
        Draw(Page(40, 40)
                 .Record(59)
                 .Record(27, {0, 0})
                 .Record(88, ByteList().Longs({0, 0, 0, 0, 3}).Words({40, 0, 40, 40, 0, 40}))
                 .Record(61)
                 .Record(60)
                 .Record(62, {0, 0, 0, 0}));
    EXPECT_EQ(image.View().Pixel(15, 20), kRed);
    EXPECT_EQ(image.View().Pixel(35, 20), kWhite);
    EXPECT_EQ(image.View().Pixel(38, 2), kWhite);
}

TEST(EmfPaths, ClipToShapes) {
    EmfBuilder page = Page(40, 40);
    page.Record(59).Record(42, {0, 0, 40, 40}).Record(60).Record(67, {5}).Rectangle(0, 0, 40, 40);
    const Image image = Draw(page);
    EXPECT_EQ(image.View().Pixel(1, 1), kWhite);
    EXPECT_EQ(image.View().Pixel(20, 1), kRed);
    EXPECT_NEAR(CountOf(image.View(), kRed), 1256, 110);
}

TEST(EmfPaths, AbortedOnesAreForgotten) {
    const Image image =
        Draw(Page(9, 9).Record(59).Rectangle(0, 0, 9, 9).Record(68).Record(62, {0, 0, 0, 0}));
    EXPECT_EQ(CountOf(image.View(), kWhite), 81);
}

TEST(EmfMapping, WorldTransformsCombineInTheirOrder) {
    const auto transform = [](float xx, float yx, float xy, float yy, float x0, float y0) {
        return ByteList().F32(xx).F32(yx).F32(xy).F32(yy).F32(x0).F32(y0);
    };
    const ByteList scale = transform(2, 0, 0, 2, 0, 0), move = transform(1, 0, 0, 1, 10, 0);
    const Image left = Draw(
        Page(40, 40).Record(35, scale).Record(36, ByteList(move).U32(2)).Rectangle(0, 0, 5, 5));
    EXPECT_EQ(InkOf(left.View()), (Rect{20, 0, 30, 10})) << "moved, then scaled";
    const Image right = Draw(
        Page(40, 40).Record(35, scale).Record(36, ByteList(move).U32(3)).Rectangle(0, 0, 5, 5));
    EXPECT_EQ(InkOf(right.View()), (Rect{10, 0, 20, 10})) << "scaled, then moved";
    const Image turned =
        Draw(Page(40, 40).Record(35, transform(0, 1, -1, 0, 40, 0)).Rectangle(0, 0, 20, 10));
    EXPECT_EQ(InkOf(turned.View()), (Rect{30, 0, 40, 20}));
    const Image none = Draw(Page(40, 40)
                                .Record(35, scale)
                                .Record(36, ByteList(move).U32(1))
                                .Record(35, transform(NAN, 0, 0, INFINITY, 0, 0))
                                .Rectangle(0, 0, 5, 5));
    EXPECT_EQ(InkOf(none.View()), (Rect{0, 0, 5, 5})) << "no numbers, no transform";
}

TEST(EmfMapping, WindowAndViewport) {
    const Image image = Draw(Page(40, 40)
                                 .Record(17, {8})
                                 .Record(9, {100, -100})
                                 .Record(10, {0, 100})
                                 .Record(11, {40, 40})
                                 .Record(12, {0, 0})
                                 .Rectangle(0, 0, 50, 25));
    EXPECT_EQ(InkOf(image.View()), (Rect{0, 30, 20, 40}));
}

TEST(EmfObjects, StockObjectsAndDeletedOnes) {
    const Image image = Draw(Page(4, 1)
                                 .Record(40, {1})
                                 .Rectangle(0, 0, 1, 1)
                                 .Record(37, {0x80000004})
                                 .Rectangle(1, 0, 2, 1)
                                 .Record(37, {0x80000005})
                                 .Rectangle(2, 0, 3, 1)
                                 .Record(37, {77})
                                 .Rectangle(3, 0, 4, 1));
    EXPECT_EQ(image.View().Pixel(0, 0), kRed) << "a selected object outlives its number";
    EXPECT_EQ(image.View().Pixel(1, 0), kBlack);
    EXPECT_EQ(image.View().Pixel(2, 0), kWhite);
    EXPECT_EQ(image.View().Pixel(3, 0), kWhite);
}

TEST(EmfObjects, ExtendedPensHaveFlatEndsAndDashesOfTheirOwn) {
    const ByteList pen =
        ByteList().Longs({2, 0, 0, 0, 0, 0x00010207, 4, 0, kBlueRef, 0, 2, 8, 12}).U32(0);
    const Image image =
        Draw(Page(40, 9).Record(95, pen).Record(37, {2}).Record(27, {0, 4}).Record(54, {40, 4}));
    EXPECT_EQ(CountOf(image.View(), kBlue), 2 * 8 * 4);
    EXPECT_EQ(image.View().Pixel(7, 3), kBlue);
    EXPECT_EQ(image.View().Pixel(8, 3), kWhite);
}

TEST(EmfClips, RegionsAndTheClipThatStays) {
    const auto region = [](int left, int right) {
        return ByteList().Longs({32, 1, 1, 16, left, 0, right, 9, left, 0, right, 9});
    };
    const auto select = [&](int mode, int left, int right) {
        return ByteList().Longs({48, mode}).Append(region(left, right).bytes);
    };
    const auto columns = [](const EmfBuilder& builder) {
        const Image image = Draw(EmfBuilder(builder).Rectangle(0, 0, 8, 9));
        std::string text;
        for (int x = 0; x < 8; ++x) text += image.View().Pixel(x, 0) == kRed ? '#' : '.';
        return text;
    };
    EXPECT_EQ(columns(Page(8, 9).Record(75, select(5, 2, 6))), "..####..");
    EXPECT_EQ(columns(Page(8, 9).Record(75, select(5, 1, 3)).Record(75, select(2, 5, 6))),
              ".##..#..");
    EXPECT_EQ(columns(Page(8, 9).Record(75, select(4, 2, 6))), "##....##");
    EXPECT_EQ(columns(Page(8, 9).Record(75, select(5, 2, 6)).Record(75, {0, 5})), "########");
    EXPECT_EQ(
        columns(Page(8, 9).Record(75, select(5, 2, 6)).Record(28).Record(75, select(5, 0, 4))),
        "..##....");
    EXPECT_EQ(columns(Page(8, 9).Record(75, select(5, 2, 6)).Record(28).Record(75, {0, 5})),
              "..####..");
}

TEST(EmfBitmaps, CopiesEveryPixelAtItsPlace) {
    const ByteList record = ByteList()
                                .Longs({0, 0, 0, 0, 3, 4, 0, 0, 2, 2})
                                .Append(BitmapPlace(72).bytes)
                                .Longs({0, 0x00CC0020, 2, 2})
                                .Append(FourColours());
    const Image image = Draw(EmfBuilder(9, 9).Record(81, record));
    EXPECT_EQ(InkOf(image.View()), (Rect{3, 4, 5, 6}));
    EXPECT_EQ(image.View().Pixel(3, 4), kRed);
    EXPECT_EQ(image.View().Pixel(4, 4), kGreen);
    EXPECT_EQ(image.View().Pixel(3, 5), kBlue);
}

// Target, operation, source, its transform, ground, usage, bitmap, source size.
ByteList Stretch(std::uint32_t operation, const Bytes& dib) {
    ByteList record;
    record.Longs({0, 0, 0, 0, 0, 0, 2, 2, operation, 0, 0});
    record.F32(1).F32(0).F32(0).F32(1).F32(0).F32(0).Longs({0, 0});
    return record.Append(BitmapPlace(100).bytes).Longs({2, 2}).Append(dib);
}

TEST(EmfBitmaps, AlphaBlendsAndColoursAreLeftOut) {
    const Image half = Draw(Page(2, 2).Record(114, Stretch(0x00800000, FourColours())));
    EXPECT_TRUE(test::NearPixels(
        half.View(),
        [] {
            Image expected = test::FlatImage({2, 2}, {255, 127, 127});
            expected.View().SetPixel(1, 0, {127, 255, 127});
            expected.View().SetPixel(0, 1, {127, 127, 255});
            expected.View().SetPixel(1, 1, {127, 127, 127});
            return expected;
        }()
            .View(),
        2));
    const Image keyed =
        Draw(Page(2, 2).Rectangle(0, 0, 2, 2).Record(116, Stretch(kGreenRef, FourColours())));
    EXPECT_EQ(keyed.View().Pixel(1, 0), kRed) << "green is the colour that is left out";
    EXPECT_EQ(keyed.View().Pixel(0, 1), kBlue);
    const Bytes own = test::Dib(2, -1, 32, {}, {0, 0, 0, 0, 0, 0, 128, 128});
    ByteList record = Stretch(0x01FF0000, own);
    const Image alpha = Draw(EmfBuilder(2, 2).Record(114, record));
    EXPECT_EQ(alpha.View().Pixel(0, 0), kWhite);
    EXPECT_TRUE(alpha.View().Pixel(1, 0).green < 130 && alpha.View().Pixel(1, 0).red == 255);
}

TEST(EmfBitmaps, MasksLeaveTheirBlackPixelsOut) {
    const Bytes mask = test::Dib(2, -2, 1, {0, 0xFFFFFF}, {0x80, 0, 0, 0, 0x40, 0, 0, 0});
    ByteList record;
    record.Longs({0, 0, 0, 0, 0, 0, 2, 2, 0xAACC0020, 0, 0});
    record.F32(1).F32(0).F32(0).F32(1).F32(0).F32(0).Longs({0, 0});
    record.Append(BitmapPlace(120).bytes).Longs({0, 0, 0, 8 + 120 + 56, 48, 8 + 120 + 104, 8});
    record.Append(FourColours()).Append(mask);
    const Image image = Draw(EmfBuilder(2, 2).Record(78, record));
    EXPECT_EQ(image.View().Pixel(0, 0), kRed);
    EXPECT_EQ(image.View().Pixel(1, 0), kWhite);
    EXPECT_EQ(image.View().Pixel(0, 1), kWhite);
    EXPECT_EQ(image.View().Pixel(1, 1), kBlack);
}

TEST(EmfBitmaps, ParallelogramsTurn) {
    ByteList record;
    record.Longs({0, 0, 0, 0, 2, 0, 2, 2, 0, 0, 0, 0, 2, 2});
    record.F32(1).F32(0).F32(0).F32(1).F32(0).F32(0).Longs({0, 0});
    record.Append(BitmapPlace(132).bytes).Longs({0, 0, 0, 0, 0, 0, 0}).Append(FourColours());
    const Image image = Draw(EmfBuilder(2, 2).Record(79, record));
    EXPECT_EQ(image.View().Pixel(1, 0), kRed) << "a quarter turn clockwise";
    EXPECT_EQ(image.View().Pixel(1, 1), kGreen);
    EXPECT_EQ(image.View().Pixel(0, 0), kBlue);
}

TEST(EmfBitmaps, SetToDevicePlacesTheRowsThatAreThere) {
    const auto record = [](int firstScan, int scans) {
        return ByteList()
            .Longs({0, 0, 0, 0, 1, 1, 0, 0, 2, 2})
            .Append(BitmapPlace(68).bytes)
            .Longs({0, firstScan, scans})
            .Append(FourColours());
    };
    const Image whole = Draw(EmfBuilder(4, 4).Record(80, record(0, 2)));
    EXPECT_EQ(whole.View().Pixel(1, 1), kRed);
    EXPECT_EQ(whole.View().Pixel(1, 2), kBlue);
    const Image lower = Draw(EmfBuilder(4, 4).Record(80, record(0, 1)));
    EXPECT_EQ(InkOf(lower.View()), (Rect{1, 2, 3, 3})) << "the first row stored is the lowest";
}

TEST(EmfGradients, BlendFromSideToSide) {
    ByteList record;
    record.Longs({0, 0, 0, 0, 2, 1, 0});
    record.Longs({0, 0}).Words({0xFF00, 0, 0, 0}).Longs({100, 10}).Words({0, 0, 0xFF00, 0});
    record.Longs({0, 1});
    const Image image = Draw(EmfBuilder(100, 10).Record(118, record));
    EXPECT_GT(image.View().Pixel(2, 5).red, 240);
    EXPECT_GT(image.View().Pixel(97, 5).blue, 240);
    EXPECT_NEAR(image.View().Pixel(50, 5).red, 127, 4);
    EXPECT_EQ(image.View().Pixel(50, 0), image.View().Pixel(50, 9));
}

TEST(EmfGradients, TrianglesBlendBetweenTheirCorners) {
    ByteList record;
    record.Longs({0, 0, 0, 0, 3, 1, 2});
    record.Longs({0, 0}).Words({0xFF00, 0, 0, 0}).Longs({100, 0}).Words({0, 0xFF00, 0, 0});
    record.Longs({0, 100}).Words({0, 0, 0xFF00, 0}).Longs({0, 1, 2});
    const Image image = Draw(EmfBuilder(100, 100).Record(118, record));
    EXPECT_GT(image.View().Pixel(2, 2).red, 230);
    EXPECT_GT(image.View().Pixel(95, 1).green, 220);
    EXPECT_GT(image.View().Pixel(1, 95).blue, 220);
    const Rgb middle = image.View().Pixel(33, 33);
    EXPECT_NEAR(middle.red, 85, 15);
    EXPECT_NEAR(middle.green, 85, 15);
    EXPECT_EQ(image.View().Pixel(80, 80), kWhite);
}

ByteList FontRecord(int height) {
    ByteList font;
    font.Longs({5, height, 0, 0, 0, 400}).U32(0).U32(0);
    for (const char c : {'A', 'r', 'i', 'a', 'l'}) font.U16(static_cast<std::uint8_t>(c));
    font.bytes.resize(4 + 28 + 64);
    return font;
}
ByteList TextRecord(std::initializer_list<int> units, int options) {
    ByteList text;
    const auto count = static_cast<std::int64_t>(units.size());
    text.Longs({0, 0, 0, 0, 1}).F32(1).F32(1).Longs({10, 10, count, 76, options, 0, 0, 0, 0, 0});
    return text.Words(units);
}

TEST(EmfText, Utf16AndGlyphNumbers) {
    const auto draw = [](const ByteList& text) {
        return Draw(EmfBuilder(200, 60)
                        .Record(18, {1})
                        .Record(82, FontRecord(-40))
                        .Record(37, {5})
                        .Record(84, text));
    };
    const Image letters = draw(TextRecord({'H', 'i'}, 0x100));
    EXPECT_NEAR(InkOf(letters.View()).bottom, 46, 3);
    EXPECT_TRUE(test::SamePixels(letters, draw(TextRecord({'H' - 29, 'i' - 29}, 0x110))));
    EXPECT_GT(InkOf(draw(TextRecord({0xD83D, 0xDE00}, 0x100)).View()).right, 10) << "a pair";
    draw(TextRecord({0xD83D}, 0x100));  // half a pair
}

TEST(EmfText, RecordsThatPointOutsideAreEmpty) {
    ByteList text;
    text.Longs({0, 0, 0, 0, 1}).F32(1).F32(1);
    text.Longs({10, 10, 0x40000000, 0xFFFFFFF0, 0, 0, 0, 0, 0, 0xFFFFFFF0});
    EXPECT_EQ(CountOf(Draw(EmfBuilder(9, 9).Record(84, text)).View(), kWhite), 81);
}

}  // namespace
}  // namespace lumo::imaging::codecs
