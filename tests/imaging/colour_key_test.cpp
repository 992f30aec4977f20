#include "imaging/colour_key.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

bool IsNear(Rgb pixel, Rgb key, int tolerance) {
    const long long t = tolerance * 255LL / 100;
    const long long dr = pixel.red - key.red, dg = pixel.green - key.green,
                    db = pixel.blue - key.blue;
    return dr * dr + dg * dg + db * db <= t * 3 * t;
}

TEST(MaskKey, FollowsTheKeyTestAtEveryTolerance) {
    test::ForEachSimdTarget([](const std::string& target) {
        for (int tolerance = 0; tolerance <= 100; ++tolerance)
            for (const int width : {1, 7, 64, 333}) {
                const Image image = test::RandomImage({width, 3}, 9 + tolerance);
                const Rgb colour = image.View().Pixel(width / 2, 1);
                const std::size_t count = image.Extent().Area();
                std::vector<std::uint8_t> mask(count * 3 + 1, 77);
                MaskKey(image.View().Row(0), count, KeyWithin(colour, tolerance), mask.data());
                for (std::size_t i = 0; i < count; ++i) {
                    const std::uint8_t* p = image.View().Row(0) + 3 * i;
                    const int expected = IsNear({p[0], p[1], p[2]}, colour, tolerance) ? 255 : 0;
                    for (std::size_t c = 0; c < 3; ++c)
                        ASSERT_EQ(mask[3 * i + c], expected) << target << " " << tolerance;
                }
                EXPECT_EQ(mask.back(), 77);
            }
    });
}

TEST(MaskKey, TheFarthestItselfIsNear) {
    // A tolerance of 10 percent: t is 25, the farthest 1875 = 25 * 25 * 3.
    const ColourKey key = KeyWithin({100, 100, 100}, 10);
    EXPECT_EQ(key.farthest, 1875);
    std::vector<std::uint8_t> pixels, mask(3 * 128);
    for (int i = 0; i < 64; ++i) pixels.insert(pixels.end(), {125, 75, 125, 125, 75, 126});
    MaskKey(pixels.data(), 128, key, mask.data());
    for (std::size_t i = 0; i < 128; ++i) ASSERT_EQ(mask[3 * i], i % 2 == 0 ? 255 : 0);
}

TEST(KeyWithin, LimitsAbsurdTolerances) {
    EXPECT_EQ(KeyWithin({}, 100).farthest, 3 * 255 * 255);
    EXPECT_EQ(KeyWithin({}, 2147483647).farthest, 3 * 255 * 255);
    EXPECT_EQ(KeyWithin({}, -2147483647).farthest, 3 * 255 * 255);
    EXPECT_EQ(KeyWithin({}, 0).farthest, 0);
}

TEST(SnapToKey, GivesNearPixelsTheColourExactly) {
    for (const Size size : {Size{1, 1}, Size{37, 41}, Size{600, 3}}) {
        const Image before = test::RandomImage(size, 2);
        Image after = test::Copy(before.View());
        SnapToKey(after.View(), KeyWithin({90, 120, 150}, 30));
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const Rgb pixel = before.View().Pixel(x, y);
                ASSERT_EQ(after.View().Pixel(x, y),
                          IsNear(pixel, {90, 120, 150}, 30) ? (Rgb{90, 120, 150}) : pixel);
            }
    }
}

TEST(OverlayRGBTrans, LeavesOutWhatMatches) {
    for (const Size size : {Size{1, 1}, Size{37, 41}, Size{600, 3}})
        for (const int tolerance : {0, 40, 90}) {
            const Image before = test::RandomImage(size, 2);
            const Image over = test::RandomImage(size, 3);
            const Rgb key = over.View().Pixel(0, 0);
            Image after = test::Copy(before.View());
            ASSERT_TRUE(OverlayRGBTrans(after.View(), over.View(), KeyWithin(key, tolerance)));
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    ASSERT_EQ(after.View().Pixel(x, y),
                              IsNear(over.View().Pixel(x, y), key, tolerance)
                                  ? before.View().Pixel(x, y)
                                  : over.View().Pixel(x, y));
        }
}

TEST(OverlayRGBTrans, RefusesOtherSizes) {
    Image image = test::FlatImage({4, 4}, {1, 1, 1});
    EXPECT_FALSE(OverlayRGBTrans(image.View(), test::FlatImage({4, 5}, {}).View(), {}));
    EXPECT_FALSE(OverlayRGBTrans(ImageView(), ConstImageView(), {}));
}

}  // namespace
}  // namespace lumo::imaging
