#include "imaging/codecs/gif_palette.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <tuple>

#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::ElementsAre;

// ---- Slow, obvious twins -----------------------------------------------------------------------

int Distance(Rgb a, Rgb b) {
    const auto square = [](int v) { return v * v; };
    return square(a.red - b.red) + square(a.green - b.green) + square(a.blue - b.blue);
}

std::uint8_t PlainNearest(const ColourTable& palette, Rgb colour) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < palette.size(); ++i)
        if (Distance(palette[i], colour) < Distance(palette[best], colour)) best = i;
    return static_cast<std::uint8_t>(best);
}

std::vector<std::uint8_t> PlainDiffused(ConstImageView image, const ColourTable& palette,
                                        bool four) {
    const int width = image.Width(), height = image.Height();
    std::map<std::tuple<int, int, int>, int> errors;  // x, y, channel: sixteenths of a step
    std::vector<std::uint8_t> indices;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int wanted[3], rounded[3];
            for (int c = 0; c < 3; ++c) {
                wanted[c] = std::clamp(image.At(x, y)[c] * 16 + errors[{x, y, c}], 0, 4080);
                rounded[c] = (wanted[c] + 8) / 16;
            }
            const std::uint8_t index =
                PlainNearest(palette, {static_cast<std::uint8_t>(rounded[0]),
                                       static_cast<std::uint8_t>(rounded[1]),
                                       static_cast<std::uint8_t>(rounded[2])});
            indices.push_back(index);
            const int given[3] = {palette[index].red, palette[index].green, palette[index].blue};
            for (int c = 0; c < 3; ++c) {
                const int missed = wanted[c] - given[c] * 16;
                std::vector<std::tuple<int, int, int>> shares;  // x, y, sixteenths of the error
                if (four)
                    shares = {{x + 1, y, 7}, {x - 1, y + 1, 3}, {x, y + 1, 5}, {x + 1, y + 1, 1}};
                else
                    shares = {{x + 1, y, 8}, {x, y + 1, 8}};
                int left = missed;
                for (std::size_t i = 0; i < shares.size(); ++i) {
                    const auto [toX, toY, weight] = shares[i];
                    const int share = i + 1 < shares.size() ? missed * weight / 16 : left;
                    errors[{toX, toY, c}] += share;
                    left -= share;
                }
            }
        }
    return indices;
}

/// The octree as a map from level and path to sums, merged by the rule of the header.
class PlainOctree {
  public:
    explicit PlainOctree(ConstImageView image) {
        for (int y = 0; y < image.Height(); ++y)
            for (int x = 0; x < image.Width(); ++x) {
                const Rgb pixel = image.Pixel(x, y);
                int path = 0;
                for (int bit = 7; bit >= 2; --bit)
                    path = path * 8 + (pixel.red >> bit & 1) * 4 + (pixel.green >> bit & 1) * 2 +
                           (pixel.blue >> bit & 1);
                Sums& sums = leaves_[{6, path}];
                ++sums[0];
                sums[1] += pixel.red;
                sums[2] += pixel.green;
                sums[3] += pixel.blue;
            }
    }
    ColourTable Reduce() {
        for (int level = 5; level >= 0 && leaves_.size() > 256; --level) MergeInto(level);
        ColourTable palette;
        for (const auto& [place, sums] : leaves_) {
            const auto mean = [&sums = sums](std::size_t c) {
                return static_cast<std::uint8_t>((sums[c] + sums[0] / 2) / sums[0]);
            };
            palette.push_back({mean(1), mean(2), mean(3)});
        }
        return palette;
    }

  private:
    using Sums = std::array<std::uint64_t, 4>;

    void MergeInto(int level) {
        std::map<int, Sums> parents;
        for (const auto& [place, sums] : leaves_)
            if (place.first == level + 1)
                for (std::size_t i = 0; i < 4; ++i) parents[place.second / 8][i] += sums[i];
        std::vector<std::pair<std::uint64_t, int>> order;
        for (const auto& [path, sums] : parents) order.emplace_back(sums[0], path);
        std::ranges::sort(order);
        for (const auto& [count, path] : order) {
            if (leaves_.size() <= 256) return;
            for (int child = 0; child < 8; ++child) leaves_.erase({level + 1, path * 8 + child});
            leaves_[{level, path}] = parents[path];
        }
    }
    std::map<std::pair<int, int>, Sums> leaves_;
};

ColourTable RandomPalette(std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto byte = [&random] { return static_cast<std::uint8_t>(random() >> 24); };
    ColourTable palette(count);
    for (Rgb& colour : palette) colour = {byte(), byte(), byte()};
    return palette;
}

double MeanSquaredError(ConstImageView image, const ColourTable& palette) {
    double sum = 0;
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x) {
            const Rgb pixel = image.Pixel(x, y);
            sum += Distance(palette[PlainNearest(palette, pixel)], pixel);
        }
    return sum / static_cast<double>(image.Extent().Area());
}

