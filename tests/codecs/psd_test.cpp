#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <bit>
#include <cmath>
#include <map>

#include "imaging/codecs/decoders.h"
#include "support/codec_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using namespace test;  // NOLINT: what the tests of formats share
using testing::ElementsAre;
using testing::HasSubstr;

// ---- Files by hand ---------------------------------------------------------------------------

void Put(Bytes& file, std::uint64_t value, int count) {
    for (int i = count - 1; i >= 0; --i)
        file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

Bytes Words(std::initializer_list<std::uint32_t> values, int bytes) {
    Bytes words;
    for (const std::uint32_t value : values) Put(words, value, bytes);
    return words;
}

Bytes Floats(std::initializer_list<float> values) {
    Bytes words;
    for (const float value : values) Put(words, std::bit_cast<std::uint32_t>(value), 4);
    return words;
}

enum Mode { kBitmap, kGreyMode, kIndexed, kRgb, kCmyk, kMultichannel = 7, kDuotone, kLab };

struct PsdFile {
    int mode = kRgb;
    int width = 1, height = 1, depth = 8, channels = 3;
    Bytes samples;  // channel by channel, as without coding
    int coding = 0;
    int version = 1;
    Bytes colourData = {};
    std::map<int, Bytes> resources = {};
    int layerCount = 0;  // negative: the first channel behind the colours is coverage

    std::size_t RowBytes() const { return static_cast<std::size_t>((width * depth + 7) / 8); }

    Bytes Build() const {
        Bytes file = BytesOf({'8', 'B', 'P', 'S'});
        Put(file, static_cast<std::uint32_t>(version), 2);
        file.resize(12);
        Put(file, static_cast<std::uint32_t>(channels), 2);
        Put(file, static_cast<std::uint32_t>(height), 4);
        Put(file, static_cast<std::uint32_t>(width), 4);
        Put(file, static_cast<std::uint32_t>(depth), 2);
        Put(file, static_cast<std::uint32_t>(mode), 2);
        Put(file, colourData.size(), 4);
        file = Joined({file, colourData});
        Bytes section;
        for (const auto& [id, content] : resources) {
            section = Joined({section, BytesOf({'8', 'B', 'I', 'M'})});
            Put(section, static_cast<std::uint32_t>(id), 2);
            section = Joined({section, BytesOf({1, 'n'})});  // a name
            Put(section, content.size(), 4);
            section = Joined({section, content});
            if (content.size() % 2 != 0) section.push_back(0);
        }
        Put(file, section.size(), 4);
        file = Joined({file, section});
        const int lengthBytes = version == 2 ? 8 : 4;
        Put(file, static_cast<std::uint64_t>(lengthBytes) + 4, lengthBytes);
        Put(file, 4, lengthBytes);
        Put(file, static_cast<std::uint16_t>(layerCount), 2);
        file.resize(file.size() + 2);
        Put(file, static_cast<std::uint32_t>(coding), 2);
        return Joined({file, Coded()});
    }

    Bytes Coded() const {
        if (coding == 1) return Packed();
        if (coding == 2) return Zipped(samples);
        if (coding == 3) return Zipped(Differences());
        return samples;
    }
    // Literals only: each row is told by its length, so that readers need not care.
    Bytes Packed() const {
        Bytes table, codes;
        for (std::size_t at = 0; at < samples.size(); at += RowBytes()) {
            Put(table, RowBytes() + 1, version == 2 ? 4 : 2);
            codes.push_back(static_cast<std::uint8_t>(RowBytes() - 1));
            codes.insert(codes.end(), &samples[at], &samples[at] + RowBytes());
        }
        return Joined({table, codes});
    }
    static Bytes Zipped(const Bytes& raw) {
        uLongf size = compressBound(raw.size());
        Bytes zipped(size);
        EXPECT_EQ(compress(zipped.data(), &size, raw.data(), raw.size()), Z_OK);
        zipped.resize(size);
        return zipped;
    }
    Bytes Differences() const {
        Bytes out;
        for (std::size_t at = 0; at < samples.size(); at += RowBytes()) {
            const std::uint8_t* row = &samples[at];
            Bytes line(row, row + RowBytes());
            if (depth == 32)
                for (std::size_t i = 0; i < RowBytes(); ++i)
                    line[i] = row[i % (RowBytes() / 4) * 4 + i / (RowBytes() / 4)];
            const std::size_t step = depth == 16 ? 2 : 1;
            for (std::size_t i = RowBytes() - step; i >= step; i -= step) {
                const auto word = [&](std::size_t j) {
                    return step == 1 ? line[j] : line[j] << 8 | line[j + 1];
                };
                const int difference = word(i) - word(i - step);
                if (step == 2) line[i] = static_cast<std::uint8_t>(difference >> 8);
                line[i + step - 1] = static_cast<std::uint8_t>(difference);
            }
            out = Joined({out, line});
        }
        return out;
    }
};

Result<Decoded> Read(const PsdFile& file) {
    return DecodePsd(file.Build(), {});
}

// ---- Colour modes ----------------------------------------------------------------------------

TEST(PsdDecode, BitmapHasInkWhereABitIsSet) {
    const auto result = Read({.mode = kBitmap,
                              .width = 9,
                              .height = 2,
                              .depth = 1,
                              .channels = 1,
                              .samples = BytesOf({0xAA, 0x80, 0x00, 0x00})});
    EXPECT_THAT(PixelsOf(result), ElementsAre(kBlack, kWhite, kBlack, kWhite, kBlack, kWhite,
                                              kBlack, kWhite, kBlack, kWhite, kWhite, kWhite,
                                              kWhite, kWhite, kWhite, kWhite, kWhite, kWhite));
    EXPECT_EQ(result->bitsPerPixel, 1);
    EXPECT_EQ(result->format, Format::Psd);
    EXPECT_EQ(result->warning, "");
}

TEST(PsdDecode, GreyAndDuotone) {
    for (const int mode : {kGreyMode, kDuotone})
        EXPECT_THAT(PixelsOf(Read({.mode = mode,
                                   .width = 2,
                                   .channels = 1,
                                   .samples = BytesOf({7, 255}),
                                   .colourData = Bytes(524)})),
                    ElementsAre(Rgb{7, 7, 7}, kWhite))
            << mode;
}

TEST(PsdDecode, IndexedColoursAreThreePlanesOf256) {
    PsdFile file{.mode = kIndexed, .width = 3, .channels = 1, .samples = BytesOf({1, 255, 0})};
    file.colourData.resize(768);
    file.colourData[1] = 10;
    file.colourData[256 + 1] = 20;
    file.colourData[512 + 1] = 30;
    file.colourData[512 + 255] = 255;
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(Rgb{10, 20, 30}, kBlue, kBlack));
    file.resources[1047] = BytesOf({0, 1});  // entry 1 is transparent
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kWhite, kBlue, kBlack));
}

