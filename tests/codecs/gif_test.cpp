#include <gif_lib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/gif_palette.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::HasSubstr;

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodeGif, file);
}

// ---- Files by hand ---------------------------------------------------------------------------

void Append(Bytes& file, std::initializer_list<int> values) {
    for (const int value : values) file.push_back(static_cast<std::uint8_t>(value));
}

constexpr int kGlobalMap = 0x80;  // with four entries
constexpr int kLocalMap = 0x80;
constexpr int kInterlace = 0x40;

Bytes Screen(int width, int height, int flags, int background = 0) {
    Bytes file{'G', 'I', 'F', '8', '9', 'a'};
    Append(file, {width & 255, width >> 8, height & 255, height >> 8, flags | 1, background, 0});
    return file;
}

void AppendColours(Bytes& file) {
    Append(file, {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120});
}

void AppendTransparent(Bytes& file, int index) {
    Append(file, {0x21, 0xF9, 4, 1, 0, 0, index, 0});
}

/// A picture of 2-bit indices; every index is written after a clear code, so that codes stay at
/// three bits.
void AppendPicture(Bytes& file, int left, int top, int width, int height, int flags,
                   const std::vector<int>& indices, bool complete = true) {
    Append(file,
           {0x2C, left & 255, left >> 8, top & 255, top >> 8, width & 255, width >> 8, height & 255,
            height >> 8, (flags & ~kLocalMap) | (flags & kLocalMap ? 0x81 : 0)});
    if (flags & kLocalMap) Append(file, {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4});
    Bytes data;
    std::uint32_t window = 0;
    int bits = 0;
    const auto put = [&](int code) {
        window |= static_cast<std::uint32_t>(code) << bits;
        for (bits += 3; bits >= 8; bits -= 8, window >>= 8)
            data.push_back(static_cast<std::uint8_t>(window));
    };
    for (const int index : indices) put(4), put(index);
    put(5);
    if (bits > 0) data.push_back(static_cast<std::uint8_t>(window));
    file.push_back(2);
    for (std::size_t at = 0; at < data.size(); at += 255) {
        const std::size_t count = std::min<std::size_t>(255, data.size() - at);
        file.push_back(static_cast<std::uint8_t>(count));
        const auto begin = data.begin() + static_cast<std::ptrdiff_t>(at);
        file.insert(file.end(), begin, begin + static_cast<std::ptrdiff_t>(count));
    }
    file.push_back(0);
    if (complete) file.push_back(0x3B);
}

// ---- Reading ---------------------------------------------------------------------------------

TEST(DecodeGif, PlacesTheFirstPictureOnAWhiteScreen) {
    Bytes file = Screen(4, 3, kGlobalMap, 2);  // the background entry does not show
    AppendColours(file);
    AppendPicture(file, 1, 1, 2, 1, 0, {0, 3});
    const Decoded decoded = MustDecode(file);
    Image expected = test::FlatImage({4, 3}, {255, 255, 255});
    expected.View().SetPixel(1, 1, {10, 20, 30});
    expected.View().SetPixel(2, 1, {100, 110, 120});
    EXPECT_TRUE(test::SamePixels(decoded.image, expected));
    EXPECT_EQ(decoded.bitsPerPixel, 2);
}

TEST(DecodeGif, TransparentPixelsAreWhite) {
    Bytes file = Screen(2, 1, kGlobalMap);
    AppendColours(file);
    AppendTransparent(file, 1);
    AppendPicture(file, 0, 0, 2, 1, 0, {1, 2});
    const Decoded decoded = MustDecode(file);
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(decoded.image.View().Pixel(1, 0), (Rgb{70, 80, 90}));
}

TEST(DecodeGif, LocalColoursComeBeforeGlobalOnes) {
    Bytes file = Screen(1, 1, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 0, 0, 1, 1, kLocalMap, {2});
    EXPECT_EQ(MustDecode(file).image.View().Pixel(0, 0), (Rgb{3, 3, 3}));
}

TEST(DecodeGif, WithoutAnyColoursIndicesAreGreys) {
    Bytes file = Screen(2, 1, 0);
    AppendPicture(file, 0, 0, 2, 1, 0, {0, 3});
    const Decoded decoded = MustDecode(file);
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(decoded.image.View().Pixel(1, 0), (Rgb{3, 3, 3}));
}

