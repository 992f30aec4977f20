#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/codec_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace test;  // NOLINT: what the tests of formats share
using testing::ElementsAre;
using testing::StartsWith;

// ---- Files by hand ---------------------------------------------------------------------------

struct TgaFile {
    int type = 2;
    int width = 1, height = 1, bits = 24;
    Bytes pixels;           // as stored
    int descriptor = 0x20;  // from the top left
    int mapFirst = 0, mapCount = 0, mapBits = 0;
    Bytes map = {};
    Bytes id = {};
    int attributesType = -1;  // of an extension area; -1: the file has none

    Bytes Build() const {
        const auto low = [](int v) { return v & 255; };
        const auto high = [](int v) { return v >> 8 & 255; };
        const Bytes header =
            BytesOf({static_cast<int>(id.size()), mapBits > 0 ? 1 : 0, type, low(mapFirst),
                     high(mapFirst), low(mapCount), high(mapCount), mapBits, 0, 0, 0, 0, low(width),
                     high(width), low(height), high(height), bits, descriptor});
        Bytes file = Joined({header, id, map, pixels});
        if (attributesType < 0) return file;
        const auto extension = static_cast<int>(file.size());
        Bytes area(495);
        area[494] = static_cast<std::uint8_t>(attributesType);
        const Bytes offset = BytesOf({low(extension), high(extension), 0, 0, 0, 0, 0, 0});
        constexpr std::string_view kSignature{"TRUEVISION-XFILE.\0", 18};
        return Joined({file, area, offset, Bytes(kSignature.begin(), kSignature.end())});
    }
};

Result<Decoded> Read(const TgaFile& file) {
    return DecodeTga(file.Build(), {});
}

const Bytes kMap24 = BytesOf({0, 0, 255, 0, 255, 0, 255, 0, 0});  // red, green, blue

// ---- Depths ----------------------------------------------------------------------------------

TEST(TgaDecode, TwentyFourBits) {
    const auto result = Read({.width = 2, .pixels = BytesOf({0, 0, 255, 1, 2, 3})});
    EXPECT_THAT(PixelsOf(result), ElementsAre(kRed, Rgb{3, 2, 1}));
    EXPECT_EQ(result->bitsPerPixel, 24);
    EXPECT_EQ(result->format, Format::Tga);
    EXPECT_EQ(result->warning, "");
}

TEST(TgaDecode, FifteenAndSixteenBits) {
    const Bytes pixels = BytesOf({0x00, 0x7C, 0xE0, 0x03, 0x1F, 0x00, 0xEF, 0x3D});
    for (const int bits : {15, 16})
        EXPECT_THAT(PixelsOf(Read({.width = 4, .bits = bits, .pixels = pixels})),
                    ElementsAre(kRed, kGreen, kBlue, Rgb{123, 123, 123}))
            << bits;
}

TEST(TgaDecode, GreyOfEightAndSixteenBits) {
    EXPECT_THAT(PixelsOf(Read({.type = 3, .width = 2, .bits = 8, .pixels = BytesOf({7, 255})})),
                ElementsAre(Rgb{7, 7, 7}, kWhite));
    EXPECT_THAT(PixelsOf(Read({.type = 3,
                               .width = 2,
                               .bits = 16,
                               .pixels = BytesOf({0x87, 7, 0x88, 7})})),  // 7.498 and 7.502
                ElementsAre(Rgb{7, 7, 7}, Rgb{8, 8, 8}));
    EXPECT_THAT(PixelsOf(Read({.type = 3,
                               .width = 3,
                               .bits = 16,
                               .pixels = BytesOf({0, 0, 0, 255, 20, 128}),
                               .descriptor = 0x28})),
                ElementsAre(kWhite, kBlack, Rgb{137, 137, 137}));
}