TEST(PsdDecode, RgbAndChannelsBehindIt) {
    const auto result = Read({.width = 2, .samples = BytesOf({1, 2, 3, 4, 5, 6})});
    EXPECT_THAT(PixelsOf(result), ElementsAre(Rgb{1, 3, 5}, Rgb{2, 4, 6}));
    EXPECT_EQ(result->bitsPerPixel, 24);
    for (const int coding : {0, 1, 2, 3})
        EXPECT_THAT(PixelsOf(Read({.width = 2,
                                   .channels = 5,
                                   .samples = BytesOf({1, 2, 3, 4, 5, 6, 0, 0, 9, 9}),
                                   .coding = coding})),
                    ElementsAre(Rgb{1, 3, 5}, Rgb{2, 4, 6}))
            << coding;
}

TEST(PsdDecode, CmykStoresThePaperThatStaysBare) {
    EXPECT_THAT(PixelsOf(Read({.mode = kCmyk,
                               .width = 4,
                               .channels = 4,
                               .samples = BytesOf({255, 0, 255, 100,  //
                                                   255, 255, 255, 200, 255, 255, 255, 50, 255, 255,
                                                   0, 128})})),
                ElementsAre(kWhite, Rgb{0, 255, 255}, kBlack, Rgb{50, 100, 25}));
}

