#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <optional>

#include "imaging/codecs/decoders.h"
#include "support/codec_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace test;  // NOLINT: what the tests of formats share
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// ---- Files by hand ---------------------------------------------------------------------------

void Put(Bytes& file, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i) file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// The fields of a BMP file; Build puts them together and nothing is checked.
struct BmpFile {
    int width = 1, height = 1, bits = 24;
    Bytes pixels;  // as stored
    std::uint32_t compression = 0;
    std::uint32_t headerBytes = 40;
    std::vector<std::uint32_t> masks = {};  // inside the header if it has room, else behind it
    Pixels palette = {};
    std::uint32_t coloursUsed = 0;
    int entryBytes = 4;
    std::optional<std::uint32_t> offset = std::nullopt;  // what the file header says

    Bytes Build() const {
        Bytes header;
        Put(header, headerBytes, 4);
        const int sizeBytes = headerBytes == 12 ? 2 : 4;
        Put(header, static_cast<std::uint32_t>(width), sizeBytes);
        Put(header, static_cast<std::uint32_t>(height), sizeBytes);
        Put(header, 1, 2);
        Put(header, static_cast<std::uint32_t>(bits), 2);
        if (headerBytes > 12) {
            Put(header, compression, 4);
            header.resize(header.size() + 12);
            Put(header, coloursUsed, 4);
            Put(header, 0, 4);
        }
        if (headerBytes < 40) header.resize(headerBytes);
        if (headerBytes >= 40)
            for (const std::uint32_t mask : masks) Put(header, mask, 4);
        if (header.size() < headerBytes) header.resize(headerBytes);
        for (const Rgb colour : palette)
            Put(header, colour.blue | colour.green << 8 | colour.red << 16, entryBytes);
        Bytes file = BytesOf({'B', 'M'});
        const auto start = static_cast<std::uint32_t>(14 + header.size());
        Put(file, start + pixels.size(), 4);
        Put(file, 0, 4);
        Put(file, offset.value_or(start), 4);
        return Joined({file, header, pixels});
    }
};

Result<Decoded> Read(const BmpFile& file) {
    return DecodeBmp(file.Build(), {});
}

Bytes Words(std::initializer_list<std::uint32_t> values, int bytes) {
    Bytes words;
    for (const std::uint32_t value : values) Put(words, value, bytes);
    return words;
}

const Pixels kFour{kBlack, kRed, kGreen, kBlue};
const Pixels kTwo{kRed, kYellow};

// ---- Plain pixels ----------------------------------------------------------------------------

TEST(BmpDecode, OneBitFromTheTopmostBitOnAndFromTheBottomUp) {
    const BmpFile file{.width = 9,
                       .height = 2,
                       .bits = 1,
                       .pixels = BytesOf({0xAA, 0x80, 0, 0, 0x0F, 0x00, 0, 0}),
                       .palette = kTwo};
    const auto result = Read(file);
    EXPECT_THAT(PixelsOf(result),
                ElementsAre(kRed, kRed, kRed, kRed, kYellow, kYellow, kYellow, kYellow, kRed,  //
                            kYellow, kRed, kYellow, kRed, kYellow, kRed, kYellow, kRed, kYellow));
    EXPECT_EQ(result->bitsPerPixel, 1);
    EXPECT_EQ(result->format, Format::Bmp);
    EXPECT_EQ(result->warning, "");
}

TEST(BmpDecode, TwoFourAndEightBits) {
    const BmpFile two{
        .width = 5, .bits = 2, .pixels = BytesOf({0x1B, 0xC0, 0, 0}), .palette = kFour};
    EXPECT_THAT(PixelsOf(Read(two)), ElementsAre(kBlack, kRed, kGreen, kBlue, kBlue));
    const BmpFile four{.width = 3,
                       .bits = 4,
                       .pixels = BytesOf({0x13, 0x20, 0, 0}),
                       .palette = kFour,
                       .coloursUsed = 4};
    EXPECT_THAT(PixelsOf(Read(four)), ElementsAre(kRed, kBlue, kGreen));
    const BmpFile eight{
        .width = 3, .bits = 8, .pixels = BytesOf({3, 0, 1, 0}), .palette = kFour, .coloursUsed = 4};
    EXPECT_THAT(PixelsOf(Read(eight)), ElementsAre(kBlue, kBlack, kRed));
}

