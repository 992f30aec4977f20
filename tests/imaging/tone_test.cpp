#include "imaging/tone.h"

#include <gtest/gtest.h>

#include <cmath>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

using Histogram = std::array<std::uint64_t, 256>;

TEST(ContrastLut, NoChangeIsTheIdentity) {
    EXPECT_EQ(ContrastLut(0, 0), IdentityLut());
}

TEST(ContrastLut, FollowsTheFormula) {
    // 0.3 more brightness: 76.5 levels more, rounded.
    EXPECT_EQ(ContrastLut(0.3, 0)[0], 77);
    EXPECT_EQ(ContrastLut(0.4, 0)[100], 202);
    EXPECT_EQ(ContrastLut(0.4, 0)[200], 255);
    EXPECT_EQ(ContrastLut(-0.5, 0)[100], 0);
    // Half the contrast below 0, twice the contrast at 0.5.
    EXPECT_EQ(ContrastLut(0, -0.5)[0], 64);
    EXPECT_EQ(ContrastLut(0, -0.5)[255], 191);
    EXPECT_EQ(ContrastLut(0, 0.5)[100], 73);
    EXPECT_EQ(ContrastLut(0, 0.5)[63], 0);
    for (const std::uint8_t level : ContrastLut(0, -1)) EXPECT_EQ(level, 128);
}

TEST(ContrastLut, FullContrastIsAThresholdAtMidGrey) {
    const Lut lut = ContrastLut(0, 1);
    for (std::size_t v = 0; v < 256; ++v) EXPECT_EQ(lut[v], v < 128 ? 0 : 255);
}

TEST(ContrastLut, SharesBeyondOneAreDefined) {
    for (const double share : {-21474836.48, -2.0, 2.0, 21474836.47})
        for (const double other : {-21474836.48, 0.0, 1.0, 21474836.47}) {
            (void)ContrastLut(share, other);
            (void)ContrastLut(other, share);
        }
    EXPECT_EQ(ContrastLut(0, 2)[0], 255);  // k is -1
    EXPECT_EQ(ContrastLut(0, -2)[0], 255);
}

TEST(AdjustBrightnessContrast, AppliesTheTableToAllChannels) {
    Image image = test::FlatImage({3, 2}, {100, 200, 0});
    EXPECT_TRUE(AdjustBrightnessContrast(image.View(), 0.1, 0));
    EXPECT_EQ(image.View().Pixel(2, 1), (Rgb{126, 226, 26}));
}

TEST(AdjustGamma, FollowsTheFormula) {
    const Image before = test::RandomImage({9, 7}, 1);
    for (const double gamma : {0.1, 0.45, 1.0, 1.8, 2.2, 10.0}) {
        Image after = test::Copy(before.View());
        ASSERT_TRUE(AdjustGamma(after.View(), gamma));
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 9; ++x)
                for (int c = 0; c < 3; ++c) {
                    const double share = before.View().At(x, y)[c] / 255.0;
                    EXPECT_EQ(after.View().At(x, y)[c],
                              std::lround(255 * std::pow(share, 1 / gamma)));
                }
        EXPECT_EQ(gamma == 1.0, static_cast<bool>(test::SamePixels(after, before)));
    }
}

TEST(AdjustGamma, AboveOneBrightens) {
    Image image = test::FlatImage({1, 1}, {64, 128, 255});
    ASSERT_TRUE(AdjustGamma(image.View(), 2));
    EXPECT_EQ(image.View().Pixel(0, 0), (Rgb{128, 181, 255}));
}

TEST(AdjustGamma, RefusesWhatIsNotAboveZero) {
    Image image = test::FlatImage({2, 2}, {64, 128, 255});
    for (const double gamma : {0.0, -1.0, std::nan("")}) {
        ClearLastError();
        EXPECT_FALSE(AdjustGamma(image.View(), gamma));
        EXPECT_EQ(LastError(), "gamma is not above 0");
    }
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({2, 2}, {64, 128, 255})));
    EXPECT_TRUE(AdjustGamma(image.View(), 1e-310));  // everything but white goes black
    EXPECT_EQ(image.View().Pixel(0, 0), (Rgb{0, 0, 255}));
}

TEST(LuminanceLut, StretchFillsTheRangeFromTheOccupiedLevels) {
    Histogram histogram{};
    histogram[50] = histogram[100] = histogram[150] = 1;
    const Lut lut = LuminanceLut(histogram, 0, 255, HistogramMode::Stretch);
    EXPECT_EQ(lut[0], 0);
    EXPECT_EQ(lut[50], 0);
    EXPECT_EQ(lut[100], 128);
    EXPECT_EQ(lut[150], 255);
    EXPECT_EQ(lut[200], 255);
}

