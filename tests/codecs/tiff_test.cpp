#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/lab.h"
#include "imaging/codecs/tiff_file.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Samples = std::vector<std::uint8_t>;

/// One strip (or one per plane) of packed samples in the machine's byte order.
struct Flavour {
    int width = 1, height = 1;
    int bits = 8, samples = 3;
    int photometric = PHOTOMETRIC_RGB;
    std::vector<Samples> planes;
    std::function<void(TIFF*)> fields = [](TIFF*) {};
    bool big = false;
};

Bytes Write(const Flavour& flavour) {
    const auto file = TiffFile::Create(flavour.big);
    TIFF* tiff = file->Handle();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, flavour.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, flavour.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, flavour.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, flavour.samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, flavour.photometric);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, flavour.height);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 flavour.planes.size() > 1 ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    flavour.fields(tiff);
    std::uint32_t strip = 0;
    for (Samples plane : flavour.planes)
        EXPECT_GT(
            TIFFWriteEncodedStrip(tiff, strip++, plane.data(), static_cast<tmsize_t>(plane.size())),
            0);
    Bytes bytes = file->Finish();
    EXPECT_FALSE(bytes.empty()) << file->Failure();
    return bytes;
}

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodeTiff, file);
}

std::vector<Rgb> FirstRow(const Flavour& flavour) {
    const Decoded decoded = MustDecode(Write(flavour));
    std::vector<Rgb> row;
    for (int x = 0; x < decoded.image.Width(); ++x) row.push_back(decoded.image.View().Pixel(x, 0));
    return row;
}

std::vector<int> FirstGreys(const Flavour& flavour) {
    std::vector<int> greys;
    for (const Rgb pixel : FirstRow(flavour)) {
        EXPECT_EQ(pixel.red, pixel.green);
        EXPECT_EQ(pixel.red, pixel.blue);
        greys.push_back(pixel.red);
    }
    return greys;
}

template <class T>
Samples Packed(std::initializer_list<T> values) {
    Samples bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

auto Set(std::uint32_t tag, int value) {
    return [tag, value](TIFF* tiff) { TIFFSetField(tiff, tag, value); };
}

auto SetExtra(std::vector<std::uint16_t> types) {
    return [types](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(types.size()), types.data());
    };
}

using Greys = std::vector<int>;
using Row = std::vector<Rgb>;

// ---- Samples ---------------------------------------------------------------------------------

TEST(DecodeTiff, SpreadsIntegersOfEveryWidthOverTheByte) {
    const auto grey = [](int width, int bits, Samples row) {
        return FirstGreys({width, 1, bits, 1, PHOTOMETRIC_MINISBLACK, {std::move(row)}});
    };
    EXPECT_EQ(grey(3, 1, {0b01000000}), (Greys{0, 255, 0}));
    EXPECT_EQ(grey(4, 2, {0b00011011}), (Greys{0, 85, 170, 255}));
    EXPECT_EQ(grey(3, 4, {0x0F, 0x70}), (Greys{0, 255, 119}));
    EXPECT_EQ(grey(3, 8, {0, 77, 255}), (Greys{0, 77, 255}));
    // 0x800 * 255 / 4095 = 127.53
    EXPECT_EQ(grey(3, 12, {0xFF, 0xF8, 0x00, 0x00, 0x00}), (Greys{255, 128, 0}));
    EXPECT_EQ(grey(4, 16, Packed<std::uint16_t>({0, 128, 129, 65535})), (Greys{0, 0, 1, 255}));
    EXPECT_EQ(grey(2, 24, {0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x80}), (Greys{255, 128}));
    EXPECT_EQ(grey(4, 32, Packed<std::uint32_t>({0, 8421504, 8421505, 0xFFFFFFFF})),
              (Greys{0, 0, 1, 255}));
}

