#include "imaging/colour.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

TEST(Hsl, GoesThereAndBackWithTheLossOfWholePercents) {
    const struct {
        Rgb pixel;
        Hsl hsl;
        Rgb back;
    } rows[] = {
        {{200, 200, 200}, {0, 0, 78}, {198, 198, 198}},
        {{128, 128, 128}, {0, 0, 50}, {127, 127, 127}},
        {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
        {{255, 255, 255}, {0, 0, 100}, {255, 255, 255}},
        {{255, 0, 0}, {0, 100, 50}, {255, 0, 0}},
        {{100, 150, 200}, {210, 47, 58}, {97, 147, 198}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(RgbToHsl(row.pixel), row.hsl) << int{row.pixel.red};
        EXPECT_EQ(HslToRgb(row.hsl), row.back) << int{row.pixel.red};
    }
}

TEST(RgbToHsl, TakesTheHueOfTheLastChannelAtTheMaximum) {
    EXPECT_EQ(RgbToHsl({0, 255, 0}).hue, 120);
    EXPECT_EQ(RgbToHsl({0, 0, 255}).hue, 240);
    EXPECT_EQ(RgbToHsl({255, 0, 255}).hue, 300);  // red and blue tie: blue's formula
    EXPECT_EQ(RgbToHsl({255, 255, 0}).hue, 60);
    EXPECT_EQ(RgbToHsl({255, 0, 1}).hue, 0);     // truncated from -0.24 before 360 would be added
    EXPECT_EQ(RgbToHsl({255, 0, 20}).hue, 356);  // -4.7 becomes -4
}

TEST(RgbToHsl, StaysInItsRangesForEveryColour) {
    for (int red = 0; red < 256; red += 5)
        for (int green = 0; green < 256; green += 3)
            for (int blue = 0; blue < 256; ++blue) {
                const Rgb pixel{static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                                static_cast<std::uint8_t>(blue)};
                const Hsl hsl = RgbToHsl(pixel);
                ASSERT_TRUE(hsl.hue >= 0 && hsl.hue < 360 && hsl.saturation >= 0 &&
                            hsl.saturation <= 100 && hsl.lightness >= 0 && hsl.lightness <= 100)
                    << red << ", " << green << ", " << blue;
            }
}

TEST(AdjustHsl, ChangesInProportionAndTruncates) {
    EXPECT_EQ(AdjustHsl({0, 30, 0}, 0, 50, 0).saturation, 45);
    EXPECT_EQ(AdjustHsl({0, 1, 0}, 0, 50, 0).saturation, 1);
    EXPECT_EQ(AdjustHsl({0, 0, 0}, 0, 300, 300), (Hsl{0, 0, 0}));
    EXPECT_EQ(AdjustHsl({0, 80, 80}, 0, 100, -200), (Hsl{0, 100, 0}));
    EXPECT_EQ(AdjustHsl({0, 50, 51}, 0, -33, -1), (Hsl{0, 34, 51}));  // -16.5 and -0.51 towards 0
}

TEST(AdjustHsl, WrapsTheHueOnceAndKeeps360) {
    EXPECT_EQ(AdjustHsl({5, 0, 0}, -10, 0, 0).hue, 355);
    EXPECT_EQ(AdjustHsl({355, 0, 0}, 5, 0, 0).hue, 360);
    EXPECT_EQ(AdjustHsl({355, 0, 0}, 6, 0, 0).hue, 1);
    EXPECT_EQ(AdjustHsl({10, 0, 0}, 800, 0, 0).hue, 450);
}

TEST(Hsl, AbsurdValuesGiveSomePixelAndNoOverflow) {
    for (const int value : {INT_MIN, -100000, -361, -1, 0, 361, 100000, INT_MAX}) {
        const Hsl adjusted = AdjustHsl({359, 100, 100}, value, value, value);
        HslToRgb(adjusted);
        HslToRgb({value, value, value});
        EXPECT_TRUE(adjusted.saturation >= 0 && adjusted.saturation <= 100) << value;
    }
    EXPECT_EQ(HslToRgb({0, 0, 101}), (Rgb{1, 1, 1}));  // 257.55: the low 8 bits of 257
}

TEST(HslToRgb, Hue360IsHue0) {
    EXPECT_EQ(HslToRgb({360, 100, 50}), HslToRgb({0, 100, 50}));
}

TEST(ComputeLuma, RoundsTheWeightedSum) {
    EXPECT_EQ(ComputeLuma(255, 0, 0), 76);   // 76.245
    EXPECT_EQ(ComputeLuma(0, 255, 0), 150);  // 149.685
    EXPECT_EQ(ComputeLuma(0, 0, 255), 29);   // 29.07
    for (int v = 0; v < 256; ++v) EXPECT_EQ(ComputeLuma(v, v, v), v);
}

// One row of every colour with that red.
Image AllColours(int red) {
    Image image = test::FlatImage({256, 256}, {});
    for (int green = 0; green < 256; ++green)
        for (int blue = 0; blue < 256; ++blue)
            image.View().SetPixel(blue, green,
                                  {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                                   static_cast<std::uint8_t>(blue)});
    return image;
}

// Doubles in the written order, each step rounded: what every path has to give.
std::uint8_t PlainLuma(Rgb pixel) {
    const volatile double red = 0.299 * pixel.red;
    const volatile double green = 0.587 * pixel.green;
    const volatile double blue = 0.114 * pixel.blue;
    const volatile double two = red + green;
    const volatile double three = two + blue;
    return static_cast<std::uint8_t>(three + 0.5);
}

TEST(ImageToGrayScale, IsTheLumaOfEveryColourThereIs) {
    for (int red = 0; red < 256; ++red) {
        const Image source = AllColours(red);
        Image grey = test::Copy(source.View());
        ASSERT_TRUE(ImageToGrayScale(grey.View()));
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                const std::uint8_t luma = PlainLuma(source.View().Pixel(x, y));
                ASSERT_EQ(grey.View().Pixel(x, y), (Rgb{luma, luma, luma})) << red;
            }
    }
}

constexpr int kWidths[] = {1, 2, 5, 15, 16, 17, 21, 22, 43, 63, 64, 65, 129, 300, 5000};

TEST(Luma, IsTheSameForEveryLengthAndInstructionSet) {
    for (const int width : kWidths) {
        const Image source = test::RandomImage({width, 3}, 5);
        const std::size_t area = source.View().Extent().Area();
        std::vector<std::uint8_t> expected;
        std::array<std::uint64_t, 256> counts{};
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < width; ++x) {
                expected.push_back(PlainLuma(source.View().Pixel(x, y)));
                ++counts[expected.back()];
            }
        test::ForEachSimdTarget([&](const std::string& name) {
            SCOPED_TRACE(name + ", width " + std::to_string(width));
            Image grey = test::Copy(source.View());
            ASSERT_TRUE(ImageToGrayScale(grey.View()));
            for (std::size_t i = 0; i < area; ++i)
                ASSERT_EQ(grey.View().Bytes()[3 * i + 1], expected[i]) << i;
            std::vector<std::uint8_t> luma(area);
            ASSERT_TRUE(ImageToGrayScale8Bit(source.View(), luma));
            EXPECT_EQ(luma, expected);
            EXPECT_EQ(LumaHistogram(source.View()), counts);
        });
    }
}