TEST(LuminanceLut, StretchLooksBetweenTheLimitsOnly) {
    Histogram histogram{};
    histogram[0] = histogram[60] = histogram[180] = histogram[255] = 1;
    const Lut lut = LuminanceLut(histogram, 40, 200, HistogramMode::Stretch);
    EXPECT_EQ(lut[60], 0);
    EXPECT_EQ(lut[120], 128);
    EXPECT_EQ(lut[180], 255);
    EXPECT_EQ(lut[255], 255);
}

TEST(LuminanceLut, EqualizeGivesEachOccupiedLevelItsShare) {
    Histogram histogram{};
    histogram[10] = histogram[11] = histogram[12] = 5;
    const Lut lut = LuminanceLut(histogram, 0, 255, HistogramMode::Equalize);
    EXPECT_EQ(lut[10], 0);
    EXPECT_EQ(lut[11], 128);
    EXPECT_EQ(lut[12], 255);
}

TEST(LuminanceLut, EqualizeLeavesTheLevelsBeyondTheLimits) {
    Histogram histogram{};
    for (const std::size_t level : {5U, 100U, 110U, 120U, 230U}) histogram[level] = 7;
    const Lut lut = LuminanceLut(histogram, 50, 200, HistogramMode::Equalize);
    EXPECT_EQ(lut[5], 5);
    EXPECT_EQ(lut[100], 50);
    EXPECT_EQ(lut[110], 125);
    EXPECT_EQ(lut[120], 200);
    EXPECT_EQ(lut[230], 230);
}

TEST(LuminanceLut, NeverTurnsTheOrderAround) {
    const Image noise = test::PhotoLikeImage({61, 47});
    const Histogram histogram = LumaHistogram(noise.View());
    for (const auto mode : {HistogramMode::Stretch, HistogramMode::Equalize})
        for (const int low : {0, 40, 127})
            for (const int high : {128, 200, 255}) {
                const Lut lut = LuminanceLut(histogram, low, high, mode);
                EXPECT_TRUE(std::is_sorted(lut.begin(), lut.end())) << low << ".." << high;
            }
}

TEST(LuminanceLut, OneOccupiedLevelStays) {
    Histogram histogram{};
    histogram[77] = 9;
    for (const auto mode : {HistogramMode::Stretch, HistogramMode::Equalize}) {
        EXPECT_EQ(LuminanceLut(histogram, 0, 255, mode), IdentityLut());
        EXPECT_EQ(LuminanceLut(histogram, 100, 255, mode), IdentityLut());
        EXPECT_EQ(LuminanceLut(histogram, 77, 77, mode), IdentityLut());
    }
}

/// The stated rule for one pixel, in doubles.
Rgb MovedPlainly(Rgb p, const Lut& lut) {
    const double y = ComputeLuma(p), to = lut[ComputeLuma(p)];
    double k = to == y ? 1 : std::min(to / y, 2.0);
    const double max = std::max({p.red, p.green, p.blue});
    if (to + (max - y) * k > 255) k = (255 - to) / (max - y);
    const auto channel = [&](double c) {
        return static_cast<std::uint8_t>(std::clamp(to + (c - y) * k + 0.5, 0.0, 255.0));
    };
    return {channel(p.red), channel(p.green), channel(p.blue)};
}

TEST(AutoBrightnessRGB, MovesEachPixelByTheRule) {
    for (const auto mode : {HistogramMode::Stretch, HistogramMode::Equalize})
        for (const Size size : {Size{1, 1}, Size{3, 2}, Size{17, 5}, Size{67, 43}, Size{259, 3}}) {
            const Image before = test::PhotoLikeImage(size);
            const Lut lut = LuminanceLut(LumaHistogram(before.View()), 20, 230, mode);
            Image expected = test::Copy(before.View());
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    expected.View().SetPixel(x, y, MovedPlainly(before.View().Pixel(x, y), lut));
            Image after = test::Copy(before.View());
            ASSERT_TRUE(AutoBrightnessRGB(after.View(), 20, 230, mode));
            EXPECT_TRUE(test::NearPixels(after.View(), expected.View(), 1));
        }
}