TEST(DecodeGif, InterlacedRowsComeInFourPasses) {
    Bytes file = Screen(1, 11, kGlobalMap);
    AppendColours(file);
    // Rows 0 8, 4, 2 6 10, 1 3 5 7 9
    AppendPicture(file, 0, 0, 1, 11, kInterlace, {0, 0, 1, 2, 2, 2, 3, 3, 3, 3, 3});
    const Decoded decoded = MustDecode(file);
    const int expected[] = {10, 100, 70, 100, 40, 100, 70, 100, 10, 100, 70};
    for (int y = 0; y < 11; ++y) EXPECT_EQ(decoded.image.View().Pixel(0, y).red, expected[y]) << y;
}

TEST(DecodeGif, ReadsNothingBehindTheFirstPicture) {
    Bytes file = Screen(1, 1, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 0, 0, 1, 1, 0, {2}, false);
    Append(file, {0xFF, 0xFF, 0xFF});  // no record begins so
    const Decoded decoded = MustDecode(file);
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{70, 80, 90}));
    EXPECT_EQ(decoded.warning, "");
}

TEST(DecodeGif, ScreenGrowsToHoldThePicture) {
    Bytes file = Screen(1, 1, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 1, 0, 2, 2, 0, {1, 1, 1, 1});
    const Decoded decoded = MustDecode(file);
    EXPECT_EQ(decoded.image.Extent(), (Size{3, 2}));
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(decoded.image.View().Pixel(2, 1), (Rgb{40, 50, 60}));
}

TEST(DecodeGif, RowsBehindTheEndOfTheFileAreWhite) {
    Bytes file = Screen(20, 60, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 0, 0, 20, 60, 0, std::vector<int>(1200, 1));
    file.erase(file.end() - 100, file.end());
    // Three blocks of 255 bytes are whole, 1020 pixels of six bits each.
    const Decoded cut = MustDecode(file);
    ASSERT_EQ(cut.warning, "the file ends early: 51 of 60 rows of pixels are there");
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 20; ++x)
            ASSERT_EQ(cut.image.View().Pixel(x, y),
                      y < 51 ? (Rgb{40, 50, 60}) : (Rgb{255, 255, 255}));
}

TEST(DecodeGif, CodesMayEndBeforeThePicture) {
    Bytes file = Screen(1, 8, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 0, 0, 1, 8, kInterlace, {0, 1, 2});  // rows 0, 4 and 2
    const Decoded cut = MustDecode(file);
    EXPECT_EQ(cut.warning, "the file ends early: 3 of 8 rows of pixels are there");
    const int expected[] = {10, 255, 70, 255, 40, 255, 255, 255};
    for (int y = 0; y < 8; ++y) EXPECT_EQ(cut.image.View().Pixel(0, y).red, expected[y]) << y;
}

TEST(DecodeGif, RefusesWhatEndsBeforeTheFirstRow) {
    Bytes file = Screen(2, 3, kGlobalMap);
    AppendColours(file);
    AppendPicture(file, 0, 0, 2, 3, 0, {});
    const auto result = DecodeGif(file, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "the file ends before the end of the first row of pixels");
}

TEST(DecodeGif, RefusesFilesWithoutAPicture) {
    Bytes file = Screen(5, 5, kGlobalMap);
    AppendColours(file);
    file.push_back(0x3B);
    const auto result = DecodeGif(file, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "GIF: there is no picture in the file");
}

