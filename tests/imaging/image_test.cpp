#include "imaging/image.h"

#include <gtest/gtest.h>

#include <climits>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

TEST(Image, HasNoRowPadding) {
    const Image image = test::CoordinateImage({5, 3});
    EXPECT_EQ(image.View().Stride(), 15U);
    EXPECT_EQ(image.View().Bytes().size(), 45U);
    EXPECT_EQ(image.View().Pixel(4, 2), (Rgb{4, 2, 7}));
}

TEST(Image, ResetLeavesNothing) {
    Image image = test::CoordinateImage({5, 3});
    image.Reset();
    EXPECT_TRUE(image.IsEmpty());
    EXPECT_EQ(image.Extent(), (Size{0, 0}));
}

TEST(Image, RefusesSizesWithoutPixels) {
    EXPECT_FALSE(Image::TryCreate({0, 10}));
    EXPECT_FALSE(Image::TryCreate({10, -1}));
}

TEST(Image, RefusesMoreThanTheBudget) {
    const test::ScopedMemoryBudget budget(10'000);
    EXPECT_TRUE(Image::TryCreate({50, 20}));
    EXPECT_FALSE(Image::TryCreate({100, 100}));
    EXPECT_EQ(LastError(), "not enough memory: 30000 bytes wanted");
    EXPECT_FALSE(Image::TryCreate({INT_MAX, INT_MAX}));
}

TEST(Image, BudgetCountsLiveBuffersTogether) {
    const std::size_t before = MemoryInUse();
    const test::ScopedMemoryBudget budget(before + 20'000);
    auto first = Image::TryCreate({50, 100});
    ASSERT_TRUE(first);
    EXPECT_FALSE(Image::TryCreate({50, 100}));
    first->Reset();
    EXPECT_TRUE(Image::TryCreate({50, 100}));
}

TEST(PixelBuffer, IsRecycled) {
    PixelBuffer first = PixelBuffer::TryAllocate(5 << 20);
    const auto* address = first.Data();
    first = PixelBuffer();
    const PixelBuffer second = PixelBuffer::TryAllocate(5 << 20);
    EXPECT_EQ(second.Data(), address);
}

}  // namespace
}  // namespace lumo::imaging