TEST(DecodeTiff, MovesSignedIntegersUpByHalfOfTheirRange) {
    const auto grey = [](int width, int bits, Samples row) {
        return FirstGreys({width,
                           1,
                           bits,
                           1,
                           PHOTOMETRIC_MINISBLACK,
                           {std::move(row)},
                           Set(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT)});
    };
    EXPECT_EQ(grey(3, 8, Packed<std::int8_t>({-128, 0, 127})), (Greys{0, 128, 255}));
    EXPECT_EQ(grey(3, 16, Packed<std::int16_t>({-32768, 0, 32767})), (Greys{0, 128, 255}));
    EXPECT_EQ(grey(2, 32, Packed<std::int32_t>({INT32_MIN, INT32_MAX})), (Greys{0, 255}));
}

TEST(DecodeTiff, FloatsRunFromBlackToWhite) {
    const auto grey = [](int width, int bits, Samples row) {
        return FirstGreys({width,
                           1,
                           bits,
                           1,
                           PHOTOMETRIC_MINISBLACK,
                           {std::move(row)},
                           Set(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP)});
    };
    EXPECT_EQ(grey(7, 32, Packed<float>({-1, 0, 0.5F, 1, 1e30F, INFINITY, NAN})),
              (Greys{0, 0, 128, 255, 255, 255, 0}));
    EXPECT_EQ(grey(3, 64, Packed<double>({0.25, 1, -INFINITY})), (Greys{64, 255, 0}));
    // 0.5, 1, infinity, not a number, -1, the smallest number above 0
    EXPECT_EQ(grey(6, 16, Packed<std::uint16_t>({0x3800, 0x3C00, 0x7C00, 0x7E00, 0xBC00, 1})),
              (Greys{128, 255, 255, 0, 0, 0}));
}

TEST(DecodeTiff, RefusedFlavoursBeginWithZero) {
    const auto refusal = [](const Flavour& flavour) {
        const auto result = DecodeTiff(Write(flavour), {});
        return result ? "a picture" : result.Message();
    };
    EXPECT_EQ(refusal({1,
                       1,
                       24,
                       1,
                       PHOTOMETRIC_MINISBLACK,
                       {{0, 0, 0}},
                       Set(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP)}),
              "0: 24-bit float samples");
    EXPECT_EQ(refusal({1, 1, 64, 1, PHOTOMETRIC_MINISBLACK, {Samples(8)}}), "0: 64-bit samples");
    EXPECT_EQ(refusal({1,
                       1,
                       64,
                       1,
                       PHOTOMETRIC_MINISBLACK,
                       {Samples(8)},
                       Set(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_COMPLEXIEEEFP)}),
              "0: samples of format 6");
    EXPECT_EQ(refusal({1, 1, 8, 1, PHOTOMETRIC_CFA, {{0}}}), "0: photometric interpretation 32803");
    EXPECT_EQ(refusal({1, 1, 8, 2, PHOTOMETRIC_RGB, {{0, 0}}}), "0: 2 samples a pixel, 3 needed");
    EXPECT_EQ(refusal({1,
                       1,
                       8,
                       5,
                       PHOTOMETRIC_SEPARATED,
                       {Samples(5)},
                       Set(TIFFTAG_INKSET, INKSET_MULTIINK)}),
              "0: inks other than CMYK");
}

// ---- Colours ---------------------------------------------------------------------------------

TEST(DecodeTiff, WhiteIsZeroTurnsGreyOver) {
    EXPECT_EQ(FirstGreys({3, 1, 8, 1, PHOTOMETRIC_MINISWHITE, {{0, 100, 255}}}),
              (Greys{255, 155, 0}));
    EXPECT_EQ(FirstGreys({2, 1, 1, 1, PHOTOMETRIC_MINISWHITE, {{0b01000000}}}), (Greys{255, 0}));
}