TEST(PsdDecode, LabUnderD50) {
    // The corners of sRGB as the CIE formulas give them under D50, rounded to bytes.
    const auto result = Read({.mode = kLab,
                              .width = 5,
                              .samples = BytesOf({
                                  255, 0, 136, 138, 224,    // L * 2.55
                                  128, 128, 128, 209, 49,   // a + 128
                                  128, 128, 128, 198, 209,  // b + 128
                              })});
    const Pixels pixels = PixelsOf(result);
    EXPECT_EQ(pixels[0], kWhite);
    EXPECT_EQ(pixels[1], kBlack);
    EXPECT_EQ(pixels[2], (Rgb{127, 127, 127}));
    EXPECT_NEAR(pixels[3].red, 255, 1);
    EXPECT_NEAR(pixels[3].green, 0, 2);
    EXPECT_NEAR(pixels[4].green, 255, 1);
    // The sixteen bits of red as a program wrote them; a and b count from 32768 in 256ths.
    EXPECT_THAT(
        PixelsOf(Read({.mode = kLab, .depth = 16, .samples = Words({35579, 53451, 50657}, 2)})),
        ElementsAre(Rgb{255, 0, 0}));
}

TEST(PsdDecode, MultichannelLaysItsInksOneOverTheOther) {
    const Bytes samples = BytesOf({0, 255, 255, 128, 255, 0, 255, 128, 255, 255, 0, 255});
    PsdFile file{.mode = kMultichannel, .width = 4, .samples = samples};
    const Rgb cyan{0, 255, 255}, magenta{255, 0, 255};
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(cyan, magenta, kYellow, Rgb{128, 128, 255}));
    // Inks of its own: red as RGB, green as CMYK, black as grey.
    file.resources[1077] = Joined({Words({1}, 4), Words({0, 65535, 0, 0, 0, 0}, 2), BytesOf({2}),
                                   Words({2, 0, 65535, 0, 65535, 0}, 2), BytesOf({2}),
                                   Words({8, 10000, 0, 0, 0, 0}, 2), BytesOf({2})});
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kGreen, kBlack, Rgb{128, 128, 64}));
    PsdFile old = file;
    old.resources.clear();
    old.resources[1007] = Joined({Words({0, 65535, 0, 0, 0, 0}, 2), BytesOf({2, 0}),
                                  Words({2, 0, 65535, 0, 65535, 0}, 2), BytesOf({2, 0}),
                                  Words({7, 0, 0, 0, 0, 0}, 2), BytesOf({2, 0})});
    EXPECT_EQ(PixelsOf(Read(old)), PixelsOf(Read(file)));
    file.resources[1077].resize(20);  // too short: the usual inks
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(cyan, magenta, kYellow, Rgb{128, 128, 255}));
}

TEST(PsdDecode, MultichannelOfOneAndOfSixChannels) {
    EXPECT_THAT(
        PixelsOf(
            Read({.mode = kMultichannel, .width = 2, .channels = 1, .samples = BytesOf({0, 255})})),
        ElementsAre(Rgb{0, 255, 255}, kWhite));
    EXPECT_THAT(
        PixelsOf(Read(
            {.mode = kMultichannel, .channels = 6, .samples = BytesOf({255, 0, 0, 255, 0, 0})})),
        ElementsAre(kRed));
}

// ---- Depths and codings ----------------------------------------------------------------------

TEST(PsdDecode, SixteenBitsAreRounded) {
    EXPECT_THAT(PixelsOf(Read({.mode = kGreyMode,
                               .width = 4,
                               .depth = 16,
                               .channels = 1,
                               .samples = Words({128, 129, 32768, 65535}, 2)})),
                ElementsAre(kBlack, Rgb{1, 1, 1}, Rgb{128, 128, 128}, kWhite));
}

