#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/png_plain.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

// ---- Chunks by hand --------------------------------------------------------------------------

struct Chunk {
    std::string type;
    std::string data;
};

std::uint32_t BigEndian32(ByteView bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 |
           std::uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

std::vector<Chunk> ChunksOf(const Bytes& file) {
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at + 12 <= file.size();) {
        const std::size_t length = BigEndian32(file, at);
        const auto* text = reinterpret_cast<const char*>(file.data()) + at + 4;
        chunks.push_back({std::string(text, 4), std::string(text + 4, length)});
        EXPECT_EQ(crc32(0, file.data() + at + 4, static_cast<uInt>(length + 4)),
                  BigEndian32(file, at + 8 + length))
            << "checksum of " << chunks.back().type;
        at += 12 + length;
    }
    return chunks;
}

void AppendChunk(Bytes& file, const Chunk& chunk) {
    const auto number = [&file](std::size_t value) {
        for (int shift = 24; shift >= 0; shift -= 8)
            file.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    const std::string checked = chunk.type + chunk.data;
    number(chunk.data.size());
    file.insert(file.end(), checked.begin(), checked.end());
    number(crc32(0, reinterpret_cast<const Bytef*>(checked.data()),
                 static_cast<uInt>(checked.size())));
}

std::vector<std::string> DataOf(const Bytes& file, std::string_view type) {
    std::vector<std::string> found;
    for (const Chunk& chunk : ChunksOf(file))
        if (chunk.type == type) found.push_back(chunk.data);
    return found;
}

/// Writes one picture of any PNG type from packed rows.
struct RawPng {
    int width, height, bits, colourType;
    std::vector<std::uint8_t> rows;
    std::vector<png_color> palette = {};
    std::vector<std::uint8_t> paletteAlpha = {};
    std::optional<png_color_16> transparent = std::nullopt;
    int filters = PNG_ALL_FILTERS;
    std::string text = {};
};

Bytes Write(RawPng raw) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp p, png_bytep data, std::size_t count) {
            auto& target = *static_cast<Bytes*>(png_get_io_ptr(p));
            target.insert(target.end(), data, data + count);
        },
        [](png_structp) {});
    png_set_IHDR(png, info, static_cast<png_uint_32>(raw.width),
                 static_cast<png_uint_32>(raw.height), raw.bits, raw.colourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!raw.palette.empty())
        png_set_PLTE(png, info, raw.palette.data(), static_cast<int>(raw.palette.size()));
    if (!raw.paletteAlpha.empty() || raw.transparent)
        png_set_tRNS(png, info, raw.paletteAlpha.data(), static_cast<int>(raw.paletteAlpha.size()),
                     raw.transparent ? &*raw.transparent : nullptr);
    png_set_filter(png, 0, raw.filters);
    std::string key = "Comment";
    png_text entry{
        .compression = PNG_TEXT_COMPRESSION_NONE, .key = key.data(), .text = raw.text.data()};
    if (!raw.text.empty()) png_set_text(png, info, &entry, 1);
    png_write_info(png, info);
    const std::size_t stride = raw.rows.size() / static_cast<std::size_t>(raw.height);
    for (int y = 0; y < raw.height; ++y)
        png_write_row(png, raw.rows.data() + static_cast<std::size_t>(y) * stride);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodePng, file);
}

// ---- Reading ---------------------------------------------------------------------------------

