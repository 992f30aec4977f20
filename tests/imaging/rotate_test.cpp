#include "imaging/rotate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/quick_rotate.h"
#include "imaging/rotate_kernels.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

constexpr Rgb kCanvas{10, 200, 90};

double Degrees(double degrees) {
    return degrees * 3.14159 / 180.0;
}

Image Turned(const Image& source, double radians, Rgb canvas = kCanvas) {
    Size size;
    EXPECT_TRUE(GetRotatedPixelSize(radians, source.Extent(), size));
    Image target = test::FlatImage(size, canvas);
    EXPECT_TRUE(RotateImage(source.View(), target.View(), radians));
    return target;
}

std::array<double, 4> Cubic(double t) {
    return {(-t * t * t + 2 * t * t - t) / 2, (3 * t * t * t - 5 * t * t + 2) / 2,
            (-3 * t * t * t + 4 * t * t + t) / 2, (t * t * t - t * t) / 2};
}

// In doubles, pixel by pixel, from the definition.
Image TurnedPlainly(const Image& source, double radians, Size size, Rgb canvas) {
    Image target = test::FlatImage(size, canvas);
    const int W = source.Width(), H = source.Height();
    const double c = std::cos(radians), s = std::sin(radians);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double dx = x + 0.5 - size.width / 2.0, dy = y + 0.5 - size.height / 2.0;
            const double u = W / 2.0 + dx * c + dy * s, v = H / 2.0 - dx * s + dy * c;
            const auto share = [](double at, double side) {
                return std::max(0.0, std::min(at + 0.5, side) - std::max(at - 0.5, 0.0));
            };
            const double alpha = share(u, W) * share(v, H);
            if (alpha == 0) continue;
            const int x0 = static_cast<int>(std::floor(u - 0.5));
            const int y0 = static_cast<int>(std::floor(v - 0.5));
            const auto across = Cubic(u - 0.5 - x0), down = Cubic(v - 0.5 - y0);
            for (int channel = 0; channel < 3; ++channel) {
                double sum = 0;
                for (int j = 0; j < 4; ++j)
                    for (int i = 0; i < 4; ++i)
                        sum += down[static_cast<std::size_t>(j)] *
                               across[static_cast<std::size_t>(i)] *
                               source.View().At(std::clamp(x0 + i - 1, 0, W - 1),
                                                std::clamp(y0 + j - 1, 0, H - 1))[channel];
                std::uint8_t& out = target.View().At(x, y)[channel];
                out = static_cast<std::uint8_t>(
                    std::lround(std::clamp(sum, 0.0, 255.0) * alpha + out * (1 - alpha)));
            }
        }
    return target;
}

TEST(GetRotatedPixelSize, IsTheSmallestUprightRectangle) {
    const auto turned = [](double radians, Size size) {
        Size result;
        EXPECT_TRUE(GetRotatedPixelSize(radians, size, result));
        return result;
    };
    EXPECT_EQ(turned(Degrees(20), {640, 480}), (Size{766, 670}));  // 765.57 by 669.94
    EXPECT_EQ(turned(Degrees(45), {100, 100}), (Size{142, 142}));  // 141.42
    EXPECT_EQ(turned(Degrees(160), {640, 480}), (Size{766, 670}));
    EXPECT_EQ(turned(Degrees(-20), {640, 480}), (Size{766, 670}));
    EXPECT_EQ(turned(Degrees(1), {1, 1}), (Size{2, 2}));            // 1.02
    EXPECT_EQ(turned(Degrees(30), {2000, 1}), (Size{1733, 1001}));  // 1732.55 by 1000.87
}

TEST(GetRotatedPixelSize, RightAnglesKeepOrExchangeTheSides) {
    for (const Size size : {Size{640, 480}, Size{30000, 3}, Size{1, 1}})
        for (int quarters = -9; quarters <= 9; ++quarters) {
            Size turned;
            // From 359 degrees on a pi of six figures is too far off to be told apart.
            const double pi = std::abs(quarters) < 4 ? 3.14159 : 3.14159265358979;
            ASSERT_TRUE(GetRotatedPixelSize(quarters * 90 * pi / 180.0, size, turned));
            EXPECT_EQ(turned, quarters % 2 == 0 ? size : (Size{size.height, size.width}));
        }
}

