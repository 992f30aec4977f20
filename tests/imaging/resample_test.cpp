#include "imaging/resample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "reference/resample_reference.h"
#include "support/simd_targets.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

using testing::StartsWith;

constexpr ResampleFilter kFilters[] = {ResampleFilter::Nearest,  ResampleFilter::Box,
                                       ResampleFilter::Bilinear, ResampleFilter::Bicubic,
                                       ResampleFilter::Hermite,  ResampleFilter::CatmullRom,
                                       ResampleFilter::Lanczos3};

struct Sizes {
    Size from, to;
};

// Down, up, one way each, single rows, columns and pixels, odd numbers, big and broken ratios.
const std::vector<Sizes> kSizes = {
    {{1, 1}, {1, 2}},       {{1, 1}, {7, 5}},        {{2, 1}, {1, 1}},       {{1, 2}, {5, 1}},
    {{2, 2}, {3, 3}},       {{3, 3}, {2, 2}},        {{5, 4}, {4, 5}},       {{7, 9}, {9, 7}},
    {{1, 300}, {1, 7}},     {{300, 1}, {7, 1}},      {{1, 7}, {1, 300}},     {{7, 1}, {300, 1}},
    {{64, 64}, {32, 32}},   {{64, 64}, {128, 128}},  {{63, 65}, {31, 66}},   {{65, 63}, {66, 31}},
    {{100, 80}, {99, 79}},  {{99, 79}, {100, 80}},   {{100, 80}, {33, 80}},  {{100, 80}, {100, 27}},
    {{100, 80}, {131, 80}}, {{100, 80}, {100, 133}}, {{157, 91}, {50, 29}},  {{91, 157}, {29, 50}},
    {{40, 30}, {333, 222}}, {{333, 222}, {40, 30}},  {{333, 222}, {1, 1}},   {{1000, 3}, {3, 100}},
    {{3, 1000}, {100, 3}},  {{2000, 2}, {2, 1}},     {{3, 2}, {400, 301}},   {{200, 130}, {64, 41}},
    {{97, 101}, {13, 11}},  {{640, 480}, {128, 96}}, {{1600, 40}, {37, 36}}, {{29, 1700}, {30, 41}},
};

Image Resized(ConstImageView source, Size to, ResampleFilter filter) {
    Image target = test::FlatImage(to, {1, 2, 3});
    EXPECT_TRUE(ResizeImage(source, target.View(), filter));
    return target;
}

std::string Name(ResampleFilter filter, Sizes sizes) {
    return "filter " + std::to_string(static_cast<int>(filter)) + ", " +
           std::to_string(sizes.from.width) + " x " + std::to_string(sizes.from.height) + " to " +
           std::to_string(sizes.to.width) + " x " + std::to_string(sizes.to.height);
}

// Largest distance of a byte from what exact arithmetic would round.
double LargestError(ConstImageView actual, const std::vector<double>& exact) {
    double largest = 0;
    for (std::size_t i = 0; i < exact.size(); ++i)
        largest = std::max(largest, std::abs(actual.Bytes()[i] - std::clamp(exact[i], 0.0, 255.0)));
    return largest;
}

Image Checkerboard(Size size) {
    Image image = test::FlatImage(size, {0, 0, 0});
    for (int y = 0; y < size.height; ++y)
        for (int x = y % 2; x < size.width; x += 2) image.View().SetPixel(x, y, {255, 255, 255});
    return image;
}

// Left and right half of one colour each.
Image Step(Size size, Rgb left, Rgb right) {
    Image image = test::FlatImage(size, left);
    for (int i = 0; i < size.width * size.height; ++i)
        if (i % size.width >= size.width / 2)
            image.View().SetPixel(i % size.width, i / size.width, right);
    return image;
}

Image Mirrored(ConstImageView source) {
    Image mirrored = test::Copy(source);
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x)
            mirrored.View().SetPixel(x, y,
                                     source.Pixel(source.Width() - 1 - x, source.Height() - 1 - y));
    return mirrored;
}