TEST(BmpDecode, SixteenBitsAreFiveEachUnlessMasksSayMore) {
    const Bytes pixels = Words({0x7C00, 0x03E0, 0x001F, 0x3DEF}, 2);
    const BmpFile file{.width = 4, .bits = 16, .pixels = pixels};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kGreen, kBlue, Rgb{123, 123, 123}));
    const BmpFile masked{.width = 4,
                         .bits = 16,
                         .pixels = Words({0xF800, 0x07E0, 0x001F, 0x0400}, 2),
                         .compression = 3,
                         .masks = {0xF800, 0x07E0, 0x001F}};
    EXPECT_THAT(PixelsOf(Read(masked)), ElementsAre(kRed, kGreen, kBlue, Rgb{0, 130, 0}));
}

TEST(BmpDecode, TwentyFourBitsWithPaddedRows) {
    const BmpFile file{.width = 1,
                       .height = 3,
                       .bits = 24,
                       .pixels = BytesOf({1, 2, 3, 9, 4, 5, 6, 9, 7, 8, 9, 9})};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{9, 8, 7}, Rgb{6, 5, 4}, Rgb{3, 2, 1}));
}

TEST(BmpDecode, TheFourthByteOfPlain32BitsIsNoAlpha) {
    for (const std::uint32_t header : {40U, 108U, 124U}) {
        const BmpFile file{.width = 2,
                           .bits = 32,
                           .pixels = BytesOf({0, 0, 255, 0, 1, 2, 3, 128}),
                           .headerBytes = header,
                           .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000}};
        BmpFile plain = file;
        if (header == 40) plain.masks = {};
        EXPECT_THAT(PixelsOf(Read(plain)), ElementsAre(kRed, Rgb{3, 2, 1})) << header;
    }
}

TEST(BmpDecode, NegativeHeightIsFromTheTopDown) {
    const BmpFile file{
        .width = 1, .height = -2, .bits = 24, .pixels = BytesOf({1, 2, 3, 0, 4, 5, 6, 0})};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{3, 2, 1}, Rgb{6, 5, 4}));
}

// ---- Headers ---------------------------------------------------------------------------------

TEST(BmpDecode, ReadsAllHeaders) {
    for (const std::uint32_t header : {16U, 24U, 40U, 46U, 48U, 52U, 56U, 64U, 66U, 108U, 124U}) {
        const BmpFile file{.width = 2,
                           .height = 1,
                           .bits = 1,
                           .pixels = BytesOf({0x40, 0, 0, 0}),
                           .headerBytes = header,
                           .palette = kTwo};
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kYellow)) << header;
    }
}

TEST(BmpDecode, TheOldestHeaderHasEntriesOfThreeBytes) {
    const BmpFile file{.width = 2,
                       .bits = 1,
                       .pixels = BytesOf({0x40, 0, 0, 0}),
                       .headerBytes = 12,
                       .palette = kTwo,
                       .entryBytes = 3};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kYellow));
    BmpFile wide = file;
    wide.entryBytes = 4;  // as some writers have it
    EXPECT_THAT(PixelsOf(Read(wide)), ElementsAre(kRed, kYellow));
    const BmpFile colour{
        .width = 40000, .bits = 24, .pixels = Bytes(120000, 77), .headerBytes = 12};
    EXPECT_EQ(PixelsOf(Read(colour)).back(), (Rgb{77, 77, 77}));  // sizes have no sign here
}

