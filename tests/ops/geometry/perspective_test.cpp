#include "ops/geometry/perspective.h"

#include <gtest/gtest.h>

#include <random>

#include "ops/geometry/geometry_commands.h"
#include "support/command_runner.h"

namespace lumo::ops::geometry {
namespace {

using imaging::Image;
using imaging::Rgb;
using imaging::Size;

constexpr Rgb kCanvas{1, 2, 3};

// Pixel by pixel, as the rule for columns reads.
Image ColumnsSqueezedPlainly(const Image& source, int percent) {
    const int W = source.Width(), H = source.Height();
    Image target = test::FlatImage({W, H}, kCanvas);
    const double p = percent / 100.0;
    double begin = H, end = H;
    if (p < 0) begin = p * begin + begin;
    if (p > 0) end = end - p * end;
    for (int x = 0; x < W; ++x) {
        const int c = static_cast<int>(((end - begin) * (x + 1)) / W + begin);
        const int o = (H - c) / 2;
        for (int i = 0; i < c; ++i)
            target.View().SetPixel(x, i + o, source.View().Pixel(x, i * H / c));
    }
    return target;
}

Image Transposed(const Image& source) {
    Image target = test::FlatImage({source.Height(), source.Width()}, {});
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x)
            target.View().SetPixel(y, x, source.View().Pixel(x, y));
    return target;
}

Image Squeezed(const engine::Command& command, Image source, int percent) {
    test::CommandRunner runner(std::move(source));
    EXPECT_TRUE(runner.Run(command, "4,1,2,3," + std::to_string(percent) + ","));
    return std::move(runner.Main());
}

TEST(Perspective, GivesThePixelsOfThePlainLoop) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        const int most = round < 100 ? 9 : 700;
        const Size size{1 + static_cast<int>(random() % most), 1 + static_cast<int>(random() % 90)};
        const int percent =
            round % 10 == 0 ? 100 - round / 10 * 10 : static_cast<int>(random() % 241) - 120;
        const Image source = test::RandomImage(size, static_cast<std::uint32_t>(round));
        const Image expected = ColumnsSqueezedPlainly(source, percent);
        ASSERT_TRUE(test::SamePixels(
            Squeezed(kHorizontalPerspectiveCommand, test::Copy(source.View()), percent), expected))
            << size.width << " x " << size.height << ", " << percent;
        // The other command is the same, turned by a quarter.
        ASSERT_TRUE(
            test::SamePixels(Squeezed(kVerticalPerspectiveCommand, Transposed(source), percent),
                             Transposed(expected)))
            << size.width << " x " << size.height << ", " << percent;
    }
}

TEST(Perspective, LengthsOfTheExamples) {
    EXPECT_EQ(SqueezedLength(50, 0, 100, 100), 99);  // even the first is shortened
    EXPECT_EQ(SqueezedLength(50, 99, 100, 100), 50);
    EXPECT_EQ(SqueezedLength(-50, 0, 100, 100), 50);
    EXPECT_EQ(SqueezedLength(-50, 99, 100, 100), 100);
    EXPECT_EQ(SqueezedLength(100, 99, 100, 100), 0);
    EXPECT_EQ(SqueezedLength(-100, 0, 200, 100), 0);
    EXPECT_EQ(SqueezedLength(0, 17, 100, 100), 100);
    EXPECT_LT(SqueezedLength(2147483647, 99, 100, 65535), 0);
    EXPECT_LT(SqueezedLength(-2147483647 - 1, 0, 100, 65535), 0);
}

TEST(Perspective, NoughtKeepsThePixels) {
    for (const auto* command : {&kHorizontalPerspectiveCommand, &kVerticalPerspectiveCommand})
        EXPECT_TRUE(test::SamePixels(Squeezed(*command, test::RandomImage({300, 37}, 2), 0),
                                     test::RandomImage({300, 37}, 2)));
}

TEST(Perspective, AHundredLeavesTheLastColumnToTheCanvas) {
    const Image right =
        Squeezed(kHorizontalPerspectiveCommand, test::FlatImage({100, 100}, {9, 9, 9}), 100);
    const Image left =
        Squeezed(kHorizontalPerspectiveCommand, test::FlatImage({200, 100}, {9, 9, 9}), -100);
    for (int y = 0; y < 100; ++y) {
        EXPECT_EQ(right.View().Pixel(99, y), kCanvas);
        EXPECT_EQ(left.View().Pixel(0, y), kCanvas);
        EXPECT_EQ(left.View().Pixel(199, y), (Rgb{9, 9, 9}));
    }
    EXPECT_EQ(right.View().Pixel(98, 49), (Rgb{9, 9, 9}));
    EXPECT_EQ(left.View().Pixel(1, 49), (Rgb{9, 9, 9}));
}

TEST(Perspective, BeyondAHundredNothingIsLeftOfSomeColumns) {
    const Image wild =
        Squeezed(kHorizontalPerspectiveCommand, test::FlatImage({50, 40}, {9, 9, 9}), 2147483647);
    EXPECT_TRUE(test::SamePixels(wild, test::FlatImage({50, 40}, kCanvas)));
}

TEST(Perspective, PanelTellsPercentAndCanvas) {
    for (const auto* command : {&kHorizontalPerspectiveCommand, &kVerticalPerspectiveCommand})
        EXPECT_EQ(script::PanelText(command->spec, script::ParseParams("4,1,2,3,-40,")),
                  "Perspective %: -40\nCanvas(RGB):1: 2: 3\n");
}

}  // namespace
}  // namespace lumo::ops::geometry