TEST(DecodeTiff, ReadsPlanesAndSixteenBitColours) {
    EXPECT_EQ(FirstRow({2, 1, 8, 3, PHOTOMETRIC_RGB, {{1, 4}, {2, 5}, {3, 6}}}),
              (Row{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(
        FirstRow(
            {1, 1, 16, 3, PHOTOMETRIC_RGB, {Packed<std::uint16_t>({257 * 9, 257 * 8, 257 * 7})}}),
        (Row{{9, 8, 7}}));
    EXPECT_EQ(FirstRow({1,
                        1,
                        16,
                        3,
                        PHOTOMETRIC_RGB,
                        {Packed<std::uint16_t>({257 * 9}), Packed<std::uint16_t>({257 * 8}),
                         Packed<std::uint16_t>({257 * 7})}}),
              (Row{{9, 8, 7}}));
}

TEST(DecodeTiff, ReadsPalettesOfSixteenAndOfEightBits) {
    const auto palette = [](int scale) {
        return [scale](TIFF* tiff) {
            std::array<std::uint16_t, 4> red{}, green{}, blue{};
            for (std::size_t i = 0; i < 4; ++i) {
                red[i] = static_cast<std::uint16_t>(scale * static_cast<int>(i) * 60);
                green[i] = static_cast<std::uint16_t>(scale * static_cast<int>(i) * 20);
                blue[i] = static_cast<std::uint16_t>(scale * static_cast<int>(i));
            }
            TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
        };
    };
    const Row expected{{60, 20, 1}, {180, 60, 3}, {0, 0, 0}};
    EXPECT_EQ(FirstRow({3, 1, 2, 1, PHOTOMETRIC_PALETTE, {{0b01110000}}, palette(257)}), expected);
    EXPECT_EQ(FirstRow({3, 1, 2, 1, PHOTOMETRIC_PALETTE, {{0b01110000}}, palette(1)}), expected);
}

TEST(DecodeTiff, CmykHoldsInk) {
    // (255 - 55) * (255 - 127) / 255
    EXPECT_EQ(FirstRow({1, 1, 8, 4, PHOTOMETRIC_SEPARATED, {{55, 155, 0, 127}}}),
              (Row{{100, 50, 128}}));
    EXPECT_EQ(FirstRow({1,
                        1,
                        16,
                        4,
                        PHOTOMETRIC_SEPARATED,
                        {Packed<std::uint16_t>({257 * 55, 257 * 155, 0, 257 * 127})}}),
              (Row{{100, 50, 128}}));
    EXPECT_EQ(FirstRow({1, 1, 8, 4, PHOTOMETRIC_SEPARATED, {{55}, {155}, {0}, {127}}}),
              (Row{{100, 50, 128}}));
}

TEST(DecodeTiff, LabIsSignedAndIccLabIsOffset) {
    const Rgb expected = LabToRgb(60, 20, -30);
    const auto close = [&](const Row& row) {
        return std::abs(row[0].red - expected.red) <= 2 &&
               std::abs(row[0].green - expected.green) <= 2 &&
               std::abs(row[0].blue - expected.blue) <= 2;
    };
    const Samples cie = Packed<std::int8_t>({static_cast<std::int8_t>(153), 20, -30});
    EXPECT_TRUE(close(FirstRow({1, 1, 8, 3, PHOTOMETRIC_CIELAB, {cie}})));
    EXPECT_TRUE(close(FirstRow({1, 1, 8, 3, PHOTOMETRIC_ICCLAB, {{153, 148, 98}}})));
    const Samples deep = Packed<std::uint16_t>(
        {39321, static_cast<std::uint16_t>(20 * 256), static_cast<std::uint16_t>(-30 * 256)});
    EXPECT_TRUE(close(FirstRow({1, 1, 16, 3, PHOTOMETRIC_CIELAB, {deep}})));
}

TEST(LabToRgb, KeepsGreyGreyAndMeetsKnownColours) {
    for (int lightness = 0; lightness <= 100; ++lightness) {
        const Rgb grey = LabToRgb(lightness, 0, 0);
        EXPECT_EQ(grey.red, grey.green) << lightness;
        EXPECT_EQ(grey.red, grey.blue) << lightness;
    }
    EXPECT_EQ(LabToRgb(100, 0, 0), (Rgb{255, 255, 255}));
    EXPECT_EQ(LabToRgb(0, 0, 0), (Rgb{0, 0, 0}));
    EXPECT_EQ(LabToRgb(53.585, 0, 0), (Rgb{128, 128, 128}));
    // The primaries of sRGB under D50.
    const auto near = [](Rgb a, Rgb b) {
        return std::abs(a.red - b.red) <= 2 && std::abs(a.green - b.green) <= 2 &&
               std::abs(a.blue - b.blue) <= 2;
    };
    EXPECT_TRUE(near(LabToRgb(54.29, 80.81, 69.89), {255, 0, 0}));
    EXPECT_TRUE(near(LabToRgb(87.82, -79.29, 80.99), {0, 255, 0}));
    EXPECT_TRUE(near(LabToRgb(29.57, 68.30, -112.03), {0, 0, 255}));
}

TEST(DecodeTiff, AlphaLetsWhiteThrough) {
    const Samples pixels{10, 20, 30, 0, 10, 20, 30, 255, 10, 20, 30, 128};
    EXPECT_EQ(FirstRow({3, 1, 8, 4, PHOTOMETRIC_RGB, {pixels}, SetExtra({EXTRASAMPLE_UNASSALPHA})}),
              (Row{{255, 255, 255}, {10, 20, 30}, {132, 137, 142}}));
    // Premultiplied: the white that shines through is added.
    EXPECT_EQ(FirstRow({3, 1, 8, 4, PHOTOMETRIC_RGB, {pixels}, SetExtra({EXTRASAMPLE_ASSOCALPHA})}),
              (Row{{255, 255, 255}, {10, 20, 30}, {137, 147, 157}}));
    EXPECT_EQ(FirstGreys({2,
                          1,
                          8,
                          2,
                          PHOTOMETRIC_MINISBLACK,
                          {{0, 128, 9, 255}},
                          SetExtra({EXTRASAMPLE_UNASSALPHA})}),
              (Greys{127, 9}));
    EXPECT_EQ(FirstRow({1,
                        1,
                        8,
                        4,
                        PHOTOMETRIC_RGB,
                        {{10}, {20}, {30}, {128}},
                        SetExtra({EXTRASAMPLE_UNASSALPHA})}),
              (Row{{132, 137, 142}}));
}

TEST(DecodeTiff, ExtraSamplesThatAreNoAlphaAreDropped) {
    EXPECT_EQ(
        FirstRow(
            {1, 1, 8, 4, PHOTOMETRIC_RGB, {{10, 20, 30, 0}}, SetExtra({EXTRASAMPLE_UNSPECIFIED})}),
        (Row{{10, 20, 30}}));
    // Alpha may stand behind another one.
    EXPECT_EQ(FirstRow({1,
                        1,
                        8,
                        5,
                        PHOTOMETRIC_RGB,
                        {{10, 20, 30, 0, 128}},
                        SetExtra({EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA})}),
              (Row{{132, 137, 142}}));
}

// ---- Layouts and compressions ----------------------------------------------------------------

TEST(DecodeTiff, ReadsTilesThatReachBeyondThePicture) {
    const Image image = test::RandomImage({37, 21}, 4);
    const auto file = TiffFile::Create(false);
    TIFF* tiff = file->Handle();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 37);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 21);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    std::uint32_t number = 0;
    for (int top = 0; top < 21; top += 16)
        for (int left = 0; left < 37; left += 16) {
            Samples tile(16 * 16 * 3);
            for (int y = top; y < std::min(21, top + 16); ++y)
                for (int x = left; x < std::min(37, left + 16); ++x)
                    std::memcpy(tile.data() + ((y - top) * 16 + (x - left)) * 3,
                                image.View().At(x, y), 3);
            TIFFWriteEncodedTile(tiff, number++, tile.data(), static_cast<tmsize_t>(tile.size()));
        }
    EXPECT_TRUE(test::SamePixels(MustDecode(file->Finish()).image, image));
}

TEST(DecodeTiff, ReadsEveryLosslessCompression) {
    const Image image = test::PhotoLikeImage({61, 19});
    const auto bytes = image.View().Bytes();
    for (const int scheme : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS,
                             COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE}) {
        const Bytes file = Write({61,
                                  19,
                                  8,
                                  3,
                                  PHOTOMETRIC_RGB,
                                  {{bytes.begin(), bytes.end()}},
                                  Set(TIFFTAG_COMPRESSION, scheme)});
        EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image)) << scheme;
    }
}