/// 256 colours in cubes of their own, and one more beside the first.
Image CrowdedImage() {
    Image image = test::FlatImage({260, 1}, {0, 0, 0});
    for (int i = 0; i < 256; ++i)
        image.View().SetPixel(
            i, 0,
            {static_cast<std::uint8_t>(i % 16 * 16), 100, static_cast<std::uint8_t>(i / 16 * 16)});
    for (int x = 256; x < 260; ++x) image.View().SetPixel(x, 0, {3, 102, 3});
    return image;
}

// ---- Palettes
// ------------------------------------------------------------------------------------

TEST(UniformPalette, FollowsItsRule) {
    const ColourTable palette = UniformPalette();
    ASSERT_EQ(palette.size(), 256U);
    EXPECT_EQ(palette[0], (Rgb{0, 0, 0}));
    EXPECT_EQ(palette[1], (Rgb{1, 4, 16}));
    EXPECT_EQ(palette[63], (Rgb{63, 252, 240}));
    EXPECT_EQ(palette[64], (Rgb{64, 0, 0}));
    EXPECT_EQ(palette[255], (Rgb{255, 252, 240}));
}

TEST(ExactPalette, HoldsEachColourOnceInOrder) {
    Image image = test::FlatImage({3, 2}, {9, 9, 9});
    image.View().SetPixel(1, 0, {9, 8, 255});
    image.View().SetPixel(2, 1, {200, 0, 0});
    EXPECT_THAT(ExactPalette(image.View()),
                ElementsAre(Rgb{9, 8, 255}, Rgb{9, 9, 9}, Rgb{200, 0, 0}));
}

TEST(ExactPalette, EndsAt256Colours) {
    const Image enough = test::CoordinateImage({256, 1});
    EXPECT_EQ(ExactPalette(enough.View()).size(), 256U);
    EXPECT_TRUE(ExactPalette(test::CoordinateImage({128, 3}).View()).empty());
    EXPECT_TRUE(ExactPalette(test::RandomImage({30, 30}, 1).View()).empty());
}

TEST(Quantisers, KeepTheColoursOfAPictureOfFew) {
    const Image image = test::CoordinateImage({16, 16});
    EXPECT_EQ(MedianCutPalette(image.View()), ExactPalette(image.View()));
    EXPECT_EQ(OctreePalette(image.View()), ExactPalette(image.View()));
}

TEST(Quantisers, MergeOnlyTheColoursThatStandTogether) {
    const Image image = CrowdedImage();
    std::set<std::tuple<int, int, int>> expected;
    for (int i = 1; i < 256; ++i) expected.insert({i % 16 * 16, 100, i / 16 * 16});
    expected.insert({2, 102, 2});  // one 0, 100, 0 and four 3, 102, 3: 2.4, 101.6, 2.4
    const auto places = [](const ColourTable& palette) {
        std::set<std::tuple<int, int, int>> set;
        for (const Rgb c : palette) set.insert({c.red, c.green, c.blue});
        return set;
    };
    EXPECT_EQ(places(MedianCutPalette(image.View())), expected);
    EXPECT_EQ(places(OctreePalette(image.View())), expected);
}

TEST(Quantisers, GiveManyColoursAndCloserOnesThanTheStandardPalette) {
    for (const Image& image :
         {test::PhotoLikeImage({120, 90}, 3), test::RandomImage({90, 80}, 4)}) {
        const ColourTable median = MedianCutPalette(image.View());
        const ColourTable octree = OctreePalette(image.View());
        EXPECT_EQ(median.size(), 256U);
        EXPECT_GT(octree.size(), 248U);  // a merge takes up to seven leaves away
        EXPECT_LE(octree.size(), 256U);
        const double standard = MeanSquaredError(image.View(), UniformPalette());
        EXPECT_LT(MeanSquaredError(image.View(), median), standard);
        EXPECT_LT(MeanSquaredError(image.View(), octree), standard);
    }
}

TEST(OctreePalette, AgreesWithAPlainTree) {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        for (const Image& image :
             {test::RandomImage({64, 41}, seed), test::PhotoLikeImage({90, 70}, seed)})
            EXPECT_EQ(OctreePalette(image.View()), PlainOctree(image.View()).Reduce());
    }
}

TEST(MedianCutPalette, DoesNotDependOnWherePixelsStand) {
    Image image = test::PhotoLikeImage({80, 60});
    const ColourTable palette = MedianCutPalette(image.View());
    std::mt19937 random(1);
    for (std::uint32_t i = 4799; i > 0; --i) {
        const std::uint32_t j = static_cast<std::uint32_t>(random()) % (i + 1);
        std::uint8_t* p = image.View().Bytes().data();
        std::swap_ranges(p + i * 3, p + i * 3 + 3, p + j * 3);
    }
    EXPECT_EQ(MedianCutPalette(image.View()), palette);
}