TEST(TgaDecode, ColourMapsOfAllDepths) {
    const auto read = [](int mapBits, const Bytes& map) {
        return PixelsOf(Read({.type = 1,
                              .width = 3,
                              .bits = 8,
                              .pixels = BytesOf({2, 0, 1}),
                              .mapCount = 3,
                              .mapBits = mapBits,
                              .map = map}));
    };
    EXPECT_THAT(read(24, kMap24), ElementsAre(kBlue, kRed, kGreen));
    const Bytes map16 = BytesOf({0, 0x7C, 0xE0, 3, 0x1F, 0});
    EXPECT_THAT(read(15, map16), ElementsAre(kBlue, kRed, kGreen));
    EXPECT_THAT(read(16, map16), ElementsAre(kBlue, kRed, kGreen));
    EXPECT_THAT(read(32, BytesOf({0, 0, 255, 255, 0, 255, 0, 0, 20, 20, 20, 128})),
                ElementsAre(Rgb{137, 137, 137}, kRed, kWhite));
    EXPECT_THAT(read(32, BytesOf({0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0})),
                ElementsAre(kBlue, kRed, kGreen));  // coverage that is 0 everywhere
}

TEST(TgaDecode, MapsThatBeginLaterAndIndicesOf16Bits) {
    EXPECT_THAT(PixelsOf(Read({.type = 1,
                               .width = 3,
                               .bits = 8,
                               .pixels = BytesOf({41, 39, 3}),
                               .mapFirst = 39,
                               .mapCount = 3,
                               .mapBits = 24,
                               .map = kMap24})),
                ElementsAre(kBlue, kRed, kBlack));
    EXPECT_THAT(PixelsOf(Read({.type = 1,
                               .width = 2,
                               .bits = 16,
                               .pixels = BytesOf({1, 2, 2, 2}),
                               .mapFirst = 512,
                               .mapCount = 3,
                               .mapBits = 24,
                               .map = kMap24})),
                ElementsAre(kGreen, kBlue));
    EXPECT_THAT(PixelsOf(Read({.type = 1,
                               .width = 2,
                               .bits = 8,
                               .pixels = BytesOf({255, 1}),
                               .mapFirst = 254,
                               .mapCount = 3,
                               .mapBits = 24,
                               .map = kMap24})),
                ElementsAre(kGreen, kBlack));
}

TEST(TgaDecode, AMapThatPixelsDoNotUseIsPassedOver) {
    EXPECT_THAT(PixelsOf(Read({.pixels = BytesOf({1, 2, 3}),
                               .mapCount = 3,
                               .mapBits = 24,
                               .map = kMap24,
                               .id = BytesOf({'i', 'd'})})),
                ElementsAre(Rgb{3, 2, 1}));
}

// ---- Alpha -----------------------------------------------------------------------------------

TEST(TgaDecode, AttributeBitsDecideAboutAlpha) {
    TgaFile file{
        .width = 3, .bits = 32, .pixels = BytesOf({0, 0, 255, 0, 0, 0, 255, 255, 40, 30, 20, 128})};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kRed, Rgb{20, 30, 40}));
    file.descriptor = 0x28;
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kRed, Rgb{137, 142, 147}));
    TgaFile word{.width = 2, .bits = 16, .pixels = BytesOf({0, 0x7C, 0, 0xFC})};
    EXPECT_THAT(PixelsOf(Read(word)), ElementsAre(kRed, kRed));
    word.descriptor = 0x21;
    EXPECT_THAT(PixelsOf(Read(word)), ElementsAre(kWhite, kRed));
}

TEST(TgaDecode, AlphaThatIsZeroEverywhereIsNone) {
    EXPECT_THAT(PixelsOf(Read({.width = 2,
                               .bits = 32,
                               .pixels = BytesOf({1, 2, 3, 0, 4, 5, 6, 0}),
                               .descriptor = 0x28})),
                ElementsAre(Rgb{3, 2, 1}, Rgb{6, 5, 4}));
    EXPECT_THAT(
        PixelsOf(Read(
            {.width = 2, .bits = 16, .pixels = BytesOf({0, 0x7C, 0, 0x7C}), .descriptor = 0x21})),
        ElementsAre(kRed, kRed));
    EXPECT_THAT(PixelsOf(Read({.type = 3,
                               .width = 2,
                               .bits = 16,
                               .pixels = BytesOf({7, 0, 8, 0}),
                               .descriptor = 0x28})),
                ElementsAre(Rgb{7, 7, 7}, Rgb{8, 8, 8}));
    // One pixel in the last row is enough.
    EXPECT_THAT(PixelsOf(Read({.height = 2,
                               .bits = 32,
                               .pixels = BytesOf({1, 2, 3, 0, 4, 5, 6, 255}),
                               .descriptor = 0x28})),
                ElementsAre(kWhite, Rgb{6, 5, 4}));
}