// Pictures whose pixels were compared with another decoder's.
TEST(DecodeGif, GivesKnownPicturesOfEveryKind) {
    const struct {
        const char* name;
        Size size;
        std::uint64_t hash;
    } known[] = {
        {"image-gif_interlaced.gif", {540, 330}, 0xb706177733314968U},
        {"image-rs_any-disposal.gif", {32, 32}, 0x2abe9862578ab19bU},
        {"image-rs_alpha_gif_a.gif", {256, 256}, 0x78611026715e6595U},
        {"mei_photoshop-8x12-32colors-alpha.gif", {8, 12}, 0x9040c7bc483c95fcU},
        {"mnet_R_seSparkle.gif", {70, 46}, 0xf427089f61286686U},
        {"oiio_gif_animation.gif", {30, 30}, 0x6cc24133816ebb61U},
        {"oiio_gif_diagonal_interlaced.gif", {200, 200}, 0xc5a7d09cc07ded6fU},
        {"pillow_missing_background.gif", {32, 32}, 0xa29e040cea83fd8fU},
        {"sdl_palette.gif", {23, 42}, 0x2606549bbabc69eaU},
        {"serenity_download-animation.gif", {292, 32}, 0xa90a4fba8691f9acU},
        {"sharp_animated-loop-3.gif", {370, 285}, 0x2a23877a1534111cU},
        {"vips_cogs.gif", {85, 77}, 0x6c03b881af69a89cU},
        {"wuffs_background-color.gif", {4, 1}, 0x88a8da8593e05afdU},
        {"wuffs_transparent-index.gif", {4, 2}, 0x6b48d90b7c736083U},
    };
    for (const auto& [name, size, hash] : known) {
        const Decoded decoded = MustDecode(test::ReadTestFile(std::string("gif/") + name));
        EXPECT_EQ(decoded.image.Extent(), size) << name;
        EXPECT_EQ(test::PixelHash(decoded.image.View()), hash) << name;
    }
}

TEST(DecodeGif, RefusesSizesBeforeItReadsPixels) {
    const Bytes file = *EncodeGif(test::FlatImage({100, 50}, {1, 2, 3}).View(), {});
    EXPECT_TRUE(DecodeGif(file, {.limits = {.maxSide = 100, .maxPixels = 5000}}));
    EXPECT_FALSE(DecodeGif(file, {.limits = {.maxSide = 99}}));
    EXPECT_FALSE(DecodeGif(file, {.limits = {.maxPixels = 4999}}));
    EXPECT_FALSE(DecodeGif(file, {.limits = {.maxMemory = 14999}}));
}

TEST(DecodeGif, SpentMemoryIsAnError) {
    const Bytes file = *EncodeGif(test::FlatImage({200, 200}, {1, 2, 3}).View(), {});
    const test::ScopedMemoryBudget budget(1000);
    const auto result = DecodeGif(file, {});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.Message(), HasSubstr("not enough memory"));
}

TEST(DecodeGif, EndsWellOnEveryFile) {
    test::CheckFilesEndWell(DecodeGif, "gif");
    test::CheckFilesEndWell(DecodeGif, "gif/invalid");
}

TEST(DecodeGif, EndsWellOnDamagedFiles) {
    test::CheckMutationsEndWell(DecodeGif, "gif", 1000);
    test::CheckMutationsEndWell(DecodeGif, "gif/invalid", 200);
}

// ---- Writing ---------------------------------------------------------------------------------

/// The file as the library sees it, all of it.
class Slurped {
  public:
    explicit Slurped(const Bytes& file) : rest_(file) {
        int error = 0;
        gif_ = DGifOpen(
            this,
            [](GifFileType* gif, GifByteType* target, int count) {
                auto& rest = static_cast<Slurped*>(gif->UserData)->rest_;
                const std::size_t given = std::min(rest.size(), static_cast<std::size_t>(count));
                std::memcpy(target, rest.data(), given);
                rest = rest.subspan(given);
                return static_cast<int>(given);
            },
            &error);
        EXPECT_EQ(DGifSlurp(gif_), GIF_OK);
    }
    ~Slurped() { DGifCloseFile(gif_, nullptr); }
    Slurped(const Slurped&) = delete;
    Slurped& operator=(const Slurped&) = delete;
    const GifFileType* operator->() const { return gif_; }
    bool IsAtTheEnd() const { return rest_.empty(); }

  private:
    ByteView rest_;
    GifFileType* gif_;
};

TEST(EncodeGif, KeepsPicturesOfFewColours) {
    for (const Size size : {Size{1, 1}, {1, 9}, {7, 1}, {16, 16}, {256, 1}, {15, 17}})
        for (const GifPalette palette : {GifPalette::MedianCut, GifPalette::Octree})
            for (const bool dither : {false, true})
                for (const bool interlaced : {false, true}) {
                    const Image image = test::CoordinateImage(size);
                    const Bytes file = *EncodeGif(image.View(), {palette, dither, interlaced});
                    EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image));
                }
}

