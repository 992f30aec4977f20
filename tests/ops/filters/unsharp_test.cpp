#include "ops/filters/unsharp.h"

#include <gtest/gtest.h>

#include <climits>

#include "imaging/blur_gaussian.h"
#include "imaging/parallel.h"
#include "reference/filter_reference.h"
#include "support/test_images.h"

namespace lumo::ops::filters {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

Image Masked(const Image& source, const Image& blurred, const UnsharpParams& params) {
    Image result = test::Copy(blurred.View());
    EXPECT_TRUE(UnsharpMask(source.View(), result.View(), params));
    return result;
}

TEST(UnsharpMask, IsTheFormulaAtTheEdges) {
    std::uint32_t seed = 1;
    for (const Size size :
         {Size{1, 1}, Size{1, 5}, Size{5, 1}, Size{2, 2}, Size{3, 7}, Size{41, 23}})
        for (const int threshold : {0, 1, 20, 100, 200, 255, 400, -1, -50, INT_MIN})
            for (const int amount : {1, 33, 100, 150, 500, 0, -100, -250})
                for (const bool luminance : {true, false}) {
                    const Image source = test::RandomImage(size, ++seed);
                    const Image blurred = test::RandomImage(size, ++seed);
                    EXPECT_TRUE(
                        test::SamePixels(Masked(source, blurred, {amount, threshold, luminance}),
                                         reference::UnsharpMask(source.View(), blurred.View(),
                                                                amount, threshold, luminance)))
                        << amount << " " << threshold << " " << luminance;
                }
}

// Every pair of bytes, so that no rounding of the formula is missed.
TEST(UnsharpMask, IsTheFormulaForEveryPairOfBytes) {
    Image source = test::FlatImage({256, 256}, {});
    Image blurred = test::FlatImage({256, 256}, {});
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const auto o = static_cast<std::uint8_t>(x), b = static_cast<std::uint8_t>(y);
            source.View().SetPixel(x, y, {o, o, o});
            blurred.View().SetPixel(x, y, {b, b, b});
        }
    for (const int amount : {1, 7, 50, 99, 100, 101, 250, 499, 500})
        for (const bool luminance : {true, false})
            EXPECT_TRUE(test::SamePixels(
                Masked(source, blurred, {amount, 0, luminance}),
                reference::UnsharpMask(source.View(), blurred.View(), amount, 0, luminance)))
                << amount;
}

TEST(UnsharpMask, IsTwiceThePixelLessTheBlurForTheAmount100) {
    const Image source = test::FlatImage({3, 1}, {100, 50, 200});
    const Image blurred = test::FlatImage({3, 1}, {90, 120, 10});
    EXPECT_EQ(Masked(source, blurred, {100, 0, false}).View().Pixel(1, 0), (Rgb{110, 0, 255}));
}

TEST(UnsharpMask, LeavesBlackBlackInLuminanceMode) {
    const Image source = test::FlatImage({3, 3}, {0, 0, 0});
    EXPECT_TRUE(test::SamePixels(
        Masked(source, test::FlatImage({3, 3}, {9, 200, 3}), {100, 0, true}), source));
}

TEST(UnsharpMask, LeavesEverythingAtAThresholdOf255) {
    const Image source = test::RandomImage({31, 17}, 9);
    for (const bool luminance : {true, false})
        EXPECT_TRUE(test::SamePixels(
            Masked(source, test::RandomImage({31, 17}, 10), {100, 255, luminance}), source));
}

TEST(UnsharpMask, GivesTheSameBytesOnSeveralThreads) {
    const Image source = test::RandomImage({900, 500}, 4),
                blurred = test::RandomImage({900, 500}, 5);
    const Image alone = Masked(source, blurred, {100, 30, true});
    imaging::SetKernelThreads(3);
    EXPECT_TRUE(test::SamePixels(alone, Masked(source, blurred, {100, 30, true})));
    imaging::SetKernelThreads(1);
}

}  // namespace
}  // namespace lumo::ops::filters
