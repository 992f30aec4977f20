#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/tiff_file.h"
#include "imaging/parallel.h"
#include "support/decoder_checks.h"
#include "support/test_images.h"

namespace lumo::imaging::codecs {
namespace {

Decoded MustDecode(const Bytes& file) {
    return test::MustDecode(DecodeTiff, file);
}

constexpr TiffCompression kCompressions[] = {TiffCompression::None, TiffCompression::Lzw,
                                             TiffCompression::PackBits};

TEST(EncodeTiff, RoundTripsEverySizeAndCompression) {
    for (const Size size : {Size{1, 1}, {1, 9}, {7, 1}, {3, 5}, {33, 17}, {641, 300}, {60000, 2}})
        for (const auto compression : kCompressions) {
            const Image image = test::RandomImage(size, 5);
            const Bytes file = *EncodeTiff(image.View(), {.compression = compression});
            EXPECT_TRUE(test::SamePixels(MustDecode(file).image, image));
        }
}

TEST(EncodeTiff, ThreadsChangeNoByte) {
    const Image image = test::PhotoLikeImage({2000, 1200});
    const Bytes alone = *EncodeTiff(image.View(), {.compression = TiffCompression::Lzw});
    SetKernelThreads(3);
    const Bytes together = *EncodeTiff(image.View(), {.compression = TiffCompression::Lzw});
    SetKernelThreads(1);
    EXPECT_EQ(alone, together);
}

TEST(EncodeTiff, LeavesThePictureAlone) {
    const Image image = test::RandomImage({50, 50}, 6);
    const Image before = test::Copy(image.View());
    for (const auto compression : kCompressions)
        EXPECT_TRUE(EncodeTiff(image.View(), {.compression = compression}));
    EXPECT_TRUE(test::SamePixels(image, before));
}

TEST(EncodeTiff, WritesItsFields) {
    const Image image = test::PhotoLikeImage({1000, 500});
    for (const auto compression : kCompressions) {
        const Bytes bytes =
            *EncodeTiff(image.View(), {.compression = compression, .dotsPerInch = 300});
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), std::string("II*\0", 4));
        const auto file = TiffFile::Open(bytes, 0);
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_COMPRESSION),
                  static_cast<std::uint16_t>(compression));
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_PREDICTOR),
                  compression == TiffCompression::Lzw ? 2 : 0);
        EXPECT_EQ(file->Field<float>(TIFFTAG_XRESOLUTION), 300.0F);
        EXPECT_EQ(file->Field<float>(TIFFTAG_YRESOLUTION), 300.0F);
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_RESOLUTIONUNIT), RESUNIT_INCH);
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC), PHOTOMETRIC_RGB);
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE), 8);
        EXPECT_EQ(file->Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL), 3);
        EXPECT_EQ(file->Field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP), 43U);  // 128 KiB
    }
}

TEST(EncodeTiff, ResolutionIsAlwaysAPositiveNumber) {
    const Image image = test::FlatImage({2, 2}, {1, 2, 3});
    const auto dots = [&](double value) {
        const Bytes bytes = *EncodeTiff(image.View(), {.dotsPerInch = value});
        return TiffFile::Open(bytes, 0)->Field<float>(TIFFTAG_XRESOLUTION);
    };
    EXPECT_EQ(dots(72.5), 72.5F);
    EXPECT_EQ(dots(0), 1.0F);
    EXPECT_EQ(dots(-3), 1.0F);
    EXPECT_EQ(dots(NAN), 1.0F);
    EXPECT_EQ(dots(1e30), 1e6F);
}

TEST(EncodeTiff, LzwMakesAPhotographSmaller) {
    const Image image = test::PhotoLikeImage({600, 400});
    const auto size = [&](TiffCompression compression) {
        return EncodeTiff(image.View(), {.compression = compression})->size();
    };
    EXPECT_LT(size(TiffCompression::Lzw), size(TiffCompression::None));
}

}  // namespace
}  // namespace lumo::imaging::codecs