TEST(ResizeImage, AgreesWithTheDefinitionOfEachFilter) {
    for (const Sizes& sizes : kSizes)
        for (const ResampleFilter filter : kFilters) {
            if (filter == ResampleFilter::Nearest) continue;
            SCOPED_TRACE(Name(filter, sizes));
            const Image source = test::RandomImage(sizes.from, 7);
            const Image actual = Resized(source.View(), sizes.to, filter);
            // Half a level is the rounding to a byte itself.
            EXPECT_LT(LargestError(actual.View(),
                                   test::ReferenceResample(source.View(), sizes.to, filter)),
                      0.5 + 0.06);
        }
}

TEST(ResizeImage, NearestTakesThePixelUnderTheCentre) {
    const Image source = test::CoordinateImage({5, 3});
    const Image down = Resized(source.View(), {2, 2}, ResampleFilter::Nearest);
    // Centres of the target at 1.25 and 3.75 of 5, and at 0.75 and 2.25 of 3.
    EXPECT_EQ(down.View().Pixel(0, 0), (Rgb{1, 0, 7}));
    EXPECT_EQ(down.View().Pixel(1, 1), (Rgb{3, 2, 7}));
    for (const Sizes& sizes : kSizes) {
        SCOPED_TRACE(Name(ResampleFilter::Nearest, sizes));
        const Image random = test::RandomImage(sizes.from, 3);
        const Image actual = Resized(random.View(), sizes.to, ResampleFilter::Nearest);
        Image expected = test::FlatImage(sizes.to, {});
        for (int y = 0; y < sizes.to.height; ++y)
            for (int x = 0; x < sizes.to.width; ++x)
                expected.View().SetPixel(
                    x, y,
                    random.View().Pixel((2 * x + 1) * sizes.from.width / (2 * sizes.to.width),
                                        (2 * y + 1) * sizes.from.height / (2 * sizes.to.height)));
        EXPECT_TRUE(test::SamePixels(actual, expected));
    }
}

TEST(ResizeImage, BoxAveragesTheAreaUnderEachPixel) {
    Image source = test::FlatImage({3, 1}, {0, 0, 0});
    source.View().SetPixel(0, 0, {90, 30, 255});
    source.View().SetPixel(1, 0, {60, 0, 0});
    source.View().SetPixel(2, 0, {0, 90, 255});
    const Image two = Resized(source.View(), {2, 1}, ResampleFilter::Box);
    EXPECT_EQ(two.View().Pixel(0, 0), (Rgb{80, 20, 170}));  // one and a half pixels each
    EXPECT_EQ(two.View().Pixel(1, 0), (Rgb{20, 60, 170}));
    const Image one = Resized(source.View(), {1, 1}, ResampleFilter::Box);
    EXPECT_EQ(one.View().Pixel(0, 0), (Rgb{50, 40, 170}));
}

TEST(ResizeImage, AveragesOfTwoAreExactAndRoundHalvesUp) {
    const Image source = test::RandomImage({128, 64}, 5);
    const Image half = Resized(source.View(), {64, 32}, ResampleFilter::Box);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            for (int c = 0; c < 3; ++c) {
                const ConstImageView view = source.View();
                const int sum = view.At(2 * x, 2 * y)[c] + view.At(2 * x + 1, 2 * y)[c] +
                                view.At(2 * x, 2 * y + 1)[c] + view.At(2 * x + 1, 2 * y + 1)[c];
                ASSERT_EQ(half.View().At(x, y)[c], (sum + 2) / 4) << x << ", " << y;
            }
}

TEST(ResizeImage, KeepsEveryFlatPictureFlat) {
    for (const Sizes& sizes : kSizes)
        for (const ResampleFilter filter : kFilters) {
            SCOPED_TRACE(Name(filter, sizes));
            for (int value = 0; value < 256; value += sizes.from.Area() > 5000 ? 51 : 1) {
                const auto byte = static_cast<std::uint8_t>(value);
                const Rgb colour{byte, static_cast<std::uint8_t>(255 - byte), byte};
                const Image source = test::FlatImage(sizes.from, colour);
                ASSERT_TRUE(test::SamePixels(Resized(source.View(), sizes.to, filter),
                                             test::FlatImage(sizes.to, colour)));
            }
        }
}

TEST(ResizeImage, SameSizeGivesTheSameBytes) {
    const Image source = test::RandomImage({57, 31}, 1);
    for (const ResampleFilter filter : kFilters)
        EXPECT_TRUE(test::SamePixels(Resized(source.View(), {57, 31}, filter), source));
}

