#include "ops/filters/extremum.h"

#include <gtest/gtest.h>

#include "imaging/parallel.h"
#include "reference/disc_reference.h"
#include "support/test_images.h"

namespace lumo::ops::filters {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

Image Filtered(const Image& source, double radius, Extremum extremum) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(FilterExtremum(source.View(), target.View(), MakeDisc(radius), extremum));
    return target;
}

// Few brightnesses, many colours: ties everywhere, and the colour tells which pixel was taken.
Image ManyTies(Size size, std::uint32_t seed) {
    Image image = test::RandomImage(size, seed);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const Rgb p = image.View().Pixel(x, y);
            const auto level = static_cast<std::uint8_t>(p.green % 3 * 100 + 10);
            const auto tint = static_cast<std::uint8_t>(p.blue % 4);
            image.View().SetPixel(x, y, {level, level, static_cast<std::uint8_t>(level + tint)});
        }
    return image;
}

void ExpectAsReference(const Image& source, double radius) {
    EXPECT_TRUE(test::SamePixels(Filtered(source, radius, Extremum::Maximum),
                                 reference::MaximumFilter(source.View(), radius)))
        << "maximum, radius " << radius;
    EXPECT_TRUE(test::SamePixels(Filtered(source, radius, Extremum::Minimum),
                                 reference::MinimumFilter(source.View(), radius)))
        << "minimum, radius " << radius;
}

TEST(FilterExtremum, TakesThePixelsOfTheSlidingSearchForEveryRadius) {
    std::uint32_t seed = 1;
    for (const Size size :
         {Size{1, 1}, Size{1, 5}, Size{5, 1}, Size{2, 2}, Size{7, 3}, Size{23, 19}})
        for (int tenths = 1; tenths <= 100; ++tenths) {
            ExpectAsReference(test::RandomImage(size, ++seed), tenths / 10.0);
            ExpectAsReference(ManyTies(size, ++seed), tenths / 10.0);
        }
}

TEST(FilterExtremum, CarriesTheHistoryAcrossLongRows) {
    for (const double radius : {0.1, 1.0, 3.0, 5.0, 9.5, 10.0}) {
        ExpectAsReference(ManyTies({4500, 3}, 3), radius);
        ExpectAsReference(test::PhotoLikeImage({2051, 9}), radius);
        ExpectAsReference(test::CoordinateImage({2047, 4}), radius);
    }
}

TEST(FilterExtremum, KeepsAFlatPicture) {
    const Image flat = test::FlatImage({20, 10}, {200, 10, 30});
    for (const Extremum extremum : {Extremum::Maximum, Extremum::Minimum})
        EXPECT_TRUE(test::SamePixels(Filtered(flat, 3.0, extremum), flat));
}

// Both bright pixels have luminance 76. The search around column -1 sees neither; the first one to
// enter is kept, and only the search after it has left takes the other.
TEST(FilterExtremum, KeepsTheHeldPixelWhenAnEqualOneEnters) {
    constexpr Rgb kRed{255, 0, 0}, kGrey{76, 76, 76};
    Image image = test::FlatImage({8, 1}, {0, 0, 0});
    image.View().SetPixel(2, 0, kRed);
    image.View().SetPixel(3, 0, kGrey);
    const Image result = Filtered(image, 1.0, Extremum::Maximum);
    EXPECT_EQ(result.View().Pixel(1, 0), kRed);
    EXPECT_EQ(result.View().Pixel(2, 0), kRed);
    EXPECT_EQ(result.View().Pixel(3, 0), kRed);
    EXPECT_EQ(result.View().Pixel(4, 0), kGrey);
    EXPECT_EQ(result.View().Pixel(5, 0), (Rgb{0, 0, 0}));
}

// In the first column of the picture both are in sight of the full search around column -1.
TEST(FilterExtremum, TakesTheLastOfEqualsInAFullSearch) {
    constexpr Rgb kRed{255, 0, 0}, kGrey{76, 76, 76};
    Image image = test::FlatImage({3, 2}, {0, 0, 0});
    image.View().SetPixel(0, 0, kRed);
    image.View().SetPixel(0, 1, kGrey);
    EXPECT_EQ(Filtered(image, 1.0, Extremum::Maximum).View().Pixel(0, 0), kGrey);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x) image.View().SetPixel(x, y, {255, 255, 255});
    image.View().SetPixel(0, 0, kGrey);
    image.View().SetPixel(0, 1, kRed);
    EXPECT_EQ(Filtered(image, 1.0, Extremum::Minimum).View().Pixel(0, 0), kRed);
}

// Among pixels that enter together the upper one is seen first.
TEST(FilterExtremum, TakesTheFirstOfEqualsThatEnterTogether) {
    constexpr Rgb kRed{255, 0, 0}, kGrey{76, 76, 76};
    Image image = test::FlatImage({6, 2}, {0, 0, 0});
    image.View().SetPixel(2, 0, kRed);
    image.View().SetPixel(2, 1, kGrey);
    EXPECT_EQ(Filtered(image, 1.0, Extremum::Maximum).View().Pixel(1, 0), kRed);
}

TEST(FilterExtremum, GivesTheSameBytesOnSeveralThreads) {
    const Image source = ManyTies({900, 700}, 4);
    const Image alone = Filtered(source, 4.0, Extremum::Maximum);
    imaging::SetKernelThreads(3);
    EXPECT_TRUE(test::SamePixels(alone, Filtered(source, 4.0, Extremum::Maximum)));
    imaging::SetKernelThreads(1);
}

}  // namespace
}  // namespace lumo::ops::filters
