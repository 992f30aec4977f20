#include "imaging/flip.h"

#include <gtest/gtest.h>

#include <string>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

// Around one, two and several vectors of every length, even and odd.
constexpr int kWidths[] = {1, 2, 3, 15, 31, 32, 33, 63, 64, 65, 127, 128, 129, 257, 400};
constexpr int kHeights[] = {1, 2, 3, 8};

Image FlippedAcross(ConstImageView source) {
    Image flipped = test::Copy(source);
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x)
            flipped.View().SetPixel(x, y, source.Pixel(source.Width() - 1 - x, y));
    return flipped;
}

Image FlippedDown(ConstImageView source) {
    Image flipped = test::Copy(source);
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x)
            flipped.View().SetPixel(x, y, source.Pixel(x, source.Height() - 1 - y));
    return flipped;
}

TEST(HorizontalFlipImage, MirrorsEveryRowWithEveryInstructionSet) {
    for (const int width : kWidths)
        for (const int height : kHeights) {
            const Image source = test::RandomImage({width, height}, 4);
            test::ForEachSimdTarget([&](const std::string& name) {
                SCOPED_TRACE(name + ", width " + std::to_string(width));
                Image image = test::Copy(source.View());
                ASSERT_TRUE(HorizontalFlipImage(image.View()));
                EXPECT_TRUE(test::SamePixels(image, FlippedAcross(source.View())));
            });
        }
}

TEST(VerticalFlipImage, SwapsTheRows) {
    for (const int width : kWidths)
        for (const int height : kHeights) {
            const Image source = test::RandomImage({width, height}, 4);
            Image image = test::Copy(source.View());
            ASSERT_TRUE(VerticalFlipImage(image.View()));
            EXPECT_TRUE(test::SamePixels(image, FlippedDown(source.View()))) << width;
        }
    Image wide = test::RandomImage({3000, 5}, 6);  // rows longer than the block that is swapped
    const Image expected = FlippedDown(wide.View());
    ASSERT_TRUE(VerticalFlipImage(wide.View()));
    EXPECT_TRUE(test::SamePixels(wide, expected));
}

TEST(Flip, RefusesNoPicture) {
    ClearLastError();
    EXPECT_FALSE(HorizontalFlipImage({}));
    EXPECT_FALSE(VerticalFlipImage({}));
    EXPECT_EQ(LastError(), "there is no picture to flip");
}

TEST(Flip, SeveralThreadsGiveTheSameBytes) {
    const Image source = test::RandomImage({1001, 901}, 8);
    SetKernelThreads(4);
    Image across = test::Copy(source.View());
    ASSERT_TRUE(HorizontalFlipImage(across.View()));
    Image down = test::Copy(source.View());
    ASSERT_TRUE(VerticalFlipImage(down.View()));
    SetKernelThreads(1);
    EXPECT_TRUE(test::SamePixels(across, FlippedAcross(source.View())));
    EXPECT_TRUE(test::SamePixels(down, FlippedDown(source.View())));
}

}  // namespace
}  // namespace lumo::imaging
