#include "ops/filters/convolution.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "reference/filter_reference.h"
#include "support/test_images.h"

namespace lumo::ops::filters {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

Image Convolved(const Image& source, const Convolution& convolution) {
    Image result = test::Copy(source.View());
    EXPECT_FALSE(Convolve(result.View(), convolution).has_value());
    return result;
}

void ExpectAsReference(const Image& source, const Convolution& convolution) {
    EXPECT_TRUE(test::SamePixels(Convolved(source, convolution),
                                 reference::Convolve(source.View(), convolution.weights,
                                                     convolution.scale, convolution.offset)))
        << "scale " << convolution.scale << " offset " << convolution.offset;
}

TEST(Convolve, IsTheWeightedSumForWeightsOfEverySize) {
    std::mt19937 random(1);
    for (const Size size :
         {Size{1, 1}, Size{1, 6}, Size{6, 1}, Size{2, 2}, Size{3, 7}, Size{41, 23}})
        for (const int largest : {1, 5, 30, 999, 9999, 8'000'000, INT_MAX}) {
            const Image source = test::RandomImage(size, random());
            for (int round = 0; round < 6; ++round) {
                Convolution convolution;
                std::uniform_int_distribution<int> weight(-largest, largest);
                for (int& w : convolution.weights) w = random() % 3 == 0 ? 0 : weight(random);
                convolution.scale = static_cast<int>(random() % 41) - 20;
                convolution.offset = static_cast<int>(random() % 400) - 100;
                ExpectAsReference(source, convolution);
            }
        }
}

TEST(Convolve, DoesNotFlipTheKernel) {
    Image source = test::FlatImage({5, 5}, {0, 0, 0});
    source.View().SetPixel(2, 2, {100, 100, 100});
    Convolution convolution;
    convolution.weights[0] = 1;  // two rows up, two columns left
    EXPECT_EQ(Convolved(source, convolution).View().Pixel(4, 4), (Rgb{100, 100, 100}));
}

TEST(Convolve, ReadsTheEdgePixelBeyondTheEdge) {
    const Image source = test::RandomImage({4, 3}, 2);
    for (const std::size_t tap : {0U, 4U, 20U, 24U}) {
        Convolution convolution;
        convolution.weights[tap] = 1;
        ExpectAsReference(source, convolution);
    }
}

TEST(ByteOfSum, RoundsByAddingTwoFifths) {
    Convolution convolution;
    convolution.scale = 10;
    EXPECT_EQ(ByteOfSum(105, convolution), 10);  // 10.5 + 0.4
    EXPECT_EQ(ByteOfSum(106, convolution), 11);  // 10.6 + 0.4
    convolution.scale = -10;
    convolution.offset = 100;
    EXPECT_EQ(ByteOfSum(105, convolution), 89);  // 89.5 + 0.4
    EXPECT_EQ(ByteOfSum(5000, convolution), 0);
    EXPECT_EQ(ByteOfSum(-5000, convolution), 255);
}

TEST(ByteOfSum, IsTheOffsetAloneForAScaleOfZero) {
    Convolution convolution;
    convolution.scale = 0;
    for (const auto& [offset, byte] : {std::pair{0, 0}, {128, 128}, {300, 255}, {-1, 0}}) {
        convolution.offset = offset;
        EXPECT_EQ(ByteOfSum(12345, convolution), byte);
        EXPECT_TRUE(test::SamePixels(Convolved(test::RandomImage({7, 5}, 3), convolution),
                                     test::FlatImage({7, 5}, {static_cast<std::uint8_t>(byte),
                                                              static_cast<std::uint8_t>(byte),
                                                              static_cast<std::uint8_t>(byte)})));
    }
}

TEST(Convolve, TellsWhichAllocationFailed) {
    Image source = test::RandomImage({3000, 4}, 1);
    const Image before = test::Copy(source.View());
    std::vector<int> seen;
    imaging::TrimPixelPool();
    for (std::size_t extra = 0; extra < 400'000; extra += 1000) {
        const test::ScopedMemoryBudget budget(imaging::MemoryInUse() + extra);
        const auto failed = Convolve(source.View(), Convolution{});
        if (!failed) break;
        if (seen.empty() || seen.back() != *failed) seen.push_back(*failed);
        EXPECT_TRUE(test::SamePixels(source, before));
    }
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
}

}  // namespace
}  // namespace lumo::ops::filters