TEST(PsdDecode, ThirtyTwoBitsAreLinearLight) {
    EXPECT_THAT(PixelsOf(Read({.mode = kGreyMode,
                               .width = 7,
                               .depth = 32,
                               .channels = 1,
                               .samples = Floats({0, 1, 0.5F, 0.2158605F, 0.002F, 7, -3})})),
                ElementsAre(kBlack, kWhite, Rgb{188, 188, 188}, Rgb{128, 128, 128}, Rgb{7, 7, 7},
                            kWhite, kBlack));
    EXPECT_THAT(PixelsOf(Read({.mode = kGreyMode,
                               .width = 2,
                               .depth = 32,
                               .channels = 1,
                               .samples = Floats({std::nanf(""), HUGE_VALF})})),
                ElementsAre(kBlack, kWhite));
}

TEST(PsdDecode, AllCodingsGiveTheSamePixels) {
    for (const int version : {1, 2})
        for (const int depth : {8, 16, 32})
            for (const int mode : {kGreyMode, kRgb, kCmyk}) {
                PsdFile file{
                    .mode = mode, .width = 13, .height = 7, .depth = depth, .version = version};
                file.channels = mode == kGreyMode ? 1 : mode == kRgb ? 3 : 4;
                const Image noise = RandomImage({200, 10}, 5);
                const auto bytes = noise.View().Bytes();
                file.samples.assign(
                    bytes.begin(),
                    bytes.begin() + static_cast<long>(file.RowBytes() * 7 *
                                                      static_cast<std::size_t>(file.channels)));
                if (depth == 32)  // floats between 0.5 and 1
                    for (std::size_t i = 0; i < file.samples.size(); i += 4) file.samples[i] = 0x3F;
                const Pixels expected = PixelsOf(Read(file));
                ASSERT_EQ(expected.size(), 91U);
                for (const int coding : {1, 2, 3}) {
                    file.coding = coding;
                    EXPECT_EQ(PixelsOf(Read(file)), expected)
                        << "coding " << coding << ", " << depth << " bits, mode " << mode;
                }
            }
}

TEST(PsdDecode, PackBitsRunsLiteralsAndNothing) {
    PsdFile file{.mode = kGreyMode, .width = 5, .channels = 1, .coding = 1};
    Bytes bytes = file.Build();  // without rows
    bytes = Joined({bytes, BytesOf({0, 7, 0xFE, 9, 0x80, 1, 10, 11, 99})});
    EXPECT_THAT(
        PixelsOf(DecodePsd(bytes, {})),
        ElementsAre(Rgb{9, 9, 9}, Rgb{9, 9, 9}, Rgb{9, 9, 9}, Rgb{10, 10, 10}, Rgb{11, 11, 11}));
}

// ---- Coverage --------------------------------------------------------------------------------

TEST(PsdDecode, BlendedColoursStayAndOthersAreLaidOverWhite) {
    PsdFile file{.width = 3, .channels = 4, .layerCount = -1};
    // Red at full, half and no coverage, blended with white as the format asks.
    file.samples = BytesOf({255, 255, 255, 0, 127, 255, 0, 127, 255, 255, 128, 0});
    const Pixels blended{kRed, {255, 127, 127}, kWhite};
    EXPECT_EQ(PixelsOf(Read(file)), blended);
    // The same picture with its colours as they were.
    file.samples = BytesOf({255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 128, 0});
    for (const int coding : {0, 1, 2, 3}) {
        file.coding = coding;
        EXPECT_EQ(PixelsOf(Read(file)), blended) << coding;
    }
    file.layerCount = 1;  // the channel is a saved selection
    EXPECT_THAT(PixelsOf(Read(file)), ElementsAre(kRed, kRed, kRed));
    EXPECT_THAT(PixelsOf(Read({.mode = kGreyMode,
                               .width = 2,
                               .channels = 2,
                               .samples = BytesOf({0, 0, 0, 255}),
                               .layerCount = -2})),
                ElementsAre(kWhite, kBlack));
}

// ---- Damage and refusals ---------------------------------------------------------------------