TEST(DecodeTiff, ReadsFaxCompressions) {
    Samples rows(8 * 64 / 8);
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i % 3 == 0 ? 0x0F : 0xF0;
    const Flavour plain{64, 8, 1, 1, PHOTOMETRIC_MINISWHITE, {rows}};
    const Decoded expected = MustDecode(Write(plain));
    for (const int scheme : {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4}) {
        Flavour fax = plain;
        fax.fields = Set(TIFFTAG_COMPRESSION, scheme);
        EXPECT_TRUE(test::SamePixels(MustDecode(Write(fax)).image, expected.image)) << scheme;
    }
}

TEST(DecodeTiff, ReadsJpegStripsAsRgb) {
    const Image image = test::PhotoLikeImage({64, 48});
    const auto bytes = image.View().Bytes();
    const Bytes file =
        Write({64, 48, 8, 3, PHOTOMETRIC_YCBCR, {{bytes.begin(), bytes.end()}}, [](TIFF* tiff) {
                   TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_JPEG);
                   TIFFSetField(tiff, TIFFTAG_JPEGQUALITY, 95);
                   TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
               }});
    EXPECT_TRUE(test::NearPixels(MustDecode(file).image.View(), image.View(), 16));
}

TEST(DecodeTiff, ReadsSubsampledYcbcr) {
    // One block of 2 x 2: four luma values, then Cb and Cr.
    const Bytes file =
        Write({2, 2, 8, 3, PHOTOMETRIC_YCBCR, {{10, 20, 30, 40, 128, 128}}, [](TIFF* tiff) {
                   TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2);
               }});
    const Decoded decoded = MustDecode(file);
    EXPECT_EQ(decoded.image.View().Pixel(0, 0), (Rgb{10, 10, 10}));
    EXPECT_EQ(decoded.image.View().Pixel(1, 0), (Rgb{20, 20, 20}));
    EXPECT_EQ(decoded.image.View().Pixel(0, 1), (Rgb{30, 30, 30}));
    EXPECT_EQ(decoded.image.View().Pixel(1, 1), (Rgb{40, 40, 40}));
}

