#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>
#include <thread>
#include <vector>

#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/decoders.h"
#include "support/decoder_checks.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

using testing::HasSubstr;

Decoded MustDecode(const Bytes& file) {
    auto result = DecodeRaw(file, {});
    EXPECT_TRUE(result) << result.Message();
    return result ? std::move(*result) : Decoded{.image = test::FlatImage({9, 9}, {1, 2, 3})};
}

std::string ReasonOf(std::string_view name, const DecodeOptions& options = {}) {
    const auto result = DecodeRaw(test::ReadTestFile(name), options);
    return result ? "no reason" : result.Message();
}

// The mean colour of a field of the picture, its sides in tenths of those of the picture.
Rgb MeanOf(ConstImageView image, Rect tenths) {
    std::uint64_t sum[3] = {}, count = 0;
    for (int y = image.Height() * tenths.top / 10; y < image.Height() * tenths.bottom / 10; ++y)
        for (int x = image.Width() * tenths.left / 10; x < image.Width() * tenths.right / 10; ++x) {
            for (int c = 0; c < 3; ++c) sum[c] += image.At(x, y)[c];
            ++count;
        }
    return {static_cast<std::uint8_t>(sum[0] / count), static_cast<std::uint8_t>(sum[1] / count),
            static_cast<std::uint8_t>(sum[2] / count)};
}

TEST(Raw, DevelopsALossyDng) {
    const Decoded decoded = MustDecode(test::ReadTestFile("raw/rust-skia_sample_1mp.dng"));
    EXPECT_EQ(decoded.image.Extent(), (Size{600, 338}));
    EXPECT_EQ(decoded.format, Format::Raw);
    EXPECT_EQ(decoded.warning, "");
    const Rgb sky = MeanOf(decoded.image.View(), {1, 0, 9, 2});
    const Rgb lawn = MeanOf(decoded.image.View(), {1, 6, 5, 7});
    EXPECT_GE(sky.blue, sky.red) << "a cloudy sky";
    EXPECT_GT(lawn.green, lawn.blue + 15) << "and grass below";
    EXPECT_GT(sky.green, lawn.green) << "the right way up";
}

TEST(Raw, DevelopsAnOldCamerasFile) {
    const Decoded decoded = MustDecode(test::ReadTestFile("raw/mnet_RAW_KODAK_DC50.kdc"));
    EXPECT_EQ(decoded.image.Extent(), (Size{768, 512}));
    const Rgb sky = MeanOf(decoded.image.View(), {0, 0, 10, 1});
    EXPECT_GT(sky.blue, sky.red + 10);
    const Rgb wall = MeanOf(decoded.image.View(), {5, 4, 8, 7});
    EXPECT_GT(wall.red, wall.blue);
}

TEST(Raw, FilesWithoutTheSensorsPictureGiveAReason) {
    EXPECT_EQ(ReasonOf("raw/invalid/exiftool_DNG.dng"),
              "camera RAW: the file does not hold the picture of the sensor");
    EXPECT_EQ(ReasonOf("raw/invalid/exiftool_Nikon.nef"),
              "camera RAW: the file does not hold the picture of the sensor");
    for (const auto& path : test::TestFilesIn("raw/invalid")) {
        const auto result = DecodeRaw(test::ReadWholeFile(path), {});
        ASSERT_FALSE(result) << path;
        EXPECT_THAT(result.Message(), testing::StartsWith("camera RAW: "));
    }
}

/// Leaves noise in the memory that the next one to ask for up to 20 MB will get. Blocks come fresh
/// from the system until a larger one has been given back, hence the first.
void LitterMemory(std::uint32_t seed) {
    for (const std::size_t bytes : {std::size_t{24} << 20, std::size_t{20} << 20}) {
        Bytes block(bytes);
        std::uint32_t state = seed;
        for (std::uint8_t& byte : block)
            byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        asm volatile("" : : "r"(block.data()) : "memory");  // nobody reads it, yet it is written
    }
}

TEST(Raw, WhatTheMemoryHeldNeverShows) {
    for (const char* name : {"raw/invalid/exiftool_DNG.dng", "raw/invalid/exiftool_Nikon.nef"}) {
        LitterMemory(1);
        EXPECT_EQ(ReasonOf(name), "camera RAW: the file does not hold the picture of the sensor");
    }
    const Bytes whole = test::ReadTestFile("raw/rust-skia_sample_1mp.dng");
    const ByteView cut = ByteView(whole).first(whole.size() * 7 / 8);
    std::vector<std::uint64_t> hashes;
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        LitterMemory(seed);
        hashes.push_back(test::PixelHash(test::MustDecode(DecodeRaw, cut).image.View()));
    }
    EXPECT_THAT(hashes, testing::Each(hashes.front()));
}

TEST(Raw, OtherFilesGiveAReason) {
    for (const Bytes& file : {Bytes{}, Bytes{'I', 'I', '*', 0}, Bytes(5000, 0)})
        EXPECT_FALSE(DecodeRaw(file, {}));
}

TEST(Raw, CutFilesGiveAReasonOrAWarning) {
    for (const char* name : {"raw/rust-skia_sample_1mp.dng", "raw/mnet_RAW_KODAK_DC50.kdc"}) {
        const Bytes file = test::ReadTestFile(name);
        for (const std::size_t tenths : {1U, 3U, 5U, 7U}) {
            const auto result = DecodeRaw(ByteView(file).first(file.size() * tenths / 10), {});
            EXPECT_TRUE(!result || !result->warning.empty()) << name << ' ' << tenths;
        }
    }
}