TEST(PsdDecode, RowsThatAreMissingInAnyChannelAreWhite) {
    for (const int coding : {0, 1}) {
        PsdFile file{.width = 2, .height = 2, .samples = Bytes(12, 7), .coding = coding};
        Bytes bytes = file.Build();
        bytes.pop_back();
        const auto result = DecodePsd(bytes, {});
        EXPECT_THAT(PixelsOf(result), ElementsAre(Rgb{7, 7, 7}, Rgb{7, 7, 7}, kWhite, kWhite));
        EXPECT_EQ(result->warning, "the file ends early: 1 of 2 rows of pixels are there");
        bytes.resize(bytes.size() - (coding == 0 ? 3 : 5));
        EXPECT_THAT(LineOf(DecodePsd(bytes, {})), HasSubstr("refused: the file ends"));
    }
}

TEST(PsdDecode, ARowThatIsTooShortDoesNotEndThePicture) {
    PsdFile file{.mode = kGreyMode, .width = 2, .height = 3, .channels = 1, .coding = 1};
    const Bytes codes = BytesOf({0, 3, 0, 2, 0, 3, 1, 5, 6, 0, 7, 1, 8, 9});
    const auto result = DecodePsd(Joined({file.Build(), codes}), {});
    EXPECT_THAT(PixelsOf(result), ElementsAre(Rgb{5, 5, 5}, Rgb{6, 6, 6}, Rgb{7, 7, 7}, kBlack,
                                              Rgb{8, 8, 8}, Rgb{9, 9, 9}));
    EXPECT_EQ(result->warning, "the file is damaged: rows of pixels are too short");
}

TEST(PsdDecode, ZippedDataThatBreakOffGiveTheirWholeRows) {
    const Image noise = RandomImage({64, 64}, 3);
    PsdFile file{.mode = kGreyMode, .width = 64, .height = 64, .channels = 1, .coding = 2};
    file.samples.assign(noise.View().Bytes().begin(), noise.View().Bytes().begin() + 4096);
    const Pixels whole = PixelsOf(Read(file));
    Bytes bytes = file.Build();
    bytes.resize(bytes.size() - 2000);
    const auto result = DecodePsd(bytes, {});
    EXPECT_THAT(LineOf(result), HasSubstr("of 64 rows of pixels are there"));
    const Pixels cut = PixelsOf(result);
    ASSERT_EQ(cut.size(), whole.size());
    EXPECT_TRUE(std::equal(whole.begin(), whole.begin() + 64 * 20, cut.begin()));
    EXPECT_EQ(cut.back(), kWhite);
}

TEST(PsdDecode, RefusesWhatItCannotRead) {
    const auto line = [](PsdFile file) {
        file.samples.resize(64);
        return LineOf(Read(file));
    };
    EXPECT_EQ(line({.version = 3}), "refused: not a PSD file");
    EXPECT_EQ(line({.mode = 5}), "refused: a PSD of colour mode 5 with 8 bits is not supported");
    EXPECT_EQ(line({.depth = 1}), "refused: a PSD of colour mode 3 with 1 bits is not supported");
    EXPECT_EQ(line({.mode = kIndexed, .depth = 16, .channels = 1}),
              "refused: a PSD of colour mode 2 with 16 bits is not supported");
    EXPECT_EQ(line({.depth = 24}), "refused: a PSD of colour mode 3 with 24 bits is not supported");
    EXPECT_EQ(line({.channels = 2}), "refused: the PSD header is damaged");
    EXPECT_EQ(line({.mode = kMultichannel, .channels = 0}),
              "refused: a PSD of colour mode 7 with 8 bits is not supported");
    EXPECT_EQ(line({.channels = 200}), "refused: the PSD header is damaged");
    EXPECT_EQ(line({.width = 0}), "refused: the file states a size of 0 x 1");
    EXPECT_EQ(line({.width = 300000}), "refused: a picture of 300000 x 1 is larger than allowed");
    EXPECT_EQ(line({.width = -1}), "refused: a picture of 1073741824 x 1 is larger than allowed");
    EXPECT_EQ(LineOf(DecodePsd({}, {})), "refused: not a PSD file");
    EXPECT_EQ(LineOf(DecodePsd(Bytes(100, '8'), {})), "refused: not a PSD file");
    Bytes bytes = PsdFile{.samples = Bytes(3), .coding = 0}.Build();
    bytes[bytes.size() - 4] = 9;
    EXPECT_EQ(LineOf(DecodePsd(bytes, {})), "refused: a PSD with coding 9 is not supported");
    bytes.resize(40);
    EXPECT_EQ(LineOf(DecodePsd(bytes, {})), "refused: the PSD file ends before its merged picture");
}