struct Tables {
    Lut red{}, green{}, blue{};
    Tables() {
        for (std::size_t i = 0; i < 256; ++i) {
            red[i] = static_cast<std::uint8_t>(255 - i);
            green[i] = static_cast<std::uint8_t>(i * 7 + 3);
            blue[i] = static_cast<std::uint8_t>(i / 2);
        }
    }
};

TEST(ApplyLUTsToImage, ReplacesEachChannelByItsTable) {
    const Tables tables;
    for (const int width : kWidths) {
        const Image source = test::RandomImage({width, 3}, 5);
        for (int mask = 0; mask < 8; ++mask)
            test::ForEachSimdTarget([&](const std::string& name) {
                const LutSet luts{(mask & 1) != 0 ? &tables.red : nullptr,
                                  (mask & 2) != 0 ? &tables.green : nullptr,
                                  (mask & 4) != 0 ? &tables.blue : nullptr};
                Image image = test::Copy(source.View());
                ASSERT_TRUE(ApplyLUTsToImage(image.View(), luts));
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < width; ++x) {
                        const Rgb p = source.View().Pixel(x, y);
                        const Rgb expected{luts.red ? tables.red[p.red] : p.red,
                                           luts.green ? tables.green[p.green] : p.green,
                                           luts.blue ? tables.blue[p.blue] : p.blue};
                        ASSERT_EQ(image.View().Pixel(x, y), expected) << name << ", " << x;
                    }
            });
    }
}

TEST(ToneGrayScale, LooksTheLumaUp) {
    const Tables tables;
    for (const int width : kWidths) {
        const Image source = test::RandomImage({width, 3}, 6);
        Image image = test::Copy(source.View());
        ASSERT_TRUE(ToneGrayScale(image.View(), {&tables.red, &tables.green, &tables.blue}));
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < width; ++x) {
                const std::uint8_t luma = PlainLuma(source.View().Pixel(x, y));
                const Rgb expected{tables.red[luma], tables.green[luma], tables.blue[luma]};
                ASSERT_EQ(image.View().Pixel(x, y), expected) << x << " of " << width;
            }
    }
}

TEST(RGBToBGR, ExchangesTheOuterChannels) {
    const Image source = test::CoordinateImage({9, 4});
    Image image = test::Copy(source.View());
    ASSERT_TRUE(RGBToBGR(image.View()));
    EXPECT_EQ(image.View().Pixel(8, 3), (Rgb{7, 3, 8}));
    ASSERT_TRUE(RGBToBGR(image.View()));
    EXPECT_TRUE(test::SamePixels(image, source));
}

TEST(Colour, OperationsOnPicturesRefuseNone) {
    ClearLastError();
    EXPECT_FALSE(ApplyLUTsToImage({}, {}));
    EXPECT_EQ(LastError(), "the picture is empty");
    EXPECT_FALSE(ImageToGrayScale({}));
    EXPECT_FALSE(ToneGrayScale({}, {}));
    EXPECT_FALSE(ImageToGrayScale8Bit({}, {}));
    EXPECT_FALSE(RGBToBGR({}));
}

TEST(Colour, SeveralThreadsGiveTheSameBytes) {
    const Tables tables;
    const Image source = test::RandomImage({1500, 1200}, 2);
    Image one = test::Copy(source.View());
    ASSERT_TRUE(ToneGrayScale(one.View(), {&tables.red, &tables.green, &tables.blue}));
    SetKernelThreads(4);
    Image four = test::Copy(source.View());
    ASSERT_TRUE(ToneGrayScale(four.View(), {&tables.red, &tables.green, &tables.blue}));
    SetKernelThreads(1);
    EXPECT_TRUE(test::SamePixels(four, one));
}

}  // namespace
}  // namespace lumo::imaging
