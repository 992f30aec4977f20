#include "ops/filters/box_blurs.h"

#include <gtest/gtest.h>

#include <climits>

#include "imaging/parallel.h"
#include "reference/filter_reference.h"
#include "support/test_images.h"

namespace lumo::ops::filters {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

constexpr Size kSizes[] = {{1, 1}, {1, 5}, {5, 1},  {2, 2},  {4, 9},   {5, 5},   {6, 5},
                           {5, 6}, {6, 6}, {7, 13}, {40, 9}, {33, 47}, {1200, 7}};

Image More(const Image& source) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    BlurMore(source.View(), target.View());
    return target;
}
Image Outward(const Image& source, int percent, double radius) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(BlurOutward(source.View(), target.View(), percent, radius));
    return target;
}

TEST(BlurMore, IsTheSlidingMeanOfTwentyFive) {
    std::uint32_t seed = 1;
    for (const Size size : kSizes) {
        const Image source = test::RandomImage(size, ++seed);
        EXPECT_TRUE(test::SamePixels(More(source), reference::BlurMore(source.View())))
            << size.width << "x" << size.height;
    }
    const Image white = test::FlatImage({9, 9}, {255, 254, 253});
    EXPECT_TRUE(test::SamePixels(More(white), white));
}

TEST(BlurMore, LeavesAFrameThatIsWiderOnTheLeft) {
    const Image source = test::RandomImage({12, 11}, 3);
    const Image result = More(source);
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 12; ++x)
            if (x < 3 || x > 9 || y < 2 || y > 8) {
                EXPECT_EQ(result.View().Pixel(x, y), source.View().Pixel(x, y)) << x << "," << y;
            }
    EXPECT_NE(result.View().Pixel(3, 2), source.View().Pixel(3, 2));
    EXPECT_NE(result.View().Pixel(9, 8), source.View().Pixel(9, 8));
}

TEST(BlurMore, LeavesSmallPicturesAlone) {
    for (const Size size : {Size{5, 30}, Size{30, 4}, Size{3, 3}, Size{1, 1}}) {
        const Image source = test::RandomImage(size, 4);
        EXPECT_TRUE(test::SamePixels(More(source), source));
    }
}

TEST(BlurOutward, IsTheSlidingMixForEveryRadiusAndStart) {
    std::uint32_t seed = 1;
    for (const Size size : kSizes)
        for (int tenths = 1; tenths <= 100; tenths += 3)
            for (const int percent : {0, 1, 40, 99, 100, 101, 250, -30}) {
                const Image source = test::RandomImage(size, ++seed);
                EXPECT_TRUE(
                    test::SamePixels(Outward(source, percent, tenths / 10.0),
                                     reference::BlurOutward(source.View(), percent, tenths / 10.0)))
                    << size.width << "x" << size.height << " " << percent << " " << tenths;
            }
}

// 40 rows: start 20, range 0. The middle is copied; beyond, mean and pixel are mixed evenly. The
// radius 1 reaches two pixels, of which 16 are left in the corner: 15 of 100 and one of 255.
TEST(BlurOutward, StartsAtHalfStrength) {
    Image source = test::FlatImage({80, 40}, {100, 100, 100});
    for (const int x : {1, 40}) source.View().SetPixel(x, 20, {255, 0, 7});
    source.View().SetPixel(1, 1, {255, 100, 100});
    const Image result = Outward(source, 100, 1.0);
    EXPECT_EQ(result.View().Pixel(40, 20), (Rgb{255, 0, 7}));
    EXPECT_EQ(result.View().Pixel(1, 20), (Rgb{255, 0, 7}));  // distance 19
    EXPECT_EQ(result.View().Pixel(1, 1), (Rgb{(109 + 255) / 2, 100, 100}));
}

TEST(BlurOutward, SurvivesAbsurdSettings) {
    const Image source = test::RandomImage({30, 21}, 8);
    for (const int percent : {INT_MIN, INT_MAX, -1000, 1000000, 2045222521})
        for (const double radius : {-5.0, 0.0, 1e300}) {
            const Image result = Outward(source, percent, radius);
            EXPECT_EQ(result.Extent(), source.Extent());
        }
}

TEST(BlurOutward, GivesTheSameBytesOnSeveralThreads) {
    const Image source = test::RandomImage({700, 500}, 4);
    const Image alone = Outward(source, 40, 5.0), more = More(source);
    imaging::SetKernelThreads(3);
    EXPECT_TRUE(test::SamePixels(alone, Outward(source, 40, 5.0)));
    EXPECT_TRUE(test::SamePixels(more, More(source)));
    imaging::SetKernelThreads(1);
}

}  // namespace
}  // namespace lumo::ops::filters