TEST(PsdDecode, AFileWithoutItsMergedPictureIsReported) {
    PsdFile file{.samples = BytesOf({255, 255, 255})};
    file.resources[1057] = Joined({Words({1}, 4), BytesOf({0})});
    const auto result = Read(file);
    EXPECT_THAT(PixelsOf(result), ElementsAre(kWhite));
    EXPECT_EQ(result->warning,
              "the file was saved without its merged picture; layers are not read");
    file.resources[1057][4] = 1;
    EXPECT_EQ(LineOf(Read(file)), "");
}

TEST(PsdDecode, MemoryFailureIsAReason) {
    const Bytes plain = PsdFile{.width = 100, .height = 100, .samples = Bytes(30000)}.Build();
    const Bytes zipped =
        PsdFile{.width = 100, .height = 100, .samples = Bytes(30000), .coding = 2}.Build();
    const ScopedMemoryBudget budget(1000);
    EXPECT_EQ(LineOf(DecodePsd(plain, {})), "refused: not enough memory");
    EXPECT_EQ(LineOf(DecodePsd(zipped, {})), "refused: not enough memory");
}

TEST(PsdDecode, CountsWhatItInflatesAgainstTheLimit) {
    const PsdFile file{.width = 100, .height = 100, .samples = Bytes(30000), .coding = 2};
    DecodeOptions options;
    options.limits.maxMemory = 50'000;  // the picture alone would fit
    EXPECT_EQ(LineOf(DecodePsd(file.Build(), options)),
              "refused: a picture of 100 x 100 needs more memory than allowed");
}

// ---- Writing ---------------------------------------------------------------------------------

TEST(PsdEncode, WritesThreeChannelsAsTheyAre) {
    Image image = FlatImage({2, 1}, {1, 2, 3});
    image.View().SetPixel(1, 0, {4, 5, 6});
    const auto file = EncodePsd(image.View());
    ASSERT_TRUE(file);
    EXPECT_EQ(*file, BytesOf({'8', 'B', 'P', 'S', 0, 1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 1, 0,
                              0,   0,   2,   0,   8, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  //
                              0,   0,   1,   4,   2, 5, 3, 6}));
}

TEST(PsdEncode, PacksWhatGetsSmaller) {
    const Image image = FlatImage({200, 1}, {1, 2, 3});
    const auto file = EncodePsd(image.View());
    ASSERT_TRUE(file);
    const Bytes data(file->begin() + 38, file->end());
    EXPECT_EQ(data, BytesOf({0,    1, 0,    4, 0,    4, 0,    4, 0x81, 1,
                             0xB9, 1, 0x81, 2, 0xB9, 2, 0x81, 3, 0xB9, 3}));
    const Image noise = RandomImage({200, 50}, 1);
    EXPECT_EQ(EncodePsd(noise.View())->size(), 40U + 30000U);
}

TEST(PsdEncode, TakesTheLargeFormForLongSides) {
    for (const Size size : {Size{30001, 2}, Size{2, 30001}}) {
        for (const Image& image : {CoordinateImage(size), FlatImage(size, kRed)}) {
            const auto file = EncodePsd(image.View());
            ASSERT_TRUE(file);
            EXPECT_EQ((*file)[5], 2);
            const auto back = DecodePsd(*file, {});
            ASSERT_EQ(LineOf(back), "");
            EXPECT_TRUE(SamePixels(back->image, image));
        }
    }
}

TEST(PsdEncode, LosesNothing) {
    CheckRoundTrips(EncodePsd, DecodePsd);
}

TEST(PsdEncode, RefusesSidesBeyondTheFormat) {
    const Image image = FlatImage({300001, 1}, kRed);
    EXPECT_EQ(EncodePsd(image.View()).Message(), "the picture is too large for a PSD file");
}

}  // namespace
}  // namespace lumo::imaging::codecs