TEST(TgaDecode, TheExtensionAreaSaysWhatAlphaMeans) {
    TgaFile file{.width = 2,
                 .bits = 32,
                 .pixels = BytesOf({40, 30, 20, 128, 0, 0, 0, 0}),
                 .descriptor = 0x28};
    const Rgb plain{20, 30, 40}, over{137, 142, 147}, added{147, 157, 167};
    for (const auto& [attributes, first, second] : {std::tuple{0, over, kWhite},
                                                    {1, plain, kBlack},
                                                    {2, plain, kBlack},
                                                    {3, over, kWhite},
                                                    {4, added, kWhite}}) {
        file.attributesType = attributes;
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(first, second)) << attributes;
    }
}

// ---- Origins ---------------------------------------------------------------------------------

TEST(TgaDecode, AllFourOrigins) {
    TgaFile file{
        .type = 3, .width = 3, .height = 2, .bits = 8, .pixels = BytesOf({1, 2, 3, 4, 5, 6})};
    const auto order = [&](int descriptor) {
        file.descriptor = descriptor;
        std::vector<int> greys;
        for (const Rgb pixel : PixelsOf(Read(file))) greys.push_back(pixel.red);
        return greys;
    };
    EXPECT_THAT(order(0x00), ElementsAre(4, 5, 6, 1, 2, 3));
    EXPECT_THAT(order(0x10), ElementsAre(6, 5, 4, 3, 2, 1));
    EXPECT_THAT(order(0x20), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(order(0x30), ElementsAre(3, 2, 1, 6, 5, 4));
}

// ---- Run lengths -----------------------------------------------------------------------------

TEST(TgaDecode, PacketsOfEveryPixelSize) {
    EXPECT_THAT(PixelsOf(Read({.type = 10,
                               .width = 5,
                               .pixels = BytesOf({0x82, 0, 0, 255,  //
                                                  1, 1, 2, 3, 4, 5, 6})})),
                ElementsAre(kRed, kRed, kRed, Rgb{3, 2, 1}, Rgb{6, 5, 4}));
    EXPECT_THAT(PixelsOf(Read({.type = 10,
                               .width = 3,
                               .bits = 32,
                               .pixels = BytesOf({0x81, 0, 0, 255, 9, 0, 1, 2, 3, 9})})),
                ElementsAre(kRed, kRed, Rgb{3, 2, 1}));
    EXPECT_THAT(
        PixelsOf(Read(
            {.type = 10, .width = 3, .bits = 16, .pixels = BytesOf({0x81, 0, 0x7C, 0, 0x1F, 0})})),
        ElementsAre(kRed, kRed, kBlue));
    EXPECT_THAT(PixelsOf(Read(
                    {.type = 11, .width = 4, .bits = 8, .pixels = BytesOf({0x81, 9, 1, 10, 11})})),
                ElementsAre(Rgb{9, 9, 9}, Rgb{9, 9, 9}, Rgb{10, 10, 10}, Rgb{11, 11, 11}));
    EXPECT_THAT(PixelsOf(Read({.type = 9,
                               .width = 3,
                               .bits = 8,
                               .pixels = BytesOf({0x81, 1, 0, 2}),
                               .mapCount = 3,
                               .mapBits = 24,
                               .map = kMap24})),
                ElementsAre(kGreen, kGreen, kBlue));
}

TEST(TgaDecode, PacketsRunOnFromRowToRow) {
    EXPECT_THAT(PixelsOf(Read({.type = 11,
                               .width = 2,
                               .height = 3,
                               .bits = 8,
                               .pixels = BytesOf({0x82, 9, 2, 1, 2, 3})})),
                ElementsAre(Rgb{9, 9, 9}, Rgb{9, 9, 9}, Rgb{9, 9, 9}, Rgb{1, 1, 1}, Rgb{2, 2, 2},
                            Rgb{3, 3, 3}));
}

// ---- Damage and refusals ---------------------------------------------------------------------

TEST(TgaDecode, RowsThatAreMissingAreWhite) {
    TgaFile file{.type = 3, .width = 2, .height = 3, .bits = 8, .pixels = BytesOf({1, 2, 3, 4, 5})};
    const auto result = Read(file);
    EXPECT_THAT(PixelsOf(result), ElementsAre(Rgb{1, 1, 1}, Rgb{2, 2, 2}, Rgb{3, 3, 3},
                                              Rgb{4, 4, 4}, kWhite, kWhite));
    EXPECT_EQ(result->warning, "the file ends early: 2 of 3 rows of pixels are there");
    file.descriptor = 0;
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kWhite, Rgb{3, 3, 3}, Rgb{4, 4, 4},
                                                  Rgb{1, 1, 1}, Rgb{2, 2, 2}));
    file.type = 11;
    for (const Bytes& packets :
         {BytesOf({0x83, 7, 0x81}), BytesOf({0x83, 7, 1, 5}), BytesOf({0x84, 7})}) {
        file.pixels = packets;
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kWhite, Rgb{7, 7, 7}, Rgb{7, 7, 7},
                                                      Rgb{7, 7, 7}, Rgb{7, 7, 7}));
    }
    file.pixels = BytesOf({0x80, 7});
    EXPECT_THAT(LineOf(Read(file)), StartsWith("refused: the file ends"));
}

