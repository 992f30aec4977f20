#include "imaging/compose.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

constexpr Rgb kGround{10, 20, 30};
constexpr Rgb kInk{200, 100, 50};

bool IsInside(int x, int y, Rect rect) {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

TEST(FillSolidRect, FillsWhatLiesInside) {
    for (const Rect rect :
         {Rect{0, 0, 13, 9}, Rect{2, 3, 7, 4}, Rect{-5, -5, 3, 2}, Rect{12, 8, 40, 40},
          Rect{3, 3, 3, 8}, Rect{8, 3, 3, 8}, Rect{20, 0, 30, 9}, Rect{-9, 0, 0, 9},
          Rect{INT_MIN, INT_MIN, INT_MAX, INT_MAX}}) {
        Image image = test::FlatImage({13, 9}, kGround);
        EXPECT_TRUE(FillSolidRect(image.View(), rect, kInk));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 13; ++x)
                EXPECT_EQ(image.View().Pixel(x, y), IsInside(x, y, rect) ? kInk : kGround)
                    << x << ", " << y << " of " << rect.left;
    }
}

TEST(OverlayImage, CopiesWhatFallsInside) {
    const Image source = test::CoordinateImage({6, 5}, {100, 150});
    for (const auto& [left, top] : {std::pair{0, 0},
                                    {3, 2},
                                    {-2, -3},
                                    {9, 6},
                                    {-6, 0},
                                    {0, -5},
                                    {13, 0},
                                    {0, 9},
                                    {12, 8},
                                    {INT_MAX, INT_MAX},
                                    {INT_MIN, INT_MIN},
                                    {-5, 8}}) {
        Image image = test::FlatImage({13, 9}, kGround);
        EXPECT_TRUE(OverlayImage(image.View(), source.View(), left, top));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 13; ++x) {
                const long long fromX = static_cast<long long>(x) - left;
                const long long fromY = static_cast<long long>(y) - top;
                const bool covered = fromX >= 0 && fromX < 6 && fromY >= 0 && fromY < 5;
                const Rgb expected =
                    covered ? source.View().Pixel(static_cast<int>(fromX), static_cast<int>(fromY))
                            : kGround;
                EXPECT_EQ(image.View().Pixel(x, y), expected)
                    << x << ", " << y << " at " << left << ", " << top;
            }
    }
}

TEST(OverlayImage, ASourceLargerThanTheDestinationCoversIt) {
    const Image source = test::CoordinateImage({40, 30});
    Image image = test::FlatImage({13, 9}, kGround);
    EXPECT_TRUE(OverlayImage(image.View(), source.View(), -4, -7));
    EXPECT_TRUE(test::SamePixels(image, test::CoordinateImage({13, 9}, {4, 7})));
}

TEST(Compose, RefusesNoPicture) {
    const Image source = test::CoordinateImage({4, 3});
    Image image = test::CoordinateImage({4, 3});
    ClearLastError();
    EXPECT_FALSE(FillSolidRect({}, {0, 0, 1, 1}, kInk));
    EXPECT_EQ(LastError(), "there is no picture to fill");
    EXPECT_FALSE(OverlayImage({}, source.View(), 0, 0));
    EXPECT_EQ(LastError(), "there is no picture to overlay");
    EXPECT_FALSE(OverlayImage(image.View(), {}, 0, 0));
    EXPECT_TRUE(test::SamePixels(image, source));
}

TEST(OverlayImage, PercentagesRoundToTheNearestByte) {
    for (int percent = 0; percent <= 100; ++percent) {
        Image image = test::RandomImage({64, 64}, 5);
        const Image before = test::RandomImage({64, 64}, 5),
                    source = test::RandomImage({64, 64}, 6);
        ASSERT_TRUE(OverlayImage(image.View(), source.View(), 0, 0, percent / 100.0));
        for (std::size_t i = 0; i < image.View().Bytes().size(); ++i) {
            const double exact =
                (source.View().Bytes()[i] * percent + before.View().Bytes()[i] * (100 - percent)) /
                100.0;
            ASSERT_NEAR(image.View().Bytes()[i], exact, 0.502);
        }
    }
}

TEST(OverlayImage, OpacityMixesAndRounds) {
    for (const double opacity : {0.0, 0.2, 0.5, 0.77, 0.999, 1.0, 3.0, -1.0})
        for (const Size size : {Size{1, 1}, Size{7, 5}, Size{129, 3}}) {
            const Image source = test::RandomImage(size, 21);
            Image actual = test::RandomImage({130, 9}, 22),
                  expected = test::RandomImage({130, 9}, 22);
            ASSERT_TRUE(OverlayImage(actual.View(), source.View(), 2, 3, opacity));
            const double limited = opacity < 0 ? 0 : opacity > 1 ? 1 : opacity;
            const int share = static_cast<int>(std::lround(limited * 65536));
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width && x + 2 < 130; ++x)
                    for (int c = 0; c < 3; ++c) {
                        std::uint8_t& byte = expected.View().At(x + 2, y + 3)[c];
                        const int over = source.View().At(x, y)[c];
                        byte = static_cast<std::uint8_t>(
                            (over * share + byte * (65536 - share) + 32768) / 65536);
                    }
            EXPECT_TRUE(test::SamePixels(actual, expected)) << opacity;
        }
}

}  // namespace
}  // namespace lumo::imaging