TEST(ResizeImage, MirroredPicturesGiveMirroredResults) {
    for (const Sizes& sizes : kSizes)
        for (const ResampleFilter filter : kFilters) {
            if (filter == ResampleFilter::Nearest) continue;  // between two pixels it goes right
            SCOPED_TRACE(Name(filter, sizes));
            const Image source = test::RandomImage(sizes.from, 11);
            const Image straight = Resized(source.View(), sizes.to, filter);
            const Image turned = Resized(Mirrored(source.View()).View(), sizes.to, filter);
            EXPECT_TRUE(test::SamePixels(turned, Mirrored(straight.View())));
        }
}

TEST(ResizeImage, ShrinkingAFineCheckerboardGivesMidGrey) {
    const Image source = Checkerboard({400, 300});
    for (const ResampleFilter filter : kFilters) {
        if (filter == ResampleFilter::Nearest) continue;
        for (const Size to : {Size{100, 75}, Size{90, 70}, Size{130, 77}, Size{16, 12}}) {
            SCOPED_TRACE(Name(filter, {source.Extent(), to}));
            const Image actual = Resized(source.View(), to, filter);
            // The outermost pixels may lean to the edge that they repeat.
            for (int y = 2; y < to.height - 2; ++y)
                for (int x = 2; x < to.width - 2; ++x)
                    ASSERT_NEAR(actual.View().Pixel(x, y).red, 127.5, 16) << x << ", " << y;
        }
    }
}

TEST(ResizeImage, EdgesStayBetweenTheirNeighboursWithFiltersThatDoNotOvershoot) {
    const Image source = Step({20, 4}, {30, 30, 30}, {220, 220, 220});
    for (const ResampleFilter filter :
         {ResampleFilter::Box, ResampleFilter::Bilinear, ResampleFilter::Hermite})
        for (const int width : {7, 33, 200}) {
            const Image actual = Resized(source.View(), {width, 5}, filter);
            int before = 30;
            for (int x = 0; x < width; ++x) {
                const int value = actual.View().Pixel(x, 2).green;
                EXPECT_GE(value, before) << x;
                before = value;
            }
            EXPECT_EQ(actual.View().Pixel(0, 2).green, 30);
            EXPECT_EQ(before, 220);
        }
}

TEST(ResizeImage, OvershootIsClampedAndNeverWraps) {
    const Image source = Step({40, 40}, {0, 0, 0}, {255, 255, 255});
    for (const ResampleFilter filter : {ResampleFilter::Bicubic, ResampleFilter::Lanczos3})
        for (const Size to : {Size{200, 200}, Size{31, 200}, Size{200, 31}, Size{31, 31}}) {
            const Image actual = Resized(source.View(), to, filter);
            for (int x = 0; x < to.width / 2 - 2; ++x)
                ASSERT_LT(actual.View().Pixel(x, 3).blue, 30) << x;
            for (int x = to.width / 2 + 2; x < to.width; ++x)
                ASSERT_GT(actual.View().Pixel(x, 3).blue, 225) << x;
        }
}

TEST(ResizeImage, AllInstructionSetsAndThreadCountsGiveTheSameBytes) {
    std::vector<Sizes> cases = kSizes;
    cases.push_back({{1400, 900}, {447, 301}});  // big enough for several threads
    cases.push_back({{447, 301}, {1400, 900}});
    for (const Sizes& sizes : cases)
        for (const ResampleFilter filter : kFilters) {
            SCOPED_TRACE(Name(filter, sizes));
            const Image source = test::RandomImage(sizes.from, 23);
            const Image expected = Resized(source.View(), sizes.to, filter);
            test::ForEachSimdTarget([&](const std::string& name) {
                SCOPED_TRACE(name);
                EXPECT_TRUE(test::SamePixels(Resized(source.View(), sizes.to, filter), expected));
            });
            SetKernelThreads(4);
            EXPECT_TRUE(test::SamePixels(Resized(source.View(), sizes.to, filter), expected));
            SetKernelThreads(1);
        }
}

