#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/codec_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace test;  // NOLINT: what the tests of formats share
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

// ---- Files by hand ---------------------------------------------------------------------------

struct PcxFile {
    int width = 1, height = 1, bits = 8, planes = 1;
    Bytes pixels;       // as stored
    int lineBytes = 1;  // of one plane
    int encoding = 1;
    int version = 5;
    Bytes colours = {};  // at most 48
    int resolution[2] = {72, 72};

    Bytes Build() const {
        const auto low = [](int v) { return v & 255; };
        const auto high = [](int v) { return v >> 8 & 255; };
        const int right = width - 1, bottom = height - 1;
        Bytes file = BytesOf({10, version, encoding, bits, 0, 0, 0, 0, low(right), high(right),
                              low(bottom), high(bottom), low(resolution[0]), high(resolution[0]),
                              low(resolution[1]), high(resolution[1])});
        file.insert(file.end(), colours.begin(), colours.end());
        file.resize(64);
        file.push_back(0);
        file.push_back(static_cast<std::uint8_t>(planes));
        file.push_back(static_cast<std::uint8_t>(low(lineBytes)));
        file.push_back(static_cast<std::uint8_t>(high(lineBytes)));
        file.resize(128);
        return Joined({file, pixels});
    }
};

Result<Decoded> Read(const PcxFile& file) {
    return DecodePcx(file.Build(), {});
}

/// The palette that stands at the end of a file: entry i is i, 255 - i, 7.
Bytes VgaPalette() {
    Bytes palette{12};
    for (int i = 0; i < 256; ++i)
        for (const int v : {i, 255 - i, 7}) palette.push_back(static_cast<std::uint8_t>(v));
    return palette;
}
Rgb Vga(int i) {
    return {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i), 7};
}

const Bytes kFourColours = BytesOf({0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255});
const Bytes kSixteen = [] {
    Bytes colours;
    for (int i = 0; i < 48; ++i) colours.push_back(static_cast<std::uint8_t>(i + 1));
    return colours;
}();
Rgb Sixteen(int i) {
    return {kSixteen[static_cast<std::size_t>(3 * i)],
            kSixteen[static_cast<std::size_t>(3 * i + 1)],
            kSixteen[static_cast<std::size_t>(3 * i + 2)]};
}

// ---- Depths ----------------------------------------------------------------------------------

TEST(PcxDecode, OneBitIsBlackAndWhite) {
    const PcxFile file{
        .width = 9, .bits = 1, .pixels = BytesOf({0xAA, 0x80}), .lineBytes = 2, .encoding = 0};
    const auto result = Read(file);
    EXPECT_THAT(PixelsOf(result), ElementsAre(kWhite, kBlack, kWhite, kBlack, kWhite, kBlack,
                                              kWhite, kBlack, kWhite));
    EXPECT_EQ(result->bitsPerPixel, 1);
    EXPECT_EQ(result->format, Format::Pcx);
    EXPECT_EQ(result->warning, "");
}

TEST(PcxDecode, OneBitTakesTwoStatedColours) {
    PcxFile file{.width = 2,
                 .bits = 1,
                 .pixels = BytesOf({0x40}),
                 .encoding = 0,
                 .colours = BytesOf({255, 0, 0, 0, 0, 255})};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kBlue));
    file.version = 3;  // a version without a palette
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kBlack, kWhite));
    file.version = 5;
    for (const Bytes& unset : {BytesOf({0xF0, 0, 0, 0, 0, 0}), BytesOf({9, 9, 9, 9, 9, 9})}) {
        file.colours = unset;
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kBlack, kWhite));
    }
}

TEST(PcxDecode, TwoAndFourBitsInOnePlane) {
    const PcxFile two{.width = 5,
                      .bits = 2,
                      .pixels = BytesOf({0x1B, 0xC0}),
                      .lineBytes = 2,
                      .encoding = 0,
                      .colours = kFourColours};
    EXPECT_THAT(PixelsOf(Read(two)), ElementsAre(kBlack, kRed, kGreen, kBlue, kBlue));
    const PcxFile four{.width = 3,
                       .bits = 4,
                       .pixels = BytesOf({0x0F, 0x70}),
                       .lineBytes = 2,
                       .encoding = 0,
                       .colours = kSixteen};
    EXPECT_THAT(PixelsOf(Read(four)), ElementsAre(Sixteen(0), Sixteen(15), Sixteen(7)));
}

