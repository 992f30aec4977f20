#pragma once

// Checks of kernels that change each pixel by itself.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "imaging/image.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::test {

/// 4096 x 4096: every colour once, blue running along the rows. Sanitised builds have every 67th.
imaging::Image AllColoursImage();

/// Small sizes around the lengths that kernels take at once, down to one pixel.
inline constexpr imaging::Size kOddSizes[] = {
    {1, 1},  {1, 2},  {2, 1},  {3, 5},  {5, 1},  {7, 3},  {15, 1}, {16, 1},  {17, 2},  {21, 3},
    {31, 1}, {33, 1}, {43, 1}, {63, 1}, {64, 1}, {65, 1}, {85, 1}, {129, 1}, {255, 3}, {257, 1}};

/// True if each pixel of `after` is `expected(pixel of before)`; else names the first that is not.
template <typename Expected>
testing::AssertionResult EachPixelIs(imaging::ConstImageView before, imaging::ConstImageView after,
                                     const Expected& expected) {
    if (before.Extent() != after.Extent()) return testing::AssertionFailure() << "sizes differ";
    for (int y = 0; y < before.Height(); ++y)
        for (int x = 0; x < before.Width(); ++x) {
            const imaging::Rgb from = before.Pixel(x, y), is = after.Pixel(x, y);
            const imaging::Rgb want = expected(from);
            if (is == want) continue;
            const auto text = [](imaging::Rgb p) {
                return std::to_string(p.red) + "," + std::to_string(p.green) + "," +
                       std::to_string(p.blue);
            };
            return testing::AssertionFailure()
                   << "(" << x << ", " << y << ") " << text(from) << " became " << text(is)
                   << " instead of " << text(want);
        }
    return testing::AssertionSuccess();
}

/// Runs `kernel` on random pictures of odd sizes, under each instruction set, and compares.
template <typename Kernel, typename Expected>
void CheckOnOddSizes(const Kernel& kernel, const Expected& expected) {
    ForEachSimdTarget([&](const std::string& target) {
        std::uint32_t seed = 1;
        for (const imaging::Size size : kOddSizes) {
            const imaging::Image before = RandomImage(size, seed++);
            imaging::Image after = Copy(before.View());
            kernel(after.View());
            ASSERT_TRUE(EachPixelIs(before.View(), after.View(), expected))
                << target << " at " << size.width << "x" << size.height;
        }
    });
}

/// The same on every colour.
template <typename Kernel, typename Expected>
void CheckOnAllColours(const Kernel& kernel, const Expected& expected) {
    const imaging::Image before = AllColoursImage();
    imaging::Image wanted = Copy(before.View());
    for (int y = 0; y < before.Height(); ++y)
        for (int x = 0; x < before.Width(); ++x)
            wanted.View().SetPixel(x, y, expected(before.View().Pixel(x, y)));
    ForEachSimdTarget([&](const std::string& target) {
        imaging::Image after = Copy(before.View());
        kernel(after.View());
        if (std::ranges::equal(after.View().Bytes(), wanted.View().Bytes())) return;
        ADD_FAILURE() << target << ": "
                      << EachPixelIs(before.View(), after.View(), expected).message();
    });
}

}  // namespace lumo::test