TEST(BmpDecode, AnArrayGivesItsFirstBitmap) {
    Bytes bitmap = BmpFile{.pixels = BytesOf({1, 2, 3, 0})}.Build();
    bitmap[10] += 14;  // offsets count from the start of the file
    const Bytes array = Joined({BytesOf({'B', 'A', 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), bitmap});
    EXPECT_THAT(PixelsOf(DecodeBmp(array, {})), ElementsAre(Rgb{3, 2, 1}));
}

TEST(BmpDecode, PalettesMayBeShorterOrLongerThanPixelsCanName) {
    const BmpFile brief{.width = 2,
                        .bits = 8,
                        .pixels = BytesOf({1, 200, 0, 0}),
                        .palette = kTwo,
                        .coloursUsed = 2};
    EXPECT_THAT(PixelsOf(Read(brief)), ElementsAre(kYellow, kBlack));
    BmpFile large = brief;
    large.palette = Pixels(300, kGreen);
    large.coloursUsed = 300;
    EXPECT_THAT(PixelsOf(Read(large)), ElementsAre(kGreen, kGreen));
    BmpFile behindColours{.width = 1,
                          .bits = 24,
                          .pixels = BytesOf({1, 2, 3, 0}),
                          .palette = kFour,
                          .coloursUsed = 4,
                          .offset = 0};
    EXPECT_THAT(PixelsOf(Read(behindColours)), ElementsAre(Rgb{3, 2, 1}));
}

TEST(BmpDecode, AnOffsetThatCannotBeIsReplaced) {
    for (const std::uint32_t offset : {0U, 14U, 20U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        const BmpFile file{.width = 2,
                           .bits = 1,
                           .pixels = BytesOf({0x40, 0, 0, 0}),
                           .palette = kTwo,
                           .offset = offset};
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kYellow)) << offset;
    }
}

// ---- Masks -----------------------------------------------------------------------------------

TEST(BmpDecode, MasksOfAnyShapeAreScaledAndRounded) {
    const BmpFile tiny{.width = 3,
                       .bits = 16,
                       .pixels = Words({0x0007, 0x0008, 0x0003}, 2),
                       .compression = 3,
                       .masks = {0x0007, 0x0008, 0}};
    EXPECT_THAT(PixelsOf(Read(tiny)), ElementsAre(kRed, kGreen, Rgb{109, 0, 0}));
    const BmpFile wide{.width = 3,
                       .bits = 32,
                       .pixels = Words({0x3FF, 0x7FFFFC00U, 512 | 0x100000U << 10}, 4),
                       .compression = 3,
                       .masks = {0x3FF, 0x7FFFFC00U, 0}};
    EXPECT_THAT(PixelsOf(Read(wide)), ElementsAre(kRed, kGreen, Rgb{128, 128, 0}));
    const BmpFile torn{.width = 1,
                       .bits = 16,
                       .pixels = Words({0x0005}, 2),
                       .compression = 3,
                       .masks = {0x0005, 0, 0x8000}};
    EXPECT_THAT(PixelsOf(Read(torn)), ElementsAre(kRed));
}

TEST(BmpDecode, EightBitMasksInAnyOrder) {
    const Bytes pixels = BytesOf({10, 20, 30, 40, 11, 21, 31, 41});
    const BmpFile usual{.width = 2,
                        .bits = 32,
                        .pixels = pixels,
                        .compression = 3,
                        .masks = {0xFF0000, 0xFF00, 0xFF}};
    EXPECT_THAT(PixelsOf(Read(usual)), ElementsAre(Rgb{30, 20, 10}, Rgb{31, 21, 11}));
    const BmpFile turned{.width = 2,
                         .bits = 32,
                         .pixels = pixels,
                         .compression = 3,
                         .masks = {0xFF, 0xFF0000, 0xFF000000U}};
    EXPECT_THAT(PixelsOf(Read(turned)), ElementsAre(Rgb{10, 30, 40}, Rgb{11, 31, 41}));
}

TEST(BmpDecode, AlphaLiesOverWhite) {
    const Bytes pixels = BytesOf({0, 0, 255, 0, 0, 0, 255, 255, 40, 30, 20, 128});
    for (const std::uint32_t header : {56U, 108U, 124U}) {
        const BmpFile file{.width = 3,
                           .bits = 32,
                           .pixels = pixels,
                           .compression = 3,
                           .headerBytes = header,
                           .masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000U}};
        EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kRed, Rgb{137, 142, 147})) << header;
    }
    const BmpFile behind{.width = 3,
                         .bits = 32,
                         .pixels = pixels,
                         .compression = 6,
                         .masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000U}};
    EXPECT_THAT(PixelsOf(Read(behind)), ElementsAre(kWhite, kRed, Rgb{137, 142, 147}));
    const BmpFile oneBit{.width = 2,
                         .bits = 16,
                         .pixels = Words({0x7C00, 0xFC00}, 2),
                         .compression = 3,
                         .headerBytes = 56,
                         .masks = {0x7C00, 0x3E0, 0x1F, 0x8000}};
    EXPECT_THAT(PixelsOf(Read(oneBit)), ElementsAre(kWhite, kRed));
}