TEST(AutoBrightnessRGB, StretchReachesBlackAndWhite) {
    Image image = test::FlatImage({3, 1}, {100, 100, 100});
    image.View().SetPixel(1, 0, {120, 120, 120});
    image.View().SetPixel(2, 0, {150, 150, 150});
    ASSERT_TRUE(AutoBrightnessRGB(image.View(), 0, 255, HistogramMode::Stretch));
    EXPECT_EQ(image.View().Pixel(0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(image.View().Pixel(1, 0), (Rgb{102, 102, 102}));
    EXPECT_EQ(image.View().Pixel(2, 0), (Rgb{255, 255, 255}));
}

TEST(AutoBrightnessRGB, KeepsTheHue) {
    Image image = test::FlatImage({3, 1}, {0, 0, 0});
    image.View().SetPixel(1, 0, {90, 60, 30});
    image.View().SetPixel(2, 0, {128, 128, 128});
    const int hue = RgbToHsl({90, 60, 30}).hue;
    ASSERT_TRUE(AutoBrightnessRGB(image.View(), 0, 255, HistogramMode::Stretch));
    EXPECT_NEAR(RgbToHsl(image.View().Pixel(1, 0)).hue, hue, 1);
    EXPECT_NEAR(ComputeLuma(image.View().Pixel(1, 0)), 66 * 255 / 128, 1);
}

TEST(AutoBrightnessRGB, GreyStaysGreyAndAFullRangeStays) {
    Image ramp = test::FlatImage({256, 1}, {0, 0, 0});
    for (int x = 0; x < 256; ++x) {
        const auto v = static_cast<std::uint8_t>(x);
        ramp.View().SetPixel(x, 0, {v, v, v});
    }
    const Image before = test::Copy(ramp.View());
    ASSERT_TRUE(AutoBrightnessRGB(ramp.View(), 0, 255, HistogramMode::Stretch));
    EXPECT_TRUE(test::SamePixels(ramp, before));
    ASSERT_TRUE(AutoBrightnessRGB(ramp.View(), 0, 255, HistogramMode::Equalize));
    EXPECT_TRUE(test::SamePixels(ramp, before));  // flat already
    ASSERT_TRUE(AutoBrightnessRGB(ramp.View(), 50, 150, HistogramMode::Stretch));
    for (int x = 0; x < 256; ++x) {
        const Rgb p = ramp.View().Pixel(x, 0);
        EXPECT_TRUE(p.red == p.green && p.red == p.blue);
    }
}

TEST(AutoBrightnessRGB, AFlatPictureStays) {
    for (const Rgb colour : {Rgb{0, 0, 0}, Rgb{3, 0, 4}, Rgb{90, 60, 30}, Rgb{255, 255, 255}})
        for (const auto mode : {HistogramMode::Stretch, HistogramMode::Equalize}) {
            Image image = test::FlatImage({5, 3}, colour);
            ASSERT_TRUE(AutoBrightnessRGB(image.View(), 0, 255, mode));
            EXPECT_TRUE(test::SamePixels(image, test::FlatImage({5, 3}, colour)));
        }
}

TEST(AutoBrightnessRGB, LimitsBeyondTheLevelsActAsTheLevels) {
    const Image before = test::PhotoLikeImage({31, 17});
    Image wide = test::Copy(before.View()), all = test::Copy(before.View());
    ASSERT_TRUE(AutoBrightnessRGB(wide.View(), -5000, 70000, HistogramMode::Equalize));
    ASSERT_TRUE(AutoBrightnessRGB(all.View(), 0, 255, HistogramMode::Equalize));
    EXPECT_TRUE(test::SamePixels(wide, all));
}

TEST(AutoBrightnessRGB, RefusesCrossedLimits) {
    const Image before = test::PhotoLikeImage({7, 5});
    Image after = test::Copy(before.View());
    ClearLastError();
    EXPECT_FALSE(AutoBrightnessRGB(after.View(), 200, 100, HistogramMode::Stretch));
    EXPECT_EQ(LastError(), "the low threshold is above the high one");
    EXPECT_TRUE(test::SamePixels(after, before));
}

TEST(ToneOperations, RefuseAnEmptyPicture) {
    EXPECT_FALSE(AdjustBrightnessContrast({}, 0, 0));
    EXPECT_FALSE(AdjustGamma({}, 1));
    EXPECT_FALSE(AutoBrightnessRGB({}, 0, 255, HistogramMode::Stretch));
}

}  // namespace
}  // namespace lumo::imaging