TEST(DecodeTiff, ReadsBigTiff) {
    const Bytes file = Write({.width = 2, .planes = {{1, 2, 3, 4, 5, 6}}, .big = true});
    EXPECT_EQ(file[2], 43);
    EXPECT_EQ(MustDecode(file).image.View().Pixel(1, 0), (Rgb{4, 5, 6}));
}

TEST(DecodeTiff, IsNotTurnedByItsOrientationTag) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        EXPECT_EQ(FirstRow({.width = 2,
                            .planes = {{1, 2, 3, 4, 5, 6}},
                            .fields = Set(TIFFTAG_ORIENTATION, orientation)}),
                  (Row{{1, 2, 3}, {4, 5, 6}}));
        const Flavour ycbcr{2,
                            1,
                            8,
                            3,
                            PHOTOMETRIC_YCBCR,
                            {{10, 128, 128, 20, 128, 128}},
                            [orientation](TIFF* tiff) {
                                TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
                                TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
                            }};
        EXPECT_EQ(FirstGreys(ycbcr), (Greys{10, 20}));
    }
}

TEST(DecodeTiff, TellsTheStoredDepth) {
    EXPECT_EQ(MustDecode(Write({1, 1, 16, 4, PHOTOMETRIC_SEPARATED, {Samples(8)}})).bitsPerPixel,
              64);
    EXPECT_EQ(MustDecode(Write({1, 1, 1, 1, PHOTOMETRIC_MINISBLACK, {{0}}})).bitsPerPixel, 1);
}

// ---- Files of others -------------------------------------------------------------------------

