#include "imaging/resize_masked.h"

#include <gtest/gtest.h>

#include "imaging/resample.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

constexpr Rgb kKey{0, 0, 255};

Image Resize(const Image& source, Size size, Rgb key = kKey) {
    auto target = Image::TryCreate(size);
    EXPECT_TRUE(ResizeImageMasked(source.View(), target->View(), key));
    return std::move(*target);
}

// A grey disc on a ground of the key colour.
Image Disc(Size size) {
    Image image = test::FlatImage(size, kKey);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const int dx = 2 * x - size.width, dy = 2 * y - size.height;
            if (dx * dx + dy * dy < size.width * size.height / 2)
                image.View().SetPixel(x, y, {200, 200, 200});
        }
    return image;
}

TEST(ResizeImageMasked, PixelsAreTheKeyOrHaveNothingOfIt) {
    const Image source = Disc({90, 70});
    for (const Size size : {Size{90, 70}, Size{31, 17}, Size{200, 150}, Size{7, 5}, Size{1, 1}}) {
        const Image target = Resize(source, size);
        int keys = 0;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const Rgb pixel = target.View().Pixel(x, y);
                if (pixel == kKey) {
                    ++keys;
                } else {
                    // Everything else in the picture is this grey: no blue came into it.
                    ASSERT_EQ(pixel, (Rgb{200, 200, 200}));
                }
            }
        if (size.width < 5) continue;
        // The key keeps its share of the area.
        const double share = static_cast<double>(keys) / static_cast<double>(size.Area());
        EXPECT_NEAR(share, 1 - 3.14159 / 8, 0.05) << size.width;
        EXPECT_EQ(target.View().Pixel(0, 0), kKey);
        EXPECT_EQ(target.View().Pixel(size.width / 2, size.height / 2), (Rgb{200, 200, 200}));
    }
}

TEST(ResizeImageMasked, WithoutKeyPixelsItIsThePlainResize) {
    const Image source = test::PhotoLikeImage({64, 48});
    auto plain = Image::TryCreate({40, 21});
    ASSERT_TRUE(ResizeImage(source.View(), plain->View(), ResampleFilter::Bicubic));
    EXPECT_TRUE(test::SamePixels(Resize(source, {40, 21}, {1, 254, 3}), *plain));
}

TEST(ResizeImageMasked, TheSameSizeGivesTheSameBytes) {
    const Image source = Disc({33, 22});
    EXPECT_TRUE(test::SamePixels(Resize(source, {33, 22}), source));
}

TEST(ResizeImageMasked, NothingButKeyStaysKey) {
    EXPECT_TRUE(test::SamePixels(Resize(test::FlatImage({9, 9}, kKey), {20, 3}),
                                 test::FlatImage({20, 3}, kKey)));
}

TEST(ResizeImageMasked, AMixtureThatHappensToBeTheKeyMovesByOneLevel) {
    // Black and white stripes shrink to a mid-grey, which is the key that no source pixel has.
    Image source = test::FlatImage({64, 64}, {0, 0, 0});
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; x += 2) source.View().SetPixel(x, y, {255, 255, 255});
    auto plain = Image::TryCreate({16, 16});
    ASSERT_TRUE(ResizeImage(source.View(), plain->View(), ResampleFilter::Bicubic));
    const Rgb grey = plain->View().Pixel(8, 8);
    const Image target = Resize(source, {16, 16}, grey);
    const Rgb pixel = target.View().Pixel(8, 8);
    EXPECT_NE(pixel, grey);
    EXPECT_EQ(pixel.red, grey.red);
    EXPECT_EQ(pixel.blue, grey.blue + 1);
}

TEST(ResizeImageMasked, FailsWithoutPixelsOrMemory) {
    Image image = Disc({20, 20});
    EXPECT_FALSE(ResizeImageMasked(image.View(), ImageView(), kKey));
    EXPECT_FALSE(ResizeImageMasked(ConstImageView(), image.View(), kKey));
    const Image source = Disc({50, 50});
    const test::ScopedMemoryBudget budget(1);
    EXPECT_FALSE(ResizeImageMasked(source.View(), image.View(), kKey));
}

}  // namespace
}  // namespace lumo::imaging