TEST(BmpDecode, AlphaThatIsZeroEverywhereIsNone) {
    const BmpFile file{.width = 2,
                       .bits = 32,
                       .pixels = BytesOf({1, 2, 3, 0, 4, 5, 6, 0}),
                       .compression = 3,
                       .headerBytes = 108,
                       .masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000U}};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{3, 2, 1}, Rgb{6, 5, 4}));
}

TEST(BmpDecode, AShortHeaderHasNoAlphaMask) {
    const BmpFile file{.width = 1,
                       .bits = 32,
                       .pixels = BytesOf({1, 2, 3, 128}),
                       .compression = 3,
                       .headerBytes = 52,
                       .masks = {0xFF0000, 0xFF00, 0xFF}};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{3, 2, 1}));
}

// ---- Run lengths -----------------------------------------------------------------------------

BmpFile Runs(int bits, int width, int height, std::initializer_list<int> codes) {
    BmpFile file{.width = width,
                 .height = height,
                 .bits = bits,
                 .pixels = BytesOf(codes),
                 .compression = bits == 8 ? 1U : 2U,
                 .palette = kFour,
                 .coloursUsed = 4};
    if (bits == 24) {
        file.compression = 4;
        file.headerBytes = 64;
        file.palette = {};
    }
    return file;
}

TEST(BmpDecode, EightBitRunsLiteralsAndEnds) {
    const auto result =
        Read(Runs(8, 5, 2, {2, 1, 0, 3, 2, 3, 1, 0, 0, 0, 5, 3, 0, 1}));  // literals are padded
    EXPECT_THAT(PixelsOf(result), ElementsAre(kBlue, kBlue, kBlue, kBlue, kBlue,  //
                                              kRed, kRed, kGreen, kBlue, kRed));
    EXPECT_EQ(result->warning, "");
}

TEST(BmpDecode, FourBitRunsAlternate) {
    EXPECT_THAT(PixelsOf(Read(Runs(4, 7, 1, {3, 0x12, 0, 3, 0x31, 0x20, 1, 0x30, 0, 1}))),
                ElementsAre(kRed, kGreen, kRed, kBlue, kRed, kGreen, kBlue));
    EXPECT_THAT(PixelsOf(Read(Runs(4, 5, 1, {0, 5, 0x12, 0x31, 0x20, 0, 0, 1}))),
                ElementsAre(kRed, kGreen, kBlue, kRed, kGreen));
}

TEST(BmpDecode, TwentyFourBitRuns) {
    EXPECT_THAT(
        PixelsOf(Read(Runs(24, 4, 1, {2, 1, 2, 3, 0, 3, 7, 8, 9, 4, 5, 6, 0, 0, 0, 0, 0, 1}))),
        ElementsAre(Rgb{3, 2, 1}, Rgb{3, 2, 1}, Rgb{9, 8, 7}, Rgb{6, 5, 4}));
}

TEST(BmpDecode, PixelsThatCodesPassOverAreEntryZero) {
    const Pixels expected{kBlack, kBlack, kBlack, kBlack,  // behind the end of the bitmap
                          kBlack, kBlack, kBlack, kGreen,  // behind the move
                          kRed,   kBlack, kBlack, kBlack};
    const auto result = Read(Runs(8, 4, 3, {1, 1, 0, 2, 2, 1, 1, 2, 0, 1}));
    EXPECT_EQ(PixelsOf(result), expected);
    EXPECT_EQ(result->warning, "");
    BmpFile white = Runs(8, 2, 1, {0, 1});
    white.palette = {kWhite, kRed};
    EXPECT_THAT(PixelsOf(Read(white)), ElementsAre(kWhite, kWhite));
    EXPECT_THAT(PixelsOf(Read(Runs(8, 2, 2, {1, 1, 0, 0, 0, 1}))),
                ElementsAre(kBlack, kBlack, kRed, kBlack));
}