TEST(PcxDecode, BitsOfSeveralPlanesFromTheLowestOn) {
    for (const int planes : {2, 3, 4}) {
        Bytes lines = BytesOf({0x40, 0x20, 0x10, 0x08});  // pixel i has the bit of plane i - 1
        lines.resize(static_cast<std::size_t>(planes));
        const PcxFile file{.width = 5,
                           .bits = 1,
                           .planes = planes,
                           .pixels = lines,
                           .encoding = 0,
                           .colours = kSixteen};
        Pixels expected{Sixteen(0), Sixteen(1), Sixteen(2), Sixteen(0), Sixteen(0)};
        if (planes > 2) expected[3] = Sixteen(4);
        if (planes > 3) expected[4] = Sixteen(8);
        EXPECT_EQ(PixelsOf(Read(file)), expected) << planes;
        EXPECT_EQ(Read(file)->bitsPerPixel, planes);
    }
    const PcxFile twice{.width = 2,
                        .bits = 2,
                        .planes = 2,
                        .pixels = BytesOf({0x90, 0x60}),
                        .encoding = 0,
                        .colours = kSixteen};
    EXPECT_THAT(PixelsOf(Read(twice)), ElementsAre(Sixteen(2 + 4), Sixteen(1 + 8)));
}

TEST(PcxDecode, SixteenColoursOfTheAdapterWhereNoneAreStated) {
    PcxFile file{.width = 8,
                 .height = 2,
                 .bits = 4,
                 .lineBytes = 4,
                 .encoding = 0,
                 .version = 3,
                 .colours = kSixteen};
    file.pixels = BytesOf({0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF});
    const Pixels adapter{{0, 0, 0},     {0, 0, 170},    {0, 170, 0},    {0, 170, 170},
                         {170, 0, 0},   {170, 0, 170},  {170, 85, 0},   {170, 170, 170},
                         {85, 85, 85},  {85, 85, 255},  {85, 255, 85},  {85, 255, 255},
                         {255, 85, 85}, {255, 85, 255}, {255, 255, 85}, {255, 255, 255}};
    EXPECT_EQ(PixelsOf(Read(file)), adapter);
    file.version = 5;
    file.colours = {};
    EXPECT_EQ(PixelsOf(Read(file)), adapter);
}

TEST(PcxDecode, FourColoursOfTheCgaScreen) {
    PcxFile file{.width = 4,
                 .bits = 2,
                 .pixels = BytesOf({0x1B}),
                 .encoding = 0,
                 .colours = BytesOf({0x13, 0x13, 0x13, 0xA4, 0xFF, 0x67}),
                 .resolution = {320, 200}};
    EXPECT_THAT(PixelsOf(Read(file)),
                ElementsAre(Rgb{0, 0, 170}, Rgb{85, 255, 85}, Rgb{255, 85, 85}, Rgb{255, 255, 85}));
    file.colours = BytesOf({0x3E, 0x3E, 0x3E, 0xF0, 0, 0});
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{0, 170, 170}, Rgb{0, 170, 170},
                                                  Rgb{170, 0, 170}, Rgb{170, 170, 170}));
    file.colours = kFourColours;  // real ones
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kBlack, kRed, kGreen, kBlue));
}

TEST(PcxDecode, EightBitsWithThePaletteBehindThePixels) {
    PcxFile file{
        .width = 3, .pixels = Joined({BytesOf({0, 100, 0xC1, 255}), VgaPalette()}), .lineBytes = 3};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Vga(0), Vga(100), Vga(255)));
    file.pixels = Joined({file.pixels, BytesOf({0x1A, 0, 0})});  // and something behind it
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Vga(0), Vga(100), Vga(255)));
    file.pixels = BytesOf({0, 100, 0xC1, 255});
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kBlack, Rgb{100, 100, 100}, kWhite));
}