TEST(GetRotatedPixelSize, RefusesWhatIsNoPicture) {
    Size turned{7, 7};
    EXPECT_FALSE(GetRotatedPixelSize(0.3, {0, 5}, turned));
    EXPECT_FALSE(GetRotatedPixelSize(0.3, {std::numeric_limits<int>::max(), 5}, turned));
    EXPECT_FALSE(GetRotatedPixelSize(std::numeric_limits<double>::quiet_NaN(), {5, 5}, turned));
    EXPECT_EQ(turned, (Size{7, 7}));
}

TEST(RotateImage, IsTheCubicConvolutionBlendedIntoTheCanvas) {
    for (const Size size : {Size{1, 1}, Size{2, 1}, Size{1, 9}, Size{3, 3}, Size{8, 5},
                            Size{17, 40}, Size{300, 41}, Size{64, 290}})
        for (const double degrees : {1.0, 20.0, 45.0, 89.0, 91.0, 133.0, 200.0, 271.0, 359.0}) {
            const Image source = test::RandomImage(size, 5);
            const Image turned = Turned(source, Degrees(degrees));
            // Positions are told apart by 1 / 1024 of a pixel, and noise is as steep as can be.
            ASSERT_TRUE(test::NearPixels(
                turned.View(),
                TurnedPlainly(source, Degrees(degrees), turned.Extent(), kCanvas).View(), 2))
                << size.width << " x " << size.height << " by " << degrees;
        }
}

TEST(RotateImage, IsCloserThanOneLevelOnPhotographs) {
    const Image source = test::PhotoLikeImage({301, 203}, 5);
    for (const double degrees : {7.0, 33.0, 120.0}) {
        const Image turned = Turned(source, Degrees(degrees));
        EXPECT_TRUE(test::NearPixels(
            turned.View(), TurnedPlainly(source, Degrees(degrees), turned.Extent(), kCanvas).View(),
            1));
    }
}

TEST(RotateImage, AFlatPictureStaysFlatAndItsEdgeLiesBetweenTheTwoColours) {
    const Image turned = Turned(test::FlatImage({61, 47}, {250, 3, 128}), Degrees(20));
    int inside = 0, between = 0;
    for (int y = 0; y < turned.Height(); ++y)
        for (int x = 0; x < turned.Width(); ++x) {
            const Rgb p = turned.View().Pixel(x, y);
            EXPECT_TRUE(p.red >= 10 && p.red <= 250 && p.green >= 3 && p.green <= 200 &&
                        p.blue >= 90 && p.blue <= 128);  // no ringing
            if (p == Rgb{250, 3, 128})
                ++inside;
            else if (!(p == kCanvas))
                ++between;
        }
    // What is covered adds up to the area of the picture.
    EXPECT_NEAR(inside + between / 2.0, 61 * 47, 30);
    EXPECT_GT(between, 2 * (61 + 47) / 2);
    EXPECT_LT(between, 3 * 2 * (61 + 47));
}

TEST(RotateImage, OfTheCanvasColourLeavesNoTrace) {
    const Image turned = Turned(test::FlatImage({61, 47}, kCanvas), Degrees(77));
    EXPECT_TRUE(test::SamePixels(turned, test::FlatImage(turned.Extent(), kCanvas)));
}

TEST(RotateImage, RightAnglesTakeEveryPixelAsItIs) {
    const Image source = test::RandomImage({37, 20}, 1);
    Image quarter = test::Copy(source.View());
    for (int turns = 1; turns <= 4; ++turns) {
        ASSERT_TRUE(QuickRotateImageInPlace(quarter, QuarterTurn::By90));
        EXPECT_TRUE(test::SamePixels(Turned(source, Degrees(90 * turns)), quarter));
        EXPECT_TRUE(test::SamePixels(Turned(source, Degrees(90 * turns - 360)), quarter));
    }
}