// ---- Mapping
// -------------------------------------------------------------------------------------

TEST(NearestColour, AgreesWithALoopOverAllEntries) {
    for (const std::size_t count : {1U, 2U, 16U, 255U, 256U}) {
        const ColourTable palette = RandomPalette(count, static_cast<std::uint32_t>(count));
        NearestColour nearest(palette);
        std::mt19937 random(7);
        for (int i = 0; i < 50000; ++i) {
            const std::uint32_t bits = static_cast<std::uint32_t>(random());
            const Rgb colour{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                             static_cast<std::uint8_t>(bits >> 16)};
            ASSERT_EQ(nearest(colour), PlainNearest(palette, colour));
        }
    }
}

TEST(NearestColour, TakesTheFirstOfEquals) {
    NearestColour nearest({{10, 0, 0}, {20, 0, 0}, {20, 0, 0}});
    EXPECT_EQ(nearest({15, 0, 0}), 0);
    EXPECT_EQ(nearest({16, 0, 0}), 1);
    EXPECT_EQ(nearest({255, 255, 255}), 1);
}

TEST(MapBestFit, AgreesWithALoopOverAllEntries) {
    for (const Size size : {Size{1, 1}, {1, 7}, {9, 1}, {33, 21}}) {
        const Image image = test::RandomImage(size, 2);
        std::vector<std::uint8_t> indices(size.Area());
        MapBestFit(image.View(), UniformPalette(), indices);
        for (std::size_t i = 0; i < indices.size(); ++i) {
            const std::uint8_t* p = image.View().Bytes().data() + i * 3;
            ASSERT_EQ(indices[i], PlainNearest(UniformPalette(), {p[0], p[1], p[2]}));
        }
    }
}

TEST(MapDiffused, AgreesWithAPlainLoop) {
    for (const Size size : {Size{1, 1}, {1, 7}, {9, 1}, {2, 2}, {33, 21}})
        for (const std::size_t colours : {2U, 9U, 256U})
            for (const bool four : {false, true}) {
                const Image image = test::RandomImage(size, 3);
                const ColourTable palette = RandomPalette(colours, 5);
                std::vector<std::uint8_t> indices(size.Area());
                MapDiffused(image.View(), palette,
                            four ? Diffusion::FourNeighbours : Diffusion::TwoNeighbours, indices);
                EXPECT_EQ(indices, PlainDiffused(image.View(), palette, four));
            }
}

TEST(MapDiffused, PassesTheErrorOn) {
    const ColourTable blackAndWhite{{0, 0, 0}, {255, 255, 255}};
    Image image = test::FlatImage({3, 1}, {0, 0, 0});
    image.View().SetPixel(0, 0, {120, 120, 120});
    image.View().SetPixel(1, 0, {70, 70, 70});
    image.View().SetPixel(2, 0, {0, 0, 0});
    std::vector<std::uint8_t> indices(3);
    // 70 + 120 * 8 / 16 = 130 is white, and leaves -125 behind.
    MapDiffused(image.View(), blackAndWhite, Diffusion::TwoNeighbours, indices);
    EXPECT_THAT(indices, ElementsAre(0, 1, 0));
    // 70 + 120 * 7 / 16 = 122.5 is black.
    MapDiffused(image.View(), blackAndWhite, Diffusion::FourNeighbours, indices);
    EXPECT_THAT(indices, ElementsAre(0, 0, 0));
}

TEST(MapDiffused, KeepsTheMeanOfAFlatArea) {
    const ColourTable twoGreys{{100, 100, 100}, {120, 120, 120}};
    const Image image = test::FlatImage({100, 100}, {105, 105, 105});
    for (const auto diffusion : {Diffusion::TwoNeighbours, Diffusion::FourNeighbours}) {
        std::vector<std::uint8_t> indices(10000);
        MapDiffused(image.View(), twoGreys, diffusion, indices);
        EXPECT_NEAR(static_cast<double>(std::ranges::count(indices, 1)), 2500, 50);
    }
}

TEST(MapDiffused, DoesNotPileUpErrorsThatNoColourCanMeet) {
    // White cannot be had; behind it, black must be black at once.
    const ColourTable palette{{0, 0, 0}, {200, 200, 200}};
    Image image = test::FlatImage({200, 1}, {255, 255, 255});
    for (int x = 100; x < 200; ++x) image.View().SetPixel(x, 0, {0, 0, 0});
    std::vector<std::uint8_t> indices(200);
    MapDiffused(image.View(), palette, Diffusion::FourNeighbours, indices);
    EXPECT_EQ(std::ranges::count(indices, 1), 100);
}

}  // namespace
}  // namespace lumo::imaging::codecs