TEST(BmpDecode, RunsAreCutAtTheEndOfTheirRow) {
    EXPECT_THAT(PixelsOf(Read(Runs(8, 2, 2, {9, 1, 0, 0, 0, 3, 2, 2, 2, 0, 0, 1}))),
                ElementsAre(kGreen, kGreen, kRed, kRed));
    EXPECT_THAT(PixelsOf(Read(Runs(8, 2, 1, {0, 2, 200, 0, 5, 1, 0, 1}))),
                ElementsAre(kBlack, kBlack));
    EXPECT_THAT(PixelsOf(Read(Runs(8, 1, 2, {1, 1, 0, 2, 0, 255, 1, 2, 1, 3}))),
                ElementsAre(kBlack, kRed));
}

TEST(BmpDecode, TheEndsOfTheLastRowMayBeMissing) {
    const auto result = Read(Runs(8, 2, 2, {2, 1, 0, 0, 2, 2}));
    EXPECT_THAT(PixelsOf(result), ElementsAre(kGreen, kGreen, kRed, kRed));
    EXPECT_EQ(result->warning, "");
}

TEST(BmpDecode, RunsThatEndEarlyGiveTheirWholeRows) {
    for (const auto& codes : {BytesOf({2, 1, 0, 0, 1, 2}), BytesOf({2, 1, 0, 0, 0, 2, 0}),
                              BytesOf({2, 1, 0, 0, 0, 4, 1}), BytesOf({2, 1, 0, 0, 1})}) {
        BmpFile file = Runs(8, 2, 2, {});
        file.pixels = codes;
        const auto result = Read(file);
        EXPECT_THAT(PixelsOf(result), ElementsAre(kWhite, kWhite, kRed, kRed));
        EXPECT_EQ(result->warning, "the file ends early: 1 of 2 rows of pixels are there");
    }
    EXPECT_THAT(LineOf(Read(Runs(8, 2, 2, {1, 1}))), StartsWith("refused: the file ends"));
    EXPECT_THAT(LineOf(Read(Runs(24, 2, 2, {2, 1, 2}))), StartsWith("refused: the file ends"));
}

// ---- Files inside ----------------------------------------------------------------------------

TEST(BmpDecode, ReadsAnEmbeddedPngAndJpeg) {
    const Image image = PhotoLikeImage({33, 21});
    const auto png = EncodePng(image.View(), {});
    const auto jpeg = EncodeJpeg(image.View(), {});
    ASSERT_TRUE(png && jpeg);
    const BmpFile withPng{.width = 33, .height = 21, .bits = 0, .pixels = *png, .compression = 5};
    const auto result = Read(withPng);
    ASSERT_EQ(LineOf(result), "");
    EXPECT_TRUE(SamePixels(result->image, image));
    EXPECT_EQ(result->format, Format::Bmp);
    const BmpFile withJpeg{.width = 33,
                           .height = 21,
                           .bits = 0,
                           .pixels = *jpeg,
                           .compression = 4,
                           .headerBytes = 124};
    const auto fromJpeg = Read(withJpeg);
    const auto direct = DecodeJpeg(*jpeg, {});
    ASSERT_TRUE(fromJpeg && direct);
    EXPECT_TRUE(SamePixels(fromJpeg->image, direct->image));
}

// ---- Damage and refusals ---------------------------------------------------------------------

TEST(BmpDecode, RowsThatAreMissingAreWhite) {
    const BmpFile up{.width = 1, .height = 3, .bits = 24, .pixels = BytesOf({1, 2, 3, 0, 4, 5, 6})};
    const auto result = Read(up);  // the padding of the last row may be missing, too
    EXPECT_THAT(PixelsOf(result), ElementsAre(kWhite, Rgb{6, 5, 4}, Rgb{3, 2, 1}));
    EXPECT_EQ(result->warning, "the file ends early: 2 of 3 rows of pixels are there");
    BmpFile down = up;
    down.height = -3;
    EXPECT_THAT(PixelsOf(Read(down)), ElementsAre(Rgb{3, 2, 1}, Rgb{6, 5, 4}, kWhite));
    BmpFile nothing = up;
    nothing.pixels.resize(2);
    EXPECT_EQ(LineOf(Read(nothing)),
              "refused: the file ends before the end of the first row of pixels");
}

