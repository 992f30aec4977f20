#include "imaging/blur_gaussian.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "reference/gaussian_reference.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

Image Blurred(const Image& source, double radius) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(BlurGaussian(source.View(), target.View(), radius));
    return target;
}

TEST(BlurGaussian, IsWithinOneLevelOfTheFormulaForEveryRadius) {
    for (const Size size : {Size{1, 1}, Size{1, 7}, Size{9, 1}, Size{2, 3}, Size{33, 21}}) {
        const Image source = test::RandomImage(size, 5);
        for (int tenths = 1; tenths <= 100; ++tenths) {
            const double radius = tenths / 10.0;
            EXPECT_TRUE(test::NearPixels(Blurred(source, radius).View(),
                                         reference::Gaussian(source.View(), radius).View(), 1))
                << radius << " at " << size.width << "x" << size.height;
        }
    }
}

TEST(BlurGaussian, IsWithinOneLevelOfTheFormulaForLargeRadii) {
    const Image source = test::RandomImage({90, 61}, 6);
    for (const double radius : {12.0, 20.0, 33.3, 100.0, 700.0, 3000.0})
        EXPECT_TRUE(test::NearPixels(Blurred(source, radius).View(),
                                     reference::Gaussian(source.View(), radius).View(), 1))
            << radius;
}

// A hard edge is where a wrong deviation shows: the byte at distance d is the integral of the bell.
TEST(BlurGaussian, HasTheRadiusAsItsStandardDeviation) {
    Image source = test::FlatImage({400, 5}, {0, 0, 0});
    for (int y = 0; y < 5; ++y)
        for (int x = 200; x < 400; ++x) source.View().SetPixel(x, y, {255, 255, 255});
    for (const double radius : {2.0, 5.0, 8.0, 15.0, 30.0}) {
        const Image result = Blurred(source, radius);
        for (int x = 100; x < 300; ++x) {
            const double expected =
                255 * 0.5 * (1 + std::erf((x - 199.5) / (radius * std::sqrt(2.0))));
            EXPECT_NEAR(result.View().Pixel(x, 2).green, expected, 1.0) << radius << " at " << x;
        }
    }
}

TEST(BlurGaussian, LeavesFlatPicturesExactlyFlat) {
    for (const int level : {0, 1, 2, 100, 127, 128, 200, 253, 254, 255}) {
        const auto v = static_cast<std::uint8_t>(level);
        const Image flat = test::FlatImage({70, 45}, {v, static_cast<std::uint8_t>(255 - v), 77});
        for (const double radius : {0.1, 0.3, 0.7, 0.81, 1.0, 3.3, 5.0, 9.0, 9.1, 20.0, 500.0,
                                    20000.0, 1e300, std::numeric_limits<double>::infinity()})
            EXPECT_TRUE(test::SamePixels(Blurred(flat, radius), flat)) << level << " " << radius;
    }
}

TEST(BlurGaussian, CopiesForARadiusOfZeroOrLessOrNone) {
    const Image source = test::RandomImage({17, 9}, 7);
    for (const double radius : {0.0, -1.0, -1e9, 1e-3, 0.1, std::nan("")})
        EXPECT_TRUE(test::SamePixels(Blurred(source, radius), source)) << radius;
}

TEST(BlurGaussian, GivesTheSameBytesOnSeveralThreads) {
    const Image source = test::RandomImage({901, 701}, 8);
    for (const double radius : {2.5, 14.0}) {
        const Image alone = Blurred(source, radius);
        SetKernelThreads(3);
        const Image together = Blurred(source, radius);
        SetKernelThreads(1);
        EXPECT_TRUE(test::SamePixels(alone, together));
    }
}

TEST(BlurGaussian, ReportsMissingMemoryAndAWrongSize) {
    const Image source = test::RandomImage({300, 200}, 9);
    Image target = test::Copy(source.View());
    Image small = test::FlatImage({10, 10}, {});
    EXPECT_FALSE(BlurGaussian(source.View(), small.View(), 1.0));
    const test::ScopedMemoryBudget budget(1000);
    for (const double radius : {1.0, 50.0}) {
        ClearLastError();
        EXPECT_FALSE(BlurGaussian(source.View(), target.View(), radius));
        EXPECT_NE(LastError(), "0");
    }
}

}  // namespace
}  // namespace lumo::imaging