/// A camera file of plain 16-bit values, its header before its pixels, with the pattern RGGB.
Bytes PlainSensor(std::uint32_t side, std::uint16_t value) {
    struct Entry {
        unsigned tag, type, count;
        Bytes data;
    };
    const auto number = [](std::uint32_t n) {
        ByteWriter out(4);
        out.U32Le(n);
        return out.Finish();
    };
    const auto text = [](std::string_view words) {
        return Bytes(words.begin(), words.end());  // the last byte is the closing zero
    };
    ByteWriter matrix(9 * 8);  // of signed fractions: the identity
    for (int i = 0; i < 9; ++i) {
        matrix.U32Le(i % 4 == 0 ? 1 : 0);
        matrix.U32Le(1);
    }
    constexpr unsigned kByte = 1, kAscii = 2, kShort = 3, kLong = 4, kFraction = 10;
    constexpr std::uint32_t kData = 1024;
    const std::vector<Entry> entries{
        {254, kLong, 1, number(0)},
        {256, kLong, 1, number(side)},
        {257, kLong, 1, number(side)},
        {258, kShort, 1, number(16)},
        {259, kShort, 1, number(1)},
        {262, kShort, 1, number(32803)},
        {271, kAscii, 5, text(std::string_view("Test", 5))},
        {272, kAscii, 5, text(std::string_view("Cam1", 5))},
        {273, kLong, 1, number(kData)},
        {277, kShort, 1, number(1)},
        {278, kLong, 1, number(side)},
        {279, kLong, 1, number(side * side * 2)},
        {33421, kShort, 2, {2, 0, 2, 0}},
        {33422, kByte, 4, {0, 1, 1, 2}},
        {50706, kByte, 4, {1, 4, 0, 0}},
        {50708, kAscii, 5, text(std::string_view("Cam1", 5))},
        {50721, kFraction, 9, matrix.Finish()},
    };
    ByteWriter out(kData + side * side * 2);
    out.Text("II*");
    out.U8(0);
    out.U32Le(8);
    out.U16Le(static_cast<unsigned>(entries.size()));
    Bytes behind;
    const std::size_t behindAt = 8 + 2 + entries.size() * 12 + 4;
    for (const Entry& entry : entries) {
        out.U16Le(entry.tag);
        out.U16Le(entry.type);
        out.U32Le(entry.count);
        if (entry.data.size() <= 4) {
            out.Append(entry.data);
            out.Zeros(4 - entry.data.size());
        } else {
            out.U32Le(static_cast<std::uint32_t>(behindAt + behind.size()));
            behind.insert(behind.end(), entry.data.begin(), entry.data.end());
            if (behind.size() % 2 != 0) behind.push_back(0);
        }
    }
    out.U32Le(0);
    out.Append(behind);
    out.Zeros(kData - out.Size());
    for (std::uint32_t i = 0; i < side * side; ++i) out.U16Le(value + i % 3);  // not flat
    return out.Finish();
}

TEST(Raw, PlainValuesOfASensorThatIsCutShortAreRefused) {
    const Bytes whole = PlainSensor(256, 20'000);
    const auto picture = DecodeRaw(whole, {});
    ASSERT_TRUE(picture) << picture.Message();
    EXPECT_EQ(picture->image.Extent(), (Size{256, 256}));
    EXPECT_EQ(picture->bitsPerPixel, 16);
    EXPECT_EQ(picture->warning, "");
    for (std::size_t eighths = 0; eighths < 8; ++eighths)
        EXPECT_FALSE(DecodeRaw(ByteView(whole).first(whole.size() * eighths / 8), {})) << eighths;
}

TEST(Raw, LimitsAreObeyedBeforeAnythingIsUnpacked) {
    constexpr auto kFile = "raw/rust-skia_sample_1mp.dng";
    EXPECT_THAT(ReasonOf(kFile, {.limits = {.maxSide = 599}}), HasSubstr("larger than allowed"));
    EXPECT_THAT(ReasonOf(kFile, {.limits = {.maxPixels = 1000}}), HasSubstr("larger than allowed"));
    EXPECT_THAT(ReasonOf(kFile, {.limits = {.maxMemory = 1 << 20}}), HasSubstr("more memory"));
    const test::ScopedMemoryBudget budget(1000);
    EXPECT_THAT(ReasonOf(kFile), HasSubstr("not enough memory"));
}

TEST(Raw, IsChosenByItsExtensionWhereTheContentSaysTiff) {
    const Bytes file = test::ReadTestFile("raw/rust-skia_sample_1mp.dng");
    const auto result = Decode(file, Format::Raw);
    ASSERT_TRUE(result) << result.Message();
    EXPECT_EQ(result->format, Format::Raw);
    EXPECT_EQ(result->image.Extent(), (Size{600, 338}));
}

TEST(Raw, ThreadsDoNotDisturbEachOther) {
    const Bytes file = test::ReadTestFile("raw/rust-skia_sample_1mp.dng");
    const std::uint64_t expected = test::PixelHash(MustDecode(file).image.View());
    std::uint64_t hashes[2] = {};
    {
        std::vector<std::jthread> threads;
        for (std::uint64_t& hash : hashes)
            threads.emplace_back([&] { hash = test::PixelHash(MustDecode(file).image.View()); });
    }
    for (const std::uint64_t hash : hashes) EXPECT_EQ(hash, expected);
}

TEST(Raw, EndsWellHoweverFilesAreDamaged) {
    test::CheckMutationsEndWell(DecodeRaw, "raw", 1000);
    test::CheckMutationsEndWell(DecodeRaw, "raw/invalid", 500);
}

}  // namespace
}  // namespace lumo::imaging::codecs