TEST(PcxDecode, ThreePlanesAreRedGreenBlue) {
    const PcxFile file{.width = 2,
                       .height = 2,
                       .planes = 3,
                       .pixels = BytesOf({1, 2, 11, 12, 21, 22, 3, 4, 13, 14, 23, 24}),
                       .lineBytes = 2,
                       .encoding = 0};
    EXPECT_THAT(PixelsOf(Read(file)),
                ElementsAre(Rgb{1, 11, 21}, Rgb{2, 12, 22}, Rgb{3, 13, 23}, Rgb{4, 14, 24}));
    EXPECT_EQ(Read(file)->bitsPerPixel, 24);
}

TEST(PcxDecode, AFourthPlaneIsCoverageOverWhite) {
    PcxFile file{.width = 3,
                 .planes = 4,
                 .pixels = BytesOf({255, 255, 20, 0, 0, 30, 0, 0, 40,  //
                                    0, 255, 128}),
                 .lineBytes = 3,
                 .encoding = 0};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kRed, Rgb{137, 142, 147}));
    file.pixels = BytesOf({255, 255, 20, 0, 0, 30, 0, 0, 40, 0, 0, 0});
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kRed, Rgb{20, 30, 40}));
}

// ---- Run lengths -----------------------------------------------------------------------------

TEST(PcxDecode, RunsGoOnFromPlaneToPlaneAndLineToLine) {
    const PcxFile file{.width = 2,
                       .height = 2,
                       .planes = 3,
                       .pixels = BytesOf({0xC5, 9, 0xC7, 0xFF}),
                       .lineBytes = 2};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{9, 9, 9}, Rgb{9, 9, 255}, kWhite, kWhite));
}

TEST(PcxDecode, LinesMayBeLongerThanTheirPixels) {
    const PcxFile file{
        .width = 1, .height = 2, .pixels = BytesOf({7, 0xC3, 99, 8, 0xC3, 99}), .lineBytes = 4};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{7, 7, 7}, Rgb{8, 8, 8}));
}

TEST(PcxDecode, EmptyRunsAreNothing) {
    const PcxFile file{.width = 2, .pixels = BytesOf({0xC0, 9, 5, 0xC0, 0xC0, 6}), .lineBytes = 2};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{5, 5, 5}, Rgb{6, 6, 6}));
}

TEST(PcxDecode, LongLiteralsAreTheSameAsOneByOne) {
    // Literals are copied in words of eight up to the next code, wherever in the word that is.
    for (int before = 0; before < 40; ++before) {
        Bytes codes, expected;
        for (int i = 0; i < before; ++i) codes.push_back(static_cast<std::uint8_t>(i + 0x90));
        expected = codes;
        codes = Joined({codes, BytesOf({0xC2, 0xE0})});
        expected = Joined({expected, BytesOf({0xE0, 0xE0})});
        for (int i = 0; i < 20; ++i) {
            codes.push_back(static_cast<std::uint8_t>(i));
            expected.push_back(static_cast<std::uint8_t>(i));
        }
        const auto size = static_cast<int>(expected.size());
        const auto pixels = PixelsOf(Read({.width = size, .pixels = codes, .lineBytes = size}));
        ASSERT_EQ(pixels.size(), expected.size());
        for (std::size_t i = 0; i < pixels.size(); ++i)
            ASSERT_EQ(pixels[i].red, expected[i]) << before << " literals, byte " << i;
    }
}

// ---- Damage and refusals ---------------------------------------------------------------------

TEST(PcxDecode, LinesThatAreMissingAreWhite) {
    for (const auto& codes :
         {BytesOf({0xC2, 5, 0xC1}), BytesOf({0xC2, 5, 1}), BytesOf({0xC3, 5})}) {
        const auto result = Read({.width = 2, .height = 2, .pixels = codes, .lineBytes = 2});
        EXPECT_THAT(PixelsOf(result), ElementsAre(Rgb{5, 5, 5}, Rgb{5, 5, 5}, kWhite, kWhite));
        EXPECT_EQ(result->warning, "the file ends early: 1 of 2 rows of pixels are there");
    }
    const auto plain = Read(
        {.width = 2, .height = 2, .pixels = BytesOf({5, 5, 5}), .lineBytes = 2, .encoding = 0});
    EXPECT_THAT(PixelsOf(plain), ElementsAre(Rgb{5, 5, 5}, Rgb{5, 5, 5}, kWhite, kWhite));
    EXPECT_THAT(LineOf(Read({.width = 2, .pixels = BytesOf({5}), .lineBytes = 2})),
                HasSubstr("refused: the file ends"));
}