TEST(EncodeGif, WritesOnePlainPictureOfTheFirstVersion) {
    const Image image = test::PhotoLikeImage({300, 200});
    for (const bool interlaced : {false, true}) {
        const Bytes file = *EncodeGif(image.View(), {.interlaced = interlaced});
        EXPECT_EQ(std::string(file.begin(), file.begin() + 6), "GIF87a");
        const Slurped gif(file);
        EXPECT_TRUE(gif.IsAtTheEnd());
        ASSERT_EQ(gif->ImageCount, 1);
        EXPECT_EQ(gif->SavedImages[0].ExtensionBlockCount, 0);  // so nothing is transparent
        EXPECT_EQ(gif->ExtensionBlockCount, 0);
        EXPECT_EQ(gif->SavedImages[0].ImageDesc.Interlace, interlaced);
        EXPECT_EQ(gif->SavedImages[0].ImageDesc.ColorMap, nullptr);
        EXPECT_EQ(gif->SColorMap->ColorCount, 256);
        EXPECT_EQ(gif->SWidth, 300);
        EXPECT_EQ(gif->SHeight, 200);
    }
}

TEST(EncodeGif, StandardPaletteIsWrittenWholeAndMappedWithoutDither) {
    const Image image = test::RandomImage({40, 30}, 9);
    const Bytes file = *EncodeGif(image.View(), {.palette = GifPalette::Uniform, .dither = true});
    const ColourTable palette = UniformPalette();
    const Slurped gif(file);
    for (std::size_t i = 0; i < 256; ++i) {
        const GifColorType& colour = gif->SColorMap->Colors[i];
        ASSERT_EQ((Rgb{colour.Red, colour.Green, colour.Blue}), palette[i]);
    }
    NearestColour nearest(palette);
    const Decoded decoded = MustDecode(file);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_EQ(decoded.image.View().Pixel(x, y), palette[nearest(image.View().Pixel(x, y))]);
}

TEST(EncodeGif, DitherChoosesTheDiffusion) {
    const Image image = test::PhotoLikeImage({90, 70});
    const auto decodedWith = [&](GifPalette palette, bool dither) {
        return MustDecode(*EncodeGif(image.View(), {.palette = palette, .dither = dither}));
    };
    for (const GifPalette choice : {GifPalette::MedianCut, GifPalette::Octree}) {
        const ColourTable palette = choice == GifPalette::Octree ? OctreePalette(image.View())
                                                                 : MedianCutPalette(image.View());
        for (const bool dither : {false, true}) {
            std::vector<std::uint8_t> indices(image.Extent().Area());
            MapDiffused(image.View(), palette,
                        dither ? Diffusion::FourNeighbours : Diffusion::TwoNeighbours, indices);
            const Decoded decoded = decodedWith(choice, dither);
            for (std::size_t i = 0; i < indices.size(); ++i) {
                const std::uint8_t* p = decoded.image.View().Bytes().data() + i * 3;
                ASSERT_EQ((Rgb{p[0], p[1], p[2]}), palette[indices[i]]);
            }
        }
    }
}

TEST(EncodeGif, LeavesThePictureAlone) {
    const Image image = test::RandomImage({50, 50}, 6);
    const Image before = test::Copy(image.View());
    ASSERT_TRUE(EncodeGif(image.View(), {.dither = true}));
    EXPECT_TRUE(test::SamePixels(image, before));
}

TEST(EncodeGif, RefusesSidesThatNoFileCanHold) {
    EXPECT_TRUE(EncodeGif(test::FlatImage({65535, 1}, {1, 2, 3}).View(), {}));
    const auto refused = EncodeGif(test::FlatImage({1, 65536}, {1, 2, 3}).View(), {});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "GIF: a side of more than 65535 pixels");
}

TEST(EncodeGif, SpentMemoryIsAnError) {
    const Image image = test::FlatImage({100, 100}, {1, 2, 3});
    const test::ScopedMemoryBudget budget(1000);
    EXPECT_FALSE(EncodeGif(image.View(), {}));
}

}  // namespace
}  // namespace lumo::imaging::codecs
