#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

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
