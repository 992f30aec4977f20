#include "imaging/quick_rotate.h"

#include <gtest/gtest.h>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

Image TurnedPlainly(const Image& source, QuarterTurn turn) {
    const int W = source.Width(), H = source.Height();
    Image target = test::FlatImage(turn == QuarterTurn::By180 ? Size{W, H} : Size{H, W}, {});
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            const Rgb pixel = source.View().Pixel(x, y);
            if (turn == QuarterTurn::By90) target.View().SetPixel(H - 1 - y, x, pixel);
            if (turn == QuarterTurn::By180) target.View().SetPixel(W - 1 - x, H - 1 - y, pixel);
            if (turn == QuarterTurn::By270) target.View().SetPixel(y, W - 1 - x, pixel);
        }
    return target;
}

Image Turned(const Image& source, QuarterTurn turn) {
    Image image = test::Copy(source.View());
    EXPECT_TRUE(QuickRotateImageInPlace(image, turn));
    return image;
}

constexpr QuarterTurn kTurns[] = {QuarterTurn::By90, QuarterTurn::By180, QuarterTurn::By270};

void CheckAllTurns(Size size) {
    const Image source =
        test::RandomImage(size, static_cast<std::uint32_t>(size.width * 1000 + size.height));
    for (const QuarterTurn turn : kTurns) {
        const Image expected = TurnedPlainly(source, turn);
        ASSERT_TRUE(test::SamePixels(Turned(source, turn), expected))
            << size.width << " x " << size.height;
        Image target = test::FlatImage(expected.Extent(), {});
        QuickRotate(source.View(), turn, target.View());
        ASSERT_TRUE(test::SamePixels(target, expected)) << size.width << " x " << size.height;
    }
}

TEST(QuickRotate, GivesThePixelsOfThePlainLoop) {
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 40; ++height) CheckAllTurns({width, height});
    for (const Size size : {Size{257, 131}, Size{64, 200}, Size{1, 1000}, Size{1000, 1},
                            Size{333, 334}, Size{71, 1101}})
        CheckAllTurns(size);
}

TEST(QuickRotate, TurnsInItsOwnBufferWhereThereIsNoOther) {
    for (int width = 1; width <= 24; ++width)
        for (int height = 1; height <= 24; ++height) {
            const Image source = test::RandomImage({width, height}, 7);
            for (const QuarterTurn turn : kTurns) {
                const Image expected = TurnedPlainly(source, turn);
                Image image = test::Copy(source.View());
                const test::ScopedMemoryBudget budget(0);
                ASSERT_TRUE(QuickRotateImageInPlace(image, turn));
                ASSERT_TRUE(test::SamePixels(image, expected)) << width << " x " << height;
            }
        }
}

TEST(QuickRotate, FourQuartersAndTwoHalvesAreTheFirstPicture) {
    const Image source = test::RandomImage({77, 53}, 3);
    Image image = test::Copy(source.View());
    for (int turn = 0; turn < 4; ++turn) image = Turned(image, QuarterTurn::By90);
    EXPECT_TRUE(test::SamePixels(image, source));
    EXPECT_TRUE(
        test::SamePixels(Turned(Turned(source, QuarterTurn::By180), QuarterTurn::By180), source));
    EXPECT_TRUE(
        test::SamePixels(Turned(Turned(source, QuarterTurn::By90), QuarterTurn::By270), source));
}

TEST(QuickRotate, RefusesNoPicture) {
    Image none;
    ClearLastError();
    EXPECT_FALSE(QuickRotateImageInPlace(none, QuarterTurn::By90));
    EXPECT_EQ(LastError(), "there is no picture to turn");
}

}  // namespace
}  // namespace lumo::imaging