TEST(DecodePng, ReadsGreyOfOneToEightBits) {
    const Decoded one = MustDecode(Write({4, 1, 1, PNG_COLOR_TYPE_GRAY, {0b01010000}}));
    EXPECT_EQ(one.image.View().Pixel(0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(one.image.View().Pixel(1, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(one.bitsPerPixel, 1);
    const Decoded two = MustDecode(Write({4, 1, 2, PNG_COLOR_TYPE_GRAY, {0b00011011}}));
    EXPECT_EQ(two.image.View().Pixel(1, 0), (Rgb{85, 85, 85}));
    EXPECT_EQ(two.image.View().Pixel(2, 0), (Rgb{170, 170, 170}));
    const Decoded four = MustDecode(Write({2, 1, 4, PNG_COLOR_TYPE_GRAY, {0x3A}}));
    EXPECT_EQ(four.image.View().Pixel(0, 0), (Rgb{51, 51, 51}));
    EXPECT_EQ(four.image.View().Pixel(1, 0), (Rgb{170, 170, 170}));
    const Decoded eight = MustDecode(Write({2, 1, 8, PNG_COLOR_TYPE_GRAY, {7, 200}}));
    EXPECT_EQ(eight.image.View().Pixel(1, 0), (Rgb{200, 200, 200}));
}

TEST(DecodePng, RoundsSixteenBitsToEightForEveryValue) {
    RawPng raw{256, 256, 16, PNG_COLOR_TYPE_GRAY, {}};
    for (int value = 0; value < 65536; ++value) {
        raw.rows.push_back(static_cast<std::uint8_t>(value >> 8));
        raw.rows.push_back(static_cast<std::uint8_t>(value));
    }
    const Decoded decoded = MustDecode(Write(raw));
    for (int value = 0; value < 65536; ++value)
        ASSERT_EQ(decoded.image.View().Pixel(value % 256, value / 256).green,
                  Round16To8(static_cast<std::uint16_t>(value)))
            << value;
    EXPECT_EQ(decoded.bitsPerPixel, 16);
}

TEST(DecodePng, LaysAlphaOverWhite) {
    const Decoded rgba = MustDecode(Write(
        {3, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, {10, 20, 30, 0, 10, 20, 30, 255, 10, 20, 30, 128}}));
    EXPECT_EQ(rgba.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(rgba.image.View().Pixel(1, 0), (Rgb{10, 20, 30}));
    // (10 * 128 + 255 * 127) / 255 = 132.02
    EXPECT_EQ(rgba.image.View().Pixel(2, 0), (Rgb{132, 137, 142}));
    EXPECT_EQ(rgba.bitsPerPixel, 32);
    const Decoded grey =
        MustDecode(Write({2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {0, 128, 100, 255}}));
    EXPECT_EQ(grey.image.View().Pixel(0, 0), (Rgb{127, 127, 127}));
    EXPECT_EQ(grey.image.View().Pixel(1, 0), (Rgb{100, 100, 100}));
}

TEST(DecodePng, TransparentColourBecomesWhite) {
    png_color_16 key{};
    key.red = 1, key.green = 2, key.blue = 3;
    const Decoded rgb =
        MustDecode(Write({2, 1, 8, PNG_COLOR_TYPE_RGB, {1, 2, 3, 1, 2, 4}, {}, {}, key}));
    EXPECT_EQ(rgb.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(rgb.image.View().Pixel(1, 0), (Rgb{1, 2, 4}));
    // A 16-bit key is compared before the samples are rounded.
    png_color_16 grey{};
    grey.gray = 0x1234;
    const Decoded deep =
        MustDecode(Write({2, 1, 16, PNG_COLOR_TYPE_GRAY, {0x12, 0x34, 0x12, 0x35}, {}, {}, grey}));
    EXPECT_EQ(deep.image.View().Pixel(0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(deep.image.View().Pixel(1, 0), (Rgb{18, 18, 18}));
}

TEST(DecodePng, ReadsPalettesWithAlphaEntries) {
    const Decoded decoded = MustDecode(Write({4,
                                              1,
                                              2,
                                              PNG_COLOR_TYPE_PALETTE,
                                              {0b00011000},
                                              {{9, 8, 7}, {200, 100, 50}, {1, 1, 1}},
                                              {255, 0}}));
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{9, 8, 7}));
    EXPECT_EQ(decoded.image.View().Pixel(1, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(decoded.image.View().Pixel(2, 0), (Rgb{1, 1, 1}));
    EXPECT_EQ(decoded.bitsPerPixel, 2);
}

// Pictures whose pixels were compared with another decoder's.
TEST(DecodePng, GivesKnownPicturesOfEveryKind) {
    const struct {
        const char* name;
        Size size;
        std::uint64_t hash;
    } known[] = {
        {"gdiplus_test-gsa.png", {16, 16}, 0x664ef2c29ce50e3dU},
        {"image-rs_basi0g16.png", {32, 32}, 0xdfec971c5eed6144U},
        {"image-rs_basn6a16.png", {32, 32}, 0xa36c9ac372196e57U},
        {"image-rs_tbbn3p08.png", {32, 32}, 0x3a73ec2b92907237U},
        {"kimg_ps_testcard_bitmap_amiga.png", {131, 131}, 0x1d29b6ee55b756e4U},
        {"libpng_gray-2-linear-tRNS.png", {4, 1}, 0x69b08c6ea08c72faU},
        {"libpng_gray-alpha-16-sRGB.png", {256, 256}, 0x06b5f0e7ce684715U},
        {"pngsuite_s09i3p02.png", {9, 9}, 0x0f1e6df9dfaba940U},
        {"pngsuite_s33i3p04.png", {33, 33}, 0x3c988b39de9b358eU},
        {"pngsuite_ibasn6a08.png", {32, 32}, 0xc2fd3a7b07fb5310U},
        {"pngsuite_ps2n2c16.png", {32, 32}, 0x817e403f30be116fU},
        {"pngsuite_cm0n0g04.png", {32, 32}, 0x99cdcd9d9f0f9dcaU},
        {"wuffs_apng-skip-idat.png", {3, 2}, 0xc7808282be69fc01U},
    };
    for (const auto& [name, size, hash] : known) {
        const Decoded decoded = MustDecode(test::ReadTestFile(std::string("png/") + name));
        EXPECT_EQ(decoded.image.Extent(), size) << name;
        EXPECT_EQ(test::PixelHash(decoded.image.View()), hash) << name;
        EXPECT_EQ(decoded.warning, "") << name;
    }
}

TEST(DecodePng, RefusesDamagedPixelsAndForgivesDamagedTexts) {
    const Image image = test::RandomImage({20, 20}, 1);
    const Bytes file = *EncodePng(image.View(), {.texts = {{"Title", "x"}}});
    const auto with = [&file](std::string_view type) {
        Bytes damaged = file;
        const auto at = std::search(damaged.begin(), damaged.end(), type.begin(), type.end());
        *(at + 5) ^= 1;
        return damaged;
    };
    const auto pixels = DecodePng(with("IDAT"), {});
    ASSERT_FALSE(pixels);
    EXPECT_THAT(pixels.Message(), HasSubstr("PNG: "));
    auto text = DecodePng(with("tEXt"), {});
    ASSERT_TRUE(text) << text.Message();
    EXPECT_TRUE(test::SamePixels(text->image, image));
}

// Files without flaw take a way of their own; libpng is asked as soon as a text is damaged.
TEST(DecodePng, BothWaysGiveTheSamePixels) {
    for (const Size size : {Size{1, 1}, {1, 9}, {7, 1}, {3, 5}, {64, 41}, {211, 30}})
        for (const int colourType : {PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA})
            for (const int filter : {PNG_FILTER_NONE, PNG_FILTER_SUB, PNG_FILTER_UP, PNG_FILTER_AVG,
                                     PNG_FILTER_PAETH, PNG_ALL_FILTERS}) {
                const int pixel = colourType == PNG_COLOR_TYPE_RGB ? 3 : 4;
                RawPng raw{size.width, size.height, 8, colourType, {}};
                raw.filters = filter;
                raw.text = "damaged below";
                std::mt19937 random(static_cast<std::uint32_t>(filter));
                for (std::size_t i = 0; i < size.Area() * static_cast<std::size_t>(pixel); ++i)
                    raw.rows.push_back(static_cast<std::uint8_t>(random() >> 24));
                const Bytes whole = Write(raw);
                Bytes damaged = whole;
                const std::string_view text = "damaged";
                *std::search(damaged.begin(), damaged.end(), text.begin(), text.end()) ^= 1;
                ASSERT_TRUE(TryDecodePlainPng(whole, {}));
                ASSERT_FALSE(TryDecodePlainPng(damaged, {}));
                const Decoded byLibrary = MustDecode(damaged);
                EXPECT_NE(byLibrary.warning, "");
                EXPECT_TRUE(test::SamePixels(MustDecode(whole).image, byLibrary.image));
                EXPECT_EQ(MustDecode(whole).bitsPerPixel, pixel * 8);
                if (pixel == 4) continue;
                const auto bytes = byLibrary.image.View().Bytes();
                EXPECT_TRUE(std::ranges::equal(bytes, raw.rows));
            }
}

TEST(DecodePng, ReadsPixelsInManyPieces) {
    const Image image = test::PhotoLikeImage({90, 60});
    const Bytes file = *EncodePng(image.View(), {});
    Bytes pieces(file.begin(), file.begin() + 8);
    for (const Chunk& chunk : ChunksOf(file)) {
        const bool pixels = chunk.type == "IDAT";
        for (std::size_t at = 0; at == 0 || at < chunk.data.size(); at += pixels ? 7 : SIZE_MAX / 2)
            AppendChunk(pieces, {chunk.type, pixels ? chunk.data.substr(at, 7) : chunk.data});
    }
    EXPECT_TRUE(test::SamePixels(MustDecode(pieces).image, image));
}

TEST(DecodePng, LeavesFlawsToTheLibrary) {
    const Image image = test::RandomImage({20, 20}, 1);
    const Bytes file = *EncodePng(image.View(), {});
    ASSERT_TRUE(TryDecodePlainPng(file, {}));
    EXPECT_FALSE(TryDecodePlainPng(file, {.maxPixels = 399}));
    for (std::size_t at = 0; at < file.size(); ++at) {
        Bytes damaged = file;
        damaged[at] ^= 0x10;
        EXPECT_FALSE(TryDecodePlainPng(damaged, {})) << "byte " << at;
        EXPECT_FALSE(TryDecodePlainPng(ByteView(file).first(at), {})) << at << " bytes";
    }
}

TEST(DecodePng, RowsBehindTheEndOfTheFileAreWhite) {
    const Image image = test::RandomImage({100, 100}, 1);
    const Bytes file = *EncodePng(image.View(), {});
    const Decoded cut =
        MustDecode(Bytes(file.begin(), file.begin() + static_cast<long>(file.size() / 2)));
    int rows = 0;
    ASSERT_EQ(std::sscanf(cut.warning.c_str(),
                          "the file ends early: %d of 100 rows of pixels are there", &rows),
              1);
    EXPECT_NEAR(rows, 50, 5);
    Image expected = test::FlatImage({100, 100}, {255, 255, 255});
    std::ranges::copy(image.View().Bytes().first(static_cast<std::size_t>(rows) * 300),
                      expected.View().Bytes().begin());
    EXPECT_TRUE(test::SamePixels(cut.image, expected));
}

TEST(DecodePng, RefusesWhatEndsBeforeTheFirstRow) {
    Bytes file = *EncodePng(test::RandomImage({100, 100}, 1).View(), {});
    file.resize(90);
    const auto result = DecodePng(file, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "the file ends before the end of the first row of pixels");
}

TEST(DecodePng, RefusesInterlacedPicturesThatEndTooEarly) {
    Bytes file = *EncodePng(test::RandomImage({50, 50}, 1).View(), {.interlaced = true});
    file.resize(file.size() / 2);
    const auto result = DecodePng(file, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "PNG: the file ends too early");
}

TEST(DecodePng, RefusesSizesBeforeItReadsPixels) {
    const Bytes file = *EncodePng(test::FlatImage({100, 50}, {1, 2, 3}).View(), {});
    EXPECT_TRUE(DecodePng(file, {.limits = {.maxSide = 100, .maxPixels = 5000}}));
    EXPECT_FALSE(DecodePng(file, {.limits = {.maxSide = 99}}));
    EXPECT_FALSE(DecodePng(file, {.limits = {.maxPixels = 4999}}));
    EXPECT_FALSE(DecodePng(file, {.limits = {.maxMemory = 14999}}));
    const auto bomb = DecodePng(test::ReadTestFile("png/invalid/oiio-t_bomb.png"), {});
    ASSERT_FALSE(bomb);
    EXPECT_EQ(bomb.Message(), "a picture of 46340 x 46340 is larger than allowed");
    const auto wide = DecodePng(test::ReadTestFile("png/gdkpix_max-width.png"), {});
    ASSERT_FALSE(wide);
    EXPECT_EQ(wide.Message(), "PNG: Invalid IHDR data (Image width exceeds user limit in IHDR)");
}

TEST(DecodePng, SpentMemoryIsAnError) {
    const Bytes file = *EncodePng(test::FlatImage({200, 200}, {1, 2, 3}).View(), {});
    const test::ScopedMemoryBudget budget(1000);
    const auto result = DecodePng(file, {});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.Message(), HasSubstr("not enough memory"));
}

TEST(DecodePng, EndsWellOnEveryFile) {
    test::CheckFilesEndWell(DecodePng, "png");
    test::CheckFilesEndWell(DecodePng, "png/invalid");
}

TEST(DecodePng, EndsWellOnDamagedFiles) {
    test::CheckMutationsEndWell(DecodePng, "png", 1000);
    test::CheckMutationsEndWell(DecodePng, "png/invalid", 200);
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(EncodePng, RoundTripsEverySize) {
    for (const Size size : {Size{1, 1}, {1, 9}, {7, 1}, {3, 5}, {8, 8}, {33, 17}, {640, 3}})
        for (const bool interlaced : {false, true}) {
            const Image image = test::RandomImage(size, 5);
            const Bytes file = *EncodePng(image.View(), {.interlaced = interlaced});
            EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image));
        }
}

TEST(EncodePng, PicturesOfFewAndOfManyColoursComeBack) {
    const Image images[] = {test::FlatImage({40, 30}, {9, 8, 7}), test::CoordinateImage({16, 16}),
                            test::PhotoLikeImage({211, 97}), test::RandomImage({120, 50}, 8)};
    for (const Image& image : images)
        for (const bool interlaced : {false, true})
            EXPECT_TRUE(test::SamePixels(
                MustDecode(*EncodePng(image.View(), {.interlaced = interlaced})).image, image));
}

TEST(EncodePng, NeedsNoMemoryOfTheBudget) {
    const Image image = test::RandomImage({1000, 700}, 2);  // two pieces
    const Bytes whole = *EncodePng(image.View(), {});
    for (const bool interlaced : {false, true}) {
        Bytes file;
        {
            const test::ScopedMemoryBudget budget(1000);
            file = *EncodePng(image.View(), {.interlaced = interlaced});
        }
        EXPECT_EQ(DataOf(file, "IDAT").size(), 3U);
        EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image));
    }
    EXPECT_EQ(DataOf(whole, "IDAT").size(), 1U);
}

TEST(EncodePng, HeaderSaysEightBitRgbAndAdam7) {
    const Image image = test::RandomImage({300, 2}, 1);
    using namespace std::string_literals;
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {}), "IHDR"),
                testing::ElementsAre("\0\0\x01\x2c\0\0\0\x02\x08\x02\0\0\0"s));
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.interlaced = true}), "IHDR"),
                testing::ElementsAre("\0\0\x01\x2c\0\0\0\x02\x08\x02\0\0\x01"s));
}