TEST(TgaDecode, RefusesWhatIsNoTga) {
    const auto line = [](TgaFile file) {
        file.pixels.resize(64);
        return LineOf(Read(file));
    };
    for (const int type : {0, 4, 8, 12, 32, 33, 128})
        EXPECT_EQ(line({.type = type}), "refused: not a TGA file") << type;
    for (const int bits : {0, 1, 4, 14, 17, 48})
        EXPECT_EQ(line({.bits = bits}), "refused: not a TGA file") << bits;
    EXPECT_EQ(line({.width = 0}), "refused: not a TGA file");
    EXPECT_EQ(line({.height = 0}), "refused: not a TGA file");
    EXPECT_EQ(line({.type = 1, .bits = 8}), "refused: not a TGA file");  // no map
    EXPECT_EQ(line({.type = 1, .bits = 24, .mapCount = 3, .mapBits = 24, .map = kMap24}),
              "refused: not a TGA file");
    EXPECT_EQ(line({.type = 1, .bits = 8, .mapCount = 3, .mapBits = 8}), "refused: not a TGA file");
    EXPECT_EQ(LineOf(DecodeTga(Bytes(200, 'x'), {})), "refused: not a TGA file");
    EXPECT_EQ(LineOf(DecodeTga(Bytes(200, 0), {})), "refused: not a TGA file");
    EXPECT_EQ(LineOf(DecodeTga({}, {})), "refused: not a TGA file");
    EXPECT_EQ(line({.width = 65535, .height = 65535}),
              "refused: a picture of 65535 x 65535 is larger than allowed");
}

TEST(TgaDecode, MemoryFailureIsAReason) {
    const ScopedMemoryBudget budget(1000);
    EXPECT_EQ(LineOf(Read({.width = 100, .height = 100, .pixels = Bytes(30000)})),
              "refused: not enough memory");
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(TgaEncode, Writes24BitsFromTheTopLeft) {
    Image image = FlatImage({1, 2}, {1, 2, 3});
    image.View().SetPixel(0, 1, {4, 5, 6});
    const auto file = EncodeTga(image.View());
    ASSERT_TRUE(file);
    const Bytes footer = BytesOf({0,   0,   0,   0,   0,   0,   0,   0,   'T', 'R', 'U', 'E', 'V',
                                  'I', 'S', 'I', 'O', 'N', '-', 'X', 'F', 'I', 'L', 'E', '.', 0});
    EXPECT_EQ(*file, Joined({BytesOf({0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 24, 0x20}),
                             BytesOf({3, 2, 1, 6, 5, 4}), footer}));
}

TEST(TgaEncode, LosesNothing) {
    CheckRoundTrips(EncodeTga, DecodeTga);
}

TEST(TgaEncode, RefusesSidesThatItsHeaderCannotState) {
    const Image image = FlatImage({1, 65536}, kRed);
    EXPECT_EQ(EncodeTga(image.View()).Message(), "the picture is too large for a TGA file");
}

}  // namespace
}  // namespace lumo::imaging::codecs