TEST(BmpDecode, RefusesSizesThatCannotBe) {
    const auto line = [](int width, int height) {
        return LineOf(Read({.width = width, .height = height, .pixels = Bytes(100)}));
    };
    EXPECT_EQ(line(0, 5), "refused: the file states a size of 0 x 5");
    EXPECT_EQ(line(5, 0), "refused: the file states a size of 5 x 0");
    EXPECT_EQ(line(-5, 5), "refused: the file states a size of -5 x 5");
    EXPECT_EQ(line(1, INT_MIN), "refused: a picture of 1 x 2147483648 is larger than allowed");
    EXPECT_EQ(line(INT_MAX, INT_MAX),
              "refused: a picture of 2147483647 x 2147483647 is larger than allowed");
    EXPECT_EQ(line(65000, 65000), "refused: a picture of 65000 x 65000 is larger than allowed");
}

TEST(BmpDecode, RefusesWhatItCannotRead) {
    const auto line = [](int bits, std::uint32_t compression, std::uint32_t header = 40) {
        return LineOf(Read({.bits = bits,
                            .pixels = Bytes(64),
                            .compression = compression,
                            .headerBytes = header}));
    };
    EXPECT_EQ(line(1, 3), "refused: a BMP with Huffman coding is not supported");
    EXPECT_EQ(line(1, 3, 64), "refused: a BMP with Huffman coding is not supported");
    EXPECT_EQ(line(24, 12), "refused: a BMP with coding 12 is not supported");
    EXPECT_EQ(line(3, 0), "refused: a BMP of 3 bits with coding 0 is not supported");
    EXPECT_EQ(line(64, 0), "refused: a BMP of 64 bits with coding 0 is not supported");
    EXPECT_EQ(line(4, 1), "refused: a BMP of 4 bits with coding 1 is not supported");
    EXPECT_EQ(line(8, 2), "refused: a BMP of 8 bits with coding 2 is not supported");
    EXPECT_EQ(line(24, 3), "refused: a BMP of 24 bits with coding 3 is not supported");
    EXPECT_EQ(line(8, 4, 64), "refused: a BMP of 8 bits with coding 4 is not supported");
    EXPECT_EQ(line(24, 0, 13), "refused: the BMP header is damaged");
    EXPECT_EQ(line(24, 0, 1U << 20), "refused: the BMP header is damaged");
    EXPECT_EQ(LineOf(DecodeBmp({}, {})), "refused: not a BMP file");
    EXPECT_EQ(LineOf(DecodeBmp(BytesOf({'B', 'M', 1, 2, 3}), {})), "refused: not a BMP file");
    EXPECT_EQ(LineOf(DecodeBmp(Bytes(100, 'x'), {})), "refused: not a BMP file");
}

TEST(BmpDecode, MemoryFailureIsAReason) {
    const BmpFile file{.width = 100, .height = 100, .pixels = Bytes(30000)};
    const ScopedMemoryBudget budget(1000);
    EXPECT_EQ(LineOf(Read(file)), "refused: not enough memory");
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(BmpEncode, Writes24BitsFromTheBottomUp) {
    Image image = FlatImage({1, 2}, {1, 2, 3});
    image.View().SetPixel(0, 1, {4, 5, 6});
    const auto file = EncodeBmp(image.View());
    ASSERT_TRUE(file);
    EXPECT_EQ(*file, BytesOf({'B', 'M', 62, 0, 0, 0, 0, 0, 0,    0,    54, 0, 0,    0,            //
                              40,  0,   0,  0, 1, 0, 0, 0, 2,    0,    0,  0, 1,    0,    24, 0,  //
                              0,   0,   0,  0, 8, 0, 0, 0, 0x13, 0x0B, 0,  0, 0x13, 0x0B, 0,  0,
                              0,   0,   0,  0, 0, 0, 0, 0,  //
                              6,   5,   4,  0, 3, 2, 1, 0}));
}

TEST(BmpEncode, LosesNothing) {
    CheckRoundTrips(EncodeBmp, DecodeBmp);
}

}  // namespace
}  // namespace lumo::imaging::codecs