TEST(PcxDecode, RefusesWhatItCannotRead) {
    const auto line = [](int bits, int planes) {
        return LineOf(Read({.bits = bits, .planes = planes, .pixels = Bytes(64), .lineBytes = 4}));
    };
    for (const auto& [bits, planes] : {std::pair{8, 2},
                                       {8, 5},
                                       {3, 1},
                                       {16, 1},
                                       {24, 1},
                                       {4, 3},
                                       {4, 4},
                                       {2, 5},
                                       {8, 0},
                                       {0, 1}})
        EXPECT_EQ(line(bits, planes), "refused: a PCX of this depth is not supported")
            << bits << " bits in " << planes << " planes";
    EXPECT_EQ(LineOf(Read({.width = 9, .pixels = Bytes(64), .lineBytes = 8})),
              "refused: the PCX header is damaged");
    EXPECT_EQ(LineOf(Read({.width = -3, .pixels = Bytes(64)})),
              "refused: the PCX header is damaged");  // it is 65533 pixels wide then
    EXPECT_EQ(LineOf(Read({.pixels = Bytes(64), .encoding = 2})), "refused: not a PCX file");
    EXPECT_EQ(LineOf(Read({.pixels = Bytes(64), .version = 6})), "refused: not a PCX file");
    EXPECT_EQ(LineOf(DecodePcx(Bytes(127, 10), {})), "refused: not a PCX file");
    EXPECT_EQ(LineOf(DecodePcx({}, {})), "refused: not a PCX file");
    Bytes backwards = PcxFile{.pixels = Bytes(64)}.Build();
    backwards[4] = 5;  // the left side lies on the right of the right one
    EXPECT_EQ(LineOf(DecodePcx(backwards, {})), "refused: the file states a size of -4 x 1");
    EXPECT_EQ(
        LineOf(Read({.width = 65535, .height = 65535, .pixels = Bytes(64), .lineBytes = 65535})),
        "refused: a picture of 65535 x 65535 is larger than allowed");
}

TEST(PcxDecode, MemoryFailureIsAReason) {
    const ScopedMemoryBudget budget(1000);
    EXPECT_EQ(LineOf(Read({.width = 100, .height = 100, .pixels = Bytes(10000), .lineBytes = 100})),
              "refused: not enough memory");
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(PcxEncode, WritesThreePlanesOfRuns) {
    Image image = FlatImage({3, 1}, {5, 0xC0, 255});
    image.View().SetPixel(2, 0, {6, 0, 255});
    const auto file = EncodePcx(image.View());
    ASSERT_TRUE(file);
    const Bytes head(file->begin(), file->begin() + 16);
    EXPECT_EQ(head, BytesOf({10, 5, 1, 8, 0, 0, 0, 0, 2, 0, 0, 0, 72, 0, 72, 0}));
    const Bytes layout(file->begin() + 64, file->begin() + 70);
    EXPECT_EQ(layout, BytesOf({0, 3, 4, 0, 1, 0}));  // lines of an even number of bytes
    const Bytes codes(file->begin() + 128, file->end());
    EXPECT_EQ(codes, BytesOf({0xC2, 5, 6, 0, 0xC2, 0xC0, 0xC2, 0, 0xC3, 255, 0}));
}

TEST(PcxEncode, RunsEndAt63AndAtTheEndOfAPlane) {
    const Image image = FlatImage({70, 1}, {9, 9, 9});
    const auto file = EncodePcx(image.View());
    ASSERT_TRUE(file);
    const Bytes codes(file->begin() + 128, file->end());
    EXPECT_EQ(codes, BytesOf({0xFF, 9, 0xC7, 9, 0xFF, 9, 0xC7, 9, 0xFF, 9, 0xC7, 9}));
}

TEST(PcxEncode, LosesNothing) {
    CheckRoundTrips(EncodePcx, DecodePcx);
}

TEST(PcxEncode, RefusesSidesThatItsHeaderCannotState) {
    const Image image = FlatImage({65535, 1}, kRed);
    EXPECT_EQ(EncodePcx(image.View()).Message(), "the picture is too large for a PCX file");
}

}  // namespace
}  // namespace lumo::imaging::codecs
