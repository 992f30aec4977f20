#include "imaging/border.h"

#include <gtest/gtest.h>

#include <random>

#include "imaging/compose.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

constexpr Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{200, 10, 10};

void Fill(Image& image, InclusiveRect rect, Rgb colour) {
    EXPECT_TRUE(FillSolidRect(image.View(), {rect.left, rect.top, rect.right + 1, rect.bottom + 1},
                              colour));
}

// Strips off one row or column after the other as long as one is all border.
std::optional<InclusiveRect> PeeledPlainly(ConstImageView image, std::uint32_t tolerance,
                                           Rgb colour) {
    const auto isNear = [&](int x, int y) {
        const Rgb p = image.Pixel(x, y);
        const int r = p.red - colour.red, g = p.green - colour.green, b = p.blue - colour.blue;
        return static_cast<std::uint32_t>(r * r + g * g + b * b) <= tolerance;
    };
    InclusiveRect rect{0, 0, image.Width() - 1, image.Height() - 1};
    const auto row = [&](int y) {
        for (int x = rect.left; x <= rect.right; ++x)
            if (!isNear(x, y)) return false;
        return true;
    };
    const auto column = [&](int x) {
        for (int y = rect.top; y <= rect.bottom; ++y)
            if (!isNear(x, y)) return false;
        return true;
    };
    bool peeled = false;
    while (rect.top <= rect.bottom && rect.left <= rect.right) {
        if (row(rect.top))
            ++rect.top;
        else if (row(rect.bottom))
            --rect.bottom;
        else if (column(rect.left))
            ++rect.left;
        else if (column(rect.right))
            --rect.right;
        else
            return peeled ? std::optional(rect) : std::nullopt;
        peeled = true;
    }
    return std::nullopt;  // nothing inside
}

TEST(GetBorder, GivesTheInclusiveRectangleInside) {
    Image image = test::FlatImage({20, 10}, kBlack);
    Fill(image, {3, 2, 15, 7}, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 0, kBlack), (InclusiveRect{3, 2, 15, 7}));
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{3, 2, 15, 7}));
    EXPECT_EQ(GetBorder(image.View(), 0, kRed), std::nullopt);
}

TEST(GetBorder, SinglePixelsStopIt) {
    Image image = test::FlatImage({600, 300}, kBlack);
    Fill(image, {300, 150, 300, 150}, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 0, kBlack), (InclusiveRect{300, 150, 300, 150}));
    image.View().SetPixel(599, 0, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 0, kBlack), (InclusiveRect{300, 0, 599, 150}));
    image.View().SetPixel(0, 299, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 0, kBlack), std::nullopt);
}

TEST(GetBorder, ASideWithoutABorderIsLeftAlone) {
    Image image = test::RandomImage({20, 10}, 1);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), std::nullopt);
    Fill(image, {17, 0, 19, 9}, kBlack);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{0, 0, 16, 9}));
    Fill(image, {0, 7, 19, 9}, kBlack);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{0, 0, 16, 6}));
}

TEST(GetBorder, DetectsTheColourThatMostOfTheEdgesHave) {
    // A white picture that reaches the upper left corner, in a black border on two sides, with two
    // black corners against a white and a red one.
    Image image = test::FlatImage({20, 10}, kWhite);
    Fill(image, {0, 8, 19, 9}, kBlack);
    Fill(image, {15, 0, 19, 9}, kBlack);
    image.View().SetPixel(19, 0, kRed);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{0, 0, 19, 7}));
    image.View().SetPixel(19, 0, kBlack);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{0, 0, 14, 7}));
}

TEST(GetBorder, TriesTheOtherCornersWhereTheMostFrequentColourIsNoBorder) {
    // Most of the edge is white, but the only whole column is black.
    Image image = test::FlatImage({20, 10}, kWhite);
    Fill(image, {0, 0, 1, 9}, kBlack);
    Fill(image, {10, 0, 10, 0}, kRed);
    Fill(image, {10, 9, 10, 9}, kRed);
    Fill(image, {19, 5, 19, 5}, kRed);
    EXPECT_EQ(GetBorder(image.View(), 0, std::nullopt), (InclusiveRect{2, 0, 19, 9}));
}

TEST(GetBorder, EverythingIsNoBorder) {
    EXPECT_EQ(GetBorder(test::FlatImage({20, 10}, kRed).View(), 0, std::nullopt), std::nullopt);
    EXPECT_EQ(GetBorder(test::FlatImage({1, 1}, kRed).View(), 0, kRed), std::nullopt);
    const Image noise = test::RandomImage({20, 10}, 1);
    EXPECT_EQ(GetBorder(noise.View(), 195075, std::nullopt), std::nullopt);
    EXPECT_EQ(GetBorder(noise.View(), 0xFFFFFFFFU, kBlack), std::nullopt);
}

TEST(GetBorder, TheToleranceIsInclusive) {
    Image image = test::FlatImage({20, 10}, {3, 4, 12});  // 9 + 16 + 144 from black
    Fill(image, {3, 2, 15, 7}, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 169, kBlack), (InclusiveRect{3, 2, 15, 7}));
    EXPECT_EQ(GetBorder(image.View(), 168, kBlack), std::nullopt);
    // White is 195075 from black: one less still tells them apart.
    image = test::FlatImage({20, 10}, kBlack);
    Fill(image, {3, 2, 15, 7}, kWhite);
    EXPECT_EQ(GetBorder(image.View(), 195074, kBlack), (InclusiveRect{3, 2, 15, 7}));
}

TEST(GetBorder, AgreesWithPeelingRowsAndColumns) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const auto below = [&](int n) {
            return static_cast<int>(random() % static_cast<unsigned>(n));
        };
        const Size size{1 + below(round < 1000 ? 6 : 700), 1 + below(8)};
        Image image = test::FlatImage(size, kBlack);
        for (int spot = below(4); spot > 0; --spot)
            image.View().SetPixel(below(size.width), below(size.height),
                                  {static_cast<std::uint8_t>(below(256)), 0, 0});
        const auto tolerance = static_cast<std::uint32_t>(below(2) * below(65026));
        ASSERT_EQ(GetBorder(image.View(), tolerance, kBlack),
                  PeeledPlainly(image.View(), tolerance, kBlack))
            << size.width << " x " << size.height;
    }
}

}  // namespace
}  // namespace lumo::imaging
