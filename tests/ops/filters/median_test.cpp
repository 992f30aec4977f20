#include "ops/filters/median.h"

#include <gtest/gtest.h>

#include <climits>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "reference/disc_reference.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::ops::filters {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

Image Medians(const Image& source, double radius) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(FilterMedian(source.View(), target.View(), MakeDisc(radius)));
    return target;
}
Image WithoutDust(const Image& source, int threshold, double radius) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(RemoveDust(source.View(), target.View(), MakeDisc(radius), threshold));
    return target;
}

TEST(FilterMedian, IsTheMedianOfTheSlidingWindowForEveryRadius) {
    std::uint32_t seed = 1;
    for (const Size size :
         {Size{1, 1}, Size{1, 5}, Size{5, 1}, Size{2, 2}, Size{7, 3}, Size{23, 19}})
        for (int tenths = 1; tenths <= 100; ++tenths) {
            const double radius = tenths / 10.0;
            const Image source = test::RandomImage(size, ++seed);
            EXPECT_TRUE(test::SamePixels(Medians(source, radius),
                                         reference::MedianFilter(source.View(), radius)))
                << radius;
            const int threshold = static_cast<int>(seed % 150) - 10;
            EXPECT_TRUE(test::SamePixels(WithoutDust(source, threshold, radius),
                                         reference::DustRemove(source.View(), threshold, radius)))
                << radius << " threshold " << threshold;
        }
}

TEST(FilterMedian, IsTheSameForEveryInstructionSet) {
    const Image noise = test::RandomImage({530, 23}, 5);
    const Image photo = test::PhotoLikeImage({530, 23});
    for (const double radius : {0.1, 1.0, 3.0, 9.5, 10.0})
        for (const Image* source : {&noise, &photo}) {
            const Image expected = reference::MedianFilter(source->View(), radius);
            const Image clean = reference::DustRemove(source->View(), 40, radius);
            test::ForEachSimdTarget([&](const std::string& name) {
                EXPECT_TRUE(test::SamePixels(Medians(*source, radius), expected)) << name;
                EXPECT_TRUE(test::SamePixels(WithoutDust(*source, 40, radius), clean)) << name;
            });
        }
}

// At (0, 0) with radius 1 five of the nine cells lie outside: (-1,-1), (1,-1) and (-1,1) are 255,
// (0,-1) and (-1,0) are 0. The four inside are 10, 20, 30 and 40; the fifth of 0 0 10 20 30 40 255
// 255 255 is 30.
TEST(FilterMedian, CountsACheckerboardOutsideOfThePicture) {
    Image image = test::FlatImage({2, 2}, {10, 10, 10});
    image.View().SetPixel(1, 0, {20, 20, 20});
    image.View().SetPixel(0, 1, {30, 30, 30});
    image.View().SetPixel(1, 1, {40, 40, 40});
    EXPECT_EQ(Medians(image, 1.0).View().Pixel(0, 0), (Rgb{30, 30, 30}));
}

TEST(FilterMedian, MayMakeAColourThatIsNowhere) {
    Image image = test::FlatImage({3, 1}, {0, 0, 0});
    image.View().SetPixel(0, 0, {255, 0, 0});
    image.View().SetPixel(1, 0, {0, 255, 0});
    image.View().SetPixel(2, 0, {255, 200, 9});
    // The cells above and below the middle are outside and hold 255.
    const Rgb middle = Medians(image, 0.1).View().Pixel(1, 0);
    EXPECT_EQ(middle, (Rgb{255, 255, 9}));
}

TEST(RemoveDust, LeavesEverythingWithALargeThreshold) {
    const Image source = test::RandomImage({31, 17}, 9);
    for (const int threshold : {255, 256, 100000, INT_MAX})
        EXPECT_TRUE(test::SamePixels(WithoutDust(source, threshold, 3.0), source)) << threshold;
}

TEST(RemoveDust, TakesAllMediansWithANegativeThreshold) {
    const Image source = test::RandomImage({31, 17}, 9);
    for (const int threshold : {-1, -300, INT_MIN})
        EXPECT_TRUE(test::SamePixels(WithoutDust(source, threshold, 3.0), Medians(source, 3.0)))
            << threshold;
}

TEST(RemoveDust, RemovesASpeckAndNothingElse) {
    Image image = test::FlatImage({21, 21}, {100, 100, 100});
    image.View().SetPixel(10, 10, {100, 255, 100});
    EXPECT_TRUE(
        test::SamePixels(WithoutDust(image, 40, 1.0), test::FlatImage({21, 21}, {100, 100, 100})));
    // The mean of the nine is 117: the speck differs by 138, which is not above that threshold.
    EXPECT_TRUE(test::SamePixels(WithoutDust(image, 138, 1.0), image));
    EXPECT_FALSE(test::SamePixels(WithoutDust(image, 137, 1.0), image));
}

TEST(FilterMedian, GivesTheSameBytesOnSeveralThreads) {
    const Image source = test::RandomImage({500, 301}, 4);
    const Image medians = Medians(source, 2.0), clean = WithoutDust(source, 30, 2.0);
    imaging::SetKernelThreads(3);
    EXPECT_TRUE(test::SamePixels(medians, Medians(source, 2.0)));
    EXPECT_TRUE(test::SamePixels(clean, WithoutDust(source, 30, 2.0)));
    imaging::SetKernelThreads(1);
}

}  // namespace
}  // namespace lumo::ops::filters