TEST(EncodePng, StoresResolutionInDotsPerMetre) {
    const Image image = test::FlatImage({2, 2}, {1, 2, 3});
    using namespace std::string_literals;
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {}), "pHYs"),
                testing::ElementsAre("\0\0\x2e\x23\0\0\x2e\x23\x01"s));  // 11811
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.dotsPerMetre = 1e20}), "pHYs"),
                testing::ElementsAre("\x7f\xff\xff\xff\x7f\xff\xff\xff\x01"s));
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.dotsPerMetre = 0}), "pHYs"), IsEmpty());
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.dotsPerMetre = NAN}), "pHYs"), IsEmpty());
}

TEST(EncodePng, StoresGammaOnlyIfGiven) {
    const Image image = test::FlatImage({2, 2}, {1, 2, 3});
    using namespace std::string_literals;
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {}), "gAMA"), IsEmpty());
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.gamma = 1 / 2.2}), "gAMA"),
                testing::ElementsAre("\0\0\xb1\x8f"s));  // 45455
    EXPECT_TRUE(EncodePng(image.View(), {.gamma = 1e30}));
    EXPECT_TRUE(EncodePng(image.View(), {.gamma = 1e-30}));
    EXPECT_THAT(DataOf(*EncodePng(image.View(), {.gamma = NAN}), "gAMA"), IsEmpty());
}