TEST(RotateImage, ThereAndBackKeepsAPhotographRecognisable) {
    const Image source = test::PhotoLikeImage({200, 150}, 2);
    const Image back = Turned(Turned(source, Degrees(30)), Degrees(330));
    const int left = (back.Width() - 200) / 2, top = (back.Height() - 150) / 2;
    double sum = 0;
    for (int y = 10; y < 140; ++y)
        for (int x = 10; x < 190; ++x)
            for (int c = 0; c < 3; ++c)
                sum +=
                    std::pow(back.View().At(left + x, top + y)[c] - source.View().At(x, y)[c], 2);
    EXPECT_LT(std::sqrt(sum / (130 * 180 * 3)), 6.0);
}

TEST(RotateImage, DrawsTheSameBytesOnSeveralThreads) {
    const Image source = test::RandomImage({1500, 1200}, 4);
    const Image alone = Turned(source, Degrees(20));
    SetKernelThreads(3);
    const Image shared = Turned(source, Degrees(20));
    SetKernelThreads(1);
    EXPECT_TRUE(test::SamePixels(alone, shared));
}

TEST(RotateImage, RefusesEmptyViewsAndAnglesThatAreNone) {
    Image image = test::FlatImage({5, 5}, kCanvas);
    ClearLastError();
    EXPECT_FALSE(RotateImage({}, image.View(), 1));
    EXPECT_EQ(LastError(), "the picture cannot be turned");
    EXPECT_FALSE(RotateImage(image.View(), {}, 1));
    EXPECT_FALSE(RotateImage(test::FlatImage({5, 5}, {}).View(), image.View(),
                             std::numeric_limits<double>::infinity()));
    EXPECT_TRUE(test::SamePixels(image, test::FlatImage({5, 5}, kCanvas)));
}

TEST(CubicTable, SumsToOneAndIsSymmetric) {
    const auto* const table = kernels::CubicTable();
    constexpr int kPhases = 1 << kernels::kPhaseBits;
    EXPECT_EQ(table[0], (kernels::CubicWeights{0, 16384, 0, 0}));
    EXPECT_EQ(table[kPhases / 2], (kernels::CubicWeights{-1024, 9216, 9216, -1024}));
    for (int p = 0; p < kPhases; ++p) {
        int sum = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            sum += table[p][k];
            EXPECT_NEAR(table[p][k], Cubic(p / 1024.0)[k] * 16384, 1.51);
            if (p > 0) {
                EXPECT_EQ(table[p][k], table[kPhases - p][3 - k]) << p;
            }
        }
        EXPECT_EQ(sum, 16384);
    }
}

TEST(DrawRun, GivesTheBytesOfThePlainLoop) {
    const Image source = test::RandomImage({90, 70}, 6);
    std::uint32_t state = 1;
    const auto next = [&] { return (state = state * 1664525U + 1013904223U) >> 4; };
    for (int round = 0; round < 3000; ++round) {
        kernels::RotatedRun run;
        run.pixels = source.View().Bytes().data();
        run.stride = source.View().Stride();
        run.table = kernels::CubicTable();
        const double angle = next() % 6283 / 1000.0;
        constexpr double kOne = 4294967296.0;
        run.du = std::llround(std::cos(angle) * kOne);
        run.dv = std::llround(std::sin(angle) * kOne);
        run.u = std::llround((30 + next() % 30 + next() % 999 / 1000.0) * kOne);
        run.v = std::llround((30 + next() % 10 + next() % 999 / 1000.0) * kOne);
        run.count = static_cast<int>(next() % 26);
        std::vector<std::uint8_t> fast(3 * 30, 77), slow(3 * 30, 77);
        run.out = fast.data();
        kernels::DrawRun(run);
        run.out = slow.data();
        kernels::plain::DrawRun(run);
        ASSERT_EQ(fast, slow) << run.count;  // and nothing behind the run
    }
}

}  // namespace
}  // namespace lumo::imaging
