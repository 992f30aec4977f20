#include "imaging/simple_filters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

constexpr Size kSizes[] = {{1, 1}, {1, 4}, {4, 1}, {2, 2}, {3, 3}, {2, 9}, {37, 21}};

Image Blurred(const Image& source, int strength) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(BlurImage(source.View(), target.View(), strength));
    return target;
}
Image Sharpened(const Image& source, int amount) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(SharpenImage(source.View(), target.View(), amount));
    return target;
}
Image Despeckled(const Image& source) {
    Image result = test::Copy(source.View());
    EXPECT_TRUE(DespeckleImage(result.View()));
    return result;
}

int At(ConstImageView image, int x, int y, int c) {
    return image.At(std::clamp(x, 0, image.Width() - 1), std::clamp(y, 0, image.Height() - 1))[c];
}
int BlockSum(ConstImageView image, int x, int y, int c) {
    int sum = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) sum += At(image, x + dx, y + dy, c);
    return sum;
}

template <typename ByteOf>
void ExpectEach(const Image& result, const ByteOf& byteOf) {
    for (int y = 0; y < result.Height(); ++y)
        for (int x = 0; x < result.Width(); ++x)
            for (int c = 0; c < 3; ++c)
                ASSERT_EQ(At(result.View(), x, y, c), byteOf(x, y, c)) << x << "," << y;
}

TEST(BlurImage, IsTheRoundedMeanOfTheBlock) {
    for (const Size size : kSizes) {
        const Image source = test::RandomImage(size, 3);
        ExpectEach(Blurred(source, 100), [&](int x, int y, int c) {
            return (2 * BlockSum(source.View(), x, y, c) + 9) / 18;
        });
        EXPECT_TRUE(test::SamePixels(Blurred(source, 0), source));
    }
}

TEST(SharpenImage, MovesAwayFromTheMeanByTheAmount) {
    for (const Size size : kSizes)
        for (const int amount : {1, 25, 50, 99, 100}) {
            const Image source = test::RandomImage(size, 4);
            ExpectEach(Sharpened(source, amount), [&](int x, int y, int c) {
                const int pixel = At(source.View(), x, y, c);
                const double moved =
                    pixel + amount / 50.0 * (pixel - BlockSum(source.View(), x, y, c) / 9.0);
                return static_cast<int>(std::clamp(moved + 0.5 + 1e-9, 0.0, 255.0));
            });
        }
}

TEST(SharpenImage, ChangesNothingAtZeroAndMoreWithEveryStep) {
    const Image source = test::PhotoLikeImage({60, 40});
    EXPECT_TRUE(test::SamePixels(Sharpened(source, 0), source));
    EXPECT_TRUE(test::SamePixels(Sharpened(source, -7), source));
    EXPECT_TRUE(test::SamePixels(Sharpened(source, 1000), Sharpened(source, 100)));
    long before = 0;
    for (const int amount : {10, 20, 40, 60, 80, 100}) {
        const Image result = Sharpened(source, amount);
        long change = 0;
        for (std::size_t i = 0; i < source.View().Bytes().size(); ++i)
            change += std::abs(result.View().Bytes()[i] - source.View().Bytes()[i]);
        EXPECT_GT(change, before) << amount;
        before = change;
    }
}

TEST(SimpleFilters, LeaveFlatPicturesExactlyFlat) {
    for (int level = 0; level < 256; ++level) {
        const auto v = static_cast<std::uint8_t>(level);
        const Image flat = test::FlatImage({9, 7}, {v, static_cast<std::uint8_t>(255 - v), v});
        EXPECT_TRUE(test::SamePixels(Blurred(flat, 100), flat));
        EXPECT_TRUE(test::SamePixels(Blurred(flat, 37), flat));
        EXPECT_TRUE(test::SamePixels(Sharpened(flat, 100), flat));
        EXPECT_TRUE(test::SamePixels(Despeckled(flat), flat));
    }
}

TEST(DespeckleImage, IsTheBlockMeanWhereTheColourChangesMost) {
    for (const Size size : kSizes) {
        const Image source = test::RandomImage(size, 6);
        const auto around = [&](int x, int y, int c) {
            return BlockSum(source.View(), x, y, c) - At(source.View(), x, y, c);
        };
        const auto change = [&](int x, int y) {
            if (x < 0 || y < 0 || x >= size.width || y >= size.height) return 0;
            int sum = 0;
            for (int c = 0; c < 3; ++c)
                sum += std::abs(8 * At(source.View(), x, y, c) - around(x, y, c));
            return sum;
        };
        ExpectEach(Despeckled(source), [&](int x, int y, int c) {
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    if ((dx != 0 || dy != 0) && change(x + dx, y + dy) >= change(x, y))
                        return At(source.View(), x, y, c);
            return (around(x, y, c) + 4) / 8;
        });
    }
}

TEST(DespeckleImage, RemovesSpecksAndKeepsEdges) {
    Image clean = test::FlatImage({40, 30}, {20, 40, 60});
    for (int y = 0; y < 30; ++y)
        for (int x = 20; x < 40; ++x) clean.View().SetPixel(x, y, {200, 180, 160});
    EXPECT_TRUE(test::SamePixels(Despeckled(clean), clean));
    Image dirty = test::Copy(clean.View());
    dirty.View().SetPixel(7, 9, {255, 255, 255});
    dirty.View().SetPixel(30, 20, {0, 0, 0});
    EXPECT_TRUE(test::SamePixels(Despeckled(dirty), clean));
}

TEST(SimpleFilters, ReportAWrongSizeAndMissingMemory) {
    Image source = test::RandomImage({300, 20}, 1);
    Image small = test::FlatImage({5, 5}, {});
    EXPECT_FALSE(BlurImage(source.View(), small.View(), 100));
    EXPECT_FALSE(SharpenImage(source.View(), small.View(), 100));
    const Image before = test::Copy(source.View());
    const test::ScopedMemoryBudget budget(100);
    EXPECT_FALSE(DespeckleImage(source.View()));
    EXPECT_TRUE(test::SamePixels(source, before));
}

TEST(SimpleFilters, RefuseAnEmptyPicture) {
    const auto refused = [](bool ok) { return !ok && LastError() == "the picture is empty"; };
    ClearLastError();
    EXPECT_TRUE(refused(BlurImage({}, {}, 100)));
    ClearLastError();
    EXPECT_TRUE(refused(SharpenImage({}, {}, 100)));
    ClearLastError();
    EXPECT_TRUE(refused(DespeckleImage({})));
}

}  // namespace
}  // namespace lumo::imaging