TEST(EncodePng, WritesTextsInOrderAndBytesUnchanged) {
    using namespace std::string_literals;
    const Image image = test::FlatImage({2, 2}, {1, 2, 3});
    const Bytes file = *EncodePng(
        image.View(), {.texts = {{"Title", "caf\xc3\xa9\r\n2"}, {"Title", ""}, {"A", "b\0c"s}}});
    EXPECT_THAT(DataOf(file, "tEXt"),
                testing::ElementsAre("Title\0caf\xc3\xa9\r\n2"s, "Title\0"s, "A\0b c"s));
    EXPECT_EQ(ChunksOf(file).back().type, "IEND");
}

TEST(EncodePng, CleansKeys) {
    using namespace std::string_literals;
    const Image image = test::FlatImage({2, 2}, {1, 2, 3});
    const std::string longKey(200, 'k');
    const std::string blankAtTheEnd = std::string(78, 'b') + " tail";
    testing::internal::CaptureStderr();
    const Bytes file = *EncodePng(image.View(), {.texts = {{"", "1"},
                                                           {" \t\r\n ", "2"},
                                                           {"  two   words\n", "3"},
                                                           {longKey, "4"},
                                                           {blankAtTheEnd, "5"},
                                                           {"a\x01\x7f\x85z\0y"s, "6"}}});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_THAT(DataOf(file, "tEXt"),
                testing::ElementsAre("two words\0003"s, std::string(79, 'k') + "\0004"s,
                                     std::string(78, 'b') + "\0005"s, "a z y\0006"s));
}

}  // namespace
}  // namespace lumo::imaging::codecs