TEST(ResizeImage, TakesSidesOfTheLargestPicture) {
    const Image wide = test::FlatImage({65500, 3}, {10, 200, 30});
    const Image high = test::FlatImage({3, 65500}, {10, 200, 30});
    for (const ResampleFilter filter : kFilters) {
        SCOPED_TRACE(static_cast<int>(filter));
        for (const Size to : {Size{1, 1}, Size{65499, 2}, Size{5, 7}, Size{32750, 4}})
            EXPECT_TRUE(test::SamePixels(Resized(wide.View(), to, filter),
                                         test::FlatImage(to, {10, 200, 30})));
        for (const Size to : {Size{1, 1}, Size{2, 65499}, Size{7, 5}, Size{4, 32750}})
            EXPECT_TRUE(test::SamePixels(Resized(high.View(), to, filter),
                                         test::FlatImage(to, {10, 200, 30})));
        const Image grown = Resized(test::FlatImage({2, 1}, {9, 8, 7}).View(), {65500, 2}, filter);
        EXPECT_TRUE(test::SamePixels(grown, test::FlatImage({65500, 2}, {9, 8, 7})));
    }
}

TEST(ResizeImage, RefusesSidesBeyondItsArithmetic) {
    auto longest = Image::TryCreate({kLongestSide + 1, 1});
    if (!longest) GTEST_SKIP() << "no memory for so long a row";
    Image target = test::FlatImage({4, 1}, {});
    EXPECT_FALSE(ResizeImage(longest->View(), target.View(), ResampleFilter::Bilinear));
    EXPECT_FALSE(ResizeImage(target.View(), longest->View(), ResampleFilter::Nearest));
    EXPECT_EQ(LastError(), "a side is too long to change the size");
}

TEST(ResizeImage, StaysExactOverThousandsOfTaps) {
    const Image wide = test::RandomImage({30000, 2}, 9);
    const Image high = test::RandomImage({2, 30000}, 9);
    for (const ResampleFilter filter : kFilters) {
        if (filter == ResampleFilter::Nearest) continue;
        SCOPED_TRACE(static_cast<int>(filter));
        EXPECT_LT(LargestError(Resized(wide.View(), {3, 1}, filter).View(),
                               test::ReferenceResample(wide.View(), {3, 1}, filter)),
                  0.5 + 0.15);
        EXPECT_LT(LargestError(Resized(high.View(), {1, 3}, filter).View(),
                               test::ReferenceResample(high.View(), {1, 3}, filter)),
                  0.5 + 0.15);
    }
}

TEST(ResizeImage, SaysSoWhenThereIsNoMemoryAndGivesAllOfItBack) {
    const Image source = test::RandomImage({300, 200}, 2);
    const std::size_t before = MemoryInUse();
    for (const ResampleFilter filter : kFilters)
        for (const Size to : {Size{100, 70}, Size{400, 300}, Size{300, 70}, Size{100, 200}}) {
            Image target = test::FlatImage(to, {});
            ClearLastError();
            {
                const test::ScopedMemoryBudget budget(MemoryInUse() + 100);
                EXPECT_FALSE(ResizeImage(source.View(), target.View(), filter));
            }
            EXPECT_THAT(LastError(), StartsWith("not enough memory"));
            EXPECT_TRUE(ResizeImage(source.View(), target.View(), filter));
        }
    EXPECT_EQ(MemoryInUse(), before);
}

TEST(FilterOfCode, KnowsTheCodesOfStoredScripts) {
    const struct {
        int code;
        ResampleFilter filter;
    } rows[] = {{0, ResampleFilter::Bilinear},    {16, ResampleFilter::Bilinear},
                {1, ResampleFilter::Nearest},     {18, ResampleFilter::Nearest},
                {3, ResampleFilter::Bicubic},     {17, ResampleFilter::Bicubic},
                {4, ResampleFilter::Box},         {14, ResampleFilter::Box},
                {8, ResampleFilter::Lanczos3},    {11, ResampleFilter::Hermite},
                {13, ResampleFilter::CatmullRom}, {99, ResampleFilter::Bilinear},
                {-1, ResampleFilter::Bilinear}};
    for (const auto& row : rows) EXPECT_EQ(FilterOfCode(row.code), row.filter) << row.code;
}

}  // namespace
}  // namespace lumo::imaging
