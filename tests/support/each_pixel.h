#pragma once

// Checks of kernels that change each pixel by itself.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "imaging/image.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::test {

/// 4096 pixels wide: every step-th colour once, blue running along the rows. Sanitised builds have
/// no more than every 67th.
imaging::Image AllColoursImage(int step = 1);

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

/// Every how many-th colour a check looks at: all of them, or enough to find what goes by ranges.
enum class Colours : int { All = 1, Some = 17 };

/// The same on the colours. The widest instruction set sees all that are asked for, the others
/// some.
template <typename Kernel, typename Expected>
void CheckOnAllColours(const Kernel& kernel, const Expected& expected,
                       Colours colours = Colours::All) {
    const auto compare = [&](const std::string& target, int step) {
        const imaging::Image before = AllColoursImage(step);
        imaging::Image after = Copy(before.View());
        kernel(after.View());
        EXPECT_TRUE(EachPixelIs(before.View(), after.View(), expected)) << target;
    };
    compare("usual instruction set", static_cast<int>(colours));
    ForEachSimdTarget(
        [&](const std::string& target) { compare(target, 4 * static_cast<int>(Colours::Some)); });
}

}  // namespace lumo::test