// Pictures whose pixels were compared with another decoder's.
TEST(DecodeTiff, GivesKnownPicturesOfEveryKind) {
    const struct {
        const char* name;
        Size size;
        std::uint64_t hash;
    } known[] = {
        {"12m_ccitt-too-many-changes.tif", {24, 153}, 0xece286200d9f18e4U},
        {"12m_colormap-with-extrasamples.tif", {10, 10}, 0xcc1433c5466b8448U},
        {"commons-imaging_TestJpegTiles.tiff", {256, 256}, 0x52d99c68b1843595U},
        {"commons-imaging_TransparencyTestTileAssociated.tif", {100, 100}, 0x68a7afb770c8d8c9U},
        {"exiftool_ExifTool.tif", {160, 120}, 0x88dcf42737fc8cbdU},
        {"gdkpix_dpi.tiff", {48, 48}, 0xb93c7478a8100b3dU},
        {"image-tiff_hpredict-1c-12b.tiff", {4, 2}, 0x8d5229e2c3022ec3U},
        {"image-tiff_seq-1c-16b-bigendian-68f373a0.tiff", {16, 16}, 0xb358742ae66361c6U},
        {"image-tiff_seq-1c-32f-deflate-fpredict-390fe673.tiff", {16, 16}, 0xab942dc8989e33e5U},
        {"image-tiff_seq-1c-i16-63af2488.tiff", {16, 16}, 0xf4bcbeb6f5e60e65U},
        {"image-tiff_seq-4c-16b-cmyk-c6e52592.tiff", {16, 16}, 0x5083640190c54c1bU},
        {"libtiffpic_ladoga.tif", {158, 118}, 0x2382cd83d30d1910U},
        {"oiio-t_single_channel_tif.tif", {64, 64}, 0x7fef1d4597e29eadU},
        {"pillow_g4_orientation_7.tif", {88, 590}, 0x0c8c2dec1317944cU},
        {"serenity_ccitt3_no_tags.tiff", {6, 4}, 0xe19e3d931649131eU},
        {"serenity_ccitt_rle.tiff", {400, 300}, 0x6dc7239d2e68ca59U},
        {"sharp_8bit_depth.tiff", {21, 21}, 0x64726ec0604666b6U},
        {"vips_1bit.tif", {256, 4}, 0x5e9540b1d1ddd32eU},
        {"vips_2bit.tif", {256, 4}, 0x4c60d27a523ea92eU},
        {"vips_4bit.tif", {256, 4}, 0x81f6fab31381282eU},
    };
    for (const auto& [name, size, hash] : known) {
        const Decoded decoded = MustDecode(test::ReadTestFile(std::string("tif/") + name));
        EXPECT_EQ(decoded.image.Extent(), size) << name;
        EXPECT_EQ(test::PixelHash(decoded.image.View()), hash) << name;
    }
}

TEST(DecodeTiff, RefusesSizesBeforeItReadsPixels) {
    const Bytes file = *EncodeTiff(test::FlatImage({100, 50}, {1, 2, 3}).View(), {});
    EXPECT_TRUE(DecodeTiff(file, {.limits = {.maxSide = 100, .maxPixels = 5000}}));
    EXPECT_FALSE(DecodeTiff(file, {.limits = {.maxSide = 99}}));
    EXPECT_FALSE(DecodeTiff(file, {.limits = {.maxPixels = 4999}}));
    EXPECT_FALSE(DecodeTiff(file, {.limits = {.maxMemory = 14999}}));
}

TEST(DecodeTiff, RefusesTilesFarLargerThanThePicture) {
    const auto file = TiffFile::Create(false);
    TIFF* tiff = file->Handle();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 60000);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, 60000);
    Samples byte{0};
    TIFFWriteRawTile(tiff, 0, byte.data(), 1);
    const auto result = DecodeTiff(file->Finish(), {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.Message(), "a picture of 60000 x 60000 is larger than allowed");
}

TEST(DecodeTiff, SpentMemoryIsAnError) {
    const Bytes file = *EncodeTiff(test::FlatImage({200, 200}, {1, 2, 3}).View(), {});
    const test::ScopedMemoryBudget budget(1000);
    const auto result = DecodeTiff(file, {});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.Message(), HasSubstr("not enough memory"));
}

TEST(DecodeTiff, EndsWellOnEveryFile) {
    test::CheckFilesEndWell(DecodeTiff, "tif");
    test::CheckFilesEndWell(DecodeTiff, "tif/invalid");
}

TEST(DecodeTiff, EndsWellOnDamagedFiles) {
    test::CheckMutationsEndWell(DecodeTiff, "tif", 1000);
    test::CheckMutationsEndWell(DecodeTiff, "tif/invalid", 200);
}

}  // namespace
}  // namespace lumo::imaging::codecs
